// The page on a phone: the scene is watched and operated by touch, and nothing of it is changed.
import assert from "node:assert/strict";
import { openContext } from "./support/browser.mjs";
import { opened } from "./support/opened.mjs";
import * as is from "./support/page.mjs";
import { browser, host, script, useHost } from "./support/scene.mjs";
import { createNode, expectEventually, must, nodeOf, Type, until } from "./support/session.mjs";
import { beforeEach, test } from "./support/test.mjs";

useHost({
  prepare: async () => {
    await createNode(script, "g", Type.gesture, "Touch gesture 1");
    await createNode(script, "t", Type.textField, "Text field 1");
    await must(script, { op: "devices", list: [{ id: 3, name: "Wall", parser: "direct" }] });
  },
});

let phone;
let sent;

beforeEach(async () => {
  const context = await openContext(browser, { viewport: { width: 390, height: 844 }, hasTouch: true, isMobile: true });
  opened.push(() => context.close());
  phone = await context.newPage();
  sent = [];
  phone.on("websocket", (socket) => socket.on("framesent", ({ payload }) => sent.push(JSON.parse(payload).op)));
  await phone.goto(host.page);
  await phone.locator("article[data-node=g]").waitFor();
});

const openTab = async (name) => {
  await phone.locator(`[data-tab=${name}]`).tap();
  await phone.locator(`#panel-${name} :visible`).first().waitFor();
};
const count = (node, output) => phone.locator(`[data-node="${node}"][data-output="${output}"]`).getAttribute("data-count");

test("nothing is wider than the window, on any tab", async () => {
  for (const name of is.TABS) {
    await openTab(name);
    assert.equal(await phone.evaluate(() => document.documentElement.scrollWidth), 390, name);
    assert.equal(await phone.locator(`#panel-${name}`).evaluate((panel) => panel.scrollWidth <= panel.clientWidth), true, name);
  }
});

test("nothing changes the scene: no graph, no files, no steps, no fields", async () => {
  await must(script, { op: "link", from: "k", output: 154, to: "t", input: 202 });
  await must(script, { op: "object", clip: "Demo", name: "Lamp" });
  await phone.locator("[data-link-from=k]").waitFor();
  const present = () => phone.locator("button, input, select, textarea, [data-graph]").evaluateAll((all) =>
    all.filter((one) => one.checkVisibility()).map((one) => one.ariaLabel ?? one.innerText));
  assert.equal(await phone.locator("[data-graph], .react-flow__handle").count(), 0);
  const found = [...await present()];
  for (const name of ["network", "objects", "hands"]) {
    await openTab(name);
    found.push(...await present());
  }
  assert.deepEqual(found.filter((name) => /^(Open|Save|Undo|Redo|History|Add|Unlink|Remove)/.test(name)), []);
  assert.equal(await phone.locator("article[data-node] :is(input, select, textarea)").count(), 0);
  await phone.keyboard.press("Control+z");
  await phone.keyboard.press("Control+k");
  await openTab("network");
  await phone.locator("[data-listen-only]").tap();
  await until("the state", async () => (await must(script, { op: "network" })).listen_only);
  assert.ok(sent.includes("listen_only") && !sent.includes("undo"), sent.join());
  assert.equal(await phone.locator("[data-palette]").count(), 0);
});

test("inputs show their values, also those that a link brings", async () => {
  const text = phone.locator('article[data-node=t] [data-param-value="202"]');
  assert.equal(await text.textContent(), "empty");
  await must(script, { op: "link", from: "k", output: 154, to: "t", input: 202 });
  await script.request({ op: "event", device: 0, event: 2002, payload: { is: "key", text: "F5" } });
  await expectEventually("the value", () => text.textContent(), "F5");
  assert.equal(await phone.locator(`article[data-node=g] [data-param-value="${is.ENABLE}"]`).textContent(), "on");
});

test("a device is opened, texts are tried, and what came of them is said and shown", async () => {
  await openTab("network");
  await phone.locator("[data-peer=device-3] button").tap();
  await phone.locator("[data-part-card]").getByText("has no address").waitFor();
  await phone.getByRole("button", { name: "Send a test text" }).tap();
  await phone.locator("[data-outcome]", { hasText: "Only shown: the device has no address." }).waitFor();
  await phone.locator("[data-part-card] [data-field=sent-bytes]", { hasText: "Would be sent, 4 bytes" }).waitFor();
  assert.equal(await phone.locator("[data-part-card] [data-part]").count(), 0);
});

