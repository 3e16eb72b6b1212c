import type { Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { isLost } from "../network.ts";
import { Editing } from "./Editing.tsx";
import { LostLamp } from "./LostLamp.tsx";
import "./partIndex.css";

/** Leads to each device and object of the scene, and to new ones. */
export function PartIndex({ host, desk }: { host: Host; desk: Desk }) {
  const devices = host.network.value?.state.devices ?? [];
  const objects = host.objects.value;
  return (
    <div class="part-index">
      {(desk.edits || devices.length > 0) && (
        <nav aria-label={t("Devices")}>
          <span aria-hidden="true">{t("Devices")}</span>
          <Editing>
            <button type="button" aria-label={t("Add device")} onClick={() => desk.open({ is: "device", id: null })}>
              +
            </button>
          </Editing>
          {devices.map((device) => (
            <button type="button" key={device.id} data-open-device={device.id} onClick={() => desk.open({ is: "device", id: device.id })}>
              {isLost(device) && <LostLamp />}
              {device.id} · {device.name}
            </button>
          ))}
        </nav>
      )}
      {(desk.edits || objects.length > 0) && (
        <nav aria-label={t("Objects")}>
          <span aria-hidden="true">{t("Objects")}</span>
          <Editing>
            <button type="button" aria-label={t("Add object")} onClick={() => desk.open({ is: "object", name: null })}>
              +
            </button>
          </Editing>
          {objects.map(({ clip, name }) => (
            <button
              type="button"
              key={`${clip}\n${name}`}
              title={`${clip} · ${name}`}
              data-open-object={`${clip}.${name}`}
              onClick={() => desk.open({ is: "object", name: { clip, name } })}
            >
              {name}
            </button>
          ))}
        </nav>
      )}
    </div>
  );
}
