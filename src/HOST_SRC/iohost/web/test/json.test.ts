import assert from "node:assert/strict";
import { test } from "node:test";
import { addressText, keepTexts, readTexts, verdictText, withText, type SentText } from "../src/json.ts";

const device = (number: number, text: string): SentText => ({ to: "device", device: number, text });
const object = (clip: string, name: string, text: string): SentText => ({ to: "object", clip, object: name, text });

/** What a browser keeps. */
function storage(kept: string | null = null) {
  return { getItem: () => kept, setItem: (_: string, value: string) => (kept = value) };
}

test("each verdict has its words", () => {
  const about = { text: "{}", length: 2 };
  assert.equal(verdictText({ ...about, verdict: "taken" }), "taken");
  assert.equal(verdictText({ ...about, verdict: "not_json" }), "not JSON");
  assert.equal(verdictText({ ...about, verdict: "not_object" }), "JSON, but not an object");
  assert.match(verdictText({ ...about, verdict: "not_ready" }), /isn't ready/);
  assert.equal(verdictText({ ...about, verdict: "other_device", device: 2, expected: 1 }), "from device 2, not 1");
  assert.equal(
    verdictText({ ...about, verdict: "other_object", clip: "A", object: "B", expected_clip: "A", expected_object: "C" }),
    "for A.B, not A.C",
  );
  assert.equal(verdictText({ ...about, verdict: "key_missing", key: "cmd" }), "no key “cmd”");
  assert.equal(
    verdictText({ ...about, verdict: "value_differs", key: "cmd", value: "stop", expected: "start" }),
    "“cmd” is “stop”, not “start”",
  );
});

test("names and values in a verdict are cut when they are long", () => {
  const long = "x".repeat(1 << 20);
  const about = { text: "{}", length: 2 };
  for (const verdict of [
    { ...about, verdict: "key_missing", key: long },
    { ...about, verdict: "value_differs", key: long, value: long, expected: long },
    { ...about, verdict: "other_object", clip: long, object: long, expected_clip: long, expected_object: long },
  ] as const) {
    assert.ok(verdictText(verdict).length < 1000, verdict.verdict);
    assert.match(verdictText(verdict), /x…/);
  }
});

test("addresses are named", () => {
  assert.equal(addressText({ to: "device", device: 3 }), "device 3");
  assert.equal(addressText({ to: "object", clip: "Clip", object: "Map" }), "Clip.Map");
  assert.equal(addressText({ to: "object", clip: "", object: "" }), "no object");
});

test("the last texts are kept, the newest first and each once", () => {
  let texts: SentText[] = [];
  for (const sent of [device(1, "a"), device(1, "b"), device(2, "a"), object("A", "B", "a"), device(1, "a")]) {
    texts = withText(texts, sent);
  }
  assert.deepEqual(texts, [device(1, "a"), object("A", "B", "a"), device(2, "a"), device(1, "b")]);
  for (let i = 0; i < 100; ++i) {
    texts = withText(texts, device(1, String(i)));
  }
  assert.equal(texts.length, 20);
  assert.deepEqual(texts[0], device(1, "99"));
});

test("kept texts come back after a reload", () => {
  const kept = storage();
  assert.deepEqual(readTexts(kept), []);
  const texts = [device(1, "{}"), object("Clip", "Map", "text")];
  keepTexts(kept, texts);
  assert.deepEqual(readTexts(kept), texts);
});

test("what isn't texts is left out", () => {
  for (const kept of ["", "no JSON", "null", "{}", "1", "[1]", '[null,{"to":"device"},{"to":"object","clip":"","text":""}]']) {
    assert.deepEqual(readTexts(storage(kept)), [], kept);
  }
  assert.deepEqual(readTexts(storage('[1,{"to":"device","device":1,"text":"a"}]')), [device(1, "a")]);
});

test("a browser that keeps nothing is no error", () => {
  const forbidden = {
    getItem: (): string => {
      throw new Error("forbidden");
    },
    setItem: () => {
      throw new Error("forbidden");
    },
  };
  assert.deepEqual(readTexts(forbidden), []);
  keepTexts(forbidden, [device(1, "a")]);
});
