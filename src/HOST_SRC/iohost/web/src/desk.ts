import { signal } from "@preact/signals";
import { createContext } from "preact";

/** Asked before something is done that takes something away. */
export interface Question {
  text: string;
  yes: string;
  act: () => void;
}

/** What is chosen on the desk, and what came of the last step: canvas, inspector, log and top bar share it. */
export class Desk {
  /** Handles of the chosen nodes; none: the inspector shows all. */
  readonly chosen = signal<readonly string[]>([]);
  /** Said in the canvas's status line, also to screen readers. */
  readonly message = signal("");
  readonly question = signal<Question | null>(null);
  /** Whether the render surface has most of the width. */
  readonly surfaceIsLarge = signal(false);
  /** Chooses nodes on the canvas, which sets this while it's there. */
  choose: (nodes: readonly string[]) => void = () => {};
  /** Chooses a node and brings it into sight; without a canvas, its card. */
  goTo: (node: string) => void = (node) => document.getElementById(`node-${node}`)?.scrollIntoView({ block: "start" });

  /** Tells what was wrong, or else what was done. */
  tell(error: string | null, done: string): void {
    this.message.value = error ?? done;
  }
}

/** The page's desk, for what stands deep inside of the inspector. */
export const DeskContext = createContext(new Desk());

/** Whether a key is typed into something that takes it: a field, or the render surface. */
export function takesKeys(target: EventTarget | null): boolean {
  return target instanceof Element && target.closest("input:not([type=checkbox]), textarea, [data-surface], dialog") !== null;
}
