// The hand controllers: pads and triggers, and what keys do to hands, which need no drawing in space.
import assert from "node:assert/strict";
import { hand, openHandsAgain, openLog, useHands } from "./support/hands.mjs";
import * as is from "./support/page.mjs";
import { page } from "./support/scene.mjs";
import { until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

useHands();

/** To a place on a hand's pad, from -1 to 1. */
async function thumbTo(side, x, y) {
  const { left, top, width } = await hand(side).locator(".pad").evaluate((pad) => pad.getBoundingClientRect().toJSON());
  const radius = width / 2.2;
  await page.mouse.move(left + width / 2 + x * radius, top + width / 2 - y * radius);
}

test("a click on the right of the pad fires press, release and right click, and shows them; other zones give theirs", async () => {
  await thumbTo(1, 0.8, 0.2);
  await page.mouse.down();
  await page.fires(is.PAD_DOWN, 1);
  await page.held("touch-pad of hand 1").waitFor();
  await page.page.locator("[data-hand-fired='1']", { hasText: "Touchpad pressed" }).waitFor();
  await page.mouse.up();
  await page.fires(is.PAD_UP, 1);
  await page.fires(is.PAD_RIGHT_CLICK, 1);
  await page.page.locator("[data-hand-fired='1']", { hasText: "Touchpad released · Touchpad right click" }).waitFor();
  await page.held("touch-pad of hand 1").waitFor({ state: "detached" });
  for (const other of [867, 868, 870, 871]) {
    assert.equal(await page.count(["v", other]), 0);
  }
  // The place of the release is what counts.
  for (const [x, y, output] of [[0, 0, 867], [-0.9, 0.1, 868], [0.1, 0.9, 870], [0.1, -0.9, 871]]) {
    await thumbTo(1, 0.9, 0);
    await page.mouse.down();
    await thumbTo(1, x, y);
    await page.mouse.up();
    await page.fires(["v", output], 1);
  }
  await page.fires(is.PAD_UP, 5);
  assert.equal(await page.count(is.PAD_RIGHT_CLICK), 1);
});

test("how long the trigger was pulled doesn't depend on when the page comes to it", async () => {
  await hand(1).locator(".trigger").evaluate((trigger) => {
    const [down, up] = ["keydown", "keyup"].map((type) => new KeyboardEvent(type, { key: " ", bubbles: true }));
    trigger.dispatchEvent(down);
    for (const late = performance.now() + 600; performance.now() < late; );
    trigger.dispatchEvent(up);
  });
  await page.fires(is.TRIGGER_UP, 1);
  assert.equal(await page.count(is.TRIGGER_CLICK), 1);
});

test("a node takes the samples of its own hand only", async () => {
  await hand(0).locator(".trigger").click();
  await hand(1).locator(".trigger").click();
  await page.fires(is.TRIGGER_UP, 1);
  assert.equal(await page.count(is.TRIGGER_DOWN), 1);
  await page.page.getByText("No node takes this hand.").waitFor();
  await hand(1).getByText("VR hand 1 moves").waitFor();
});

test("a trigger or a touch-pad that is pressed while its panel is hidden is let go of", async () => {
  for (const [name, part, released] of [["trigger", ".trigger", is.TRIGGER_UP], ["touch-pad", ".pad", is.PAD_UP]]) {
    await hand(1).locator(part).hover();
    await page.mouse.down();
    await page.held(`${name} of hand 1`).waitFor();
    await openLog();
    await page.fires(released, 1);
    await page.held(`${name} of hand 1`).waitFor({ state: "detached" });
    await page.logs(`synthetic release of the ${name} of hand 1: the panel was hidden`);
    await page.mouse.up();
    await openHandsAgain();
    await hand(1).locator(part).click();
    await page.fires(released, 2);
  }
});

test("a trigger and a touch-pad whose pointer is taken away are let go of", async () => {
  const [trigger, pad] = [hand(1).locator(".trigger"), hand(1).locator(".pad")];
  for (const [button, held, pressed, released] of [
    [trigger, "trigger of hand 1", is.TRIGGER_DOWN, is.TRIGGER_UP],
    [pad, "touch-pad of hand 1", is.PAD_DOWN, is.PAD_UP],
  ]) {
    await button.evaluate((element) =>
      element.addEventListener("gotpointercapture", ({ pointerId }) => element.releasePointerCapture(pointerId), { once: true }));
    await button.hover();
    await page.mouse.down();
    await page.fires(pressed, 1); // held only until the pointer is taken away, which may be at once
    await page.moveTo(50, 50);
    await page.fires(released, 1);
    await page.held(held).waitFor({ state: "detached" });
    await page.mouse.up();
  }
  await page.page.locator("[data-tab=log]").click();
  await page.logs("the pointer was taken away");
});

test("letting go of the trigger leaves a touch-pad that another finger presses as it is", async () => {
  const wire = await page.page.context().newCDPSession(page.page);
  const at = async (name, id) => {
    const { x, y, width, height } = await hand(1).locator(name).boundingBox();
    return { id, x: x + width / 2, y: y + height / 2 };
  };
  const [pad, trigger] = [await at(".pad", 0), await at(".trigger", 1)];
  const touch = (type, touchPoints) => wire.send("Input.dispatchTouchEvent", { type, touchPoints });
  await touch("touchStart", [pad]);
  await touch("touchStart", [pad, trigger]);
  await page.held("touch-pad of hand 1").waitFor();
  await page.held("trigger of hand 1").waitFor();
  await touch("touchEnd", [trigger]);
  await page.fires(is.TRIGGER_UP, 1);
  assert.equal(await page.count(is.PAD_UP), 0);
  await touch("touchEnd", [pad]);
  await page.fires(is.PAD_UP, 1);
});

test("the hands can be worked by keys", async () => {
  await page.page.locator(".space-place").focus();
  await page.keyboard.press("ArrowUp");
  await until("a position", async () => Math.abs(Number(await page.value(is.POSITION[1])) - 1.25) < 0.001);
  await hand(1).locator(".trigger").focus();
  await page.keyboard.press("Space");
  await page.fires(is.TRIGGER_UP, 1);
  await hand(1).locator(".pad").focus();
  for (let step = 0; step < 6; ++step) {
    await page.keyboard.press("ArrowRight");
  }
  await page.keyboard.press("Enter");
  await page.fires(is.PAD_RIGHT_CLICK, 1);
  assert.equal(await page.count(is.KEY_DOWN), 0);
});
