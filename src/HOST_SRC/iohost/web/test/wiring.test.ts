import assert from "node:assert/strict";
import { test } from "node:test";
import { freeName, refusal, sortOf, type PinSort } from "../src/graph/wiring.ts";

const from = (sort: PinSort) => ({ node: "a", sort });
const to = (sort: PinSort, linked = false) => ({ node: "b", sort, linked });

test("switches, choices and keys are whole numbers; pins of another kind carry a text", () => {
  const sorts = [[5, 5], [2, 1], [4, 1], [38, 1], [2, 2], [1, 6], [26, 7], [0, 0]].map(([type, control]) =>
    sortOf({ type: type!, control: control! }),
  );
  assert.deepEqual(sorts, ["integer", "integer", "integer", "integer", "float", "text", "event", "text"]);
});

test("pins of one sort fit, others don't", () => {
  assert.equal(refusal(from("integer"), to("integer")), null);
  assert.equal(refusal(from("event"), to("text")), "An output with events doesn't fit an input for texts.");
  assert.equal(refusal(from("float"), to("integer")), "An output with numbers doesn't fit an input for whole numbers.");
});

test("a node isn't linked to itself", () => {
  assert.equal(refusal({ node: "b", sort: "event" }, to("event")), "A node can't be linked to itself.");
});

test("a value has one source, an event may have several", () => {
  assert.equal(refusal(from("text"), to("text", true)), "The input has a source already.");
  assert.equal(refusal(from("event"), to("event", true)), null);
});

test("a new name takes the first free number", () => {
  assert.equal(freeName("Mouse", new Set(["Mouse 1", "Mouse 3"])), "Mouse 2");
});
