import assert from "node:assert/strict";
import { test } from "node:test";
import { heldLabel, isKeyboardState } from "../src/held.ts";

const entry = (what: string, identity: string | number) => ({ connection: 1, device: 0, what, identity, ms: 0 });

test("what is held is named as a person does", () => {
  const names: [string, string | number, string][] = [
    ["key", "a", "a"],
    ["key", " ", "Space"],
    ["virtual key", 65, "A"],
    ["left button of pointer", 0, "Left button"],
    ["left button of pointer", 3, "Pointer 3"],
    ["right button of pointer", 0, "Right button"],
    ["middle button of pointer", 2, "Pointer 2, middle button"],
    ["left button of pointer", 100, "Pointer 100"],
    ["trigger of hand", 0, "Left trigger"],
    ["touch-pad of hand", 1, "Right pad"],
    ["trigger of hand", 7, "Hand 7 trigger"],
    ["something new", 1, "something new 1"],
  ];
  for (const [what, identity, text] of names) {
    assert.equal(heldLabel(entry(what, identity)).text, text);
  }
  const mouse = { ...entry("left button of pointer", 100), connection: 2 };
  assert.equal(heldLabel(mouse).text, "Left button");
  assert.equal(heldLabel(entry("key", "a")).cap, true);
  assert.equal(heldLabel(entry("trigger of hand", 0)).cap, false);
});

test("virtual keys are the keyboard's state", () => {
  assert.equal(isKeyboardState(entry("virtual key", 65)), true);
  assert.equal(isKeyboardState(entry("key", "a")), false);
});
