import { t } from "./i18n.ts";
import type { Step } from "./protocol.ts";

/** The name of a step in the reader's language; the host names it in English. */
export function stepText({ name }: Pick<Step, "name">): string {
  const [verb, ...rest] = name.split(" ");
  const what = rest.join(" ");
  switch (verb) {
    case "Add":
      return t("Add {what}", { what });
    case "Delete":
    case "Remove":
      return t("Delete {what}", { what });
    case "Rename":
      return t("Rename {what}", { what });
    case "Change":
      return t("Change {what}", { what });
    case "Link":
      return t("Link {what}", { what });
    case "Unlink":
      return t("Unlink {what}", { what });
    case "Move":
      return t("Move {what}", { what });
    case "Paste":
      return t("Paste {what}", { what });
    case "Duplicate":
      return t("Duplicate {what}", { what });
    case "Open":
      return t("Open {what}", { what });
    default:
      return name;
  }
}
