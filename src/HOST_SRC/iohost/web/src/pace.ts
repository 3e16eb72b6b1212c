import { batch } from "@preact/signals";

/** What comes after something that was shown waits so long; longer while it goes on: each showing costs layout and paint. */
const PAUSES_MS = [100, 200, 333];

/** Carries out changes of what is shown, in order: one that comes alone at once, others together at the end of a pause. */
export class Pace {
  /** How many pauses have followed each other, the present one included; 0: none runs. */
  #pauses = 0;
  #waiting: (() => void)[] = [];

  show(change: () => void): void {
    this.#waiting.push(change);
    if (this.#pauses === 0) {
      this.#showWaiting();
    }
  }

  #showWaiting(): void {
    const changes = this.#waiting;
    this.#waiting = [];
    if (changes.length === 0) {
      this.#pauses = 0;
      return;
    }
    setTimeout(() => this.#showWaiting(), PAUSES_MS[Math.min(this.#pauses++, PAUSES_MS.length - 1)]);
    batch(() => changes.forEach((change) => change()));
  }
}
