import { t } from "../i18n.ts";
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
  const chosen = faces.flatMap((face) => (face.selected && face.type === "face" ? face : []));
  const align = (axis: "x" | "y") => {
    const line = Math.min(...chosen.map(({ position }) => position[axis]));
    void editor.place(Object.fromEntries(chosen.map(({ data: { node } }) => [node.node, { ...editor.view.placeOf(node.node), [axis]: line }])));
  };
  const addNote = () => {
    const id = `note ${Date.now().toString(36)}`;
    void editor.place({}, { [id]: { ...editor.view.middle(), ...NOTE_SIZE, text: "" } });
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
