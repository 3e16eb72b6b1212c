import { Box3, Matrix4, Ray, Vector3 } from "three";
import type { Place } from "./hand.ts";

/** The room in which the hands are, in metres: y is up, and a hand points along its own -z. */
export const ROOM = new Box3(new Vector3(-3, 0, -3), new Vector3(3, 3, 3));

/** A hand at this place that points at that one. */
export function poseAt(place: Vector3, target: Vector3): number[] {
  // Straight up or down needs another notion of what is above.
  const isVertical = Math.hypot(target.x - place.x, target.z - place.z) < 1e-6;
  const up = isVertical ? new Vector3(0, 0, -1) : new Vector3(0, 1, 0);
  return new Matrix4().lookAt(place, target, up).setPosition(place).toArray();
}

export function placeOf(pose: readonly number[]): Vector3 {
  return new Vector3(pose[12], pose[13], pose[14]);
}

function rayOf(pose: readonly number[]): Ray {
  return new Ray(placeOf(pose), new Vector3(-pose[8]!, -pose[9]!, -pose[10]!).normalize());
}

/** Where a ray leaves the room; null for one that misses it. */
export function wallHit(ray: Ray): Vector3 | null {
  const first = ray.intersectBox(ROOM, new Vector3());
  if (first === null || ROOM.containsPoint(ray.origin)) {
    return first;
  }
  // From outside the first wall is where it comes in.
  const inside = first.addScaledVector(ray.direction, 1e-4);
  return new Ray(inside, ray.direction).intersectBox(ROOM, new Vector3());
}

/** Where the hand's ray hits the room; the hand's own place when it points away from it. */
export function hitOf(pose: readonly number[]): Place {
  const ray = rayOf(pose);
  return (wallHit(ray) ?? ray.origin).toArray();
}

/** The hand moved to another place, pointing the same way; it stays in the room. */
export function movedTo(pose: readonly number[], place: Vector3): number[] {
  return new Matrix4().fromArray(pose as number[]).setPosition(place.clone().clamp(ROOM.min, ROOM.max)).toArray();
}

/** Where the hands begin: in front of somebody who stands in the middle of the room. */
export function firstPose(side: number): number[] {
  const x = side === 0 ? -0.35 : 0.35;
  return poseAt(new Vector3(x, 1.2, 0.6), new Vector3(x * 2.4, 1.4, -3));
}
