import { batch, computed, signal } from "@preact/signals";
import { Connection, type ConnectionListener } from "./connection.ts";
import { FrameWatch } from "./frames.ts";
import { withTexts } from "./hostTexts.ts";
import { Holders } from "./input/holders.ts";
import { KeyboardState } from "./input/keyboardState.ts";
import { VirtualKey } from "./input/virtualKeys.ts";
import { isAnother, NO_VALUE, Signals } from "./live.ts";
import { LogBuffer } from "./log.ts";
import { NodeType, nodesOf } from "./nodeTypes.ts";
import { Pace } from "./pace.ts";
import { Requests } from "./requests.ts";
import type { JsonVerdict } from "./protocol.ts";
import { Device, EventId } from "./codes.ts";
import { firedByNodes, type EventReply, type Happened, type InputEvent, type NodeDetails, type NumberedLine, type OthersStep, type Reply, type SceneState } from "./messages.ts";
import type { Counters, HeldEntry, LeftScene, Link, NetworkState, NodeCounts, Note, OutputValue, Push, Scene, SceneNode, SceneObject } from "./protocol.ts";

export type ConnectionState =
  | { is: "connecting" }
  | ({ is: "open" } & Extract<Push, { push: "hello" }>)
  | { is: "lost"; retryAt: number };

export type NodeView = SceneNode & { details: Omit<NodeDetails, "own"> };

/** Longer than the host takes to count what the page has already seen. */
const COUNTED_WITHIN_MS = 500;
/** Of so many nodes one reply stays far below what the host lets wait for a page. */
const NODES_A_REQUEST = 100;
/** So many are read first, and their cards shown: more than a window has room for. */
const FIRST_NODES = 20;

