const POINTERS_EACH = 100;
const MOST_NUMBERS = 2 ** 31;

/** The first of the pointer numbers that belong to a connection: nodes tell pointers apart by a 32-bit number alone. */
export function firstPointer(connection: number): number {
  return ((connection - 1) % Math.floor(MOST_NUMBERS / POINTERS_EACH)) * POINTERS_EACH;
}

/**
 * Numbers for the browser's pointers, from the connection's first one on: the mouse is 0, fingers and pens have the lowest
 * number from 1 on that is free when they come.
 */
export class PointerNumbers {
  readonly #numbers = new Map<number, number>();

  /** The number of this pointer, given to it when it's new. */
  of(pointerId: number, pointerType: string): number {
    const known = this.#numbers.get(pointerId);
    if (known !== undefined) {
      return known;
    }
    const taken = new Set(this.#numbers.values());
    let number = pointerType === "mouse" ? 0 : 1;
    while (taken.has(number)) {
      ++number;
    }
    this.#numbers.set(pointerId, number);
    return number;
  }

  /** The pointer is gone; its number is free again. */
  free(pointerId: number): void {
    this.#numbers.delete(pointerId);
  }
}
