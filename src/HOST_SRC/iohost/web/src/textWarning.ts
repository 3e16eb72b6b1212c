import type { NodeView } from "./host.ts";
import { t } from "./i18n.ts";
import type { Param } from "./messages.ts";
import { inputOf } from "./nodePins.ts";
import { NodeType, StringSendPin, typeByte } from "./nodeTypes.ts";
import type { DeviceState } from "./protocol.ts";

/** Why a string data send node's texts reach no one; null where they do. `fed` gives an input as it is right now. */
export function textWarning(
  node: NodeView,
  devices: readonly Pick<DeviceState, "id" | "parser">[] | null,
  fed: (input: Param) => Param,
): string | null {
  if (devices === null || typeByte(node.type) !== NodeType.stringSend) {
    return null;
  }
  const takesTexts = ({ parser }: Pick<DeviceState, "parser">) => parser === "direct" || parser === "json";
  const valueOf = (id: number) => {
    const input = inputOf(node, id);
    return input && fed(input).int;
  };
  if (valueOf(StringSendPin.toDevice) === 0) {
    return devices.some(takesTexts) ? null : t("No device takes texts.");
  }
  const id = valueOf(StringSendPin.deviceId) ?? 0;
  const device = devices.find((one) => one.id === id);
  if (device === undefined) {
    return t("There is no device {id}.", { id });
  }
  return takesTexts(device) ? null : t("Device {id} takes no texts ({parser}).", { id, parser: device.parser });
}
