import assert from "node:assert/strict";
import { test } from "node:test";
import { boundsOf, kindOf, parseNumber, shownValue, valueText } from "../src/params.ts";
import type { Param } from "../src/messages.ts";

const param = (type: number, control: number, more: Partial<Param> = {}): Param => ({
  id: 1,
  name: "",
  display: "",
  type,
  control,
  range: null,
  int: 0,
  float: 0,
  string: "",
  choices: [],
  available: 1,
  ...more,
});

test("type and control codes together say how a parameter is edited", () => {
  const kinds = [[5, 5], [5, 1], [2, 1], [2, 2], [1, 6], [4, 1], [38, 1], [26, 7], [9, 9]].map(([type, control]) =>
    kindOf(param(type!, control!)),
  );
  assert.deepEqual(kinds, ["switch", "switch", "integer", "float", "text", "choice", "keyCode", "event", "other"]);
});

test("a number field sends whole numbers as int and others as float", () => {
  assert.deepEqual(parseNumber("12", "integer", null), { int: 12 });
  assert.deepEqual(parseNumber(" -3 ", "integer", null), { int: -3 });
  assert.deepEqual(parseNumber("0.25", "float", null), { float: 0.25 });
  assert.deepEqual(parseNumber("65", "keyCode", null), { int: 65 });
});

test("what isn't a number of that kind is refused", () => {
  for (const text of ["", "  ", "abc", "1.5", "Infinity", "NaN", "4294967296"]) {
    assert.equal(parseNumber(text, "integer", null), null, text);
  }
  assert.equal(parseNumber("1e999", "float", null), null);
});

test("the declared range bounds what is taken, and a range without extent bounds nothing", () => {
  assert.equal(parseNumber("11", "integer", [0, 0, 10, 1]), null);
  assert.equal(parseNumber("-1", "integer", [0, 0, 10, 1]), null);
  assert.deepEqual(parseNumber("10", "integer", [0, 0, 10, 1]), { int: 10 });
  assert.deepEqual(parseNumber("11", "integer", [0, 0, 0, 0]), { int: 11 });
  assert.equal(boundsOf([0, 0, 0, 0]), null);
});

test("a value is shown as its kind reads", () => {
  assert.equal(valueText(param(5, 5), { int: 1, float: 0, string: "" }), "on");
  assert.equal(valueText(param(5, 5), { int: 0, float: 0, string: "" }), "off");
  assert.equal(valueText(param(2, 1), { int: -7, float: 0, string: "" }), "-7");
  assert.equal(valueText(param(2, 2), { int: 0, float: 12.34567, string: "" }), "12.346");
  assert.equal(valueText(param(1, 6), { int: 0, float: 0, string: "Enter" }), "Enter");
  assert.equal(valueText(param(4, 1, { choices: ["one", "two"] }), { int: 1, float: 0, string: "" }), "two");
  assert.equal(valueText(param(4, 1, { choices: ["one"] }), { int: 3, float: 0, string: "" }), "3");
});

test("a long text is shown cut; a number that has a long text beside it is shown whole", () => {
  const value = { int: 7, float: 0, string: "abc", length: 100 };
  assert.deepEqual(shownValue(param(1, 6), value), { text: "abc", length: 100 });
  assert.deepEqual(shownValue(param(2, 1), value), { text: "7" });
  assert.equal(shownValue(param(1, 6), { int: 0, float: 0, string: "x".repeat(5000) }).length, 5000);
});
