// The page's server by itself: whom it answers, what it offers, and how it bears up.
import assert from "node:assert/strict";
import { mkdirSync, writeFileSync } from "node:fs";
import net from "node:net";
import { join } from "node:path";
import { once } from "node:events";
import { promisify } from "node:util";
import { startDevice } from "./support/device.mjs";
import { temporaryFolder } from "./support/folder.mjs";
import { runHost, startHost } from "./support/host.mjs";
import { ask, postRequest, upgrade } from "./support/http.mjs";
import WebSocket from "ws";
import {
  createNode, createScene, expectEventually, logIn, must, openSession, postedIn, timesFired, Type, until,
} from "./support/session.mjs";
import { before, test } from "./support/test.mjs";

let host;
let script;
let port;

before(async () => {
  host = await startHost();
  script = await createScene(host.address);
  port = Number(host.address.split(":")[1]);
});

const get = (path, options) => ask(host.address, path, options);
const open = (path, headers) => upgrade(host.address, path, headers);

/** Raw bytes in, everything that comes back until the server closes. */
async function sendRaw(text) {
  const socket = net.connect(port, "127.0.0.1");
  let answer = "";
  socket.on("data", (data) => (answer += data));
  socket.write(text);
  await once(socket, "close");
  return answer;
}

test("the page and its files have their types, are asked for each time, and may load from here only", async () => {
  const page = await get("/");
  assert.equal(page.status, 200);
  assert.equal(page.headers["content-type"], "text/html; charset=utf-8");
  assert.equal(page.headers["cache-control"], "no-cache");
  assert.match(page.headers["content-security-policy"], /default-src 'none'; script-src 'self';/);
  assert.equal(page.headers["referrer-policy"], "no-referrer"); // the address has the token
  assert.equal(page.headers["x-content-type-options"], "nosniff");
  assert.match(page.headers["content-security-policy"], new RegExp(`connect-src 'self' ws://127.0.0.1:${port};`));
  for (const [path, type] of [
    ["/index.html", "text/html; charset=utf-8"],
    ["/page.js?fresh", "text/javascript; charset=utf-8"],
    ["/page.css", "text/css; charset=utf-8"],
    ["/icons/mouse.svg", "image/svg+xml"],
  ]) {
    const file = await get(path);
    assert.equal(file.status, 200, path);
    assert.equal(file.headers["content-type"], type, path);
    assert.ok(file.body.length > 0, path);
  }
});

test("files come compressed, and not again to those who have them", async () => {
  const plain = await get("/page.js");
  assert.equal(plain.headers["content-encoding"], undefined);
  const headers = { "accept-encoding": "br, gzip" };
  assert.equal((await get("/page.js", { headers: { "accept-encoding": "gzip;q=0" } })).headers["content-encoding"], undefined);
  const packed = await get("/page.js", { headers });
  assert.equal(packed.headers["content-encoding"], "gzip");
  assert.ok(Number(packed.headers["content-length"]) < Number(plain.headers["content-length"]) / 2);
  assert.notEqual(packed.headers.etag, plain.headers.etag);
  const known = await get("/page.js", { headers: { ...headers, "if-none-match": packed.headers.etag } });
  assert.deepEqual([known.status, known.body, known.headers["content-length"]], [304, "", undefined]);
  const other = await get("/page.js", { headers: { "if-none-match": packed.headers.etag } });
  assert.equal(other.status, 200);
});

test("HEAD has no body, and other methods aren't answered", async () => {
  const head = await get("/", { method: "HEAD" });
  assert.equal(head.status, 200);
  assert.ok(Number(head.headers["content-length"]) > 0);
  assert.equal(head.body, "");
  assert.equal((await get("/", { method: "DELETE" })).status, 405);
  assert.match(await sendRaw(`POST / HTTP/1.1\r\nHost: 127.0.0.1:${port}\r\nContent-Length: 5\r\n\r\nhello`), /^HTTP\/1\.1 400 /);
});

