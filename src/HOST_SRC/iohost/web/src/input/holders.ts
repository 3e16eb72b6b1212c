/** Something on the page that holds keys, buttons or triggers down. */
export interface Holder {
  holds(): boolean;
  /** Lets go of everything without telling: the host knows, or is told at once. */
  forget(): void;
}

/** Everything on the page that can hold something. */
export class Holders {
  readonly #holders = new Set<Holder>();

  /** Answers with what ends it. */
  add(holder: Holder): () => void {
    this.#holders.add(holder);
    return () => this.#holders.delete(holder);
  }

  get any(): boolean {
    return [...this.#holders].some((holder) => holder.holds());
  }

  forget(): void {
    for (const holder of this.#holders) {
      holder.forget();
    }
  }
}
