import { STARTS } from "./graph/starts.ts";
import { hostText } from "./hostTexts.ts";
import { t } from "./i18n.ts";
import type { OthersStep } from "./messages.ts";
import type { Step } from "./protocol.ts";

/** Steps of one thing, as the host names them, or a page its batches. */
const OF_SOMETHING = [
  "Add {what}",
  "Delete {what}",
  "Rename {what}",
  "Change {what}",
  "Link {what}",
  "Unlink {what}",
  "Move {what}",
  "Add object {what}",
  "Change object {what}",
  "Remove object {what}",
  "Add device {what}",
  "Change device {what}",
  "Remove device {what}",
  "Open {what}",
  "Recover {what}",
  "Paste {what}",
  "Duplicate {what}",
  "Choose device {what}",
  "Begin with {what}",
] as const;

/** Steps that name nothing. */
const OTHERS = [
  "Change notes",
  "Change devices",
  "Change the scene",
  "Open a scene",
  "Recover a scene",
  "Unlink",
] as const;

/** Steps that take something away. */
const TAKING = /^(Delete|Unlink|Remove|Open|Recover)\b/;

/** What is said here of a step that was taken elsewhere; null of one that takes nothing away. */
export function othersStepText({ was, step }: OthersStep): string | null {
  const text = { step: stepText(step) };
  switch (was) {
    case "taken":
      return TAKING.test(step.name) ? t("Elsewhere: {step}", text) : null;
    case "undone":
      return t("Undone elsewhere: {step}", text);
    case "redone":
      return t("Done again elsewhere: {step}", text);
  }
}

/** What a step did, in the reader's language. */
export function stepText(step: Step): string {
  return step.param === undefined ? nameText(step) : `${nameText(step)} · ${hostText(step.param)}`;
}

/** The name of a step, which the host and who sends a batch name in English. */
function nameText({ name, op, of }: Step): string {
  const other = OTHERS.find((one) => one === name);
  if (other !== undefined && of === undefined) {
    return t(other);
  }
  // What a batch is of only its name tells.
  const pattern = OF_SOMETHING.find((one) => (op === "batch" ? name.startsWith(beginning(one)) : name === beginning(one) + of));
  return pattern === undefined ? name : t(pattern, { what: whatText(pattern, name.slice(beginning(pattern).length)) });
}

function beginning(pattern: (typeof OF_SOMETHING)[number]): string {
  return pattern.replace("{what}", "");
}

/** What a step is of: one thing, two that belong together, or numbers of nodes and notes. */
function whatText(pattern: (typeof OF_SOMETHING)[number], what: string): string {
  const [, from, to] = (pattern === "Unlink {what}" ? /^(.*?) from (.*)$/s : /^(.*?) to (.*)$/s).exec(what) ?? [];
  switch (pattern) {
    case "Link {what}":
    case "Rename {what}":
      return from === undefined ? what : t("{from} to {to}", { from, to: to! });
    case "Unlink {what}":
      return from === undefined ? what : t("{from} from {to}", { from, to: to! });
    case "Begin with {what}":
      return STARTS.some(({ name }) => name === what) ? t(what as (typeof STARTS)[number]["name"]) : what;
    case "Add {what}":
    case "Delete {what}":
    case "Duplicate {what}":
    case "Paste {what}":
      return partsText(what);
    default:
      return nodesText(what);
  }
}

/** Nodes and notes in the reader's language: one by its name, several by their number. */
export function partsText(what: string): string {
  const [, nodes, notes, count] = /^(?:(.+) and )?(a note|(\d+) notes)$/s.exec(what) ?? [];
  if (notes === undefined) {
    return nodesText(what);
  }
  const second = count === undefined ? t("a note") : t("{count} notes", { count });
  return nodes === undefined ? second : t("{first} and {second}", { first: nodesText(nodes), second });
}

function nodesText(what: string): string {
  const [, count] = /^(\d+) nodes$/.exec(what) ?? [];
  return count === undefined ? what : t("{count} nodes", { count });
}
