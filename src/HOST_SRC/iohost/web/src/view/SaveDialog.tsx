import { useEffect, useRef, useState } from "preact/hooks";
import type { Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { refusalText } from "../refusals.ts";
import { Dialog } from "./Dialog.tsx";

/** Saves the scene under a name in the folder of scenes, or on this computer. */
export function SaveDialog({ host, desk, onClose }: { host: Host; desk: Desk; onClose(): void }) {
  const field = useRef<HTMLInputElement>(null);
  const button = useRef<HTMLButtonElement>(null);
  const [name, setName] = useState(host.scene.peek()?.file ?? host.proposedName ?? "");
  /** Another scene's file of that name, which the host didn't replace unasked. */
  const [taken, setTaken] = useState<string | null>(null);
  const [error, setError] = useState<string | null>(null);
  useEffect(() => field.current!.select(), []);
  const stem = name.trim().replace(/\s*\.json$/, "");
  const file = stem === "" ? "" : `${stem}.json`;
  const replaces = file === taken;
  /** Another file is replaced by its button alone, once that says so. */
  const save = async (event: Event) => {
    event.preventDefault();
    const problem = await host.requests.save(file, replaces && document.activeElement === button.current);
    if (problem === refusalText("file: is there already")) {
      setTaken(file);
      button.current?.focus();
      return;
    }
    setError(problem);
    if (problem === null) {
      desk.message.value = t("Saved: {file}", { file });
      onClose();
    }
  };
  return (
    <Dialog title={t("Save the scene")} error={error} onClose={onClose}>
      <form onSubmit={save}>
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
        {replaces && <p class="dialog-warning">{t("{file} is there already and will be replaced.", { file })}</p>}
        <div class="dialog-row">
          <button ref={button} type="submit" disabled={file === ""}>
            {replaces ? t("Replace") : t("Save")}
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
