import { NodeResizeControl, NodeResizer, useStoreApi, type Node, type NodeProps } from "@xyflow/react";
import { useEffect, useLayoutEffect, useRef } from "preact/hooks";
import { t } from "../i18n.ts";
import type { Note } from "../protocol.ts";
import { characters } from "../texts.ts";
import { movedNote, type Editor } from "./editor.ts";
import { noteId } from "./ids.ts";
import "./noteFace.css";
import { useFocusWhenChosen } from "./useFocusWhenChosen.ts";

type Box = Pick<Note, "x" | "y" | "width" | "height">;

const LEAST = { minWidth: 120, minHeight: 60 };
/** The canvas's grid. */
const STEP = 20;
const STEPS: Readonly<Record<string, { x: number; y: number }>> = {
  ArrowLeft: { x: -STEP, y: 0 },
  ArrowRight: { x: STEP, y: 0 },
  ArrowUp: { x: 0, y: -STEP },
  ArrowDown: { x: 0, y: STEP },
};

export type NoteNode = Node<{ editor: Editor; id: string; note: Note }, "note">;

/**
 * A text box on the canvas. What is being typed stays, whatever other pages do to the note meanwhile. Of a text that
 * the host cut the end isn't known: it can be replaced, not edited.
 */
export function NoteFace(props: NodeProps<NoteNode>) {
  const { data: { editor, id, note }, selected, positionAbsoluteX: x, positionAbsoluteY: y, width, height } = props;
  const field = useRef<HTMLTextAreaElement>(null);
  useLayoutEffect(() => {
    if (editor.addedNote === id) {
      field.current!.value += editor.takeTyped();
    }
  }, []);
  useFocusWhenChosen(field, selected, editor.addedNote === id);
  const { length } = note;
  const text = length === undefined ? note.text : "";
  /** What the field has of the host's text: anything else in it is being typed. */
  const known = useRef(text);
  useEffect(() => {
    if (field.current!.value === known.current) {
      field.current!.value = text;
    }
    known.current = text;
  }, [text]);
  const save = async (value: string) => {
    if (value !== known.current) {
      const before = known.current;
      known.current = value;
      known.current = (await editor.place({}, { [id]: { ...box, text: value } })) ? known.current : before;
    }
  };
  // What was written while there was no connection.
  const isConnected = editor.host.connection.value.is === "open";
  useEffect(() => {
    if (isConnected && document.activeElement !== field.current) {
      void save(field.current!.value);
    }
  }, [isConnected]);
  // As it's shown: the host may not have told yet of the last move or sizing.
  const box = { x, y, width: width!, height: height! };
  const keepSize = (sized: Partial<Box>) => editor.place({}, { [id]: movedNote(note, { ...box, ...sized }) });
  return (
    <div class="note" data-note={id}>
      <NodeResizer isVisible={selected} {...LEAST} onResizeEnd={(_, { x, y, width, height }) => void keepSize({ x, y, width, height })} />
      <textarea
        ref={field}
        class="note-text nodrag nowheel nokey"
        aria-label={t("Note")}
        placeholder={
          length === undefined ? t("Note") : t("{characters}; typing replaces them", { characters: characters(length) })
        }
        defaultValue={text}
        onKeyDown={(event) => {
          if (event.key === "Escape" && !event.isComposing) {
            event.currentTarget.closest<HTMLElement>(".react-flow__node")!.focus();
          }
        }}
        onBlur={({ currentTarget }) => {
          currentTarget.scrollTop = 0;
          void save(currentTarget.value);
        }}
      />
      {selected && <Corner id={id} note={note} onSized={keepSize} />}
    </div>
  );
}

interface CornerProps {
  id: string;
  note: Note;
  onSized(size: Partial<Box>): Promise<boolean>;
}

/** Sizes the note by dragging and by arrow keys; what a key does while it's held down is one step. */
function Corner({ id, note, onSized }: CornerProps) {
  const canvas = useStoreApi();
  const size = useRef({ width: note.width, height: note.height });
  const isSized = useRef(false);
  /** Steps that the host hasn't answered. */
  const asked = useRef(0);
  useLayoutEffect(() => {
    // What it tells before is older.
    if (!isSized.current && asked.current === 0) {
      size.current = { width: note.width, height: note.height };
    }
  }, [note.width, note.height]);
  const keep = async () => {
    if (isSized.current) {
      isSized.current = false;
      ++asked.current;
      await onSized(size.current);
      --asked.current;
    }
  };
  return (
    <NodeResizeControl className="note-corner" position="bottom-right" {...LEAST} onResizeEnd={(_, box) => void onSized(box)}>
      <button
        type="button"
        aria-label={t("Size of the note")}
        onKeyDown={(event) => {
          const step = STEPS[event.key];
          if (step !== undefined) {
            event.preventDefault();
            event.stopPropagation();
            const { width, height } = size.current;
            size.current = { width: Math.max(LEAST.minWidth, width + step.x), height: Math.max(LEAST.minHeight, height + step.y) };
            isSized.current = true;
            const change = { id: noteId(id), type: "dimensions", setAttributes: true, dimensions: size.current } as const;
            canvas.getState().triggerNodeChanges([change]);
          }
        }}
        onKeyUp={keep}
        onBlur={keep}
      />
    </NodeResizeControl>
  );
}
