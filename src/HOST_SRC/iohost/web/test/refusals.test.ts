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

test("a Chinese text has the values of its format in their order, with a field or without", () => {
  language.value = "zh";
  for (const [format, text] of Object.entries(REFUSALS)) {
    assert.equal(text.match(/%s/g)?.length, format.match(/%s/g)?.length, format);
    assert.match(text, /\p{Script=Han}/u);
    const values = ['"键: 1"', "7"];
    const line = (form: string) => values.reduce((rest, value) => rest.replace("%s", () => value), form);
    assert.equal(refusalText(line(format)), line(text));
    for (const field of ["requests[2].node", "int, float, string, choice"]) {
      assert.ok([line(text), `${field}：${line(text)}`].includes(refusalText(`${field}: ${line(format)}`)), format);
    }
  }
});

test("a refusal that says by itself what it's about goes without the field, another one with the page's label", () => {
  for (const [refusal, english, chinese] of [
    ["op: there is nothing to undo", "There is nothing to undo", "没有可撤销的步骤"],
    ["device: there is a device 1 already", "There is a device 1 already", "已有设备 1"],
    ["requests[1].type: the module makes no such node", "The module makes no such node", "模块不创建此类型的节点"],
    ["requests[0]: the module raised E: 7", "The module raised E: 7", "模块抛出异常 E: 7"],
    ["notes.note 1.length: there is no note whose text could stay", "The note is gone", "便签已不存在"],
    ["to: the scene has no such state there", "The scene has no such state any more", "场景已没有这个状态"],
    ['address: "a: 1" isn\'t a port', '"a: 1" isn\'t a port', '"a: 1" 不是端口号'],
    ["file: no part of it may begin with a dot", "File: no part of it may begin with a dot", "文件：任何一级名称都不能以点开头"],
    ["scene: not JSON, from byte 7 on", "File: not JSON, from byte 7 on", "文件：从第 7 字节起不是 JSON"],
    [
      "device: is outside the unsigned 32-bit range",
      "Number is outside the unsigned 32-bit range",
      "编号：超出无符号 32 位整数的范围",
    ],
    [
      "payload.device: is outside the signed 32-bit range",
      "Device number is outside the signed 32-bit range",
      "设备编号：超出有符号 32 位整数的范围",
    ],
    [
      "drop_after: must be from 0.001 to 86400 seconds",
      "Drop after (s) must be from 0.001 to 86400 seconds",
      "丢弃时限（秒）：必须在 0.001 到 86400 秒之间",
    ],
    ["text: is empty", "Test text is empty", "测试文本：不能为空"],
    [
      "float: is outside the range of a 32-bit float",
      "Value is outside the range of a 32-bit float",
      "值：超出 32 位浮点数的范围",
    ],
    [
      "requests[0].int: is outside the signed 32-bit range",
      "Value is outside the signed 32-bit range",
      "值：超出有符号 32 位整数的范围",
    ],
  ] as const) {
    language.value = "en";
    assert.equal(refusalText(refusal), english);
    language.value = "zh";
    assert.equal(refusalText(refusal), chinese);
  }
});

test("a refusal of a scene's file tells the place in it, and what the page has no label for stays", () => {
  const place = "scene.nodes[2].type";
  assert.equal(refusalText('file.links[0].from: there is no node "a"'), 'file.links[0].from: there is no node "a"');
  assert.equal(refusalText(`${place}: is missing`), `${place} is missing`);
  assert.equal(refusalText("graph: must be a string"), "graph must be a string");
  language.value = "zh";
  assert.equal(refusalText(`${place}: is missing`), `${place}：缺少此项`);
});

test("a refusal with no Chinese text is shown as the host wrote it", () => {
  for (const shown of ["en", "zh"] as const) {
    language.value = shown;
    for (const text of ["broadcast: UDP 0.0.0.0:1: Address already in use", "未连接", "std::bad_alloc"]) {
      assert.equal(refusalText(text), text);
    }
  }
});
