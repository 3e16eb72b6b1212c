import { t } from "./i18n.ts";
import { inEnglish } from "./logTexts.ts";
import type { LogEntry } from "./messages.ts";
import { cutText } from "./texts.ts";

export const LOG_LIMIT = 1000;

export const LogLevel = { information: 4, error: 32 } as const;

export interface LogLine extends LogEntry {
  /** Grows by one a line. */
  number: number;
  /** When the page heard of it, in milliseconds since 1970. */
  time: number;
  /** What the module's line says. */
  english?: string;
}

/** Null: every level. */
export type LevelFilter = number | null;

/** The newest lines of the log, of long ones the beginning. */
export class LogBuffer {
  #lines: LogLine[] = [];
  #count = 0;

  get lines(): readonly LogLine[] {
    return this.#lines;
  }

  /** How many lines there have ever been. */
  get count(): number {
    return this.#count;
  }

  append(entries: readonly LogEntry[], time: number): void {
    for (const { level, ...text } of entries) {
      const cut = cutText(text);
      const english = inEnglish(cut.text);
      this.#lines.push({ number: ++this.#count, time, level, ...cut, ...(english !== undefined && { english }) });
    }
    if (this.#lines.length > LOG_LIMIT) {
      this.#lines = this.#lines.slice(-LOG_LIMIT);
    }
  }

  clear(): void {
    this.#lines = [];
  }
}

export function filterLog(lines: readonly LogLine[], level: LevelFilter, search: string): LogLine[] {
  const wanted = search.trim().toLowerCase();
  return lines.filter(
    (line) => (level === null || line.level === level) && (wanted === "" || `${line.text}\n${line.english ?? ""}`.toLowerCase().includes(wanted)),
  );
}

export function levelName(level: number): string {
  switch (level) {
    case LogLevel.information:
      return t("info");
    case LogLevel.error:
      return t("error");
    default:
      return t("level {level}", { level });
  }
}
