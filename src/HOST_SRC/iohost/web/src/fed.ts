import { broughtValue } from "./graph/wiring.ts";
import type { Host } from "./host.ts";
import type { Param } from "./messages.ts";
import { outputOf } from "./nodePins.ts";
import { kindOf } from "./params.ts";

/** An input as it is right now: one that is linked has the value that its source brings, and can't be changed by hand. */
export function fedInput(host: Host, node: string, param: Param): Param {
  const link = kindOf(param) === "event" ? undefined : host.links.value.find(({ to, input }) => to === node && input === param.id);
  if (link === undefined) {
    return param;
  }
  const source = host.byHandle.value.get(link.from);
  const output = source && outputOf(source, link.output);
  const brought = host.values.of(link.from, link.output).value;
  const { int, float, string, length } = output === undefined ? brought : broughtValue(output, param, brought);
  const { length: _, ...rest } = param;
  return { ...rest, int, float, string, ...(length !== undefined && { length }), available: 0 };
}
