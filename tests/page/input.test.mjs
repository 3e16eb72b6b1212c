// A person's input on the render surface reaches the nodes, and the page shows what came of it. Nothing stays held when the
// page can't see any more how it ends.
import assert from "node:assert/strict";
import * as is from "./support/page.mjs";
import { browser, host, page, script, useScene } from "./support/scene.mjs";
import { expectEventually, must, openSession, postedIn, timesFired, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

useScene();

test("keys reach the nodes, not the browser, only while the surface has the focus; Tab takes the focus away", async () => {
  await page.page.locator(".log-search").focus();
  await page.keyboard.press("q");
  await page.focus();
  await page.fires(is.LEFT_UP, 1);
  await page.keyboard.press("Tab");
  assert.equal(await page.surface.evaluate((element) => element === document.activeElement), false);
  await page.keyboard.press("w");
  await page.focus();
  await page.fires(is.LEFT_UP, 2);
  assert.equal(await page.count(is.KEY_DOWN), 0);
  const address = page.page.url();
  await page.keyboard.press("F5");
  await page.keyboard.press("Control+f");
  await page.shows(is.KEY_TEXT, "f");
  assert.equal(page.page.url(), address);
  assert.equal(await timesFired(script, is.KEY_DOWN), 3);
});

test("moving in, resting, moving about and out fires enter, hover and leave, and changes the position", async () => {
  await page.moveTo(200, 100);
  await page.fires(is.HOVER, 1);
  await page.moveTo(210, 100);
  await page.fires(is.HOVER, 2);
  await page.moveTo(120, 80);
  await page.fires(is.ENTER, 1);
  await page.shows(is.PIXEL_X, "120");
  await page.shows(is.PIXEL_Y, "80");
  await page.moveTo(page.box.height / 2, page.box.height / 4);
  await page.shows(is.RELATIVE_X, "500");
  await page.shows(is.RELATIVE_Y, "750");
  const readout = (which) => page.page.locator(`[data-readout=${which}]`).innerText();
  await expectEventually("the place that the surface shows", () => readout("relative"), "500, 750");
  assert.equal(await readout("pixels"), `${Math.floor(page.box.height / 2)}, ${Math.floor(page.box.height / 4)}`);
  await page.mouse.move(5, 5);
  await page.fires(is.LEAVE, 1);
  assert.equal(await page.count(is.ENTER), 1);
  await page.shows(is.RELATIVE_Y, "750");
});

test("each of three buttons that are held at once fires its own events and shows as held", async () => {
  const buttons = [
    ["left", is.LEFT_DOWN, is.LEFT_UP, is.BUTTON_LEFT],
    ["middle", is.MIDDLE_DOWN, is.MIDDLE_UP, is.BUTTON_MIDDLE],
    ["right", is.RIGHT_DOWN, is.RIGHT_UP, is.BUTTON_RIGHT],
  ];
  await page.moveTo(200, 100);
  const are = async (...values) => {
    for (const [index, [, , , held]] of buttons.entries()) {
      await page.shows(held, values[index]);
    }
  };
  for (const [button] of buttons) {
    await page.mouse.down({ button });
  }
  await are("on", "on", "on");
  await page.mouse.up({ button: "left" });
  await are("off", "on", "on");
  await page.mouse.up({ button: "middle" });
  await page.mouse.up({ button: "right" });
  await are("off", "off", "off");
  for (const [, down, up] of buttons) {
    await page.fires(down, 1);
    await page.fires(up, 1);
  }
  const events = [...buttons.map(([, down]) => down), ...buttons.map(([, , up]) => up)];
  const fired = () => postedIn(script.pushes).filter(([, output]) => events.some(([, one]) => one === output));
  await until("all events", () => fired().length === events.length);
  assert.deepEqual(fired(), events);
});

test("a movement to its place goes right before each button event", async () => {
  await page.moveTo(50, 60);
  await page.mouse.down();
  await page.moveTo(70, 80);
  await page.mouse.up();
  await page.fires(is.LEFT_UP, 1);
  const events = page.sentEvents();
  for (const [button, x, y] of [[3005, 50, 60], [3006, 70, 80]]) {
    const index = events.findIndex(([event]) => event === button);
    const [moveId, movePayload] = events[index - 1];
    assert.equal(moveId, 3013);
    assert.deepEqual([movePayload.x, movePayload.y], [x, y]);
    assert.deepEqual(events[index][1], movePayload);
  }
});

test("a drag that ends outside the surface still brings its release, and leaves then", async () => {
  await page.moveTo(200, 100);
  await page.mouse.down();
  await page.mouse.move(5, 5, { steps: 4 });
  await page.mouse.up();
  const ends = () => postedIn(script.pushes).filter(([, output]) => output === is.LEFT_UP[1] || output === is.LEAVE[1]);
  await until("both", () => ends().length === 2);
  assert.deepEqual(ends(), [is.LEFT_UP, is.LEAVE]);
});

test("movements between two frames are told one by one, and arrive, too, from browsers that don't tell them apart", async () => {
  await page.moveTo(10, 10);
  await page.fires(is.ENTER, 1);
  page.sent.length = 0;
  const wire = await page.page.context().newCDPSession(page.page);
  const places = Array.from({ length: 60 }, (_, index) => [20 + index, 20 + 2 * index]);
  // All of them at once, so that the browser gathers several to a frame of its own.
  await Promise.all(
    places.map(([x, y]) =>
      wire.send("Input.dispatchMouseEvent", { type: "mouseMoved", x: page.box.left + x, y: page.box.top + y }),
    ),
  );
  await page.shows(is.PIXEL_Y, "138");
  const moves = page.sentEvents().filter(([event]) => event === 3013);
  assert.deepEqual(moves.map(([, { x, y }]) => [x, y]), places);

  await page.page.evaluate(() => {
    PointerEvent.prototype.getCoalescedEvents = function () {
      return [new PointerEvent("pointermove", { clientX: this.clientX, clientY: this.clientY })];
    };
  });
  await page.moveTo(30, 40);
  await page.shows(is.PIXEL_X, "30");
  await page.page.evaluate(() => delete PointerEvent.prototype.getCoalescedEvents);
  await page.moveTo(50, 60);
  await page.shows(is.PIXEL_X, "50");
  assert.deepEqual(new Set(page.sentEvents().map(([, { pointer }]) => pointer)), new Set([page.pointer(0)]));
});

test("input of different kinds keeps its order, and a key shows its text and is logged", async () => {
  await page.focus();
  await page.fires(is.LEFT_UP, 1);
  script.pushes.length = 0;
  await page.keyboard.down("a");
  await page.mouse.down();
  await page.keyboard.up("a");
  await page.mouse.wheel(0, 120);
  await page.mouse.up();
  await page.fires(is.LEFT_UP, 2);
  const fired = postedIn(script.pushes).filter(([, output]) => output !== is.HOVER[1]);
  assert.deepEqual(fired, [is.KEY_DOWN, is.LEFT_DOWN, is.KEY_UP, is.WHEEL_DOWN, is.LEFT_UP]);
  await page.shows(is.KEY_TEXT, "a");
  await page.logs("[Demo.Keyboard 1.Keyboard] fired [Pressed] for the key [a]");
  await page.logs("[Demo.Keyboard 1.Keyboard] fired [Released] for the key [a]");
});

test("the surface losing the focus releases held keys and says so; their real ups do nothing more, and with none held nothing is sent", async () => {
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
  page.sent.length = 0;
  await page.keyboard.press("c");
  await page.page.locator(".log-search").focus();
  await page.fires(is.KEY_UP, 3);
  assert.equal(page.sent.some(({ op }) => op === "release_held"), false);
});

test("the page losing the focus or being hidden releases keys and buttons", async () => {
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

  await page.keyboard.down("b");
  await page.page.evaluate(() => {
    Object.defineProperty(document, "hidden", { configurable: true, value: true });
    document.dispatchEvent(new Event("visibilitychange"));
    delete document.hidden;
  });
  await page.fires(is.KEY_UP, 2);
  await page.logs("the page was hidden");
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
