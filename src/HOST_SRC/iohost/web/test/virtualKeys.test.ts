import assert from "node:assert/strict";
import { test } from "node:test";
import { CombinationCapture } from "../src/input/capture.ts";
import { keyValueOf, keyValueText, virtualKeyName, virtualKeyOf } from "../src/input/virtualKeys.ts";

const SHIFT = { key: "Shift", code: "ShiftLeft" };
const CONTROL = { key: "Control", code: "ControlRight" };
const ALT = { key: "Alt", code: "AltLeft" };

test("keys have the codes of Windows", () => {
  const codes: [string, string, number][] = [
    ["a", "KeyA", 65],
    ["Z", "KeyZ", 90],
    ["0", "Digit0", 48],
    ["(", "Digit9", 57],
    ["7", "Numpad7", 103],
    ["Home", "Numpad7", 103],
    ["F1", "F1", 112],
    ["F24", "F24", 135],
    [" ", "Space", 32],
    ["Enter", "Enter", 13],
    ["Enter", "NumpadEnter", 13],
    ["Escape", "Escape", 27],
    ["ArrowLeft", "ArrowLeft", 37],
    ["ArrowDown", "ArrowDown", 40],
    ["Delete", "Delete", 46],
    ["Shift", "ShiftRight", 16],
    ["Control", "ControlLeft", 17],
    ["AltGraph", "AltRight", 18],
    ["CapsLock", "CapsLock", 20],
    [";", "Semicolon", 186],
    ["~", "Backquote", 192],
    ["'", "Quote", 222],
    ["\\", "Backslash", 220],
  ];
  for (const [key, code, expected] of codes) {
    assert.equal(virtualKeyOf({ key, code }), expected, `${key} at ${code}`);
  }
});

test("a Latin letter has its own code wherever the layout puts it, another alphabet that of the place", () => {
  assert.equal(virtualKeyOf({ key: "a", code: "KeyQ" }), 65);
  assert.equal(virtualKeyOf({ key: "ф", code: "KeyA" }), 65);
});

test("a key that Windows has no code for has none", () => {
  assert.equal(virtualKeyOf({ key: "Unidentified", code: "" }), null);
  assert.equal(virtualKeyOf({ key: "ä", code: "" }), null);
});

test("codes are written by the key's name", () => {
  assert.equal(virtualKeyName(65), "A");
  assert.equal(virtualKeyName(13), "Enter");
  assert.equal(virtualKeyName(16), "Shift");
  assert.equal(virtualKeyName(103), "Num 7");
  assert.equal(virtualKeyName(255), "Key 255");
});

test("a key value is the code with a bit for each modifier", () => {
  assert.equal(keyValueOf(65, []), 0x41);
  assert.equal(keyValueOf(65, [16]), 0x141);
  assert.equal(keyValueOf(65, [17]), 0x241);
  assert.equal(keyValueOf(65, [18]), 0x441);
  assert.equal(keyValueOf(65, [16, 17, 18]), 0x741);
  assert.equal(keyValueOf(65, [66]), 0x41);
  assert.equal(keyValueOf(16, [16, 17]), 0x210);
});

test("a key value is written as the combination", () => {
  assert.equal(keyValueText(0), "");
  assert.equal(keyValueText(0x700), "");
  assert.equal(keyValueText(0x41), "A");
  assert.equal(keyValueText(0x741), "Ctrl + Shift + Alt + A");
  assert.equal(keyValueText(0x410), "Alt + Shift");
});

test("the first key that isn't a modifier ends the capture, with the modifiers that are held", () => {
  const capture = new CombinationCapture();
  assert.equal(capture.down(CONTROL), null);
  assert.equal(capture.down(SHIFT), null);
  assert.deepEqual(capture.held, [17, 16]);
  assert.equal(capture.down({ key: "K", code: "KeyK" }), 0x34b);
});

test("a modifier that was let go before doesn't count", () => {
  const capture = new CombinationCapture();
  capture.down(CONTROL);
  capture.down(ALT);
  assert.equal(capture.up(CONTROL), 0x411);
  const other = new CombinationCapture();
  assert.equal(other.down({ key: "F8", code: "F8" }), 119);
});

test("a modifier by itself is captured when it goes up", () => {
  const capture = new CombinationCapture();
  assert.equal(capture.down(SHIFT), null);
  assert.equal(capture.up(SHIFT), 16);
});

test("keys without a code, and ups of keys that went down before, capture nothing", () => {
  const capture = new CombinationCapture();
  assert.equal(capture.down({ key: "Unidentified", code: "" }), null);
  assert.equal(capture.up({ key: "Enter", code: "Enter" }), null);
  assert.equal(capture.up(SHIFT), null);
});
