import assert from "node:assert/strict";
import { afterEach, beforeEach, mock, test } from "node:test";
import { Host } from "../src/host.ts";
import { HeldKeys } from "../src/input/keys.ts";
import { Device, EventId } from "../src/codes.ts";

/** The connections that the host's page opened, the last one at the end. */
let sockets: StandInSocket[];
/** Opens the next one, which the page does after a while. */
let retry: () => void;

class StandInSocket extends EventTarget {
  static readonly OPEN = 1;
  readyState = 0;
  readonly sent: { op: string; id?: number; event?: number; down?: number[]; nodes?: string[] }[] = [];

  constructor() {
    super();
    sockets.push(this);
  }

  send(text: string): void {
    this.sent.push(JSON.parse(text));
  }

  open(): void {
    this.readyState = StandInSocket.OPEN;
  }

  greet(scene = 11): void {
    this.tell({ push: "hello", version: "1.0.0", fps: 60, address: "127.0.0.1:1", connection: sockets.length, scene });
  }

  /** Messages that come together. */
  tell(...messages: object[]): void {
    this.dispatchEvent(new MessageEvent("message", { data: JSON.stringify(messages) }));
  }

  lose(): void {
    this.readyState = 3;
    this.dispatchEvent(new Event("close"));
  }

  /** What it sent of keys: the event of a key, or the keyboard's state. */
  get keys(): unknown[] {
    return this.sent.filter(({ op }) => op === "event" || op === "keys").map(({ event, down }) => event ?? down);
  }
}

const realWebSocket = globalThis.WebSocket;

beforeEach(() => {
  sockets = [];
  globalThis.WebSocket = StandInSocket as unknown as typeof WebSocket;
  mock.method(globalThis, "setTimeout", (action: () => void) => (retry = action));
});
afterEach(() => {
  mock.restoreAll();
  globalThis.WebSocket = realWebSocket;
});

/** A page with a keyboard. */
function openPage() {
  const host = new Host("ws://127.0.0.1:1/session");
  const held = new HeldKeys();
  const keyboard = {};
  host.holders.add({ holds: () => held.texts.length > 0, forget: () => held.clear() });
  const a = { key: "a", code: "KeyA", repeat: false };
  const send = (event: number, text: string) =>
    host.sendInput({ device: Device.keyboard, event, payload: { is: "key", text } });
  return {
    host,
    press() {
      const text = held.down(a);
      if (text !== null) {
        send(EventId.keyDown, text);
      }
      host.keyboard.setDown(keyboard, held.virtualKeys);
    },
    release() {
      held.up(a).forEach((text) => send(EventId.keyUp, text));
      host.keyboard.setDown(keyboard, held.virtualKeys);
    },
  };
}

function connect(): StandInSocket {
  const socket = sockets.at(-1)!;
  socket.open();
  socket.greet();
  return socket;
}

test("a key that went down while there was no connection is held nowhere, and its up is told to nobody", () => {
  const page = openPage();
  connect().lose();
  page.press();
  assert.equal(page.host.holders.any, true);
  retry();
  assert.equal(sockets.length, 2);
  const socket = connect();
  assert.equal(page.host.holders.any, false);
  page.release();
  assert.equal(socket.keys.includes(EventId.keyUp), false);
  page.press();
  page.release();
  assert.deepEqual(socket.keys.slice(-4), [EventId.keyDown, [65], EventId.keyUp, []]);
});

test("a page knows when the host no longer takes its token", async () => {
  const { host } = openPage();
  let status = 401;
  mock.method(globalThis, "fetch", async () => ({ status }));
  const fail = async () => {
    sockets.at(-1)!.lose();
    await new Promise(setImmediate);
    const isRefused = host.isRefused.value;
    retry();
    return isRefused;
  };
  connect();
  assert.equal(await fail(), false);
  assert.equal(await fail(), true);
  status = 200;
  assert.equal(await fail(), false);
  status = 401;
  assert.equal(await fail(), true);
  connect();
  assert.equal(host.isRefused.value, false);
});

test("a request that is longer than the host takes isn't sent, and says so", async () => {
  const { host } = openPage();
  const socket = connect();
  const send = (text: string) => host.requests.sendText(1, text);
  assert.equal(await send("é".repeat(600_000)), "This is too long for the host: it takes 1 MiB at a time.");
  assert.equal(socket.sent.some(({ op }) => op === "send"), false);
  void send("é".repeat(500_000));
  assert.equal(socket.sent.at(-1)!.op, "send");
});