test("what is refused is said over what is scrolled, until that is closed", async () => {
  await is.between(phone, { toHost: (request) => (request.op === "listen_only" ? { ...request, on: 0 } : request) });
  await phone.reload();
  await phone.locator("[data-live]").tap();
  await phone.locator("[data-message]", { hasText: "on must be true or false" }).waitFor();
  const { top, bottom } = await phone.locator("[data-message]").evaluate((message) => message.getBoundingClientRect());
  assert.ok(top > 0 && bottom < 844, `${top} to ${bottom}`);
  await phone.getByRole("button", { name: "Close" }).tap();
  await expectEventually("what is said", () => phone.locator("[data-message]").innerText(), "");
  assert.equal(await phone.getByRole("button", { name: "Close" }).count(), 0);
});

test("a node's card counts what it did, says when, and warns where its texts reach nobody", async () => {
  await createNode(script, "s", Type.stringSend, "Sender");
  await must(script, { op: "edit", node: "s", param: 1503, int: 3 });
  const card = phone.locator("article[data-node=s]");
  await expectEventually("the counters", () => card.locator("[data-counters]").textContent(), "fired 0");
  await must(script, { op: "trigger", node: "s", param: 1507 });
  await expectEventually("the counters", () => card.locator("[data-counters]").textContent(), "fired 0 · sent 1");
  const activity = phone.locator("article[data-node=m] [data-active]");
  assert.equal(await activity.count(), 0);
  await must(script, { op: "event", device: 1, event: 3004 });
  await activity.waitFor();
  await must(script, { op: "device", device: 3, name: "Wall", parser: "framed" });
  await card.getByText("Device 3 takes no texts (framed).").waitFor({ state: "attached" });
});

test("where the scene has no objects nothing leads to them", async () => {
  await phone.getByRole("navigation", { name: "Devices" }).waitFor();
  assert.equal(await phone.getByRole("navigation", { name: "Objects" }).count(), 0);
  await must(script, { op: "object", clip: "Demo", name: "Lamp" });
  await phone.getByRole("navigation", { name: "Objects" }).getByRole("button", { name: "Lamp" }).waitFor();
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
  await phone.getByRole("button", { name: "Information" }).tap();
  await phone.locator('[data-log-shown="1"]').waitFor();
  await phone.getByRole("button", { name: "All", exact: true }).tap();
  await phone.locator(".line-text", { hasText: "fired [Hover]" }).tap();
  await until("the card", () =>
    phone.locator("article[data-node=m]").evaluate((card) => Math.abs(card.getBoundingClientRect().top) < 100));
});

test("the log leads to the last of many nodes, from an opened device too", async () => {
  const fields = Array.from({ length: 70 }, (_, index) => nodeOf(`t${index}`, Type.textField, `Field ${index}`));
  const nodes = [...fields, nodeOf("z", Type.mouse, "Last")];
  await must(script, { op: "batch", requests: nodes.map((node) => ({ op: "create", ...node })) });
  await phone.locator("article[data-node=z]").waitFor();
  await openTab("network");
  await phone.locator("[data-peer=device-3] button").tap();
  await phone.locator("[data-part-card]").waitFor();
  await openTab("log");
  await script.request({ op: "event", device: 1, event: 3004 });
  await phone.locator(".line-text", { hasText: "Demo.Last" }).tap();
  await until("the card", () =>
    phone.locator("article[data-node=z]").evaluate((card) => card.getBoundingClientRect().top < innerHeight));
});

test("what fingers hit is large enough, and a larger window has the graph again", async () => {
  const heights = await phone.locator("button:visible, select:visible").evaluateAll((all) =>
    all.filter((one) => !one.matches(".link")).map((one) => one.offsetHeight));
  assert.ok(Math.min(...heights) >= 34, String(Math.min(...heights)));
  await phone.setViewportSize({ width: 1280, height: 800 });
  await phone.locator("[data-graph]").waitFor();
  await phone.setViewportSize({ width: 844, height: 390 }); // a phone sideways
  await phone.locator("[data-graph]").waitFor({ state: "detached" });
});
