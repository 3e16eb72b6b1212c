import { useEffect, useState } from "preact/hooks";
import type { Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import type { SceneFileInfo } from "../protocol.ts";
import { Answers } from "./Answers.tsx";
import { Dialog } from "./Dialog.tsx";

/** 2 before 10. */
const BY_NAME = new Intl.Collator(undefined, { numeric: true });

interface FileDialogProps {
  host: Host;
  desk: Desk;
  onClose(): void;
}

/** Opens a file of the folder of scenes, one of this computer, or an empty scene. Asks before changes are lost. */
export function OpenDialog({ host, desk, onClose }: FileDialogProps) {
  const [files, setFiles] = useState<readonly SceneFileInfo[]>([]);
  const [error, setError] = useState<string | null>(null);
  const [waiting, setWaiting] = useState<{ name: string; open: () => Promise<string | null> } | null>(null);
  useEffect(() => {
    void host.requests.scenes().then((found) => {
      if (typeof found === "string") {
        setError(found);
      } else {
        setFiles(found.sort((one, other) => BY_NAME.compare(one.file, other.file)));
      }
    });
  }, [host]);

  const carryOut = async (name: string, open: () => Promise<string | null>) => {
    const problem = await open();
    setWaiting(null);
    setError(problem && t("{file} wasn't opened. {reason}", { file: name, reason: problem }));
    if (problem === null) {
      desk.message.value = t("Opened: {file}", { file: name });
      onClose();
    }
  };
  const ask = (name: string, open: () => Promise<string | null>) =>
    host.scene.peek()?.unsaved === true ? setWaiting({ name, open }) : void carryOut(name, open);
  return (
    <Dialog title={t("Open a scene")} error={error} onClose={onClose}>
      {waiting !== null ? (
        <div role="alert">
          <p class="dialog-warning">{t("The scene has changes that aren't saved. Open {file} anyway?", { file: waiting.name })}</p>
          <div class="dialog-row">
            <Answers
              yes={t("Open anyway")}
              onYes={() => void carryOut(waiting.name, waiting.open)}
              no={t("Go back")}
              onNo={() => setWaiting(null)}
            />
          </div>
        </div>
      ) : (
        <>
          <ul class="scene-list">
            {files.map(({ file, modified_ms }) => (
              <li key={file}>
                <button
                  type="button"
                  title={file}
                  data-scene-file={file}
                  onClick={() => ask(file, () => host.requests.load(file))}
                >
                  <span>{file}</span>
                  <time>{new Date(modified_ms).toLocaleString()}</time>
                </button>
              </li>
            ))}
          </ul>
          {files.length === 0 && <p class="empty">{t("There is no file in the folder of scenes.")}</p>}
          <div class="dialog-row">
            <button type="button" onClick={() => ask(t("an empty scene"), () => host.requests.loadEmpty())}>
              {t("Empty scene")}
            </button>
            <label class="file-choice">
              {t("From this computer:")}{" "}
              <input
                type="file"
                accept=".json"
                data-upload
                onChange={({ currentTarget }) => {
                  const file = currentTarget.files?.[0];
                  currentTarget.value = ""; // so that the same one can be chosen again
                  if (file !== undefined) {
                    ask(file.name, () => host.upload(file));
                  }
                }}
              />
            </label>
          </div>
        </>
      )}
    </Dialog>
  );
}
