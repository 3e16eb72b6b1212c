import type { NodeView } from "./host.ts";
import type { Param } from "./messages.ts";

export const inputsOf = ({ details }: NodeView): Param[] => details.inputs.flatMap(({ params }) => params);
export const outputsOf = ({ details }: NodeView): Param[] => details.outputs.flatMap(({ params }) => params);

export const inputOf = (node: NodeView, id: number) => inputsOf(node).find((param) => param.id === id);
export const outputOf = (node: NodeView, id: number) => outputsOf(node).find((param) => param.id === id);

/** "Keyboard 1 · Key" */
export const inputText = (node: NodeView, id: number) => `${node.graph} · ${inputOf(node, id)?.display ?? id}`;
export const outputText = (node: NodeView, id: number) => `${node.graph} · ${outputOf(node, id)?.display ?? id}`;
