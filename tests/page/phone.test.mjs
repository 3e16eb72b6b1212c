// The page on a phone: everything but the graph, by touch.
import assert from "node:assert/strict";
import { afterEach, beforeEach, test } from "node:test";
import * as is from "./support/page.mjs";
import { browser, host, script, useScene } from "./support/scene.mjs";
import { createNode, expectEventually, must, Type, until } from "./support/session.mjs";

const TABS = ["log", "keyboard", "hands", "network", "json", "objects"];

useScene({
  prepare: async () => {
    await createNode(script, "g", Type.gesture, "Touch gesture 1");
    await createNode(script, "t", Type.textField, "Text field 1");
    await must(script, { op: "devices", list: [{ id: 3, name: "Wall", parser: "direct" }] });
  },
});

let context;
let phone;

beforeEach(async () => {
  context = await browser.newContext({ viewport: { width: 390, height: 844 }, hasTouch: true, isMobile: true });
  phone = await context.newPage();
  await phone.goto(host.page);
  await phone.locator("article[data-node=g]").waitFor();
});
afterEach(() => context.close());

const openTab = async (name) => {
  await phone.locator(`[data-tab=${name}]`).tap();
  await phone.locator(`#panel-${name} :visible`).first().waitFor();
};
const count = (node, output) => phone.locator(`[data-node="${node}"][data-output="${output}"]`).getAttribute("data-count");
const enabled = () => phone.locator(`article[data-node=g] [data-param="${is.ENABLE}"]`);

test("nothing is wider than the window, on any tab", async () => {
  for (const name of TABS) {
    await openTab(name);
    assert.equal(await phone.evaluate(() => document.documentElement.scrollWidth), 390, name);
    assert.equal(await phone.locator(`#panel-${name}`).evaluate((panel) => panel.scrollWidth <= panel.clientWidth), true, name);
  }
});

test("there is no graph to edit", async () => {
  assert.equal(await phone.locator("[data-graph], .react-flow__handle, [data-undo]:visible").count(), 0);
});

test("touches on the render surface reach the nodes", async () => {
  await phone.locator("[data-surface]").tap({ position: { x: 100, y: 60 } });
  await expectEventually("the tap", () => count(...is.TAP), "1");
  await expectEventually("the click", () => count(...is.LEFT_DOWN), "1");
});

test("the log is read, filtered and leads to the node's card", async () => {
  await script.request({ op: "event", device: 1, event: 3004 });
  await phone.getByRole("button", { name: "Errors" }).tap();
  await phone.locator('[data-log-shown="0"]').waitFor();
  await phone.getByRole("button", { name: "All", exact: true }).tap();
  await phone.locator(".line-text", { hasText: "fired [Hover]" }).tap();
  await until("the card", () =>
    phone.locator("article[data-node=m]").evaluate((card) => Math.abs(card.getBoundingClientRect().top) < 100));
});

test("nodes are switched and devices are watched by touch", async () => {
  await enabled().tap();
  await until("the switch", async () => !(await enabled().isChecked()));
  await openTab("network");
  await phone.locator("[data-peer=device-3]", { hasText: "Wall" }).waitFor();
  await phone.locator("[data-listen-only]").tap();
  await until("the state", async () => (await must(script, { op: "network" })).listen_only);
});

test("what fingers hit is large enough, and a larger window has the graph again", async () => {
  const heights = await phone.locator("button:visible, select:visible").evaluateAll((all) =>
    all.filter((one) => !one.matches(".link")).map((one) => one.offsetHeight));
  assert.ok(Math.min(...heights) >= 34, String(Math.min(...heights)));
  await phone.setViewportSize({ width: 1280, height: 800 });
  await phone.locator("[data-graph]").waitFor();
});
