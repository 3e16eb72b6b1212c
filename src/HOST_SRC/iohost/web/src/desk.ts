import { signal } from "@preact/signals";
import { createContext } from "preact";
import type { ObjectName } from "./requests.ts";

/** Asked before something is done that takes something away. */
export interface Question {
  text: string;
  yes: string;
  act: () => void;
}

/** A device or an object of the scene; null: one that is to be added. */
export type Part = { is: "device"; id: number | null } | { is: "object"; name: ObjectName | null };

/** What is chosen on the desk, and what came of the last step: canvas, inspector, panels and top bar share it. */
export class Desk {
  /** Whether the scene is edited here; on a phone it's watched and operated. */
  readonly edits: boolean;
  /** Handles of the chosen nodes; none: the inspector shows all. */
  readonly chosen = signal<readonly string[]>([]);
  /** What the inspector shows in place of nodes. */
  readonly opened = signal<Part | null>(null);
  /** Said in the canvas's status line, or a phone's, also to screen readers. */
  readonly message = signal("");
  readonly question = signal<Question | null>(null);
  /** Whether the render surface has most of the width. */
  readonly surfaceIsLarge = signal(false);
  /** Chooses nodes on the canvas, which sets this while it's there. */
  choose: (nodes: readonly string[]) => void = () => {};
  /** Chooses a node and brings it into sight; without a canvas, its card. */
  goTo: (node: string) => void = (node) => {
    this.opened.value = null;
    requestAnimationFrame(() => document.getElementById(`node-${node}`)?.scrollIntoView({ block: "start" }));
  };

  constructor(edits = true) {
    this.edits = edits;
    this.chosen.subscribe((nodes) => {
      if (nodes.length > 0) {
        this.opened.value = null;
      }
    });
  }

  /** Shows a device or an object in the inspector. */
  open(part: Part): void {
    this.choose([]);
    this.opened.value = part;
  }

  /** Goes on from a part to another one, or to all nodes; not where the inspector shows something else by now. */
  leave(from: Part | null, to: Part | null): void {
    if (this.opened.peek() === from) {
      this.opened.value = to;
    }
  }

  /** Shows all nodes in the inspector. */
  showAll(): void {
    this.choose([]);
    this.opened.value = null;
  }

  /** Tells what was wrong, or else what was done. */
  tell(error: string | null, done: string): void {
    this.message.value = error ?? done;
  }
}

/** The page's desk, for what stands deep inside of the inspector. */
export const DeskContext = createContext(new Desk());

/**
 * Takes Ctrl or Cmd with a letter from the browser, wherever it's pressed but on the render surface. Answers whether the page
 * is to act on it: not while a dialog waits for an answer.
 */
export function takesShortcut(event: KeyboardEvent, letter: string): boolean {
  const isOnSurface = event.target instanceof Element && event.target.closest("[data-surface]") !== null;
  if (!(event.ctrlKey || event.metaKey) || event.key.toLowerCase() !== letter || isOnSurface) {
    return false;
  }
  event.preventDefault();
  return document.querySelector("dialog[open]") === null;
}

/** Whether a key is typed into something that takes it: a field, or the render surface. */
export function takesKeys(target: EventTarget | null): boolean {
  return target instanceof Element && target.closest("input:not([type=checkbox]), textarea, [data-surface], dialog") !== null;
}
