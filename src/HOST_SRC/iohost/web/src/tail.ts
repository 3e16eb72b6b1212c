/** Items that come at the end and go from the front, numbered from 0 on at the present front; neither copies the others. */
export class Tail<Item> {
  #items: Item[];
  #front = 0;

  constructor(items: Item[] = []) {
    this.#items = items;
  }

  get length(): number {
    return this.#items.length - this.#front;
  }

  at(index: number): Item | undefined {
    return index < 0 ? undefined : this.#items[this.#front + index];
  }

  push(item: Item): void {
    this.#items.push(item);
  }

  shift(): void {
    // What is gone is held no longer than as much again is there.
    if (++this.#front > this.length) {
      this.#items = this.#items.slice(this.#front);
      this.#front = 0;
    }
  }

  slice(from = 0, to = this.length): Item[] {
    return this.#items.slice(this.#front + from, this.#front + to);
  }
}
