// Scenes as connections build and keep them: pushes of what changed, files, download and upload, what wasn't saved.
import assert from "node:assert/strict";
import { existsSync, mkdirSync, readFileSync, symlinkSync, writeFileSync } from "node:fs";
import net from "node:net";
import { once } from "node:events";
import { join } from "node:path";
import { temporaryFolder } from "./support/folder.mjs";
import { startHost } from "./support/host.mjs";
import { ask } from "./support/http.mjs";
import { createNode, must, nodeOf, openSession, Type, until } from "./support/session.mjs";
import { beforeEach, test } from "./support/test.mjs";

const EMPTY = { format: "iohost scene", version: 1 };

let folder;
let port;
let host;
let script;

/** A port that is free, and that no system gives to who asks for any, for hosts that follow one another. */
async function freePort() {
  const server = net.createServer().listen(20_000 + Math.floor(Math.random() * 10_000), "127.0.0.1");
  try {
    await once(server, "listening");
  } catch {
    return freePort();
  }
  const { port } = server.address();
  server.close();
  await once(server, "close");
  return port;
}

async function start() {
  host = await startHost({ port, options: ["--scenes", folder] });
  script = await openSession(host.address);
}

async function restart(signal) {
  host.kill(signal);
  await host.ended();
  await start();
}

const asideFile = () => join(folder, `.unsaved-${port}.json`);
/** The unsaved scene as it's written aside; undefined where there is none. */
const aside = () => (existsSync(asideFile()) ? JSON.parse(readFileSync(asideFile(), "utf8")) : undefined);

const pushed = (name) => script.pushes.filter(({ push }) => push === name);
const scene = async () => (await must(script, { op: "scene" })).nodes.map(({ node, graph }) => [node, graph]);

beforeEach(async () => {
  folder = join(temporaryFolder(), "scenes");
  mkdirSync(folder);
  port = await freePort();
  await start();
});

test("pages are told which nodes changed, what others did, what can be undone, and whether it's saved", async () => {
  const other = await openSession(host.address);
  const told = async (request, scene, history) => {
    const from = other.pushes.length;
    await must(script, request);
    const news = () => other.pushes.slice(from).filter(({ push }) => push === "scene" || push === "history");
    await until("the pushes", () => news().length === (scene ? 1 : 0) + (history ? 1 : 0));
    const [first, second] = news();
    if (scene) {
      assert.deepEqual([first.nodes, first.changed], scene);
    }
    if (history) {
      const { undo, redo, file, unsaved } = scene ? second : first;
      assert.deepEqual([undo?.name ?? null, redo?.name ?? null, file, unsaved], history);
    }
  };
  const { undo, redo, file } = other.pushes.find(({ push }) => push === "history");
  assert.deepEqual([undo, redo, file], [null, null, null]);
  const create = (node, graph) => ({ op: "create", ...nodeOf(node, Type.keyboard, graph) });
  await told(create("k", "Keys"), [undefined, ["k"]], ["Add Keys", null, null, true]);
  await told(create("l", "More"), [undefined, ["l"]], ["Add More", null, null, true]);
  await told({ op: "edit", node: "k", param: 2, int: 0 }, [["k"], undefined], ["Change Keys", null, null, true]);
  await told({ op: "edit", node: "k", param: 2, int: 0 });
  assert.equal((await script.request({ op: "trigger", node: "k", param: 2 })).ok, false); // nothing to tell of
  await told({ op: "place", nodes: { k: { x: 1, y: 2 } } }, [undefined, []], ["Move Keys", null, null, true]);
  for (const x of [3, 1]) { // there and back, which is no step
    await told({ op: "place", nodes: { k: { x, y: 2 } }, series: "s" }, [undefined, []], ["Move Keys", null, null, true]);
  }
  await told({ op: "save", file: "keys.json" }, undefined, ["Move Keys", null, "keys.json", false]);
  await told({ op: "undo" }, [undefined, []], ["Change Keys", "Move Keys", "keys.json", true]);
  await told({ op: "redo" }, [undefined, []], ["Move Keys", null, "keys.json", false]);
  await told({ op: "load", scene: EMPTY }, [undefined, undefined], ["Open a scene", null, null, false]);
  const steps = (session) => session.pushes.filter(({ push }) => push === "step").map(({ was, step }) => `${was} ${step.name}`);
  assert.deepEqual(steps(other).slice(2), ["taken Change Keys", "taken Move Keys", "taken Move Keys", "undone Move Keys", "redone Move Keys", "taken Open a scene"]);
  assert.deepEqual(steps(script), [], "who took them knows");
});

