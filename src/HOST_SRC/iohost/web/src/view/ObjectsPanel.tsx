import { placeText } from "../format.ts";
import { t } from "../i18n.ts";
import { Editing } from "./Editing.tsx";
import "./objects.css";
import type { PanelProps } from "./panels.ts";

/** Where the objects of the scene's clips are, which hands move and JSON texts are for. */
export function ObjectsPanel({ host, desk, shown }: PanelProps) {
  if (!shown) {
    return null;
  }
  const objects = host.objects.value;
  return (
    <>
      <Editing>
        <div class="panel-head">
          <button type="button" class="quiet" onClick={() => desk.open({ is: "object", name: null })}>
            {t("Add object")}
          </button>
        </div>
      </Editing>
      <div class="objects" tabIndex={0} role="group" aria-label={t("Objects")}>
        {objects.length === 0 && <p class="empty">{t("The scene has no objects.")}</p>}
        <ul class="object-list">
          {objects.map(({ clip, name, matrix }) => (
            <li key={`${clip}\n${name}`} data-object-line={`${clip}.${name}`}>
              <button type="button" class="link" onClick={() => desk.open({ is: "object", name: { clip, name } })}>
                {clip} · {name}
              </button>
              <code>{placeText(matrix)}</code>
            </li>
          ))}
        </ul>
      </div>
    </>
  );
}
