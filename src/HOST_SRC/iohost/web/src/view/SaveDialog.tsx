import { useEffect, useRef, useState } from "preact/hooks";
import type { Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { refusalText } from "../refusals.ts";
import { Answers } from "./Answers.tsx";
import { Dialog } from "./Dialog.tsx";

/** Saves the scene under a name in the folder of scenes, or on this computer. */
export function SaveDialog({ host, desk, onClose }: { host: Host; desk: Desk; onClose(): void }) {
  const field = useRef<HTMLInputElement>(null);
  const [name, setName] = useState(host.scene.peek()?.file ?? host.proposedName ?? "");
  /** Whether the name is that of another scene's file, which is replaced only after a question. */
  const [isTaken, setTaken] = useState(false);
  const [error, setError] = useState<string | null>(null);
  useEffect(() => field.current!.select(), []);
  const stem = name.trim().replace(/\s*\.json$/, "");
  const file = stem === "" ? "" : `${stem}.json`;
  const save = async (replace: boolean) => {
    const problem = await host.requests.save(file, replace);
    const isRefused = problem === refusalText("file: is there already"); // as the host says it
    setTaken(isRefused);
    setError(isRefused ? null : problem);
    if (problem === null) {
      desk.message.value = t("Saved: {file}", { file });
      onClose();
    }
  };
  return (
    <Dialog title={t("Save the scene")} error={error} onClose={onClose}>
      {isTaken && (
        <div role="alert">
          <p class="dialog-warning">{t("{file} is another scene's. Replace it?", { file })}</p>
          <div class="dialog-row">
            <Answers yes={t("Replace")} onYes={() => void save(true)} no={t("Go back")} onNo={() => setTaken(false)} />
          </div>
        </div>
      )}
      <form
        hidden={isTaken}
        onSubmit={(event) => {
          event.preventDefault();
          void save(false);
        }}
      >
        <input
          ref={field}
          class="field"
          aria-label={t("File name")}
          placeholder={t("File name")}
          value={name}
          data-scene-name
          autofocus
          onInput={(event) => {
            setName(event.currentTarget.value);
            setError(null);
          }}
        />
        <div class="dialog-row">
          <button type="submit" disabled={file === ""}>
            {t("Save")}
          </button>
          {host.connection.value.is === "open" && (
            <a href="scene" download={file === "" ? "scene.json" : file} data-download>
              {t("Download to this computer")}
            </a>
          )}
        </div>
      </form>
    </Dialog>
  );
}