test("the scenes of the folder are listed", async () => {
  mkdirSync(join(folder, "show"));
  for (const name of ["show/b.json", ".hidden.json", "notes.txt", "a.json"]) {
    writeFileSync(join(folder, name), "{}");
  }
  const { files } = await must(script, { op: "scenes" });
  assert.deepEqual(files.map(({ file, bytes }) => [file, bytes > 0]), [["a.json", true], ["show/b.json", true]]);
  assert.ok(Math.abs(files[0].modified_ms - Date.now()) < 600_000);
});

test("links in the folder aren't listed", { skip: process.env.IOHOST_SYSTEM === "windows" && "Wine shows them as files" }, async () => {
  writeFileSync(join(folder, "a.json"), "{}");
  symlinkSync("a.json", join(folder, "link.json"));
  assert.deepEqual((await must(script, { op: "scenes" })).files.map(({ file }) => file), ["a.json"]);
});

test("the scene is downloaded and uploaded as a file", async () => {
  await createNode(script, "m", Type.mouse, "Mouse 1");
  const file = await ask(host.address, "/scene");
  assert.equal(file.status, 200);
  assert.match(file.headers["content-disposition"], /^attachment/);
  assert.deepEqual(JSON.parse(file.body).nodes.map(({ node }) => node), ["m"]);
  await must(script, { op: "load", scene: EMPTY });
  const upload = (body, headers) => ask(host.address, "/scene", { method: "POST", body, headers });
  const loaded = await upload(file.body);
  assert.deepEqual([loaded.status, JSON.parse(loaded.body).ok], [200, true]);
  assert.deepEqual(await scene(), [["m", "Mouse 1"]]);
  for (const [body, error] of [["{", /^scene: not JSON/], ["[".repeat(100_000), /nested/]]) {
    const reply = JSON.parse((await upload(body)).body);
    assert.equal(reply.ok, false);
    assert.match(reply.error, error);
  }
  assert.equal((await upload(file.body, { origin: "http://elsewhere.example" })).status, 403);
  assert.deepEqual(await scene(), [["m", "Mouse 1"]]);
});

test("what wasn't saved outlives a crash and an end, and is taken or discarded", async () => {
  await must(script, { op: "save", file: "show.json" });
  await createNode(script, "m", Type.mouse, "Mouse 1");
  await until("it's written aside", aside);
  await restart("SIGKILL");
  const left = () => pushed("history").at(-1).recovered;
  await until("the history", () => pushed("history").length > 0);
  assert.equal(left().file, "show.json");
  assert.ok(left().modified_ms > 0);
  assert.deepEqual(await scene(), []);
  await must(script, { op: "recover", take: true });
  assert.deepEqual(await scene(), [["m", "Mouse 1"]]);
  const { file, unsaved } = await must(script, { op: "history" });
  assert.deepEqual([file, unsaved], ["show.json", true]);
  assert.deepEqual(await script.request({ op: "recover", take: true }), { ok: false, error: "op: nothing unsaved was left" });

  // An end writes what changed last.
  await must(script, { op: "rename", node: "m", graph: "Pointer" });
  await restart("SIGINT");
  await until("the history", () => pushed("history").length > 0);
  assert.notEqual(left(), undefined);
  assert.equal(JSON.parse(readFileSync(join(folder, `.left-${port}.json`))).nodes[0].graph, "Pointer");
  await must(script, { op: "recover", take: false });
  assert.deepEqual(await scene(), []);

  // What is saved leaves nothing.
  await createNode(script, "m", Type.mouse, "Mouse 1");
  await until("it's written aside", () => existsSync(asideFile()));
  await must(script, { op: "save", file: "show.json" });
  await until("it's gone", () => !existsSync(asideFile()));
  await restart("SIGKILL");
  await until("the history", () => pushed("history").length > 0);
  assert.equal(left(), undefined);
});

