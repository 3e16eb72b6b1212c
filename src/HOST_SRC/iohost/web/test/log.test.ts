import assert from "node:assert/strict";
import { test } from "node:test";
import { levelName, LOG_LIMIT, LogBuffer, LogSearch } from "../src/log.ts";
import { Tail } from "../src/tail.ts";

const numbersOf = (lines: LogBuffer["lines"]) => lines.slice().map(({ number }) => number);

test("lines are numbered in the order they came", () => {
  const log = new LogBuffer();
  log.append([{ level: 4, text: "one" }, { level: 32, text: "two" }], 5);
  assert.deepEqual(
    log.lines.slice().map(({ number, time, level, text }) => [number, time, level, text]),
    [
      [1, 5, 4, "one"],
      [2, 5, 32, "two"],
    ],
  );
});

test("only the newest lines are kept, as many as the host keeps", () => {
  const log = new LogBuffer();
  for (let index = 0; index < 3 * LOG_LIMIT; ++index) {
    log.append([{ level: 4, text: String(index) }], 0);
  }
  assert.equal(LOG_LIMIT, 10_000);
  assert.equal(log.lines.length, LOG_LIMIT);
  assert.equal(log.lines.at(0)?.text, String(2 * LOG_LIMIT));
  assert.equal(log.count, 3 * LOG_LIMIT);
});

test("what goes from the front and comes at the end leaves the others as they are", () => {
  const tail = new Tail([0]);
  for (let next = 1; next < 1000; ++next) {
    tail.push(next);
    if (tail.length > 7) {
      tail.shift();
    }
    assert.deepEqual(tail.slice(), Array.from({ length: Math.min(next + 1, 7) }, (_, index) => Math.max(0, next - 6) + index));
    assert.equal(tail.at(tail.length - 1), next);
    assert.equal(tail.at(tail.length), undefined);
    assert.equal(tail.at(-1), undefined);
  }
});

test("of long lines the beginning is kept, and how long they were", () => {
  const log = new LogBuffer();
  log.append([{ level: 4, text: "x".repeat(5000) }, { level: 4, text: "y", length: 70000 }], 0);
  assert.ok(log.lines.at(0)!.text.length < 5000);
  assert.deepEqual(log.lines.slice().map(({ cut }) => cut.length), [5000, 70000]);
});

test("cleared lines are gone and the numbers go on", () => {
  const log = new LogBuffer();
  log.append([{ level: 4, text: "one" }], 0);
  log.clear();
  assert.equal(log.lines.length, 0);
  log.append([{ level: 4, text: "two" }], 0);
  assert.equal(log.lines.at(0)?.number, 2);
});

test("the search takes the level and the text together, whatever the case", () => {
  const log = new LogBuffer();
  log.append(
    [
      { level: 4, text: "[Demo.Mouse 1.Mouse] pressed" },
      { level: 32, text: "[Demo.Mouse 1.Mouse] broken" },
      { level: 4, text: "[Demo.Keyboard 1.Keyboard] pressed" },
    ],
    0,
  );
  const numbers = (level: number | null, search: string) => numbersOf(new LogSearch(level, search).in(log.lines));
  assert.deepEqual(numbers(null, ""), [1, 2, 3]);
  assert.deepEqual(numbers(4, ""), [1, 3]);
  assert.deepEqual(numbers(32, ""), [2]);
  assert.deepEqual(numbers(null, " MOUSE "), [1, 2]);
  assert.deepEqual(numbers(4, "mouse"), [1]);
  assert.deepEqual(numbers(32, "keyboard"), []);
});

test("a search goes on with the lines that come, and lets go of those that go", () => {
  const log = new LogBuffer();
  const search = new LogSearch(null, "even");
  const append = (count: number) => {
    for (let index = 0; index < count; ++index) {
      log.append([{ level: 4, text: log.count % 2 === 0 ? "odd" : "even" }], 0); // by the number that it gets
    }
  };
  append(5);
  assert.deepEqual(numbersOf(search.in(log.lines)), [2, 4]);
  append(LOG_LIMIT);
  const found = numbersOf(search.in(log.lines));
  assert.equal(found.length, LOG_LIMIT / 2);
  assert.deepEqual([found[0], found.at(-1)], [6, LOG_LIMIT + 4]);
  log.read([{ n: 1, ms: 0, level: 4, text: "even" }, { n: 2, ms: 0, level: 4, text: "odd" }]);
  assert.deepEqual(numbersOf(search.in(log.lines)), [1]);
  log.clear();
  append(2);
  assert.deepEqual(numbersOf(search.in(log.lines)), [4]);
});

test("a line of the module is found by what it says in either language", () => {
  const log = new LogBuffer();
  log.append([{ level: 4, text: "[Demo.Mouse 1.Mouse]触发输出事件[停留]" }], 0);
  for (const search of ["停留", "fired [hover]", "mouse 1"]) {
    assert.equal(new LogSearch(null, search).in(log.lines).length, 1, search);
  }
  assert.equal(new LogSearch(null, "released").in(log.lines).length, 0);
});

test("levels without a name of their own show their number", () => {
  assert.equal(levelName(4), "info");
  assert.equal(levelName(32), "error");
  assert.equal(levelName(8), "level 8");
});