test("the page knows how old the host's last frame is, from the greeting on", () => {
  const { host } = openPage();
  assert.equal(host.frames.value, null);
  mock.method(Date, "now", () => 10000);
  const socket = connect();
  assert.equal(host.frames.value!.age(10500), 500);
  socket.lose();
  assert.equal(host.frames.value, null);
});

test("nothing is sent before the host's greeting", () => {
  const page = openPage();
  const [socket] = sockets;
  socket!.open();
  page.press();
  assert.deepEqual(socket!.sent, []);
  socket!.greet();
  page.release();
  assert.equal(socket!.keys.includes(EventId.keyUp), false);
});

test("when a node acted last comes from the host, but what the page saw by itself isn't told once more", () => {
  mock.method(Date, "now", () => 20_000);
  const { host } = openPage();
  const socket = connect();
  const active = host.active.of("k");
  const told = (idle_ms: object) => {
    socket.tell({ push: "counters", nodes: {}, idle_ms });
    retry(); // the pause until the next that is shown
    return active.value;
  };
  assert.equal(told({}), null);
  assert.equal(told({ k: 5000 }), 15_000);
  active.value = 19_800;
  assert.equal(told({ k: 0 }), 19_800);
  active.value = 19_000;
  assert.equal(told({ k: 0 }), 20_000);
});

const KEYS = { node: "k", type: "", clip: null, graph: "Keys", name: "" };
const NO_PINS = { own: [], inputs: [], outputs: [] };

/** Answers the last request of the kind. */
async function answer(socket: StandInSocket, op: string, reply: object): Promise<void> {
  await new Promise(setImmediate);
  const request = socket.sent.filter((sent) => sent.op === op).at(-1);
  socket.tell({ ok: true, id: request?.id, ...reply });
  await new Promise(setImmediate);
}

async function answerScene(socket: StandInSocket, nodes: readonly (typeof KEYS)[]): Promise<void> {
  await answer(socket, "scene", { version: 1, nodes, links: [] });
  await answer(socket, "inspect_nodes", { nodes: Object.fromEntries(nodes.map(({ node }) => [node, NO_PINS])) });
}

test("another scene begins anew, also for nodes of the same handles; a new connection goes on", async () => {
  const { host } = openPage();
  const socket = connect();
  await answerScene(socket, [KEYS]);
  assert.equal(host.sceneNumber.value, 11);
  socket.tell({ push: "happened", frame: 1, posted: [{ node: "k", output: 152 }] });
  socket.tell({ push: "scene", version: 2, changed: ["k"] });
  await answerScene(socket, [KEYS]);
  socket.greet();
  await answerScene(socket, [KEYS]);
  retry(); // the pause until the next that is shown
  assert.equal(host.sceneNumber.value, 11);
  assert.notEqual(host.fired.of("k", 152).value, null);
  for (const tell of [() => socket.tell({ push: "scene", version: 3, scene: 12 }), () => socket.greet(13)]) {
    const before: number = host.sceneNumber.value;
    tell();
    retry();
    assert.deepEqual([host.sceneNumber.value, host.fired.of("k", 152).value, host.active.of("k").value], [before, null, null]);
    assert.equal(host.isCurrent(before), false, "what is typed now isn't done to the next scene");
    await answerScene(socket, [KEYS]);
    assert.notEqual(host.sceneNumber.value, before);
    socket.tell({ push: "happened", frame: 2, posted: [{ node: "k", output: 152 }] });
    retry();
    assert.notEqual(host.fired.of("k", 152).value, null);
  }
});

test("the page hears of others' steps, not of the scene that it uploaded", async () => {
  const { host } = openPage();
  const socket = connect();
  const told: string[] = [];
  host.onOthersStep = ({ step }) => told.push(step.name);
  const tell = (name: string) => socket.tell({ push: "step", was: "taken", step: { name, op: "load" } });
  mock.method(globalThis, "fetch", async () => Response.json({ ok: true }));
  const uploaded = host.upload(new File([], "show.json"));
  tell("uploaded");
  socket.tell({ push: "scene", version: 2, scene: 12 });
  await uploaded;
  tell("another");
  assert.deepEqual(told, ["another"]);
});

