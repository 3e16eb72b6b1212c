// Nothing stays held when the page can't see any more how it ends.
import assert from "node:assert/strict";
import * as is from "./support/page.mjs";
import { browser, host, page, script, useScene } from "./support/scene.mjs";
import { must, openSession, timesFired, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

useScene();

test("the surface losing the focus releases held keys, says so in the log, and the real ups do nothing more", async () => {
  await page.focus();
  await page.keyboard.down("a");
  await page.keyboard.down("b");
  await page.fires(is.KEY_DOWN, 2);
  await page.page.locator(".log-search").focus();
  await page.fires(is.KEY_UP, 2);
  await page.logs('synthetic release of the key "a": the surface lost the focus');
  await page.logs('synthetic release of the key "b": the surface lost the focus');
  await page.keyboard.up("a");
  await page.keyboard.up("b");
  await page.focus();
  await page.keyboard.press("c");
  await page.fires(is.KEY_UP, 3);
});

test("the page losing the focus releases keys and buttons at the pointer's last place", async () => {
  await page.moveTo(40, 50);
  await page.mouse.down();
  await page.keyboard.down("a");
  await page.moveTo(60, 70);
  await page.shows(is.BUTTON_LEFT, "on");
  await page.page.evaluate(() => window.dispatchEvent(new Event("blur")));
  await page.fires(is.LEFT_UP, 1);
  await page.fires(is.KEY_UP, 1);
  await page.shows(is.BUTTON_LEFT, "off");
  await page.logs(`synthetic release of the left button of pointer ${page.pointer(0)}: the page lost the focus`);

  // The button that is still down in fact presses nothing when the pointer moves, nor releases anything.
  await page.moveTo(80, 90);
  await page.shows(is.PIXEL_X, "80");
  await page.mouse.up();
  await page.moveTo(90, 90);
  await page.shows(is.PIXEL_X, "90");
  assert.equal(await timesFired(script, is.LEFT_DOWN), 1);
  assert.equal(await timesFired(script, is.LEFT_UP), 1);
  await page.mouse.down();
  await page.fires(is.LEFT_DOWN, 2);
  await page.mouse.up();
});

test("a minimized window takes the focus from the page, and with it what is held", async () => {
  await page.moveTo(40, 50);
  await page.mouse.down();
  await page.keyboard.down("a");
  await page.fires(is.KEY_DOWN, 1);
  const browserSession = await page.page.context().newCDPSession(page.page);
  // Otherwise the browser tells each page that it has the focus.
  await browserSession.send("Emulation.setFocusEmulationEnabled", { enabled: false });
  const { windowId } = await browserSession.send("Browser.getWindowForTarget");
  await browserSession.send("Browser.setWindowBounds", { windowId, bounds: { windowState: "minimized" } });
  await until("the loss of the focus", async () => !(await page.page.evaluate(() => document.hasFocus())));
  await page.fires(is.KEY_UP, 1);
  await page.fires(is.LEFT_UP, 1);
  // With the page's focus its surface's goes, too, and that first.
  await page.logs('synthetic release of the key "a": the surface lost the focus');
  await page.logs(`synthetic release of the left button of pointer ${page.pointer(0)}: the page lost the focus`);
  await page.held("virtual key 65").waitFor({ state: "detached" });
});

test("a hidden page releases what is held", async () => {
  await page.focus();
  await page.keyboard.down("a");
  await page.page.evaluate(() => {
    Object.defineProperty(document, "hidden", { configurable: true, value: true });
    document.dispatchEvent(new Event("visibilitychange"));
    delete document.hidden;
  });
  await page.fires(is.KEY_UP, 1);
  await page.logs("the page was hidden");
});

test("losing the focus with nothing held says and sends nothing", async () => {
  await page.focus();
  await page.keyboard.press("a");
  await page.page.locator(".log-search").focus();
  await page.fires(is.KEY_UP, 1);
  assert.equal(page.sent.some(({ op }) => op === "release_held"), false);
});

test("a page that is closed in mid-press is released for everybody else", async () => {
  const other = await is.openPage(browser, host);
  await other.moveTo(30, 40);
  await other.mouse.down({ button: "right" });
  await other.keyboard.down("z");
  await page.shows(is.BUTTON_RIGHT, "on");
  await page.fires(is.KEY_DOWN, 1);
  const mouse = other.pointer(0);
  await other.close();
  await page.fires(is.RIGHT_UP, 1);
  await page.fires(is.KEY_UP, 1);
  await page.shows(is.BUTTON_RIGHT, "off");
  await page.logs(`synthetic release of the right button of pointer ${mouse}`);
});

const age = async (what) => parseFloat(await page.held(what).locator(".held-age").innerText());

test("what is held shows with its age, until it's let go", async () => {
  await page.focus();
  await page.keyboard.down("a");
  await page.mouse.down();
  await page.held("key a").waitFor();
  await page.held("virtual key 65").waitFor();
  await page.held(`left button of pointer ${page.pointer(0)}`).waitFor();
  await until("a growing age", async () => (await age("key a")) >= 1);
  await page.keyboard.up("a");
  await page.held("key a").waitFor({ state: "detached" });
  await page.held("virtual key 65").waitFor({ state: "detached" });
  assert.equal(await page.held(`left button of pointer ${page.pointer(0)}`).count(), 1);
  await page.mouse.up();
  await until("nothing held", async () => (await page.page.locator("[data-readout=held]").innerText()) === "nothing");
});

test("what others hold shows too, since when they hold it", async () => {
  const other = await openSession(host.address);
  await must(other, { op: "event", device: 0, event: 2002, payload: { is: "key", text: "s" } });
  await page.held("key s").filter({ hasText: "elsewhere" }).waitFor();
  await until("a second", async () => (await age("key s")) >= 1);
  const late = await is.openPage(browser, host);
  await late.held("key s").waitFor();
  assert.ok(parseFloat(await late.held("key s").locator(".held-age").innerText()) >= 1);
  await other.close();
  await page.held("key s").waitFor({ state: "detached" });
});

test("one button lets go of everything, whoever holds it, and the pages forget it", async () => {
  const other = await is.openPage(browser, host);
  await other.focus();
  await other.keyboard.down("x");
  await page.moveTo(40, 50);
  await page.touch.down([[1, 100, 100]]);
  await page.held("key x").waitFor();
  await page.held(`left button of pointer ${page.pointer(1)}`).waitFor();
  await page.page.getByRole("button", { name: "Release all" }).click();
  await page.held("key x").waitFor({ state: "detached" });
  await page.held(`left button of pointer ${page.pointer(1)}`).waitFor({ state: "detached" });
  await page.logs('synthetic release of the key "x": somebody released everything');
  await page.logs(`synthetic release of the left button of pointer ${page.pointer(1)}: somebody released everything`);

  // The key that is down in fact says nothing more: neither by its repeats nor by its end.
  await other.held("key x").waitFor({ state: "detached" });
  await page.fires(is.KEY_UP, 1);
  await other.keyboard.down("x");
  await other.keyboard.up("x");
  await other.keyboard.press("y");
  await page.fires(is.KEY_UP, 2);
  assert.equal(await page.count(is.KEY_DOWN), 2);
});
