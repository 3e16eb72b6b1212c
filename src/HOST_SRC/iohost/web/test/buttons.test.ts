import assert from "node:assert/strict";
import { test } from "node:test";
import { HeldButtons } from "../src/input/buttons.ts";

const LEFT = 1;
const RIGHT = 2;
const MIDDLE = 4;
const BACK = 8;

test("each button has its own pair of events", () => {
  const held = new HeldButtons();
  assert.deepEqual(held.change(LEFT), [3005]);
  assert.deepEqual(held.change(0), [3006]);
  assert.deepEqual(held.change(MIDDLE), [3007]);
  assert.deepEqual(held.change(0), [3008]);
  assert.deepEqual(held.change(RIGHT), [3009]);
  assert.deepEqual(held.change(0), [3010]);
});

test("a second button beside the first is seen, in either order of letting go", () => {
  const held = new HeldButtons();
  assert.deepEqual(held.change(LEFT), [3005]);
  assert.deepEqual(held.change(LEFT | RIGHT), [3009]);
  assert.deepEqual(held.change(RIGHT), [3006]);
  assert.deepEqual(held.change(0), [3010]);
  assert.equal(held.any, false);
});

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

test("after a forced release a button that stays down presses nothing until it has been let go", () => {
  const held = new HeldButtons();
  held.change(LEFT);
  held.clear();
  assert.equal(held.any, false);
  assert.deepEqual(held.change(LEFT), []);
  assert.deepEqual(held.change(0), []);
  assert.deepEqual(held.change(LEFT), [3005]);
});
