// What a touch gesture node makes of a stroke, told as it grows. The node decides; this says why.
import { t } from "../i18n.ts";

/** As far as this from its start, on either axis, a stroke becomes a drag. */
export const DRAG_THRESHOLD = 50;

/** A swipe deviates less than this from its axis: the float nearest to 30 degrees. */
const STEEPEST = 0.5235987912027583;

/** Which way up the y axis points. */
export type SampleKind = "pixel" | "relative";

export interface StrokePoint {
  x: number;
  y: number;
}

export type Direction = "left" | "right" | "up" | "down";

export type Judgement =
  /** Never went far enough from its start: a tap. */
  | { is: "tap"; farthest: number }
  | { is: "swipe"; direction: Direction; degrees: number }
  /** A drag without a direction. */
  | { is: "bent"; first: Direction; second: Direction }
  | { is: "steep"; direction: Direction; degrees: number }
  | { is: "closed" }
  | { is: "few" };

/** A difference in the float that the node reckons with; whole pixels stay whole. */
function difference(a: number, b: number): number {
  return Math.fround(b - a);
}

/** Direction of one segment; null where it goes nowhere. A diagonal counts as vertical. */
function segmentDirection(a: StrokePoint, b: StrokePoint, kind: SampleKind): Direction | null {
  const dx = difference(a.x, b.x);
  const dy = difference(a.y, b.y);
  if (dx === 0 && dy === 0) {
    return null;
  }
  if (Math.abs(dy) >= Math.abs(dx)) {
    const downward = kind === "pixel" ? dy : -dy;
    return downward >= 0 ? "down" : "up";
  }
  return dx >= 0 ? "right" : "left";
}

/** How far the whole stroke deviates from the axis of its direction, in radians. */
function deviation(first: StrokePoint, last: StrokePoint, direction: Direction): number {
  const dx = difference(first.x, last.x);
  const dy = difference(first.y, last.y);
  const along = direction === "left" || direction === "right" ? Math.abs(dx) : Math.abs(dy);
  return Math.fround(Math.acos(along / Math.hypot(dx, dy)));
}

export type KeyPoints<Point> = readonly [first: Point, middle: Point, last: Point];

export function judgeKeyPoints([first, middle, last]: KeyPoints<StrokePoint>, kind: SampleKind): Judgement {
  const one = segmentDirection(first, middle, kind);
  const two = segmentDirection(middle, last, kind);
  if (one !== null && two !== null && one !== two) {
    return { is: "bent", first: one, second: two };
  }
  const direction = one ?? two;
  if (direction === null || (first.x === last.x && first.y === last.y)) {
    return { is: "closed" };
  }
  const angle = deviation(first, last, direction);
  const degrees = (angle * 180) / Math.PI;
  return { is: angle < STEEPEST ? "swipe" : "steep", direction, degrees };
}

/** The samples of one pointer from its press to its release. */
export class Stroke<Point extends StrokePoint> {
  readonly kind: SampleKind;
  readonly #points: Point[];
  #dragging = false;
  #farthest = 0;

  constructor(kind: SampleKind, press: Point) {
    this.kind = kind;
    this.#points = [press];
  }

  get count(): number {
    return this.#points.length;
  }

  /** It went far enough from its start at some time. */
  get dragging(): boolean {
    return this.#dragging;
  }

  /** The newest points, so many at most. */
  newest(most: number): readonly Point[] {
    return this.#points.slice(-most);
  }

  /** The first, the middle and the last sample, which alone decide. */
  get keyPoints(): KeyPoints<Point> {
    const count = this.#points.length;
    return [this.#points[0]!, this.#points[Math.floor(count / 2)]!, this.#points[count - 1]!];
  }

  /** A sample while it's held. */
  move(point: Point): void {
    this.#points.push(point);
    const first = this.#points[0]!;
    const distance = Math.max(Math.abs(difference(first.x, point.x)), Math.abs(difference(first.y, point.y)));
    this.#farthest = Math.max(this.#farthest, distance);
    this.#dragging ||= distance >= DRAG_THRESHOLD;
  }

  /** The release's sample: it counts as a point, but doesn't make a drag any more. */
  release(point: Point): void {
    this.#points.push(point);
  }

  /** What a release here makes of it. */
  judge(): Judgement {
    if (!this.#dragging) {
      return { is: "tap", farthest: this.#farthest };
    }
    return this.#points.length < 3 ? { is: "few" } : judgeKeyPoints(this.keyPoints, this.kind);
  }
}

/** In a few words, why a stroke is what it is. */
export function explain(judgement: Judgement): string {
  const degrees = (value: number) => `${value.toFixed(1)}°`;
  switch (judgement.is) {
    case "tap":
      return t("too short for a drag: {farthest} of {threshold} units", {
        farthest: Math.round(judgement.farthest),
        threshold: DRAG_THRESHOLD,
      });
    case "swipe":
      return t("{degrees} off the axis, under 30°", { degrees: degrees(judgement.degrees) });
    case "bent":
      return t("bent: the first half goes {first}, the second {second}", {
        first: t(judgement.first),
        second: t(judgement.second),
      });
    case "steep":
      return t("too steep: {degrees} off the axis, 30° or more", { degrees: degrees(judgement.degrees) });
    case "closed":
      return t("it ends where it began");
    case "few":
      return t("too few samples");
  }
}
