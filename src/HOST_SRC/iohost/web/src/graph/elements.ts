// What the graph's library draws of the scene. What nothing changed of stays the same object, so that it isn't drawn anew.
import { Position, type NodeHandle } from "@xyflow/react";
import type { NodeView } from "../host.ts";
import { hostText } from "../hostTexts.ts";
import { t } from "../i18n.ts";
import { inputOf, inputsOf, inputText, outputOf, outputsOf, outputText } from "../nodePins.ts";
import type { Param } from "../messages.ts";
import type { Link, Note, Place } from "../protocol.ts";
import type { Editor } from "./editor.ts";
import type { FaceNode } from "./Face.tsx";
import { nodeId, noteId, wireId } from "./ids.ts";
import { boxOf, pinBox, type AutomaticPlaces } from "./layout.ts";
import type { NoteNode } from "./NoteFace.tsx";
import type { Wire } from "./WireEdge.tsx";
import { conversion, sortOf } from "./wiring.ts";

export type CanvasNode = FaceNode | NoteNode;

const INPUT = { type: "target", position: Position.Left } as const;
const OUTPUT = { type: "source", position: Position.Right } as const;

/**
 * Nodes and notes. Chosen ones stay chosen; new ones are chosen where `toChoose` names them. Those that are being moved
 * here stay where they are: what the host tells of them until it answered is older.
 */
export function facesOf(
  editor: Editor,
  scene: { nodes: readonly NodeView[]; links: readonly Link[]; notes: Readonly<Record<string, Note>> },
  automatic: AutomaticPlaces,
  kept: readonly CanvasNode[],
  toChoose: readonly string[],
  isMoved: (id: string) => boolean,
): CanvasNode[] {
  const old = new Map(kept.map((face) => [face.id, face]));
  const linked = linkedPins(scene.links);
  return [
    ...scene.nodes.map((node) => faceOf(editor, node, linked.get(node.node) ?? [], automatic)),
    ...Object.entries(scene.notes).map(([id, note]) => noteOf(editor, id, note)),
  ].map((face) => {
    const before = old.get(face.id);
    const { measured, selected, position, width, height } = before ?? {};
    return sameOr(before, {
      ...face,
      ...(measured && { measured }),
      selected: before === undefined ? toChoose.includes(face.id) : selected === true,
      ...(position && isMoved(face.id) && { position, ...(width && height && { width, height }) }),
    });
  });
}

/** The same faces, of which those are chosen that `isChosen` names. */
export function chosenIn(faces: readonly CanvasNode[], isChosen: (id: string) => boolean): CanvasNode[] {
  return faces.map((face) => ((face.selected === true) === isChosen(face.id) ? face : { ...face, selected: isChosen(face.id) }));
}

function faceOf(editor: Editor, node: NodeView, linked: readonly string[], automatic: AutomaticPlaces): FaceNode {
  const { x, y, folded = false }: Place = node.place ?? automatic.of(node.node);
  const { width, height } = boxOf(node, shownPins(node, folded, linked));
  return {
    id: nodeId(node.node),
    type: "face",
    position: { x, y },
    data: { editor, node, folded, linked },
    ariaLabel: `${node.graph}, ${hostText(node.details.name)}`,
    // Until it's drawn.
    measured: { width, height },
    handles: folded ? handlesOf(node, folded, linked) : unfolded(node),
  };
}

/** A node's pins, or when it's folded those that wires lead to. */
export function shownPins(node: NodeView, folded: boolean, linked: readonly string[]): Record<"inputs" | "outputs", Param[]> {
  const isShown = (is: "input" | "output") => ({ id }: Param) => !folded || linked.includes(linkedPin(is, id));
  return { inputs: inputsOf(node).filter(isShown("input")), outputs: outputsOf(node).filter(isShown("output")) };
}

const unfoldedHandles = new WeakMap<NodeView, NodeHandle[]>();

