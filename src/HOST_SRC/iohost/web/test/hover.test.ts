import assert from "node:assert/strict";
import { test } from "node:test";
import { HOVER_REST_MS, HoverClock } from "../src/input/hover.ts";

test("the pointer hovers when it has rested 400 ms, not before", () => {
  const clock = new HoverClock();
  clock.moved(10, 10, 1000);
  assert.equal(HOVER_REST_MS, 400);
  assert.equal(clock.dueIn(1399), 1);
  assert.equal(clock.take(1399), false);
  assert.equal(clock.take(1400), true);
});

test("it hovers once a rest", () => {
  const clock = new HoverClock();
  clock.moved(10, 10, 0);
  assert.equal(clock.take(400), true);
  assert.equal(clock.take(900), false);
  assert.equal(clock.dueIn(900), null);
  clock.moved(11, 10, 1000);
  assert.equal(clock.take(1400), true);
});

test("each move starts the rest anew", () => {
  const clock = new HoverClock();
  clock.moved(10, 10, 0);
  clock.moved(11, 10, 300);
  assert.equal(clock.take(400), false);
  assert.equal(clock.dueIn(400), 300);
  assert.equal(clock.take(700), true);
});

test("a move to the same place doesn't end the rest", () => {
  const clock = new HoverClock();
  clock.moved(10, 10, 0);
  clock.moved(10, 10, 300);
  assert.equal(clock.take(400), true);
  clock.moved(10, 10, 500);
  assert.equal(clock.take(1000), false);
});

test("a pointer that left doesn't hover; coming back to the same place it rests anew", () => {
  const clock = new HoverClock();
  clock.moved(10, 10, 0);
  clock.left();
  assert.equal(clock.dueIn(400), null);
  assert.equal(clock.take(400), false);
  clock.moved(10, 10, 500);
  assert.equal(clock.take(899), false);
  assert.equal(clock.take(900), true);
});
