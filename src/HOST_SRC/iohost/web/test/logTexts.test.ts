import assert from "node:assert/strict";
import { test } from "node:test";
import { HOST_LINES, LOG_TEXTS, translationOf } from "../src/logTexts.ts";
import { hostSources, lastArgument } from "./hostSources.ts";

/** What the module's sources log: their texts that begin with names or are Chinese. */
const formatsOfModule = () =>
  hostSources("../../PI_SRC/QORIOProcess").flatMap((source) =>
    [...source.matchAll(/L"((?:\[%s|[^"\n]*\p{Script=Han})[^"\n]*)"/gu)].map(([, text]) => text!),
  );

test("every line that the module can log has an English text, and no other has one", () => {
  const formats = new Set(formatsOfModule());
  assert.ok(formats.size > 30);
  assert.deepEqual([...formats].filter((format) => !(format in LOG_TEXTS)), []);
  assert.deepEqual(Object.keys(LOG_TEXTS).filter((format) => !formats.has(format)), []);
});

test("an English text has the values of its format, in their order", () => {
  for (const [format, text] of Object.entries(LOG_TEXTS)) {
    assert.equal(text.match(/%s/g)?.length, format.match(/%s/g)?.length, format);
    assert.doesNotMatch(text, /\p{Script=Han}/u);
    const values = ["Demo", "键 1", "a.[b]", "x"];
    const line = (form: string) => values.reduce((rest, value) => rest.replace("%s", () => value), form);
    assert.deepEqual(translationOf(line(format)), { language: "en", text: line(text) });
  }
});

/** The pieces of text that the host's lines are made of. */
function piecesOfHost(): string[] {
  const sources = hostSources("base", "session", "scene", "engine", "network", "fronts/page", "fronts/recording");
  const calls = sources.flatMap((source) =>
    [...source.matchAll(/(?:WriteHostLine|\w[lL]ine\.Write|\bline\.Write)\(/g)].map(({ 0: call, index }) =>
      lastArgument(source, index + call.length),
    ),
  );
  return calls.flatMap((call) => [...call.matchAll(/"([^"]*)"/g)].map(([, piece]) => piece!)).filter((piece) => /[a-z]/.test(piece));
}

test("every line that the host writes by itself has a Chinese text", () => {
  const pieces = piecesOfHost().filter((piece) => !piece.includes("times since the last line") && piece !== " (and ");
  assert.ok(pieces.length > 25);
  const formats = Object.keys(HOST_LINES).join("\n");
  assert.deepEqual(pieces.filter((piece) => !formats.includes(piece)), []);
});

test("what a line of the host names stands in its Chinese text, too", () => {
  for (const [format, text] of Object.entries(HOST_LINES)) {
    const values = ['3 "Wall"', "7", "a: b"];
    const line = (form: string) => values.reduce((rest, value) => rest.replace("%s", () => value), form);
    assert.deepEqual(translationOf(line(format)), { language: "zh", text: line(text) });
    assert.match(text, /\p{Script=Han}/u);
  }
});

test("a device's address is in brackets in a Chinese line", () => {
  const text = (line: string) => translationOf(line)?.text;
  assert.equal(text('device 3 "Wall" at 127.0.0.1:9000 is connected'), '设备 3 "Wall"（127.0.0.1:9000）已连接');
  assert.equal(
    text('device 3 "Wall" at 127.0.0.1:9000: the queue is full, the item is refused'),
    '设备 3 "Wall"（127.0.0.1:9000）：队列已满，内容已拒绝',
  );
  assert.equal(
    text('device 3 "Wall" at 127.0.0.1:9000 takes no texts: its parser is none'),
    '设备 3 "Wall"（127.0.0.1:9000）不接收文本：解析器为 none',
  );
});

test("a line of the host that stands for several says so, and faults are told as refusals are", () => {
  const text = (line: string) => translationOf(line)?.text;
  assert.equal(
    text("the unsaved scene can't be written aside: disk full (and 3 times since the last line)"),
    "无法另存未保存的场景：disk full（自上一行以来又有 3 次）",
  );
  assert.equal(text("the module raised bad_alloc"), "模块抛出异常 bad_alloc");
});

test("other lines have none", () => {
  assert.equal(translationOf("something else"), null);
  assert.equal(translationOf("[Demo.Mouse 1.Mouse]触发输出事件[停留]…"), null);
});