/** Kept by node: for the same ones `sameOr` compares nothing. */
function unfolded(node: NodeView): NodeHandle[] {
  const handles = unfoldedHandles.get(node) ?? handlesOf(node, false, []);
  unfoldedHandles.set(node, handles);
  return handles;
}

function handlesOf(node: NodeView, folded: boolean, linked: readonly string[]): NodeHandle[] {
  const { inputs, outputs } = shownPins(node, folded, linked);
  return [
    ...inputs.map(({ id }, row) => ({ id: String(id), ...INPUT, ...pinBox("input", row) })),
    ...outputs.map(({ id }, row) => ({ id: String(id), ...OUTPUT, ...pinBox("output", row) })),
  ];
}

function noteOf(editor: Editor, id: string, note: Note): NoteNode {
  const { x, y, width, height } = note;
  return {
    id: noteId(id),
    type: "note",
    position: { x, y },
    width,
    height,
    measured: { width, height },
    handles: [],
    data: { editor, id, note },
    zIndex: -1,
    ariaLabel: t("Note"),
  };
}

/** As `linkedPin` names them, by nodes. */
function linkedPins(links: readonly Link[]): ReadonlyMap<string, readonly string[]> {
  const pins = new Map<string, string[]>();
  const add = (node: string, pin: string) => pins.set(node, [...(pins.get(node) ?? []), pin]);
  for (const { from, output, to, input } of links) {
    add(from, linkedPin("output", output));
    add(to, linkedPin("input", input));
  }
  return pins;
}

export function linkedPin(is: "output" | "input", id: number): string {
  return `${is} ${id}`;
}

export function wiresOf(editor: Editor, nodes: readonly NodeView[], links: readonly Link[], kept: Wire[]): Wire[] {
  const old = new Map(kept.map((wire) => [wire.id, wire]));
  const byHandle = new Map(nodes.map((node) => [node.node, node]));
  const wires = links.map((link) => {
    const before = old.get(wireId(link));
    return sameOr(before, { ...wireOf(editor, byHandle.get(link.from)!, byHandle.get(link.to)!, link), selected: before?.selected === true });
  });
  return wires.length === kept.length && wires.every((wire, index) => wire === kept[index]) ? kept : wires;
}

function wireOf({ host }: Editor, source: NodeView, target: NodeView, link: Link): Wire {
  const output = outputOf(source, link.output);
  const input = inputOf(target, link.input);
  const converted = output && input ? conversion(output, input) : null;
  const label = t("Wire from {from} to {to}", {
    from: outputText(source, link.output),
    to: inputText(target, link.input),
  });
  return {
    id: wireId(link),
    type: "wire",
    source: nodeId(link.from),
    sourceHandle: String(link.output),
    target: nodeId(link.to),
    targetHandle: String(link.input),
    className: `wire wire-${output ? sortOf(output) : "text"}`,
    ariaLabel: converted === null ? label : `${label}, ${converted}`,
    data: { host, link, output, conversion: converted },
    domAttributes: { tabindex: 0 }, // the library sets tabIndex, which Preact leaves so spelt and SVG doesn't know
  };
}

/** The element that was there, if all members of the new one are equal to its own; members that the library added don't count. */
function sameOr<Element extends object>(before: Element | undefined, now: Element): Element {
  const isSame = (key: string) => isAlike(before?.[key as keyof Element], now[key as keyof Element], 3);
  return before !== undefined && Object.keys(now).every(isSame) ? before : now;
}

/** Whether two values are equal; objects are compared by their members, nested ones down to this depth. */
function isAlike(one: unknown, other: unknown, depth: number): boolean {
  if (one === other || depth === 0 || one === null || other === null || typeof one !== "object" || typeof other !== "object") {
    return one === other;
  }
  const [values, others] = [Object.entries(one), other as Record<string, unknown>];
  return values.length === Object.keys(other).length && values.every(([key, value]) => isAlike(value, others[key], depth - 1));
}