test("a step that replaces all nodes makes no other scene", async () => {
  const { host } = openPage();
  const socket = connect();
  await answerScene(socket, [KEYS]);
  const number = host.sceneNumber.value;
  socket.tell({ push: "scene", version: 2, changed: ["k", "l"] });
  await answerScene(socket, [{ ...KEYS, node: "l" }]);
  assert.deepEqual([host.nodes.value!.map(({ node }) => node), host.sceneNumber.value], [["l"], number]);
});

test("what is told behind a reply, in the same message, comes behind it", async () => {
  const { host } = openPage();
  const socket = connect();
  const { id } = socket.sent.find(({ op }) => op === "log")!;
  const line = (text: string) => ({ level: 4, text });
  socket.tell(
    { ok: true, id, lines: [{ n: 1, ms: 0, ...line("one") }] },
    { push: "happened", frame: 1, log: [line("two")] },
  );
  await new Promise(setImmediate);
  retry(); // the pause until the next that is shown
  assert.deepEqual([0, 1].map((index) => host.log.lines.at(index)?.text), ["one", "two"]);
});

test("a node of which nothing changed stays the same object when the scene changes around it", async () => {
  const { host } = openPage();
  const socket = connect();
  const mouse = { ...KEYS, node: "m", graph: "Mouse", place: { x: 1, y: 2 } };
  await answer(socket, "scene", { version: 1, nodes: [KEYS, mouse], links: [] });
  await answer(socket, "inspect_nodes", { nodes: { k: NO_PINS, m: NO_PINS } });
  const before = host.nodes.value!;
  socket.tell({ push: "scene", version: 2, changed: ["k"] });
  await answerScene(socket, [{ ...KEYS, graph: "Keyboard" }, mouse]);
  assert.deepEqual(host.nodes.value!.map(({ graph }) => graph), ["Keyboard", "Mouse"]);
  assert.equal(host.nodes.value![1], before[1]);
  const asked = () => socket.sent.splice(0).map(({ op, nodes }) => [op, nodes]);
  asked();
  socket.tell({ push: "scene", version: 3, changed: [] });
  await answer(socket, "scene", { version: 3, nodes: [KEYS, { ...mouse, place: { x: 1, y: 3 } }], links: [] });
  assert.equal(host.nodes.value![1]!.place!.y, 3);
  assert.deepEqual(asked(), [["scene", undefined]], "the list alone");
  socket.tell({ push: "scene", version: 4, nodes: ["k"] });
  await answer(socket, "inspect_nodes", { nodes: { k: NO_PINS } });
  assert.deepEqual(asked(), [["inspect_nodes", ["k"]]], "the node that changed, and no other");
});

test("values that are told again stay the same objects, so that nothing is drawn anew", async () => {
  const { host } = openPage();
  const socket = connect();
  const value = { int: 1, float: 0.5, string: "a" };
  const tell = (told: object) => {
    socket.tell({ push: "outputs", nodes: { k: { 7: told } } });
    retry(); // the pause until the next that is shown
    return host.values.of("k", 7).value;
  };
  await answer(socket, "scene", { version: 1, nodes: [KEYS], links: [] });
  await answer(socket, "inspect_nodes", { nodes: { k: { ...NO_PINS, outputs: [{ params: [{ id: 7, ...value, choices: [] }] }] } } });
  retry();
  const shown = host.values.of("k", 7).value;
  assert.deepEqual(shown, value);
  assert.equal(tell(value), shown);
  assert.equal(host.active.of("k").value, null);
  assert.deepEqual(tell({ ...value, length: 70000 }), { ...value, length: 70000 });
  assert.notEqual(host.active.of("k").value, null);
});

test("many nodes are asked for in parts, few at first; those that have gone meanwhile aren't shown, whatever their handles", async () => {
  const { host } = openPage();
  const socket = connect();
  const handles = ["constructor", "__proto__", ...Array.from({ length: 128 }, (_, index) => `k${index}`)];
  await answer(socket, "scene", { version: 1, nodes: handles.map((node) => ({ ...KEYS, node })), links: [] });
  const asked = socket.sent.filter(({ op }) => op === "inspect_nodes");
  assert.deepEqual(asked.flatMap(({ nodes }) => nodes), handles);
  assert.deepEqual(asked.map(({ nodes }) => nodes!.length), [20, 100, 10]);
  const [first, second, third] = asked;
  socket.tell({ ok: true, id: first!.id, nodes: { k0: NO_PINS } });
  await new Promise(setImmediate);
  const [shown] = host.firstNodes.value!;
  assert.deepEqual([shown!.node, host.sceneNumber.value, host.nodes.value], ["k0", 11, null]);
  socket.tell({ ok: true, id: second!.id, nodes: { k98: NO_PINS } });
  socket.tell({ ok: true, id: third!.id, nodes: { k127: NO_PINS } });
  await new Promise(setImmediate);
  assert.deepEqual(host.nodes.value?.map(({ node }) => node), ["k0", "k98", "k127"]);
  assert.equal(host.nodes.value[0], shown);
});

