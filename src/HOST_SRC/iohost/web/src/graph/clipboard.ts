// Copied nodes and notes: kept by the browser, so that another page of the same host can paste them.
import type { NodeView } from "../host.ts";
import { kindOf, type EditValue } from "../params.ts";
import type { Param } from "../messages.ts";
import { inputsOf } from "../nodePins.ts";
import type { Link, Note, Place } from "../protocol.ts";
import { placing, type Change } from "../requests.ts";
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
  format: typeof FORMAT;
  nodes: CopiedNode[];
  links: Link[];
  notes: Note[];
  /** How many inputs' texts and notes aren't in it: the page has only the beginnings of those that are too long. */
  leftOut: number;
}

const FORMAT = "iohost nodes and notes";

/** Nodes with the links among them. An input that is linked has no value of its own to copy. */
export function copyOf(
  nodes: readonly NodeView[],
  links: readonly Link[],
  notes: readonly Note[],
  placeOf: (node: string) => Place,
): Clipping {
  const ids = new Set(nodes.map(({ node }) => node));
  const isLinked = (node: string, id: number) => links.some((link) => link.to === node && link.input === id);
  const isCut = ({ length }: Param | Note) => length !== undefined;
  const wholeNotes = notes.filter((note) => !isCut(note));
  const cutInputs = nodes.flatMap((view) =>
    inputsOf(view).filter((param) => isCut(param) && !isLinked(view.node, param.id)),
  );
  return {
    format: FORMAT,
    nodes: nodes.map((view) => {
      const { node, type, clip, graph } = view;
      const values = inputsOf(view).flatMap((param): [string, EditValue][] => {
        const value = isLinked(node, param.id) || isCut(param) ? null : valueOf(param);
        return value === null ? [] : [[String(param.id), value]];
      });
      return { node, type, clip, graph, place: placeOf(node), values: Object.fromEntries(values) };
    }),
    links: links.filter(({ from, to }) => ids.has(from) && ids.has(to)),
    notes: wholeNotes,
    leftOut: cutInputs.length + notes.length - wholeNotes.length,
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

/** What makes the copy anew, under free handles and names, moved right and down by so much; and the new handles and notes' ids. */
export function pasteOf(
  { nodes, links, notes }: Clipping,
  present: readonly Pick<NodeView, "node" | "graph">[],
  by: number,
): { changes: Change[]; handles: string[]; noteIds: string[] } {
  const takenHandles = new Set(present.map(({ node }) => node));
  const takenNames = new Set(present.map(({ graph }) => graph));
  const handles = new Map<string, string>();
  const moved = <Box extends Place | Note>(box: Box): Box => ({ ...box, x: box.x + by, y: box.y + by });
  const places: Record<string, Place> = {};
  const changes = nodes.flatMap(({ node, type, clip, graph, place, values }): Change[] => {
    const handle = freeName(withoutNumber(node), takenHandles);
    const name = freeName(withoutNumber(graph), takenNames);
    takenHandles.add(handle);
    takenNames.add(name);
    handles.set(node, handle);
    places[handle] = moved(place);
    return [
      { op: "create", node: handle, type, clip, graph: name },
      ...Object.entries(values).map(([param, value]): Change => ({ op: "edit", node: handle, param: Number(param), ...value })),
    ];
  });
  const wires = links.map(({ from, output, to, input }): Change => {
    return { op: "link", from: handles.get(from)!, output, to: handles.get(to)!, input };
  });
  const newNotes = Object.fromEntries(notes.map((note) => [newNoteId(), moved(note)]));
  return {
    changes: [...changes, ...wires, placing(places, newNotes)],
    handles: [...handles.values()],
    noteIds: Object.keys(newNotes),
  };
}

/** Random, so that notes of several pages get different ids. */
export function newNoteId(): string {
  return `note ${Math.random().toString(36).slice(2)}`;
}

function withoutNumber(name: string): string {
  return name.replace(/ \d+$/, "");
}

const STORAGE_KEY = "iohost.copied-nodes";

/** What this page copied last, if the browser refused to keep it, because it's too large for example. */
let unkept: Clipping | null = null;

/** Whether other pages can paste it, too. */
export function keepClipping(storage: Pick<Storage, "setItem">, clipping: Clipping): boolean {
  try {
    storage.setItem(STORAGE_KEY, JSON.stringify(clipping));
    unkept = null;
  } catch {
    unkept = clipping;
  }
  return unkept === null;
}

export function readClipping(storage: Pick<Storage, "getItem">): Clipping | null {
  const clipping = unkept ?? (JSON.parse(storage.getItem(STORAGE_KEY) ?? "null") as Clipping | null);
  return clipping?.format === FORMAT ? clipping : null;
}
