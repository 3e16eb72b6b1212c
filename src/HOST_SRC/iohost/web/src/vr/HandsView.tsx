import { signal } from "@preact/signals";
import { useContext, useEffect, useRef, useState } from "preact/hooks";
import { Vector3 } from "three";
import { DeskContext } from "../desk.ts";
import { floatText } from "../format.ts";
import type { Host, NodeView } from "../host.ts";
import { t } from "../i18n.ts";
import { inputOf, outputOf } from "../nodePins.ts";
import { NodeType, nodesOf, VRHandlePin } from "../nodeTypes.ts";
import { Device } from "../codes.ts";
import { firedByNodes, type VRPayload } from "../messages.ts";
import { Editing } from "../view/Editing.tsx";
import type { PanelProps } from "../view/panels.ts";
import type { HandButtons } from "./gamepad.ts";
import { Hand, padPoint, padZone, SIDES, type Place, type Side } from "./hand.ts";
import { Headset, hasHeadset } from "./headset.ts";
import { firstPose, hitOf, movedTo, placeOf, poseAt } from "./room.ts";
import { Space, type ShownObject } from "./space.ts";
import "./hands.css";

const HAND_NAMES = ["Left hand", "Right hand"] as const;
const STEP = 0.05;
const STEPS: Readonly<Record<string, Vector3>> = {
  ArrowLeft: new Vector3(-STEP, 0, 0),
  ArrowRight: new Vector3(STEP, 0, 0),
  ArrowUp: new Vector3(0, STEP, 0),
  ArrowDown: new Vector3(0, -STEP, 0),
  PageUp: new Vector3(0, 0, -STEP),
  PageDown: new Vector3(0, 0, STEP),
};

/** The two hand controllers: their pads and triggers, and where they are in space, with the objects that follow them. */
export function HandsView({ host, shown }: PanelProps) {
  const [hands] = useState(() => new Hands(host));
  const place = useRef<HTMLDivElement>(null);
  const space = useRef<Space | null>(null);
  const [drawing, setDrawing] = useState<string | null>(null);
  const [canEnter, setCanEnter] = useState(false);
  const [headset, setHeadset] = useState<Headset | null>(null);
  const [problem, setProblem] = useState<string | null>(null);

  const nodes = nodesOf(host.nodes.value, NodeType.vrHandle);
  const followers = nodes.map(followerOf);
  const objects: ShownObject[] = host.objects.value.map((object) => ({
    ...object,
    following: followers.some(({ clip, name }) => clip === object.clip && name === object.name),
  }));

  useEffect(() => host.holders.add(hands), [host, hands]);

  useEffect(() => {
    try {
      const made = new Space(place.current!, {
        move: (side, to) => hands.move(side, to),
        aim: (side, target) => hands.aim(side, target),
      });
      space.current = made;
      void hasHeadset().then(setCanEnter);
      return () => made.detach();
    } catch (error) {
      const reason = error instanceof Error ? error.message : String(error);
      setDrawing(t("This browser can't draw in space here: {error}", { error: reason }));
      return undefined;
    }
  }, [hands]);

  // A headset's controllers need no panel.
  const canPress = shown || headset !== null;
  useEffect(() => {
    space.current?.setShown(shown);
    if (!canPress) {
      for (const side of SIDES) {
        hands.release(side, "the panel was hidden");
      }
    }
  }, [hands, shown, canPress]);

  const [left, right] = [hands.samples[0]!.value, hands.samples[1]!.value];
  useEffect(() => {
    const made = space.current;
    if (made !== null && shown) {
      made.showHand(0, left);
      made.showHand(1, right);
      made.showObjects(objects);
      made.draw();
    }
  });

  const enter = async () => {
    try {
      setProblem(null);
      const renderer = space.current!.renderer;
      setHeadset(
        await Headset.start(renderer, {
          hand: (side, pose, rayPose, buttons) => {
            hands.place(side, pose, hitOf(rayPose));
            hands.read(side, buttons);
          },
          handGone: (side) => hands.release(side, "the controller is gone"),
          frame: () => space.current!.drawFrame(),
          ended: () => {
            setHeadset(null);
            for (const side of SIDES) {
              hands.release(side, "the headset was left");
            }
          },
        }),
      );
    } catch (error) {
      setProblem(error instanceof Error ? error.message : String(error));
    }
  };

  return (
    <div class="hands">
      <HandCard side={0} host={host} hands={hands} sample={left} fired={hands.fired[0]!.value} followers={followers} />
      <div class="space">
        <div
          class="space-place"
          ref={place}
          tabIndex={0}
          role="application"
          aria-label={t(
            "Space: drag a hand or its hit point; arrow keys and Page Up and Down move the right hand, with Alt the left one",
          )}
          onKeyDown={(event) => {
            const by = STEPS[event.key];
            if (by !== undefined) {
              event.preventDefault();
              const side = event.altKey ? 0 : 1;
              hands.move(side, placeOf(hands.samples[side]!.peek().pose).add(by));
            }
          }}
        >
          {drawing !== null && <p class="empty">{drawing}</p>}
        </div>
        <div class="space-foot">
          <span class="hint">{problem ?? t("Drag a hand or its hit point. Metres, y up.")}</span>
          {headset !== null ? (
            <button type="button" onClick={() => headset.end()}>
              {t("Leave the headset")}
            </button>
          ) : (
            <button
              type="button"
              disabled={!canEnter}
              title={canEnter ? t("Use real controllers") : t("This browser offers no headset to this address")}
              data-enter-headset
              onClick={enter}
            >
              {t("Use a headset")}
            </button>
          )}
        </div>
      </div>
      <HandCard side={1} host={host} hands={hands} sample={right} fired={hands.fired[1]!.value} followers={followers} />
    </div>
  );
}

