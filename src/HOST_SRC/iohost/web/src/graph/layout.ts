import dagre from "@dagrejs/dagre";
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

const GAP = 24;
const WIDEST_ROW = 1600;
const RANK_GAP = 96;

/**
 * Upper left corners: nodes with links from sources on the left to what they feed on the right, and those without in
 * rows below.
 */
export function arrange(boxes: readonly Box[], links: readonly Link[]): Map<string, Place> {
  const linked = new Set(links.flatMap(({ from, to }) => [from, to]));
  const graph = new dagre.graphlib.Graph({ multigraph: true });
  graph.setGraph({ rankdir: "LR", nodesep: GAP, ranksep: RANK_GAP });
  for (const { id, width, height } of boxes.filter(({ id }) => linked.has(id))) {
    graph.setNode(id, { width, height });
  }
  for (const { from, output, to, input } of links) {
    graph.setEdge(from, to, {}, `${output} ${input}`);
  }
  dagre.layout(graph);

  const places = new Map<string, Place>();
  const { width: rowWidth = 0, height: top = 0 } = graph.graph();
  const wide = Math.max(rowWidth, top, WIDEST_ROW);
  let next = { x: 0, y: linked.size > 0 ? top + RANK_GAP : 0 };
  let rowHeight = 0;
  for (const { id, width, height } of boxes) {
    if (linked.has(id)) {
      const { x, y } = graph.node(id);
      places.set(id, { x: x - width / 2, y: y - height / 2 });
      continue;
    }
    if (next.x > 0 && next.x + width > wide) {
      next = { x: 0, y: next.y + rowHeight + GAP };
      rowHeight = 0;
    }
    places.set(id, { ...next });
    next.x += width + GAP;
    rowHeight = Math.max(rowHeight, height);
  }
  return places;
}
