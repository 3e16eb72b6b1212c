import type { NodeView } from "./host.ts";
import { NodeType, typeByte } from "./nodeTypes.ts";

type Named = Pick<NodeView, "node" | "type" | "clip" | "graph" | "details">;

/**
 * The node that a line tells of: one of the module begins with "[clip.name.type", of a text field with "[clip]" alone, which
 * leads to it where it's the only one of its clip; the host's have the handle.
 */
export function nodeOfLine(text: string, nodes: readonly Named[]): string | null {
  const handle = /(?:sent by|the node) "(.*?)"/.exec(text)?.[1];
  const isNamed = ({ node, clip, graph, details }: Named) =>
    text.startsWith("[") ? text.startsWith(`[${clip}.${graph}.${details.name}`) : node === handle;
  const fields = nodes.filter(({ type, clip }) => typeByte(type) === NodeType.textField && text.startsWith(`[${clip}]`));
  return (nodes.find(isNamed) ?? (fields.length === 1 ? fields[0] : undefined))?.node ?? null;
}
