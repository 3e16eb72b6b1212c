import type { NodeView } from "../host.ts";
import { t } from "../i18n.ts";
import { inputOf, NodeType, StringSendPin, typeByte } from "../nodeTypes.ts";
import type { DeviceState } from "../protocol.ts";

/** Why a string data send node's texts reach no one; null where they do. */
export function textWarning(node: NodeView, devices: readonly Pick<DeviceState, "id" | "parser">[] | null): string | null {
  if (typeByte(node.type) !== NodeType.stringSend || inputOf(node, StringSendPin.toDevice)?.int === 0) {
    return null;
  }
  const id = inputOf(node, StringSendPin.deviceId)?.int ?? 0;
  const device = devices?.find((one) => one.id === id);
  if (device === undefined) {
    return t("There is no device {id}.", { id });
  }
  const takesTexts = device.parser === "direct" || device.parser === "json";
  return takesTexts ? null : t("Device {id} takes no texts ({parser}).", { id, parser: device.parser });
}
