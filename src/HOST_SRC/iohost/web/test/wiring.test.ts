import assert from "node:assert/strict";
import { test } from "node:test";
import { broughtValue, conversion, freeName, refusal, sortOf } from "../src/graph/wiring.ts";

const KINDS = {
  switch: { type: 5, control: 5 },
  integer: { type: 2, control: 1 },
  choice: { type: 4, control: 1 },
  key: { type: 38, control: 1 },
  float: { type: 2, control: 2 },
  text: { type: 1, control: 6 },
  event: { type: 26, control: 7 },
};
const from = (kind: keyof typeof KINDS) => ({ node: "a", param: KINDS[kind] });
const to = (kind: keyof typeof KINDS) => ({ node: "b", param: KINDS[kind] });

test("switches, choices and keys are whole numbers; pins of another kind carry a text", () => {
  const sorts = [...Object.values(KINDS), { type: 0, control: 0 }].map(sortOf);
  assert.deepEqual(sorts, ["integer", "integer", "integer", "integer", "float", "text", "event", "text"]);
});

test("pins of one sort fit, others don't", () => {
  assert.equal(refusal(from("integer"), to("switch")), null);
  assert.equal(refusal(from("event"), to("event")), null);
  assert.equal(refusal(from("event"), to("text")), "An output with events doesn't fit an input for texts.");
  assert.equal(refusal(from("text"), to("switch")), "An output with texts doesn't fit an input for whole numbers.");
});

test("a number is rounded for a whole number; a whole number gives a number no value", () => {
  assert.equal(refusal(from("float"), to("integer")), null);
  assert.equal(refusal(from("float"), to("switch")), null);
  assert.match(refusal(from("switch"), to("float"))!, /gives no value to an input for numbers/);
  assert.equal(refusal(from("float"), to("text")), "An output with numbers doesn't fit an input for texts.");
  assert.equal(refusal(from("text"), to("float")), "An output with texts doesn't fit an input for numbers.");
});

test("what a number brings to a whole number is the nearest one that there is", () => {
  const brought = (float: number) => broughtValue(KINDS.float, KINDS.integer, { int: 0, float, string: "" }).int;
  assert.deepEqual([2.5, -2.5, 0.4, 1e20, -1e20, NaN].map(brought), [3, -3, 0, 2147483647, -2147483648, 0]);
  const value = { int: 1, float: 0, string: "" };
  assert.equal(broughtValue(KINDS.switch, KINDS.integer, value), value);
});

test("a node isn't linked to itself", () => {
  assert.equal(refusal({ node: "b", param: KINDS.event }, to("event")), "A node can't be linked to itself.");
});

test("a wire says what it takes a value for", () => {
  assert.equal(conversion(KINDS.integer, KINDS.switch), "whole number taken as switch");
  assert.equal(conversion(KINDS.float, KINDS.integer), "rounded to the nearest whole number");
  assert.equal(conversion(KINDS.float, KINDS.switch), "rounded to the nearest whole number, taken as switch");
  assert.equal(conversion(KINDS.float, KINDS.float), null);
  assert.equal(conversion(KINDS.switch, KINDS.switch), null);
  assert.equal(conversion(KINDS.event, KINDS.event), null);
});

test("a new name takes the first free number", () => {
  assert.equal(freeName("Mouse", new Set(["Mouse 1", "Mouse 3"])), "Mouse 2");
});
