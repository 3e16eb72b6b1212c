import { NodeResizer, type Node, type NodeProps } from "@xyflow/react";
import { useEffect, useRef } from "preact/hooks";
import { t } from "../i18n.ts";
import type { Note } from "../protocol.ts";
import type { Editor } from "./editor.ts";
import "./noteFace.css";

export type NoteNode = Node<{ editor: Editor; id: string; note: Note }, "note">;

/** A text box on the canvas. What is being typed stays, whatever other pages do to the note meanwhile. */
export function NoteFace({ data: { editor, id, note }, selected }: NodeProps<NoteNode>) {
  const field = useRef<HTMLTextAreaElement>(null);
  /** The text that the host has: anything else in the field is being typed. */
  const known = useRef(note.text);
  useEffect(() => {
    if (field.current!.value === known.current) {
      field.current!.value = note.text;
    }
    known.current = note.text;
  }, [note.text]);
  return (
    <div class="note" data-note={id}>
      <NodeResizer
        isVisible={selected}
        minWidth={120}
        minHeight={60}
        onResizeEnd={(_, { x, y, width, height }) => void editor.place({}, { [id]: { ...note, x, y, width, height } })}
      />
      <textarea
        ref={field}
        class="note-text nodrag nowheel nokey"
        aria-label={t("Note")}
        placeholder={t("Note")}
        defaultValue={note.text}
        onKeyDown={(event) => {
          if (event.key === "Escape" && !event.isComposing) {
            event.currentTarget.closest<HTMLElement>(".react-flow__node")!.focus();
          }
        }}
        onBlur={({ currentTarget: { value } }) => {
          if (value !== known.current) {
            const before = known.current;
            known.current = value;
            void editor.place({}, { [id]: { ...note, text: value } }).then((isSaved) => {
              known.current = isSaved ? known.current : before;
            });
          }
        }}
      />
    </div>
  );
}
