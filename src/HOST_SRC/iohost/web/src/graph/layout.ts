import dagre from "@dagrejs/dagre";
import type { NodeView } from "../host.ts";
import { inputsOf, outputsOf } from "../nodePins.ts";
import type { Link } from "../protocol.ts";

export interface Box {
  id: string;
  width: number;
  height: number;
}

export interface Place {
  x: number;
  y: number;
}

export type Rect = Place & { width: number; height: number };
type Piece = Box & Place;

/** With room for the line that a face gets with a verdict or a warning. */
const GAP = 44;
const RANK_GAP = 96;
/** So far at most a note stands from its node or another note of it: nearer than from any others, so that it stays with them. */
const NOTE_GAP = 20;
/** Of the whole, as of most canvases. */
const WIDTH_TO_HEIGHT = 2;

/** Boxes that no link leads out of, with their links: from which of them to which, by what pins. */
interface Block {
  boxes: Box[];
  links: [from: number, to: number, pins: string][];
}

/** How large a block is, and where its boxes stand in it. */
interface Arranged {
  width: number;
  height: number;
  places: Place[];
}

/** Upper left corners: linked nodes stand together, from sources on the left to what they feed on the right, in rows. */
export function arrange(boxes: readonly Box[], links: readonly Link[]): Map<string, Place> {
  const made = new Map<string, Arranged>(); // a scene may have many blocks of the same shape
  const blocks = blocksOf(boxes, links).map((block) => {
    const shape = JSON.stringify([block.boxes.map(({ width, height }) => [width, height]), block.links]);
    const arranged = made.get(shape) ?? arrangeBlock(block);
    made.set(shape, arranged);
    return { ...arranged, boxes: block.boxes };
  });
  const area = blocks.reduce((sum, { width, height }) => sum + (width + RANK_GAP) * (height + RANK_GAP), 0);
  const wide = Math.max(Math.sqrt(WIDTH_TO_HEIGHT * area), ...blocks.map(({ width }) => width));
  const places = new Map<string, Place>();
  let next = { x: 0, y: 0 };
  let rowHeight = 0;
  for (const block of blocks) {
    if (next.x > 0 && next.x + block.width > wide) {
      next = { x: 0, y: next.y + rowHeight + RANK_GAP };
      rowHeight = 0;
    }
    for (const [index, { x, y }] of block.places.entries()) {
      places.set(block.boxes[index]!.id, { x: next.x + x, y: next.y + y });
    }
    next.x += block.width + (block.places.length > 1 ? RANK_GAP : GAP);
    rowHeight = Math.max(rowHeight, block.height);
  }
  return places;
}

/** The same for boxes with notes: each goes along with the box that it, or another note of it, is nearest to, on its side of it, or below what covers it there. */
export function arrangeWithNotes(boxes: readonly Piece[], notes: readonly Piece[], links: readonly Link[]): Map<string, Place> {
  const groups = boxes.map((box) => ({ id: box.id, pieces: [box] }));
  for (const note of groups.length > 0 ? notes : []) {
    const gaps = groups.map(({ pieces }) => Math.min(...pieces.map((one) => gap(one, note))));
    const { pieces } = groups[gaps.indexOf(Math.min(...gaps))]!;
    const beside = { ...note, ...besideOf(pieces[0]!, note) };
    const { y, height } = around(pieces);
    pieces.push(pieces.some((one) => gap(one, beside) === 0) ? { ...beside, y: y + height + NOTE_GAP } : beside);
  }
  const wholes = groups.map((group) => ({ ...group, ...around(group.pieces) }));
  const places = arrange(wholes, links);
  return new Map(
    wholes.flatMap((whole) => {
      const { x, y } = places.get(whole.id)!;
      return whole.pieces.map((piece): [string, Place] => [piece.id, { x: x + piece.x - whole.x, y: y + piece.y - whole.y }]);
    }),
  );
}

function gap(one: Rect, other: Rect): number {
  const x = Math.max(0, one.x - other.x - other.width, other.x - one.x - one.width);
  const y = Math.max(0, one.y - other.y - other.height, other.y - one.y - one.height);
  return Math.hypot(x, y);
}

/** Where a note stands, or closer to the box. */
function besideOf(box: Rect, { x, y, width, height }: Rect): Place {
  return {
    x: Math.min(Math.max(x, box.x - width - NOTE_GAP), box.x + box.width + NOTE_GAP),
    y: Math.min(Math.max(y, box.y - height - NOTE_GAP), box.y + box.height + NOTE_GAP),
  };
}

