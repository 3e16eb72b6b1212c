import type { NodeView } from "./host.ts";

/** The node that a line tells of: one of the module begins with "[clip.name.type", the host's have the handle. */
export function nodeOfLine(text: string, nodes: readonly Pick<NodeView, "node" | "clip" | "graph" | "details">[]): string | null {
  const handle = /(?:sent by|the node) "(.*?)"/.exec(text)?.[1];
  const isTold = ({ node, clip, graph, details }: (typeof nodes)[number]) =>
    text.startsWith("[") ? text.startsWith(`[${clip}.${graph}.${details.name}`) : node === handle;
  return nodes.find(isTold)?.node ?? null;
}
