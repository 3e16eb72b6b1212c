import { useEffect, useState } from "preact/hooks";
import { takesShortcut, type Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { OpenDialog } from "./OpenDialog.tsx";
import { SaveDialog } from "./SaveDialog.tsx";
import "./sceneFiles.css";

/** The ways to open and save scenes. */
export function SceneFiles({ host, desk }: { host: Host; desk: Desk }) {
  const [dialog, setDialog] = useState<"open" | "save" | null>(null);
  const save = async () => {
    const name = host.scene.peek()?.file ?? null;
    if (name === null) {
      setDialog("save");
    } else {
      const problem = await host.requests.save(name);
      desk.tell(problem && t("{file} wasn't saved. {reason}", { file: name, reason: problem }), t("Saved: {file}", { file: name }));
    }
  };
  useEffect(() => {
    const follow = (event: KeyboardEvent) => {
      if (takesShortcut(event, "s")) {
        // What is being typed is part of the scene: leaving the field sets it.
        const focused = document.activeElement as HTMLElement | null;
        focused?.blur();
        focused?.focus();
        void save();
      }
    };
    window.addEventListener("keydown", follow);
    return () => window.removeEventListener("keydown", follow);
  }, [host]);
  const close = () => setDialog(null);
  return (
    <div class="scene-files">
      <button type="button" onClick={() => setDialog("open")}>
        {t("Open")}
      </button>
      <button type="button" onClick={() => void save()}>
        {t("Save")}
      </button>
      <button type="button" onClick={() => setDialog("save")}>
        {t("Save as")}
      </button>
      {dialog === "open" && <OpenDialog host={host} desk={desk} onClose={close} />}
      {dialog === "save" && <SaveDialog host={host} desk={desk} onClose={close} />}
    </div>
  );
}
