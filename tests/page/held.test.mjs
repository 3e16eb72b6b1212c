// Nothing stays held when the page can't see any more how it ends.
import assert from "node:assert/strict";
import { after, afterEach, before, beforeEach, test } from "node:test";
import { startBrowser } from "./support/browser.mjs";
import { startHost } from "./support/host.mjs";
import * as is from "./support/page.mjs";
import { createScene, logIn, openSession, postedIn, until } from "./support/session.mjs";

let browser;
let host;
let script;
let page;

before(async () => {
  browser = await startBrowser();
});
after(() => browser.close());

beforeEach(async () => {
  host = await startHost();
  script = await createScene(host.address);
  page = await is.openPage(browser, host);
});
afterEach(async () => {
  await page.close();
  await script.close();
  assert.equal(await host.end(), 0);
});

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
  await page.logs("synthetic release of the left button of pointer 0: the page lost the focus");

  // The button that is still down in fact presses nothing when the pointer moves, nor releases anything.
  await page.moveTo(80, 90);
  await page.shows(is.PIXEL_X, "80");
  await page.mouse.up();
  await page.moveTo(90, 90);
  await page.shows(is.PIXEL_X, "90");
  assert.equal(await page.count(is.LEFT_DOWN), 1);
  assert.equal(await page.count(is.LEFT_UP), 1);
  await page.mouse.down();
  await page.fires(is.LEFT_DOWN, 2);
  await page.mouse.up();
});

test("a hidden page and a cancelled pointer release what is held", async () => {
  await page.focus();
  await page.keyboard.down("a");
  await page.page.evaluate(() => {
    Object.defineProperty(document, "hidden", { configurable: true, value: true });
    document.dispatchEvent(new Event("visibilitychange"));
    delete document.hidden;
  });
  await page.fires(is.KEY_UP, 1);
  await page.mouse.down();
  await page.fires(is.LEFT_DOWN, 2);
  await page.surface.dispatchEvent("pointercancel");
  await page.fires(is.LEFT_UP, 2);
  await page.logs("the page was hidden");
  await page.logs("the pointer was cancelled");
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
  await other.close();
  await page.fires(is.RIGHT_UP, 1);
  await page.fires(is.KEY_UP, 1);
  await page.shows(is.BUTTON_RIGHT, "off");
  await page.logs("synthetic release of the right button of pointer 0");
});

test("a script's connection that breaks off is released with the reason in the log", async () => {
  const other = await openSession(host.address);
  await other.request({ op: "event", device: 0, event: 2002, payload: { is: "key", text: "s" } });
  await until("the key down", () => postedIn(script.pushes).length === 1);
  other.socket.terminate();
  await until("the key up", () => postedIn(script.pushes).length === 2);
  assert.deepEqual(postedIn(script.pushes), [is.KEY_DOWN, is.KEY_UP]);
  assert.ok(logIn(script.pushes).includes('synthetic release of the key "s": its connection closed'));
});

test("what one connection holds, another's release doesn't let go", async () => {
  const other = await openSession(host.address);
  await other.request({ op: "event", device: 0, event: 2002, payload: { is: "key", text: "s" } });
  const reply = await script.request({ op: "release_held" });
  assert.deepEqual(reply.released, []);
  const own = await other.request({ op: "release_held" });
  assert.deepEqual(own.released, [{ device: 0, event: 2003, payload: { is: "key", text: "s" } }]);
  await other.close();
});
