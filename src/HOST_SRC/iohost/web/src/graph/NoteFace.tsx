import { NodeResizer, type Node, type NodeProps } from "@xyflow/react";
import { t } from "../i18n.ts";
import type { Note } from "../protocol.ts";
import type { Editor } from "./editor.ts";

export type NoteNode = Node<{ editor: Editor; id: string; note: Note }, "note">;

/** A text box on the canvas. */
export function NoteFace({ data: { editor, id, note }, selected }: NodeProps<NoteNode>) {
  return (
    <div class="note" data-note={id}>
      <NodeResizer
        isVisible={selected}
        minWidth={120}
        minHeight={60}
        onResizeEnd={(_, { x, y, width, height }) => void editor.place({}, { [id]: { ...note, x, y, width, height } })}
      />
      <textarea
        key={note.text}
        class="note-text nodrag nowheel"
        aria-label={t("Note")}
        placeholder={t("Note")}
        defaultValue={note.text}
        onKeyDown={(event) => {
          event.stopPropagation();
          if (event.key === "Escape") {
            event.currentTarget.blur();
          }
        }}
        onBlur={({ currentTarget: { value } }) => value !== note.text && void editor.place({}, { [id]: { ...note, text: value } })}
      />
    </div>
  );
}
