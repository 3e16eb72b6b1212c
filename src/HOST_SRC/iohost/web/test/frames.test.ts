import assert from "node:assert/strict";
import { test } from "node:test";
import { FrameWatch, isStalled } from "../src/frames.ts";

test("a frame is as old as the first word of it", () => {
  const watch = new FrameWatch(1000);
  assert.equal(watch.age(1400), 400);
  watch.told(7, 2000);
  assert.equal(watch.age(2100), 100);
  watch.told(7, 3000);
  assert.equal(watch.age(3100), 1100);
  watch.told(8, 4000);
  assert.equal(watch.age(4100), 100);
});

test("a clock that is set back makes no frame younger than new", () => {
  assert.equal(new FrameWatch(1000).age(900), 0);
});

test("a host has stalled when no frame came for a while longer than one takes", () => {
  assert.equal(isStalled(2900, 60), false);
  assert.equal(isStalled(3100, 60), true);
  assert.equal(isStalled(102000, 0.01), false);
  assert.equal(isStalled(104000, 0.01), true);
});
