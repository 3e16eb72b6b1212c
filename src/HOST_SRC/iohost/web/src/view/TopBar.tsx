import { useEffect } from "preact/hooks";
import { takesKeys, type Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { stepText } from "../steps.ts";
import { ConnectionLamp } from "./Connection.tsx";
import { Editing } from "./Editing.tsx";
import { HistoryList } from "./HistoryList.tsx";
import { LanguageSwitch } from "./LanguageSwitch.tsx";
import { LiveBadge } from "./LiveBadge.tsx";
import { SceneFiles } from "./SceneFiles.tsx";
import { SceneName } from "./SceneName.tsx";
import "./topBar.css";

/** Which scene it is, undo and redo, files, and whether the host is live. */
export function TopBar({ host, desk }: { host: Host; desk: Desk }) {
  return (
    <header class="top-bar">
      <h1>iohost</h1>
      <SceneName host={host} />
      <Editing>
        <SceneFiles host={host} desk={desk} />
        <UndoButtons host={host} desk={desk} />
      </Editing>
      <LiveBadge host={host} desk={desk} />
      <ConnectionLamp host={host} />
      <LanguageSwitch />
    </header>
  );
}

function UndoButtons({ host, desk }: { host: Host; desk: Desk }) {
  const { undo = null, redo = null } = host.scene.value ?? {};
  const go = async (is: "undo" | "redo") => {
    const taken = await host.requests.move(is);
    if (typeof taken === "string") {
      desk.message.value = taken;
    } else {
      const step = stepText(taken);
      desk.message.value =
        is === "undo" ? t("Undone: {step}. What nodes heard or sent since isn't undone.", { step }) : t("Done again: {step}", { step });
    }
  };
  useEffect(() => {
    const follow = (event: KeyboardEvent) => {
      if (!(event.ctrlKey || event.metaKey) || event.altKey || takesKeys(event.target)) {
        return;
      }
      const key = event.key.toLowerCase();
      const is = key === "z" ? (event.shiftKey ? "redo" : "undo") : key === "y" ? "redo" : null;
      if (is !== null) {
        event.preventDefault();
        void go(is);
      }
    };
    window.addEventListener("keydown", follow);
    return () => window.removeEventListener("keydown", follow);
  }, [host, desk]);
  return (
    <div class="segments" role="group" aria-label={t("Steps")}>
      <button
        type="button"
        disabled={undo === null}
        title={undo === null ? t("Nothing to undo") : t("Undo: {step}", { step: stepText(undo) })}
        data-undo
        onClick={() => void go("undo")}
      >
        {t("Undo")}
      </button>
      <button
        type="button"
        disabled={redo === null}
        title={redo === null ? t("Nothing to redo") : t("Redo: {step}", { step: stepText(redo) })}
        data-redo
        onClick={() => void go("redo")}
      >
        {t("Redo")}
      </button>
      <HistoryList host={host} desk={desk} />
    </div>
  );
}
