import { t } from "../i18n.ts";
import type { Param } from "../messages.ts";
import { kindOf, type ParamKind } from "../params.ts";

/** What a pin carries. A link copies values as they stand, so that only pins of one sort fit. */
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

/** Why an output can't be linked to an input; null when it can. */
export function refusal(from: { node: string; param: Kinds }, to: { node: string; param: Kinds }): string | null {
  if (from.node === to.node) {
    return t("A node can't be linked to itself.");
  }
  const [output, input] = [sortOf(from.param), sortOf(to.param)];
  if (output === input) {
    return null;
  }
  const values = { output: nameOf(output), input: nameOf(input) };
  return output === "event" || input === "event" || output === "text" || input === "text"
    ? t("An output with {output} doesn't fit an input for {input}.", values)
    : t("An output with {output} brings nothing to an input for {input}: links copy values as they stand.", values);
}

/** What a wire changes on the way: a number that is taken for a switch, say; null when it's the same at both ends. */
export function conversion(from: Kinds, to: Kinds): string | null {
  const [output, input] = [kindOf(from), kindOf(to)];
  return output === input || sortOf(from) !== "integer" ? null : t("{output} taken as {input}", { output: kindName(output), input: kindName(input) });
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
