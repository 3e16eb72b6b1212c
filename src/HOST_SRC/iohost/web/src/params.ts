import { t } from "./i18n.ts";
import type { Param } from "./messages.ts";
import type { OutputValue } from "./protocol.ts";
import { floatText } from "./format.ts";
import { cutText, type CutText } from "./texts.ts";

/** How a parameter is shown and edited, by its type and control codes. */
export type ParamKind = "switch" | "integer" | "float" | "text" | "choice" | "keyCode" | "event" | "other";

const KINDS: Record<string, ParamKind> = {
  "5/5": "switch",
  "5/1": "switch",
  "2/1": "integer",
  "2/2": "float",
  "1/6": "text",
  "4/1": "choice",
  "38/1": "keyCode",
  "26/7": "event",
};

export function kindOf(param: Pick<Param, "type" | "control">): ParamKind {
  return KINDS[`${param.type}/${param.control}`] ?? "other";
}

/** What `edit` carries for a parameter of this kind. */
export type EditValue = { int: number } | { float: number } | { string: string } | { choice: number };

/** What was typed for a number, as the value to send; null when it isn't one that the parameter takes. */
export function parseNumber(text: string, kind: ParamKind, range: Param["range"]): EditValue | null {
  const value = Number(text);
  if (text.trim() === "" || !Number.isFinite(value)) {
    return null;
  }
  const bounds = boundsOf(range);
  if (bounds !== null && (value < bounds.min || value > bounds.max)) {
    return null;
  }
  if (kind === "float") {
    return { float: value };
  }
  const isInt32 = Number.isInteger(value) && value >= -(2 ** 31) && value < 2 ** 31;
  return isInt32 ? { int: value } : null;
}

/** The least and the greatest value; null where the declaration leaves them open. */
export function boundsOf(range: Param["range"]): { min: number; max: number; step: number } | null {
  if (range === null) {
    return null;
  }
  const [, min, max, step] = range;
  return min < max ? { min, max, step } : null;
}

/** A value as it's read. */
export function valueText(param: Param, value: OutputValue): string {
  switch (kindOf(param)) {
    case "switch":
      return value.int !== 0 ? t("on") : t("off");
    case "integer":
    case "keyCode":
      return String(value.int);
    case "float":
      return floatText(value.float);
    case "choice":
      return param.choices[value.int] ?? String(value.int);
    case "text":
      return value.string;
    case "event":
      return "";
    case "other":
      return value.string !== "" ? value.string : String(value.int);
  }
}

/** A value as it's shown. */
export function shownValue(param: Param, value: OutputValue): CutText {
  const text = valueText(param, value);
  // A number's string may be long too: values are linked whole.
  return cutText({ text, length: text === value.string ? value.length : undefined });
}
