import assert from "node:assert/strict";
import { afterEach, beforeEach, mock, test } from "node:test";
import { Pace } from "../src/pace.ts";

let endPause: () => void;
let pauses: number[];

beforeEach(() => {
  pauses = [];
  mock.method(globalThis, "setTimeout", (action: () => void, time: number) => {
    pauses.push(time);
    endPause = action;
  });
});
afterEach(() => mock.restoreAll());

test("what comes alone is shown at once, what follows together and in order", () => {
  const shown: number[] = [];
  const pace = new Pace();
  const show = (value: number) => pace.show(() => shown.push(value));
  show(1);
  assert.deepEqual(shown, [1]);
  show(2);
  show(3);
  assert.deepEqual(shown, [1]);
  endPause();
  assert.deepEqual(shown, [1, 2, 3]);
  endPause();
  show(4);
  assert.deepEqual(shown, [1, 2, 3, 4]);
});

test("a change that is asked for while others are shown waits for the next time", () => {
  const shown: string[] = [];
  const pace = new Pace();
  pace.show(() => {
    shown.push("outer");
    pace.show(() => shown.push("inner"));
  });
  assert.deepEqual(shown, ["outer"]);
  endPause();
  assert.deepEqual(shown, ["outer", "inner"]);
});

test("what goes on is shown less often than what has just begun, until nothing comes", () => {
  const pace = new Pace();
  for (let round = 0; round < 5; ++round) {
    pace.show(() => {});
    if (round > 0) {
      endPause();
    }
  }
  assert.deepEqual(pauses, [100, 200, 333, 333, 333]);
  endPause();
  pace.show(() => {});
  assert.equal(pauses.at(-1), 100);
});
