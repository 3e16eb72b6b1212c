// A person's input on the render surface reaches the nodes, and the page shows what came of it.
import assert from "node:assert/strict";
import * as is from "./support/page.mjs";
import { page, script, useScene } from "./support/scene.mjs";
import { expectEventually, postedIn, timesFired, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

useScene();

test("a key fires down and up once each, shows its text, and is logged", async () => {
  await page.focus();
  await page.keyboard.down("a");
  await page.fires(is.KEY_DOWN, 1);
  assert.equal(await page.count(is.KEY_UP), 0);
  await page.shows(is.KEY_TEXT, "a");
  await page.keyboard.up("a");
  await page.fires(is.KEY_UP, 1);
  assert.equal(await page.count(is.KEY_DOWN), 1);
  await page.logs("[Demo.Keyboard 1.Keyboard] fired [Pressed] for the key [a]");
  await page.logs("[Demo.Keyboard 1.Keyboard] fired [Released] for the key [a]");
});

test("keys reach the nodes only while the surface has the focus, and Tab takes the focus away", async () => {
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
});

test("the browser's own use of a key is off while the surface has the focus", async () => {
  await page.focus();
  const address = page.page.url();
  await page.keyboard.press("F5");
  await page.keyboard.press("Control+f");
  await page.shows(is.KEY_TEXT, "f");
  assert.equal(page.page.url(), address);
  assert.equal(await timesFired(script, is.KEY_DOWN), 3);
});

test("moving in, about and out fires enter and leave and changes the position", async () => {
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

test("a pointer that rests fires hover once, and once more after it has moved", async () => {
  await page.moveTo(200, 100);
  await page.fires(is.HOVER, 1);
  await page.moveTo(210, 100);
  await page.fires(is.HOVER, 2);
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

test("no movement between two frames is merged away", async () => {
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
});

test("moves arrive from browsers that don't tell them apart, or not whose they were", async () => {
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

test("input of different kinds keeps its order", async () => {
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
});
