import { memo } from "preact/compat";
import { useLayoutEffect, useMemo, useRef, useState } from "preact/hooks";
import { timeOfDay } from "../format.ts";
import { t, type Label } from "../i18n.ts";
import { levelName, LogLevel, LogSearch, type LevelFilter, type LogLine } from "../log.ts";
import { nodeOfLine } from "../logNodes.ts";
import { Tail } from "../tail.ts";
import "./log.css";
import { LongText } from "./LongText.tsx";
import type { PanelProps } from "./panels.ts";

const FILTERS: readonly { label: Label; level: LevelFilter }[] = [
  { label: "All", level: null },
  { label: "Information", level: LogLevel.information },
  { label: "Errors", level: LogLevel.error },
];

/** Scrolled this near to its end, the log follows its newest line. */
const FOLLOW_DISTANCE_PX = 24;
/** So many lines are drawn where it's scrolled: what is seen, and enough around it to scroll on. */
const DRAWN = 150;
/** While it follows, so many more than fit. */
const SPARE = 5;
/** Scrolled this near to the first or last drawn line, the log draws those around what is seen. */
const MARGIN_PX = 400;
/** What a line takes that isn't drawn. */
const LINE_PX = 20;

/** The log as it was when it was paused, or scrolled away from its end. */
interface StandStill {
  lines: Tail<LogLine>;
  count: number;
  /** Coming to the end again is enough to go on. */
  byScrolling: boolean;
}

