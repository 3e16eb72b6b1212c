// The page by the rules of WCAG 2.2 AA, as far as a program can tell.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { canvasOf, drawn } from "./support/canvas.mjs";
import { temporaryFolder } from "./support/folder.mjs";
import { startHost } from "./support/host.mjs";
import * as is from "./support/page.mjs";
import { page, script, useScene } from "./support/scene.mjs";
import { createNode, createScene, expectEventually, must, Type } from "./support/session.mjs";
import { test } from "./support/test.mjs";

const AXE = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
const RULES = ["wcag2a", "wcag2aa", "wcag21aa", "wcag22aa"];
/** What leads to a device, an object and new ones. */
const PARTS = ["[data-open-device]", "[data-open-object]", ".part-index nav:first-child button:last-child", ".part-index nav:last-child button:last-child"];
/** What of a tab is loaded later than the tab. */
const LOADED = { keyboard: ".hg-button", hands: "[data-hand]" };
/** What depends on colours, which are the same in all languages. */
const COLORS = ["color-contrast", "link-in-text-block"];
const ALL = [["dark", { runOnly: RULES }], ["light", { runOnly: COLORS }]];
const BUT_COLORS = [["dark", { runOnly: RULES, rules: Object.fromEntries(COLORS.map((rule) => [rule, { enabled: false }])) }]];
/** The log is in front first, when the whole page is looked at. */
const TABS = is.TABS.filter((tab) => tab !== "log");

const NET_SEND = { devId: 402, send: 410 };
const TEXT_APPEND = 203;

useScene({
  // Something of all that may stand there: what fired, an error in the log, what is held, a verdict, what would
  // be sent, a node that is off.
  prepare: async () => {
    const send = (request) => must(script, request);
    await createNode(script, "t", Type.textField, "Text field 1");
    await createNode(script, "n", Type.netSend, "Net send 1");
    await createNode(script, "j", Type.deviceJson, "Device JSON 1");
    await createNode(script, "v", Type.vrHandle, "VR handle 1");
    await send({ op: "set", node: "v", param: is.ENABLE, int: 0 });
    await send({ op: "link", from: "k", output: is.KEY_DOWN[1], to: "t", input: TEXT_APPEND });
    await send({ op: "devices", list: [{ id: 1, name: "Stage", parser: "framed", address: "127.0.0.1:9" }] });
    await send({ op: "object", clip: "Demo", name: "Lamp" });
    await send({ op: "listen_only", on: true });
    await send({ op: "set", node: "n", param: NET_SEND.devId, string: "1" });
    await send({ op: "trigger", node: "n", param: NET_SEND.send });
    await send({ op: "event", device: 0, event: 2002, payload: { is: "key", text: "a" } });
    await send({ op: "event", device: 5, event: 0, payload: { is: "device_text", device: 1, text: "no JSON" } });
    await script.request({ op: "event", node: "m", record: null });
  },
  look: () => page.page.locator("[data-face]").first().waitFor(),
});

/** What breaks a rule, told by rule and element. */
async function violationsIn(part, { looks = ALL } = {}) {
  const found = [];
  for (const [colorScheme, options] of looks) {
    await page.page.emulateMedia({ colorScheme });
    await page.page.evaluate(drawn);
    const { violations } = await page.page.evaluate(
      ([part, options]) => window.axe.run(part, { ...options, resultTypes: ["violations"], preload: false }),
      [part, options],
    );
    found.push(...violations.flatMap(({ id, nodes }) =>
      nodes.map(({ target, any, all }) => `${colorScheme}: ${id} ${target} ${[...any, ...all].map(({ message }) => message)}`)));
  }
  return found;
}

async function violationsOnTabs(options) {
  const found = {};
  for (const tab of TABS) {
    await page.page.locator(`[data-tab=${tab}]`).click();
    await page.page.locator(`#panel-${tab}`).locator(LOADED[tab] ?? ":visible").first().waitFor();
    found[tab] = await violationsIn(`#panel-${tab}`, options);
  }
  return found;
}

