import { firstPointer } from "./input/pointers.ts";
import { virtualKeyName } from "./input/virtualKeys.ts";
import type { HeldEntry } from "./protocol.ts";

export interface HeldLabel {
  /** How it's drawn: as a key cap, or as a name. */
  cap: boolean;
  text: string;
}

const HANDS = ["Left", "Right"];

/** What a person calls it. */
export function heldLabel({ connection, what, identity }: HeldEntry): HeldLabel {
  const hand = HANDS[Number(identity)] ?? `Hand ${identity}`;
  // Scripts leave out the number, or give 0.
  const isMouse = identity === 0 || identity === firstPointer(connection);
  const ofPointer = (button: string) => (isMouse ? `${button} button` : `Pointer ${identity}, ${button.toLowerCase()} button`);
  switch (what) {
    case "key":
      return { cap: true, text: identity === " " ? "Space" : String(identity) };
    case "virtual key":
      return { cap: true, text: virtualKeyName(Number(identity)) };
    case "left button of pointer":
      // A finger or the tip of a pen has no name for it.
      return { cap: false, text: isMouse ? "Left button" : `Pointer ${identity}` };
    case "middle button of pointer":
      return { cap: false, text: ofPointer("Middle") };
    case "right button of pointer":
      return { cap: false, text: ofPointer("Right") };
    case "trigger of hand":
      return { cap: false, text: `${hand} trigger` };
    case "touch-pad of hand":
      return { cap: false, text: `${hand} pad` };
    default:
      return { cap: false, text: `${what} ${identity}` };
  }
}

/** Virtual keys stand apart: they are the keyboard's state beside its events. */
export function isKeyboardState({ what }: HeldEntry): boolean {
  return what === "virtual key";
}
