import assert from "node:assert/strict";
import { readdirSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { inEnglish, LOG_TEXTS } from "../src/logTexts.ts";

const MODULE = "../../../PI_SRC/QORIOProcess";

/** What the module's sources log: their texts that begin with names or are Chinese. */
function formatsOfModule(): string[] {
  const sources = readdirSync(MODULE, { recursive: true, encoding: "utf8" }).filter((name) => /\.(cpp|h)$/.test(name));
  return sources.flatMap((name) => {
    const source = readFileSync(join(MODULE, name), "utf8");
    return [...source.matchAll(/L"((?:\[%s|[^"\n]*\p{Script=Han})[^"\n]*)"/gu)].map(([, text]) => text!);
  });
}

test("every line that the module can log has an English text, and no other has one", () => {
  const formats = new Set(formatsOfModule());
  assert.ok(formats.size > 30);
  assert.deepEqual(Object.keys(LOG_TEXTS).sort(), [...formats].sort());
});

test("an English text has the values of its format, in their order", () => {
  for (const [format, text] of Object.entries(LOG_TEXTS)) {
    assert.equal(text.match(/%s/g)?.length, format.match(/%s/g)?.length, format);
    assert.doesNotMatch(text, /\p{Script=Han}/u);
    const values = ["Demo", "键 1", "a.[b]", "x"];
    const line = (form: string) => values.reduce((rest, value) => rest.replace("%s", () => value), form);
    assert.equal(inEnglish(line(format)), line(text));
  }
});

test("other lines have none", () => {
  assert.equal(inEnglish("synthetic release of the key"), null);
  assert.equal(inEnglish("[Demo.Mouse 1.Mouse]触发输出事件[停留]…"), null);
});