test("unsaved work that nobody decided about becomes a scene of the folder when more is left", async () => {
  for (const name of ["an hour's work", "a try"]) {
    await createNode(script, "m", Type.mouse, name);
    await restart("SIGINT");
  }
  const names = (await must(script, { op: "scenes" })).files.map(({ file }) => file);
  const older = names.find((name) => /^recovered-\d+\.json$/.test(name));
  await must(script, { op: "load", file: older });
  assert.deepEqual(await scene(), [["m", "an hour's work"]]);
  await must(script, { op: "recover", take: true });
  assert.deepEqual(await scene(), [["m", "a try"]]);
  assert.equal((await must(script, { op: "undo" })).step.name, "Recover a scene");

  // What a host has taken and not saved is left to the next one even if it ends at once.
  await must(script, { op: "redo" });
  await restart("SIGKILL");
  await must(script, { op: "recover", take: true });
  assert.deepEqual(await scene(), [["m", "a try"]]);
});

test("what is left and can't be read is told and discarded, and doesn't keep the host from starting", async () => {
  for (const [content, isLeft] of [["no scene", false], [JSON.stringify({ ...EMPTY, nodes: [{ node: "x" }] }), true]]) {
    host.kill();
    await host.ended();
    writeFileSync(join(folder, `.unsaved-${port}.json`), content);
    await start();
    assert.equal((await script.request({ op: "recover", take: true })).ok, false);
    assert.equal((await script.request({ op: "recover", take: false })).ok, isLeft);
    assert.deepEqual(await scene(), []);
  }
});

test("a scene that is refused changes neither the scene nor what is unsaved", async () => {
  await createNode(script, "m", Type.mouse, "Mouse 1");
  const before = await must(script, { op: "history" });
  const gesture = nodeOf("g", Type.gesture, "", { clip: null, own: [] });
  const reply = await ask(host.address, "/scene", { method: "POST", body: JSON.stringify({ ...EMPTY, nodes: [gesture] }) });
  assert.equal(JSON.parse(reply.body).ok, false);
  assert.deepEqual(await must(script, { op: "history" }), before);
  for (const file of [".hidden.json", `.unsaved-${port}.json`, ".folder/a.json"]) {
    assert.deepEqual(await script.request({ op: "save", file }), { ok: false, error: "file: no part of it may begin with a dot" });
  }
  // Steps of one name are written aside each, and what changed right before the end of the session is.
  const matrix = (x) => [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, 0, 0, 1];
  await must(script, { op: "object", clip: "Stage", name: "Box" });
  const place = () => aside()?.clips.flatMap(({ objects }) => objects).find(({ name }) => name === "Box")?.matrix[12];
  for (const x of [1, 2]) {
    await must(script, { op: "change_object", clip: "Stage", name: "Box", matrix: matrix(x) });
    await until("it's written aside", () => place() === x);
  }
  await must(script, { op: "rename", node: "m", graph: "Last" });
  await must(script, { op: "quit" });
  assert.equal(await host.ended(), 0);
  assert.equal(aside().nodes[0].graph, "Last");
});

test("the scene that the host begins with is known by its name in the folder, and no step", async () => {
  for (const [file, name] of [["show.json", "show.json"], ["../outside-of-scenes.json", null]]) {
    const path = join(folder, file);
    writeFileSync(path, JSON.stringify(EMPTY));
    const other = await startHost({ options: ["--scenes", folder, "--scene", path] });
    const session = await openSession(other.address);
    const { steps, file: told, unsaved } = await must(session, { op: "history" });
    assert.deepEqual([steps, told, unsaved], [[], name, false]);
  }
});

test("a folder of scenes that can't be read is told", async () => {
  const file = join(folder, "file");
  writeFileSync(file, "");
  const other = await startHost({ options: ["--scenes", file] });
  const error = "op: the folder of scenes can't be read";
  assert.deepEqual(await (await openSession(other.address)).request({ op: "scenes" }), { ok: false, error });
  const none = await startHost({ options: ["--scenes", join(folder, "none")] });
  assert.deepEqual((await must(await openSession(none.address), { op: "scenes" })).files, []);
});
