/** How much longer than the time of one frame a host may take before it counts as stalled, in milliseconds. */
const PATIENCE_MS = 3000;

/** Since when the page knows of the host's last frame. Times are in milliseconds since 1970. */
export class FrameWatch {
  #frame: number | null = null;
  #since: number;

  /** Before the first frame it counts from the greeting. */
  constructor(greeted: number) {
    this.#since = greeted;
  }

  /** The host told the number of its last frame. */
  told(frame: number, now: number): void {
    if (frame !== this.#frame) {
      this.#frame = frame;
      this.#since = now;
    }
  }

  age(now: number): number {
    return Math.max(0, now - this.#since);
  }
}

/** Whether a host of that many frames a second should have had another one by now. */
export function isStalled(ageMs: number, fps: number): boolean {
  return ageMs > PATIENCE_MS + 1000 / fps;
}
