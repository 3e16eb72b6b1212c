import { batch } from "@preact/signals";

/** Nobody reads faster, and each time that something is shown costs layout and paint. */
const PAUSE_MS = 200;

/** Carries out changes of what is shown, in order: one that comes alone at once, others together at the end of a pause. */
export class Pace {
  #pausing = false;
  #waiting: (() => void)[] = [];

  show(change: () => void): void {
    this.#waiting.push(change);
    if (!this.#pausing) {
      this.#showWaiting();
    }
  }

  #showWaiting(): void {
    const changes = this.#waiting;
    this.#waiting = [];
    this.#pausing = changes.length > 0;
    if (this.#pausing) {
      setTimeout(() => this.#showWaiting(), PAUSE_MS);
      batch(() => changes.forEach((change) => change()));
    }
  }
}
