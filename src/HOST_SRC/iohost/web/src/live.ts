// What nodes do right now.
import { signal, type Signal } from "@preact/signals";
import type { OutputValue } from "./protocol.ts";

export const NO_VALUE: OutputValue = { int: 0, float: 0, string: "" };

/** Whether a value is to be shown anew: it differs from the one that is shown, or is the first. */
export function isAnother(shown: OutputValue, value: OutputValue): boolean {
  return (["int", "float", "string", "length"] as const).some((part) => shown[part] !== value[part]) || shown === NO_VALUE;
}

/** Signals by node and output, or by node alone, made when they are first asked for. */
export class Signals<Value> {
  readonly #initial: Value;
  readonly #signals = new Map<string, Map<number, Signal<Value>>>();

  constructor(initial: Value) {
    this.#initial = initial;
  }

  of(node: string, output = 0): Signal<Value> {
    let outputs = this.#signals.get(node);
    if (outputs === undefined) {
      this.#signals.set(node, (outputs = new Map()));
    }
    let found = outputs.get(output);
    if (found === undefined) {
      outputs.set(output, (found = signal(this.#initial)));
    }
    return found;
  }

  keepOnly(nodes: ReadonlySet<string>): void {
    for (const node of this.#signals.keys()) {
      if (!nodes.has(node)) {
        this.#signals.delete(node);
      }
    }
  }

  /** Of one node, or of all. */
  reset(node?: string): void {
    for (const outputs of node === undefined ? this.#signals.values() : [this.#signals.get(node) ?? []]) {
      for (const one of outputs.values()) {
        one.value = this.#initial;
      }
    }
  }
}
