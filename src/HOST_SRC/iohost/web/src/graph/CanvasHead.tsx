import { t } from "../i18n.ts";
import type { Chosen, Editor } from "./editor.ts";

const SHORTCUT = "Ctrl+K";

interface CanvasHeadProps {
  editor: Editor;
  chosen: Chosen;
  onArrange(): void;
  onAlign(axis: "x" | "y"): void;
}

/** What can be done on the canvas as a whole, and what came of the last step. */
export function CanvasHead({ editor, chosen, onArrange, onAlign }: CanvasHeadProps) {
  return (
    <div class="panel-head">
      <button type="button" title={SHORTCUT} onClick={() => (editor.palette.value = { at: null, pin: null })}>
        {t("Add node")}
      </button>
      <button type="button" onClick={() => void editor.addNote()}>
        {t("Add note")}
      </button>
      <textarea class="typed-ahead" tabIndex={-1} aria-label={t("Note")} ref={(field) => void (editor.typedAhead = field)} />
      <button type="button" onClick={onArrange}>
        {t("Arrange")}
      </button>
      {chosen.nodes.length + chosen.notes.length > 1 && (
        <>
          <button type="button" onClick={() => onAlign("x")}>
            {t("Align left")}
          </button>
          <button type="button" onClick={() => onAlign("y")}>
            {t("Align tops")}
          </button>
        </>
      )}
      {chosen.nodes.length + chosen.notes.length > 0 && (
        <>
          <button type="button" onClick={() => void editor.duplicate(chosen)}>
            {t("Duplicate")}
          </button>
          <button type="button" onClick={() => void editor.remove(chosen, [])}>
            {t("Delete")}
          </button>
        </>
      )}
      <div class="graph-message">
        <span class="hint" role="status" data-graph-message>
          {[editor.desk.message.value, editor.hint.value].filter(Boolean).join(" · ")}
        </span>
      </div>
    </div>
  );
}