test("nothing outside the page's folder can be named", async () => {
  for (const path of [
    "/../iohost",
    "/../../../../../../etc/passwd",
    "/icons/../../iohost",
    "/%2e%2e/iohost",
    "/..%2fiohost",
    "/..\\iohost",
    "//etc/passwd",
    "/./index.html",
    "/icons",
    "/icons/",
    "/INDEX.HTML",
    "//index.html",
    "/index.html/",
    "/index.html%00.js",
    "index.html",
    "/nothing.js",
  ]) {
    const answer = await sendRaw(`GET ${path} HTTP/1.1\r\nHost: 127.0.0.1:${port}\r\nConnection: close\r\n\r\n`);
    assert.match(answer, /^HTTP\/1\.1 40[04] /, path);
    assert.doesNotMatch(answer, /root:|ELF/, path);
  }
});

test("a request that names another host is refused, whatever it asks for", async () => {
  const headers = { host: `evil.example:${port}` };
  for (const path of ["/", "/page.js", "/nothing"]) {
    assert.equal((await get(path, { headers })).status, 403, path);
  }
  assert.equal(await open("/session", headers), 403);
  assert.match(await sendRaw("GET / HTTP/1.0\r\n\r\n"), /^HTTP\/1\.\d 403 /);
  const twice = `GET / HTTP/1.1\r\nHost: 127.0.0.1:${port}\r\nHost: evil.example\r\nConnection: close\r\n\r\n`;
  assert.match(await sendRaw(twice), /^HTTP\/1\.1 40[03] /);
});

test("each of the server's own names is taken", async () => {
  for (const own of ["127.0.0.1", "localhost", "LOCALHOST"]) {
    assert.equal((await get("/", { headers: { host: `${own}:${port}` } })).status, 200, own);
    assert.equal(await open("/session", { origin: `http://${own}:${port}` }), 101, own);
  }
});

test("a foreign page's requests and WebSockets are refused", async () => {
  for (const origin of ["http://evil.example", ""]) {
    assert.equal(await open("/session", { origin }), 403, origin);
    assert.equal((await get("/", { headers: { origin } })).status, 403, origin);
  }
});

test("whoever is refused may send on, so that the refusal isn't lost", async () => {
  const body = Buffer.alloc(12 << 20); // more than the buffers between take
  const socket = net.connect({ port, host: "127.0.0.1", allowHalfOpen: true });
  socket.write(`POST /scene HTTP/1.1\r\nHost: 127.0.0.1:${port}\r\nOrigin: http://evil.example\r\n`);
  socket.write(`Content-Length: ${body.length}\r\n\r\n`);
  await promisify(socket.write).call(socket, body);
  const [answer] = await once(socket, "data");
  assert.match(answer.toString(), /^HTTP\/1\.1 403 /);
  socket.destroy();
});

test("a script without an Origin is let in, at the session's address only", async () => {
  assert.equal(await open("/session", {}), 101);
  assert.equal(await open("/", {}), 200);
  assert.equal(await open("/other", {}), 404);
  assert.equal((await get("/session")).status, 404);
});

test("what is no HTTP request is refused and the server goes on", async () => {
  assert.match(await sendRaw("\x00\x01\x02 nonsense\r\n\r\n"), /^HTTP\/1\.1 400 /);
  assert.match(await sendRaw(`GET / HTTP/1.1\r\nHost: x\r\nX: ${"a".repeat(20000)}\r\n\r\n`), /^(HTTP\/1\.1 400 |$)/);
  assert.equal((await get("/")).status, 200);
});

test("a client is greeted, then told all outputs", async () => {
  const client = await openSession(host.address);
  await until("the outputs", () => client.pushes.some(({ push }) => push === "outputs"));
  const [hello] = client.pushes;
  assert.equal(hello.push, "hello");
  assert.equal(hello.address, host.address);
  assert.equal(hello.fps, 60);
  assert.match(hello.version, /^\d+\.\d+\.\d+$/);
  const { nodes } = client.pushes.find(({ push }) => push === "outputs");
  assert.deepEqual(Object.keys(nodes.m), ["366", "367", "368", "370", "371", "372", "373"]);
  assert.deepEqual(nodes.k["154"], { int: 0, float: 0, string: "" });
});

