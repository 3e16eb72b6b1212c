import type { WebGLRenderer } from "three";
import { readGamepad, type HandButtons } from "./gamepad.ts";
import type { Side } from "./hand.ts";

export interface HeadsetListener {
  /** Where a real controller is, what its ray points along, and what is pressed on it. */
  hand(side: Side, pose: number[], rayPose: number[], buttons: HandButtons): void;
  /** It went away, as when its battery is empty. */
  handGone(side: Side): void;
  frame(): void;
  ended(): void;
}

const SIDES: Partial<Record<XRHandedness, Side>> = { left: 0, right: 1 };

/** Whether this browser has a headset for the page. It needs an address that it trusts: localhost or https. */
export async function hasHeadset(): Promise<boolean> {
  try {
    return (await navigator.xr?.isSessionSupported("immersive-vr")) ?? false;
  } catch {
    return false;
  }
}

/** Reads the hands' controllers of a headset, once in each of its frames. */
export class Headset {
  readonly #session: XRSession;
  readonly #renderer: WebGLRenderer;
  readonly #listener: HeadsetListener;

  /** Asks the browser for the headset; it may ask the person in turn. Raises an error when it isn't had. */
  static async start(renderer: WebGLRenderer, listener: HeadsetListener): Promise<Headset> {
    const session = await navigator.xr!.requestSession("immersive-vr", { optionalFeatures: ["local-floor"] });
    const headset = new Headset(session, renderer, listener);
    await renderer.xr.setSession(session);
    return headset;
  }

  private constructor(session: XRSession, renderer: WebGLRenderer, listener: HeadsetListener) {
    this.#session = session;
    this.#renderer = renderer;
    this.#listener = listener;
    session.addEventListener("end", () => {
      renderer.setAnimationLoop(null);
      listener.ended();
    });
    session.addEventListener("inputsourceschange", ({ removed }) => {
      for (const { handedness } of removed) {
        const side = SIDES[handedness];
        if (side !== undefined) {
          listener.handGone(side);
        }
      }
    });
    renderer.setAnimationLoop((_, frame) => {
      if (frame !== undefined) {
        this.#read(frame);
        listener.frame();
      }
    });
  }

  end(): void {
    void this.#session.end();
  }

  #read(frame: XRFrame): void {
    const space = this.#renderer.xr.getReferenceSpace();
    if (space === null) {
      return;
    }
    for (const { handedness, gripSpace, targetRaySpace, gamepad } of this.#session.inputSources) {
      const side = SIDES[handedness];
      const grip = frame.getPose(gripSpace ?? targetRaySpace, space);
      const ray = frame.getPose(targetRaySpace, space);
      if (side !== undefined && grip && ray) {
        const buttons = readGamepad(gamepad ?? { buttons: [], axes: [] });
        this.#listener.hand(side, [...grip.transform.matrix], [...ray.transform.matrix], buttons);
      }
    }
  }
}
