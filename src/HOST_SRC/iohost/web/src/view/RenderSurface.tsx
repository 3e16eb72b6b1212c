import { useSignal } from "@preact/signals";
import { useEffect, useRef } from "preact/hooks";
import { floatText } from "../format.ts";
import type { Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import { t, type Label } from "../i18n.ts";
import { firstPointer } from "../input/pointers.ts";
import type { SampleKind } from "../input/stroke.ts";
import { Strokes, type StrokeView } from "../input/strokes.ts";
import { SurfaceInput, type PointerEcho } from "../input/surface.ts";
import { outputsOf } from "../nodePins.ts";
import { NodeType, nodesOf } from "../nodeTypes.ts";
import { Device } from "../codes.ts";
import { HeldBar } from "./HeldBar.tsx";
import "./surface.css";
import { StrokeOverlay } from "./StrokeOverlay.tsx";

const KINDS: readonly { kind: SampleKind; label: Label }[] = [
  { kind: "pixel", label: "Pixels" },
  { kind: "relative", label: "Relative" },
];

const POINTER_TYPES: Record<string, Label> = { mouse: "mouse", touch: "touch", pen: "pen" };

/** The stand-in for the host's render window: what happens on it goes to the nodes. */
export function RenderSurface({ host, desk }: { host: Host; desk: Desk }) {
  const surface = useRef<HTMLDivElement>(null);
  const input = useRef<SurfaceInput | null>(null);
  const pointers = useSignal<readonly PointerEcho[]>([]);
  const strokes = useSignal<readonly StrokeView[]>([]);
  const sampleKind = useSignal<SampleKind>("pixel");

  useEffect(() => {
    const tracked = new Strokes(
      () =>
        nodesOf(host.nodes.peek(), NodeType.gesture).map((node) => ({
          node: node.node,
          outputs: new Map(outputsOf(node).map(({ id, display }) => [id, display])),
        })),
      (views) => (strokes.value = views),
    );
    const keyboard = {};
    const made = new SurfaceInput(surface.current!, {
      send: (event) => {
        const asks = event.device === Device.pointer && Strokes.asks(event.event);
        const answer = asks ? host.askInput(event) : null;
        if (!asks) {
          host.sendInput(event);
        }
        if (event.device === Device.pointer) {
          tracked.follow(event.event, event.payload, answer);
        }
      },
      keys: (down, locks) => {
        host.keyboard.setDown(keyboard, down);
        if (locks !== null) {
          host.keyboard.readLocks(locks);
        }
      },
      releaseKeys: (reason) => host.releaseDevice(reason, Device.keyboard),
      releasePointer: (reason, pointer) => {
        host.releaseDevice(reason, Device.pointer, pointer);
        tracked.drop(pointer);
      },
      echo: (now) => (pointers.value = now),
    });
    input.current = made;
    const stopHolding = host.holders.add({
      holds: () => made.holds(),
      forget: () => {
        made.forget();
        tracked.drop();
      },
    });
    const stopFollowing = host.connection.subscribe((state) => {
      if (state.is === "open") {
        made.firstPointer = firstPointer(state.connection);
        tracked.clear();
      }
    });
    return () => {
      stopFollowing();
      stopHolding();
      made.detach();
    };
  }, [host]);

  const chooseKind = (kind: SampleKind) => {
    sampleKind.value = kind;
    input.current!.sampleKind = kind;
  };
  const first = pointers.value[0];
  const ended = strokes.value.filter(({ verdict }) => verdict !== null).at(-1);
  return (
    <section class="panel surface-panel" aria-labelledby="surface-title">
      <div class="panel-head">
        <h2 id="surface-title">{t("Render surface")}</h2>
        <span class="hint" id="surface-hint" title={t("Keys go to the nodes while the surface has the focus. Tab leaves it.")}>
          <span class="screen-reader">{t("Keys go to the nodes while the surface has the focus.")}</span> <kbd>Tab</kbd> {t("leaves it.")}
        </span>
        <span class="switch-label">{t("Samples")}</span>
        <div class="segments" role="group" aria-label={t("Samples")}>
          {KINDS.map(({ kind, label }) => (
            <button
              type="button"
              key={kind}
              aria-pressed={sampleKind.value === kind}
              data-samples-in={kind}
              onClick={() => chooseKind(kind)}
            >
              {t(label)}
            </button>
          ))}
        </div>
        <button
          type="button"
          class="icon-button"
          title={desk.surfaceIsLarge.value ? t("Make it smaller") : t("Enlarge")}
          aria-label={t("Enlarge the render surface")}
          aria-pressed={desk.surfaceIsLarge.value}
          onClick={() => (desk.surfaceIsLarge.value = !desk.surfaceIsLarge.value)}
        >
          ⤢
        </button>
      </div>
      <div
        class="surface"
        ref={surface}
        tabIndex={0}
        role="application"
        aria-labelledby="surface-title"
        aria-describedby="surface-hint"
        data-surface
      >
        <span class="axis axis-top">1000</span>
        <span class="axis axis-origin">0, 0</span>
        {strokes.value.length === 0 && (
          <p class="surface-call">
            <span class="call-blurred">{t("Click here, then type, move, click, scroll and swipe")}</span>
            <span class="call-touch">{t("Tap, drag and swipe here")}</span>
            <span class="call-focused">{t("Type, move, click, scroll and swipe")}</span>
          </p>
        )}
        <StrokeOverlay strokes={strokes.value} height={() => surface.current!.clientHeight} />
        {pointers.value.map((pointer) => (
          <PointerMark key={pointer.number} pointer={pointer} />
        ))}
        {ended !== undefined && <VerdictCard view={ended} />}
      </div>
      <dl class="readout">
        <Reading label={t("Pixels")} value={first && `${first.point.x}, ${first.point.y}`} data="pixels" />
        <Reading
          label={t("Relative")}
          value={first && `${floatText(round(first.point.rx))}, ${floatText(round(first.point.ry))}`}
          data="relative"
        />
        <Reading label={t("Pointers")} value={pointersText(pointers.value)} data="pointers" />
      </dl>
      <HeldBar host={host} />
    </section>
  );
}

function round(value: number): number {
  return Math.round(value * 10) / 10;
}

function pointersText(pointers: readonly PointerEcho[]): string | undefined {
  const texts = pointers.map(({ number, type }) => `${number} ${t(POINTER_TYPES[type] ?? "pointer")}`);
  return texts.length === 0 ? undefined : texts.join(", ");
}

function Reading({ label, value, data }: { label: string; value: string | undefined; data: string }) {
  return (
    <div class="reading">
      <dt>{label}</dt>
      <dd data-readout={data}>{value ?? <span class="none">–</span>}</dd>
    </div>
  );
}

/** The event that a lifted pointer fired, or why it fired none. */
function VerdictCard({ view: { pointer, stroke, verdict } }: { view: StrokeView }) {
  const { fired, reason } = verdict!;
  return (
    <div class={fired.length > 0 ? "verdict verdict-fired" : "verdict"} role="status" data-verdict={fired.join(", ")}>
      <strong>{fired.length > 0 ? fired.join(" · ") : t("No event")}</strong>
      <span>{reason}</span>
      <span class="verdict-stroke">
        {t("pointer {pointer}, {count} samples", { pointer, count: stroke.count })}
      </span>
    </div>
  );
}

/** A pointer with its cross hair; fingers have a ring with their number. */
function PointerMark({ pointer: { number, type, point, pressed } }: { pointer: PointerEcho }) {
  const x = point.x + 0.5;
  const y = point.y + 0.5;
  return (
    <svg class={pressed ? "crosshair crosshair-pressed" : "crosshair"} aria-hidden="true" data-pointer={number}>
      {type !== "touch" && (
        <>
          <line x1="0" x2="100%" y1={y} y2={y} />
          <line x1={x} x2={x} y1="0" y2="100%" />
        </>
      )}
      <circle cx={x} cy={y} r={type === "touch" ? 26 : pressed ? 9 : 6} />
      {type !== "mouse" && (
        <text x={x + 30} y={y - 16}>
          {number}
        </text>
      )}
    </svg>
  );
}
