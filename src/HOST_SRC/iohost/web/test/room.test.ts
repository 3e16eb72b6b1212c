import assert from "node:assert/strict";
import { test } from "node:test";
import { Ray, Vector3 } from "three";
import { firstPose, hitOf, movedTo, placeOf, poseAt, wallHit } from "../src/vr/room.ts";

function near(actual: readonly number[], expected: readonly number[]): void {
  assert.equal(actual.length, expected.length);
  actual.forEach((value, index) => assert.ok(Math.abs(value - expected[index]!) < 1e-6, `${actual} is not ${expected}`));
}

test("a pose has its place in the elements 12 to 14 and points along its own -z", () => {
  const pose = poseAt(new Vector3(1, 1.5, 0), new Vector3(1, 1.5, -3));
  assert.equal(pose.length, 16);
  near(pose, [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 1.5, 0, 1]);
});

test("the ray hits the wall that it's pointed at", () => {
  near(hitOf(poseAt(new Vector3(0, 1, 0), new Vector3(1, 2, -3))), [1, 2, -3]);
  near(hitOf(poseAt(new Vector3(0, 1, 0), new Vector3(0.5, 0, 0.5))), [0.5, 0, 0.5]);
  near(hitOf(poseAt(new Vector3(0, 1, 0), new Vector3(0, 1, 1))), [0, 1, 3]);
});

test("pointing on beyond a thing hits the wall behind it", () => {
  near(hitOf(poseAt(new Vector3(0, 1, 1), new Vector3(0, 1, 0))), [0, 1, -3]);
});

test("straight up and down are directions too", () => {
  near(hitOf(poseAt(new Vector3(1, 1, 1), new Vector3(1, 3, 1))), [1, 3, 1]);
  near(hitOf(poseAt(new Vector3(1, 1, 1), new Vector3(1, 0, 1))), [1, 0, 1]);
});

test("moving keeps the direction and stays in the room", () => {
  const pose = poseAt(new Vector3(0, 1, 0), new Vector3(0, 1, -3));
  const moved = movedTo(pose, new Vector3(9, 2, -1));
  near(placeOf(moved).toArray(), [3, 2, -1]);
  near(hitOf(moved), [3, 2, -3]);
});

test("from outside a ray hits the far wall, and none when it misses the room", () => {
  near(wallHit(new Ray(new Vector3(0, 1, 9), new Vector3(0, 0, -1)))!.toArray(), [0, 1, -3]);
  assert.equal(wallHit(new Ray(new Vector3(0, 9, 9), new Vector3(0, 0, -1))), null);
});

test("the hands begin beside each other, left and right", () => {
  assert.ok(placeOf(firstPose(0)).x < 0 && placeOf(firstPose(1)).x > 0);
});