test("a client is told once a second which frame it is, and nothing else when nothing happens", async () => {
  const client = await openSession(host.address);
  const frames = () => client.pushes.filter(({ push }) => push === "frame").map(({ frame }) => frame);
  const twoFrames = () => until("two frames", () => frames().length >= 2);
  await twoFrames(); // behind the second one all that comes with a greeting was told
  assert.equal(client.pushes.filter(({ push }) => push === "history").length, 1);
  client.pushes.length = 0;
  await twoFrames();
  assert.ok(frames()[1] > frames()[0], frames());
  assert.equal(client.pushes.length, frames().length, JSON.stringify(client.pushes));
});

test("replies come in the order of the requests; what a client caused stands in its reply, others get it pushed", async () => {
  const client = await openSession(host.address);
  const other = await openSession(host.address);
  const replies = await Promise.all(
    Array.from({ length: 200 }, (_, id) => client.request({ op: "event", id, device: 1, event: id % 2 ? 3011 : 3012 })),
  );
  assert.deepEqual(replies.map(({ id }) => id), Array.from({ length: 200 }, (_, id) => id));
  const expected = replies.flatMap(({ posted }) => posted.map(({ node, output }) => [node, output]));
  assert.equal(expected.length, 200);
  await until("the pushes", () => postedIn(other.pushes).length >= 200);
  assert.deepEqual(postedIn(other.pushes), expected);
  assert.deepEqual(postedIn(client.pushes), []);
});

test("a connection that breaks off is released with the reason in the log", async () => {
  const client = await openSession(host.address);
  script.pushes.length = 0;
  await must(client, { op: "event", device: 0, event: 2002, payload: { is: "key", text: "s" } });
  client.socket.terminate();
  await until("the release", () => postedIn(script.pushes).length === 2);
  assert.deepEqual(postedIn(script.pushes), [["k", 152], ["k", 153]]);
  assert.ok(logIn(script.pushes).includes('synthetic release of the key "s": its connection closed'));
});

test("a posted request is answered as on a connection; what one presses, another lets go of, and connections hear of both", async () => {
  const key = (event) => postRequest(host.address, { op: "event", device: 0, event, payload: { is: "key", text: "p" } });
  script.pushes.length = 0;
  assert.deepEqual(postedIn([await key(2002)]), [["k", 152]]);
  await until("the held key", () => script.pushes.some(({ held }) => held?.some(({ identity }) => identity === "p")));
  assert.deepEqual((await postRequest(host.address, { op: "release_held", id: 7 })).id, 7);
  await until("the release", () => postedIn(script.pushes).length === 2);
  assert.deepEqual(postedIn(script.pushes), [["k", 152], ["k", 153]]);
  await until("that nothing is held", () => script.pushes.findLast(({ push }) => push === "held").held.length === 0);
  assert.deepEqual(await postRequest(host.address, { op: "nothing" }), { ok: false, error: 'op: unknown op "nothing"' });
  const long = await ask(host.address, "/session", { method: "POST", body: "x".repeat(1024 * 1024 + 1) });
  assert.equal(long.status, 413);
});

test("a text longer than a mebibyte ends the connection, and only that one", async () => {
  const client = await openSession(host.address);
  client.socket.on("error", () => {});
  client.socket.send("x".repeat(1024 * 1024 + 1));
  await once(client.socket, "close");
  assert.equal((await script.request({ op: "scene" })).ok, true);
});

test("each scene has a number of its own: another one of the same nodes has, and another host's has", async () => {
  const own = await startHost();
  const client = await createScene(own.address);
  const numberFor = async (address) => {
    const viewer = await openSession(address);
    return viewer.pushes[0].scene;
  };
  const first = await numberFor(own.address);
  assert.equal(first, client.pushes[0].scene, "adding nodes makes no other scene");
  const scene = JSON.parse((await ask(own.address, "/scene")).body);
  await must(client, { op: "load", scene });
  const told = () => client.pushes.filter(({ push, scene }) => push === "scene" && scene !== undefined);
  await until("the push", () => told().length > 0);
  const second = await numberFor(own.address);
  assert.deepEqual(told().map(({ scene }) => scene), [second]);
  assert.equal(new Set([first, second, await numberFor(host.address)]).size, 3);
});

