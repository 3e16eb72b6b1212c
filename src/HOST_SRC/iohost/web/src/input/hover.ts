export const HOVER_REST_MS = 400;

/** When the pointer has rested long enough: told once a rest. Time comes in from outside, in milliseconds. */
export class HoverClock {
  #place: { x: number; y: number } | null = null;
  #restsSince = 0;
  #told = false;

  /** The pointer came in or moved. A move to where it already is doesn't end its rest. */
  moved(x: number, y: number, now: number): void {
    if (this.#place?.x === x && this.#place.y === y) {
      return;
    }
    this.#place = { x, y };
    this.#restsSince = now;
    this.#told = false;
  }

  left(): void {
    this.#place = null;
  }

  /** Milliseconds until the hover is due; null when none is. */
  dueIn(now: number): number | null {
    if (this.#place === null || this.#told) {
      return null;
    }
    return Math.max(0, this.#restsSince + HOVER_REST_MS - now);
  }

  /** True once a rest, when it has lasted long enough. */
  take(now: number): boolean {
    if (this.dueIn(now) !== 0) {
      return false;
    }
    this.#told = true;
    return true;
  }
}
