import type { ComponentChildren } from "preact";
import { useContext } from "preact/hooks";
import { DeskContext } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { deviceChoices } from "../network.ts";
import { inputsOf } from "../nodePins.ts";
import { kindOf, type EditValue } from "../params.ts";
import type { Param } from "../messages.ts";

interface DeviceChoiceProps {
  host: Host;
  node: string;
  param: Param;
  /** Stands there while the host has no devices. */
  otherwise: ComponentChildren;
  onEdit(value: EditValue): void;
}

/** Whether an input names one of the host's devices. */
export function namesDevice(param: Param): boolean {
  return param.name === "DevID";
}

/** The "DevID" of a node that sends: a device of the list. The "DevName" beside it follows. */
export function DeviceChoice({ host, node, param, otherwise, onEdit }: DeviceChoiceProps) {
  const desk = useContext(DeskContext);
  const devices = host.network.value?.state.devices ?? [];
  if (devices.length === 0) {
    return <>{otherwise}</>;
  }
  const isText = kindOf(param) === "text";
  const current = isText ? param.string : String(param.int);
  const choose = async (value: string) => {
    const edit = isText ? { string: value } : { int: Number(value) };
    const view = host.byHandle.value.get(node);
    const name = view && inputsOf(view).find((one) => one.name === "DevName");
    const device = devices.find(({ id }) => String(id) === value);
    if (name === undefined || device === undefined) {
      onEdit(edit);
    } else {
      const error = await host.requests.batch(`Choose device ${device.name}`, [
        { op: "edit", node, param: param.id, ...edit },
        { op: "edit", node, param: name.id, string: device.name },
      ]);
      desk.tell(error, "");
    }
  };
  const chosen = devices.find(({ id }) => String(id) === current);
  return (
    <>
      <select
        value={current}
        disabled={!param.available}
        data-node={node}
        data-param={param.id}
        onChange={(event) => void choose(event.currentTarget.value)}
      >
        {deviceChoices(devices, current).map(({ value, label }) => (
          <option key={value} value={value}>
            {label}
          </option>
        ))}
      </select>
      {chosen !== undefined && (
        <button
          type="button"
          class="icon-button"
          title={t("Show device {id}", { id: chosen.id })}
          aria-label={t("Show device {id}", { id: chosen.id })}
          data-show-device={chosen.id}
          onClick={() => desk.open({ is: "device", id: chosen.id })}
        >
          →
        </button>
      )}
    </>
  );
}
