// Scenes and their files: begun, saved, opened, taken along, and found again after the host ended.
import assert from "node:assert/strict";
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { createServer } from "node:net";
import { once } from "node:events";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, afterEach, before, beforeEach, test } from "node:test";
import { startBrowser } from "./support/browser.mjs";
import { canvasOf } from "./support/canvas.mjs";
import { startHost } from "./support/host.mjs";
import { expectEventually, must, openSession, until } from "./support/session.mjs";

let browser;
let folder;
let host;
let script;
let page;
let canvas;
let problems;

async function start(port = 0) {
  host = await startHost({ port, options: ["--scenes", folder] });
  script = await openSession(host.address);
}

async function end() {
  await script.close();
  assert.equal(await host.end(), 0);
}

async function open() {
  page = await browser.contexts()[0].newPage();
  page.on("pageerror", (error) => problems.push(error.message));
  await page.goto(host.page);
  canvas = canvasOf(page, script);
  await canvas.pane().waitFor();
}

before(async () => (browser = await startBrowser()));
after(() => browser.close());
beforeEach(async () => {
  folder = mkdtempSync(join(tmpdir(), "iohost-files-"));
  problems = [];
  await start();
  await open();
});
afterEach(async () => {
  assert.deepEqual(problems, []);
  await page.close();
  await end();
  rmSync(folder, { recursive: true });
});

const sceneName = () => page.locator("[data-scene]");
const nameIs = (name, unsaved) =>
  expectEventually("the scene's name", async () => {
    const shown = sceneName();
    return `${await shown.getAttribute("data-scene")} ${await shown.getAttribute("data-unsaved")}`;
  }, `${name} ${unsaved}`);

async function saveAs(name) {
  await page.getByRole("button", { name: "Save as" }).click();
  await page.locator("[data-scene-name]").fill(name);
  await page.keyboard.press("Enter");
  await nameIs(`${name}.json`, false);
}

/** What a device on this machine was sent. */
async function startDevice() {
  const received = [];
  const sockets = new Set();
  const server = createServer((socket) => {
    sockets.add(socket);
    socket.on("data", (data) => received.push(data)).on("error", () => {});
  }).listen(0, "127.0.0.1");
  await once(server, "listening");
  return {
    address: `127.0.0.1:${server.address().port}`,
    text: () => Buffer.concat(received).toString(),
    close: () => (sockets.forEach((socket) => socket.destroy()), server.close()),
  };
}

/** The scene as it's saved, without what a run of the host adds. */
const wholeScene = async () => JSON.stringify(await (await fetch(new URL("scene", host.page))).json());

test("a scene is saved under a name, marked when it changes, and saved again by a key", async () => {
  await nameIs("", false);
  await canvas.add("Mouse");
  await nameIs("", true);
  await saveAs("mine");
  await canvas.add("Keyboard");
  await nameIs("mine.json", true);
  await page.keyboard.press("Control+s");
  await nameIs("mine.json", false);
  assert.equal(JSON.parse(readFileSync(join(folder, "mine.json"), "utf8")).nodes.length, 2);
});

test("another file is opened; what isn't saved is asked for first, and undo brings the scene before back", async () => {
  await canvas.add("Mouse");
  await saveAs("mouse");
  await page.getByRole("button", { name: "Open", exact: true }).click();
  await page.getByRole("button", { name: "Empty scene" }).click();
  await canvas.nodesAre([]);
  await canvas.add("Keyboard");
  await page.getByRole("button", { name: "Open", exact: true }).click();
  await page.locator('[data-scene-file="mouse.json"]').click();
  await page.getByText("The scene has changes that aren't saved.").waitFor();
  await page.getByRole("button", { name: "Go back" }).click();
  await canvas.nodesAre(["Keyboard 1"]);
  await page.locator('[data-scene-file="mouse.json"]').click();
  await page.getByRole("button", { name: "Open all the same" }).click();
  await canvas.nodesAre(["Mouse 1"]);
  await page.locator("[data-undo]").click();
  await canvas.nodesAre(["Keyboard 1"]);
});

test("a scene is taken along as a file of this computer, and brought back", async () => {
  await canvas.add("Mouse");
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

test("a file that is no scene is refused with the reason, and the scene stays", async () => {
  await canvas.add("Mouse");
  await saveAs("mouse");
  const file = join(folder, "other.txt");
  writeFileSync(file, "no scene");
  await page.getByRole("button", { name: "Open", exact: true }).click();
  await page.locator("[data-upload]").setInputFiles(file);
  await page.locator("dialog [role=alert]").waitFor();
  await canvas.nodesAre(["Mouse 1"]);
});

test("an empty scene offers something to begin with", async () => {
  await page.locator('[data-start="keyboard to text"]').click();
  await canvas.nodesAre(["Keyboard 1", "Text field 1"]);
  assert.equal((await canvas.links()).length, 2);
  await page.locator("[data-empty-scene]").waitFor({ state: "detached" });
  await page.locator("[data-undo]").click();
  await page.locator('[data-start="controller to object"]').click();
  await canvas.nodesAre(["VR handle 1"]);
  assert.deepEqual((await must(script, { op: "objects" })).objects.map(({ clip, name }) => [clip, name]), [["Show", "Lamp"]]);
});

test("what an ended host left unsaved is offered, and taken", async () => {
  const port = Number(host.address.split(":")[1]);
  await page.close();
  await end();
  await start(port);
  await open();
  await canvas.add("Mouse");
  await canvas.nodesAre(["Mouse 1"]);
  await page.close();
  await end();
  await start(port);
  await open();
  await page.locator("[data-recovered]").getByRole("button", { name: "Take them" }).click();
  await canvas.nodesAre(["Mouse 1"]);
  await page.locator("[data-recovered]").waitFor({ state: "detached" });
});
