import { BaseEdge, EdgeLabelRenderer, getBezierPath, type Edge, type EdgeProps } from "@xyflow/react";
import { useRef, useState } from "preact/hooks";
import type { Host } from "../host.ts";
import { NO_VALUE } from "../live.ts";
import { t } from "../i18n.ts";
import type { Param } from "../messages.ts";
import { shownValue } from "../params.ts";
import type { Link } from "../protocol.ts";
import { useLit } from "../view/lit.tsx";
import { LongText } from "../view/LongText.tsx";
import { sortOf } from "./wiring.ts";
import "./wireEdge.css";

/** What a wire carries; a scene may hold links of pins that the node doesn't have now. */
export type Wire = Edge<{ host: Host; link: Link; output: Param | undefined; conversion: string | null }, "wire">;

/** A wire that lights when something runs through it, and tells what when it's pointed at or chosen. */
export function WireEdge({ id, sourceX, sourceY, targetX, targetY, sourcePosition, targetPosition, selected, data }: EdgeProps<Wire>) {
  const [isPointedAt, setPointedAt] = useState(false);
  const [path, x, y] = getBezierPath({ sourceX, sourceY, sourcePosition, targetX, targetY, targetPosition });
  const { host, link, output, conversion } = data!;
  const hasValue = output !== undefined && (isPointedAt || selected === true);
  return (
    <g onMouseEnter={() => setPointedAt(true)} onMouseLeave={() => setPointedAt(false)}>
      <BaseEdge id={id} path={path} interactionWidth={14} />
      {output !== undefined && <Pulse host={host} link={link} output={output} path={path} />}
      {(conversion !== null || hasValue) && (
        <EdgeLabelRenderer>
          <div class="wire-label" style={{ transform: `translate(-50%, -50%) translate(${x}px, ${y}px)` }}>
            {conversion !== null && (
              <span class="wire-conversion" title={conversion}>
                {selected === true ? `≈ ${conversion}` : "≈"}
              </span>
            )}
            {hasValue && <WireValue host={host} link={link} output={output} />}
          </div>
        </EdgeLabelRenderer>
      )}
    </g>
  );
}

interface Carried {
  host: Host;
  link: Link;
  output: Param;
}

/** Stays dark for what ran before it was drawn. */
function Pulse({ host, link, output, path }: Carried & { path: string }) {
  const fired = host.fired.of(link.from, output.id).value;
  const value = host.values.of(link.from, output.id).value;
  const isEvent = sortOf(output) === "event";
  const passed = isEvent ? fired : value === NO_VALUE ? null : `${value.int} ${value.float} ${value.string}`;
  const beats = useRef<{ passed: typeof passed; count: number; last: number | null }>({ passed, count: 0, last: null });
  const { passed: before, count } = beats.current;
  if (passed !== before) {
    const isBeat = passed !== null && (isEvent || before !== null); // the first value is the one that it had
    beats.current = isBeat ? { passed, count: count + 1, last: Date.now() } : { ...beats.current, passed };
  }
  const light = useRef<SVGPathElement>(null);
  useLit(light, beats.current.last);
  return beats.current.count === 0 ? null : <path class="wire-pulse" ref={light} d={path} data-pulse={beats.current.count} />;
}

function WireValue({ host, link, output }: Carried) {
  const isEvent = sortOf(output) === "event";
  return (
    <span class="wire-value" data-wire-value>
      {isEvent ? (
        t("{count} times", { count: host.firedCount(link.from, output.id) })
      ) : (
        <LongText {...shownValue(output, host.values.of(link.from, output.id).value)} />
      )}
    </span>
  );
}