export function LogPanel({ host, desk, shown }: PanelProps) {
  const [level, setLevel] = useState<LevelFilter>(null);
  const [text, setText] = useState("");
  const [still, setStill] = useState<StandStill | null>(null);
  /** How many lines fit in the box. */
  const [fits, setFits] = useState(0);
  /** Which lines are drawn: those before this one; null: the newest. */
  const [end, setEnd] = useState<number | null>(null);
  /** Marked anew by each key, the line comes into sight again. */
  const [mark, setMark] = useState<{ number: number } | null>(null);
  const marked = mark?.number ?? null;
  const list = useRef<HTMLDivElement>(null);
  const drawn = useRef<HTMLDivElement>(null);

  const { log } = host;
  if (shown) {
    log.published.value; // what is hidden needn't follow
  }
  const search = useMemo(() => new LogSearch(level, text), [level, text]);
  const { lines, count } = still ?? log;
  const found = search.in(lines);
  const last = Math.min(end ?? found.length, found.length);
  const first = Math.max(0, last - (end === null && still === null ? fits + SPARE : DRAWN));
  const seen = found.slice(first, last);
  const waiting = log.count - count;
  const all = lines.length === 1 ? t("1 line") : t("{count} lines", { count: lines.length });

  const standStill = (byScrolling: boolean) => {
    setStill(still ?? { lines: new Tail(log.lines.slice()), count: log.count, byScrolling });
  };
  const toEnd = () => {
    setEnd(null);
    list.current!.scrollTop = 0;
  };
  const goOn = () => {
    setStill(null);
    toEnd();
  };
  const clear = () => {
    host.log.clear();
    setStill(still && { ...still, lines: new Tail(), count: log.count });
    setEnd(null);
  };

  useLayoutEffect(() => {
    const watch = new ResizeObserver(() => setFits(Math.ceil(list.current!.clientHeight / LINE_PX)));
    watch.observe(list.current!);
    return () => watch.disconnect();
  }, []);

  // The line in the middle stays where it is when others are drawn around it.
  const kept = useRef<{ line: HTMLElement; top: number } | null>(null);
  useLayoutEffect(() => {
    const { line, top } = kept.current ?? {};
    kept.current = null;
    if (line?.isConnected) {
      list.current!.scrollTop += line.getBoundingClientRect().top - top!;
    }
  }, [end]);
  const follow = () => {
    // The box lies on its lines' end: from there it's scrolled by negative numbers.
    if (list.current!.scrollTop > -FOLLOW_DISTANCE_PX) {
      setEnd(null);
      setStill(still?.byScrolling === true ? null : still);
      return;
    }
    standStill(true);
    const box = list.current!.getBoundingClientRect();
    const block = drawn.current!.getBoundingClientRect();
    const isLate = (first > 0 && block.top > box.top - MARGIN_PX) || (last < found.length && block.bottom < box.bottom + MARGIN_PX);
    if (isLate) {
      const middle = (box.top + box.bottom) / 2;
      const inBlock = Math.min(block.bottom, Math.max(block.top, middle));
      const at = Math.floor(((inBlock - block.top) / (block.height + 1)) * seen.length);
      const line = drawn.current!.children[at] as HTMLElement | undefined;
      kept.current = line && inBlock === middle ? { line, top: line.getBoundingClientRect().top } : null;
      drawAround(first + at + (middle - inBlock) / LINE_PX);
    }
  };
  const drawAround = (index: number) => {
    setEnd(Math.min(found.length, Math.max(DRAWN, Math.round(index + DRAWN / 2))));
  };

  /** Leads to the node that a line tells of. */
  const goTo = (line: LogLine | undefined) => {
    const node = line && nodeOfLine(line.text, host.nodes.peek() ?? []);
    if (node != null) {
      desk.goTo(node);
    }
  };
  const indexOf = (number: number | null) => found.slice().findIndex((line) => line.number === number);
  const step = (event: KeyboardEvent) => {
    const now = indexOf(marked);
    const wanted = {
      ArrowUp: now < 0 ? last - 1 : now - 1,
      ArrowDown: now < 0 ? last - 1 : now + 1,
      Home: 0,
      End: found.length - 1,
    }[event.key];
    if (wanted !== undefined) {
      event.preventDefault();
      const next = Math.max(0, Math.min(found.length - 1, wanted));
      standStill(false);
      const line = found.at(next);
      setMark(line === undefined ? null : { number: line.number });
      if (next < first || next >= last) {
        drawAround(next);
      }
    } else if (event.key === "Enter") {
      goTo(found.at(now));
    }
  };
  const isMarkedDrawn = seen.some(({ number }) => number === marked);
  useLayoutEffect(() => {
    document.getElementById(idOf(marked))?.scrollIntoView({ block: "nearest" });
  }, [mark]);

  return (
    <>
      <div class="panel-head log-head">
        <div class="segments" role="group" aria-label={t("Level")}>
          {FILTERS.map((filter) => (
            <button
              type="button"
              key={filter.label}
              aria-pressed={level === filter.level}
              data-level={filter.level ?? "all"}
              onClick={() => {
                setLevel(filter.level);
                toEnd();
              }}
            >
              {t(filter.label)}
            </button>
          ))}
        </div>
        <input
          type="search"
          class="field log-search"
          placeholder={t("Search")}
          aria-label={t("Search the log")}
          value={text}
          onInput={(event) => {
            setText(event.currentTarget.value);
            toEnd();
          }}
        />
        <span class="hint" data-log-shown={found.length}>
          {found.length === lines.length ? all : t("{shown} of {all}", { shown: found.length, all })}
        </span>
        <button type="button" aria-pressed={still !== null} onClick={() => (still === null ? standStill(false) : goOn())}>
          {still === null ? t("Pause") : waiting > 0 ? t("Go on ({count} new)", { count: waiting }) : t("Go on")}
        </button>
        <button type="button" onClick={clear}>
          {t("Clear")}
        </button>
      </div>
      {found.length === 0 && <p class="empty">{lines.length === 0 ? t("Nothing logged yet.") : t("No line matches.")}</p>}
      <div
        class="log"
        ref={list}
        tabIndex={0}
        role="listbox"
        aria-label={t("Log lines")}
        aria-activedescendant={isMarkedDrawn ? idOf(marked) : undefined}
        data-log
        title={t("A click on a line leads to its node; so do arrow keys and Enter.")}
        onKeyDown={step}
        onClick={({ target }) => {
          const line = (target as Element).closest("[data-line]")?.getAttribute("data-line");
          if (line != null && getSelection()?.isCollapsed !== false) {
            goTo(seen.find(({ number }) => number === Number(line)));
          }
        }}
        onScroll={follow}
      >
        <div class="log-lines">
          <div style={{ height: `${first * LINE_PX}px` }} />
          <div ref={drawn}>
            {seen.map((line) => (
              <Line key={line.number} line={line} isMarked={line.number === marked} />
            ))}
          </div>
          <div style={{ height: `${(found.length - last) * LINE_PX}px` }} />
        </div>
      </div>
    </>
  );
}

function idOf(number: number | null): string {
  return `log-line-${number}`;
}

const Line = memo(function Line({ line, isMarked }: { line: LogLine; isMarked: boolean }) {
  const { translated } = line;
  return (
    <div
      class={`log-line${line.level === LogLevel.error ? " line-error" : ""}${isMarked ? " line-marked" : ""}`}
      id={idOf(line.number)}
      role="option"
      aria-selected={isMarked}
      // Of all lines only some are drawn.
      aria-setsize={-1}
      aria-posinset={line.number}
      data-log-level={line.level}
      data-line={line.number}
    >
      <time>{timeOfDay(line.time)}</time>
      <span class="line-level">{levelName(line.level)}</span>
      {translated !== null ? (
        <span class="line-text" title={line.text}>
          {translated}
        </span>
      ) : (
        <span class="line-text">
          <LongText {...line.cut} />
        </span>
      )}
    </div>
  );
});