for (const [language, looks] of [["EN", ALL], ["中文", BUT_COLORS]]) {
  test(`no rule is broken on any tab, ${language}`, async () => {
    await page.page.evaluate(AXE);
    await page.page.getByRole("button", { name: language, exact: true }).click();
    await page.moveTo(20, 20);
    await page.mouse.down();
    await page.moveTo(200, 30);
    await page.mouse.up();
    await page.page.locator(".verdict").waitFor();
    const found = { page: await violationsIn("html", { looks }), ...await violationsOnTabs({ looks }) };
    for (const part of PARTS) {
      await page.page.locator(part).click();
      await page.page.locator("[data-part-card]").waitFor();
      found[part] = await violationsIn(".nodes", { looks });
      await page.page.locator(".nodes .panel-head button").click();
    }
    assert.deepEqual(found, Object.fromEntries(["page", ...TABS, ...PARTS].map((part) => [part, []])));
  });
}

test("no rule is broken by what opens above the page", async () => {
  await page.page.evaluate(AXE);
  const found = {};
  const press = (name) => page.page.getByRole("button", { name, exact: true }).click();
  for (const [name, open, opened] of [
    ["Save as", () => press("Save as"), "dialog"],
    ["Open", () => press("Open"), "dialog"],
    ["History", () => press("History"), ".history-list"],
    ["palette", () => page.page.keyboard.press("Control+k"), "[data-palette]"],
  ]) {
    await open();
    await page.page.locator(opened).locator("button, [role=option]").first().waitFor();
    found[name] = await violationsIn(opened);
    await page.page.keyboard.press("Escape");
    await page.page.locator(opened).waitFor({ state: "detached" });
  }
  assert.deepEqual(found, { "Save as": [], Open: [], History: [], palette: [] });
});

test("no rule is broken while the graph is edited", async () => {
  await must(script, { op: "place", notes: { a: { x: 0, y: -200, width: 200, height: 100, text: "a note" } } });
  await page.page.evaluate(AXE);
  const canvas = canvasOf(page.page, script);
  const { keyboard } = page;
  const found = {};
  const look = async (name) => (found[name] = await violationsIn(".canvas"));
  await page.page.locator("[data-note]").waitFor();
  await canvas.choosePalette("Keyboard 1");
  await expectEventually("the zoom", canvas.zoom, 1.5);
  await canvas.zoomTo(1); // what stands on the canvas is as large as it was made
  await look("chosen");
  await keyboard.press("F2");
  await page.page.locator(".face-rename:focus").waitFor();
  await look("renamed");
  await keyboard.press("Escape");
  await canvas.pin("k", is.KEY_DOWN[1]).focus();
  await keyboard.press("Enter");
  await page.page.locator(".pin-begun").waitFor();
  await look("wire begun");
  await keyboard.press("Escape");
  await page.page.evaluate(() => new Promise(requestAnimationFrame)); // the pin has the focus again
  await page.page.locator(".react-flow__node-note").press("Enter");
  await page.page.locator(".note-corner").waitFor();
  await look("note chosen");
  await must(script, { op: "load", scene: { format: "iohost scene", version: 1 } });
  await page.page.locator("[data-empty-scene]").waitFor();
  await look("empty");
  assert.deepEqual(found, { chosen: [], renamed: [], "wire begun": [], "note chosen": [], empty: [] });
});

test("no rule is broken on a phone, on any tab", async () => {
  await page.page.setViewportSize({ width: 390, height: 844 });
  await page.page.locator(".phone").getByText("The graph takes a wider window.").waitFor();
  await page.page.evaluate(AXE);
  const found = { page: await violationsIn("html"), ...await violationsOnTabs() };
  assert.deepEqual(found, Object.fromEntries(["page", ...TABS].map((part) => [part, []])));
});

test("no rule is broken by what an ended host left, nor by a question about it", async () => {
  const options = ["--scenes", temporaryFolder()];
  const endedPort = async (port) => {
    const ended = await startHost({ port, options });
    await createScene(ended.address);
    await ended.end();
    return Number(ended.address.split(":")[1]);
  };
  const port = await endedPort(); // one on any free port leaves nothing
  const next = await startHost({ port: await endedPort(port), options });
  await page.page.goto(next.page);
  await page.page.locator("[data-empty-scene]").waitFor();
  await page.page.evaluate(AXE);
  await page.page.locator("[data-recovered]").getByRole("button", { name: "Discard them" }).click();
  await page.page.getByRole("alertdialog").waitFor();
  assert.deepEqual(await violationsIn("html"), []);
});
