import { t } from "../i18n.ts";
import { newNoteId } from "./clipboard.ts";
import type { Editor } from "./editor.ts";
import type { CanvasNode } from "./elements.ts";

const SHORTCUT = "Ctrl+K";
const NOTE_SIZE = { width: 220, height: 90 };

interface CanvasHeadProps {
  editor: Editor;
  faces: readonly CanvasNode[];
  onArrange(): void;
}

/** What can be done on the canvas as a whole, and what came of the last step. */
export function CanvasHead({ editor, faces, onArrange }: CanvasHeadProps) {
  const chosen = faces.filter(({ selected }) => selected);
  const align = (axis: "x" | "y") => {
    const line = Math.min(...chosen.map(({ position }) => position[axis]));
    const nodes = chosen.flatMap(({ type, data }) => (type === "face" ? data.node.node : []));
    const notes = chosen.flatMap(({ type, data }) => (type === "note" ? data : []));
    void editor.place(
      Object.fromEntries(nodes.map((node) => [node, { ...editor.view.placeOf(node), [axis]: line }])),
      Object.fromEntries(notes.map(({ id, note }) => [id, { ...note, [axis]: line }])),
    );
  };
  const addNote = () => {
    void editor.place({}, { [newNoteId()]: { ...editor.view.middle(), ...NOTE_SIZE, text: "" } });
  };
  return (
    <div class="panel-head graph-head">
      <button type="button" title={SHORTCUT} onClick={() => (editor.palette.value = { at: null, pin: null })}>
        {t("Add node")}
      </button>
      <button type="button" onClick={addNote}>
        {t("Add note")}
      </button>
      <button type="button" onClick={onArrange}>
        {t("Arrange")}
      </button>
      {chosen.length > 1 && (
        <>
          <button type="button" onClick={() => align("x")}>
            {t("Align left")}
          </button>
          <button type="button" onClick={() => align("y")}>
            {t("Align tops")}
          </button>
        </>
      )}
      <span class="hint" role="status" data-graph-message>
        {editor.desk.message.value}
      </span>
    </div>
  );
}