test("a client that takes nothing stops neither frames nor the others, and is dropped with what it holds", async () => {
  const stalled = await openSession(host.address);
  await stalled.request({ op: "event", device: 0, event: 2002, payload: { is: "key", text: "stuck" } });
  script.pushes.length = 0;
  stalled.socket.pause();
  stalled.socket.on("error", () => {});
  // The replies carry the ids back: more than the system's buffers and the server's queue hold.
  const request = JSON.stringify({ op: "scene", id: "x".repeat(500000) });
  for (let index = 0; index < 100; ++index) {
    stalled.socket.send(request);
  }
  const dropped = () => postedIn(script.pushes).some(([node, output]) => node === "k" && output === 153);
  await until("the release of what it held", async () => {
    assert.equal((await script.request({ op: "scene" })).ok, true);
    return dropped();
  });
  assert.ok(logIn(script.pushes).includes("a connection is closed: it read nothing for 30 seconds"));
  stalled.socket.terminate();

  // Frames go on: a value that a frame copies arrives.
  await script.request({ op: "event", device: 1, event: 3013,
    payload: { is: "pointer", rx: 1, ry: 2, x: 31, y: 41, pointer: 0, relative: 0 } });
  await until("the position", () => script.pushes.some(({ nodes }) => nodes?.m?.["370"]?.int === 31));
});

test("each fired event and each log line is printed, with nothing in it that steers a terminal", async () => {
  const text = "\u001b]0;title\u0007\u009b31m";
  await script.request({ op: "event", device: 0, event: 2002, payload: { is: "key", text } });
  await until("the line", () => host.output.stdout.includes("[\\x1B]0;title\\x07\\x9B31m]"));
  await until("the event", () => /\nevent {2}Demo\.Keyboard 1 {2}152 KeyDown\n/.test(host.output.stdout));
  assert.doesNotMatch(host.output.stdout, /[\u001b\u0007\u009b]/);
});

test("that the folder of scenes isn't there is said before anything is lost", async () => {
  const folder = join(temporaryFolder(), "none");
  const { output } = await startHost({ options: ["--scenes", folder] });
  await until("the line", () => output.stdout.includes(`there is no folder ${folder}: scenes can't be saved`));
});

test("a taken port is told together with the option that changes it", async () => {
  const { code, stderr } = await runHost("--listen", host.address);
  assert.equal(code, 1);
  assert.match(stderr, new RegExp(`can't listen on ${host.address}`));
  assert.match(stderr, /--listen/);
});

test("a broadcast port that is none is told in the log", async () => {
  const folder = temporaryFolder();
  mkdirSync(join(folder, "Config"));
  writeFileSync(join(folder, "Config", "PortConfig.ini"), "[iFable]\nBroadcastPort=-1\n");
  const own = await startHost({ options: ["--app", folder] });
  const line = /\nlog .*PortConfig\.ini: BroadcastPort -1 is no port: .* to port 65535\n/;
  await until("the line in the log", () => line.test(own.output.stdout));
});

test("an address that is none, and a folder without a page, are told together with their options", async () => {
  for (const options of [["--listen", "nowhere.example:0"], ["--listen", "127.0.0.1:0", "--control", "nowhere.example:0"]]) {
    const { code, stderr } = await runHost(...options);
    assert.notEqual(code, 0);
    assert.match(stderr, new RegExp(`^iohost: ${options.at(-2)}: .*"nowhere\\.example" isn't a numeric address`));
  }
  const folder = temporaryFolder();
  for (const web of [folder, join(folder, "missing")]) {
    const { code, stderr } = await runHost("--listen", "127.0.0.1:0", "--web", web);
    assert.equal(code, 1);
    assert.match(stderr, /--web/);
  }
  // Of a page's folder, files of other kinds aren't served.
  writeFileSync(join(folder, "index.html"), "a page");
  writeFileSync(join(folder, "notes.txt"), "nobody's");
  const own = await startHost({ options: ["--web", folder] });
  assert.equal((await ask(own.address, "/")).body, "a page");
  assert.equal((await ask(own.address, "/notes.txt")).status, 404);
});

test("a host that ends during an upload ends well", async () => {
  const own = await startHost();
  const [name, ownPort] = own.address.split(":");
  const socket = net.connect(Number(ownPort), name).on("error", () => {});
  socket.write(`POST /scene HTTP/1.1\r\nHost: ${own.address}\r\nContent-Length: 100\r\n\r\n{`);
  const upload = () => ask(own.address, "/scene", { method: "POST", body: "{}" });
  await until("the upload", async () => (await upload()).status === 503);
  assert.equal(await own.end(), 0);
  assert.equal(own.output.stderr, "");
});

