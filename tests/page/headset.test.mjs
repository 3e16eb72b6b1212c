// A headset's real controllers are the hands.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { createHand, openHands } from "./support/hands.mjs";
import * as is from "./support/page.mjs";
import { page, useScene } from "./support/scene.mjs";
import { until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

// A WebXR runtime without a headset, with controllers that a script moves.
const HEADSET = readFileSync(createRequire(import.meta.url).resolve("iwer/build/iwer.min.js"), "utf8");

// This page shows what comes of it; another has the headset.
useScene({ space: true, prepare: createHand });

const number = async (output) => Number(await page.value(output));

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
});
