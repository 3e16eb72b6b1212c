// What stands around the graph: the node cards, the log, the size of the panels, the state of the connection.
import assert from "node:assert/strict";
import { canvasOf, drawn } from "./support/canvas.mjs";
import * as is from "./support/page.mjs";
import { browser, host, page, script, startScene, useScene } from "./support/scene.mjs";
import { expectEventually, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

useScene();

const enable = (view, node) => view.page.locator(`[data-node=${node}][data-param="${is.ENABLE}"]`);
const LOG_LIMIT = 10_000;
const line = (number) => ({ level: 4, text: `[Demo.Mouse 1.Mouse] number ${number}.` });

/** Has the page open anew, told of so many lines in the log; answers with what tells it more. */
async function openWithLog(count) {
  const kept = Array.from({ length: count }, (_, index) => ({ n: index + 1, ms: 0, ...line(index + 1) }));
  let asked;
  const tell = await is.between(page.page, {
    toHost(request) {
      asked = request.op === "log" ? request.id : asked;
      return request;
    },
    toPage: (messages) => messages.map((one) => (one.id === asked && one.lines ? { ...one, lines: kept } : one)),
  });
  await page.page.reload();
  await shows(count);
  return (log) => tell([{ push: "happened", frame: 0, log }]);
}

const shows = (number) => page.page.locator(`[data-log-shown="${number}"]`).waitFor();
const lines = () => page.page.locator("[data-log] .log-line");
const shownLines = (count) => expectEventually("lines in the log", () => lines().count(), count);

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
});

test("what was done a while ago doesn't flash when it's drawn anew", async () => {
  await script.request({ op: "event", device: 1, event: 3004 });
  await page.page.locator("article[data-node=m] .node-activity", { hasText: /[2-9] s ago/ }).waitFor();
  await page.page.evaluate(is.watchLights);
  await page.page.locator("[data-line]").last().click();
  await expectEventually("cards", () => page.page.locator("article[data-node]").count(), 1);
  await page.page.getByText("Show all").click();
  await until("all cards", async () => (await page.page.locator("article[data-node]").count()) > 1);
  assert.equal(await is.lights(page.page, "*"), 0);
  for (const part of ["article .output", "article .node-activity", "[data-face] .face-output"]) {
    await until(`a flash in ${part}`, async () => {
      await script.request({ op: "event", device: 1, event: 3004 }); // what is drawn late doesn't flash
      return (await is.lights(page.page, `${part} .event-lamp`)) > 0;
    });
  }
});

