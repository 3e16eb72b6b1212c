// The names that the on-screen keyboard's keys have for a text field node.
import { VirtualKey, virtualKeyNamed } from "./virtualKeys.ts";

/** One key of the on-screen keyboard. */
export interface ScreenKey {
  /** The name that the keyboard component knows it by; one without spaces. */
  button: string;
  /** Its name for the node, without Shift; null for a key that types nothing. */
  name: string | null;
  /** What stands on it, without and with Shift. */
  label: string;
  shiftLabel?: string;
  /** Null for a key that real keyboards don't have. */
  virtualKey: number | null;
}

export const SHIFT_BUTTON = "{shift}";
export const CAPS_BUTTON = "{lock}";
export const CLEAR_BUTTON = "{clear}";

const SYMBOLS = "`1234567890-=[]\\;',./";
const SHIFTED = '~!@#$%^&*()_+{}|:"<>?';

function characterKey(character: string): ScreenKey {
  const symbol = SYMBOLS.indexOf(character);
  return {
    button: character,
    name: character,
    label: character,
    shiftLabel: symbol >= 0 ? SHIFTED[symbol]! : character.toUpperCase(),
    virtualKey: virtualKeyNamed(character.toUpperCase()),
  };
}

const numberPadKey = (part: string, label = part): ScreenKey => ({
  button: `{num${part.toLowerCase()}}`,
  name: `Num ${part}`,
  label,
  virtualKey: virtualKeyNamed(`Num ${part}`),
});

export const SCREEN_KEYS: readonly ScreenKey[] = [
  ...[..."`1234567890-=qwertyuiop[]\\asdfghjkl;'zxcvbnm,./"].map(characterKey),
  { button: "{bksp}", name: "Backspace", label: "⌫", virtualKey: virtualKeyNamed("Backspace") },
  { button: "{space}", name: "Space", label: "Space", virtualKey: virtualKeyNamed("Space") },
  { button: SHIFT_BUTTON, name: null, label: "Shift", virtualKey: VirtualKey.shift },
  { button: CAPS_BUTTON, name: null, label: "Caps", virtualKey: VirtualKey.capsLock },
  { button: CLEAR_BUTTON, name: null, label: "Clear", virtualKey: null },
  ...[..."0123456789"].map((digit) => numberPadKey(digit)),
  numberPadKey("Del", "."),
  numberPadKey("Enter"),
  numberPadKey("+"),
  numberPadKey("-", "−"),
  numberPadKey("*", "×"),
  numberPadKey("/", "÷"),
];

const BY_BUTTON = new Map(SCREEN_KEYS.map((key) => [key.button, key]));

/** The rows of keys: letters and symbols, with the number pad at their right. */
export const KEY_ROWS = [
  "` 1 2 3 4 5 6 7 8 9 0 - = {bksp} {num7} {num8} {num9} {num/}",
  "{clear} q w e r t y u i o p [ ] \\ {num4} {num5} {num6} {num*}",
  "{lock} a s d f g h j k l ; ' {num1} {num2} {num3} {num-}",
  "{shift} z x c v b n m , . / {shift} {num0} {numdel} {num+}",
  "{space} {numenter}",
] as const;

export function screenKey(button: string): ScreenKey | undefined {
  return BY_BUTTON.get(button);
}

/**
 * The key's name in the form that a text field node takes: `a`, `Shift+a`, `Space`, `Num 7`. Shift matters to characters
 * only.
 */
export function keyName(key: ScreenKey, shift: boolean): string | null {
  return shift && key.name?.length === 1 ? `Shift+${key.name}` : key.name;
}

/** What stands on the key while Shift or Caps Lock is on: the character that it adds. */
export function keyLabel(key: ScreenKey, shift: boolean, capsLock: boolean): string {
  const isLetter = /^[a-z]$/.test(key.label);
  return (shift || (capsLock && isLetter)) && key.shiftLabel !== undefined ? key.shiftLabel : key.label;
}
