import { t } from "./i18n.ts";
import { firstPointer } from "./input/pointers.ts";
import { virtualKeyName } from "./input/virtualKeys.ts";
import type { HeldEntry } from "./protocol.ts";

export interface HeldLabel {
  /** How it's drawn: as a key cap, or as a name. */
  cap: boolean;
  text: string;
}

/** What a person calls it. */
export function heldLabel({ connection, what, identity }: HeldEntry): HeldLabel {
  // Scripts leave out the number, or give 0.
  const isMouse = identity === 0 || identity === firstPointer(connection);
  const number = identity;
  const ofHand = (names: readonly string[]) => names[Number(identity)];
  switch (what) {
    case "key":
      return { cap: true, text: identity === " " ? "Space" : String(identity) };
    case "virtual key":
      return { cap: true, text: virtualKeyName(Number(identity)) };
    case "left button of pointer":
      // A finger or the tip of a pen has no name for it.
      return { cap: false, text: isMouse ? t("Left button") : t("Pointer {number}", { number }) };
    case "middle button of pointer":
      return { cap: false, text: isMouse ? t("Middle button") : t("Pointer {number}, middle button", { number }) };
    case "right button of pointer":
      return { cap: false, text: isMouse ? t("Right button") : t("Pointer {number}, right button", { number }) };
    case "trigger of hand":
      return { cap: false, text: ofHand([t("Left trigger"), t("Right trigger")]) ?? t("Hand {number} trigger", { number }) };
    case "touch-pad of hand":
      return { cap: false, text: ofHand([t("Left pad"), t("Right pad")]) ?? t("Hand {number} pad", { number }) };
    default:
      return { cap: false, text: `${what} ${identity}` };
  }
}

/** Virtual keys stand apart: they are the keyboard's state beside its events. */
export function isKeyboardState({ what }: HeldEntry): boolean {
  return what === "virtual key";
}
