import { batch, signal, type Signal } from "@preact/signals";
import { Connection, type ConnectionListener } from "./connection.ts";
import { LogBuffer, type LogLine } from "./log.ts";
import type { EditValue } from "./params.ts";
import type { Happened, InputEvent, NodeDetails, OutputValue, Push, Reply, Scene, SceneNode } from "./protocol.ts";

export type ConnectionState =
  | { is: "connecting" }
  | { is: "open"; version: string; fps: number; address: string }
  | { is: "lost"; retryAt: number };

export type NodeView = SceneNode & { details: NodeDetails };

export interface Fired {
  count: number;
  /** When it fired last, in milliseconds since 1970; null: never yet. */
  last: number | null;
}

const NEVER_FIRED: Fired = { count: 0, last: null };
const NO_VALUE: OutputValue = { int: 0, float: 0, string: "" };

/** Signals by node and output, made when they are first asked for. */
class OutputSignals<Value> {
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

  reset(): void {
    for (const outputs of this.#signals.values()) {
      for (const one of outputs.values()) {
        one.value = this.#initial;
      }
    }
  }
}

/** What the page knows of its host, and what it asks of it. */
export class Host implements ConnectionListener {
  readonly connection = signal<ConnectionState>({ is: "connecting" });
  /** Null until the scene was read for the first time. */
  readonly nodes = signal<NodeView[] | null>(null);
  readonly values = new OutputSignals<OutputValue>(NO_VALUE);
  readonly fired = new OutputSignals<Fired>(NEVER_FIRED);
  readonly log = signal<{ lines: readonly LogLine[]; count: number }>({ lines: [], count: 0 });

  readonly #connection: Connection;
  readonly #logBuffer = new LogBuffer();
  readonly #lostListeners = new Set<() => void>();
  #logScheduled = false;
  #refreshing = false;
  #refreshAgain = false;

  constructor(address: string) {
    this.#connection = new Connection(address, this);
  }

  sendInput(event: InputEvent): void {
    this.#connection.send({ op: "event", ...event });
  }

  releaseHeld(reason: string): void {
    this.#connection.send({ op: "release_held", reason });
  }

  /** Changes an input as the editor's panel does; answers with what was wrong, or null. */
  async edit(node: string, param: number, value: EditValue): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "edit", node, param, ...value }));
  }

  async trigger(node: string, param: number): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "trigger", node, param }));
  }

  clearLog(): void {
    this.#logBuffer.clear();
    this.#publishLog();
  }

  resetCounts(): void {
    batch(() => this.fired.reset());
  }

  /** Calls back whenever the connection is lost; answers with what ends that. */
  onLost(listener: () => void): () => void {
    this.#lostListeners.add(listener);
    return () => this.#lostListeners.delete(listener);
  }

  lost(retryInMs: number): void {
    this.connection.value = { is: "lost", retryAt: Date.now() + retryInMs };
    for (const listener of this.#lostListeners) {
      listener();
    }
  }

  replied(reply: Reply): void {
    this.#happened(reply);
  }

  pushed(push: Push): void {
    switch (push.push) {
      case "hello":
        this.connection.value = { is: "open", version: push.version, fps: push.fps, address: push.address };
        void this.#refresh();
        break;
      case "scene":
        void this.#refresh();
        break;
      case "happened":
        this.#happened(push);
        break;
      case "outputs":
        batch(() => {
          for (const [node, outputs] of Object.entries(push.nodes)) {
            for (const [output, value] of Object.entries(outputs)) {
              this.values.of(node, Number(output)).value = value;
            }
          }
        });
        break;
    }
  }

  #happened({ posted, log }: Happened): void {
    const now = Date.now();
    if (posted !== undefined) {
      batch(() => {
        for (const { node, output } of posted) {
          const fired = this.fired.of(node, output);
          fired.value = { count: fired.value.count + 1, last: now };
        }
      });
    }
    if (log !== undefined) {
      this.#logBuffer.append(log, now);
      this.#scheduleLog();
    }
  }

  /** The log is drawn once a browser frame, however many lines came. */
  #scheduleLog(): void {
    if (!this.#logScheduled) {
      this.#logScheduled = true;
      requestAnimationFrame(() => this.#publishLog());
    }
  }

  #publishLog(): void {
    this.#logScheduled = false;
    this.log.value = { lines: [...this.#logBuffer.lines], count: this.#logBuffer.count };
  }

  /** Reads the scene and every node anew; asked for meanwhile, it does so once more at the end. */
  async #refresh(): Promise<void> {
    if (this.#refreshing) {
      this.#refreshAgain = true;
      return;
    }
    this.#refreshing = true;
    do {
      this.#refreshAgain = false;
      await this.#readScene();
    } while (this.#refreshAgain);
    this.#refreshing = false;
  }

  async #readScene(): Promise<void> {
    const scene = await this.#connection.request<Scene>({ op: "scene" });
    if (!scene.ok) {
      return;
    }
    const read = await Promise.all(scene.nodes.map((node) => this.#readNode(node)));
    const nodes = read.filter((node) => node !== null);
    const handles = new Set(nodes.map(({ node }) => node));
    this.values.keepOnly(handles);
    this.fired.keepOnly(handles);
    this.nodes.value = nodes;
  }

  async #readNode(node: SceneNode): Promise<NodeView | null> {
    const details = await this.#connection.request<NodeDetails>({ op: "inspect", node: node.node });
    if (!details.ok) {
      return null;
    }
    batch(() => {
      for (const { params } of details.outputs) {
        for (const { id, int, float, string } of params) {
          this.values.of(node.node, id).value = { int, float, string };
        }
      }
    });
    return { ...node, details };
  }
}

function errorOf(reply: Reply): string | null {
  return reply.ok ? null : reply.error;
}

