// Copied nodes: kept by the browser, so that another page of the same host can paste them.
import type { NodeView } from "../host.ts";
import { kindOf, type EditValue } from "../params.ts";
import { inputsOf } from "../nodePins.ts";
import type { Link, Place } from "../protocol.ts";
import type { Change } from "../requests.ts";
import { freeName } from "./wiring.ts";

interface CopiedNode {
  node: string;
  type: string;
  clip: string | null;
  graph: string;
  place: Place;
  values: Record<string, EditValue>;
}

export interface Clipping {
  format: "iohost nodes";
  nodes: CopiedNode[];
  links: Link[];
}

/** Nodes with the links among them. An input that is linked has no value of its own to copy. */
export function copyOf(nodes: readonly NodeView[], links: readonly Link[], placeOf: (node: string) => Place): Clipping {
  const ids = new Set(nodes.map(({ node }) => node));
  return {
    format: "iohost nodes",
    nodes: nodes.map((view) => {
      const { node, type, clip, graph } = view;
      const isLinked = (id: number) => links.some((link) => link.to === node && link.input === id);
      const values = inputsOf(view).flatMap((param): [string, EditValue][] => {
        const value = isLinked(param.id) || param.length !== undefined ? null : valueOf(param);
        return value === null ? [] : [[String(param.id), value]];
      });
      return { node, type, clip, graph, place: placeOf(node), values: Object.fromEntries(values) };
    }),
    links: links.filter(({ from, to }) => ids.has(from) && ids.has(to)),
  };
}

function valueOf(param: Parameters<typeof kindOf>[0] & { int: number; float: number; string: string }): EditValue | null {
  switch (kindOf(param)) {
    case "switch":
    case "integer":
    case "choice":
    case "keyCode":
      return { int: param.int };
    case "float":
      return { float: param.float };
    case "text":
      return { string: param.string };
    default:
      return null;
  }
}

/** What makes the copied nodes anew, under free handles and names, moved by so much; and the new handles. */
export function pasteOf(
  { nodes, links }: Clipping,
  present: readonly Pick<NodeView, "node" | "graph">[],
  by: { x: number; y: number },
): { changes: Change[]; handles: string[] } {
  const takenHandles = new Set(present.map(({ node }) => node));
  const takenNames = new Set(present.map(({ graph }) => graph));
  const handles = new Map<string, string>();
  const places: Record<string, Place> = {};
  const changes = nodes.flatMap(({ node, type, clip, graph, place, values }): Change[] => {
    const handle = freeName(withoutNumber(node), takenHandles);
    const name = freeName(withoutNumber(graph), takenNames);
    takenHandles.add(handle);
    takenNames.add(name);
    handles.set(node, handle);
    places[handle] = { ...place, x: place.x + by.x, y: place.y + by.y };
    return [
      { op: "create", node: handle, type, clip, graph: name },
      ...Object.entries(values).map(([param, value]): Change => ({ op: "edit", node: handle, param: Number(param), ...value })),
    ];
  });
  const wires = links.map(({ from, output, to, input }): Change => {
    return { op: "link", from: handles.get(from)!, output, to: handles.get(to)!, input };
  });
  return { changes: [...changes, ...wires, { op: "place", nodes: places }], handles: [...handles.values()] };
}

function withoutNumber(name: string): string {
  return name.replace(/ \d+$/, "");
}

const STORAGE_KEY = "iohost.copied-nodes";

export function keepClipping(storage: Pick<Storage, "setItem">, clipping: Clipping): void {
  storage.setItem(STORAGE_KEY, JSON.stringify(clipping));
}

export function readClipping(storage: Pick<Storage, "getItem">): Clipping | null {
  const kept = JSON.parse(storage.getItem(STORAGE_KEY) ?? "null") as Clipping | null;
  return kept?.format === "iohost nodes" ? kept : null;
}
