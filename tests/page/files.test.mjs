// Scenes and their files: begun, saved, opened, taken along, and found again after the host ended.
import assert from "node:assert/strict";
import { mkdirSync, mkdtempSync, readFileSync, truncateSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { isDeepStrictEqual } from "node:util";
import { startBrowser } from "./support/browser.mjs";
import { canvasOf, drawn } from "./support/canvas.mjs";
import { startDevice } from "./support/device.mjs";
import { temporaryFolder } from "./support/folder.mjs";
import { startHost } from "./support/host.mjs";
import { between, openTab } from "./support/page.mjs";
import { takePicture } from "./support/pictures.mjs";
import { createNode, expectEventually, must, nodeOf, openSession, Type, until } from "./support/session.mjs";
import { before, beforeEach, test } from "./support/test.mjs";

let browser;
let folder;
let host;
let script;
let page;
let canvas;

async function start(port = 0, options = []) {
  host = await startHost({ port, options: ["--scenes", folder, ...options] });
  script = await openSession(host.address);
}

async function open() {
  page = await openTab(browser);
  await page.goto(host.page);
  canvas = canvasOf(page, script);
  await page.locator("[data-face], [data-empty-scene]").first().waitFor();
}

/** Ends the page and the host, and starts both again. */
async function startAnew(port, options) {
  await page.close();
  assert.equal(await host.end(), 0);
  await start(port, options);
  await open();
}

before(async () => (browser = await startBrowser()));
beforeEach(async () => {
  folder = temporaryFolder();
  await start();
  await open();
});

const sceneName = () => page.locator("[data-scene]");
const nameIs = (name, unsaved) =>
  expectEventually("the scene's name", async () => {
    const shown = sceneName();
    return `${await shown.getAttribute("data-scene")} ${await shown.getAttribute("data-unsaved")}`;
  }, `${name} ${unsaved}`);

async function saveAs(name) {
  await page.getByRole("button", { name: "Save as" }).click();
  await page.locator("[data-scene-name]:focus").waitFor();
  await page.keyboard.type(name);
  await page.keyboard.press("Enter");
  await nameIs(`${name}.json`, false);
}

/** The scene as it's saved, without what its nodes and links write by themselves: outputs, and inputs that are linked. */
async function sceneAsMade() {
  const scene = await (await fetch(new URL("scene", host.page))).json();
  for (const node of scene.nodes) {
    delete node.outputs;
    for (const param of (node.inputs ?? []).flatMap(({ params }) => params)) {
      if (scene.links.some(({ to, input }) => to === node.node && input === param.id)) {
        ["int", "float", "string"].forEach((member) => delete param[member]);
      }
    }
  }
  return scene;
}

/** Waits until it's this scene; fails with what differs. */
async function sceneIs(expected) {
  await until("the scene", async () => isDeepStrictEqual(await sceneAsMade(), expected)).catch(() => {});
  assert.deepEqual(await sceneAsMade(), expected);
}

/** The device or object that is open in the inspector. */
const card = () => page.locator("[data-part-card]");
/** What came of each of its buttons: changing it, trying to connect, sending a text. */
const outcome = (index) => card().locator("[data-outcome]").nth(index);
const cameTo = (index, text) => expectEventually("what came of it", () => outcome(index).innerText(), text);
const pressSend = () => page.locator('article button[data-param="1507"]').click();

test("from nothing to a text on a device, ten steps back and again, and the same after the host's end", async () => {
  const device = await startDevice();
  await takePicture(page, "empty");
  for (const type of ["Keyboard", "Text field input", "String data send"]) {
    await canvas.choosePalette(type);
    await page.getByRole("heading", { name: `${type} 1` }).waitFor();
  }
  await page.getByRole("button", { name: "Arrange" }).click();
  await expectEventually("the last step", async () => (await must(script, { op: "history" })).steps.at(-1).name, "Move 3 nodes");
  const wires = [
    ["Keyboard 1", 154, "Text field input 1", 202],
    ["Keyboard 1", 152, "Text field input 1", 203],
    ["Text field input 1", 253, "String data send 1", 1505],
  ];
  for (const [index, [from, output, to, input]] of wires.entries()) {
    await canvas.pin(from, output).dragTo(canvas.pin(to, input));
    await expectEventually("wires", () => canvas.wires().count(), index + 1);
  }

  await page.locator("[data-tab=network]").click();
  await page.locator("#panel-network").getByRole("button", { name: "Add device" }).click();
  await page.locator("[data-part=name]").fill("Title");
  await page.locator("[data-part=address]").fill(device.address);
  await takePicture(page, "device");
  await page.locator("[data-device-form] button[type=submit]").click();
  await page.locator("[data-peer=device-1] .lamp-open").waitFor();
  await canvas.choose("String data send 1");
  await page.locator('article select[data-param="1503"]').selectOption("1");
  await page.locator('article select[data-param="1506"]').selectOption({ label: "multi-byte" });
  await expectEventually("the encoding", () => page.locator('article select[data-param="1506"]').inputValue(), "1");
  await expectEventually("the name", () => page.locator('article input[data-param="1504"]').inputValue(), "Title");
  await expectEventually("the steps", async () => (await must(script, { op: "history" })).steps.length, 10);

  const made = await sceneAsMade();
  await page.locator("[data-undo]").focus();
  for (let step = 0; step < 10; ++step) {
    await page.keyboard.press("Control+z");
  }
  await expectEventually("steps done", async () => (await must(script, { op: "history" })).done, 0);
  assert.notDeepEqual(await sceneAsMade(), made);
  for (let step = 0; step < 10; ++step) {
    await page.keyboard.press("Control+y");
  }
  await sceneIs(made);
  await page.locator("[data-peer=device-1] .lamp-open").waitFor();

  await page.locator(".react-flow__controls-fitview").click(); // steps leave the view where it is
  await canvas.choose("String data send 1");
  await page.locator("[data-surface]").click();
  await page.keyboard.type("hello");
  await expectEventually("the text", () => page.locator('article input[data-param="1505"]').inputValue(), "hello");
  await pressSend();
  await expectEventually("the device's text", () => String(device.received), "hello\0");

  await saveAs("title");
  await page.locator("[data-history]").click();
  const last = page.locator('[data-step="10"]');
  assert.match(await last.innerText(), /^Change String data send 1 · Encoding\s+saved\s+\d\d:\d\d:\d\d$/);
  assert.equal(await page.locator("[data-step] em").count(), 1);
  await page.keyboard.press("Escape");
  const saved = await sceneAsMade();
  await startAnew();
  await page.getByRole("button", { name: "Open", exact: true }).click();
  await page.locator('[data-scene-file="title.json"]').click();
  await page.locator("[data-tab=network]").click();
  await canvas.nodesAre(["Keyboard 1", "Text field input 1", "String data send 1"]);
  await sceneIs(saved);
  await page.locator("[data-peer=device-1] .lamp-open").waitFor();
  await canvas.choose("String data send 1");
  await page.locator("[data-surface]").click();
  await page.keyboard.type("again");
  await expectEventually("the text", () => page.locator('article input[data-param="1505"]').inputValue(), "again");
  await pressSend();
  await until("the device's text", () => String(device.received).endsWith("again\0"));
});

test("a device is opened in the inspector, tried by a text, changed and removed", async () => {
  const device = await startDevice();
  await must(script, { op: "device", device: 4, name: "Wall", parser: "direct", address: device.address });
  await page.locator("[data-tab=network]").click();
  const peer = page.locator("[data-peer=device-4]");
  await peer.locator(".lamp-open").waitFor();
  await peer.getByRole("button", { name: "4 · Wall" }).click();
  await card().getByText("connected since").waitFor();
  await page.locator("[data-test-text]").fill("are you there?");
  await page.getByRole("button", { name: "Send a test text" }).click();
  await expectEventually("the device's text", () => String(device.received), "are you there?");
  await cameTo(2, "Sent.");
  await card().locator("[data-field=sent-bytes]", { hasText: "Last sent, 14 bytes" }).waitFor();
  device.write("我在");
  await card().locator("[data-field=received-bytes]", { hasText: "我在" }).waitFor();
  await must(script, { op: "listen_only", on: true });
  await page.getByRole("button", { name: "Send a test text" }).click();
  await cameTo(2, "Only shown: listen only is on.");
  await page.locator("[data-part=name]").fill("Floor");
  await page.locator("[data-part=dropAfter]").fill("");
  await page.getByRole("button", { name: "Change device" }).click();
  await cameTo(0, "Changed.");
  await expectEventually("the name", () => peer.locator("h3").innerText(), "4 · Floor");
  const { devices } = await must(script, { op: "network" });
  assert.equal(devices[0].drop_after, undefined);
  assert.equal(await page.locator("[data-part=dropAfter]").getAttribute("placeholder"), "never");
  await card().getByText("· what can't be sent waits").waitFor();
  await card().getByRole("button", { name: "Remove" }).click();
  await peer.waitFor({ state: "detached" });
  await card().waitFor({ state: "detached" });
});

/** Opens a device that isn't there, and tries to connect to it. */
async function tryInVain(address) {
  await must(script, { op: "device", device: 4, name: "Wall", parser: "direct", address, drop_after: null });
  await page.locator("[data-open-device='4']").click();
  await card().getByText("refused").waitFor();
  await page.getByRole("button", { name: "Try to connect" }).click();
  await cameTo(1, "Not reached: Connection refused");
}

test("a device that isn't there is tried again from the inspector, and what others change of it shows there", async () => {
  const { address, close } = await startDevice();
  await close();
  await tryInVain(address);
  await card().getByText("what can't be sent waits").waitFor();
  await must(script, { op: "device", device: 4, name: "Floor", parser: "framed", address });
  await expectEventually("the name", () => page.locator("[data-part=name]").inputValue(), "Floor");
  assert.equal(await page.locator("[data-test-text]").count(), 0);
  await must(script, { op: "remove_device", device: 4 });
  await card().getByText("There is no device 4.").waitFor();
});

test("that a device is tried, or a text waits for it, is said until it's connected", async () => {
  const { address, port, close } = await startDevice();
  await close();
  let isConnecting = false;
  await between(page, {
    toPage(messages) {
      const waiting = messages.flatMap(({ devices }) => devices ?? []).filter(({ state }) => state === "waiting");
      waiting.forEach((device) => (device.state = isConnecting ? "connecting" : "waiting"));
      return messages;
    },
  });
  await page.reload();
  await tryInVain(address);
  await page.getByRole("button", { name: "Send a test text" }).click();
  await cameTo(2, "The text waits until the device takes it.");
  isConnecting = true;
  await page.getByRole("button", { name: "Try to connect" }).click();
  await cameTo(1, "Trying to connect…");
  await startDevice(port);
  await cameTo(1, "Connected");
  await cameTo(2, "");
});

test("a device is added only where nobody has added one of its number meanwhile", async () => {
  await page.locator("[data-tab=network]").click();
  await page.locator("#panel-network").getByRole("button", { name: "Add device" }).click();
  await page.locator("[data-part=id]").fill("1");
  await page.locator("[data-part=name]").fill("Wall");
  await must(script, { op: "device", device: 1, name: "Floor", parser: "direct" });
  await page.locator("[data-device-form] button[type=submit]").click();
  await card().getByText("There is a device 1 already").waitFor();
  await page.locator("[data-part=id]").fill("2");
  await card().getByText("There is a device 1 already").waitFor({ state: "detached" });
  await page.locator("[data-device-form] button[type=submit]").click();
  await expectEventually("the devices", async () => (await must(script, { op: "network" })).devices.map(({ name }) => name).join(), "Floor,Wall");
});

test("a device that is changed stays as it was opened; who chose something else meanwhile stays there", async () => {
  const late = [];
  let isLate = false;
  const tell = await between(page, { toPage: (messages) => (isLate ? void late.push(messages) : messages) });
  await page.reload();
  await createNode(script, "m", Type.mouse, "Mouse 1");
  await must(script, { op: "device", device: 4, name: "Wall", parser: "direct" });
  await canvas.face("m").waitFor();
  await page.locator("[data-tab=network]").click();
  const opener = page.locator("[data-peer=device-4]").getByRole("button", { name: "4 · Wall" });
  await opener.click();
  const change = page.getByRole("button", { name: "Change device" });
  await page.locator("[data-part=dropAfter]").fill("3");
  await change.click();
  await expectEventually("what is set", async () => (await must(script, { op: "network" })).devices[0].drop_after, 3);
  await page.locator("section.nodes button.quiet", { hasText: "Show all" }).click();
  await page.locator("[data-peer=device-4] button:focus").waitFor();

  await opener.click();
  await page.locator("[data-part=dropAfter]").fill("4");
  isLate = true;
  await change.click();
  await expectEventually("what is set", async () => (await must(script, { op: "network" })).devices[0].drop_after, 4);
  await canvas.choose("m");
  await page.locator("article[data-node]").getByRole("heading", { name: "Mouse 1" }).waitFor();
  isLate = false;
  late.forEach(tell);
  await must(script, { op: "rename", node: "m", graph: "Pointer" });
  await page.locator("article[data-node]").getByRole("heading", { name: "Pointer" }).waitFor();
  assert.equal(await card().count(), 0);
});

test("an object that others remove is told as gone; what is open closes with its scene", async () => {
  await must(script, { op: "object", clip: "Show", name: "Lamp" });
  await page.locator("[data-open-object='Show.Lamp']").click();
  await page.locator("[data-part=name]").waitFor();
  await must(script, { op: "change_object", clip: "Show", name: "Lamp", to: "Light" });
  await card().getByText("There is no object Show · Lamp.").waitFor();
  assert.equal(await page.locator("[data-part=name]").count(), 0);
  await must(script, { op: "load", scene: { format: "iohost scene", version: 1, nodes: [], links: [] } });
  await card().waitFor({ state: "detached" });
});

test("devices and objects are opened and closed by keys, and the focus comes and goes with them; a node's warning follows its device", async () => {
  await must(script, { op: "device", device: 4, name: "Wall", parser: "direct" });
  await canvas.choosePalette("String data send");
  await page.locator(".react-flow__node.selected:focus").waitFor();
  await must(script, { op: "edit", node: "String data send 1", param: 1503, int: 4 });
  const warning = canvas.face("String data send 1").getByText("Device 4 takes no texts (framed).");
  await must(script, { op: "device", device: 4, name: "Wall", parser: "framed" });
  await warning.waitFor();
  await must(script, { op: "device", device: 4, name: "Wall", parser: "direct" });
  await warning.waitFor({ state: "detached" });
  await page.locator("[data-show-device='4']").focus();
  await page.keyboard.press("Enter");
  await page.locator("section.nodes:focus").getByRole("heading", { name: "Device 4" }).waitFor();
  await page.keyboard.press("Tab");
  await page.keyboard.press("Enter");
  await page.locator("section.nodes:focus").getByRole("heading", { name: "Nodes" }).waitFor();
  await page.locator("[data-tab=objects]").click();
  await must(script, { op: "object", clip: "Show", name: "Lamp" });
  await page.locator('[data-object-line="Show.Lamp"] button').focus();
  await page.keyboard.press("Enter");
  await page.locator("section.nodes:focus").getByRole("heading", { name: "Show · Lamp" }).waitFor();
  await page.keyboard.press("Tab");
  await page.keyboard.press("Enter");
  await page.locator('[data-object-line="Show.Lamp"] button:focus').waitFor();
  await page.locator("[data-open-device='4']").click();
  await canvas.choose("String data send 1");
  await page.locator("article[data-node]").getByRole("heading", { name: "String data send 1" }).waitFor();
});

test("what is opened leaves the focus to the field that somebody has gone on to", async () => {
  await page.getByRole("button", { name: "Add object" }).evaluate((button) => new Promise((resolve) => {
    const quick = new MutationObserver(() => {
      const field = document.querySelector("[data-part=name]");
      if (field !== null) {
        quick.disconnect();
        field.focus();
        resolve();
      }
    });
    quick.observe(document.body, { childList: true, subtree: true });
    button.click();
  }));
  await page.evaluate(drawn);
  await page.keyboard.type("Lamp");
  assert.equal(await page.locator("[data-part=name]").inputValue(), "Lamp");
});

test("objects are added, renamed and removed", async () => {
  const objects = async () => (await must(script, { op: "objects" })).objects.map(({ clip, name }) => `${clip}.${name}`).join();
  await page.locator("[data-tab=objects]").click();
  await page.locator("#panel-objects").getByRole("button", { name: "Add object" }).click();
  await page.locator("[data-part=clip]").fill("Show");
  await page.locator("[data-part=name]").fill("Lamp");
  await page.keyboard.press("Enter");
  await expectEventually("objects", objects, "Show.Lamp");
  await card().getByText("x 0.00, y 0.00, z 0.00 m").waitFor();
  await page.locator("[data-part=name]").fill("Light");
  await page.keyboard.press("Enter");
  await expectEventually("objects", objects, "Show.Light");
  await page.getByRole("heading", { name: "Show · Light" }).waitFor();
  await card().getByRole("button", { name: "Remove" }).click();
  await expectEventually("objects", objects, "");
  await page.locator("[data-open-object]").waitFor({ state: "detached" });
});

test("a scene is saved under a name, marked when it changes, and saved again by a key", async () => {
  await nameIs("", false);
  await canvas.choosePalette("Mouse");
  await nameIs("", true);
  await page.getByRole("button", { name: "Save as" }).click();
  await page.locator("[data-scene-name]").fill("not/here");
  await page.keyboard.press("Enter");
  await page.locator("dialog [role=alert]").waitFor();
  await page.locator("[data-scene-name]").fill(" mine .json "); // blanks around the name aren't part of it
  await page.locator("dialog [role=alert]").waitFor({ state: "detached" });
  await page.keyboard.press("Enter");
  await nameIs("mine.json", false);
  await canvas.choosePalette("Keyboard");
  await nameIs("mine.json", true);
  await page.keyboard.press("Control+s");
  await nameIs("mine.json", false);
  assert.equal(JSON.parse(readFileSync(join(folder, "mine.json"), "utf8")).nodes.length, 2);
});

test("another file is opened; what isn't saved is asked for first, and undo brings the scene before back", async () => {
  await canvas.choosePalette("Mouse");
  await canvas.nodesAre(["Mouse 1"]);
  await saveAs("mouse");
  await page.getByRole("button", { name: "Open", exact: true }).click();
  await page.getByRole("button", { name: "Empty scene" }).click();
  await page.locator("[data-face]").waitFor({ state: "detached" }); // with it goes an open palette
  await canvas.choosePalette("Keyboard");
  await nameIs("", true);
  await page.getByRole("button", { name: "Open", exact: true }).click();
  await page.locator('[data-scene-file="mouse.json"]').click();
  await page.getByText("The scene has changes that aren't saved.").waitFor();
  await page.getByRole("button", { name: "Go back" }).click();
  await canvas.nodesAre(["Keyboard 1"]);
  await page.locator('[data-scene-file="mouse.json"]').click();
  await page.getByRole("button", { name: "Open anyway" }).click();
  await canvas.nodesAre(["Mouse 1"]);
  await page.locator("[data-undo]").click();
  await canvas.nodesAre(["Keyboard 1"]);
  for (const number of [10, 2]) {
    writeFileSync(join(folder, `show ${number}.json`), "no scene");
  }
  await page.getByRole("button", { name: "Open", exact: true }).click();
  const files = page.locator("[data-scene-file]");
  await files.first().waitFor();
  assert.deepEqual(await files.locator("span").allTextContents(), ["mouse.json", "show 2.json", "show 10.json"]);
  await files.nth(1).click();
  await page.getByRole("button", { name: "Open anyway" }).click();
  await page.getByText("show 2.json wasn't opened. File: not JSON, from byte 2 on").waitFor();
});

test("a scene is taken along as a file of this computer, and brought back", async () => {
  await canvas.choosePalette("Mouse");
  await canvas.nodesAre(["Mouse 1"]);
  await page.getByRole("button", { name: "Save as" }).click();
  const [download] = await Promise.all([page.waitForEvent("download"), page.locator("[data-download]").click()]);
  const file = join(folder, "taken.file");
  await download.saveAs(file);
  await page.keyboard.press("Escape");
  await page.locator("[data-undo]").click();
  await canvas.nodesAre([]);
  await page.getByRole("button", { name: "Open", exact: true }).click();
  await page.locator("[data-upload]").setInputFiles(file);
  await canvas.nodesAre(["Mouse 1"]);
});

test("a scene of this computer is saved under its file's name when it's asked for, over nothing that is there", async () => {
  await canvas.choosePalette("Mouse");
  await canvas.nodesAre(["Mouse 1"]);
  await saveAs("mouse");
  const upload = join(mkdtempSync(join(folder, "here-")), "mouse.json");
  writeFileSync(upload, JSON.stringify({ format: "iohost scene", version: 1 }));
  await page.getByRole("button", { name: "Open", exact: true }).click();
  await page.locator("[data-upload]").setInputFiles(upload);
  await page.locator("[data-empty-scene]").waitFor();
  await nameIs("", false);
  await canvas.choosePalette("Keyboard");
  await canvas.nodesAre(["Keyboard 1"]);
  const name = page.locator("[data-scene-name]");
  await page.keyboard.press("Control+s");
  await expectEventually("the name that is proposed", () => name.inputValue(), "mouse");
  await name.and(page.locator(":focus")).waitFor();
  await page.keyboard.press("Enter");
  const question = page.getByRole("alert").filter({ hasText: "mouse.json is another scene's. Replace it?" });
  await question.locator("button:focus", { hasText: "Go back" }).press("Enter");
  await question.waitFor({ state: "detached" });
  await name.fill("mouse and keyboard");
  await page.keyboard.press("Enter");
  await nameIs("mouse and keyboard.json", false);
  await page.getByRole("button", { name: "Open", exact: true }).click();
  await page.getByRole("button", { name: "Empty scene" }).click();
  await page.locator("[data-empty-scene]").waitFor();
  await page.keyboard.press("Control+s");
  await expectEventually("no name", () => name.inputValue(), "");
  await name.fill("mouse");
  await page.keyboard.press("Enter");
  await question.getByRole("button", { name: "Replace" }).click();
  await nameIs("mouse.json", false);
});

test("a file that is too large, or that no host takes, is refused in the reader's language, and names no scene", async () => {
  await page.getByRole("button", { name: "中文" }).click();
  const file = join(folder, "large.json");
  writeFileSync(file, "");
  truncateSync(file, 257 * 1024 ** 2);
  const says = (text) => page.locator("dialog [role=alert]", { hasText: text }).waitFor();
  await page.getByRole("button", { name: "打开", exact: true }).click();
  await page.locator("[data-upload]").setInputFiles(file);
  await says("文件大于 256 MiB。");
  writeFileSync(file, "no scene");
  await page.locator("[data-upload]").setInputFiles(file);
  await says("从第 2 字节起不是 JSON");
  await page.route("**/scene", (route) => route.fulfill({ status: 413, contentType: "text/plain", body: "" }));
  await page.locator("[data-upload]").setInputFiles(file);
  await says("主机拒绝了此文件：413 Payload Too Large");
  await page.route("**/scene", (route) => route.abort());
  await page.locator("[data-upload]").setInputFiles(file);
  await says("无法将文件发送到主机。");
  await page.keyboard.press("Escape");
  const scene = { format: "iohost scene", version: 1, nodes: [nodeOf("m", Type.mouse, "Mouse 1")], links: [] };
  await must(script, { op: "load", scene });
  await page.locator("[data-face=m]").waitFor();
  await page.keyboard.press("Control+s");
  assert.equal(await page.locator("[data-scene-name]").inputValue(), "");
});

test("an empty scene offers something to begin with", async () => {
  let isListed = false;
  page.on("websocket", (socket) => socket.on("framereceived", ({ payload }) => (isListed ||= payload.includes('"files":'))));
  await page.reload();
  await until("the list of scenes", () => isListed);
  await page.evaluate(drawn);
  assert.equal(await page.getByRole("button", { name: "demo", exact: true }).count(), 0);
  await page.locator('[data-start="keyboard to text"]').click();
  await canvas.nodesAre(["Keyboard 1", "Text field 1"]);
  await page.locator('[data-undo][title="Undo: Begin with keyboard to text"]').waitFor();
  assert.equal((await canvas.links()).length, 2);
  await page.locator("[data-empty-scene]").waitFor({ state: "detached" });
  await page.locator("[data-undo]").click();
  await page.locator('[data-start="controller to object"]').click();
  await canvas.nodesAre(["VR handle 1"]);
  assert.deepEqual((await must(script, { op: "objects" })).objects.map(({ clip, name }) => [clip, name]), [["Show", "Lamp"]]);
  // What it sets up is left when its nodes are removed.
  const remove = async () => {
    await canvas.face("VR handle 1").waitFor();
    await must(script, { op: "destroy", node: "VR handle 1" });
    await canvas.face("VR handle 1").waitFor({ state: "detached" });
  };
  await remove();
  await page.locator('[data-start="controller to object"]').click();
  await canvas.nodesAre(["VR handle 1"]);
  await remove();
  await page.locator('[data-start="device JSON to parameter"]').click();
  await canvas.nodesAre(["Device JSON 1", "Net send 1"]);
  assert.equal((await canvas.links()).length, 2);
});

test("what was left unsaved is taken, over something unsaved when it's asked for twice, or thrown away by two clicks", async () => {
  const port = Number(host.address.split(":")[1]);
  const banner = () => page.locator("[data-recovered]");
  const take = () => banner().getByRole("button", { name: "Recover them" }).click();
  await startAnew(port); // one on any free port leaves nothing
  await canvas.choosePalette("Mouse");
  await canvas.nodesAre(["Mouse 1"]);
  await startAnew(port);
  await take();
  await canvas.nodesAre(["Mouse 1"]);
  await banner().waitFor({ state: "detached" });

  await startAnew(port);
  await canvas.choosePalette("Keyboard");
  await canvas.nodesAre(["Keyboard 1"]);
  await nameIs("", true);
  await take();
  await page.getByRole("alertdialog").getByText("The scene has changes that aren't saved. Open untitled scene anyway?").waitFor();
  await page.getByRole("button", { name: "Leave it" }).click();
  await canvas.nodesAre(["Keyboard 1"]);
  await take();
  await page.getByRole("button", { name: "Open anyway" }).click();
  await canvas.nodesAre(["Mouse 1"]);
  await banner().waitFor({ state: "detached" });

  await startAnew(port);
  const discard = () => banner().getByRole("button", { name: "Discard them" }).click();
  await discard();
  await page.getByRole("alertdialog").locator("button:focus", { hasText: "Leave it" }).waitFor();
  await page.keyboard.press("Enter");
  await page.getByRole("alertdialog").waitFor({ state: "detached" });
  await startAnew(port);
  await discard();
  await page.getByRole("button", { name: "Discard", exact: true }).click();
  await banner().waitFor({ state: "detached" });
  await startAnew(port);
  await page.locator("[data-empty-scene]").waitFor();
  assert.equal(await banner().count(), 0);
});

test("the demo is asked about where it takes the place of something that isn't saved", async () => {
  await canvas.choosePalette("Mouse");
  await canvas.nodesAre(["Mouse 1"]);
  await saveAs("demo");
  await must(script, { op: "load", scene: { format: "iohost scene", version: 1, nodes: [], links: [] } });
  await must(script, { op: "device", device: 1, name: "Wall", parser: "direct" });
  await nameIs("", true);
  const demo = page.getByRole("button", { name: "demo", exact: true });
  await demo.click();
  await page.getByRole("alertdialog", { name: "Open demo.json anyway?" }).locator("button:focus", { hasText: "Leave it" }).click();
  assert.equal((await must(script, { op: "network" })).devices.length, 1);
  await demo.click();
  await page.getByRole("button", { name: "Open anyway" }).click();
  await canvas.nodesAre(["Mouse 1"]);
});

test("beside a long name, which is cut off, the dot for what isn't saved is seen", async () => {
  await saveAs("a show with the long name of a long evening");
  await createNode(script, "k", Type.keyboard, "Keyboard 1");
  await nameIs("a show with the long name of a long evening.json", true);
  const isSeen = (dot) => {
    const { x, y, width, height } = dot.getBoundingClientRect();
    return dot.contains(document.elementFromPoint(x + width / 2, y + height / 2));
  };
  assert.ok(await page.locator(".scene-unsaved").evaluate(isSeen));
  const file = page.locator(".scene-file[title$='long evening.json']");
  assert.ok(await file.evaluate((name) => name.scrollWidth > name.clientWidth));
});

test("a line of the history leads where it says, though somebody changes the scene meanwhile", async () => {
  const late = await openTab(browser);
  let hears = true;
  await between(late, { toPage: (messages) => messages.filter(({ push, steps }) => hears || (push !== "history" && steps === undefined)) });
  await late.goto(host.page);
  const create = (node) => createNode(script, node, Type.mouse, node);
  await create("a");
  await create("b");
  await late.locator("[data-history]").click();
  await late.locator('[data-step="2"][aria-current]').waitFor();
  hears = false;
  await create("c");
  await late.locator('[data-step="1"]').click();
  await canvas.nodesAre(["a"]);

  hears = true;
  await create("d");
  await create("e");
  await late.locator('[data-step="3"][aria-current]').waitFor();
  hears = false;
  await must(script, { op: "undo" });
  await must(script, { op: "undo" });
  await create("f");
  await late.locator("[data-face=f]").waitFor();
  await late.locator('[data-step="2"]').click(); // nowhere any more
  await expectEventually("what is said", () => canvasOf(late, script).message().innerText(), "The scene has no such state any more");
  await canvas.nodesAre(["a", "f"]);
});

test("types that are switched off stand in the palette with the reason, and aren't added", async () => {
  const plugins = join(folder, "Plugins", "NodePlugin");
  mkdirSync(plugins, { recursive: true });
  writeFileSync(join(plugins, "NodePlugin.ini"), "[IOProcess]\nGesture=0\nBroadcastSend=1\n");
  await startAnew(0, ["--app", folder]);
  await page.keyboard.press("Control+k");
  const switchedOff = page.locator("[data-entry][aria-disabled=true]", { hasText: "switched off: Gesture in NodePlugin.ini" });
  await switchedOff.click({ force: true });
  assert.equal(await page.locator("[data-palette]").count(), 1);
  assert.equal(await page.locator("[data-entry]", { hasText: "switched off: BroadcastSend" }).count(), 0);
  await canvas.nodesAre([]);
});
