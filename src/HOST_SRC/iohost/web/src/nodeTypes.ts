import type { NodeView } from "./host.ts";

const TYPE_GUID = /^\{8164BB40-6B6A-4707-88B7-386BCB0D1B([0-9A-F]{2})\}$/;

/** The last byte of the node type's GUID, in which alone the types differ; null for a type of another module. */
export function typeByte(typeGuid: string): string | null {
  return TYPE_GUID.exec(typeGuid.toUpperCase())?.[1] ?? null;
}

/** The types that the page has controls of its own for. */
export const NodeType = { keyboard: "01", textField: "02", gesture: "07", vrHandle: "08", objectJson: "0C", deviceJson: "0E", stringSend: "0F" } as const;

export function nodesOf(nodes: readonly NodeView[] | null, type: string): NodeView[] {
  return nodes?.filter((node) => typeByte(node.type) === type) ?? [];
}

/** Ids of the pins that these controls work with. */
export const TextFieldPin = { text: 202, event: 203, clear: 204, output: 253 } as const;
export const JsonPin = { clipName: 1202, objectName: 1203, deviceId: 1402 } as const;
export const StringSendPin = { toDevice: 1502, deviceId: 1503 } as const;
export const VRHandlePin = { objectName: 802, hand: 803 } as const;
