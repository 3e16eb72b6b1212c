// Windows' virtual-key codes, by which key check nodes know keys.

export const VirtualKey = { shift: 16, control: 17, alt: 18, capsLock: 20, numLock: 144, scrollLock: 145 } as const;

/** What the page reads of a browser's keyboard event for a key's code. */
export interface PlacedKey {
  key: string;
  code: string;
}

interface KeyRow {
  /** Its place on the keyboard, as the browser calls it. */
  place: string;
  code: number;
  name: string;
}

const rows = (first: number, entries: readonly [place: string, name: string][]): KeyRow[] =>
  entries.map(([place, name], index) => ({ place, name, code: first + index }));

const letters = [..."ABCDEFGHIJKLMNOPQRSTUVWXYZ"];
const digits = [..."0123456789"];

/** Keys by their place. Where several places have one code, the first one gives the name. */
const KEYS: readonly KeyRow[] = [
  ...rows(65, letters.map((letter) => [`Key${letter}`, letter])),
  ...rows(48, digits.map((digit) => [`Digit${digit}`, digit])),
  ...rows(96, digits.map((digit) => [`Numpad${digit}`, `Num ${digit}`])),
  ...rows(112, Array.from({ length: 24 }, (_, index) => [`F${index + 1}`, `F${index + 1}`])),
  { place: "Backspace", code: 8, name: "Backspace" },
  { place: "Tab", code: 9, name: "Tab" },
  { place: "Enter", code: 13, name: "Enter" },
  { place: "NumpadEnter", code: 13, name: "Num Enter" },
  { place: "ShiftLeft", code: VirtualKey.shift, name: "Shift" },
  { place: "ShiftRight", code: VirtualKey.shift, name: "Shift" },
  { place: "ControlLeft", code: VirtualKey.control, name: "Ctrl" },
  { place: "ControlRight", code: VirtualKey.control, name: "Ctrl" },
  { place: "AltLeft", code: VirtualKey.alt, name: "Alt" },
  { place: "AltRight", code: VirtualKey.alt, name: "Alt" },
  { place: "Pause", code: 19, name: "Pause" },
  { place: "CapsLock", code: VirtualKey.capsLock, name: "Caps Lock" },
  { place: "Escape", code: 27, name: "Esc" },
  ...rows(32, [
    ["Space", "Space"],
    ["PageUp", "Page Up"],
    ["PageDown", "Page Down"],
    ["End", "End"],
    ["Home", "Home"],
    ["ArrowLeft", "Left"],
    ["ArrowUp", "Up"],
    ["ArrowRight", "Right"],
    ["ArrowDown", "Down"],
  ]),
  { place: "PrintScreen", code: 44, name: "Print" },
  { place: "Insert", code: 45, name: "Insert" },
  { place: "Delete", code: 46, name: "Delete" },
  { place: "MetaLeft", code: 91, name: "Windows" },
  { place: "MetaRight", code: 92, name: "Windows right" },
  { place: "ContextMenu", code: 93, name: "Menu" },
  { place: "NumpadMultiply", code: 106, name: "Num *" },
  { place: "NumpadAdd", code: 107, name: "Num +" },
  { place: "NumpadSubtract", code: 109, name: "Num -" },
  { place: "NumpadDecimal", code: 110, name: "Num Del" },
  { place: "NumpadDivide", code: 111, name: "Num /" },
  { place: "NumLock", code: VirtualKey.numLock, name: "Num Lock" },
  { place: "ScrollLock", code: VirtualKey.scrollLock, name: "Scroll Lock" },
  ...rows(186, [
    ["Semicolon", ";"],
    ["Equal", "="],
    ["Comma", ","],
    ["Minus", "-"],
    ["Period", "."],
    ["Slash", "/"],
    ["Backquote", "`"],
  ]),
  ...rows(219, [
    ["BracketLeft", "["],
    ["Backslash", "\\"],
    ["BracketRight", "]"],
    ["Quote", "'"],
  ]),
  { place: "IntlBackslash", code: 226, name: "<>" },
];

const BY_PLACE = new Map(KEYS.map((row) => [row.place, row.code]));
const BY_NAME = new Map(KEYS.map((row) => [row.name, row.code]));
const NAMES = new Map([...KEYS].reverse().map((row) => [row.code, row.name]));

/**
 * The code of a key; null for one that has none. A key that makes a Latin letter has that letter's code, wherever its
 * layout puts it; other keys go by their place.
 */
export function virtualKeyOf({ key, code }: PlacedKey): number | null {
  if (/^[a-z]$/i.test(key)) {
    return key.toUpperCase().charCodeAt(0);
  }
  return BY_PLACE.get(code) ?? null;
}

/** The code of a key that has this name. */
export function virtualKeyNamed(name: string): number {
  return BY_NAME.get(name)!;
}

export function virtualKeyName(code: number): string {
  return NAMES.get(code) ?? `Key ${code}`;
}

// What a key check node's "KeyValue" is made of: the key's code, and a bit for each modifier that must be held with it.
const MODIFIERS = [
  { bit: 0x200, code: VirtualKey.control, name: "Ctrl" },
  { bit: 0x100, code: VirtualKey.shift, name: "Shift" },
  { bit: 0x400, code: VirtualKey.alt, name: "Alt" },
] as const;

export function isModifier(code: number): boolean {
  return MODIFIERS.some((modifier) => modifier.code === code);
}

/** The key value of a key pressed while these keys are held. */
export function keyValueOf(code: number, held: Iterable<number>): number {
  const down = new Set(held);
  return MODIFIERS.reduce((value, { bit, code: modifier }) => (down.has(modifier) && modifier !== code ? value | bit : value), code);
}

/** A key value as it's written; empty for none. */
export function keyValueText(value: number): string {
  const code = value & 0xff;
  if (code === 0) {
    return "";
  }
  const names = MODIFIERS.filter(({ bit }) => (value & bit) !== 0).map(({ name }) => name);
  return [...names, virtualKeyName(code)].join(" + ");
}
