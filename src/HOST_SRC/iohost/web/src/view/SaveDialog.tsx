import { useEffect, useRef, useState } from "preact/hooks";
import type { Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { Dialog } from "./Dialog.tsx";

/** Saves the scene under a name in the folder of scenes, or on this computer. */
export function SaveDialog({ host, desk, onClose }: { host: Host; desk: Desk; onClose(): void }) {
  const field = useRef<HTMLInputElement>(null);
  const button = useRef<HTMLButtonElement>(null);
  const [name, setName] = useState(host.scene.peek()?.file ?? host.proposedName ?? "");
  const [present, setPresent] = useState<readonly string[]>([]);
  const [error, setError] = useState<string | null>(null);
  const isAnother = (files: readonly string[]) => files.includes(file) && file !== host.scene.value?.file;
  const look = async () => {
    const found = await host.requests.scenes();
    const files = typeof found === "string" ? [] : found.map(({ file }) => file);
    setError(typeof found === "string" ? found : null);
    setPresent(files);
    return files;
  };
  useEffect(() => void look(), [host]);
  useEffect(() => field.current!.select(), []);
  const stem = name.trim().replace(/\s*\.json$/, "");
  const file = stem === "" ? "" : `${stem}.json`;
  const replaces = isAnother(present);
  /** Another file is replaced by its button alone, once that says so. */
  const save = async (event: Event) => {
    event.preventDefault();
    const isMeant = replaces && document.activeElement === button.current;
    if (!isMeant && isAnother(await look())) {
      button.current?.focus();
      return;
    }
    const problem = await host.requests.save(file);
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
          <a href="scene" download={file === "" ? "scene.json" : file} data-download>
            {t("Download to this computer")}
          </a>
        </div>
      </form>
    </Dialog>
  );
}
