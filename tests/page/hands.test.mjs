// The hand controllers: pads and triggers, places in space, the objects that follow, and a headset's real controllers.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { after, afterEach, before, beforeEach, test } from "node:test";
import { isDeepStrictEqual } from "node:util";
import { startBrowser } from "./support/browser.mjs";
import { startHost } from "./support/host.mjs";
import * as is from "./support/page.mjs";
import { createNode, createScene, must, Type, until } from "./support/session.mjs";

// A WebXR runtime without a headset, with controllers that a script moves.
const HEADSET = readFileSync(createRequire(import.meta.url).resolve("iwer/build/iwer.min.js"), "utf8");

let browser;
let host;
let script;
let page;

before(async () => {
  browser = await startBrowser({ space: true });
});
after(() => browser.close());

beforeEach(async () => {
  host = await startHost();
  script = await createScene(host.address);
  await createNode(script, "v", Type.vrHandle, "VR hand 1");
  await must(script, { op: "object", clip: "Demo", name: "Lamp" });
  await must(script, { op: "set", node: "v", param: 802, string: "Lamp" });
  await must(script, { op: "set", node: "v", param: 803, choice: 1 });
  page = await openHands();
});
afterEach(async () => {
  assert.deepEqual(page.problems, []);
  await page.close();
  await script.close();
  assert.equal(await host.end(), 0);
});

async function openHands(options = {}) {
  const opened = await is.openPage(browser, host, { panel: "hands", ...options });
  await opened.page.locator("article[data-node=v]").waitFor();
  await opened.page.locator("[data-hand='1']").waitFor();
  return opened;
}

const hand = (side) => page.page.locator(`[data-hand="${side}"]`);

/** To a place on a hand's pad, from -1 to 1. */
async function thumbTo(side, x, y) {
  const { left, top, width } = await hand(side).locator(".pad").evaluate((pad) => pad.getBoundingClientRect().toJSON());
  const radius = width / 2.2;
  await page.mouse.move(left + width / 2 + x * radius, top + width / 2 - y * radius);
}

const number = async (output) => Number(await page.value(output));
const matrix = async () => (await must(script, { op: "objects" })).objects[0].matrix;

test("a click on the right of the pad fires the press, the release and the right click, and shows them", async () => {
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
});

test("each zone of the pad gives its click, at the place of the release", async () => {
  for (const [x, y, output] of [[0, 0, 867], [-0.9, 0.1, 868], [0.1, 0.9, 870], [0.1, -0.9, 871]]) {
    await thumbTo(1, 0.9, 0);
    await page.mouse.down();
    await thumbTo(1, x, y);
    await page.mouse.up();
    await page.fires(["v", output], 1);
  }
  assert.equal(await page.count(is.PAD_RIGHT_CLICK), 0);
  await page.fires(is.PAD_UP, 4);
});

