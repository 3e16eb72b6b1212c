import type { NodeView } from "./host.ts";
import type { Param } from "./messages.ts";

export const inputsOf = ({ details }: NodeView): Param[] => details.inputs.flatMap(({ params }) => params);
export const outputsOf = ({ details }: NodeView): Param[] => details.outputs.flatMap(({ params }) => params);

/** "Keyboard 1 · Key" */
export function pinText(node: NodeView, params: readonly Param[], id: number): string {
  return `${node.graph} · ${params.find((param) => param.id === id)?.display ?? id}`;
}
