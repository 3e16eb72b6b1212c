import assert from "node:assert/strict";
import { test } from "node:test";
import { readGamepad } from "../src/vr/gamepad.ts";
import { Hand, padPoint, padZone } from "../src/vr/hand.ts";

const IDENTITY = [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1];
const hand = () => new Hand(1, IDENTITY, [0, 0, -3]);

test("a sample carries its hand, pose and hit point", () => {
  const { hand: side, pose, hit, trigger, pad } = hand().sample;
  assert.deepEqual([side, pose, hit, trigger, pad], [1, IDENTITY, [0, 0, -3], 0, 0]);
});

test("the trigger stamps its press and its release", () => {
  const made = hand();
  assert.equal(made.setTrigger(true, 1000.7), true);
  assert.equal(made.setTrigger(true, 1200), false);
  assert.deepEqual([made.sample.trigger, made.sample.press, made.sample.release], [1, 1000, 0]);
  assert.equal(made.setTrigger(false, 1499.2), true);
  assert.deepEqual([made.sample.trigger, made.sample.press, made.sample.release], [0, 1000, 1499]);
});

test("stamps stay in 32 bits", () => {
  const made = hand();
  made.setTrigger(true, 2 ** 32 + 5);
  assert.equal(made.sample.press, 5);
});

test("only changes are samples", () => {
  const made = hand();
  assert.equal(made.setPad(false, 0, 0), false);
  assert.equal(made.setPad(false, 0.5, 0), true);
  assert.equal(made.setPad(true, 0.5, 0), true);
  assert.equal(made.setPad(true, 0.5, 0), false);
  assert.equal(made.setPlace(IDENTITY, [0, 0, -3]), false);
  assert.equal(made.setPlace(IDENTITY, [1, 0, -3]), true);
});

test("a forced release keeps the place and the thumb", () => {
  const made = hand();
  made.setTrigger(true, 1);
  made.setPad(true, 0.75, 0.25);
  assert.equal(made.holds, true);
  made.forget();
  assert.equal(made.holds, false);
  assert.deepEqual([made.sample.padx, made.sample.pady], [0.75, 0.25]);
});

test("what a real controller still presses after a forced release is pressed once it was let go", () => {
  const made = hand();
  const read = (isDown: boolean) => {
    const { trigger, pad } = made.pressedBy({ trigger: isDown, pad: isDown, padX: 0, padY: 0 });
    return [made.setTrigger(trigger, 1), made.setPad(pad, 0, 0), made.holds];
  };
  assert.deepEqual([read(true), read(true)], [[true, true, true], [false, false, true]]);
  made.forget();
  assert.deepEqual([read(true), read(false)], [[false, false, false], [false, false, false]]);
  assert.deepEqual([read(true), read(false)], [[true, true, true], [true, true, false]]);
});

test("the pad's zones are the node's clicks", () => {
  const zones: [number, number, string | null][] = [
    [0.8, 0.2, "right"],
    [-0.8, 0.2, "left"],
    [0.2, 0.9, "top"],
    [0.2, -0.9, "bottom"],
    [0.1, 0.1, "centre"],
    [0.7, 0.7, null],
    [0.5, 0, null],
    [0, -0.5, null],
  ];
  for (const [x, y, zone] of zones) {
    assert.equal(padZone(x, y), zone, `${x}, ${y}`);
  }
});

test("the thumb stays on the round pad", () => {
  assert.deepEqual(padPoint(0.25, -0.5), { x: 0.25, y: -0.5 });
  assert.deepEqual(padPoint(3, 4), { x: 0.6, y: 0.8 });
  assert.deepEqual(padPoint(0, -9), { x: 0, y: -1 });
});

const buttons = (...pressed: number[]) => Array.from({ length: 6 }, (_, index) => ({ pressed: pressed.includes(index) }));

test("a real controller's trigger and pad are read, up being away from the wrist; without a pad the thumbstick is one", () => {
  const rows: [number[], (number | null)[], boolean, boolean, number, number][] = [
    [[0, 2], [0.5, -0.25], true, true, 0.5, 0.25],
    [[3], [0, 0, 0, 1], false, true, 0, -1],
    [[3], [null, null, 0.5, 0], false, true, 0.5, 0], // a part that it lacks may have no number in its place
  ];
  for (const [pressed, axes, trigger, pad, padX, padY] of rows) {
    assert.deepEqual(readGamepad({ buttons: buttons(...pressed), axes }), { trigger, pad, padX, padY });
  }
  assert.deepEqual(readGamepad({ buttons: [], axes: [] }), { trigger: false, pad: false, padX: 0, padY: 0 });
});
