import { VirtualKey } from "./virtualKeys.ts";

/** The modifier states of a browser's keyboard event. */
export interface LockReader {
  getModifierState(name: string): boolean;
}

const LOCKS = [
  { name: "CapsLock", code: VirtualKey.capsLock },
  { name: "NumLock", code: VirtualKey.numLock },
  { name: "ScrollLock", code: VirtualKey.scrollLock },
] as const;

export interface KeyboardRequest {
  down: number[];
  toggled: number[];
}

/**
 * Which virtual keys are down and which are toggled on, from all keyboards of the page together. Tells whole states, and
 * only when they changed.
 */
export class KeyboardState {
  readonly #tell: (state: KeyboardRequest) => void;
  readonly #down = new Map<object, readonly number[]>();
  readonly #toggled = new Set<number>();
  readonly #locksSeen = new Map<number, boolean>();
  #told = JSON.stringify({ down: [], toggled: [] });

  constructor(tell: (state: KeyboardRequest) => void) {
    this.#tell = tell;
  }

  /** The keys that one keyboard holds. */
  setDown(keyboard: object, codes: readonly number[]): void {
    this.#down.set(keyboard, codes);
    this.#tellChange();
  }

  isToggled(code: number): boolean {
    return this.#toggled.has(code);
  }

  setToggled(code: number, on: boolean): void {
    this.#mark(code, on);
    this.#tellChange();
  }

  /** Takes the locks over from a real keyboard, as far as they changed there since it was looked at last. */
  readLocks(keyboard: LockReader): void {
    for (const { name, code } of LOCKS) {
      const on = keyboard.getModifierState(name);
      if (on !== (this.#locksSeen.get(code) ?? false)) {
        this.#locksSeen.set(code, on);
        this.#mark(code, on);
      }
    }
    this.#tellChange();
  }

  /** All keys are up; the host knows already. */
  forget(): void {
    this.#down.clear();
    this.#told = "";
  }

  #mark(code: number, on: boolean): void {
    if (on) {
      this.#toggled.add(code);
    } else {
      this.#toggled.delete(code);
    }
  }

  #tellChange(): void {
    const state = { down: sorted([...this.#down.values()].flat()), toggled: sorted(this.#toggled) };
    const text = JSON.stringify(state);
    if (text !== this.#told) {
      this.#told = text;
      this.#tell(state);
    }
  }
}

function sorted(codes: Iterable<number>): number[] {
  return [...new Set(codes)].sort((a, b) => a - b);
}
