import type { VRPayload } from "../messages.ts";
import type { HandButtons } from "./gamepad.ts";

/** Left and right, as the nodes number them. */
export type Side = 0 | 1;
export const SIDES: readonly Side[] = [0, 1];

export type Place = [x: number, y: number, z: number];

/** A hand's controller: its sample as it's sent with every change. */
export class Hand {
  readonly side: Side;
  #sample: VRPayload;
  /** What a real controller pressed when it was read last. */
  #read = { trigger: false, pad: false };

  constructor(side: Side, pose: readonly number[], hit: Place) {
    this.side = side;
    this.#sample = {
      is: "vr",
      hand: side,
      trigger: 0,
      pad: 0,
      padx: 0,
      pady: 0,
      pose: [...pose],
      hit,
      press: 0,
      release: 0,
    };
  }

  get sample(): VRPayload {
    return this.#sample;
  }

  get holds(): boolean {
    return this.#sample.trigger !== 0 || this.#sample.pad !== 0;
  }

  /** True when that changed something. The time is in milliseconds; nodes reckon it in 32 bits. */
  setTrigger(down: boolean, now: number): boolean {
    if ((this.#sample.trigger !== 0) === down) {
      return false;
    }
    const time = Math.floor(now) >>> 0;
    this.#sample = { ...this.#sample, trigger: down ? 1 : 0, ...(down ? { press: time } : { release: time }) };
    return true;
  }

  /** The thumb is here on the pad, from -1 to 1 across and along, and presses it or not. */
  setPad(down: boolean, x: number, y: number): boolean {
    const { pad, padx, pady } = this.#sample;
    if ((pad !== 0) === down && padx === x && pady === y) {
      return false;
    }
    this.#sample = { ...this.#sample, pad: down ? 1 : 0, padx: x, pady: y };
    return true;
  }

  setPlace(pose: readonly number[], hit: Place): boolean {
    const { pose: oldPose, hit: oldHit } = this.#sample;
    if (oldPose.every((element, index) => element === pose[index]) && oldHit.every((element, index) => element === hit[index])) {
      return false;
    }
    this.#sample = { ...this.#sample, pose: [...pose], hit };
    return true;
  }

  /** What a real controller presses, which is read in each frame: what was let go of by force only when it's pressed anew. */
  pressedBy({ trigger, pad }: HandButtons): { trigger: boolean; pad: boolean } {
    const { trigger: hadTrigger, pad: hadPad } = this.#read;
    this.#read = { trigger, pad };
    return {
      trigger: trigger === hadTrigger ? this.#sample.trigger !== 0 : trigger,
      pad: pad === hadPad ? this.#sample.pad !== 0 : pad,
    };
  }

  /** Everything is let go of; the host knows already. */
  forget(): void {
    this.#sample = { ...this.#sample, trigger: 0, pad: 0 };
  }
}

export type PadZone = "right" | "left" | "top" | "bottom" | "centre";

/** Which click letting go of the pad here gives; null for none, as on the borders. */
export function padZone(x: number, y: number): PadZone | null {
  if (x > 0.5 && x > Math.abs(y)) {
    return "right";
  }
  if (x < -0.5 && Math.abs(x) > Math.abs(y)) {
    return "left";
  }
  if (y > 0.5 && y > Math.abs(x)) {
    return "top";
  }
  if (y < -0.5 && Math.abs(y) > Math.abs(x)) {
    return "bottom";
  }
  return Math.abs(x) < 0.5 && Math.abs(y) < 0.5 ? "centre" : null;
}

/** A place on the round pad: across and up from its middle, in its radius; beyond its edge, the nearest on the edge. */
export function padPoint(x: number, y: number): { x: number; y: number } {
  const distance = Math.hypot(x, y);
  const scale = distance > 1 ? 1 / distance : 1;
  const rounded = (value: number) => Math.round(value * scale * 1000) / 1000 || 0;
  return { x: rounded(x), y: rounded(y) };
}
