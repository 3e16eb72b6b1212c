import "./splitter.css";

interface SplitterProps {
  label: string;
  /** The height of what is below, as it is shown. */
  height: number;
  least: number;
  most: number;
  onResize(height: number): void;
}

const STEP_PX = 24;

/** The edge between two panes, one above the other: dragged, or moved by the arrow keys, Home and End. */
export function Splitter({ label, height, least, most, onResize }: SplitterProps) {
  const resize = (wanted: number) => onResize(Math.round(Math.min(most, Math.max(least, wanted))));
  const drag = (start: PointerEvent & { currentTarget: HTMLElement }) => {
    const handle = start.currentTarget;
    handle.setPointerCapture(start.pointerId);
    const follow = ({ clientY }: PointerEvent) => resize(height + start.clientY - clientY);
    handle.addEventListener("pointermove", follow);
    handle.addEventListener("lostpointercapture", () => handle.removeEventListener("pointermove", follow), { once: true });
  };
  const step = (event: KeyboardEvent) => {
    const wanted = { ArrowUp: height + STEP_PX, ArrowDown: height - STEP_PX, Home: least, End: most }[event.key];
    if (wanted !== undefined) {
      event.preventDefault();
      resize(wanted);
    }
  };
  return (
    <div
      class="splitter"
      role="separator"
      aria-orientation="horizontal"
      aria-label={label}
      aria-valuenow={height}
      aria-valuemin={least}
      aria-valuemax={most}
      tabIndex={0}
      onPointerDown={drag}
      onKeyDown={step}
    />
  );
}