test("how often outputs fired is what the host counts; when it counts anew, nothing has fired", () => {
  const { host } = openPage();
  const socket = connect();
  const tell = (message: object) => {
    socket.tell(message);
    retry(); // the pause until the next that is shown
  };
  const counters = { fired: 3, received: 0, matched: 0, rejected: 0, sent: 0, dropped: 0, outputs: { 152: 3 } };
  tell({ push: "happened", frame: 1, posted: [{ node: "k", output: 152 }] });
  assert.equal(host.firedCount("k", 152), 0);
  tell({ push: "counters", nodes: { k: counters } });
  assert.deepEqual([host.firedCount("k", 152), host.firedCount("k", 153)], [3, 0]);
  const { outputs: _, ...none } = { ...counters, fired: 0 };
  tell({ push: "counters", nodes: { k: none } });
  assert.deepEqual([host.firedCount("k", 152), host.fired.of("k", 152).value], [0, null]);
});

test("a connection that is lost while the scene is read leaves the page what it shows", async () => {
  const { host } = openPage();
  const scene = { version: 1, nodes: [KEYS], links: [{ from: "k", output: 1, to: "gone", input: 2 }] };
  const first = connect();
  await answer(first, "scene", scene);
  await answer(first, "inspect_nodes", { nodes: { k: NO_PINS } });
  const shown = host.nodes.value;
  assert.deepEqual(shown?.map(({ graph }) => graph), ["Keys"]);
  assert.deepEqual(host.links.value, []);
  first.tell({ push: "scene", version: 2 });
  await answer(first, "scene", scene);
  first.lose();
  await new Promise(setImmediate);
  assert.equal(host.nodes.value, shown);
});

test("of a scene that is cut off by a lost connection the first nodes are shown if they were read", async () => {
  const { host } = openPage();
  const nodes = Array.from({ length: 21 }, (_, index) => ({ ...KEYS, node: `k${index}` }));
  const readScene = async () => {
    const socket = connect();
    await answer(socket, "scene", { version: 1, nodes, links: [] });
    return socket;
  };
  const tell = async (socket: StandInSocket, part: number, node: string) => {
    const { id } = socket.sent.filter(({ op }) => op === "inspect_nodes")[part]!;
    socket.tell({ ok: true, id, nodes: { [node]: NO_PINS } });
    await new Promise(setImmediate);
  };
  const lose = async (socket: StandInSocket) => {
    socket.lose();
    await new Promise(setImmediate);
    retry();
  };
  await lose(await readScene());
  assert.deepEqual([host.firstNodes.value, host.nodes.value], [null, null]);
  const second = await readScene();
  await tell(second, 0, "k0");
  const first = host.firstNodes.value;
  assert.deepEqual(first?.map(({ node }) => node), ["k0"]);
  await lose(second);
  assert.deepEqual([host.firstNodes.value, host.nodes.value], [first, null]);
  const third = await readScene();
  await tell(third, 0, "k0");
  await tell(third, 1, "k20");
  assert.deepEqual(host.nodes.value?.map(({ node }) => node), ["k0", "k20"]);
});

test("how the network stood isn't shown once the page knows how it stands", async () => {
  const timers: (() => void)[] = [];
  mock.method(globalThis, "setTimeout", (action: () => void) => timers.push(action));
  const { host } = openPage();
  const socket = sockets[0]!;
  socket.open();
  socket.greet();
  const network = (port: number) => ({ devices: null, broadcast: { port }, control: null, listen_only: false });
  const shown = () => host.network.peek()?.state.broadcast?.port;
  socket.tell({ push: "network", ...network(1) }, { push: "network", ...network(2) });
  const answered = host.readNetwork();
  const { id } = socket.sent.filter(({ op }) => op === "network").at(-1)!;
  socket.tell({ ok: true, id, ...network(3) });
  await answered;
  const run = () => timers.splice(0).forEach((action) => action());
  run();
  assert.equal(shown(), 3);
  socket.tell({ push: "network", ...network(4) });
  run();
  assert.equal(shown(), 4);
});