test("a paused log stands still and goes on with what came meanwhile; clearing empties it", async () => {
  const hover = () => script.request({ op: "event", device: 1, event: 3004 });
  await hover();
  await shownLines(1);
  await page.page.getByText("1 line", { exact: true }).waitFor();
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

test("ten thousand lines are kept and searched, and those near what is seen are drawn", async () => {
  const log = await openWithLog(LOG_LIMIT);
  const linesDrawn = () => page.page.locator("[data-line]").count();
  const isSeen = (number) => page.page.locator(`[data-line="${number}"]`).evaluate((line) => {
    const [box, list] = [line.getBoundingClientRect(), line.closest("[data-log]").getBoundingClientRect()];
    return box.top >= list.top - 1 && box.bottom <= list.bottom + 1;
  });
  assert.ok(await isSeen(LOG_LIMIT));
  assert.ok((await linesDrawn()) < 200);
  await log([line(LOG_LIMIT + 1), line(LOG_LIMIT + 2)]);
  await until("the newest line", () => isSeen(LOG_LIMIT + 2));
  await shows(LOG_LIMIT);

  await page.page.locator(".log-search").fill("NUMBER 17.");
  await shows(1);
  assert.ok(await isSeen(17));
  await page.page.locator(".log-search").fill("");
  await shows(LOG_LIMIT);
  await until("the newest line", () => isSeen(LOG_LIMIT + 2));

  // Away from the end it stands still, wherever it's scrolled to.
  const list = page.page.locator("[data-log]");
  await list.evaluate((log) => (log.scrollTop = (log.clientHeight - log.scrollHeight) / 2));
  const middle = () => list.evaluate((log) => {
    const { left, top, height } = log.getBoundingClientRect();
    return Number(document.elementFromPoint(left + 20, top + height / 2)?.closest("[data-line]")?.getAttribute("data-line"));
  });
  await until("lines about the middle", async () => Math.abs((await middle()) - LOG_LIMIT / 2) < 500);
  await page.page.evaluate(drawn);
  const [before, place] = [await middle(), await list.evaluate((log) => log.scrollTop)];
  await log([line(LOG_LIMIT + 3)]);
  await page.page.getByRole("button", { name: "Go on (1 new)" }).waitFor();
  assert.deepEqual([await middle(), await list.evaluate((log) => log.scrollTop)], [before, place]);
  await list.hover();
  for (let turn = 0, seen = before; turn < 30; ++turn) {
    await page.page.mouse.wheel(0, -200);
    await until("lines further up", async () => (await middle()) < seen && (await middle()) > seen - 40);
    seen = await middle();
  }
  assert.ok((await linesDrawn()) < 200);
  await page.page.getByRole("button", { name: "Go on (1 new)" }).click();
  await until("the newest line", () => isSeen(LOG_LIMIT + 3));
  await list.evaluate((log) => (log.scrollTop = -log.scrollHeight));
  await until("the first line that is kept", async () => (await page.page.locator('[data-line="4"]').count()) === 1 && isSeen(4));
  await list.evaluate((log) => (log.scrollTop = 0));
  await page.page.getByRole("button", { name: "Pause" }).waitFor();
  await until("the newest line", () => isSeen(LOG_LIMIT + 3));
});

test("lines are marked by keys, which screen readers are told, and lead to their nodes, as by clicks", async () => {
  const log = await openWithLog(LOG_LIMIT);
  const list = page.page.locator("[data-log]");
  const marked = () => list.evaluate((log) => {
    const line = document.getElementById(log.getAttribute("aria-activedescendant"));
    return line?.ariaSelected === "true" ? line.dataset.line : null;
  });
  assert.equal(await marked(), null);
  await list.focus();
  for (const [key, number] of [["ArrowUp", LOG_LIMIT], ["ArrowUp", LOG_LIMIT - 1], ["Home", 1], ["ArrowDown", 2], ["End", LOG_LIMIT]]) {
    await page.page.keyboard.press(key);
    await expectEventually("the marked line", marked, String(number));
  }
  await list.hover();
  await page.page.mouse.wheel(0, -400);
  const isSeen = () => list.evaluate((log) => log.scrollTop > -20);
  await until("lines further up", async () => !(await isSeen()));
  await page.page.keyboard.press("End");
  await until("the marked line", isSeen);
  await log([line(LOG_LIMIT + 1)]);
  await page.page.getByRole("button", { name: "Go on (1 new)" }).waitFor();
  await page.page.keyboard.press("Enter");
  const chosen = page.page.locator(".react-flow__node.selected [data-face=m]");
  await chosen.waitFor();
  await page.page.keyboard.press("Escape");
  await chosen.waitFor({ state: "detached" });
  await page.page.locator("[data-line]").last().click();
  await chosen.waitFor();
  await expectEventually("cards", () => page.page.locator("article[data-node]").count(), 1);
});

test("where the host refuses to listen only, that is said, and badge and switch stay as they were", async () => {
  const refuse = ({ id }) => void tell([{ ok: false, id, error: "the session has ended" }]);
  const tell = await is.between(page.page, {
    toHost: (request) => (request.op === "listen_only" ? refuse(request) : request),
  });
  await page.page.reload();
  const message = page.page.locator("[data-graph-message]", { hasText: "the session has ended" });
  await page.page.locator("[data-live=true]").click();
  await message.waitFor();
  await page.page.locator("[data-tab=network]").click();
  await page.page.locator("[data-listen-only]").click();
  await until("the switch", async () => !(await page.page.locator("[data-listen-only]").isChecked()));
  assert.equal(await page.page.locator("[data-live=true]").count(), 1);
});

test("the panels' height is changed by dragging their edge and by keys, and the surface keeps its size", async () => {
  const canvas = canvasOf(page.page, script);
  const edge = page.page.getByRole("separator");
  const height = async () => Math.round((await page.page.locator(".dock").boundingBox()).height);
  const surface = async () => JSON.stringify(await page.surface.boundingBox());
  const [before, seen] = [await height(), await surface()];
  const from = await canvas.middleOf(edge);
  await canvas.drag(from, { x: from.x, y: from.y - 60 });
  await expectEventually("the height", height, before + 60);
  await edge.focus();
  await page.keyboard.press("ArrowDown");
  await expectEventually("the height", height, before + 36);
  for (const tab of ["keyboard", "network", "hands"]) {
    await page.page.locator(`[data-tab=${tab}]`).click();
    assert.equal(await surface(), seen, tab);
  }
  await page.page.evaluate(() => localStorage.removeItem("iohost.dock-height"));
});

test("in a narrow window the scene's name is whole, and the top bar in two rows", async () => {
  const name = page.page.locator(".scene-file");
  for (const width of [1023, 700]) {
    await page.page.setViewportSize({ width, height: 800 });
    await until("the whole name", () => name.evaluate((box) => box.scrollWidth <= box.clientWidth));
    assert.ok(await page.page.evaluate(() => document.documentElement.scrollWidth <= innerWidth));
  }
  await page.page.setViewportSize({ width: 1024, height: 600 });
  await until("nothing to scroll", () => page.page.evaluate(() => document.documentElement.scrollHeight <= innerHeight));
});

test("the render surface is enlarged and made smaller again", async () => {
  const width = async () => (await page.surface.boundingBox()).width;
  const before = await width();
  const button = page.page.getByRole("button", { name: "Enlarge the render surface" });
  await button.click();
  await until("a larger surface", async () => (await width()) > 1.2 * before);
  await button.click();
  await expectEventually("the width", width, before);
});

test("a page without its host says so, comes back with it, and releases nothing that went down meanwhile", async () => {
  const port = Number(host.address.split(":")[1]);
  assert.equal(await host.end(), 0);
  await page.page.locator("[data-connection=lost]").waitFor();
  assert.match(await page.page.getByRole("alert").innerText(), /Connection lost/);
  await page.page.locator("[data-tab=keyboard]").click();
  const notLoaded = page.page.getByText("This couldn't be loaded.");
  await notLoaded.waitFor();
  await page.page.locator("[data-tab=network]").click();
  const forAll = [page.page.locator("[data-live]"), page.page.locator("[data-listen-only]"), page.page.getByRole("button", { name: "Reset counts" })];
  const areDisabled = () => Promise.all(forAll.map((one) => one.isDisabled()));
  assert.deepEqual(await areDisabled(), [true, true, true]);
  await page.page.getByRole("button", { name: "Save as" }).click();
  await page.page.locator("[data-scene-name]:focus").waitFor();
  assert.equal(await page.page.locator("[data-download]").count(), 0); // there is nothing to take along
  await page.keyboard.press("Escape");
  await page.page.keyboard.press("Control+z");
  const message = page.page.locator("[data-graph-message]");
  await expectEventually("what is said", () => message.innerText(), "Not connected");
  await page.surface.click({ position: { x: 20, y: 20 } }); // the alert has moved it
  const verdict = page.page.locator("[data-verdict]");
  await verdict.getByText("Not connected").waitFor();
  await page.mouse.down();
  await page.keyboard.down("a");

  await startScene({ port });
  await page.page.locator("[data-connection=open]").waitFor();
  await notLoaded.waitFor({ state: "detached" });
  await verdict.waitFor({ state: "detached" });
  await expectEventually("what is said", () => message.innerText(), "");
  assert.equal(await page.page.getByRole("alert").count(), 0);
  assert.deepEqual(await areDisabled(), [false, false, false]);
  page.sent.length = 0;
  await page.keyboard.up("a");
  await page.mouse.up();
  await page.keyboard.press("b");
  await page.mouse.down();
  await page.mouse.up();
  await page.fires(is.LEFT_UP, 1);
  await page.fires(is.KEY_UP, 1);
  const pressesAndReleases = page.sentEvents().filter(([event]) => [2002, 2003, 3005, 3006].includes(event));
  assert.deepEqual(
    pressesAndReleases.map(([event, payload]) => [event, payload.text ?? payload.pointer]),
    [[2002, "b"], [2003, "b"], [3005, page.pointer(0)], [3006, page.pointer(0)]],
  );
  await page.close();
  page.problems.length = 0; // the browser tells of each connection that failed
});

test("a host that stalls is told, and so is that it goes on", async () => {
  const age = page.page.locator("[data-frame-age]");
  const isFresh = async () => /^last frame < [12] s ago$/.test(await age.innerText());
  await page.page.clock.install();
  await until("a fresh frame", isFresh);
  process.kill(host.pid, "SIGSTOP");
  try {
    await page.page.clock.fastForward(5000);
    await page.page.locator("[data-connection=stalled]").waitFor();
    assert.match(await page.page.getByRole("alert").innerText(), /stalled/);
    await until("a growing age", async () => Number(/\d+/.exec(await age.innerText())[0]) > 4);
  } finally {
    process.kill(host.pid, "SIGCONT");
  }
  await page.page.locator("[data-connection=open]").waitFor();
  assert.equal(await page.page.getByRole("alert").count(), 0);
  await until("a fresh frame", isFresh);
});
