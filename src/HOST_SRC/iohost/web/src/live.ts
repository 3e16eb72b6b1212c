// What nodes do right now, by node and output.
import { signal, type Signal } from "@preact/signals";
import type { OutputValue } from "./protocol.ts";

export const NO_VALUE: OutputValue = { int: 0, float: 0, string: "" };

/** Whether a value is to be shown anew: it differs from the one that is shown, or is the first. */
export function isAnother(shown: OutputValue, value: OutputValue): boolean {
  return (["int", "float", "string", "length"] as const).some((part) => shown[part] !== value[part]) || shown === NO_VALUE;
}

/** Signals by node and output, made when they are first asked for. */
export class OutputSignals<Value> {
  readonly #initial: Value;
  readonly #signals = new Map<string, Map<number, Signal<Value>>>();

  constructor(initial: Value) {
    this.#initial = initial;
  }

  of(node: string, output: number): Signal<Value> {
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

/** Signals by node, made when they are first asked for. */
export class NodeSignals<Value> {
  readonly #initial: Value;
  readonly #signals = new Map<string, Signal<Value>>();

  constructor(initial: Value) {
    this.#initial = initial;
  }

  of(node: string): Signal<Value> {
    let found = this.#signals.get(node);
    if (found === undefined) {
      this.#signals.set(node, (found = signal(this.#initial)));
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

  reset(): void {
    for (const one of this.#signals.values()) {
      one.value = this.#initial;
    }
  }
}
