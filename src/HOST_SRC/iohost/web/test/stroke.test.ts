import assert from "node:assert/strict";
import { test } from "node:test";
import { explain, judgeKeyPoints, Stroke, type KeyPoints, type SampleKind, type StrokePoint } from "../src/input/stroke.ts";

type Pair = [number, number];
const point = ([x, y]: Pair): StrokePoint => ({ x, y });
const judge = (kind: SampleKind, ...points: [Pair, Pair, Pair]) =>
  judgeKeyPoints(points.map(point) as unknown as KeyPoints<StrokePoint>, kind);

/** A stroke with these samples, the first pressing and the last releasing. */
function stroke(kind: SampleKind, ...points: Pair[]): Stroke<StrokePoint> {
  const made = new Stroke(kind, point(points[0]!));
  for (const sample of points.slice(1, -1)) {
    made.move(point(sample));
  }
  made.release(point(points.at(-1)!));
  return made;
}

test("what three key points are", () => {
  const rows: [SampleKind, [Pair, Pair, Pair], object][] = [
    ["pixel", [[0, 0], [100, 0], [200, 0]], { is: "swipe", direction: "right", degrees: 0 }],
    ["pixel", [[200, 0], [100, 0], [0, 0]], { is: "swipe", direction: "left", degrees: 0 }],
    ["pixel", [[0, 0], [0, 100], [0, 200]], { is: "swipe", direction: "down", degrees: 0 }],
    ["pixel", [[0, 200], [0, 100], [0, 0]], { is: "swipe", direction: "up", degrees: 0 }],
    // The y of relative units grows upwards.
    ["relative", [[0, 0], [0, 100], [0, 200]], { is: "swipe", direction: "up", degrees: 0 }],
    ["relative", [[0, 200], [0, 100], [0, 0]], { is: "swipe", direction: "down", degrees: 0 }],
    ["relative", [[0, 0], [100, 0], [200, 0]], { is: "swipe", direction: "right", degrees: 0 }],
    // A detour that stays with its direction is no bend, and equal points add no direction.
    ["pixel", [[0, 0], [100, -60], [200, 0]], { is: "swipe", direction: "right", degrees: 0 }],
    ["pixel", [[0, 0], [0, 0], [200, 0]], { is: "swipe", direction: "right", degrees: 0 }],
    ["pixel", [[0, 0], [200, 0], [200, 0]], { is: "swipe", direction: "right", degrees: 0 }],
    ["pixel", [[5, 5], [5, 5], [5, 5]], { is: "closed" }],
    ["pixel", [[0, 0], [100, 0], [100, 150]], { is: "bent", first: "right", second: "down" }],
    ["pixel", [[0, 0], [100, 0], [20, 0]], { is: "bent", first: "right", second: "left" }],
  ];
  for (const [kind, points, judgement] of rows) {
    assert.deepEqual(judge(kind, ...points), judgement);
  }
});

test("30 degrees are too steep, a little less is a swipe; a diagonal counts as vertical", () => {
  // tan 30 degrees is 0.57735.
  assert.equal(judge("pixel", [0, 0], [5000, 2886], [10000, 5773]).is, "swipe");
  assert.equal(judge("pixel", [0, 0], [5000, 2887], [10000, 5774]).is, "steep");
  const { is, direction, degrees } = judge("pixel", [0, 0], [100, 100], [200, 200]) as { is: string; direction: string; degrees: number };
  assert.deepEqual([is, direction, Math.round(degrees)], ["steep", "down", 45]);
});

test("50 units on either axis make a drag, 49 don't", () => {
  assert.equal(stroke("pixel", [0, 0], [49, -49], [49, -49]).judge().is, "tap");
  assert.equal(stroke("pixel", [0, 0], [0, -50], [0, -50]).judge().is, "swipe");
  assert.equal(stroke("relative", [0.5, 0], [50.4, 0], [50.4, 0]).judge().is, "tap");
  assert.equal(stroke("relative", [0, 0], [50, 0], [50, 0]).judge().is, "swipe");
});

test("a drag that came back is still one", () => {
  assert.deepEqual(stroke("pixel", [0, 0], [80, 0], [0, 0]).judge(), { is: "bent", first: "right", second: "left" });
});

test("the release's sample counts as a point but makes no drag", () => {
  const made = stroke("pixel", [0, 0], [300, 0]);
  assert.equal(made.count, 2);
  assert.deepEqual(made.judge(), { is: "tap", farthest: 0 });
});

test("the key points are the first, the middle one and the last", () => {
  const made = stroke("pixel", [0, 0], [10, 0], [20, 0], [30, 0], [40, 0], [50, 0]);
  assert.deepEqual(made.keyPoints.map(({ x }) => x), [0, 30, 50]);
});

test("the newest part of a long stroke can be had by itself", () => {
  const made = stroke("pixel", ...Array.from({ length: 100 }, (_, index): Pair => [index, 0]));
  assert.deepEqual(made.newest(3).map(({ x }) => x), [97, 98, 99]);
  assert.equal(made.newest(1000).length, 100);
});

test("each judgement says why", () => {
  const texts: [SampleKind, Pair[], RegExp][] = [
    ["pixel", [[0, 0], [30, 0], [30, 0]], /too short for a drag: 30 of 50 units/],
    ["pixel", [[0, 0], [100, 0], [100, 150]], /bent: the first half goes right, the second down/],
    ["pixel", [[0, 0], [100, 100], [200, 200]], /too steep: 45\.0° off the axis/],
    ["pixel", [[0, 0], [100, 10], [200, 20]], /5\.7° off the axis, under 30°/],
  ];
  for (const [kind, points, text] of texts) {
    assert.match(explain(stroke(kind, ...points).judge()), text);
  }
});
