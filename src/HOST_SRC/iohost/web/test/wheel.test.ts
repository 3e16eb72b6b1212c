import assert from "node:assert/strict";
import { test } from "node:test";
import { wheelEvent } from "../src/input/wheel.ts";

test("away from the user is up, towards the user is down, whatever the distance", () => {
  assert.equal(wheelEvent(-120), 3011);
  assert.equal(wheelEvent(-0.5), 3011);
  assert.equal(wheelEvent(120), 3012);
  assert.equal(wheelEvent(4000), 3012);
});

test("a wheel that goes sideways only is neither", () => {
  assert.equal(wheelEvent(0), null);
  assert.equal(wheelEvent(-0), null);
});
