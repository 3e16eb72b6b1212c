// A large scene on a small screen: 200 nodes are found, panned over and edited, and little of them is drawn.
import assert from "node:assert/strict";
import { startBrowser } from "./support/browser.mjs";
import { canvasOf, drawn } from "./support/canvas.mjs";
import { startHost } from "./support/host.mjs";
import { openTab } from "./support/page.mjs";
import { expectEventually, must, nodeOf, openSession, Type, until } from "./support/session.mjs";
import { before, beforeEach, test } from "./support/test.mjs";

const COUNT = 200;
const TYPES = [Type.keyboard, Type.textField, Type.mouse, Type.keyCheck, Type.stringSend];

/** Chains of a keyboard and a text field, and other nodes between them. */
const nodes = Array.from({ length: COUNT }, (_, index) => {
  const place = { x: 340 * (index % 14), y: 600 * Math.floor(index / 14) };
  return nodeOf(`n${index}`, TYPES[index % TYPES.length], `Node ${index}`, { place });
});
const links = nodes.flatMap(({ node }, index) =>
  index % TYPES.length === 1 ? [{ from: `n${index - 1}`, output: 154, to: node, input: 202 }] : []);

let browser;
let script;
let page;
let canvas;

before(async () => (browser = await startBrowser()));
beforeEach(async () => {
  const host = await startHost();
  script = await openSession(host.address);
  await must(script, { op: "load", scene: { format: "iohost scene", version: 1, nodes, links } });
  page = await openTab(browser);
  await page.setViewportSize({ width: 1280, height: 720 });
  await page.goto(host.page);
  await expectEventually("all nodes", () => page.locator("[data-face]").count(), COUNT);
  canvas = canvasOf(page, script);
});

test("among 200 nodes one is found by its name, and edited", async () => {
  await canvas.choosePalette("Node 187");
  await page.getByRole("heading", { name: "Node 187" }).waitFor();
  await until("the node in sight", () => page.evaluate(() => {
    const [pane, node] = ["[data-graph]", "[data-face=n187]"].map((one) => document.querySelector(one).getBoundingClientRect());
    return node.left >= pane.left && node.right <= pane.right && node.top >= pane.top && node.bottom <= pane.bottom;
  }));
  await page.locator('article[data-node=n187] [data-param="2"]').click();
  await page.locator("[data-face=n187].face-off").waitFor();
  await page.keyboard.press("Escape");
  await canvas.choose("n187");
  await page.keyboard.press("Delete");
  await until("199 nodes", async () => (await canvas.names()).length === 199);
});

test("nodes out of sight have their names and wires alone", async () => {
  const [names, cards] = [page.locator("article[data-node] h3"), page.locator("article[data-node] header")];
  const [faces, pins] = [page.locator("[data-face] [data-counters]"), page.locator("[data-face] .pin")];
  await cards.first().waitFor();
  await expectEventually("names", () => names.count(), 200);
  assert.ok(await cards.count() < 20, `${await cards.count()} cards`);
  await expectEventually("whole faces of those that nobody could read", () => faces.count(), 0);
  await expectEventually("wires", () => page.locator(".react-flow__edge").count(), 40);
  assert.equal(await pins.count(), 0);
  await page.getByRole("button", { name: "Node 150", exact: true }).click();
  await page.locator("article[data-node=n149] header").waitFor();
  await page.locator("article[data-node=n150] header").waitFor();
  await until("the card on top", () => page.locator("article[data-node=n150]").evaluate((card) =>
    Math.abs(card.getBoundingClientRect().top - card.parentElement.getBoundingClientRect().top) < 20));
  await canvas.choosePalette("Node 187");
  await page.locator("[data-face=n187] .pin-event").first().waitFor();
  await expectEventually("faces close by", async () => (await faces.count()) < 30, true);
  const loaded = () => page.evaluate(() => performance.getEntriesByType("resource").map(({ name }) => name));
  const panels = async () => (await loaded()).filter((name) => /Keyboard|Hands/.test(name));
  assert.deepEqual(await panels(), [], "panels that nobody opened");
  await page.locator("[data-tab=keyboard]").click();
  await until("the script of one that is opened", async () => (await panels()).length > 0);
});

/** How far a wire's end is from a place, in pixels. */
function gap(path, { x, y }) {
  const end = path.getPointAtLength(path.getTotalLength()).matrixTransform(path.getScreenCTM());
  return Math.hypot(end.x - x, end.y - y);
}

test("a node that is too far to be read takes a wire that was begun by keys, and keeps the focus", async () => {
  await page.locator('[data-id="node:n0"]').press("Enter");
  await canvas.pin("n0", 152).press("Enter");
  await canvas.face("n6").locator(".pin").first().waitFor();
  await page.locator('[data-id="node:n6"]').press("Tab");
  await canvas.face("n6").locator(".pin:focus").waitFor();
  const pin = await canvas.middleOf(canvas.pin("n6", 203));
  await canvas.pin("n6", 203).press("Enter");
  await page.locator('[data-id="node:n6"]:focus').waitFor();
  await expectEventually("wires", () => page.locator(".react-flow__edge").count(), 41);
  assert.ok((await canvas.links()).some(({ from, to }) => from === "n0" && to === "n6"));
  assert.equal(await canvas.face("n6").locator(".pin").count(), 0);
  assert.ok((await page.locator('[id="node:n0/152/node:n6/203"]').evaluate(gap, pin)) < 1);
});

