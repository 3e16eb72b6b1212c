import assert from "node:assert/strict";
import { test } from "node:test";
import { filterLog, levelName, LOG_LIMIT, LogBuffer } from "../src/log.ts";

test("lines are numbered in the order they came", () => {
  const log = new LogBuffer();
  log.append([{ level: 4, text: "one" }, { level: 32, text: "two" }], 5);
  assert.deepEqual(log.lines, [
    { number: 1, time: 5, level: 4, text: "one" },
    { number: 2, time: 5, level: 32, text: "two" },
  ]);
});

test("only the newest lines are kept", () => {
  const log = new LogBuffer();
  for (let index = 0; index < LOG_LIMIT + 5; ++index) {
    log.append([{ level: 4, text: String(index) }], 0);
  }
  assert.equal(log.lines.length, LOG_LIMIT);
  assert.equal(log.lines[0]?.text, "5");
  assert.equal(log.count, LOG_LIMIT + 5);
});

test("of long lines the beginning is kept, and how long they were", () => {
  const log = new LogBuffer();
  log.append([{ level: 4, text: "x".repeat(5000) }, { level: 4, text: "y", length: 70000 }], 0);
  assert.ok(log.lines[0]!.text.length < 5000);
  assert.deepEqual(log.lines.map(({ length }) => length), [5000, 70000]);
});

test("cleared lines are gone and the numbers go on", () => {
  const log = new LogBuffer();
  log.append([{ level: 4, text: "one" }], 0);
  log.clear();
  assert.equal(log.lines.length, 0);
  log.append([{ level: 4, text: "two" }], 0);
  assert.equal(log.lines[0]?.number, 2);
});

test("the filter takes the level and the text together, whatever the case", () => {
  const lines = [
    { number: 1, time: 0, level: 4, text: "[Demo.Mouse 1.Mouse] pressed" },
    { number: 2, time: 0, level: 32, text: "[Demo.Mouse 1.Mouse] broken" },
    { number: 3, time: 0, level: 4, text: "[Demo.Keyboard 1.Keyboard] pressed" },
  ];
  const numbers = (level: number | null, search: string) => filterLog(lines, level, search).map((line) => line.number);
  assert.deepEqual(numbers(null, ""), [1, 2, 3]);
  assert.deepEqual(numbers(4, ""), [1, 3]);
  assert.deepEqual(numbers(32, ""), [2]);
  assert.deepEqual(numbers(null, " MOUSE "), [1, 2]);
  assert.deepEqual(numbers(4, "mouse"), [1]);
  assert.deepEqual(numbers(32, "keyboard"), []);
});

test("a line of the module is found by what it says in either language", () => {
  const log = new LogBuffer();
  log.append([{ level: 4, text: "[Demo.Mouse 1.Mouse]触发输出事件[停留]" }], 0);
  for (const search of ["停留", "fired [hover]", "mouse 1"]) {
    assert.equal(filterLog(log.lines, null, search).length, 1, search);
  }
  assert.equal(filterLog(log.lines, null, "released").length, 0);
});

test("levels without a name of their own show their number", () => {
  assert.equal(levelName(4), "info");
  assert.equal(levelName(32), "error");
  assert.equal(levelName(8), "level 8");
});
