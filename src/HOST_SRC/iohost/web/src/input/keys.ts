import { virtualKeyOf } from "./virtualKeys.ts";

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

interface HeldKey {
  text: string;
  /** Virtual-key code; null for a key without one. */
  code: number | null;
}

/** Which keys are down on the surface, by place, with the text that their down had. */
export class HeldKeys {
  #keys = new Map<string, HeldKey>();

  get texts(): string[] {
    return [...this.#keys.values()].map(({ text }) => text);
  }

  get virtualKeys(): number[] {
    return [...this.#keys.values()].flatMap(({ code }) => code ?? []);
  }

  /**
   * The text to send for a key down; that of the first down for its repeats, and null for repeats of a key that went down
   * elsewhere or was released by force.
   */
  down(key: BrowserKey): string | null {
    const place = key.code || key.key;
    if (key.repeat) {
      return this.#keys.get(place)?.text ?? null;
    }
    this.#keys.set(place, { text: key.key, code: virtualKeyOf(key) });
    return key.key;
  }

  /**
   * The texts to send for a key up: that of its down, as Shift may have been let go in between; none for a key that
   * went down elsewhere. macOS tells no ups while Meta is held, so Meta takes the other keys with it.
   */
  up(key: BrowserKey): string[] {
    const place = key.code || key.key;
    const held = this.#keys.get(place);
    if (held === undefined) {
      return [];
    }
    this.#keys.delete(place);
    const released = [held.text];
    if (held.text === "Meta") {
      released.push(...this.texts);
      this.#keys.clear();
    }
    return released;
  }

  clear(): void {
    this.#keys.clear();
  }
}