/** Both hands, and what they tell the host. */
class Hands {
  readonly #host: Host;
  readonly #hands = SIDES.map((side) => new Hand(side, firstPose(side), hitOf(firstPose(side))));
  readonly samples = this.#hands.map(({ sample }) => signal(sample));
  /** The names of what nodes fired last upon a hand's button. */
  readonly fired = SIDES.map(() => signal<readonly string[]>([]));

  constructor(host: Host) {
    this.#host = host;
  }

  /** A busy page comes late to what was done: when that was is told by its event. */
  trigger(side: Side, down: boolean, time = performance.now()): void {
    if (this.#hands[side]!.setTrigger(down, time)) {
      this.#send(side, true);
    }
  }

  pad(side: Side, down: boolean, x: number, y: number): void {
    const hand = this.#hands[side]!;
    const wasDown = hand.sample.pad !== 0;
    if (hand.setPad(down, x, y)) {
      this.#send(side, wasDown !== down);
    }
  }

  /** The thumb moves on the pad, pressing it or not as before. */
  thumb(side: Side, x: number, y: number): void {
    this.pad(side, this.#hands[side]!.sample.pad !== 0, x, y);
  }

  /** What a real controller has pressed, in each frame. */
  read(side: Side, buttons: HandButtons): void {
    const { trigger, pad } = this.#hands[side]!.pressedBy(buttons);
    this.pad(side, pad, buttons.padX, buttons.padY);
    this.trigger(side, trigger);
  }

  place(side: Side, pose: readonly number[], hit: Place): void {
    if (this.#hands[side]!.setPlace(pose, hit)) {
      this.#send(side, false);
    }
  }

  /** To another place, pointing the same way. */
  move(side: Side, to: Vector3): void {
    const pose = movedTo(this.#hands[side]!.sample.pose, to);
    this.place(side, pose, hitOf(pose));
  }

  aim(side: Side, target: Vector3): void {
    const pose = poseAt(placeOf(this.#hands[side]!.sample.pose), target);
    this.place(side, pose, target.toArray());
  }

  /** What one hand holds is let go of by force; the reason is for the log. */
  release(side: Side, reason: string): void {
    const hand = this.#hands[side]!;
    if (hand.holds) {
      hand.forget();
      this.samples[side]!.value = hand.sample;
      this.#host.releaseDevice(reason, Device.hand, side);
    }
  }

  /** The pointer that pressed one of a hand's buttons was taken away, perhaps in mid-press. */
  lostPointer(side: Side, button: "trigger" | "pad"): void {
    if (this.#hands[side]!.sample[button] !== 0) {
      this.release(side, "the pointer was taken away");
    }
  }

  holds(): boolean {
    return this.#hands.some((hand) => hand.holds);
  }

  forget(): void {
    for (const hand of this.#hands) {
      hand.forget();
      this.samples[hand.side]!.value = hand.sample;
    }
  }

  #send(side: Side, isEdge: boolean): void {
    const { sample } = this.#hands[side]!;
    this.samples[side]!.value = sample;
    const event = { device: Device.hand, event: 0, payload: sample };
    if (!isEdge) {
      this.#host.sendInput(event);
      return;
    }
    void this.#host.askInput(event).then(({ posted }) => {
      const nodes = nodesOf(this.#host.nodes.peek(), NodeType.vrHandle);
      const names = firedByNodes(posted).flatMap(({ node, output }) => {
        const found = nodes.find((one) => one.node === node);
        return (found && outputOf(found, output)?.display) ?? [];
      });
      if (names.length > 0) {
        this.fired[side]!.value = names;
      }
    });
  }
}

/** What a VR handle node moves, and by which hand. */
interface Follower {
  node: NodeView;
  clip: string | null;
  name: string;
  side: number;
}

function followerOf(node: NodeView): Follower {
  return {
    node,
    clip: node.clip,
    name: inputOf(node, VRHandlePin.objectName)?.string ?? "",
    side: inputOf(node, VRHandlePin.hand)?.int ?? -1,
  };
}

interface HandCardProps {
  side: Side;
  host: Host;
  hands: Hands;
  sample: VRPayload;
  fired: readonly string[];
  followers: readonly Follower[];
}

function HandCard({ side, host, hands, sample, fired, followers }: HandCardProps) {
  const mine = followers.filter((follower) => follower.side === side);
  const place = placeOf(sample.pose).toArray();
  return (
    <section class={`hand hand-${side}`} aria-label={t(HAND_NAMES[side])} data-hand={side}>
      <h3>{t(HAND_NAMES[side])}</h3>
      <Pad side={side} hands={hands} sample={sample} />
      <button
        type="button"
        class={sample.trigger !== 0 ? "trigger trigger-down" : "trigger"}
        data-trigger={sample.trigger}
        onPointerDown={(event) => {
          event.currentTarget.setPointerCapture(event.pointerId);
          hands.trigger(side, true, event.timeStamp);
        }}
        onPointerUp={(event) => hands.trigger(side, false, event.timeStamp)}
        onPointerCancel={() => hands.release(side, "the pointer was cancelled")}
        onLostPointerCapture={() => hands.lostPointer(side, "trigger")}
        onMouseDown={(event) => event.preventDefault()}
        onContextMenu={(event) => event.preventDefault()}
        onKeyDown={(event) => isPress(event) && hands.trigger(side, true, event.timeStamp)}
        onKeyUp={(event) => isPress(event) && hands.trigger(side, false, event.timeStamp)}
        onBlur={() => hands.trigger(side, false)}
      >
        {t("Trigger")}
      </button>
      <dl class="hand-places">
        <dt>{t("At")}</dt>
        <dd data-place={side}>{place.map((value) => floatText(Math.round(value * 100) / 100)).join("  ")}</dd>
        <dt>{t("Hits")}</dt>
        <dd data-hit={side}>{sample.hit.map((value) => floatText(Math.round(value * 100) / 100)).join("  ")}</dd>
      </dl>
      <p class="hand-fired" role="status" data-hand-fired={side}>
        {fired.length === 0 ? <span class="none">{t("no event yet")}</span> : fired.join(" · ")}
      </p>
      {mine.length === 0 && <p class="hand-node none">{t("No node takes this hand.")}</p>}
      {mine.map((follower) => (
        <FollowerLine key={follower.node.node} host={host} follower={follower} />
      ))}
    </section>
  );
}

/** Space and Enter press a button. */
function isPress(event: KeyboardEvent): boolean {
  return (event.key === " " || event.key === "Enter") && !event.repeat;
}

function FollowerLine({ host, follower: { node, clip, name } }: { host: Host; follower: Follower }) {
  const desk = useContext(DeskContext);
  const isThere = host.objects.value.some((object) => object.clip === clip && object.name === name);
  return (
    <p class="hand-node">
      {node.graph}
      {name === "" ? (
        <span class="none"> {t("moves nothing")}</span>
      ) : isThere ? (
        <>
          {` ${t("moves")} `}
          <strong>{name}</strong>
        </>
      ) : (
        <>
          {`: ${t("no object “{name}”", { name })} `}
          {clip !== null && (
            <Editing>
              <button
                type="button"
                class="link"
                onClick={async () => desk.tell(await host.requests.change({ op: "object", clip, name }), "")}
              >
                {t("Add it")}
              </button>
            </Editing>
          )}
        </>
      )}
    </p>
  );
}

/** The touch-pad: hovering moves the thumb on it, pressing presses it there. */
function Pad({ side, hands, sample: { pad, padx, pady } }: { side: Side; hands: Hands; sample: VRPayload }) {
  const zone = padZone(padx, pady);
  const thumb = (event: { clientX: number; clientY: number; currentTarget: SVGSVGElement }) => {
    const bounds = event.currentTarget.getBoundingClientRect();
    // The pad has a margin of a tenth around it.
    const scale = 1.1 / (bounds.width / 2);
    return padPoint(
      (event.clientX - bounds.left - bounds.width / 2) * scale,
      -(event.clientY - bounds.top - bounds.height / 2) * scale,
    );
  };
  const isDown = pad !== 0;
  return (
    <svg
      class={isDown ? "pad pad-down" : "pad"}
      viewBox="-1.1 -1.1 2.2 2.2"
      role="button"
      tabIndex={0}
      aria-label={t("Touch-pad: arrow keys move the thumb, Space presses")}
      data-pad={pad}
      data-pad-zone={zone ?? "none"}
      onPointerMove={(event) => {
        const { x, y } = thumb(event);
        hands.thumb(side, x, y);
      }}
      onPointerDown={(event) => {
        event.currentTarget.setPointerCapture(event.pointerId);
        const { x, y } = thumb(event);
        hands.pad(side, true, x, y);
      }}
      onPointerUp={(event) => {
        const { x, y } = thumb(event);
        hands.pad(side, false, x, y);
      }}
      onPointerCancel={() => hands.release(side, "the pointer was cancelled")}
      onLostPointerCapture={() => hands.lostPointer(side, "pad")}
      onMouseDown={(event) => event.preventDefault()}
      onKeyDown={(event) => {
        const by = STEPS[event.key];
        if (by !== undefined && by.z === 0) {
          event.preventDefault();
          const { x, y } = padPoint(padx + by.x * 2, pady + by.y * 2);
          hands.thumb(side, x, y);
        } else if (isPress(event)) {
          event.preventDefault();
          hands.pad(side, true, padx, pady);
        }
      }}
      onKeyUp={(event) => isPress(event) && hands.pad(side, false, padx, pady)}
      onBlur={() => hands.pad(side, false, padx, pady)}
    >
      <circle class="pad-plate" r="1" />
      <path class="pad-lines" d="M-.7071 -.7071L-.5 -.5M.7071 -.7071L.5 -.5M-.7071 .7071L-.5 .5M.7071 .7071L.5 .5M-.5 -.5H.5V.5H-.5Z" />
      {zone !== null && <text class="pad-zone" y={zone === "centre" ? 0.34 : 0}>{t(zone)}</text>}
      <circle class="pad-thumb" cx={padx} cy={-pady} r={isDown ? 0.2 : 0.13} />
    </svg>
  );
}
