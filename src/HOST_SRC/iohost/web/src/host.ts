import { batch, signal, type Signal } from "@preact/signals";
import { Connection, type ConnectionListener } from "./connection.ts";
import { FrameWatch } from "./frames.ts";
import { t } from "./i18n.ts";
import { Holders } from "./input/holders.ts";
import { KeyboardState } from "./input/keyboardState.ts";
import { VirtualKey } from "./input/virtualKeys.ts";
import { LogBuffer, type LogLine } from "./log.ts";
import { NodeType, nodesOf } from "./nodeTypes.ts";
import { Pace } from "./pace.ts";
import type { EditValue } from "./params.ts";
import type { JsonVerdict } from "./protocol.ts";
import { Device, EventId } from "./codes.ts";
import { firedByNodes, type EventReply, type Happened, type InputEvent, type NodeDetails, type Push, type Reply } from "./messages.ts";
import type { HeldEntry, Link, NetworkState, OfferedType, OutputValue, Scene, SceneNode, SceneObject } from "./protocol.ts";

export type ConnectionState =
  | { is: "connecting" }
  | { is: "open"; version: string; fps: number; address: string; connection: number }
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
  /** Null while there is no connection. */
  readonly frames = signal<FrameWatch | null>(null);
  /** Null until the scene was read for the first time. */
  readonly nodes = signal<NodeView[] | null>(null);
  readonly links = signal<readonly Link[]>([]);
  readonly objects = signal<readonly SceneObject[]>([]);
  /** How the network stands, and when the page was told, in milliseconds since 1970. */
  readonly network = signal<{ state: NetworkState; told: number } | null>(null);
  /** What the JSON nodes made of their last texts, by node. */
  readonly jsonVerdicts = signal<ReadonlyMap<string, JsonVerdict>>(new Map());
  /** What all connections hold, and when the page was told, in milliseconds since 1970. */
  readonly held = signal<{ entries: readonly HeldEntry[]; told: number }>({ entries: [], told: 0 });
  /** What on this page can hold something. */
  readonly holders = new Holders();
  /** The virtual keys that this page holds. */
  readonly keyboard = new KeyboardState((state) => {
    this.capsLock.value = state.toggled.includes(VirtualKey.capsLock);
    this.#connection.send({ op: "keys", ...state });
  });
  readonly capsLock = signal(false);
  readonly values = new OutputSignals<OutputValue>(NO_VALUE);
  readonly fired = new OutputSignals<Fired>(NEVER_FIRED);
  readonly log = signal<{ lines: readonly LogLine[]; count: number }>({ lines: [], count: 0 });

  readonly #connection: Connection;
  readonly #logBuffer = new LogBuffer();
  readonly #pace = new Pace();
  #logWaits = false;
  #reading = false;
  #sceneIsStale = false;
  readonly #staleNodes = new Set<string>();

  constructor(address: string) {
    this.#connection = new Connection(address, this);
  }

  sendInput(event: InputEvent): void {
    this.#connection.send({ op: "event", ...event });
  }

  /** Sends an event as sendInput does, and answers with what came of it. */
  askInput(event: InputEvent): Promise<EventReply> {
    return this.#connection.request({ op: "event", ...event });
  }

  /** Lets go of all that this page holds, or everyone does; the reason is for the log. */
  releaseAll(reason: string, everyone = false): void {
    this.#forgetHeld();
    this.#connection.send({ op: "release_held", reason, everyone });
  }

  /** Lets go of what this page holds of one device, or of one key, pointer or hand of it. */
  releaseDevice(reason: string, device: number, identity?: string | number): void {
    this.#connection.send({ op: "release_held", reason, device, ...(identity !== undefined && { identity }) });
  }

  /** Presses a key of an on-screen keyboard: the node takes each by itself, however fast they come. */
  typeKey(node: string, inputs: { text: number; event: number }, keyName: string): void {
    const keyboard = this.#keyboardBehind(node, inputs.text);
    if (keyboard !== null) {
      const key = { device: Device.keyboard, payload: { is: "key", text: keyName } };
      this.#connection.send({ op: "event", node: keyboard, event: EventId.keyDown, ...key });
      this.#connection.send({ op: "process", node: keyboard });
      this.#connection.send({ op: "process", node });
      this.#connection.send({ op: "event", node: keyboard, event: EventId.keyUp, ...key });
      return;
    }
    this.#connection.send({ op: "set", node, param: inputs.text, string: keyName });
    this.#connection.send({ op: "trigger", node, param: inputs.event });
    this.#connection.send({ op: "process", node });
  }

  /** The keyboard node that an input is linked to, which alone decides what it holds; null without one. */
  #keyboardBehind(node: string, input: number): string | null {
    const link = this.links.peek().find(({ to, input: linked }) => to === node && linked === input);
    const keyboards = nodesOf(this.nodes.peek(), NodeType.keyboard);
    return keyboards.find((keyboard) => keyboard.node === link?.from)?.node ?? null;
  }

  /** The node types that the module offers now. */
  async offeredTypes(): Promise<OfferedType[]> {
    const reply = await this.#connection.request<{ types: OfferedType[] }>({ op: "catalogue" });
    return reply.ok ? reply.types : [];
  }

  /** Adds a node under a handle that no node has; answers with what was wrong, or null. */
  async addNode(node: string, type: string, clip: string, graph: string): Promise<string | null> {
    const reply = await this.#connection.request<{ created: boolean }>({ op: "create", node, type, clip, graph });
    return reply.ok && !reply.created ? t("The module doesn't make nodes of this type.") : errorOf(reply);
  }

  async removeNode(node: string): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "destroy", node }));
  }

  async link(from: string, output: number, to: string, input: number): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "link", from, output, to, input }));
  }

  async unlink(link: Link): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "unlink", ...link }));
  }

  async addObject(clip: string, name: string): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "object", clip, name }));
  }

  /** Changes an input as the editor's panel does; answers with what was wrong, or null. */
  async edit(node: string, param: number, value: EditValue): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "edit", node, param, ...value }));
  }

  async trigger(node: string, param: number): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "trigger", node, param }));
  }

  /** While it is on, what nodes send to devices is shown only. */
  setListenOnly(on: boolean): void {
    this.#connection.send({ op: "listen_only", on });
  }

  clearLog(): void {
    this.#logBuffer.clear();
    this.#publishLog();
  }

  resetCounts(): void {
    this.#pace.show(() => this.fired.reset());
  }

  lost(retryInMs: number): void {
    this.connection.value = { is: "lost", retryAt: Date.now() + retryInMs };
    this.frames.value = null;
    this.#showHeld([]);
    this.#forgetHeld();
  }

  replied(reply: Reply): void {
    this.#happened(reply);
  }

  pushed(push: Push): void {
    switch (push.push) {
      case "hello":
        // What went down while there was no connection was told to nobody, so its end isn't either.
        this.#forgetHeld();
        this.connection.value = { is: "open", ...push };
        this.frames.value = new FrameWatch(Date.now());
        void this.#refresh();
        void this.#readNetwork();
        break;
      case "frame":
        this.frames.value?.told(push.frame, Date.now());
        break;
      case "scene":
        void this.#refresh(push.nodes);
        break;
      case "happened":
        this.#happened(push);
        break;
      case "json":
        this.#pace.show(() => {
          this.jsonVerdicts.value = new Map([...this.jsonVerdicts.value, ...Object.entries(push.nodes)]);
        });
        break;
      case "network":
        this.network.value = { state: push, told: Date.now() };
        break;
      case "objects":
        this.#pace.show(() => (this.objects.value = push.objects));
        break;
      case "held":
        this.#heldChanged(push.held, push.released ?? []);
        break;
      case "outputs":
        this.#pace.show(() => {
          for (const [node, outputs] of Object.entries(push.nodes)) {
            for (const [output, value] of Object.entries(outputs)) {
              this.values.of(node, Number(output)).value = value;
            }
          }
        });
        break;
    }
  }

  #heldChanged(entries: HeldEntry[], released: number[]): void {
    this.#showHeld(entries);
    const state = this.connection.value;
    if (state.is === "open" && released.includes(state.connection)) {
      // What went down here while that was on its way is let go too, since the page forgets it.
      this.releaseAll("somebody released everything");
    }
  }

  #showHeld(entries: HeldEntry[]): void {
    const told = Date.now();
    this.#pace.show(() => (this.held.value = { entries, told }));
  }

  #forgetHeld(): void {
    this.holders.forget();
    this.keyboard.forget();
  }

  #happened({ posted, log, redrawn }: Happened): void {
    const now = Date.now();
    if (redrawn !== undefined) {
      void this.#refresh(redrawn.flatMap(({ node }) => node ?? []));
    }
    if (posted !== undefined) {
      this.#pace.show(() => {
        for (const { node, output } of firedByNodes(posted)) {
          const fired = this.fired.of(node, output);
          fired.value = { count: fired.value.count + 1, last: now };
        }
      });
    }
    if (log !== undefined) {
      this.#logBuffer.append(log, now);
      if (!this.#logWaits) {
        this.#logWaits = true;
        this.#pace.show(() => this.#publishLog());
      }
    }
  }

  #publishLog(): void {
    this.#logWaits = false;
    this.log.value = { lines: [...this.#logBuffer.lines], count: this.#logBuffer.count };
  }

  /** Reads these nodes anew, or the scene with every node; what is asked for meanwhile is read at the end. */
  async #refresh(nodes?: readonly string[]): Promise<void> {
    this.#sceneIsStale ||= nodes === undefined;
    nodes?.forEach((node) => this.#staleNodes.add(node));
    if (this.#reading) {
      return;
    }
    this.#reading = true;
    while (this.#sceneIsStale || this.#staleNodes.size > 0) {
      const whole = this.#sceneIsStale;
      const stale = new Set(this.#staleNodes);
      this.#sceneIsStale = false;
      this.#staleNodes.clear();
      await (whole ? this.#readScene() : this.#readNodes(stale));
    }
    this.#reading = false;
  }

  async #readNodes(stale: ReadonlySet<string>): Promise<void> {
    const known = this.nodes.peek();
    if (known === null) {
      return; // the scene couldn't be read; it will be with the next connection
    }
    const read = await Promise.all(known.map((node) => (stale.has(node.node) ? this.#readNode(node) : node)));
    this.nodes.value = known.map((node, index) => read[index] ?? node);
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
    batch(() => {
      this.nodes.value = nodes;
      this.jsonVerdicts.value = new Map([...this.jsonVerdicts.value].filter(([node]) => handles.has(node)));
      this.links.value = scene.links;
    });
  }

  async #readNetwork(): Promise<void> {
    const state = await this.#connection.request<NetworkState>({ op: "network" });
    if (state.ok) {
      this.network.value = { state, told: Date.now() };
    }
  }

  async #readNode(node: SceneNode): Promise<NodeView | null> {
    const details = await this.#connection.request<NodeDetails>({ op: "inspect", node: node.node });
    if (!details.ok) {
      return null;
    }
    this.#pace.show(() => {
      for (const { params } of details.outputs) {
        for (const { id, int, float, string, length } of params) {
          this.values.of(node.node, id).value = { int, float, string, ...(length !== undefined && { length }) };
        }
      }
    });
    // Which inputs its panel offers, a node says by its own parameters; the graph's inputs are copies of them.
    const own = new Map(details.own.flatMap(({ params }) => params).map(({ id, available }) => [id, available]));
    for (const param of details.inputs.flatMap(({ params }) => params)) {
      param.available = own.get(param.id) ?? param.available;
    }
    return { ...node, details };
  }
}

function errorOf(reply: Reply): string | null {
  return reply.ok ? null : reply.error;
}
