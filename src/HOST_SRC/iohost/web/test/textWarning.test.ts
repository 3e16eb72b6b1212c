import assert from "node:assert/strict";
import { test } from "node:test";
import { textWarning } from "../src/textWarning.ts";
import type { NodeView } from "../src/host.ts";
import type { Param } from "../src/messages.ts";
import { NodeType } from "../src/nodeTypes.ts";

function stringSend(toDevice: number, device: number, type: string = NodeType.stringSend): NodeView {
  const params = [{ id: 1502, int: toDevice }, { id: 1503, int: device }];
  const details = { inputs: [{ params }], own: [], outputs: [] };
  return { type: `{8164BB40-6B6A-4707-88B7-386BCB0D1B${type}}`, details } as unknown as NodeView;
}

const asIs = (input: Param) => input;
const devices = [
  { id: 1, parser: "framed" },
  { id: 2, parser: "direct" },
  { id: 3, parser: "json" },
] as const;

test("a device that takes no texts is told, and so is one that isn't there", () => {
  assert.equal(textWarning(stringSend(1, 1), devices, asIs), "Device 1 takes no texts (framed).");
  assert.equal(textWarning(stringSend(1, 9), devices, asIs), "There is no device 9.");
});

test("where the device comes by a link, what the link brings counts", () => {
  const fed = (input: Param) => (input.id === 1503 ? { ...input, int: 1 } : input);
  assert.equal(textWarning(stringSend(1, 2), devices, fed), "Device 1 takes no texts (framed).");
});

test("texts for all reach no one where no device takes any", () => {
  assert.equal(textWarning(stringSend(0, 9), devices.slice(0, 1), asIs), "No device takes texts.");
  assert.equal(textWarning(stringSend(0, 9), [], asIs), "No device takes texts.");
});

test("nothing is told of devices that take texts, of texts for all that one takes, of devices not known yet, and of other nodes", () => {
  assert.equal(textWarning(stringSend(1, 2), devices, asIs), null);
  assert.equal(textWarning(stringSend(1, 3), devices, asIs), null);
  assert.equal(textWarning(stringSend(0, 9), devices, asIs), null);
  assert.equal(textWarning(stringSend(0, 9), null, asIs), null);
  assert.equal(textWarning(stringSend(1, 9), null, asIs), null);
  assert.equal(textWarning(stringSend(1, 1, NodeType.keyboard), devices, asIs), null);
});
