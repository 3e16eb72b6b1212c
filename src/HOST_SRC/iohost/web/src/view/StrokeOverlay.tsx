import { DRAG_THRESHOLD } from "../input/stroke.ts";
import type { StrokeView, TrailPoint } from "../input/strokes.ts";
import { RELATIVE_HEIGHT } from "../input/units.ts";
import "./strokes.css";

/** A stroke that never ends is drawn by its newest part only. */
const LONGEST_TRAIL = 1500;
const CONE_HALF_ANGLE = Math.PI / 6;
const CONE_MARGIN_PX = 36;

interface Place {
  px: number;
  py: number;
}

/** Draws the strokes: their trail, the threshold that makes a drag, the key points and the cone of a swipe. */
export function StrokeOverlay({ strokes, height }: { strokes: readonly StrokeView[]; height: () => number }) {
  return (
    <svg class="strokes" aria-hidden="true">
      {strokes.map((view) => (
        <StrokeDrawing key={view.pointer} view={view} height={height} />
      ))}
    </svg>
  );
}

function StrokeDrawing({ view, height }: { view: StrokeView; height: () => number }) {
  const { stroke, judgement, verdict } = view;
  const [first, middle, last] = stroke.keyPoints;
  const unit = stroke.kind === "relative" ? height() / RELATIVE_HEIGHT : 1;
  const reach = DRAG_THRESHOLD * unit;
  const trail = stroke.newest(LONGEST_TRAIL);
  const isOver = verdict !== null;
  return (
    <g
      class={view.followed ? `stroke stroke-${judgement.is}` : "stroke stroke-unfollowed"}
      data-stroke={view.pointer}
      data-samples={stroke.count}
      data-drawn={trail.length}
    >
      {view.followed && stroke.dragging && <path class="stroke-cone" d={cone(first, last)} />}
      {view.followed && (
        <rect
          class={stroke.dragging ? "stroke-threshold passed" : "stroke-threshold"}
          x={first.px - reach}
          y={first.py - reach}
          width={2 * reach}
          height={2 * reach}
        />
      )}
      <polyline class="stroke-trail" points={trail.map(({ px, py }) => `${px},${py}`).join(" ")} />
      {view.followed && stroke.dragging && (
        <>
          <polyline class="stroke-halves" points={[first, middle, last].map(({ px, py }) => `${px},${py}`).join(" ")} />
          {[first, middle, last].map((point, index) => (
            <KeyPoint key={index} point={point} number={index + 1} />
          ))}
        </>
      )}
      {!isOver && <circle class="stroke-tip" cx={last.px} cy={last.py} r="16" />}
    </g>
  );
}

function KeyPoint({ point, number }: { point: TrailPoint; number: number }) {
  return (
    <g class="key-point" data-key-point={number}>
      <circle cx={point.px} cy={point.py} r="9" />
      <text x={point.px} y={point.py}>
        {number}
      </text>
    </g>
  );
}

/** Where the last point makes a swipe: 30 degrees to either side of the axis that the stroke covers most of. */
function cone(first: Place, last: Place): string {
  const dx = last.px - first.px;
  const dy = last.py - first.py;
  const isVertical = Math.abs(dy) >= Math.abs(dx);
  const axis = isVertical ? Math.atan2(Math.sign(dy) || 1, 0) : Math.atan2(0, Math.sign(dx));
  const length = Math.max(Math.abs(dx), Math.abs(dy)) + CONE_MARGIN_PX;
  const corner = (angle: number) => `${first.px + length * Math.cos(angle)} ${first.py + length * Math.sin(angle)}`;
  return `M${first.px} ${first.py}L${corner(axis - CONE_HALF_ANGLE)}A${length} ${length} 0 0 1 ${corner(axis + CONE_HALF_ANGLE)}Z`;
}
