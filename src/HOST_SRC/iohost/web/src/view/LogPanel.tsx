import { memo } from "preact/compat";
import { useEffect, useMemo, useRef, useState } from "preact/hooks";
import { timeOfDay } from "../format.ts";
import { language, t, type Label } from "../i18n.ts";
import { filterLog, levelName, LogLevel, type LevelFilter, type LogLine } from "../log.ts";
import { nodeOfLine } from "../logNodes.ts";
import "./log.css";
import { LongText } from "./LongText.tsx";
import type { PanelProps } from "./panels.ts";

const FILTERS: readonly { label: Label; level: LevelFilter }[] = [
  { label: "All", level: null },
  { label: "Information", level: LogLevel.information },
  { label: "Errors", level: LogLevel.error },
];

/** Scrolled this near to its end, the log keeps following its newest line. */
const FOLLOW_DISTANCE_PX = 24;

export function LogPanel({ host, desk }: PanelProps) {
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

  /** Leads to the node that a line tells of. */
  const goTo = (number: number | null) => {
    const line = shown.find((one) => one.number === number);
    const node = line && nodeOfLine(line.text, host.nodes.peek() ?? []);
    if (node != null) {
      desk.goTo(node);
    }
  };
  const [marked, setMarked] = useState<number | null>(null);
  const step = (event: KeyboardEvent) => {
    const by = { ArrowDown: 1, ArrowUp: -1 }[event.key];
    if (by !== undefined) {
      event.preventDefault();
      const index = shown.findIndex(({ number }) => number === marked);
      const next = index < 0 ? shown.length - 1 : Math.max(0, Math.min(shown.length - 1, index + by));
      setMarked(shown[next]?.number ?? null);
      list.current?.querySelectorAll("[data-line]")[next]?.scrollIntoView({ block: "nearest" });
    } else if (event.key === "Enter") {
      goTo(marked);
    }
  };
  const clear = () => {
    host.clearLog();
    setPaused(paused && { lines: [], count: live.count });
  };

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
              onClick={() => setLevel(filter.level)}
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
          value={search}
          onInput={(event) => setSearch(event.currentTarget.value)}
        />
        <span class="hint" data-log-shown={shown.length}>
          {shown.length === lines.length
            ? t("{count} lines", { count: lines.length })
            : t("{shown} of {count} lines", { shown: shown.length, count: lines.length })}
        </span>
        <button type="button" aria-pressed={paused !== null} onClick={() => setPaused(paused === null ? live : null)}>
          {paused === null ? t("Pause") : waiting > 0 ? t("Go on ({count} new)", { count: waiting }) : t("Go on")}
        </button>
        <button type="button" onClick={clear}>
          {t("Clear")}
        </button>
      </div>
      <div
        class="log"
        ref={list}
        tabIndex={0}
        role="log"
        aria-label={t("Log lines")}
        aria-live="off"
        data-log
        title={t("A click on a line leads to its node; so do arrow keys and Enter.")}
        onKeyDown={step}
        onClick={({ target }) => {
          const line = (target as Element).closest("[data-line]")?.getAttribute("data-line");
          if (line != null && getSelection()?.isCollapsed !== false) {
            goTo(Number(line));
          }
        }}
        onScroll={({ currentTarget: { scrollTop, scrollHeight, clientHeight } }) => {
          follows.current = scrollHeight - scrollTop - clientHeight < FOLLOW_DISTANCE_PX;
        }}
      >
        {shown.length === 0 && <p class="empty">{lines.length === 0 ? t("Nothing logged yet.") : t("No line fits.")}</p>}
        {shown.map((line) => (
          <Line key={line.number} line={line} isMarked={line.number === marked} />
        ))}
      </div>
    </>
  );
}

const Line = memo(function Line({ line, isMarked }: { line: LogLine; isMarked: boolean }) {
  return (
    <div
      class={`line${line.level === LogLevel.error ? " line-error" : ""}${isMarked ? " line-marked" : ""}`}
      data-log-level={line.level}
      data-line={line.number}
    >
      <time>{timeOfDay(line.time)}</time>
      <span class="line-level">{levelName(line.level)}</span>
      {line.english !== undefined && language.value === "en" ? (
        <span class="line-text" title={line.text}>
          {line.english}
        </span>
      ) : (
        <span class="line-text">
          <LongText text={line.text} length={line.length} />
        </span>
      )}
    </div>
  );
});
