import { memo } from "preact/compat";
import { useEffect, useMemo, useRef, useState } from "preact/hooks";
import { timeOfDay } from "../format.ts";
import { filterLog, levelName, LogLevel, type LevelFilter, type LogLine } from "../log.ts";
import { LongText } from "./LongText.tsx";
import type { PanelProps } from "./panels.ts";

const FILTERS: readonly { label: string; level: LevelFilter }[] = [
  { label: "All", level: null },
  { label: "Information", level: LogLevel.information },
  { label: "Errors", level: LogLevel.error },
];

/** Scrolled this near to its end, the log keeps following its newest line. */
const FOLLOW_DISTANCE_PX = 24;

export function LogPanel({ host }: PanelProps) {
  const [level, setLevel] = useState<LevelFilter>(null);
  const [search, setSearch] = useState("");
  const [paused, setPaused] = useState<{ lines: readonly LogLine[]; count: number } | null>(null);
  const list = useRef<HTMLDivElement>(null);
  const follows = useRef(true);

  const live = host.log.value;
  const { lines, count } = paused ?? live;
  const shown = useMemo(() => filterLog(lines, level, search), [lines, level, search]);
  const waiting = live.count - count;

  useEffect(() => {
    if (follows.current && list.current !== null) {
      list.current.scrollTop = list.current.scrollHeight;
    }
  }, [shown]);

  const clear = () => {
    host.clearLog();
    setPaused(paused && { lines: [], count: live.count });
  };

  return (
    <>
      <div class="panel-head log-head">
        <div class="segments" role="group" aria-label="Level">
          {FILTERS.map((filter) => (
            <button
              type="button"
              key={filter.label}
              aria-pressed={level === filter.level}
              data-level={filter.level ?? "all"}
              onClick={() => setLevel(filter.level)}
            >
              {filter.label}
            </button>
          ))}
        </div>
        <input
          type="search"
          class="field log-search"
          placeholder="Search"
          aria-label="Search the log"
          value={search}
          onInput={(event) => setSearch(event.currentTarget.value)}
        />
        <span class="hint" data-log-shown={shown.length}>
          {shown.length === lines.length ? `${lines.length} lines` : `${shown.length} of ${lines.length} lines`}
        </span>
        <button type="button" aria-pressed={paused !== null} onClick={() => setPaused(paused === null ? live : null)}>
          {paused === null ? "Pause" : waiting > 0 ? `Go on (${waiting} new)` : "Go on"}
        </button>
        <button type="button" onClick={clear}>
          Clear
        </button>
      </div>
      <div
        class="log"
        ref={list}
        tabIndex={0}
        aria-label="Log lines"
        aria-live="off"
        data-log
        onScroll={({ currentTarget: { scrollTop, scrollHeight, clientHeight } }) => {
          follows.current = scrollHeight - scrollTop - clientHeight < FOLLOW_DISTANCE_PX;
        }}
      >
        {shown.length === 0 && <p class="empty">{lines.length === 0 ? "Nothing logged yet." : "No line fits."}</p>}
        {shown.map((line) => (
          <Line key={line.number} line={line} />
        ))}
      </div>
    </>
  );
}

const Line = memo(function Line({ line }: { line: LogLine }) {
  return (
    <div class={line.level === LogLevel.error ? "line line-error" : "line"} data-log-level={line.level}>
      <time>{timeOfDay(line.time)}</time>
      <span class="line-level">{levelName(line.level)}</span>
      <span class="line-text">
        <LongText text={line.text} length={line.length} />
      </span>
    </div>
  );
});
