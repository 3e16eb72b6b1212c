import { t } from "./i18n.ts";
import { inEnglish } from "./logTexts.ts";
import type { LogEntry, NumberedLine } from "./messages.ts";
import { cutText } from "./texts.ts";

export const LOG_LIMIT = 1000;

export const LogLevel = { information: 4, error: 32 } as const;

export interface LogLine extends LogEntry {
  /** Grows by one a line. */
  number: number;
  /** When it was logged, in milliseconds since 1970. */
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
  /** The number of the last line that was cleared away. */
  #cleared = 0;

  get lines(): readonly LogLine[] {
    return this.#lines;
  }

  /** How many lines there have ever been. */
  get count(): number {
    return this.#count;
  }

  append(entries: readonly LogEntry[], time: number): void {
    for (const entry of entries) {
      this.#lines.push(lineOf(entry, ++this.#count, time));
    }
    this.#lines = this.#lines.slice(-LOG_LIMIT);
  }

  /** Begins anew with what the host kept; what was cleared here stays away. */
  read(kept: readonly NumberedLine[]): void {
    const last = kept.at(-1)?.n ?? 0;
    const cleared = last < this.#cleared ? 0 : this.#cleared; // another run of the host counts from the beginning
    this.#lines = kept.filter(({ n }) => n > cleared).slice(-LOG_LIMIT).map((line) => lineOf(line, line.n, line.ms));
    this.#count = last;
    this.#cleared = cleared;
  }

  clear(): void {
    this.#lines = [];
    this.#cleared = this.#count;
  }
}

function lineOf({ level, ...text }: LogEntry, number: number, time: number): LogLine {
  const cut = cutText({ text: text.text, length: text.length });
  const english = inEnglish(cut.text);
  return { number, time, level, ...cut, ...(english !== undefined && { english }) };
}

export function filterLog(lines: readonly LogLine[], level: LevelFilter, search: string): LogLine[] {
  const wanted = search.trim().toLowerCase();
  return lines.filter(
    (line) =>
      (level === null || line.level === level) &&
      (wanted === "" || `${line.text}\n${line.english ?? ""}`.toLowerCase().includes(wanted)),
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
