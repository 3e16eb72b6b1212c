import assert from "node:assert/strict";
import { test } from "node:test";
import { cutText, lengthText, shortText } from "../src/texts.ts";

test("a text that is short enough stays whole", () => {
  assert.deepEqual(cutText({ text: "abc" }, 3), { text: "abc" });
  assert.deepEqual(cutText({ text: "" }, 3), { text: "" });
});

test("a long text is cut, and knows how long it was", () => {
  assert.deepEqual(cutText({ text: "abcd" }, 3), { text: "abc", length: 4 });
  assert.equal(cutText({ text: "x".repeat(1 << 20) }).length, 1 << 20);
});

test("a text that the host cut keeps its length, however much of it is shown", () => {
  assert.deepEqual(cutText({ text: "abc", length: 100 }, 3), { text: "abc", length: 100 });
  assert.deepEqual(cutText({ text: "abcd", length: 100 }, 3), { text: "abc", length: 100 });
  assert.deepEqual(cutText({ text: "abc", length: 3 }, 3), { text: "abc" });
});

test("no character is cut in two", () => {
  assert.deepEqual(cutText({ text: "ab\u{1F600}" }, 3), { text: "ab", length: 4 });
  assert.deepEqual(cutText({ text: "a\u{1F600}b" }, 3), { text: "a\u{1F600}", length: 4 });
});

test("what is cut says so", () => {
  assert.equal(lengthText({ text: "abc" }), undefined);
  assert.equal(lengthText({ text: "abc", length: 1048576 }), "1,048,576 characters: these are the first 3");
  assert.equal(shortText("abc", 3), "abc");
  assert.equal(shortText("abcd", 3), "abc…");
});
