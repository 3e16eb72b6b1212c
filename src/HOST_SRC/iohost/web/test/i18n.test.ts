import assert from "node:assert/strict";
import { readdirSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { afterEach, test } from "node:test";
import { language, preferredLanguage, t } from "../src/i18n.ts";
import { ZH } from "../src/texts.zh.ts";

const sources = readdirSync("src", { recursive: true, encoding: "utf8" })
  .filter((name) => /\.tsx?$/.test(name) && !name.endsWith(".zh.ts"))
  .map((name) => ({ name, source: readFileSync(join("src", name), "utf8") }));

afterEach(() => {
  language.value = "en";
});

test("a text is told in the language, with its values", () => {
  assert.equal(t("Language"), "Language");
  language.value = "zh";
  assert.equal(t("Language"), "语言");
  assert.equal(t("{shown} of {all}", { shown: 2, all: "10 行" }), "2/10 行");
});

test("the language is the one chosen, or the first of the reader's that there is", () => {
  assert.equal(preferredLanguage(null, ["de", "zh-CN", "en"]), "zh");
  assert.equal(preferredLanguage("en", ["zh-CN"]), "en");
  assert.equal(preferredLanguage(null, ["en-GB", "zh"]), "en");
  assert.equal(preferredLanguage(null, ["fr"]), "en");
});

test("the table has the page's texts, and no others", () => {
  const used = new Set(sources.flatMap(({ source }) => [...source.matchAll(/"(?:[^"\\\n]|\\.)*"/g)].map(([text]) => text)));
  assert.deepEqual(Object.keys(ZH).filter((text) => !used.has(JSON.stringify(text))), []);

  const calls = sources.flatMap(({ source }) => [...source.matchAll(/\bt\(\s*("(?:[^"\\\n]|\\.)*")/g)]);
  const asked = calls.map(([, text]) => JSON.parse(text!));
  assert.ok(asked.length > 0);
  assert.deepEqual(asked.filter((text) => !(text in ZH)), []);
});

test("what the page's elements say comes from the table", () => {
  const said = sources
    .filter(({ name }) => name.endsWith(".tsx"))
    .flatMap(({ source }) => [
      ...source.matchAll(/(?<!=)>\s*((?:[^<>{}()[\];=`]*[A-Za-z]{2})[^<>{}()[\];=`]*)[<{]/g),
      ...source.matchAll(/\b(?:aria-label|title|placeholder|label)="([^"]*[A-Za-z]{2}[^"]*)"/g),
    ])
    .map(([, text]) => text!.trim());
  const names = ["iohost", "UDP", "TCP", "Tab"]; // the same in all languages
  assert.deepEqual(said.filter((text) => !names.includes(text)), []);
});

test("a translation has the values of its text", () => {
  const values = (text: string) => (text.match(/\{\w+\}/g) ?? []).sort();
  for (const [text, translation] of Object.entries(ZH)) {
    assert.deepEqual(values(translation), values(text), text);
  }
});
