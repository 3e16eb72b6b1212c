import assert from "node:assert/strict";
import { test } from "node:test";
import { HeldKeys } from "../src/input/keys.ts";

const key = (text: string, code: string, repeat = false) => ({ key: text, code, repeat });

test("an up carries the text of its down, though Shift was let go in between", () => {
  const held = new HeldKeys();
  held.down(key("Shift", "ShiftLeft"));
  held.down(key("A", "KeyA"));
  assert.deepEqual(held.up(key("Shift", "ShiftLeft")), ["Shift"]);
  assert.deepEqual(held.up(key("a", "KeyA")), ["A"]);
  assert.deepEqual(held.texts, []);
});

test("a repeat is a down again, and one up ends it", () => {
  const held = new HeldKeys();
  held.down(key("a", "KeyA"));
  assert.equal(held.down(key("a", "KeyA", true)), "a");
  assert.deepEqual(held.up(key("a", "KeyA")), ["a"]);
  assert.deepEqual(held.up(key("a", "KeyA")), []);
});

test("a repeat has the text of its first down, though Shift was let go in between", () => {
  const held = new HeldKeys();
  held.down(key("Shift", "ShiftLeft"));
  held.down(key("A", "KeyA"));
  held.up(key("Shift", "ShiftLeft"));
  assert.equal(held.down(key("a", "KeyA", true)), "A");
  assert.deepEqual(held.up(key("a", "KeyA")), ["A"]);
});

test("the up and the repeat of a key that went down elsewhere are nothing", () => {
  const held = new HeldKeys();
  assert.deepEqual(held.up(key("a", "KeyA")), []);
  assert.equal(held.down(key("a", "KeyA", true)), null);
  assert.deepEqual(held.texts, []);
});

test("the two Shift keys are two keys", () => {
  const held = new HeldKeys();
  held.down(key("Shift", "ShiftLeft"));
  held.down(key("Shift", "ShiftRight"));
  assert.deepEqual(held.up(key("Shift", "ShiftLeft")), ["Shift"]);
  assert.deepEqual(held.texts, ["Shift"]);
});

test("Meta takes the keys with it whose ups the browser doesn't tell", () => {
  const held = new HeldKeys();
  held.down(key("Meta", "MetaLeft"));
  held.down(key("c", "KeyC"));
  assert.deepEqual(held.up(key("Meta", "MetaLeft")), ["Meta", "c"]);
  assert.deepEqual(held.texts, []);
});

test("a keyboard that tells no places is told apart by the keys' texts", () => {
  const held = new HeldKeys();
  assert.equal(held.down(key("x", "")), "x");
  assert.deepEqual(held.up(key("x", "")), ["x"]);
});
