// Small scenes to begin with, each made by one batch of requests.
import type { Label } from "../i18n.ts";
import type { Change } from "../requests.ts";

export interface Start {
  name: Label;
  changes: readonly Change[];
}

const CLIP = "Show";
const type = (byte: string) => `{8164BB40-6B6A-4707-88B7-386BCB0D1B${byte}}`;
const create = (node: string, byte: string): Change => ({ op: "create", node, type: type(byte), clip: CLIP, graph: node });
const link = (from: string, output: number, to: string, input: number): Change => ({ op: "link", from, output, to, input });

export const STARTS: readonly Start[] = [
  {
    name: "keyboard to text",
    changes: [
      create("Keyboard 1", "01"),
      create("Text field 1", "02"),
      link("Keyboard 1", 154, "Text field 1", 202),
      link("Keyboard 1", 152, "Text field 1", 203),
      { op: "place", nodes: { "Keyboard 1": { x: 0, y: 0 }, "Text field 1": { x: 400, y: 0 } } },
    ],
  },
  {
    name: "controller to object",
    changes: [
      { op: "object", clip: CLIP, name: "Lamp" },
      create("VR handle 1", "08"),
      { op: "edit", node: "VR handle 1", param: 802, string: "Lamp" },
      { op: "edit", node: "VR handle 1", param: 803, choice: 1 },
      { op: "place", nodes: { "VR handle 1": { x: 0, y: 0 } } },
    ],
  },
  {
    name: "device JSON to parameter",
    changes: [
      { op: "device", device: 1, name: "Panel", parser: "json", address: null },
      { op: "device", device: 2, name: "Stage", parser: "framed", address: null },
      create("Device JSON 1", "0E"),
      create("Net send 1", "04"),
      { op: "edit", node: "Device JSON 1", param: 1402, int: 1 },
      { op: "edit", node: "Net send 1", param: 402, string: "2" },
      link("Device JSON 1", 1452, "Net send 1", 408),
      link("Device JSON 1", 1453, "Net send 1", 410),
      { op: "place", nodes: { "Device JSON 1": { x: 0, y: 0 }, "Net send 1": { x: 400, y: 0 } } },
    ],
  },
];
