import { SimpleKeyboard } from "simple-keyboard";
import { t } from "../i18n.ts";
import type { Holder } from "./holders.ts";
import { CAPS_BUTTON, CLEAR_BUTTON, KEY_ROWS, keyLabel, keyName, SCREEN_KEYS, screenKey, SHIFT_BUTTON, type ScreenKey } from "./keyNames.ts";
import { VirtualKey } from "./virtualKeys.ts";

export interface ScreenKeyboardListener {
  /** A key was pressed: its name for a text field node. */
  type(keyName: string): void;
  clear(): void;
  toggleCapsLock(): void;
  /** The virtual keys that it holds. */
  keys(down: number[]): void;
}

/** The on-screen keyboard: follows each finger on it by itself, and turns keys into key names. */
export class ScreenKeyboard implements Holder {
  readonly #keyboard: SimpleKeyboard;
  readonly #listener: ScreenKeyboardListener;
  readonly #pressed = new Map<number, ScreenKey>();
  readonly #detach = new AbortController();
  /** Shift holds for the next character. */
  #shift = false;
  #capsLock = false;

  constructor(place: HTMLDivElement, listener: ScreenKeyboardListener) {
    this.#listener = listener;
    this.#keyboard = new SimpleKeyboard(place, {
      layout: { default: [...KEY_ROWS] },
      display: this.#labels(),
      theme: "hg-theme-default screen-keyboard-theme",
      onKeyPress: (button: string, event?: Event) => this.#press(button, event),
    });
    const { signal } = this.#detach;
    // Wherever it lifts: the finger may have left its key.
    for (const type of ["pointerup", "pointercancel"] as const) {
      window.addEventListener(type, (event) => this.#lift(event.pointerId), { signal, capture: true });
    }
    // A click on a key doesn't take the focus from the surface, and so from the keys that are held there.
    place.addEventListener("mousedown", (event) => event.preventDefault(), { signal });
  }

  detach(): void {
    this.forget();
    this.#listener.keys([]);
    this.#detach.abort();
    this.#keyboard.destroy();
  }

  set capsLock(on: boolean) {
    if (on !== this.#capsLock) {
      this.#capsLock = on;
      this.draw();
    }
  }

  holds(): boolean {
    return this.#pressed.size > 0 || this.#shift;
  }

  forget(): void {
    this.#keyboard.setMouseHold(false);
    this.#pressed.clear();
    this.#shift = false;
    this.draw();
  }

  /** Called once for the press, and again without an event while the key is held. */
  #press(button: string, event?: Event): void {
    const key = screenKey(button);
    if (key === undefined) {
      return;
    }
    if (event instanceof PointerEvent) {
      this.#pressed.set(event.pointerId, key);
    }
    switch (button) {
      case SHIFT_BUTTON:
        this.#shift = !this.#shift;
        this.draw();
        break;
      case CAPS_BUTTON:
        this.#listener.toggleCapsLock();
        break;
      case CLEAR_BUTTON:
        this.#listener.clear();
        break;
    }
    this.#tellKeys();
    const name = keyName(key, this.#shift);
    if (name !== null) {
      this.#listener.type(name);
    }
  }

  #lift(pointerId: number): void {
    const key = this.#pressed.get(pointerId);
    if (key === undefined) {
      return;
    }
    this.#pressed.delete(pointerId);
    if (this.#shift && key.name !== null) {
      this.#shift = false;
      this.draw();
    }
    this.#tellKeys();
  }

  #tellKeys(): void {
    const codes = [...this.#pressed.values()].flatMap((key) => (key.button === SHIFT_BUTTON ? [] : (key.virtualKey ?? [])));
    this.#listener.keys(this.#shift ? [...codes, VirtualKey.shift] : codes);
  }

  /** Draws the keys as they are now, in the page's language. */
  draw(): void {
    const on = [...(this.#shift ? [SHIFT_BUTTON] : []), ...(this.#capsLock ? [CAPS_BUTTON] : [])].join(" ");
    this.#keyboard.setOptions({
      display: this.#labels(),
      buttonTheme: on === "" ? [] : [{ class: "screen-key-on", buttons: on }],
    });
  }

  #labels(): Record<string, string> {
    const labels = SCREEN_KEYS.map((key) => [key.button, markup(keyLabel(key, this.#shift, this.#capsLock))]);
    // Other keys bear what stands on them everywhere.
    return { ...Object.fromEntries(labels), [CLEAR_BUTTON]: t("Clear") };
  }
}

/** The component takes labels as markup. */
function markup(text: string): string {
  return text.replaceAll("&", "&amp;").replaceAll("<", "&lt;");
}
