import { useSignal } from "@preact/signals";
import { useEffect, useRef } from "preact/hooks";
import { floatText } from "../format.ts";
import type { Host } from "../host.ts";
import { SurfaceInput, type SurfaceEcho } from "../input/surface.ts";

const NOTHING: SurfaceEcho = { point: null, buttons: [], keys: [] };

/** The stand-in for the host's render window: what happens on it goes to the nodes. */
export function RenderSurface({ host }: { host: Host }) {
  const surface = useRef<HTMLDivElement>(null);
  const echo = useSignal(NOTHING);

  useEffect(() => {
    const input = new SurfaceInput(surface.current!, {
      send: (event) => host.sendInput(event),
      releaseHeld: (reason) => host.releaseHeld(reason),
      echo: (now) => (echo.value = now),
    });
    const stopListening = host.onLost(() => input.forget());
    return () => {
      stopListening();
      input.detach();
    };
  }, [host]);

  const { point, buttons, keys } = echo.value;
  return (
    <section class="panel surface-panel" aria-labelledby="surface-title">
      <div class="panel-head">
        <h2 id="surface-title">Render surface</h2>
        <span class="hint" id="surface-hint">
          Keys go to the nodes while the surface has the focus. <kbd>Tab</kbd> leaves it.
        </span>
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
        <p class="surface-call">
          <span class="call-blurred">Click here, then type, move, click and scroll</span>
          <span class="call-focused">Type, move, click and scroll</span>
        </p>
        {point !== null && <Crosshair x={point.x} y={point.y} pressed={buttons.length > 0} />}
      </div>
      <dl class="readout">
        <Reading label="Pixels" value={point && `${point.x}, ${point.y}`} data="pixels" />
        <Reading label="Relative" value={point && `${floatText(round(point.rx))}, ${floatText(round(point.ry))}`} data="relative" />
        <div class="reading reading-held">
          <dt>Held</dt>
          <dd data-readout="held">
            {buttons.length + keys.length === 0 && <span class="none">nothing</span>}
            {buttons.map((name) => (
              <span class="chip" key={`button ${name}`}>
                {name} button
              </span>
            ))}
            {keys.map((text, index) => (
              <kbd key={`key ${index}`}>{text === " " ? "Space" : text}</kbd>
            ))}
          </dd>
        </div>
      </dl>
    </section>
  );
}

function round(value: number): number {
  return Math.round(value * 10) / 10;
}

function Reading({ label, value, data }: { label: string; value: string | null; data: string }) {
  return (
    <div class="reading">
      <dt>{label}</dt>
      <dd data-readout={data}>{value ?? <span class="none">–</span>}</dd>
    </div>
  );
}

function Crosshair({ x, y, pressed }: { x: number; y: number; pressed: boolean }) {
  return (
    <svg class={pressed ? "crosshair crosshair-pressed" : "crosshair"} aria-hidden="true">
      <line x1="0" x2="100%" y1={y + 0.5} y2={y + 0.5} />
      <line x1={x + 0.5} x2={x + 0.5} y1="0" y2="100%" />
      <circle cx={x + 0.5} cy={y + 0.5} r={pressed ? 9 : 6} />
    </svg>
  );
}