/** The largest block first. */
function blocksOf(boxes: readonly Box[], links: readonly Link[]): Block[] {
  const groups = new Map(boxes.map((box) => [box.id, [box]]));
  for (const { from, to } of links) {
    const [one, other] = [groups.get(from)!, groups.get(to)!];
    if (one !== other) {
      one.push(...other);
      other.forEach(({ id }) => groups.set(id, one));
    }
  }
  const largestFirst = [...new Set(groups.values())].sort((a, b) => b.length - a.length);
  const blocks = largestFirst.map((group): Block => ({ boxes: group, links: [] }));
  const at = new Map(blocks.flatMap((block) => block.boxes.map(({ id }, index) => [id, { block, index }])));
  for (const { from, output, to, input } of links) {
    const { block, index } = at.get(from)!;
    block.links.push([index, at.get(to)!.index, `${output} ${input}`]);
  }
  return blocks;
}

function arrangeBlock({ boxes, links }: Block): Arranged {
  const graph = new dagre.graphlib.Graph({ multigraph: true });
  graph.setGraph({ rankdir: "LR", nodesep: GAP, ranksep: RANK_GAP });
  for (const [index, { width, height }] of boxes.entries()) {
    graph.setNode(String(index), { width, height });
  }
  for (const [from, to, pins] of links) {
    graph.setEdge(String(from), String(to), {}, pins);
  }
  dagre.layout(graph);
  const { width = 0, height = 0 } = graph.graph();
  const places = boxes.map((box, index): Place => {
    const { x, y } = graph.node(String(index));
    return { x: x - box.width / 2, y: y - box.height / 2 };
  });
  return { width, height, places };
}

// As the style sheets draw them.
export const WIDTH = 300;
const BORDER = 1;
const HEAD_HEIGHT = 40;
const FOOT_HEIGHT = 22;
const ROW_HEIGHT = 24;
const PIN_INSET = 7;
const PIN_SIZE = 10;

/** With these of its pins: all, unless it's folded. */
export function boxOf(node: NodeView, pins = { inputs: inputsOf(node), outputs: outputsOf(node) }): Box {
  const rows = Math.max(pins.inputs.length, pins.outputs.length);
  return { id: node.node, width: WIDTH, height: HEAD_HEIGHT + ROW_HEIGHT * rows + FOOT_HEIGHT + 2 * BORDER };
}

/** The box that all of these stand in. */
export function around(boxes: readonly Rect[]): Rect {
  const [x, y] = [Math.min(...boxes.map((box) => box.x)), Math.min(...boxes.map((box) => box.y))];
  const width = Math.max(...boxes.map((box) => box.x + box.width)) - x;
  const height = Math.max(...boxes.map((box) => box.y + box.height)) - y;
  return { x, y, width, height };
}

/** Where a row's pin stands, from the top of the rows. */
export function pinTop(row: number): number {
  return ROW_HEIGHT * row + PIN_INSET;
}

/** Where a row's pin stands in its face: half of it outside. */
export function pinBox(is: "output" | "input", row: number): Rect {
  const middle = is === "output" ? WIDTH - BORDER : BORDER;
  return { x: middle - PIN_SIZE / 2, y: BORDER + HEAD_HEIGHT + pinTop(row), width: PIN_SIZE, height: PIN_SIZE };
}

/** Where nodes stand that nobody has placed: this page's alone. */
export class AutomaticPlaces {
  #places = new Map<string, Place>();

  of(node: string): Place {
    return this.#places.get(node) ?? { x: 0, y: 0 };
  }

  /**
   * Nodes that are new stand below the others; where there are no others, they are arranged unless all were placed. One that
   * went has its place when it comes back.
   */
  follow(nodes: readonly NodeView[], links: readonly Link[]): void {
    const placed = nodes.flatMap(({ node, place }): [string, Place][] => (place === undefined ? [] : [[node, place]]));
    if (placed.length === nodes.length) {
      this.#places = new Map(placed);
      return;
    }
    const staying = nodes.filter(({ node }) => this.#places.has(node));
    if (staying.length === 0) {
      this.#places = arrange(nodes.map((node) => boxOf(node)), links);
      return;
    }
    let below = Math.max(...staying.map((node) => (node.place ?? this.of(node.node)).y + boxOf(node).height));
    for (const node of nodes.filter((one) => !this.#places.has(one.node))) {
      this.#places.set(node.node, { x: 0, y: below + GAP });
      below += GAP + boxOf(node).height;
    }
  }
}
