import { useState } from "preact/hooks";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import type { SceneObject } from "../protocol.ts";
import "./objects.css";
import type { PanelProps } from "./panels.ts";

/** The objects of the scene's clips, which hands move and JSON texts are for. */
export function ObjectsPanel({ host }: PanelProps) {
  const objects = host.objects.value;
  const clips = [...new Set([...objects.map(({ clip }) => clip), ...(host.nodes.value ?? []).flatMap(({ clip }) => clip ?? [])])];
  const [clip, setClip] = useState<string | null>(null);
  const [name, setName] = useState("");
  const [error, setError] = useState<string | null>(null);
  const add = async (event: Event) => {
    event.preventDefault();
    const problem = await host.requests.change({ op: "object", clip: clip ?? clips[0] ?? "Clip", name });
    setError(problem);
    if (problem === null) {
      setName("");
    }
  };
  return (
    <div class="objects">
      <form class="objects-form" onSubmit={add}>
        <input
          class="field"
          aria-label={t("Clip")}
          value={clip ?? clips[0] ?? "Clip"}
          data-object="clip"
          onInput={(event) => setClip(event.currentTarget.value)}
        />
        <input
          class="field"
          aria-label={t("Object")}
          placeholder={t("Object")}
          required
          value={name}
          data-object="name"
          onInput={(event) => setName(event.currentTarget.value)}
        />
        <button type="submit">{t("Add object")}</button>
        {error !== null && (
          <span class="input-error" role="alert">
            {error}
          </span>
        )}
      </form>
      {objects.length === 0 && <p class="empty">{t("The scene has no objects.")}</p>}
      <ul class="object-list">
        {objects.map((object) => (
          <ObjectLine key={`${object.clip}\n${object.name}`} host={host} object={object} />
        ))}
      </ul>
    </div>
  );
}

function ObjectLine({ host, object: { clip, name, matrix } }: { host: Host; object: SceneObject }) {
  const [error, setError] = useState<string | null>(null);
  const rename = async (to: string) => {
    if (to !== "" && to !== name) {
      setError(await host.requests.change({ op: "change_object", clip, name, to }));
    }
  };
  return (
    <li data-object-line={`${clip}.${name}`}>
      <span class="hint">{clip}</span>
      <input
        class="field"
        aria-label={t("Name of the object")}
        defaultValue={name}
        onBlur={(event) => void rename(event.currentTarget.value.trim())}
        onKeyDown={(event) => event.key === "Enter" && event.currentTarget.blur()}
      />
      <code>
        {matrix
          .slice(12, 15)
          .map((value) => value.toFixed(2))
          .join(", ")}
      </code>
      <button type="button" onClick={async () => setError(await host.requests.change({ op: "remove_object", clip, name }))}>
        {t("Remove")}
      </button>
      {error !== null && (
        <span class="input-error" role="alert">
          {error}
        </span>
      )}
    </li>
  );
}
