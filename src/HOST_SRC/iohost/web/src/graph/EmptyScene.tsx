import { useEffect, useState } from "preact/hooks";
import { t } from "../i18n.ts";
import { openAnother } from "../openAnother.ts";
import type { Change } from "../requests.ts";
import type { Editor } from "./editor.ts";
import { STARTS } from "./starts.ts";
import "./emptyScene.css";

const DEMO = "demo.json";

/** What an empty scene can begin with, and how nodes are wired. */
export function EmptyScene({ editor }: { editor: Editor }) {
  const { requests } = editor.host;
  /** Devices and objects that are there already stay as they are. */
  const withoutKnownParts = async (changes: readonly Change[]) => {
    const { devices, objects } = await requests.parts();
    return changes.filter(
      (change) =>
        !(change.op === "device" && devices.some(({ id }) => id === change.device)) &&
        !(change.op === "object" && objects.some(({ clip, name }) => clip === change.clip && name === change.name)),
    );
  };
  const [hasDemo, setHasDemo] = useState(false);
  useEffect(() => {
    void requests.scenes().then((found) => setHasDemo(typeof found !== "string" && found.some(({ file }) => file === DEMO)));
  }, []);
  const openDemo = () =>
    openAnother(editor.host, editor.desk, DEMO, async () => editor.desk.tell(await requests.load(DEMO), ""));
  return (
    <div class="empty-scene" data-empty-scene>
      <h2>{t("Start from")}</h2>
      <div class="empty-starts">
        {hasDemo && (
          <button type="button" onClick={openDemo}>
            {t("demo")}
          </button>
        )}
        {STARTS.map(({ name, changes }) => (
          <button
            type="button"
            key={name}
            data-start={name}
            onClick={async () => editor.desk.tell(await requests.batch(`Begin with ${name}`, await withoutKnownParts(changes)), "")}
          >
            {t(name)}
          </button>
        ))}
      </div>
      <p>{t("Or add a node with Ctrl+K. Drag from a pin on its right to a pin on another node's left to wire them.")}</p>
    </div>
  );
}
