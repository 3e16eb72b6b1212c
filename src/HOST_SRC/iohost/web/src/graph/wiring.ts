import { t } from "../i18n.ts";
import { kindOf, type ParamKind } from "../params.ts";
import type { Param } from "../messages.ts";

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

export function sortOf(param: Pick<Param, "type" | "control">): PinSort {
  return SORTS[kindOf(param)];
}

/** Why an output can't be linked to an input; null when it can. */
export function refusal(from: { node: string; sort: PinSort }, to: { node: string; sort: PinSort; linked: boolean }): string | null {
  if (from.node === to.node) {
    return t("A node can't be linked to itself.");
  }
  if (from.sort !== to.sort) {
    return t("An output with {values} doesn't fit an input for {others}.", { values: nameOf(from.sort), others: nameOf(to.sort) });
  }
  if (to.linked && to.sort !== "event") {
    return t("The input has a source already.");
  }
  return null;
}

const NAMES = { event: "events", integer: "whole numbers", float: "numbers", text: "texts" } as const;

function nameOf(sort: PinSort): string {
  return t(NAMES[sort]);
}

/** The first name of the form "Mouse 2" that isn't taken. */
export function freeName(name: string, taken: ReadonlySet<string>): string {
  let number = 1;
  while (taken.has(`${name} ${number}`)) {
    ++number;
  }
  return `${name} ${number}`;
}
