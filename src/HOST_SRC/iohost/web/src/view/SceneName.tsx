import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import "./sceneName.css";

/** The scene's file, with a mark for what isn't saved. */
export function SceneName({ host }: { host: Host }) {
  const { file = null, unsaved = false } = host.scene.value ?? {};
  return (
    <span class="scene-name" data-scene={file ?? ""} data-unsaved={unsaved}>
      <span class="scene-file" title={file ?? undefined}>
        {file ?? t("untitled scene")}
      </span>
      {unsaved && (
        <span class="scene-unsaved" title={t("Not saved yet")}>
          ●<span class="screen-reader"> {t("Not saved yet")}</span>
        </span>
      )}
    </span>
  );
}
