import assert from "node:assert/strict";
import { test } from "node:test";
import { iconOf } from "../src/icons.ts";

const guid = (last: string) => `{8164BB40-6B6A-4707-88B7-386BCB0D1B${last}}`;

test("each node type has its own icon", () => {
  const types = ["01", "02", "03", "04", "05", "06", "07", "08", "0B", "0C", "0D", "0E", "0F"];
  const icons = types.map((last) => iconOf(guid(last)));
  assert.ok(icons.every((icon) => icon !== null));
  assert.equal(new Set(icons).size, types.length);
  assert.match(iconOf(guid("03"))!, /mouse/);
  assert.equal(iconOf(guid("0b")), iconOf(guid("0B")));
});

test("an unknown type has none", () => {
  assert.equal(iconOf(guid("09")), null);
  assert.equal(iconOf("{00000000-6B6A-4707-88B7-386BCB0D1B03}"), null);
  assert.equal(iconOf(""), null);
});
