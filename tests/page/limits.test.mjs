// The server and those who don't read or want too much, and what it lacks itself.
import assert from "node:assert/strict";
import { execFileSync, spawn } from "node:child_process";
import { once } from "node:events";
import http from "node:http";
import net from "node:net";
import { existsSync, mkdirSync, readdirSync, readFileSync, readlinkSync, rmSync, symlinkSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { temporaryFolder } from "./support/folder.mjs";
import { startHost } from "./support/host.mjs";
import { ask, postRequest } from "./support/http.mjs";
import { createNode, createScene, logIn, must, nodeOf, openSession, postedIn, Type, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

const KEY_DOWN = { op: "event", device: 0, event: 2002, payload: { is: "key", text: "a" } };
const KEY_UP = { ...KEY_DOWN, event: 2003 };
const KEY_PRESSED = ["k", 152];
const KEY_RELEASED = ["k", 153];

/** Does something so often, some at a time: one by one, each waits for its turn on a busy machine. */
async function repeat(times, act) {
  const AT_ONCE = 50;
  for (let done = 0; done < times; done += AT_ONCE) {
    await Promise.all(Array.from({ length: AT_ONCE }, act));
  }
}

/** Presses and releases a key so often, whose name is so long; the log's lines have it. */
function press(script, times, length) {
  const payload = { is: "key", text: "a".repeat(length) };
  return repeat(times, () => Promise.all([must(script, { ...KEY_DOWN, payload }), must(script, { ...KEY_UP, payload })]));
}

/** Holds a key and has the host end: who listens is told of the key's release before. */
async function endsWithRelease(host, script, endHost) {
  const other = await openSession(host.address);
  await must(script, KEY_DOWN);
  const closed = once(other.socket, "close"); // what the host told before its end may come behind it
  await endHost();
  assert.equal(await host.ended(), 0);
  await closed;
  assert.deepEqual(postedIn(other.pushes), [KEY_PRESSED, KEY_RELEASED]);
}

/** A connection by hand to the session. What it received gathers in `received`. */
async function connectRaw(address) {
  const [name, port] = address.split(":");
  const socket = net.connect({ port: Number(port), host: name, allowHalfOpen: true });
  socket.write(`GET /session HTTP/1.1\r\nHost: ${address}\r\nConnection: Upgrade\r\nUpgrade: websocket\r\n` +
    "Sec-WebSocket-Version: 13\r\nSec-WebSocket-Key: AAAAAAAAAAAAAAAAAAAAAA==\r\n\r\n");
  const raw = { socket, received: Buffer.alloc(0) };
  socket.on("data", (data) => (raw.received = Buffer.concat([raw.received, data])));
  await until("the answer", () => raw.received.includes("\r\n\r\n"));
  return raw;
}

/** A request of 64 KiB and more as a WebSocket's frame, masked by zeros. */
function frameOf(request) {
  const text = Buffer.from(JSON.stringify(request));
  const head = Buffer.alloc(14);
  head.set([0x81, 0xff]);
  head.writeUInt32BE(text.length, 6);
  return Buffer.concat([head, text]);
}

for (const signal of ["SIGTERM", "SIGINT", "SIGHUP"]) {
  test(`${signal} ends the host, and what was held is released before`, async () => {
    const host = await startHost();
    await endsWithRelease(host, await createScene(host.address), () => host.kill(signal));
  });
}

test("a request to quit ends the host, and what was held is released before", async () => {
  const host = await startHost();
  await endsWithRelease(host, await createScene(host.address), async () => {
    assert.equal((await postRequest(host.address, { op: "quit" })).ok, true);
  });
  assert.match(host.output.stdout, /^log \d+ +a request ends the host$/m);
});

test("a terminal that isn't read stalls nobody, and not the end with its releases", async () => {
  const host = await startHost();
  const script = await createScene(host.address);
  host.stopReading();
  await press(script, 50, 20_000); // more than pipe and reader hold
  await endsWithRelease(host, script, () => host.kill("SIGTERM"));
});

test("a host that is told to end as soon as it has printed its address ends by itself", async () => {
  for (let round = 0; round < 20; ++round) {
    const host = await startHost();
    assert.equal(await host.end(), 0);
  }
});

test("a terminal that is read again says how many lines were left out", async () => {
  const host = await startHost();
  const script = await createScene(host.address);
  host.stopReading();
  const presses = 100;
  await press(script, presses, 20_000); // more than pipe and queue hold
  host.readOn();
  const missing = () => [...host.output.stdout.matchAll(/^iohost: (\d+) lines are missing here/gm)].map(([, count]) => Number(count));
  await until("the number of lines", () => missing().length > 0);
  assert.equal(await host.end(), 0);
  const printed = host.output.stdout.match(/^(event|log) .*$/gm).length;
  // Each fired event has a line of its own and one of the log.
  assert.equal(printed + missing().reduce((sum, count) => sum + count), presses * 4);
});

test("a stand-in device whose lines aren't read takes connections and ends", async () => {
  const device = spawn(process.env.IOHOST, ["--device", "0", "--refuse"], { stdio: ["ignore", "pipe", "inherit"] });
  const [line] = await once(device.stdout, "data");
  device.stdout.pause();
  const { listening } = JSON.parse(String(line));
  const [name, port] = listening.split(":");
  // More lines than a pipe and its reader hold.
  await repeat(4000, () => once(net.connect(Number(port), name).on("error", () => {}).resume(), "close"));
  device.kill("SIGTERM");
  const [code] = await once(device, "exit");
  assert.equal(code, 0);
});

test("a page that can't be read for want of file descriptors is answered by 503, and then again by itself", async () => {
  const host = await startHost();
  const agent = new http.Agent({ keepAlive: true, maxSockets: 1 });
  const status = async (path) => (await ask(host.address, `/${path}`, { agent })).status;
  const limit = (count) => execFileSync("prlimit", [`--nofile=${count}:`, "--pid", String(host.pid)]);
  assert.equal(await status(""), 200);
  limit(1);
  assert.equal(await status(""), 503);
  assert.equal(await status("none.js"), 404);
  limit(1024);
  assert.equal(await status(""), 200);
  agent.destroy();
});

test("connections that can't be taken for want of file descriptors are told of, and taken later", async () => {
  const host = await startHost();
  const limit = (count) => execFileSync("prlimit", [`--nofile=${count}:`, "--pid", String(host.pid)]);
  await must(await createScene(host.address), KEY_DOWN); // the sanitizer needs a file for its first look at who takes log lines
  limit(1);
  const answer = ask(host.address, "/");
  await until("the line", () => host.output.stdout.includes("connections can't be taken: Too many open files"));
  limit(1024);
  assert.equal((await answer).status, 200);
});

test("a text goes out in one frame, however long it is", async () => {
  const host = await startHost();
  const raw = await connectRaw(host.address);
  raw.socket.write(frameOf({ op: "scene", id: "x".repeat(100_000) }));
  await until("the reply", () => raw.received.includes("xxx"));
  const { received } = raw;
  // Frames one behind the other, up to the reply's: each is a whole text.
  const firsts = [];
  for (let at = received.indexOf("\r\n\r\n") + 4; at < received.length; ) {
    firsts.push(received[at]);
    const length = received[at + 1];
    at += length < 126 ? 2 + length : length === 126 ? 4 + received.readUInt16BE(at + 2) : 10 + received.readUInt32BE(at + 6);
  }
  assert.ok(firsts.length > 1);
  assert.deepEqual(firsts.filter((first) => first !== 0x81), []);
  raw.socket.destroy();
});

test("a client that sends nothing more and reads nothing isn't kept", async () => {
  const host = await startHost();
  const folder = `/proc/${host.pid}/fd`;
  const sockets = () => readdirSync(folder).filter((name) => readlinkSync(join(folder, name)).startsWith("socket:")).length;
  const script = await openSession(host.address);
  const before = sockets();
  const { socket } = await connectRaw(host.address);
  socket.on("error", () => {});
  socket.pause();
  for (let index = 0; index < 12; ++index) {
    socket.write(frameOf({ op: "scene", id: "x".repeat(500_000) })); // the replies are more than the system's buffers hold
  }
  for (let turn = 0; turn < 200; ++turn) {
    await must(script, { op: "scene" }); // meanwhile as much is written as goes
  }
  socket.end();
  await until("its end", () => sockets() === before);
  socket.destroy();
});

test("a page opens, and whoever is there stays, however long texts are", async () => {
  const NODES = 100;
  const MOST = 65536;
  const MOST_TOGETHER = 16 * MOST;
  const host = await startHost();
  const script = await openSession(host.address);
  for (let index = 0; index < NODES; ++index) {
    await createNode(script, `o${index}`, Type.objectJson, `Object ${index}`);
    await must(script, { op: "set", node: `o${index}`, param: 1202, string: "Demo" });
    await must(script, { op: "set", node: `o${index}`, param: 1203, string: "Map" });
  }
  await must(script, { op: "process" });
  const text = "\u0001".repeat(MOST + 1); // takes six times as much in JSON
  assert.equal((await ask(host.address, "/object-text?clip=Demo&object=Map", { method: "POST", body: text })).status, 200);
  for (let key = 0; key < 9; ++key) {
    await must(script, { ...KEY_DOWN, payload: { is: "key", text: key + "x".repeat(1_000_000) } });
  }
  const page = await openSession(host.address);
  const told = ({ pushes }) => pushes.filter(({ push }) => push === "outputs").flatMap(({ nodes }) => Object.values(nodes));
  const texts = () => told(page).map((outputs) => outputs["1252"]).filter((output) => output?.length === text.length);
  await until("the texts", () => texts().length === NODES);
  assert.equal(texts()[0].string.length, MOST);
  const together = texts().reduce((sum, { string }) => sum + string.length, 0);
  assert.ok(together > MOST_TOGETHER && together < MOST_TOGETHER + NODES * 1000, `${together} characters`);
  const { held } = page.pushes.find(({ push }) => push === "held");
  assert.deepEqual(held.map(({ identity }) => identity), Array.from({ length: 9 }, (_, key) => key + "x".repeat(499)));

  const all = Array.from({ length: NODES }, (_, index) => `o${index}`);
  const { nodes } = await must(page, { op: "inspect_nodes", nodes: all });
  assert.equal(nodes.o99.outputs[0].params.find(({ id }) => id === 1252).length, text.length);
  assert.ok(JSON.stringify(nodes).length < 8 << 20);
  await must(script, { op: "scene" });
});

test("a page opens, and whoever is there stays, however long names and notes are", async () => {
  const NODES = 20;
  const LONG = "n".repeat(200_000);
  const host = await startHost();
  const script = await openSession(host.address);
  const keys = Array.from({ length: NODES }, (_, index) => index);
  const matrix = Array(16).fill(0);
  const scene = {
    format: "iohost scene", version: 1,
    clips: [{ name: "Demo", objects: keys.map((key) => ({ name: LONG + key, matrix })) }],
    nodes: keys.map((key) => nodeOf(`k${key}`, Type.keyboard, LONG + key)),
    notes: Object.fromEntries(keys.map((key) => [key, { x: key, y: 0, width: 1, height: 1, text: LONG + key }])),
  };
  const loaded = await ask(host.address, "/scene", { method: "POST", body: JSON.stringify(scene) });
  assert.equal(JSON.parse(loaded.body).ok, true);
  const page = await openSession(host.address);
  await until("the objects", () => page.pushes.some(({ push }) => push === "objects"));
  const { nodes, notes } = await must(page, { op: "scene" });
  assert.equal(nodes[0].graph, LONG.slice(0, 65536));
  assert.equal(nodes[19].graph, LONG.slice(0, 300));
  assert.equal(notes[19].length, LONG.length + 2);
  const { objects } = await must(page, { op: "objects" });
  assert.ok(JSON.stringify([page.pushes, nodes, notes, objects]).length < 4 << 20); // of 12

  // A note whose beginning is known keeps its text wherever it's moved, and takes another one.
  await must(page, { op: "rename", node: "k1", graph: LONG });
  await must(page, { op: "place", notes: { 19: { ...notes[19], x: 100 }, 18: { ...notes[18], text: "short", length: undefined } } });
  const { body } = await ask(host.address, "/scene");
  const kept = JSON.parse(body).notes;
  assert.equal(kept[19].x, 100);
  assert.equal(kept[19].text, LONG + 19);
  assert.equal(kept[18].text, "short");
  const { steps } = await must(page, { op: "history" });
  assert.ok(JSON.stringify(steps).length < 1 << 20);
  await must(script, { op: "undo" });

  await must(page, { ...KEY_DOWN, payload: { is: "key", text: LONG } });
  const { released } = await must(page, { op: "release_held" });
  assert.equal(released[0].payload.text, LONG.slice(0, 500));
});

test("one scene at a time is transferred", async () => {
  const host = await startHost();
  const note = { x: 0, y: 0, width: 1, height: 1, text: "x".repeat(30_000_000) }; // more than the system's buffers hold
  const scene = { format: "iohost scene", version: 1, clips: [], nodes: [], links: [], devices: null, notes: { n: note } };
  const upload = () => ask(host.address, "/scene", { method: "POST", body: JSON.stringify(scene) });
  assert.equal(JSON.parse((await upload()).body).ok, true);
  const [name, port] = host.address.split(":");
  const slow = net.connect(Number(port), name);
  slow.write(`GET /scene HTTP/1.1\r\nHost: ${host.address}\r\n\r\n`);
  await once(slow, "data");
  slow.pause();
  assert.equal((await ask(host.address, "/scene")).status, 503);
  assert.equal((await upload()).status, 503);
  slow.destroy();
  await until("the turn", async () => (await ask(host.address, "/scene")).status === 200);
});

test("clients that don't read cost bounded memory together, and go first", async () => {
  const host = await startHost();
  const script = await createScene(host.address);
  const memory = () => Number(/VmRSS:\s+(\d+)/.exec(readFileSync(`/proc/${host.pid}/status`, "utf8"))[1]) / 1024;
  const before = memory();
  // A node whose texts make long replies to short requests: more than the system's buffers and a client's queue hold.
  await createNode(script, "long", Type.objectJson, "Long");
  for (const param of [1202, 1203, 1204]) {
    for (const own of [false, true]) {
      await must(script, { op: "set", node: "long", param, own, string: "x".repeat(60000) });
    }
  }
  const request = { op: "inspect", node: "long" };
  const stalled = await Promise.all(Array.from({ length: 24 }, () => openSession(host.address)));
  const closed = Promise.race(stalled.map(({ socket }) => once(socket, "close")));
  let most = 0;
  for (const { socket } of stalled) {
    socket.pause();
    socket.on("error", () => {});
    for (let index = 0; index < 36; ++index) {
      socket.send(JSON.stringify(request));
    }
    await must(script, request);
    most = Math.max(most, memory() - before);
  }
  for (let index = 0; index < 20; ++index) {
    await must(script, request);
    most = Math.max(most, memory() - before);
  }
  assert.ok(most < 72, `${most} MiB`); // of 120 without the limit
  stalled.forEach(({ socket }) => socket.resume());
  await closed;
  stalled.forEach(({ socket }) => socket.terminate());
});

test("a client that asks faster than it reads is answered as it reads", async () => {
  const host = await startHost();
  const script = await openSession(host.address);
  const id = "x".repeat(500_000);
  script.socket.pause();
  const replies = Array.from({ length: 100 }, () => script.request({ op: "scene", id })); // 50 MB
  const other = await openSession(host.address);
  for (let turn = 0; turn < 200; ++turn) {
    await must(other, { op: "scene" }); // in so many turns a host that reads on answers all hundred
  }
  script.socket.resume();
  assert.deepEqual((await Promise.all(replies)).filter((reply) => reply.id !== id), []);
});

test("a page and the terminal are told once when the recording can't be written any further", async () => {
  const recording = join(temporaryFolder(), "recording");
  execFileSync("mkfifo", [recording]);
  const reader = spawn("cat", [recording], { stdio: ["ignore", "ignore", "inherit"] });
  const host = await startHost({ options: ["--record", recording] });
  const script = await openSession(host.address);
  const other = await openSession(host.address);
  reader.kill();
  const told = () => logIn(other.pushes).filter((text) => text.includes("nothing more is recorded")).length;
  await until("the line", () => told() > 0);
  await must(script, KEY_DOWN);
  await must(script, KEY_UP);
  const known = other.pushes.length;
  const frames = () => other.pushes.slice(known).filter(({ frame }) => frame !== undefined);
  await until("two later frames", () => frames().length >= 2);
  assert.equal(told(), 1);
  host.kill("SIGTERM");
  assert.equal(await host.ended(), 1);
  assert.equal(host.output.stdout.match(/nothing more is recorded/g).length, 1);
});

test("connections load and save scenes in their folder only", async () => {
  const folder = temporaryFolder();
  const scenes = join(folder, "scenes");
  mkdirSync(join(scenes, "sub"), { recursive: true });
  writeFileSync(join(folder, "outside.json"), "outside");
  symlinkSync(folder, join(scenes, "up"));
  symlinkSync(join(folder, "outside.json"), join(scenes, "link.json"));
  symlinkSync(join(folder, "new.json"), join(scenes, "dangling.json"));
  symlinkSync("sub", join(scenes, "inner"));
  const host = await startHost({ options: ["--scenes", scenes] });
  const script = await createScene(host.address);
  for (const file of ["a.json", "sub/b.json", "inner/c.json"]) {
    await must(script, { op: "save", file });
    await must(script, { op: "load", file });
  }
  assert.ok(existsSync(join(scenes, "sub", "c.json")));
  const outside = ["", "..", "../outside.json", "sub/../../outside.json", join(folder, "outside.json"), join(scenes, "a.json"),
    "link.json", "dangling.json", "up/outside.json", "up/new.json", "a.json\u0000"];
  for (const file of outside) {
    for (const op of ["save", "load"]) {
      const reply = await script.request({ op, file, id: 7 });
      const error = "file: must be the name of a file in the folder of scenes";
      assert.deepEqual(reply, { ok: false, error, id: 7 }, `${op} ${file}`);
    }
  }
  assert.equal(readFileSync(join(folder, "outside.json"), "utf8"), "outside");
  assert.equal(existsSync(join(folder, "new.json")), false);
  assert.deepEqual(await script.request({ op: "load", file: "none.json" }), { ok: false, error: "file: can't be read" });
  rmSync(folder, { recursive: true });
  assert.deepEqual(await script.request({ op: "save", file: "a.json" }), { ok: false, error: "file: there is no folder of scenes" });
});
