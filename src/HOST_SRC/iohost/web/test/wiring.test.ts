import assert from "node:assert/strict";
import { test } from "node:test";
import { conversion, freeName, refusal, sortOf } from "../src/graph/wiring.ts";

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

test("a number with a fraction brings nothing to a whole number: the host copies values as they stand", () => {
  assert.match(refusal(from("float"), to("integer"))!, /brings nothing to an input for whole numbers/);
  assert.match(refusal(from("switch"), to("float"))!, /brings nothing to an input for numbers/);
});

test("a node isn't linked to itself", () => {
  assert.equal(refusal({ node: "b", param: KINDS.event }, to("event")), "A node can't be linked to itself.");
});

test("a wire says what it takes a value for", () => {
  assert.equal(conversion(KINDS.integer, KINDS.switch), "whole number taken as switch");
  assert.equal(conversion(KINDS.switch, KINDS.switch), null);
  assert.equal(conversion(KINDS.event, KINDS.event), null);
});

test("a new name takes the first free number", () => {
  assert.equal(freeName("Mouse", new Set(["Mouse 1", "Mouse 3"])), "Mouse 2");
});
