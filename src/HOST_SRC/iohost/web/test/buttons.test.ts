import assert from "node:assert/strict";
import { test } from "node:test";
import { HeldButtons } from "../src/input/buttons.ts";

const LEFT = 1;
const RIGHT = 2;
const BACK = 8;

test("the same set again, and buttons that the host doesn't know, are nothing", () => {
  const held = new HeldButtons();
  held.change(LEFT);
  assert.deepEqual(held.change(LEFT), []);
  assert.deepEqual(held.change(LEFT | BACK), []);
  assert.deepEqual(held.change(0), [3006]);
});

test("a button that came in pressed counts only after it has been let go", () => {
  const held = new HeldButtons();
  held.ignore(LEFT);
  assert.deepEqual(held.change(LEFT), []);
  assert.deepEqual(held.change(LEFT | RIGHT), [3009]);
  assert.deepEqual(held.change(0), [3010]);
  assert.deepEqual(held.change(LEFT), [3005]);
});

test("a button of the surface's own isn't ignored when the pointer comes back with it", () => {
  const held = new HeldButtons();
  held.change(LEFT);
  held.ignore(LEFT);
  assert.deepEqual(held.change(0), [3006]);
});
