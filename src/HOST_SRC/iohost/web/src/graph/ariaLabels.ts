import type { AriaLabelConfig } from "@xyflow/react";
import { t } from "../i18n.ts";

/** What the graph's library says by itself, in the page's language. */
export function ariaLabels(): Partial<AriaLabelConfig> {
  return {
    "node.a11yDescription.default": t("Enter or Space chooses a node. Delete removes it, Escape lets it go."),
    "node.a11yDescription.keyboardDisabled": t(
      "Enter or Space chooses a node; the arrow keys then move it, and Tab leads to its pins, or to the corner that sizes a note. F2 renames it or writes in a note, Delete removes it, Escape lets it go.",
    ),
    "node.a11yDescription.ariaLiveMessage": ({ x, y }) => t("Moved to {x}, {y}.", { x, y }),
    "edge.a11yDescription.default": t("Enter or Space chooses a wire. Delete removes it, Escape lets it go."),
    "controls.ariaLabel": t("View of the graph"),
    "controls.zoomIn.ariaLabel": t("Zoom in"),
    "controls.zoomOut.ariaLabel": t("Zoom out"),
    "minimap.ariaLabel": t("Map of the graph"),
    "handle.ariaLabel": t("Pin"),
  };
}