/** What the page knows of its host, and what it asks of it. */
export class Host implements ConnectionListener {
  readonly connection = signal<ConnectionState>({ is: "connecting" });
  /** The host was started anew and doesn't take this page's token. */
  readonly isRefused = signal(false);
  /** Null while there is no connection. */
  readonly frames = signal<FrameWatch | null>(null);
  /** Tells scenes apart, however alike their nodes are: the host's number of the one that is shown. */
  readonly sceneNumber = signal(0);
  /** Null until the scene was read for the first time. */
  readonly nodes = computed((): readonly NodeView[] | null => this.#nodes.value?.map(withTexts) ?? null);
  readonly byHandle = computed(() => new Map(this.nodes.value?.map((node) => [node.node, node])));
  /** Those that were read first; null until then. */
  readonly firstNodes = computed((): readonly NodeView[] | null => this.#firstNodes.value?.map(withTexts) ?? null);
  readonly links = signal<readonly Link[]>([]);
  /** Texts on the canvas, by their ids. */
  readonly notes = signal<Readonly<Record<string, Note>>>({});
  readonly objects = signal<readonly SceneObject[]>([]);
  /** How the network stands, and when the page was told, in milliseconds since 1970. */
  readonly network = signal<{ state: NetworkState; told: number } | null>(null);
  /** The same as it was told last: a push waits to be shown, an answer doesn't. */
  #network: { state: NetworkState; told: number } | null = null;
  /** What the JSON nodes made of their last texts; null before the first. */
  readonly jsonVerdicts = new Signals<JsonVerdict | null>(null);
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
  readonly values = new Signals(NO_VALUE);
  /** When an event output fired last that this page heard of, in milliseconds since 1970; null: not since the reset. */
  readonly fired = new Signals<number | null>(null);
  /** When each node last did something, in milliseconds since 1970; null: never yet. */
  readonly active = new Signals<number | null>(null);
  /** What each node did since it was made or its counters were reset, whoever looked; null until the host told. */
  readonly counters = new Signals<NodeCounts | null>(null);
  readonly #ofNodes = [this.jsonVerdicts, this.values, this.fired, this.active, this.counters];
  /** Undo, redo and the scene's file; null until the host told. */
  readonly scene = signal<SceneState | null>(null);
  /** What an earlier run of the host left unsaved. */
  readonly recovered = signal<LeftScene | null>(null);
  /** What a scene that was uploaded here is called, which has no file of the folder of scenes. */
  proposedName: string | null = null;
  readonly log = new LogBuffer();
  /** Hears of steps that this page didn't take. */
  onOthersStep: (told: OthersStep) => void = () => {};

  readonly requests: Requests;

  /** As the host told of them. */
  readonly #nodes = signal<readonly NodeView[] | null>(null);
  readonly #firstNodes = signal<readonly NodeView[] | null>(null);
  readonly #connection: Connection;
  readonly #pace = new Pace();
  #logWaits = false;
  /** The scene that the host told of; `sceneNumber` follows once that one was read. */
  #toldScene = 0;
  /** The name of the scene that is being uploaded. */
  #uploadedName: string | null = null;
  #reading = false;
  #sceneIsStale = false;
  #listIsStale = false;
  readonly #staleNodes = new Set<string>();

  constructor(address: string) {
    this.#connection = new Connection(address, this);
    this.requests = new Requests(this.#connection);
  }

  /** Whether this is still the host's scene: of another the page is told before it's shown. */
  isCurrent(scene: number): boolean {
    return scene === this.#toldScene;
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
    this.#connection.send({ op: "set", node, param: inputs.text, string: keyName, step: false });
    this.#connection.send({ op: "trigger", node, param: inputs.event });
    this.#connection.send({ op: "process", node });
  }

  /** The keyboard node that an input is linked to, which alone decides what it holds; null without one. */
  #keyboardBehind(node: string, input: number): string | null {
    const link = this.links.peek().find(({ to, input: linked }) => to === node && linked === input);
    const keyboards = nodesOf(this.nodes.peek(), NodeType.keyboard);
    return keyboards.find((keyboard) => keyboard.node === link?.from)?.node ?? null;
  }

  /** Loads a scene file of this computer. */
  async upload(file: File): Promise<string | null> {
    this.#uploadedName = file.name.replace(/\.json$/i, "");
    const error = await this.requests.upload(file);
    if (error !== null) {
      this.#uploadedName = null;
    }
    return error;
  }

  /** How often an event output fired, as the counters tell. */
  firedCount(node: string, output: number): number {
    return this.counters.of(node).value?.outputs?.[output] ?? 0;
  }

  lost(retryInMs: number): void {
    this.connection.value = { is: "lost", retryAt: Date.now() + retryInMs };
    this.frames.value = null;
    this.#showHeld([]);
    this.#forgetHeld();
  }

  failed(isRefused: boolean): void {
    this.isRefused.value = isRefused;
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
        this.isRefused.value = false;
        this.frames.value = new FrameWatch(Date.now());
        this.#tellScene(push.scene);
        void this.#refresh();
        void this.readNetwork();
        void this.#readLog();
        break;
      case "frame":
        this.frames.value?.told(push.frame, Date.now());
        break;
      case "scene":
        if (push.scene !== undefined) {
          this.#tellScene(push.scene);
          void this.#refresh();
        } else {
          void this.#refresh(push.nodes ?? push.changed, push.changed !== undefined);
        }
        break;
      case "history":
        this.scene.value = push;
        this.recovered.value = push.recovered ?? null;
        break;
      case "step":
        // An upload comes by no connection, so that the host tells of it here, too.
        if (this.#uploadedName === null || push.step.op !== "load") {
          this.onOthersStep(push);
        }
        break;
      case "counters":
        this.#showCounters(push, Date.now());
        break;
      case "happened":
        this.#happened(push);
        break;
      case "json":
        this.#pace.show(() => {
          Object.entries(push.nodes).forEach(([node, verdict]) => (this.jsonVerdicts.of(node).value = verdict));
        });
        break;
      case "network":
        this.#network = { state: push, told: Date.now() };
        this.#pace.show(() => (this.network.value = this.#network));
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
              this.#showValue(node, Number(output), value, true);
            }
          }
        });
        break;
    }
  }

  #tellScene(scene: number): void {
    if (scene !== this.#toldScene) {
      this.#toldScene = scene;
      this.proposedName = this.#uploadedName;
      this.#uploadedName = null;
      this.#pace.show(() => this.#forgetNodes());
    }
  }

  /** Another scene's nodes begin with nothing done, also those whose handles the scene before had. */
  #forgetNodes(): void {
    this.#ofNodes.forEach((signals) => signals.reset());
  }

  /** All values come with each connection, of any page: only one that is another than before is what the node did. */
  #showValue(node: string, output: number, value: OutputValue, isNews: boolean): void {
    const shown = this.values.of(node, output);
    if (isAnother(shown.peek(), value)) {
      if (isNews && shown.peek() !== NO_VALUE) {
        this.active.of(node).value = Date.now();
      }
      shown.value = value;
    }
  }

  #showCounters({ nodes, idle_ms = {} }: Counters, now: number): void {
    this.#pace.show(() => {
      for (const [node, counters] of Object.entries(nodes)) {
        this.counters.of(node).value = counters;
        if (counters.fired === 0) {
          this.fired.reset(node);
        }
      }
      for (const [node, idle] of Object.entries(idle_ms)) {
        const active = this.active.of(node);
        if (now - idle > (active.peek() ?? 0) + COUNTED_WITHIN_MS) {
          active.value = now - idle;
        }
      }
    });
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
          this.fired.of(node, output).value = now;
          this.active.of(node).value = now;
        }
      });
    }
    if (log !== undefined) {
      this.log.append(log, now);
      if (!this.#logWaits) {
        this.#logWaits = true;
        this.#pace.show(() => {
          this.#logWaits = false;
          this.log.publish();
        });
      }
    }
  }

  /**
   * Reads these nodes anew and, with `list`, which there are; or the scene with every node. What is asked for meanwhile is
   * read at the end.
   */
  async #refresh(nodes?: readonly string[], list = false): Promise<void> {
    this.#sceneIsStale ||= nodes === undefined;
    this.#listIsStale ||= list;
    nodes?.forEach((node) => this.#staleNodes.add(node));
    if (this.#reading) {
      return;
    }
    this.#reading = true;
    while (this.#sceneIsStale || this.#listIsStale || this.#staleNodes.size > 0) {
      const whole = this.#sceneIsStale;
      const listed = whole || this.#listIsStale;
      const stale = new Set(this.#staleNodes);
      this.#sceneIsStale = false;
      this.#listIsStale = false;
      this.#staleNodes.clear();
      await (listed ? this.#readScene(whole ? null : stale) : this.#readNodes(stale));
    }
    this.#reading = false;
  }

  async #readNodes(stale: ReadonlySet<string>): Promise<void> {
    const known = this.#nodes.peek();
    if (known === null) {
      return; // the scene couldn't be read; it will be with the next connection
    }
    const read = await this.#inspect(known.filter(({ node }) => stale.has(node)));
    this.#nodes.value = known.map((node) => read.get(node.node) ?? node);
  }

  /** Of nodes that are known, only stale ones are inspected; null: all are. */
  async #readScene(stale: ReadonlySet<string> | null): Promise<void> {
    const number = this.#toldScene;
    const scene = await this.#connection.request<Scene>({ op: "scene" });
    if (!scene.ok) {
      return;
    }
    const known = new Map((this.#nodes.peek() ?? []).map((node) => [node.node, node]));
    const isFresh = ({ node }: SceneNode) => stale !== null && !stale.has(node) && known.has(node);
    const asked = scene.nodes.filter((node) => !isFresh(node));
    const [first, others] = [this.#inspect(asked.slice(0, FIRST_NODES)), this.#inspect(asked.slice(FIRST_NODES))];
    const read = await first;
    if (this.#nodes.peek() === null && asked.length > FIRST_NODES && this.connection.peek().is === "open") {
      batch(() => {
        this.sceneNumber.value = number;
        this.#firstNodes.value = [...read.values()];
      });
    }
    (await others).forEach((view, node) => read.set(node, view));
    if (this.connection.peek().is !== "open") {
      return; // it comes as a whole with the next connection
    }
    const nodes = scene.nodes.flatMap((node) => (isFresh(node) ? listedAnew(known.get(node.node)!, node) : (read.get(node.node) ?? [])));
    const handles = new Set(nodes.map(({ node }) => node));
    this.#ofNodes.forEach((signals) => signals.keepOnly(handles));
    batch(() => {
      this.sceneNumber.value = number;
      this.#nodes.value = nodes;
      this.#firstNodes.value = null;
      this.links.value = scene.links.filter(({ from, to }) => handles.has(from) && handles.has(to));
      this.notes.value = scene.notes ?? {};
    });
  }

  /** What was logged before this connection came, and while there was none. */
  async #readLog(): Promise<void> {
    const log = await this.#connection.request<{ lines: NumberedLine[] }>({ op: "log" });
    if (log.ok) {
      this.log.read(log.lines);
    }
  }

  async readNetwork(): Promise<void> {
    const state = await this.#connection.request<NetworkState>({ op: "network" });
    if (state.ok) {
      this.network.value = this.#network = { state, told: Date.now() };
    }
  }

  /** What nodes have, by their handles; those that have just gone aren't there. */
  async #inspect(nodes: readonly SceneNode[]): Promise<Map<string, NodeView>> {
    const read = new Map<string, NodeView>();
    const inspectSome = async (some: readonly SceneNode[]) => {
      const reply = await this.#connection.request<{ nodes: Record<string, NodeDetails> }>({
        op: "inspect_nodes",
        nodes: some.map(({ node }) => node),
      });
      const told = new Map(reply.ok ? Object.entries(reply.nodes) : []);
      for (const node of some) {
        const details = told.get(node.node);
        if (details !== undefined) {
          this.#showOutputs(node.node, details);
          read.set(node.node, { ...node, details: withAvailable(details) });
        }
      }
    };
    const requests = Math.ceil(nodes.length / NODES_A_REQUEST);
    await Promise.all(
      Array.from({ length: requests }, (_, index) => inspectSome(nodes.slice(index * NODES_A_REQUEST, (index + 1) * NODES_A_REQUEST))),
    );
    return read;
  }

  #showOutputs(node: string, { outputs }: NodeDetails): void {
    this.#pace.show(() => {
      for (const { id, int, float, string, length } of outputs.flatMap(({ params }) => params)) {
        this.#showValue(node, id, { int, float, string, ...(length !== undefined && { length }) }, false);
      }
    });
  }
}

/** Which inputs its panel offers, a node says by its own parameters; the graph's inputs are copies of them. */
function withAvailable({ own, ...details }: NodeDetails): NodeView["details"] {
  const available = new Map(own.flatMap(({ params }) => params).map((param) => [param.id, param.available]));
  for (const param of details.inputs.flatMap(({ params }) => params)) {
    param.available = available.get(param.id) ?? param.available;
  }
  return details;
}

/** Stays the same object where the scene lists it as before, so that nothing of it is drawn anew. */
function listedAnew(before: NodeView, node: SceneNode): NodeView {
  const { details, ...listed } = before;
  return JSON.stringify(listed) === JSON.stringify(node) ? before : { ...node, details };
}
