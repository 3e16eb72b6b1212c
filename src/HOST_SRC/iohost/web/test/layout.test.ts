import assert from "node:assert/strict";
import { test } from "node:test";
import { arrange, arrangeWithNotes, AutomaticPlaces, type Box, type Place } from "../src/graph/layout.ts";
import type { NodeView } from "../src/host.ts";

const box = (id: string): Box => ({ id, width: 300, height: 100 });
const link = (from: string, to: string) => ({ from, output: 1, to, input: 2 });
const at = (places: Map<string, Place>, id: string) => places.get(id)!;

test("what is fed stands to the right of what feeds it, also where links go round", () => {
  const places = arrange([box("c"), box("b"), box("a")], [link("a", "b"), link("b", "c")]);
  assert.ok(at(places, "a").x + 300 < at(places, "b").x);
  assert.ok(at(places, "b").x + 300 < at(places, "c").x);
  assert.equal(arrange([box("a"), box("b")], [link("a", "b"), link("b", "a")]).size, 2);
});

test("no two boxes cover each other, with links and without", () => {
  const ids = Array.from({ length: 60 }, (_, index) => `n${index}`);
  const links = Array.from({ length: 20 }, (_, index) => link(`n${index}`, `n${(index * 7 + 1) % 30}`));
  const places = [...arrange(ids.map(box), links).values()];
  assert.equal(places.length, 60);
  for (const [index, one] of places.entries()) {
    for (const other of places.slice(index + 1)) {
      assert.ok(Math.abs(one.x - other.x) >= 300 || Math.abs(one.y - other.y) >= 100, `${JSON.stringify([one, other])}`);
    }
  }
});

test("a face that grows by a line, as high as its counters, stays apart from the one below", () => {
  const LINE = 22;
  const [one, other] = [...arrange(["a", "b", "c"].map(box), [link("a", "c"), link("b", "c")]).values()];
  assert.ok(Math.abs(one!.y - other!.y) > 100 + LINE);
});

test("boxes of the same sizes, linked alike, stand to each other alike; others don't", () => {
  const ids = (block: string) => ["a", "b", "c"].map((id) => block + id);
  const boxes = ["1", "2", "3"].flatMap(ids).map((id) => ({ ...box(id), height: id === "3b" ? 300 : 100 }));
  const links = ["1", "2", "3"].flatMap((block) => [link(`${block}a`, `${block}b`), link(`${block}a`, `${block}c`)]);
  const places = arrange([...boxes, box("alone")], links);
  const standing = (block: string) => {
    const { x, y } = at(places, `${block}a`);
    return ids(block).map((id) => [at(places, id).x - x, at(places, id).y - y]);
  };
  assert.deepEqual(standing("1"), standing("2"));
  assert.notDeepEqual(standing("1"), standing("3"));
  assert.equal(new Set([...places.values()].map((place) => JSON.stringify(place))).size, 10);
});

test("a note goes with the node that is nearest to it, below what covers it; all stand apart then, and so they stay", () => {
  const node = (id: string, x: number, y: number) => ({ ...box(id), x, y });
  const note = (id: string, x: number, y: number) => ({ id, x, y, width: 200, height: 90 });
  const nodes = [node("a", 0, 0), node("b", 0, 260), node("c", 0, 560), node("d", -2000, 0)];
  const notes = [
    note("right of a", 380, 0),
    note("above c", 0, 455),
    note("behind b", 20, 265),
    note("behind b, too", 30, 265),
    note("far", 3000, 2000),
  ];
  const links = [link("a", "d"), link("a", "b"), link("b", "c")]; // d comes below b's notes
  const places = arrangeWithNotes(nodes, notes, links);
  const from = (id: string, other: string) => [at(places, id).x - at(places, other).x, at(places, id).y - at(places, other).y];
  assert.deepEqual(from("right of a", "a"), [320, 0]);
  assert.deepEqual(from("above c", "c"), [0, -105]);
  assert.deepEqual(from("behind b", "b"), [20, 120]);
  assert.deepEqual(from("behind b, too", "b"), [30, 230]);
  assert.deepEqual(from("far", "c"), [320, 120]);
  assert.ok(from("d", "behind b, too")[1]! > 0);
  const [arranged, arrangedNotes] = [nodes, notes].map((all) => all.map((one) => ({ ...one, ...at(places, one.id) })));
  const all = [...arranged!, ...arrangedNotes!];
  for (const [index, one] of all.entries()) {
    for (const other of all.slice(index + 1)) {
      const isBeside = one.x >= other.x + other.width || other.x >= one.x + one.width;
      assert.ok(isBeside || one.y >= other.y + other.height || other.y >= one.y + one.height, `${JSON.stringify([one, other])}`);
    }
  }
  assert.deepEqual(arrangeWithNotes(arranged!, arrangedNotes!, links), places);
  assert.deepEqual(arrangeWithNotes(nodes, [], links), arrange(nodes, links));
  assert.equal(arrangeWithNotes([], notes, []).size, 0);
});

test("an empty scene has no places", () => {
  assert.equal(arrange([], []).size, 0);
});

test("nodes stand where they belong whatever their handles are", () => {
  const places = arrange(["constructor", "__proto__", 'a "b'].map(box), [link("constructor", "__proto__"), link("__proto__", 'a "b')]);
  assert.ok(at(places, "constructor").x + 300 < at(places, "__proto__").x);
  assert.ok(at(places, "__proto__").x + 300 < at(places, 'a "b').x);
});

test("nodes that all have a place aren't arranged: there they stay when it's taken back, and others come below, where they come back", () => {
  const node = (handle: string, place?: Place) => ({ node: handle, place, details: { inputs: [], outputs: [] } }) as unknown as NodeView;
  const automatic = new AutomaticPlaces();
  automatic.follow([node("a", { x: 500, y: 7 }), node("b", { x: 0, y: 900 })], []);
  automatic.follow([node("a"), node("b", { x: 0, y: 900 }), node("c")], []);
  assert.deepEqual(automatic.of("a"), { x: 500, y: 7 });
  const below = automatic.of("c");
  assert.ok(below.y > 900);
  automatic.follow([node("a"), node("b")], []);
  automatic.follow([node("c"), node("a"), node("b")], []);
  assert.deepEqual(automatic.of("c"), below);
});
