import { signal } from "@preact/signals";

/** What is chosen on the desk, and what came of the last step: canvas, inspector, log and top bar share it. */
export class Desk {
  /** Handles of the chosen nodes; none: the inspector shows all. */
  readonly chosen = signal<readonly string[]>([]);
  /** Chooses nodes on the canvas, which sets this while it's there. */
  choose: (nodes: readonly string[]) => void = () => {};
  /** Said in the canvas's status line, also to screen readers. */
  readonly message = signal("");
  /** Whether the render surface has most of the width. */
  readonly surfaceIsLarge = signal(false);
}
