import type { NodeView } from "./host.ts";

/** The node that a line of the module tells of: it begins with "[clip.name.type". */
export function nodeOfLine(text: string, nodes: readonly Pick<NodeView, "node" | "clip" | "graph" | "details">[]): string | null {
  return nodes.find(({ clip, graph, details }) => text.startsWith(`[${clip}.${graph}.${details.name}`))?.node ?? null;
}
