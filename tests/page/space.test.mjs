// The hands in space: where they are, and the objects that follow them.
import assert from "node:assert/strict";
import { isDeepStrictEqual } from "node:util";
import { drawn } from "./support/canvas.mjs";
import { hand, openHandsAgain, openLog, useHands } from "./support/hands.mjs";
import * as is from "./support/page.mjs";
import { page, script } from "./support/scene.mjs";
import { must, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

useHands({ space: true });

const number = async (output) => Number(await page.value(output));
const matrix = async () => (await must(script, { op: "objects" })).objects[0].matrix;

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

test("a hand that is dragged while its panel is hidden isn't dragged any longer, nor is the room turned", async () => {
  const letter = await page.page.locator(".space-hand").nth(1).boundingBox();
  const [x, y] = [letter.x + letter.width / 2, letter.y + letter.height / 2 + 26];
  const canvas = await page.page.locator("[data-space]").boundingBox();
  for (const [fromX, fromY] of [[x, y], [canvas.x + 20, canvas.y + canvas.height - 20]]) {
    await page.mouse.move(fromX, fromY);
    await page.mouse.down();
    await page.mouse.move(fromX + 2, fromY);
    await page.page.evaluate(drawn);
    const before = await page.page.locator(".space-hand").nth(1).boundingBox();
    await openLog();
    await page.page.locator("[data-space]").waitFor({ state: "hidden" });
    await page.mouse.move(fromX + 30, fromY - 30, { steps: 5 });
    await page.mouse.up();
    await openHandsAgain();
    await page.page.locator("[data-space]").waitFor();
    await page.mouse.move(fromX + 40, fromY - 40, { steps: 5 });
    await page.page.evaluate(drawn);
    assert.deepEqual(await page.page.locator(".space-hand").nth(1).boundingBox(), before);
  }
});

test("objects that others move move on the page, and one that isn't there can be added", async () => {
  const label = page.page.locator(".space-object", { hasText: "Lamp" });
  const before = await label.boundingBox();
  const pose = [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 1, -1, 1];
  const payload = { is: "vr", hand: 1, trigger: 0, pad: 0, padx: 0, pady: 0, pose, hit: [0, 0, 0], press: 0, release: 0 };
  await must(script, { op: "event", device: 3, event: 0, payload });
  await until("the moved object", async () => (await label.boundingBox()).y < before.y - 20);

  await must(script, { op: "set", node: "v", param: 802, string: "Door" });
  await hand(1).getByText("no object “Door”").waitFor();
  await hand(1).getByRole("button", { name: "Add it" }).click();
  await hand(1).getByText("VR hand 1 moves Door").waitFor();
  await page.page.locator(".space-object", { hasText: "Door" }).waitFor();
});
