// The node cards, the log and the state of the connection.
import assert from "node:assert/strict";
import { test } from "node:test";
import * as is from "./support/page.mjs";
import { browser, endScene, host, page, script, startScene, useScene } from "./support/scene.mjs";
import { expectEventually, until } from "./support/session.mjs";

useScene();

const enable = (view, node) => view.page.locator(`[data-node=${node}][data-param="${is.ENABLE}"]`);
const lines = () => page.page.locator("[data-log] .line");
const shownLines = (count) => expectEventually("lines in the log", () => lines().count(), count);

test("each node has its icon, its graph node's name and its clip", async () => {
  const card = page.page.locator("article[data-node=m]");
  assert.equal(await card.locator("h3").innerText(), "Mouse 1");
  assert.match(await card.innerText(), /Mouse · Demo/);
  const icon = card.locator("img");
  assert.match(await icon.getAttribute("src"), /mouse\.svg$/);
  assert.ok(await icon.evaluate((image) => image.complete && image.naturalWidth > 0));
});

test("switching a node off stops its events, and every page shows the switch", async () => {
  const other = await is.openPage(browser, host);
  await is.turn(enable(page, "k"), false);
  await until("the other page's switch", async () => !(await enable(other, "k").isChecked()));
  await page.focus();
  await page.keyboard.press("a");
  await page.fires(is.LEFT_UP, 1);
  assert.equal(await page.count(is.KEY_DOWN), 0);

  await is.turn(enable(other, "k"), true);
  await until("this page's switch", () => enable(page, "k").isChecked());
  await page.keyboard.press("a");
  await page.fires(is.KEY_DOWN, 1);
  await other.fires(is.KEY_DOWN, 1);
  await other.close();
});

test("after an edit the page reads the node that changed, and no other", async () => {
  const before = page.sent.length;
  const read = () => page.sent.slice(before).filter(({ op }) => op === "inspect" || op === "scene");
  await script.request({ op: "edit", node: "k", param: is.ENABLE, int: 0 });
  await until("the switch", async () => !(await enable(page, "k").isChecked()));
  assert.deepEqual(new Set(read().map(({ node }) => node)), new Set(["k"]));
});

test("nodes that come and go with the scene come and go on the page", async () => {
  const type = "{8164BB40-6B6A-4707-88B7-386BCB0D1B01}";
  await script.request({ op: "create", node: "k2", type, clip: null, graph: "Keyboard 2" });
  await page.page.locator("article[data-node=k2]").waitFor();
  await script.request({ op: "destroy", node: "k2" });
  await page.page.locator("article[data-node=k2]").waitFor({ state: "detached" });
});

test("events that a script fires flash and count on the page, and the counts can be reset", async () => {
  for (let index = 0; index < 3; ++index) {
    await script.request({ op: "event", device: 1, event: 3004 });
  }
  await page.fires(is.HOVER, 3);
  await page.page.getByRole("button", { name: "Reset counts" }).click();
  await page.fires(is.HOVER, 0);
});

test("the log is filtered by level and by text", async () => {
  await script.request({ op: "event", device: 0, event: 2002, payload: { is: "key", text: "needle" } });
  await script.request({ op: "event", device: 1, event: 3004 });
  await script.request({ op: "event", node: "m", record: null });
  await shownLines(3);
  await page.page.getByRole("button", { name: "Errors" }).click();
  await shownLines(1);
  assert.equal(await lines().getAttribute("data-log-level"), "32");
  await page.page.getByRole("button", { name: "Information" }).click();
  await shownLines(2);
  await page.page.locator(".log-search").fill("NEEDLE");
  await shownLines(1);
  assert.match(await lines().innerText(), /\[needle\]/);
  await page.page.getByRole("button", { name: "All", exact: true }).click();
  await page.page.locator(".log-search").fill("");
  await shownLines(3);
});

test("a paused log stands still and goes on with what came meanwhile; clearing empties it", async () => {
  const hover = () => script.request({ op: "event", device: 1, event: 3004 });
  await hover();
  await shownLines(1);
  await page.page.getByRole("button", { name: "Pause" }).click();
  await hover();
  await hover();
  await page.page.getByRole("button", { name: "Go on (2 new)" }).waitFor();
  await shownLines(1);
  await page.page.getByRole("button", { name: /Go on/ }).click();
  await shownLines(3);
  await page.page.getByRole("button", { name: "Clear" }).click();
  await shownLines(0);
});

test("the log keeps its newest thousand lines", async () => {
  const key = (event, index) => script.request({ op: "event", device: 0, event, payload: { is: "key", text: `line ${index}` } });
  await Promise.all(Array.from({ length: 505 }, (_, index) => [key(2002, index), key(2003, index)]).flat());
  await page.fires(is.KEY_UP, 505);
  await shownLines(1000);
  assert.match(await lines().first().innerText(), /\[line 5\]/);
  assert.match(await lines().last().innerText(), /\[line 504\]/);
});

test("a page without its host says so, and comes back by itself with the host", async () => {
  const port = Number(host.address.split(":")[1]);
  await endScene();
  await page.page.locator("[data-connection=lost]").waitFor();
  assert.match(await page.page.getByRole("alert").innerText(), /Connection lost/);

  await startScene({ port });
  await page.page.locator("[data-connection=open]").waitFor({ timeout: 15000 });
  assert.equal(await page.page.getByRole("alert").count(), 0);
  await page.focus();
  await page.keyboard.press("a");
  await page.fires(is.KEY_UP, 1);
  page.problems.length = 0; // the browser tells of each connection that failed
});

test("a host that stalls is told, and so is that it goes on", async () => {
  const age = page.page.locator("[data-frame-age]");
  assert.match(await age.innerText(), /^last frame < [12] s ago$/);
  process.kill(host.pid, "SIGSTOP");
  try {
    await page.page.locator("[data-connection=stalled]").waitFor();
    assert.match(await page.page.getByRole("alert").innerText(), /stalled/);
    await until("a growing age", async () => Number(/\d+/.exec(await age.innerText())[0]) > 4);
  } finally {
    process.kill(host.pid, "SIGCONT");
  }
  await page.page.locator("[data-connection=open]").waitFor();
  assert.equal(await page.page.getByRole("alert").count(), 0);
  assert.match(await age.innerText(), /^last frame < [12] s ago$/);
});

test("no script or style of the page is refused by its own policy", async () => {
  assert.deepEqual(page.problems, []);
});
