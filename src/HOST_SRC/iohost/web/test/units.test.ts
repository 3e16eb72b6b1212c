import assert from "node:assert/strict";
import { test } from "node:test";
import { toSurface } from "../src/input/units.ts";

const BOX = { left: 100, top: 50, width: 960, height: 540 };

test("the origin of pixels is the top left corner", () => {
  const point = toSurface(100, 50, BOX);
  assert.deepEqual([point.x, point.y], [0, 0]);
});

test("relative units: the surface is 1000 high and y grows upwards from the bottom left corner", () => {
  assert.deepEqual(toSurface(100, 590, BOX), { x: 0, y: 540, rx: 0, ry: 0 });
  assert.deepEqual(toSurface(100, 50, BOX), { x: 0, y: 0, rx: 0, ry: 1000 });
  assert.deepEqual(toSurface(370, 320, BOX), { x: 270, y: 270, rx: 500, ry: 500 });
});

test("both relative units are as long as each other, whatever the surface's shape", () => {
  assert.equal(toSurface(640, 50, BOX).rx, 1000);
  assert.equal(toSurface(640, 50, { ...BOX, width: 300 }).rx, 1000);
});

test("pixels are whole and round down; outside the surface they go negative", () => {
  const point = toSurface(99.5, 49.25, BOX);
  assert.deepEqual([point.x, point.y], [-1, -1]);
  assert.ok(point.rx < 0 && point.ry > 1000);
});

test("a surface without height has no relative units", () => {
  assert.deepEqual(toSurface(110, 60, { ...BOX, height: 0 }), { x: 10, y: 10, rx: 0, ry: -0 });
});
