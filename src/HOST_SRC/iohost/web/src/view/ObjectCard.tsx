import type { TargetedEvent } from "preact";
import { useRef, useState } from "preact/hooks";
import type { Desk } from "../desk.ts";
import { placeText } from "../format.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import type { ObjectName } from "../requests.ts";
import { Editing } from "./Editing.tsx";
import { PartButtons, PartCard } from "./PartCard.tsx";

interface ObjectCardProps {
  host: Host;
  desk: Desk;
  /** Null: a new one. */
  name: ObjectName | null;
}

/** An object in the inspector, which hands move and JSON texts are for. */
export function ObjectCard({ host, desk, name }: ObjectCardProps) {
  const object = name && host.objects.value.find((one) => one.clip === name.clip && one.name === name.name);
  // The host may not have told of an object yet that was just added or renamed.
  const wasThere = useRef(false);
  wasThere.current ||= object != null;
  const isGone = object === undefined && wasThere.current;
  const title = name === null ? t("New object") : `${name.clip} · ${name.name}`;
  return (
    <PartCard desk={desk} title={title}>
      {object != null && (
        <p class="hint" data-object-place>
          {placeText(object.matrix)}
        </p>
      )}
      {isGone ? (
        <p class="hint">{t("There is no object {name}.", { name: title })}</p>
      ) : (
        <Editing>
          <ObjectForm host={host} desk={desk} present={name} />
        </Editing>
      )}
    </PartCard>
  );
}

/** What is typed stands in place of what is there until it's sent. */
function ObjectForm({ host, desk, present }: { host: Host; desk: Desk; present: ObjectName | null }) {
  const [typed, setTyped] = useState<Partial<ObjectName>>({});
  const [error, setError] = useState<string | null>(null);
  const firstClip = host.objects.value[0]?.clip ?? host.nodes.value?.find(({ clip }) => clip !== null)?.clip ?? "Clip";
  const shown = { clip: firstClip, name: "", ...present, ...typed };
  const field = (part: keyof ObjectName) => ({
    class: "field",
    value: shown[part],
    "data-part": part,
    onInput: ({ currentTarget: { value } }: TargetedEvent<HTMLInputElement>) => {
      setTyped({ ...typed, [part]: value });
      setError(null);
    },
  });
  const submit = async (event: Event) => {
    event.preventDefault();
    const opened = desk.opened.peek();
    const problem = await host.requests.change(
      present === null ? { op: "object", ...shown } : { op: "change_object", ...present, to: shown.name },
    );
    if (problem === null) {
      setTyped({});
      if (shown.name !== present?.name) {
        desk.leave(opened, { is: "object", name: shown });
      }
    }
    setError(problem);
  };
  const remove = async (object: ObjectName) => {
    const opened = desk.opened.peek();
    const problem = await host.requests.change({ op: "remove_object", ...object });
    setError(problem);
    if (problem === null) {
      desk.leave(opened, null);
    }
  };
  return (
    <form class="part-form" onSubmit={submit}>
      {present === null && (
        <label>
          {t("Clip")}
          <input required {...field("clip")} />
        </label>
      )}
      <label>
        {t("Name")}
        <input required {...field("name")} />
      </label>
      <PartButtons
        submit={present === null ? t("Add object") : t("Rename")}
        remove={present === null ? null : () => void remove(present)}
        error={error}
      />
    </form>
  );
}
