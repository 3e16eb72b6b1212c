import { t } from "../i18n.ts";
import type { Param } from "../messages.ts";
import { kindOf, type ParamKind } from "../params.ts";
import type { OutputValue } from "../protocol.ts";

/** What a pin carries. */
export type PinSort = "event" | "integer" | "float" | "text";

const SORTS: Record<ParamKind, PinSort> = {
  switch: "integer",
  integer: "integer",
  choice: "integer",
  keyCode: "integer",
  float: "float",
  text: "text",
  event: "event",
  other: "text",
};

type Kinds = Pick<Param, "type" | "control">;

export function sortOf(param: Kinds): PinSort {
  return SORTS[kindOf(param)];
}

/**
 * The sorts that pins of a sort can be wired to, the best first. A link copies values as they stand, but for numbers, which
 * inputs for whole numbers get rounded.
 */
export function fittingSorts(is: "output" | "input", sort: PinSort): PinSort[] {
  const rounded: PinSort[] = is === "output" ? (sort === "float" ? ["integer"] : []) : sort === "integer" ? ["float"] : [];
  return [sort, ...rounded];
}

/** Why an output can't be linked to an input; null when it can. */
export function refusal(from: { node: string; param: Kinds }, to: { node: string; param: Kinds }): string | null {
  if (from.node === to.node) {
    return t("A node can't be linked to itself.");
  }
  const [output, input] = [sortOf(from.param), sortOf(to.param)];
  if (fittingSorts("output", output).includes(input)) {
    return null;
  }
  const values = { output: nameOf(output), input: nameOf(input) };
  return output === "integer" && input === "float"
    ? t("An output with {output} gives no value to an input for {input}: links don't convert this.", values)
    : t("An output with {output} doesn't fit an input for {input}.", values);
}

/** What a wire changes on the way: a number that is taken for a switch, say; null when it's the same at both ends. */
export function conversion(from: Kinds, to: Kinds): string | null {
  const [output, input] = [kindOf(from), kindOf(to)];
  if (isRounded(from, to)) {
    return input === "integer"
      ? t("rounded to the nearest whole number")
      : t("rounded to the nearest whole number, taken as {input}", { input: kindName(input) });
  }
  return output === input || sortOf(from) !== "integer" ? null : t("{output} taken as {input}", { output: kindName(output), input: kindName(input) });
}

function isRounded(from: Kinds, to: Kinds): boolean {
  return sortOf(from) === "float" && sortOf(to) === "integer";
}

/** What an input gets of an output's value. */
export function broughtValue(from: Kinds, to: Kinds, value: OutputValue): OutputValue {
  return isRounded(from, to) ? { ...value, int: nearestInteger(value.float) } : value;
}

/** A half is rounded away from 0: Math.round() alone takes -2.5 to -2. */
function nearestInteger(number: number): number {
  const nearest = Math.sign(number) * Math.round(Math.abs(number));
  return Math.max(-(2 ** 31), Math.min(2 ** 31 - 1, nearest)) || 0;
}

function kindName(kind: ParamKind): string {
  switch (kind) {
    case "switch":
      return t("switch");
    case "choice":
      return t("choice");
    case "keyCode":
      return t("key code");
    default:
      return t("whole number");
  }
}

function nameOf(sort: PinSort): string {
  return { event: t("events"), integer: t("whole numbers"), float: t("numbers"), text: t("texts") }[sort];
}

/** The first name of the form "Mouse 2" that isn't taken. */
export function freeName(name: string, taken: ReadonlySet<string>): string {
  let number = 1;
  while (taken.has(`${name} ${number}`)) {
    ++number;
  }
  return `${name} ${number}`;
}