test("a node that is too far to be read takes a wire that is dragged to it", async () => {
  await page.locator('.react-flow__viewport:not([style*="scale(1)"])').waitFor();
  await canvas.zoomTo(0.1); // the mouse hits whole pixels, so from further away it can't tell one pin from the next
  await page.locator('[data-id="node:n0"]').press("Enter");
  await canvas.pin("n0", 152).press("Enter");
  const to = await canvas.middleOf(canvas.pin("n6", 203));
  await page.keyboard.press("Escape");
  await expectEventually("pins", () => canvas.face("n6").locator(".pin").count(), 0);
  await page.locator('[data-id="node:n0"]').press("Enter");
  await canvas.drag(await canvas.middleOf(canvas.pin("n0", 152)), to);
  await until("the link", async () => (await canvas.links()).some(({ from, to }) => from === "n0" && to === "n6"));
});

/** How often a face is drawn meanwhile: the innermost function of each script that makes one is run. */
async function facesDrawn(act) {
  await page.coverage.startJSCoverage();
  await act();
  const length = ({ startOffset, endOffset }) => endOffset - startOffset;
  const found = (await page.coverage.stopJSCoverage()).flatMap(({ source, functions }) =>
    functions
      .map(({ ranges: [whole] }) => whole)
      .filter(({ startOffset, endOffset }) => source.slice(startOffset, endOffset).includes('"data-face":'))
      .sort((a, b) => length(a) - length(b))
      .slice(0, 1));
  return found.reduce((sum, { count }) => sum + count, 0);
}

test("an edit has a node that it isn't about looked at for a change three times at most", async () => {
  await expectEventually("wires", () => page.locator(".react-flow__edge").count(), 40);
  await page.evaluate(drawn);
  const node = page.locator(".react-flow__node", { has: page.locator("[data-face=n150]") });
  await node.evaluate(({ dataset }) => {
    // The canvas asks whether the node is a parent whenever it looks at it; its functions are too short-lived to be counted.
    const { has } = Map.prototype;
    globalThis.looks = 0;
    Map.prototype.has = function (key) {
      globalThis.looks += key === dataset.id;
      return has.call(this, key);
    };
  });
  await must(script, { op: "rename", node: "n5", graph: "Another" });
  await page.locator('.react-flow__node[aria-label^="Another,"]').waitFor();
  const looks = await page.evaluate(() => globalThis.looks);
  assert.ok(looks > 0 && looks <= 3, `${looks} looks`);
});

test("an edit draws no more faces anew than those of its nodes", async () => {
  await page.locator(".react-flow__edge").first().waitFor();
  const edit = async (request, shown) => {
    const drawn = await facesDrawn(async () => {
      await must(script, request);
      await shown();
    });
    assert.ok(drawn > 0 && drawn <= 4, `${request.op} drew ${drawn} faces`); // each of two nodes twice at most
  };
  const wires = (count) => () => expectEventually("wires", () => page.locator(".react-flow__edge").count(), count);
  await edit({ op: "edit", node: "n5", param: 2, int: 0 }, () => page.locator("[data-face=n5].face-off").waitFor());
  await edit({ op: "rename", node: "n5", graph: "Another" }, () => page.locator("[data-face=n5]", { hasText: "Another" }).waitFor());
  await edit({ op: "place", nodes: { n5: { x: 1, y: 2000, folded: true } } }, () => page.locator("[data-face=n5][data-folded=true]").waitFor());
  await edit({ op: "link", from: "n0", output: 152, to: "n6", input: 203 }, wires(41));
  await edit({ op: "destroy", node: "n6" }, () => page.locator("[data-face=n6]").waitFor({ state: "detached" }));
});

test("panning draws no faces anew but those that come into sight or leave it", async () => {
  const whole = () =>
    page.locator("[data-face]:has([data-counters])").evaluateAll((faces) => faces.map(({ dataset }) => dataset.face));
  const view = () => page.locator(".react-flow__viewport").evaluate((shown) => getComputedStyle(shown).transform);
  const pan = () => facesDrawn(async () => {
    const before = await view();
    const { x, y, width, height } = await canvas.pane().boundingBox();
    await canvas.drag({ x: x + 4, y: y + 4 }, { x: x + width / 2, y: y + height / 2 });
    await page.evaluate(drawn);
    assert.notEqual(await view(), before);
  });
  await page.locator(".react-flow__edge").first().waitFor();
  await expectEventually("whole faces of those that nobody could read", async () => (await whole()).length, 0);
  await page.evaluate(drawn);
  assert.equal(await pan(), 0, "too small to be read");
  await canvas.choosePalette("Node 100");
  await expectEventually("the zoom", canvas.zoom, 1.5);
  const before = await whole();
  const count = await pan();
  const after = await whole();
  const changed = [...before, ...after].filter((face) => !before.includes(face) || !after.includes(face)).length;
  assert.ok(changed > 0 && count <= 2 * changed, `${count} faces drawn, ${changed} changed`);
});
