import { t } from "../i18n.ts";
import { movedNote, type Chosen, type Editor } from "./editor.ts";

const SHORTCUT = "Ctrl+K";

interface CanvasHeadProps {
  editor: Editor;
  chosen: Chosen;
  onArrange(): void;
}

/** What can be done on the canvas as a whole, and what came of the last step. */
export function CanvasHead({ editor, chosen, onArrange }: CanvasHeadProps) {
  const align = (axis: "x" | "y") => {
    const nodes = chosen.nodes.map((node) => [node, editor.view.placeOf(node)] as const);
    const notes = Object.entries(editor.host.notes.peek()).filter(([id]) => chosen.notes.includes(id));
    const line = Math.min(...[...nodes, ...notes].map(([, box]) => box[axis]));
    void editor.place(
      Object.fromEntries(nodes.map(([node, place]) => [node, { ...place, [axis]: line }])),
      Object.fromEntries(notes.map(([id, note]) => [id, movedNote(note, { [axis]: line })])),
    );
  };
  return (
    <div class="panel-head">
      <button type="button" title={SHORTCUT} onClick={() => (editor.palette.value = { at: null, pin: null })}>
        {t("Add node")}
      </button>
      <button type="button" onClick={() => void editor.addNote()}>
        {t("Add note")}
      </button>
      <button type="button" onClick={onArrange}>
        {t("Arrange")}
      </button>
      {chosen.nodes.length + chosen.notes.length > 1 && (
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
