// Texts for the JSON nodes: whom they are for, which were sent, and what the nodes made of them.
import { t } from "./i18n.ts";
import type { JsonVerdict } from "./protocol.ts";
import { shortText } from "./texts.ts";

/** Whom a text is from or for. */
export type TextAddress = { to: "device"; device: number } | { to: "object"; clip: string; object: string };

/** A text as it was sent. */
export type SentText = TextAddress & { text: string };

/** A verdict in words. */
export function verdictText(verdict: JsonVerdict): string {
  switch (verdict.verdict) {
    case "taken":
      return t("taken");
    case "not_json":
      return t("not JSON");
    case "not_object":
      return t("JSON, but not an object");
    case "not_ready":
      return t("the node isn't ready: no clip, no evaluation yet, or an input is missing");
    case "other_device":
      return t("from device {device}, not {expected}", verdict);
    case "other_object":
      return t("for {object}, not {expected}", {
        object: shortName(verdict.clip, verdict.object),
        expected: shortName(verdict.expected_clip, verdict.expected_object),
      });
    case "key_missing":
      return t("no key “{key}”", { key: shortText(verdict.key) });
    case "value_differs":
      return t("“{key}” is “{value}”, not “{expected}”", {
        key: shortText(verdict.key),
        value: shortText(verdict.value),
        expected: shortText(verdict.expected),
      });
  }
}

export function addressText(address: TextAddress): string {
  return address.to === "device" ? t("device {device}", { device: address.device }) : objectName(address.clip, address.object);
}

function shortName(clip: string, object: string): string {
  return objectName(shortText(clip), shortText(object));
}

function objectName(clip: string, object: string): string {
  return clip === "" && object === "" ? t("no object") : `${clip}.${object}`;
}

/** How many texts are kept. */
const MOST_TEXTS = 20;

/** The texts with one more in front; the same one to the same address isn't kept twice. */
export function withText(texts: readonly SentText[], sent: SentText): SentText[] {
  const others = texts.filter((one) => one.text !== sent.text || addressText(one) !== addressText(sent) || one.to !== sent.to);
  return [sent, ...others].slice(0, MOST_TEXTS);
}

const STORAGE_KEY = "iohost.sent-texts";

/** The texts that this browser keeps; none when it keeps nothing or something else. */
export function readTexts(storage: Pick<Storage, "getItem">): SentText[] {
  try {
    const kept: unknown = JSON.parse(storage.getItem(STORAGE_KEY) ?? "[]");
    return Array.isArray(kept) ? kept.filter(isSentText).slice(0, MOST_TEXTS) : [];
  } catch {
    return [];
  }
}

/** Keeps the texts beyond a reload, where the browser lets it. */
export function keepTexts(storage: Pick<Storage, "setItem">, texts: readonly SentText[]): void {
  try {
    storage.setItem(STORAGE_KEY, JSON.stringify(texts));
  } catch {
    // Full, or forbidden: then they last as long as the page.
  }
}

function isSentText(value: unknown): value is SentText {
  const one = value as Partial<Record<string, unknown>> | null;
  return (
    typeof one?.text === "string" &&
    (one.to === "device"
      ? typeof one.device === "number"
      : one.to === "object" && typeof one.clip === "string" && typeof one.object === "string")
  );
}
