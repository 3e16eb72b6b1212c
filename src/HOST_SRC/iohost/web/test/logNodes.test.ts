import assert from "node:assert/strict";
import { test } from "node:test";
import { nodeOfLine } from "../src/logNodes.ts";
import type { NodeDetails } from "../src/messages.ts";

const TEXT_FIELD = "{8164BB40-6B6A-4707-88B7-386BCB0D1B02}";
const details = { name: "String data send" } as NodeDetails;
const nodes = [
  { node: "k", type: "", clip: "Show", graph: "Keys", details },
  { node: "s", type: "", clip: "Show", graph: "Title", details },
  { node: "t", type: TEXT_FIELD, clip: "Show", graph: "Text", details },
  { node: "one", type: TEXT_FIELD, clip: "Two", graph: "Text", details },
  { node: "other", type: TEXT_FIELD, clip: "Two", graph: "Text", details },
];

test("a line leads to the node that it names: the module by its names, the host by its handle", () => {
  for (const [text, node] of [
    ["[Show.Title.String data send]触发事件", "s"],
    ["[Show.Lights.String data send]触发事件", null],
    ['[Show.Keys.String data send] the node "s"', "k"],
    ['the device 4 (Wall): 2 items sent by "s", "k" waited too long and are dropped', "s"],
    ['a broadcast of the node "k" was held back: listen-only is on', "k"],
    ['the device 1 (s): 1 item sent by a request waited too long and is dropped', null],
    ["[Show]触发输入事件[清除]", "t"],
    ["[Two]触发输入事件[清除]", null],
  ] as const) {
    assert.equal(nodeOfLine(text, nodes), node, text);
  }
});
