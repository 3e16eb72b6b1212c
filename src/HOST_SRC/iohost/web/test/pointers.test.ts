import assert from "node:assert/strict";
import { test } from "node:test";
import { firstPointer, PointerNumbers } from "../src/input/pointers.ts";

test("a number is free again when its pointer is gone", () => {
  const numbers = new PointerNumbers();
  numbers.of(5, "touch");
  numbers.of(6, "touch");
  numbers.free(5);
  assert.equal(numbers.of(7, "touch"), 1);
  assert.equal(numbers.of(8, "touch"), 3);
});

test("each connection's pointers have numbers of their own, which fit in 32 bits", () => {
  assert.equal(firstPointer(1), 0);
  assert.equal(firstPointer(2), 100);
  assert.equal(firstPointer(3), 200);
  for (const connection of [21474836, 21474837, 2 ** 31 - 1]) {
    const first = firstPointer(connection);
    assert.ok(first >= 0 && first + 99 < 2 ** 31, `${connection}: ${first}`);
  }
});
