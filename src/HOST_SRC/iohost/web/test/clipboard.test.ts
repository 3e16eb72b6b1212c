import assert from "node:assert/strict";
import { test } from "node:test";
import { copyOf, keepClipping, pasteOf, readClipping } from "../src/graph/clipboard.ts";
import type { NodeView } from "../src/host.ts";
import type { Param } from "../src/messages.ts";

const TEXT = { type: 1, control: 6 };
const SWITCH = { type: 5, control: 5 };
const EVENT = { type: 26, control: 7 };

function param(id: number, kind: { type: number; control: number }, value: Partial<Param> = {}): Param {
  return { id, name: "", display: "", ...kind, int: 0, float: 0, string: "", choices: [], available: 1, range: null, ...value };
}

function node(handle: string, graph: string, inputs: Param[]): NodeView {
  const groups = [{ id: 1, name: "", display: "", params: inputs }];
  const details = { type: "T", name: "Type", own: groups, inputs: groups, outputs: [] };
  return { node: handle, type: "T", clip: "Show", graph, name: "Type", details };
}

const nodes = [
  node("k 1", "Keyboard 1", [param(2, SWITCH, { int: 1 })]),
  node("t 1", "Title", [param(202, TEXT, { string: "fed" }), param(203, EVENT), param(205, TEXT, { string: "own" })]),
];
const links = [
  { from: "k 1", output: 154, to: "t 1", input: 202 },
  { from: "other", output: 1, to: "t 1", input: 203 },
];
const placeOf = (handle: string) => ({ x: handle === "k 1" ? 10.4 : 299.6, y: 20 }); // as while they are dragged

test("copied nodes are made anew under free names, with their values, the links among them, and a little aside on whole pixels", () => {
  const { changes, handles } = pasteOf(copyOf(nodes, links, [], placeOf), nodes, 5);
  assert.deepEqual(handles, ["k 2", "t 2"]);
  assert.deepEqual(changes, [
    { op: "create", node: "k 2", type: "T", clip: "Show", graph: "Keyboard 2" },
    { op: "edit", node: "k 2", param: 2, int: 1 },
    { op: "create", node: "t 2", type: "T", clip: "Show", graph: "Title 1" },
    { op: "edit", node: "t 2", param: 205, string: "own" },
    { op: "link", from: "k 2", output: 154, to: "t 2", input: 202 },
    { op: "place", nodes: { "k 2": { x: 15, y: 25 }, "t 2": { x: 305, y: 25 } } },
  ]);
});

test("inputs whose texts were cut are left out and counted, but those that are linked", () => {
  const cut = [param(202, TEXT, { length: 70_000 }), param(205, TEXT, { length: 70_000 })];
  const { nodes: copied, leftOut } = copyOf([node("t 1", "Title", cut)], links, [], placeOf);
  assert.deepEqual([copied[0]!.values, leftOut], [{}, 1]);
});

test("two of one name get names of their own", () => {
  const twins = [node("a", "Same", []), node("b", "Same", [])];
  const { changes } = pasteOf(copyOf(twins, [], [], placeOf), [], 0);
  assert.deepEqual(changes.flatMap((change) => (change.op === "create" ? [change.graph] : [])), ["Same 1", "Same 2"]);
});

test("copied notes are made anew under ids of their own, a little aside", () => {
  const note = { x: 1, y: 2, width: 200, height: 100, text: "here" };
  const { changes, noteIds } = pasteOf(copyOf([], [], [note, note], placeOf), nodes, 5);
  const moved = { ...note, x: 6, y: 7 };
  assert.deepEqual(changes, [{ op: "place", notes: { [noteIds[0]!]: moved, [noteIds[1]!]: moved } }]);
  assert.equal(new Set(noteIds).size, 2);
});

test("notes whose texts were cut are left out and counted", () => {
  const note = { x: 1, y: 2, width: 200, height: 100, text: "here" };
  const { notes, leftOut } = copyOf([], [], [note, { ...note, length: 70_000 }], placeOf);
  assert.deepEqual([notes, leftOut], [[note], 1]);
});

test("what the browser doesn't keep can be pasted on the page that copied it, until it keeps a later copy", () => {
  let kept: string | null = null;
  const full = { setItem: () => { throw new DOMException("", "QuotaExceededError"); }, getItem: () => kept };
  const storage = { setItem: (_: string, text: string) => (kept = text), getItem: () => kept };
  const copy = (text: string) => copyOf([], [], [{ x: 0, y: 0, width: 1, height: 1, text }], placeOf);
  assert.equal(readClipping(storage), null);
  assert.equal(keepClipping(storage, copy("first")), true);
  assert.equal(keepClipping(full, copy("second")), false);
  assert.equal(readClipping(full)?.notes[0]?.text, "second");
  assert.equal(keepClipping(storage, copy("third")), true);
  assert.equal(readClipping(storage)?.notes[0]?.text, "third");
});
