import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { afterEach, test } from "node:test";
import { language } from "../src/i18n.ts";
import { REFUSALS, refusalText } from "../src/refusals.ts";
import { HOST, hostSources, lastArgument } from "./hostSources.ts";

const SOURCES = hostSources("protocol", "session", "scene", "engine", "network", "fronts/page");

/** What ends with a text that a request is refused with. */
const CALLS = /\b(Refuse|RefuseKind|CRefusal|CModuleFault|ErrorReply(?=\(")|return RefuseItem|UNION(?=\((?:Command|Payload),))\(/g;
/** Where texts stand that a call names. */
const CONSTANTS = ["base/SafeFile.h", "fronts/page/SceneFolder.cpp"];

/** The texts that an expression joins or chooses between, its values as %s. */
function formatsOf(expression: string): string[] {
  const literals = expression.replace(/std::string\((?=")/g, "").replaceAll("Description()", '"device " + text');
  const [, ...chosen] = /\?(.*) : (.*)/s.exec(literals) ?? ["", literals];
  return chosen.map((text) => [...text.matchAll(/"([^"]*)"|[^"]*\w[^"]*/g)].map(([, literal]) => literal ?? "%s").join(""));
}

const saysSomething = (format: string) => /\w/.test(format.replaceAll("%s", ""));

/** What the host's sources refuse requests with, and what names texts that stand elsewhere. */
function refusalsOfHost(): { formats: Set<string>; named: Set<string> } {
  const formats = new Set<string>();
  const named = new Set<string>();
  for (const source of SOURCES) {
    for (const { 0: call, 1: callee, index } of source.matchAll(CALLS)) {
      const argument = lastArgument(source, index + call.length);
      for (const format of formatsOf(argument)) {
        if (/^\w+$/.test(argument)) {
          named.add(argument);
        } else if (saysSomething(format)) {
          formats.add(callee === "RefuseKind" ? `must be ${format}` : callee === "UNION" ? `${format}%s` : format.replace(/^%s: /, ""));
        }
      }
    }
  }
  for (const name of CONSTANTS) {
    for (const [, text] of readFileSync(join(HOST, name), "utf8").matchAll(/constexpr char \w+\[\] = "(.*)";/g)) {
      formats.add(text!);
    }
  }
  formats.delete("must be %s"); // what RefuseKind makes of its kinds
  // Where another refusal is
  formats.delete("requests[%s].%s");
  formats.delete("%s.nodes[%s]: %s");
  return { formats, named };
}

afterEach(() => {
  language.value = "en";
});

test("every refusal of the host has a Chinese text, and no other text has one", () => {
  const { formats } = refusalsOfHost();
  assert.ok(formats.size > 60);
  assert.deepEqual(Object.keys(REFUSALS).sort(), [...formats].sort());
});

test("texts that a refusal takes from elsewhere are looked for there", () => {
  assert.deepEqual([...refusalsOfHost().named].sort(), ["OUTSIDE", "pszReason", "strProblem"]);
});

test("a Chinese text has the values of its format in their order, behind the field", () => {
  language.value = "zh";
  for (const [format, text] of Object.entries(REFUSALS)) {
    assert.equal(text.match(/%s/g)?.length, format.match(/%s/g)?.length, format);
    assert.match(text, /\p{Script=Han}/u);
    const values = ['"键: 1"', "7"];
    const line = (form: string) => values.reduce((rest, value) => rest.replace("%s", () => value), form);
    for (const field of ["", "requests[2].node: ", "int, float, string, choice: "]) {
      assert.equal(refusalText(field + line(format)), field + line(text));
    }
  }
});

test("an English page shows the host's own text, a Chinese one too where there is no other", () => {
  const refused = "file: no part of it may begin with a dot";
  assert.equal(refusalText(refused), refused);
  language.value = "zh";
  assert.equal(refusalText(refused), "file: 任何一级名称都不能以点开头");
  for (const text of ["broadcast: UDP 0.0.0.0:1: Address already in use", "未连接", "std::bad_alloc"]) {
    assert.equal(refusalText(text), text);
  }
});
