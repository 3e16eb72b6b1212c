import type { RefObject } from "preact";
import { useLayoutEffect } from "preact/hooks";
import { takesKeys, takesShortcut } from "../desk.ts";
import type { Link } from "../protocol.ts";
import type { Chosen, Editor } from "./editor.ts";

const CHOSEN_NOTE = ".react-flow__node-note.selected";

interface CanvasKeys {
  pane: RefObject<HTMLElement | null>;
  chosen: Chosen;
  chosenLinks: readonly Link[];
  chooseAll(): void;
  place(): void;
}

/** Keys of the canvas, which work while it has the focus and no field in it takes them, and Ctrl+K, which opens the palette from everywhere else. */
export function useCanvasKeys(editor: Editor, canvas: CanvasKeys) {
  useLayoutEffect(() => {
    const open = (event: KeyboardEvent) => {
      if (takesShortcut(event, "k")) {
        editor.palette.value = { at: null, pin: editor.begun.peek() };
        editor.giveUp();
      }
    };
    window.addEventListener("keydown", open);
    return () => window.removeEventListener("keydown", open);
  }, [editor]);

  const { pane, chosen, chosenLinks } = canvas;
  const remove = () => {
    if (chosen.nodes.length + chosen.notes.length + chosenLinks.length > 0) {
      pane.current!.focus({ preventScroll: true }); // what has the focus goes
      void editor.remove(chosen, chosenLinks);
    }
  };
  const actions: Record<string, (target: EventTarget | null) => unknown> = {
    Delete: remove,
    Backspace: remove,
    F2: () => {
      editor.renaming.value = chosen.nodes[0] ?? null;
      if (chosen.nodes.length === 0) {
        pane.current!.querySelector<HTMLElement>(`${CHOSEN_NOTE} textarea`)?.focus();
      }
    },
    "Control+c": () => editor.copy(chosen),
    "Control+v": () => editor.paste(),
    "Control+d": () => editor.duplicate(chosen),
    "Control+a": () => canvas.chooseAll(),
    Escape: (target) => {
      editor.giveUp();
      // The library takes the focus from what it unselects; who works by keys goes on from there.
      requestAnimationFrame(() => (target as HTMLElement).focus());
    },
  };
  return {
    // Before the library chooses a note by the same key.
    onKeyDownCapture: (event: KeyboardEvent) => {
      const target = event.target as Element;
      if (event.key === "Enter" && target.matches(CHOSEN_NOTE)) {
        event.preventDefault();
        target.querySelector("textarea")!.focus();
      }
    },
    onKeyDown: (event: KeyboardEvent) => {
      const key = event.key.length === 1 ? event.key.toLowerCase() : event.key;
      const action = actions[`${event.ctrlKey || event.metaKey ? "Control+" : ""}${key}`];
      if (action !== undefined && !takesKeys(event.target)) {
        event.preventDefault();
        if (!event.repeat) {
          action(event.target);
        }
      }
    },
    // The library moves what is chosen while an arrow key is down; where it ends up is kept.
    onKeyUp: (event: KeyboardEvent) => {
      if (event.key.startsWith("Arrow")) {
        canvas.place();
      }
    },
    onFocusOut: () => canvas.place(), // the key may come up elsewhere
  };
}
