// What the palette knows of the node types before there is a node: what they are for, and which pin a wire goes to first.
import { t } from "../i18n.ts";
import { typeByte } from "../nodeTypes.ts";
import type { PinSort } from "./wiring.ts";

export type Purpose = "people" | "devices" | "network" | "json";

interface NodeKind {
  purpose: Purpose;
  inputs: Partial<Record<PinSort, number>>;
  outputs: Partial<Record<PinSort, number>>;
  /** The key of NodePlugin.ini that switches the type on and off. */
  ini?: string;
}

/** By the last byte of the type's GUID. */
const NODE_KINDS: Readonly<Record<string, NodeKind>> = {
  "01": { purpose: "people", inputs: { integer: 2 }, outputs: { event: 152, text: 154 } },
  "0B": { purpose: "people", inputs: { integer: 2 }, outputs: { event: 1152 } },
  "02": { purpose: "people", inputs: { text: 202, event: 203, integer: 2 }, outputs: { text: 253, integer: 252 } },
  "03": { purpose: "people", inputs: { integer: 2 }, outputs: { event: 358, integer: 366, float: 372 } },
  "07": { purpose: "people", inputs: { integer: 2 }, outputs: { event: 755 }, ini: "Gesture" },
  "08": { purpose: "people", inputs: { integer: 2, text: 802 }, outputs: { event: 862, float: 852 }, ini: "VRHandle" },
  "0F": { purpose: "devices", inputs: { text: 1505, event: 1507, integer: 1503 }, outputs: {} },
  "04": { purpose: "devices", inputs: { text: 408, event: 410, integer: 407 }, outputs: {}, ini: "NetParameterSend" },
  "05": { purpose: "devices", inputs: { text: 503, integer: 504 }, outputs: { text: 552, event: 554 }, ini: "NetParameterReceive" },
  "06": { purpose: "network", inputs: { text: 605, event: 606 }, outputs: {}, ini: "BroadcastSend" },
  "0D": { purpose: "network", inputs: { text: 1302 }, outputs: { text: 1353 } },
  "0E": { purpose: "json", inputs: { text: 1405, integer: 1402 }, outputs: { text: 1452, event: 1453 } },
  "0C": { purpose: "json", inputs: { text: 1203 }, outputs: { text: 1252, event: 1253 } },
};

export const PURPOSES: readonly Purpose[] = ["people", "devices", "network", "json"];

export function purposeName(purpose: Purpose): string {
  switch (purpose) {
    case "people":
      return t("Keys, pointer, hands");
    case "devices":
      return t("Devices");
    case "network":
      return t("Everybody on the network");
    case "json":
      return t("JSON");
  }
}

export function kindOfType(guid: string): NodeKind | null {
  return NODE_KINDS[typeByte(guid) ?? ""] ?? null;
}
