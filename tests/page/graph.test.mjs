// The scene as a graph: nodes are shown live, added, wired and removed.
import assert from "node:assert/strict";
import { canvasOf } from "./support/canvas.mjs";
import { APPEND_INPUT, TEXT_INPUT } from "./support/editing.mjs";
import * as is from "./support/page.mjs";
import { browser, host, page, script, useScene } from "./support/scene.mjs";
import { createNode, expectEventually, must, nodeOf, Type, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

const STRING_SEND = { device: 1503, send: 1507 };
const DEVICE_JSON = { device: 1402, checks: 1403, key: 1404 };

useScene({
  prepare: async () => {
    await createNode(script, "t", Type.textField, "Text field 1");
    await must(script, { op: "link", from: "k", output: is.KEY_DOWN[1], to: "t", input: APPEND_INPUT });
  },
  look: () => {
    canvas = canvasOf(page.page, script);
    return canvas.face("t").waitFor();
  },
});

let canvas;

test("a page that opens later shows the same counts and lines, and when counts are reset all pages count anew", async () => {
  const press = () => must(script, { op: "event", device: 0, event: 2002, payload: { is: "key", text: "F5" } });
  await press();
  await press();
  await page.fires(is.KEY_DOWN, 2);
  await until("the key's name", async () => (await canvas.face("k").innerText()).includes("F5"));
  const other = await is.openPage(browser, host);
  await other.fires(is.KEY_DOWN, 2);
  await other.page.locator('[data-face="k"]').getByText("fired 2 · received 2").waitFor();
  await expectEventually("lines of the log", () => other.page.locator("[data-log] .line-text", { hasText: "F5" }).count(), 2);
  await expectEventually("the count", () => other.page.locator('[data-face="k"] [data-face-count="2"]').count(), 1);
  await other.page.locator(".react-flow__edge").focus();
  await other.keyboard.press("Enter");
  await other.page.locator("[data-wire-value]", { hasText: "2 times" }).waitFor();
  await other.page.getByRole("button", { name: "Reset counts" }).click();
  await page.fires(is.KEY_DOWN, 0);
  await press();
  await page.fires(is.KEY_DOWN, 1);
  await other.fires(is.KEY_DOWN, 1);
});

test("a page that opens later tells how long ago a node acted, and lights no lamp of what is over", async () => {
  await must(script, { op: "clock", ms: 0 });
  await must(script, { op: "event", device: 0, event: 2002, payload: { is: "key", text: "F5" } });
  await until("that it acted", () => script.pushes.some(({ push, idle_ms }) => push === "counters" && idle_ms?.k === 0));
  await must(script, { op: "clock", ms: 180000 });
  const other = await is.openPage(browser, host, { scripts: [is.watchLights] });
  await other.page.locator('[data-face="k"] [data-active]', { hasText: "3 min ago" }).waitFor();
  assert.equal(await is.lights(other.page, "*"), 0);
  assert.equal(await other.page.locator('[data-face="m"] [data-active]').count(), 0);
});

test("a text of a node that its device was dropped counts on the node's face", async () => {
  await createNode(script, "s", Type.stringSend, "Sender");
  await must(script, { op: "device", device: 3, name: "Wall", parser: "direct", address: "127.0.0.1:9", drop_after: 0.01 });
  await must(script, { op: "set", node: "s", param: STRING_SEND.device, int: 3 });
  await canvasOf(page.page, script).choosePalette("Sender");
  const counters = canvas.face("s").locator("[data-counters]");
  await expectEventually("the counters", () => counters.innerText(), "fired 0");
  await must(script, { op: "trigger", node: "s", param: STRING_SEND.send });
  await expectEventually("the counters", () => counters.innerText(), "fired 0 · sent 1 · dropped 1");
});

test("a node's last verdict stands on its face in one line, however long it is", async () => {
  await createNode(script, "j", Type.deviceJson, "Taker");
  const set = (param, value) => must(script, { op: "set", node: "j", param, ...value });
  const send = (text) => must(script, { op: "event", device: 5, event: 0, payload: { is: "device_text", device: 1, text } });
  await set(DEVICE_JSON.device, { int: 1 });
  await canvasOf(page.page, script).choosePalette("Taker");
  const verdict = canvas.face("j").locator("[data-verdict]");
  await send("no JSON");
  await expectEventually("the verdict", () => verdict.innerText(), "Last text: not JSON");
  await set(DEVICE_JSON.checks, { int: 1 });
  await set(DEVICE_JSON.key, { string: "key ".repeat(50) });
  await send("{}");
  await expectEventually("the verdict", () => verdict.getAttribute("data-verdict"), "key_missing");
  const height = (one) => one.evaluate(({ offsetHeight }) => offsetHeight);
  assert.equal(await height(verdict), await height(canvas.face("j").locator("[data-counters]")));
});

test("at most three values stand beside a node's pins, those first that wires lead from", async () => {
  const valued = () => canvas.face("m").locator(".face-output").evaluateAll((rows) =>
    rows.filter((row) => row.querySelector(".face-value:not([data-face-count])")).map((row) => Number(row.querySelector("[data-handleid]").dataset.handleid)).join());
  await canvasOf(page.page, script).choosePalette("Mouse 1");
  await expectEventually("those with values", valued, [is.BUTTON_LEFT, is.BUTTON_RIGHT, is.BUTTON_MIDDLE].map(([, id]) => id).join());
  await must(script, { op: "link", from: "m", output: is.RELATIVE_Y[1], to: "t", input: is.ENABLE });
  await expectEventually("those with values", valued, [is.BUTTON_LEFT, is.BUTTON_RIGHT, is.RELATIVE_Y].map(([, id]) => id).join());
});

test("a click on the map moves the view there, and so does dragging it", async () => {
  await must(script, { op: "place", nodes: { k: { x: 0, y: 0 }, m: { x: 0, y: 2000 }, t: { x: 4000, y: 2000 } } });
  await canvas.choosePalette("Keyboard 1");
  await expectEventually("those in sight", inSight, 1);
  const shows = (node) => until(`${node} in the middle`, async () => {
    const [at, pane] = [await canvas.middleOf(canvas.face(node)), await canvas.pane().boundingBox()];
    return at.x > pane.x && at.x < pane.x + pane.width && at.y > pane.y && at.y < pane.y + pane.height;
  });
  await shows("k");
  const map = page.page.locator(".react-flow__minimap-node");
  const onMap = async (node) => {
    const { nodes } = await canvas.scene();
    return canvas.middleOf(map.nth(nodes.findIndex((one) => one.node === node)));
  };
  const isAsNear = () => expectEventually("the zoom", canvas.zoom, 1.5); // the view is led there in a moment's time
  await isAsNear();
  const to = await onMap("t");
  await page.mouse.click(to.x, to.y);
  await shows("t");
  await isAsNear();
  const left = async () => (await canvas.face("t").boundingBox()).x;
  const before = await left();
  const { x, y } = await onMap("t");
  await canvas.drag({ x, y }, { x: x - 20, y });
  await until("a view further left", async () => (await left()) > before + 100);
});

test("a node can be gone to, and neither map nor buttons cover one of the scene that is shown as a whole, however large", async () => {
  await must(script, { op: "place", nodes: { k: { x: 0, y: 600 }, m: { x: 420, y: 300 }, t: { x: 210, y: 0 } } });
  await page.page.setViewportSize({ width: 1024, height: 600 });
  const isFree = () =>
    until("all nodes beside map and buttons", () => page.page.evaluate(() => {
      const boxes = (selector) => [...document.querySelectorAll(selector)].map((one) => one.getBoundingClientRect());
      const [{ left, top, right, bottom }] = boxes("[data-graph]");
      const panels = boxes(".react-flow__minimap, .react-flow__controls");
      return panels.length === 2 && boxes("[data-face]").every((face) =>
        face.left > left && face.top > top && face.right < right && face.bottom < bottom
        && panels.every((one) => face.right < one.left || one.right < face.left || face.bottom < one.top || one.bottom < face.top));
    }));
  await page.page.reload();
  await canvas.face("t").waitFor();
  await isFree();
  const zoom = await canvas.zoom();
  await page.page.locator(".react-flow__controls-zoomin").click();
  await until("a larger view", async () => (await canvas.zoom()) > zoom);
  await page.page.locator(".react-flow__controls-fitview").click();
  await until("the view of all", async () => (await canvas.zoom()) <= zoom);
  await isFree();
  await must(script, { op: "place", nodes: { t: { x: 9000, y: 0 } } });
  await until("a node out of sight", async () => (await inSight()) < 3);
  const before = await canvas.zoom();
  await canvas.choosePalette("Text field 1");
  await until("that node, larger", async () => (await inSight()) === 1 && (await canvas.zoom()) > 1.1 * before);
  await page.page.locator(".react-flow__controls-fitview").click();
  await isFree();
});

test("a wire between pins that don't fit is refused with the reason", async () => {
  await canvas.pin("m", is.LEFT_DOWN[1]).dragTo(canvas.pin("t", TEXT_INPUT));
  await expectEventually("the reason", () => canvas.message().innerText(), "An output with events doesn't fit an input for texts.");
  assert.equal((await canvas.links()).length, 1);
});

test("a node with the focus is chosen by Enter and removed by Backspace, links too; keys typed elsewhere remove nothing", async () => {
  const node = page.page.getByRole("group", { name: /^Text field 1/ });
  await node.focus();
  await page.page.keyboard.press("Enter");
  await canvas.chosen().waitFor();
  await page.page.locator("[data-surface]").focus();
  await page.page.keyboard.press("Delete");
  await page.page.keyboard.press("Backspace");
  await canvas.face("k").locator('[data-face-count="2"]').first().waitFor();
  assert.equal(page.sent.some(({ op }) => op === "destroy"), false);
  await node.focus();
  await page.page.keyboard.press("Backspace");
  await canvas.face("t").waitFor({ state: "detached" });
  assert.deepEqual(await canvas.links(), []);
  assert.equal(await canvas.wires().count(), 0);
});

const inSight = () => page.page.locator("[data-graph]").evaluate((graph) => {
  const pane = graph.getBoundingClientRect();
  return [...graph.querySelectorAll("[data-face]")].filter((one) => {
    const box = one.getBoundingClientRect();
    return box.left >= pane.left && box.right <= pane.right && box.top >= pane.top && box.bottom <= pane.bottom;
  }).length;
});

test("another scene whose nodes have the same handles begins anew: counts, what is chosen, places, view", async () => {
  await must(script, { op: "event", device: 0, event: 2002, payload: { is: "key", text: "F5" } });
  await expectEventually("the count", () => canvas.face("k").locator('[data-face-count="1"]').count(), 1);
  await canvas.face("k").locator("header img").click();
  await canvas.chosen().waitFor();
  for (let steps = 0; steps < 4; ++steps) {
    await page.page.getByRole("button", { name: "Zoom in" }).click();
  }
  await until("a part", async () => (await inSight()) < 3);
  const at = () => canvas.face("t").locator("..").evaluate(({ style }) => style.transform);
  const before = await at();
  const nodes = [nodeOf("k", Type.keyboard, "k"), nodeOf("m", Type.mouse, "m"), nodeOf("t", Type.textField, "t")];
  const links = [{ from: "m", output: is.LEFT_DOWN[1], to: "t", input: APPEND_INPUT }];
  await must(script, { op: "load", scene: { format: "iohost scene", version: 1, nodes, links } });
  await expectEventually("those in sight", inSight, 3);
  const left = async (node) => (await canvas.face(node).boundingBox()).x;
  assert.ok((await left("m")) < (await left("t")), "arranged anew");
  assert.equal(await canvas.chosen().count(), 0);
  await expectEventually("counts of nothing", () => canvas.face("k").locator('[data-face-count="0"]').count(), 2);
  assert.equal(await page.page.locator("article[data-node]").count(), 3);
  assert.notEqual(await at(), before);
});