test("nodes see keys go up when the host ends", async () => {
  const own = await startHost();
  const client = await openSession(own.address);
  const desk = await startDevice();
  await must(client, { op: "device", device: 1, name: "Desk", parser: "direct", address: desk.address });
  await createNode(client, "c", Type.keyCheck, "Key check 1");
  await createNode(client, "s", Type.stringSend, "Send 1");
  await must(client, { op: "set", node: "c", param: 1102, int: 65 });
  await must(client, { op: "set", node: "s", param: 1503, int: 1 });
  await must(client, { op: "set", node: "s", param: 1505, string: "up" });
  await must(client, { op: "link", from: "c", output: 1154, to: "s", input: 1507 });
  await must(client, { op: "process" });
  await until("the connection", desk.isConnected);
  await must(client, { op: "keys", down: [65] });
  await until("the key", async () => (await timesFired(client, ["c", 1152])) > 0);
  assert.equal(await own.end(), 0);
  await until("what is sent", () => desk.received.toString().startsWith("up"));
});

test("a connection too many is told so, and the host goes on", async () => {
  const start = Date.now();
  const own = await startHost();
  const client = await createScene(own.address);
  const [name, ownPort] = own.address.split(":");
  const refusal = async (options) => {
    const { status, headers, body } = await ask(own.address, "/", { agent: false, ...options });
    return [status, headers.connection, body];
  };
  const sockets = Array.from({ length: 63 }, () => net.connect(Number(ownPort), name));
  await Promise.all(sockets.map((socket) => once(socket, "connect")));
  const text = "the page's server has 64 connections, which is its most\n";
  assert.deepEqual(await refusal(), [503, "close", text]);
  assert.deepEqual(await refusal({ headers: { host: "evil.example" } }), [503, "close", text]);
  assert.deepEqual(await refusal({ method: "HEAD" }), [503, "close", ""]);
  assert.equal(await upgrade(own.address, "/session"), 503);
  // Those who say nothing aren't waited for, however many come.
  const silent = Array.from({ length: 200 }, () => net.connect(Number(ownPort), name).on("error", () => {}).resume());
  await Promise.all(silent.map((socket) => once(socket, "close")));
  const lines = () => logIn(client.pushes).filter((line) => line.includes("turned away"));
  await until("the line in the log", () => lines().length > 0);
  assert.equal(lines()[0], `a connection was turned away: ${text.trimEnd()}`);
  assert.ok(lines().length <= 1 + (Date.now() - start) / 10_000, "one in ten seconds at most");
  assert.equal((await client.request({ op: "scene" })).ok, true);

  sockets.forEach((socket) => socket.destroy());
  await until("room again", async () => (await refusal())[0] === 200);
});

test("what came too late is pushed", async () => {
  const page = await openSession(host.address);
  const dropped = () => page.pushes.filter(({ push }) => push === "dropped");
  const nobody = { name: "Wall", parser: "direct", address: "127.0.0.1:9" };
  await must(script, { op: "device", device: 3, ...nobody, drop_after: 0.01 });
  await must(script, { op: "send", device: 3, text: "late" });
  await until("what was dropped", () => dropped().length > 0);
  assert.deepEqual(dropped(), [{ push: "dropped", node: null, device: 3, items: 1 }]);
  await must(script, { op: "remove_device", device: 3 });
});

const RECEIVED_TEXT = 1452;
const RECEIVED = 1453;
const SENT_TEXT = 1505;
const SEND = 1507;

/** A host whose frames are minutes apart, with nodes that send back what a device sends. */
async function startSlow(options) {
  const device = await startDevice();
  const host = await startHost({ options: ["--fps", "0.01", ...options] });
  const session = await openSession(host.address);
  await createNode(session, "in", Type.deviceJson, "In");
  await createNode(session, "out", Type.stringSend, "Out");
  await must(session, { op: "set", node: "out", param: 1503, int: 1 });
  await must(session, { op: "link", from: "in", output: RECEIVED_TEXT, to: "out", input: SENT_TEXT });
  await must(session, { op: "link", from: "in", output: RECEIVED, to: "out", input: SEND });
  await must(session, { op: "process" });
  await must(session, { op: "devices", list: [{ id: 1, name: "Wall", parser: "json", address: device.address }] });
  await until("the connection", device.isConnected);
  return { session, device };
}

