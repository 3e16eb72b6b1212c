import assert from "node:assert/strict";
import { test } from "node:test";
import { floatText, shortestFloat, timeOfDay } from "../src/format.ts";

test("the time of day has milliseconds", () => {
  assert.equal(timeOfDay(new Date(2020, 0, 2, 3, 4, 5, 6).getTime()), "03:04:05.006");
});

test("floats are short, and very large or small ones have an exponent", () => {
  assert.equal(floatText(0), "0");
  assert.equal(floatText(500.12345), "500.123");
  assert.equal(floatText(-1e9), "-1.000e+9");
  assert.equal(floatText(0.0001), "1.000e-4");
});

test("a 32-bit float reads as it was typed", () => {
  for (const value of [0.1, -2.7, 1e-9, 123456.78, 0, 16777216, 3.4e38]) {
    assert.equal(shortestFloat(Math.fround(value)), String(value));
  }
});
