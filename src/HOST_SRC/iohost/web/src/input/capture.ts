import { isModifier, keyValueOf, virtualKeyOf, type PlacedKey } from "./virtualKeys.ts";

/**
 * Follows the keys while somebody presses the combination that a key check node is to look for. The first key that isn't
 * a modifier ends it; a modifier by itself counts when it goes up with nothing pressed in between.
 */
export class CombinationCapture {
  readonly #held = new Set<number>();

  /** The modifiers that are held so far. */
  get held(): readonly number[] {
    return [...this.#held];
  }

  /** The key value that was pressed, once it's complete. */
  down(key: PlacedKey): number | null {
    const code = virtualKeyOf(key);
    if (code === null) {
      return null;
    }
    if (isModifier(code)) {
      this.#held.add(code);
      return null;
    }
    return keyValueOf(code, this.#held);
  }

  up(key: PlacedKey): number | null {
    const code = virtualKeyOf(key);
    return code !== null && this.#held.delete(code) ? keyValueOf(code, this.#held) : null;
  }
}
