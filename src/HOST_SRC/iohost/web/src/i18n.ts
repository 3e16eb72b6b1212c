// The page's texts in the reader's language. The English text is the key; the tables have the others.
import { signal } from "@preact/signals";
import { ZH } from "./texts.zh.ts";

export type Language = "en" | "zh";
export const LANGUAGES: readonly { language: Language; name: string }[] = [
  { language: "en", name: "EN" },
  { language: "zh", name: "中文" },
];

/** A text of the page that the tables have. */
export type Text = keyof typeof ZH;
/** One without values. */
export type Label = Exclude<Text, `${string}{${string}`>;
type NamesIn<Key extends string> = Key extends `${string}{${infer Name}}${infer Rest}` ? Name | NamesIn<Rest> : never;
type ValuesOf<Key extends string> = [NamesIn<Key>] extends [never] ? [] : [values: Record<NamesIn<Key>, string | number>];

export const language = signal<Language>("en");

/** The text in the reader's language, with the values in place of their {names}. What renders it follows the language. */
export function t<Key extends Text>(key: Key, ...[values]: ValuesOf<Key>): string {
  const text = language.value === "zh" ? ZH[key] : key;
  return text.replace(/\{(\w+)\}/g, (_, name: NamesIn<Key>) => String(values![name]));
}

/** The language that was chosen before, or else the first one of the reader's that there is. */
export function preferredLanguage(chosen: string | null, wanted: readonly string[]): Language {
  const known = [chosen ?? "", ...wanted].map((tag) => LANGUAGES.find(({ language }) => tag.split("-")[0] === language));
  return known.find((found) => found !== undefined)?.language ?? "en";
}

const STORAGE_KEY = "iohost.language";

/** Follows the browser's languages until one is chosen. */
export function startLanguage(): void {
  language.value = preferredLanguage(localStorage.getItem(STORAGE_KEY), navigator.languages);
  language.subscribe((now) => (document.documentElement.lang = now));
}

export function chooseLanguage(chosen: Language): void {
  localStorage.setItem(STORAGE_KEY, chosen);
  language.value = chosen;
}
