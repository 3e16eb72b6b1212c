/** What the page reads of a browser's keyboard event. */
export interface BrowserKey {
  /** The key as it's produced: a character or a name. */
  key: string;
  /** The place on the keyboard. */
  code: string;
  repeat: boolean;
}

/** Tab isn't the surface's: it moves the focus on, so that the page can be used without a pointer. */
export function isSurfaceKey(key: BrowserKey): boolean {
  return key.key !== "Tab";
}

/** Which keys are down on the surface, by place, with the text that their down had. */
export class HeldKeys {
  #texts = new Map<string, string>();

  get texts(): string[] {
    return [...this.#texts.values()];
  }

  /** The text to send for a key down; null for a repeat of a key that went down elsewhere or was released by force. */
  down(key: BrowserKey): string | null {
    const place = key.code || key.key;
    if (key.repeat && !this.#texts.has(place)) {
      return null;
    }
    this.#texts.set(place, key.key);
    return key.key;
  }

  /**
   * The texts to send for a key up: that of its down, as Shift may have been let go in between; none for a key that
   * went down elsewhere. macOS tells no ups while Meta is held, so Meta takes the other keys with it.
   */
  up(key: BrowserKey): string[] {
    const place = key.code || key.key;
    const text = this.#texts.get(place);
    if (text === undefined) {
      return [];
    }
    this.#texts.delete(place);
    const released = [text];
    if (text === "Meta") {
      released.push(...this.#texts.values());
      this.#texts.clear();
    }
    return released;
  }

  clear(): void {
    this.#texts.clear();
  }
}
