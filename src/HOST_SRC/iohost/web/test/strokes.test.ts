import assert from "node:assert/strict";
import { beforeEach, test } from "node:test";
import { Strokes, type GestureNode, type StrokeView } from "../src/input/strokes.ts";
import type { EventReply, PointerPayload } from "../src/messages.ts";

const DOWN = 3005;
const UP = 3006;
const MOVE = 3013;
const GESTURE: GestureNode = {
  node: "g",
  outputs: new Map([
    [753, "Drag end"],
    [755, "Swipe right"],
  ]),
};

let nodes: GestureNode[];
let views: readonly StrokeView[];
let strokes: Strokes;

beforeEach(() => {
  nodes = [GESTURE];
  views = [];
  strokes = new Strokes(
    () => nodes,
    (now) => (views = now),
  );
});

const at = (x: number, y: number, pointer = 1, relative: 0 | 1 = 0): PointerPayload => ({
  is: "pointer",
  rx: x * 2,
  ry: y * 2,
  x,
  y,
  pointer,
  relative,
});
const answer = (result: number, outputs: number[] = [], node = "g"): Promise<EventReply> =>
  Promise.resolve({
    ok: true,
    results: { g: result },
    posted: outputs.map((output) => ({ node, output, via: "window" as const })),
  });
const settled = () => new Promise((resolve) => setImmediate(resolve));

async function drag(reply: Promise<EventReply>, pressed = answer(1)): Promise<StrokeView> {
  strokes.follow(DOWN, at(0, 0), pressed);
  strokes.follow(MOVE, at(60, 0), null);
  strokes.follow(MOVE, at(120, 0), null);
  strokes.follow(UP, at(120, 0), reply);
  await settled();
  return views[0]!;
}

test("a stroke that no node follows says so", async () => {
  const view = await drag(answer(0), answer(0));
  assert.equal(view.followed, false);
  assert.match(view.verdict!.reason, /is off, or follows another pointer/);
  nodes = [];
  assert.match((await drag(answer(0))).verdict!.reason, /no touch gesture node/);
});

test("what the host refused is told", async () => {
  const view = await drag(Promise.resolve({ ok: false, error: "not connected" }));
  assert.deepEqual(view.verdict, { fired: [], reason: "not connected" });
});

test("each pointer has its stroke", () => {
  strokes.follow(DOWN, at(0, 0, 1), null);
  strokes.follow(DOWN, at(10, 0, 2), null);
  strokes.follow(MOVE, at(60, 0, 2), null);
  strokes.follow(MOVE, at(5, 5, 0), null);
  assert.deepEqual(views.map(({ pointer, stroke }) => [pointer, stroke.count]), [[1, 1], [2, 2]]);
});

test("a stroke that ended stays to be looked at until the next press", () => {
  strokes.follow(DOWN, at(0, 0), null);
  strokes.follow(UP, at(0, 0), null);
  assert.equal(views.length, 1);
  strokes.follow(UP, at(0, 0), null);
  assert.equal(views.length, 1);
  strokes.follow(DOWN, at(0, 0), null);
  assert.equal(views.length, 1);
  assert.equal(views[0]!.stroke.count, 1);
});

test("relative samples are reckoned in their units and drawn in pixels", () => {
  strokes.follow(DOWN, at(10, 20, 1, 1), null);
  const { stroke } = views[0]!;
  assert.equal(stroke.kind, "relative");
  assert.deepEqual(stroke.keyPoints[0], { x: 20, y: 40, px: 10, py: 20 });
});

test("strokes that are let go by force are dropped, one or all", () => {
  strokes.follow(DOWN, at(0, 0, 1), null);
  strokes.follow(DOWN, at(0, 0, 2), null);
  strokes.drop(1);
  assert.deepEqual(views.map(({ pointer }) => pointer), [2]);
  strokes.drop();
  assert.deepEqual(views, []);
});
