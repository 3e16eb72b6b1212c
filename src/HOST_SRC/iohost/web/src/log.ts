import { signal } from "@preact/signals";
import { language, t } from "./i18n.ts";
import { translationOf } from "./logTexts.ts";
import type { LogEntry, NumberedLine } from "./messages.ts";
import { Tail } from "./tail.ts";
import { cutText, type CutText } from "./texts.ts";

/** As many as the host keeps. */
export const LOG_LIMIT = 10_000;

export const LogLevel = { information: 4, error: 32 } as const;

export class LogLine {
  readonly level: number;
  /** The whole text, or how it begins. */
  readonly cut: CutText;
  #translation: ReturnType<typeof translationOf> | undefined;

  /** The number grows by one a line; the time is when it was logged, in milliseconds since 1970. */
  constructor(
    { level, text, length }: LogEntry,
    readonly number: number,
    readonly time: number,
  ) {
    this.level = level;
    this.cut = cutText({ text, length });
  }

  get text(): string {
    return this.cut.text;
  }

  /** What the line says in the other language; null where it isn't known. Found out when it's first read: most lines never are. */
  get translation() {
    if (this.#translation === undefined) {
      this.#translation = translationOf(this.text);
    }
    return this.#translation;
  }

  /** The whole line in the reader's language; null where it stands as it is. */
  get translated(): string | null {
    return this.translation?.language === language.value ? this.translation.text : null;
  }
}

/** Null: every level. */
export type LevelFilter = number | null;

/** The newest lines of the log, of long ones the beginning. */
export class LogBuffer {
  /** Grows whenever what there is now is to be shown. */
  readonly published = signal(0);
  #lines = new Tail<LogLine>();
  #count = 0;
  /** The number of the last line that was cleared away. */
  #cleared = 0;

  /** Lines are added and dropped at its ends. Once cleared or read anew it's another object. */
  get lines(): Tail<LogLine> {
    return this.#lines;
  }

  /** How many lines there have ever been. */
  get count(): number {
    return this.#count;
  }

  append(entries: readonly LogEntry[], time: number): void {
    for (const entry of entries) {
      this.#lines.push(new LogLine(entry, ++this.#count, time));
      if (this.#lines.length > LOG_LIMIT) {
        this.#lines.shift();
      }
    }
  }

  /** Begins anew with what the host kept; what was cleared here stays away. */
  read(kept: readonly NumberedLine[]): void {
    const last = kept.at(-1)?.n ?? 0;
    const cleared = last < this.#cleared ? 0 : this.#cleared; // another run of the host counts from the beginning
    this.#lines = new Tail(kept.filter(({ n }) => n > cleared).map((line) => new LogLine(line, line.n, line.ms)));
    this.#count = last;
    this.#cleared = cleared;
    this.publish();
  }

  clear(): void {
    this.#lines = new Tail();
    this.#cleared = this.#count;
    this.publish();
  }

  publish(): void {
    this.published.value += 1;
  }
}

/** The lines that fit a level and a text. Of lines that it knows it looks at those that came since. */
export class LogSearch {
  readonly #level: LevelFilter;
  readonly #wanted: string;
  #lines: Tail<LogLine> | null = null;
  #found = new Tail<LogLine>();
  #last = 0;

  constructor(level: LevelFilter, search: string) {
    this.#level = level;
    this.#wanted = search.trim().toLowerCase();
  }

  in(lines: Tail<LogLine>): Tail<LogLine> {
    if (lines !== this.#lines) {
      this.#lines = lines;
      this.#found = new Tail();
      this.#last = 0;
    }
    const first = lines.at(0)?.number ?? 0;
    while (this.#found.length > 0 && this.#found.at(0)!.number < first) {
      this.#found.shift();
    }
    for (let index = Math.max(0, this.#last + 1 - first); index < lines.length; ++index) {
      const line = lines.at(index)!;
      if (this.#fits(line)) {
        this.#found.push(line);
      }
      this.#last = line.number;
    }
    return this.#found;
  }

  #fits(line: LogLine): boolean {
    const has = (text = "") => text.toLowerCase().includes(this.#wanted);
    return (
      (this.#level === null || line.level === this.#level) && (this.#wanted === "" || has(line.text) || has(line.translation?.text))
    );
  }
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
