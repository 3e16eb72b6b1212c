import assert from "node:assert/strict";
import { test } from "node:test";
import { reconnectDelay } from "../src/backoff.ts";

test("attempts grow rarer and never rarer than every eight seconds", () => {
  assert.deepEqual([0, 1, 2, 3, 4, 5, 1000].map(reconnectDelay), [500, 1000, 2000, 4000, 8000, 8000, 8000]);
});
