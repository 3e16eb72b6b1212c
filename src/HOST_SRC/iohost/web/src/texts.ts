// Texts of any length: the host and the page show how they begin.
import { t } from "./i18n.ts";

/** How much of a text is shown. */
const MOST_SHOWN = 1000;

/** A text, or the beginning of one. */
export interface CutText {
  text: string;
  /** Of the whole text, in UTF-16 units, where this is the beginning only. */
  length?: number | undefined;
}

/** The beginning of a text that may have been cut before. */
export function cutText({ text, length = text.length }: CutText, most = MOST_SHOWN): CutText {
  if (text.length > most) {
    const isInCharacter = /[\uD800-\uDBFF]/.test(text[most - 1]!);
    return { text: text.slice(0, isInCharacter ? most - 1 : most), length };
  }
  return length > text.length ? { text, length } : { text };
}

/** "1,048,576 characters" */
export function characters(length: number): string {
  return t("{count} characters", { count: length.toLocaleString("en") });
}

/** What is to be known of a text that was cut. */
export function lengthText({ text, length }: CutText): string | undefined {
  return length === undefined
    ? undefined
    : t("{characters}: these are the first {count}", {
        characters: characters(length),
        count: text.length.toLocaleString("en"),
      });
}

/** A text that stands among others, with dots for what is left out. */
export function shortText(text: string, most = 100): string {
  const cut = cutText({ text }, most);
  return cut.length === undefined ? text : `${cut.text}…`;
}
