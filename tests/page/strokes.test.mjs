// Fingers, pens and the mouse draw strokes; the touch gesture node decides what they are, and the page says why.
import assert from "node:assert/strict";
import * as is from "./support/page.mjs";
import { browser, host, page, script, useScene } from "./support/scene.mjs";
import { createNode, timesFired, Type, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

useScene({
  prepare: () => createNode(script, "g", Type.gesture, "Touch gesture 1"),
  look: () => page.page.locator("article[data-node=g]").waitFor(),
});

/** One finger along these places. */
async function drag(places, finger = 1) {
  await page.touch.down([[finger, ...places[0]]]);
  for (const place of places.slice(1)) {
    await page.touch.move([[finger, ...place]]);
  }
  await page.touch.up([]);
}

const verdict = () => page.page.locator("[data-verdict]");
const stroke = (pointer) => page.page.locator(`[data-stroke="${page.pointer(pointer)}"]`);

async function verdictIs(fired, reason) {
  await verdict().filter({ hasText: reason }).and(page.page.locator(`[data-verdict="${fired}"]`)).waitFor();
}

test("a finger that swipes to the right fires the drag and the swipe, and the page says so; so does a pen", async () => {
  await drag([[60, 100], [90, 102], [140, 104], [200, 106], [260, 108]]);
  await page.fires(is.START_MOVE, 1);
  await page.fires(is.END_MOVE, 1);
  await page.fires(is.SWIPE_RIGHT, 1);
  assert.equal(await page.count(is.TAP), 0);
  await verdictIs("Drag end, Swipe right", /off the axis, under 30°/);
  await page.logs("fired [Swipe right]");
  const samples = page.sentEvents().filter(([event]) => event === 3005 || event === 3006);
  const finger = page.pointer(1);
  assert.deepEqual(samples.map(([event, { pointer, relative }]) => [event, pointer, relative]), [[3005, finger, 0], [3006, finger, 0]]);

  const wire = await page.page.context().newCDPSession(page.page);
  const pen = (type, x, y, buttons) =>
    wire.send("Input.dispatchMouseEvent", {
      type,
      x: page.box.left + x,
      y: page.box.top + y,
      button: "left",
      buttons,
      clickCount: 1,
      pointerType: "pen",
    });
  await pen("mousePressed", 60, 80, 1);
  for (const x of [100, 150, 200]) {
    await pen("mouseMoved", x, 80, 1);
  }
  await page.page.locator("[data-readout=pointers]", { hasText: "pen" }).waitFor();
  await pen("mouseReleased", 200, 80, 0);
  await page.fires(is.SWIPE_RIGHT, 2);
});

test("a stroke is drawn as it grows, with the threshold, the key points and the cone once it's a drag", async () => {
  await page.touch.down([[1, 60, 100]]);
  await page.touch.move([[1, 100, 100]]);
  await stroke(1).locator(".stroke-threshold").waitFor();
  const { x, width } = await stroke(1).locator(".stroke-threshold").boundingBox();
  assert.ok(Math.abs(x + width / 2 - page.box.left - 60) < 2 && Math.abs(width - 100) < 2);
  assert.equal(await stroke(1).locator("[data-key-point]").count(), 0);
  assert.equal(await stroke(1).locator(".stroke-cone").count(), 0);
  await page.touch.move([[1, 180, 100]]);
  await stroke(1).locator(".stroke-cone").waitFor();
  assert.equal(await stroke(1).locator("[data-key-point]").count(), 3);
  await page.page.locator(".stroke-swipe").waitFor();
  await page.touch.move([[1, 180, 240]]);
  await page.page.locator(".stroke-bent").waitFor();
  await page.touch.up([]);
});

test("a stroke keeps the kind of samples that it began with", async () => {
  await page.moveTo(60, 100);
  await page.mouse.down();
  await page.page.locator("[data-samples-in=relative]").dispatchEvent("click");
  await page.moveTo(160, 100, { steps: 4 });
  await page.moveTo(260, 100, { steps: 4 });
  await page.mouse.up();
  await page.fires(is.SWIPE_RIGHT, 1);
  await verdictIs("Drag end, Swipe right", new RegExp(`pointer ${page.pointer(0)},`));
  const down = page.sentEvents().findIndex(([event]) => event === 3005);
  assert.ok(page.sentEvents().slice(down).every(([, { relative }]) => relative === 0));
  await page.moveTo(200, 100);
  await until("a relative sample", () => page.sentEvents().at(-1)[1].relative === 1);
});

test("several fingers have their own numbers; the node follows the first one only", async () => {
  await page.touch.down([[1, 60, 60]]);
  await page.touch.down([[1, 60, 60], [2, 60, 160]]);
  await page.held(`left button of pointer ${page.pointer(1)}`).waitFor();
  await page.held(`left button of pointer ${page.pointer(2)}`).waitFor();
  await page.touch.move([[1, 160, 60], [2, 60, 200]]);
  await page.touch.move([[1, 260, 60], [2, 60, 240]]);
  await stroke(2).and(page.page.locator(".stroke-unfollowed")).waitFor();
  assert.equal(await page.page.locator("[data-readout=pointers]").innerText(), `${page.pointer(1)} touch, ${page.pointer(2)} touch`);
  // The second finger lifts: nothing of it fires.
  await page.touch.up([[2, 60, 240]]);
  await verdictIs("", /is off, or follows another pointer/);
  assert.equal(await timesFired(script, is.END_MOVE), 0);
  await page.touch.up([]);
  await page.fires(is.SWIPE_RIGHT, 1);
  await verdictIs("Drag end, Swipe right", /off the axis/);
});

test("a cancelled finger is let go of by the host, and its stroke isn't judged by the page", async () => {
  await page.touch.down([[1, 60, 60]]);
  await page.touch.move([[1, 160, 60]]);
  await page.held(`left button of pointer ${page.pointer(1)}`).waitFor();
  await page.touch.cancel([]);
  await page.held(`left button of pointer ${page.pointer(1)}`).waitFor({ state: "detached" });
  await page.logs(`synthetic release of the left button of pointer ${page.pointer(1)}: the pointer was cancelled`);
  assert.equal(await page.page.locator("[data-stroke]").count(), 0);
  // The node is free for the next stroke. The release may have made a swipe of the first one: the browser may tell its
  // way in more samples than one.
  await page.fires(is.LEFT_UP, 1);
  const before = await page.count(is.SWIPE_RIGHT);
  await drag([[60, 100], [140, 104], [260, 108]]);
  await page.fires(is.SWIPE_RIGHT, before + 1);
});

test("a stroke whose release never comes shows as held, and of its samples the newest", async () => {
  const SAMPLES = 1600;
  await page.surface.evaluate((surface) =>
    surface.addEventListener("pointerdown", ({ pointerId }) => (surface.dataset.finger = pointerId)),
  );
  await page.touch.down([[1, 60, 60]]);
  await page.held(`left button of pointer ${page.pointer(1)}`).waitFor();
  const move = (count) =>
    page.surface.evaluate((surface, samples) => {
      const { left, top } = surface.getBoundingClientRect();
      for (let index = 0; index < samples; ++index) {
        const place = { clientX: left + 60 + (index % 200), clientY: top + 60 + (index % 100) };
        const finger = { pointerId: Number(surface.dataset.finger), pointerType: "touch", isPrimary: true, buttons: 1 };
        surface.dispatchEvent(new PointerEvent("pointermove", { ...finger, ...place, bubbles: true }));
      }
    }, count);
  const samples = async () => Number(await stroke(1).getAttribute("data-samples"));
  await move(SAMPLES);
  await until("all samples", async () => (await samples()) > SAMPLES);
  assert.equal(Number(await stroke(1).getAttribute("data-drawn")), 1500);
  assert.equal(await page.held(`left button of pointer ${page.pointer(1)}`).count(), 1);
  assert.equal(await timesFired(script, is.END_MOVE), 0);
  await page.touch.up([]);
  await page.fires(is.END_MOVE, 1);
});
