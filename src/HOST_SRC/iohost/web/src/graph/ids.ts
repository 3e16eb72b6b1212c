// What the libraries of the graph call nodes, notes and wires. They know nodes and notes by one kind of name, put names into
// selectors as they stand, and keep them as an object's keys.
import type { Link } from "../protocol.ts";

const NODE = "node:";

export function nodeId(handle: string): string {
  return NODE + encodeURIComponent(handle);
}

export function handleOf(id: string): string {
  return decodeURIComponent(id.slice(NODE.length));
}

export function noteId(note: string): string {
  return `note:${encodeURIComponent(note)}`;
}

export function wireId({ from, output, to, input }: Link): string {
  return `${nodeId(from)}/${output}/${nodeId(to)}/${input}`;
}
