import broadcastReceive from "../../../../PI_SRC/QORIOProcess/res/svg/broadcast_receive.svg";
import broadcastSend from "../../../../PI_SRC/QORIOProcess/res/svg/broadcast_send.svg";
import deviceJsonReceive from "../../../../PI_SRC/QORIOProcess/res/svg/device_json_receive.svg";
import keyCheck from "../../../../PI_SRC/QORIOProcess/res/svg/key_check.svg";
import keyboard from "../../../../PI_SRC/QORIOProcess/res/svg/keyboard.svg";
import mouse from "../../../../PI_SRC/QORIOProcess/res/svg/mouse.svg";
import netParameterReceive from "../../../../PI_SRC/QORIOProcess/res/svg/net_parameter_receive.svg";
import netParameterSend from "../../../../PI_SRC/QORIOProcess/res/svg/net_parameter_send.svg";
import objectJsonReceive from "../../../../PI_SRC/QORIOProcess/res/svg/object_json_receive.svg";
import stringDataSend from "../../../../PI_SRC/QORIOProcess/res/svg/string_data_send.svg";
import textField from "../../../../PI_SRC/QORIOProcess/res/svg/text_field.svg";
import touchGesture from "../../../../PI_SRC/QORIOProcess/res/svg/touch_gesture.svg";
import vrHandle from "../../../../PI_SRC/QORIOProcess/res/svg/vr_handle.svg";
import { typeByte } from "./nodeTypes.ts";

/** The icons by the last byte of the node type's GUID, in which alone the types differ. */
const ICONS: Record<string, string> = {
  "01": keyboard,
  "02": textField,
  "03": mouse,
  "04": netParameterSend,
  "05": netParameterReceive,
  "06": broadcastSend,
  "07": touchGesture,
  "08": vrHandle,
  "0B": keyCheck,
  "0C": objectJsonReceive,
  "0D": broadcastReceive,
  "0E": deviceJsonReceive,
  "0F": stringDataSend,
};

/** The address of a node type's icon, or null for a type that the page has none for. */
export function iconOf(typeGuid: string): string | null {
  const byte = typeByte(typeGuid);
  return (byte !== null && ICONS[byte]) || null;
}