test("a device's text goes through two linked nodes and back at once", async () => {
  const { device } = await startSlow([]);
  let answers = "";
  for (const text of ['{"n":1}', '{"n":2}', '{"n":3}']) {
    device.write(`${text}\n`);
    answers += `${text}\0`;
    await expectEventually("the answers", () => String(device.received), answers);
  }
});

test("with --evaluate frame a device's text waits for the frame", async () => {
  const { session, device } = await startSlow(["--evaluate", "frame"]);
  device.write("{}\n");
  await until("the text", async () => (await must(session, { op: "json" })).nodes.in);
  const { devices } = await must(session, { op: "network" });
  assert.equal(devices[0].sent, 0);
  assert.equal((await must(session, { op: "process", frame: true })).sent.length, 1);
});

test("lines that the log's reply has aren't told behind it", async () => {
  // What comes from a device is told with the next frame, for which nobody waits here.
  const { session: client, device: desk } = await startSlow([]);
  desk.write("no JSON\n");
  const ofNode = (lines) => lines.filter((line) => line.includes(".In."));
  let lines = [];
  await until("the node's line", async () => {
    lines = ofNode((await must(client, { op: "log" })).lines.map(({ text }) => text));
    return lines.length > 0;
  });
  assert.deepEqual(ofNode(logIn(client.pushes)), lines, "it was told before");
});

test("a viewer that is told together is told the same in the same order", async () => {
  const each = await openSession(host.address);
  const socket = new WebSocket(`ws://${host.address}/session/gathered`);
  const messages = [];
  socket.on("message", (data) => messages.push(JSON.parse(String(data))));
  await until("the greeting", () => messages.length > 0);
  const greeting = messages[0].slice(0, 3); // a frame's pushes may follow at once
  assert.deepEqual(greeting.map(({ push }) => push), ["hello", "held", "history"]);

  for (let press = 0; press < 10; ++press) {
    for (const event of [2002, 2003]) {
      await must(script, { op: "event", device: 0, event, payload: { is: "key", text: "A" } });
    }
  }
  socket.send(JSON.stringify({ op: "scene", id: 7 }));
  await until("the reply", () => messages.flat().some(({ id }) => id === 7));
  await until("the other viewer's pushes", () => postedIn(each.pushes).length === 20);
  const told = messages.flat();
  const untilReply = told.slice(0, told.findIndex(({ id }) => id === 7));
  assert.equal(postedIn(untilReply).length, 20, "what was pushed before a reply comes before it");
  assert.deepEqual(postedIn(told), postedIn(each.pushes));
  socket.close();
});

test("keys that go down and up faster than frames are missed by no key check node", async () => {
  await createNode(script, "c", Type.keyCheck, "Key check 1");
  await must(script, { op: "set", node: "c", param: 1102, int: 65 });
  const PRESSES = 50;
  await Promise.all(
    Array.from({ length: PRESSES }, () => [
      must(script, { op: "keys", down: [65] }),
      must(script, { op: "keys", down: [] }),
    ]).flat(),
  );
  for (const output of [1152, 1154]) {
    await expectEventually("how often it fired", () => timesFired(script, ["c", output]), PRESSES);
  }
  await must(script, { op: "destroy", node: "c" });
});

test("objects are told when they change, not with each frame", async () => {
  const told = (push) => script.pushes.filter((one) => one.push === push).length;
  const known = told("objects");
  await must(script, { op: "object", clip: "Demo", name: "Lamp" });
  await until("the object", () => told("objects") > known);
  const frames = told("frame");
  await until("two more frames", () => told("frame") >= frames + 2);
  assert.equal(told("objects"), known + 1);
  await must(script, { op: "remove_object", clip: "Demo", name: "Lamp" });
  await until("its removal", () => told("objects") > known + 1);
  assert.equal(told("objects"), known + 2);
});
