import { t } from "../i18n.ts";
import type { Change } from "../requests.ts";
import type { Editor } from "./editor.ts";
import { starts } from "./starts.ts";

const DEMO = "demo.json";

/** What an empty scene can begin with, and how nodes are wired. */
export function EmptyScene({ editor }: { editor: Editor }) {
  const { requests } = editor.host;
  /** Devices that somebody has set up already stay as they are. */
  const withoutKnownDevices = (changes: readonly Change[]) => {
    const known = (editor.host.network.peek()?.state.devices ?? []).map(({ id }) => id);
    return changes.filter((change) => change.op !== "device" || !known.includes(change.device));
  };
  const openDemo = () => {
    const act = async () => editor.desk.tell(await requests.load(DEMO), "");
    if (editor.host.scene.peek()?.unsaved !== true) {
      void act();
      return;
    }
    editor.desk.question.value = {
      text: t("The scene has changes that aren't saved. Open {file} all the same?", { file: DEMO }),
      yes: t("Open all the same"),
      act: () => void act(),
    };
  };
  return (
    <div class="empty-scene" data-empty-scene>
      <h2>{t("Start from")}</h2>
      <div class="empty-starts">
        <button type="button" onClick={openDemo}>
          {t("demo")}
        </button>
        {starts().map(({ name, changes }) => (
          <button
            type="button"
            key={name}
            data-start={name}
            onClick={async () => editor.desk.tell(await requests.batch("Add a start", withoutKnownDevices(changes)), "")}
          >
            {name}
          </button>
        ))}
      </div>
      <p>{t("Or add a node with Ctrl+K. Drag from a pin on its right to a pin on another node's left to wire them.")}</p>
    </div>
  );
}