test("a short pull of the trigger is a click, a long one isn't, and it shows as held", async () => {
  const trigger = hand(1).locator(".trigger");
  await trigger.hover();
  await page.mouse.down();
  await page.mouse.up();
  await page.fires(is.TRIGGER_CLICK, 1);
  await page.mouse.down();
  await page.fires(is.TRIGGER_DOWN, 2);
  await page.held("trigger of hand 1").waitFor();
  await page.page.waitForTimeout(600);
  await page.mouse.up();
  await page.fires(is.TRIGGER_UP, 2);
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

test("dragging a hand moves the object that follows it, and the node's position", async () => {
  // The hand's letter stands above it.
  const letter = await page.page.locator(".space-hand").nth(1).boundingBox();
  const [x, y] = [letter.x + letter.width / 2, letter.y + letter.height / 2 + 26];
  await page.mouse.move(x, y);
  await page.mouse.down();
  await page.mouse.move(x + 20, y - 30, { steps: 5 });
  await page.mouse.up();
  await until("the node's position at the object's", async () => {
    const [shown, place] = [await Promise.all(is.POSITION.map(number)), (await matrix()).slice(12, 15)];
    return shown[1] > 1.25 && place[0] !== 0 && shown.every((value, axis) => Math.abs(value - place[axis]) < 0.001);
  });
});

test("dragging the hit point turns the hand towards it", async () => {
  await hand(1).locator(".trigger").click();
  await page.fires(is.TRIGGER_UP, 1);
  await until("the hand's place", async () => (await number(is.POSITION[0])) !== 0 && (await number(is.HIT[2])) === -3);
  const before = [await number(is.POSITION[0]), await number(is.HIT[0])];
  const turned = (await matrix()).slice(0, 12);
  const ring = await page.page.locator(".space-hit-1").boundingBox();
  const [x, y] = [ring.x + ring.width / 2, ring.y + ring.height / 2];
  await page.mouse.move(x, y);
  await page.mouse.down();
  await page.mouse.move(x - 40, y + 10, { steps: 5 });
  await page.mouse.up();
  await until("another hit point", async () => (await number(is.HIT[0])) < before[1] - 0.1);
  await until("the object turned", async () => !isDeepStrictEqual((await matrix()).slice(0, 12), turned));
  assert.equal(await number(is.POSITION[0]), before[0]);
  assert.equal(await number(is.HIT[2]), -3);
});

test("the hands can be worked by keys", async () => {
  await page.page.locator(".space-place").focus();
  await page.keyboard.press("ArrowUp");
  await until("a position", async () => Math.abs((await number(is.POSITION[1])) - 1.25) < 0.001);
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

/** Puts another panel in front, as a second finger does while the first one presses. */
const openLog = () => page.page.evaluate(() => document.querySelector("[data-tab=log]").click());
const openHandsAgain = () => page.page.evaluate(() => document.querySelector("[data-tab=hands]").click());

test("a trigger that is pressed while its panel is hidden is let go of", async () => {
  await hand(1).locator(".trigger").hover();
  await page.mouse.down();
  await page.held("trigger of hand 1").waitFor();
  await openLog();
  await page.fires(is.TRIGGER_UP, 1);
  await page.held("trigger of hand 1").waitFor({ state: "detached" });
  await page.logs("the panel was hidden");
  await page.mouse.up();
  await openHandsAgain();
  await hand(1).locator(".trigger").click();
  await page.fires(is.TRIGGER_UP, 2);
});

test("a touch-pad that is pressed while its panel is hidden is let go of", async () => {
  await thumbTo(1, 0.8, 0.2);
  await page.mouse.down();
  await page.held("touch-pad of hand 1").waitFor();
  await openLog();
  await page.fires(is.PAD_UP, 1);
  await page.held("touch-pad of hand 1").waitFor({ state: "detached" });
  await page.mouse.up();
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

test("a hand that is dragged while its panel is hidden isn't dragged any longer, nor is the room turned", async () => {
  const letter = await page.page.locator(".space-hand").nth(1).boundingBox();
  const [x, y] = [letter.x + letter.width / 2, letter.y + letter.height / 2 + 26];
  const canvas = await page.page.locator("[data-space]").boundingBox();
  for (const [fromX, fromY] of [[x, y], [canvas.x + 20, canvas.y + canvas.height - 20]]) {
    await page.mouse.move(fromX, fromY);
    await page.mouse.down();
    await page.mouse.move(fromX + 2, fromY);
    await page.page.waitForTimeout(200);
    const before = await page.page.locator(".space-hand").nth(1).boundingBox();
    await openLog();
    await page.page.locator("[data-space]").waitFor({ state: "hidden" });
    await page.mouse.move(fromX + 30, fromY - 30, { steps: 5 });
    await page.mouse.up();
    await openHandsAgain();
    await page.page.locator("[data-space]").waitFor();
    await page.mouse.move(fromX + 40, fromY - 40, { steps: 5 });
    await page.page.waitForTimeout(200);
    assert.deepEqual(await page.page.locator(".space-hand").nth(1).boundingBox(), before);
  }
});

test("an object that isn't there can be added", async () => {
  await must(script, { op: "set", node: "v", param: 802, string: "Door" });
  await hand(1).getByText("no object “Door”").waitFor();
  await hand(1).getByRole("button", { name: "Add it" }).click();
  await hand(1).getByText("VR hand 1 moves Door").waitFor();
  await page.page.locator(".space-object", { hasText: "Door" }).waitFor();
});

test("objects that others move move on the page", async () => {
  const label = page.page.locator(".space-object", { hasText: "Lamp" });
  const before = await label.boundingBox();
  const pose = [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 1, -1, 1];
  const payload = { is: "vr", hand: 1, trigger: 0, pad: 0, padx: 0, pady: 0, pose, hit: [0, 0, 0], press: 0, release: 0 };
  await must(script, { op: "event", device: 3, event: 0, payload });
  await until("the moved object", async () => (await label.boundingBox()).y < before.y - 20);
});

test("a page that is closed with its trigger pulled lets it go, for everybody else to see", async () => {
  const other = await openHands();
  const trigger = other.page.locator("[data-hand='1'] .trigger");
  await trigger.hover();
  await other.mouse.down();
  await page.held("trigger of hand 1").waitFor();
  await other.close();
  await page.fires(is.TRIGGER_UP, 1);
  await page.page.locator("[data-tab=log]").click();
  await page.logs("synthetic release of the trigger of hand 1");
});

test("without drawing in space the pads and triggers still work", async () => {
  const other = await openHands({
    scripts: [() => (HTMLCanvasElement.prototype.getContext = () => null)],
  });
  await other.page.getByText("This browser can't draw in space here").waitFor();
  await other.page.locator("[data-hand='1'] .trigger").click();
  await page.fires(is.TRIGGER_UP, 1);
  await other.close();
});

test("a headset's real controllers move the hands and press their buttons", async () => {
  const start = "globalThis.headset = new IWER.XRDevice(IWER.metaQuest3); headset.installRuntime({ forceInstall: true });";
  const other = await openHands({ scripts: [`${HEADSET};${start}`] });
  await other.page.locator("[data-enter-headset]:enabled").click();
  await other.page.getByRole("button", { name: "Leave the headset" }).waitFor();
  await other.page.evaluate(() => {
    const { right } = globalThis.headset.controllers;
    right.position.set(0.25, 1.5, -0.5);
    right.quaternion.set(0, 0, 0, 1);
  });
  await until("the controller's position", async () => Math.abs((await number(is.POSITION[0])) - 0.25) < 0.1);
  assert.ok((await number(is.HIT[2])) <= -0.5);
  const press = (id, value) =>
    other.page.evaluate(([button, down]) => globalThis.headset.controllers.right.updateButtonValue(button, down), [id, value]);
  await press("trigger", 1);
  await page.fires(is.TRIGGER_DOWN, 1);
  await page.held("trigger of hand 1").waitFor();
  await press("trigger", 0);
  await page.fires(is.TRIGGER_UP, 1);
  await other.page.evaluate(() => globalThis.headset.controllers.right.updateAxes("thumbstick", 0.9, 0));
  await press("thumbstick", 1);
  await page.fires(is.PAD_DOWN, 1);
  await press("thumbstick", 0);
  await page.fires(is.PAD_RIGHT_CLICK, 1);

  // What is pressed when the headset is left is let go of.
  await press("trigger", 1);
  await page.fires(is.TRIGGER_DOWN, 2);
  await other.page.getByRole("button", { name: "Leave the headset" }).dispatchEvent("click");
  await page.fires(is.TRIGGER_UP, 2);
  await other.page.locator("[data-enter-headset]").waitFor();
  assert.deepEqual(other.problems, []);
  await other.close();
});
