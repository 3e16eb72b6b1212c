// The on-screen keyboard types into text field nodes; key check nodes look at the keys that the page holds.
import assert from "node:assert/strict";
import * as is from "./support/page.mjs";
import { page, script, useScene } from "./support/scene.mjs";
import { createNode, expectEventually, must, timesFired, Type, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

useScene({
  panel: "keyboard",
  async prepare() {
    await createNode(script, "t", Type.textField, "Text field 1");
    await createNode(script, "c", Type.keyCheck, "Key check 1");
  },
  async look() {
    await page.page.locator("article[data-node=c]").waitFor();
    await page.page.locator("[data-skbtn=a]").waitFor();
  },
});

/** A key of the on-screen keyboard, by what the keyboard calls it. */
const key = (name) => page.page.locator(`[data-skbtn=${JSON.stringify(name)}]`).first();
const type = async (...names) => {
  for (const name of names) {
    await key(name).click();
  }
};
const keyValue = () => page.page.locator(`[data-node=c][data-param="${is.KEY_VALUE}"]`);
const keyValueIs = (value) =>
  until(`the key value ${value}`, async () => Number(await keyValue().getAttribute("data-key-value")) === value);

test("typing on the screen, with Caps Lock too, changes the text and shows it, Clear empties it; none of it is a step", async () => {
  const history = await must(script, { op: "history" });
  await type("{shift}", "h", "i", "{space}", "{shift}", "1", "{num7}", "{numdel}", "{numenter}", "\\");
  await page.shows(is.TEXT, "Hi !7.\\");
  await page.shows(is.HAS_TEXT, "on");
  await page.page.locator('[data-keyboard-text="Hi !7.\\\\"]').waitFor();
  await type("{bksp}", "{bksp}");
  await page.shows(is.TEXT, "Hi !7");
  const names = page.sent.filter(({ op, param }) => op === "set" && param === 202).map(({ string }) => string);
  assert.deepEqual(names, ["Shift+h", "i", "Space", "Shift+1", "Num 7", "Num Del", "Num Enter", "\\", "Backspace", "Backspace"]);
  await type("{lock}", "a", "1");
  await until("upper case on the keys", async () => (await key("b").innerText()) === "B");
  await type("{lock}", "b");
  await page.shows(is.TEXT, "Hi !7A1b");
  await until("lower case on the keys", async () => (await key("b").innerText()) === "b");
  await type("{clear}");
  await page.shows(is.TEXT, "");
  await page.shows(is.HAS_TEXT, "off");
  assert.deepEqual(await must(script, { op: "history" }), history);
  await page.page.locator("[data-tab=log]").click();
  await page.logs("[Demo] took [Input event]");
});

test("keys that come faster than frames are typed all", async () => {
  const keys = [..."qwertyuiopasdfghjklzxcvbnm"];
  await page.page.evaluate((names) => {
    for (const name of names) {
      const button = document.querySelector(`[data-skbtn="${name}"]`);
      button.dispatchEvent(new PointerEvent("pointerdown", { pointerId: 1, bubbles: true }));
      button.dispatchEvent(new PointerEvent("pointerup", { pointerId: 1, bubbles: true }));
    }
  }, keys);
  await page.shows(is.TEXT, keys.join(""));
});

test("a key that is held repeats, and stops when the finger lifts elsewhere", async () => {
  await page.page.clock.install();
  await key("x").hover();
  await page.mouse.down();
  await until("repeated keys", async () => (await page.value(is.TEXT)).length >= 3);
  await page.held("virtual key 88").waitFor();
  await page.mouse.move(5, 5);
  await page.mouse.up();
  await page.held("virtual key 88").waitFor({ state: "detached" });
  // The page shows values later than what is held: the host is asked.
  const typed = async () => {
    const { outputs } = await must(script, { op: "inspect", node: "t" });
    return outputs.flatMap(({ params }) => params).find(({ id }) => id === is.TEXT[1]).string;
  };
  const text = await typed();
  await page.page.clock.runFor(500);
  await type("b");
  await expectEventually("what is typed", typed, `${text}b`);
});

test("keys go to the text field that is chosen", async () => {
  await createNode(script, "t2", Type.textField, "Text field 2");
  await page.page.getByLabel("Types into").selectOption("t2");
  await type("z");
  await page.shows(["t2", 253], "z");
  assert.equal(await page.value(is.TEXT), "");
});

test("a click on the keyboard leaves the focus, and what is held there, to the surface", async () => {
  await page.focus();
  await page.keyboard.down("y");
  await type("a");
  await page.shows(is.TEXT, "a");
  assert.equal(await page.held("key y").count(), 1);
  await page.keyboard.up("y");
  await page.fires(is.KEY_UP, 1);
});

test("the key value is set by pressing the combination, and stays when nothing is pressed in its field", async () => {
  await keyValue().click();
  await page.keyboard.down("Control");
  await until("the modifier", async () => /Ctrl \+ …/.test(await keyValue().innerText()));
  await page.keyboard.down("Shift");
  await page.keyboard.press("K");
  await keyValueIs(0x34b);
  assert.equal(await keyValue().innerText(), "Ctrl + Shift + K");
  await page.keyboard.up("Shift");
  await page.keyboard.up("Control");
  // Nothing of it reached the nodes.
  assert.equal(await timesFired(script, is.KEY_DOWN), 0);
  await page.page.getByRole("button", { name: "no key" }).click();
  await page.page.locator(".combination-field:focus").waitFor();
  await keyValueIs(0);
  page.sent.length = 0;
  await must(script, { op: "set", node: "c", param: is.KEY_VALUE, int: 65 });
  await keyValueIs(65);
  await keyValue().click();
  await until("the call", async () => /Press the keys/.test(await keyValue().innerText()));
  await page.focus();
  await keyValueIs(65);
  assert.equal(await keyValue().innerText(), "A");
  assert.equal(page.sent.some(({ op }) => op === "edit"), false);
});

test("a key on the screen is one for key check nodes, with Shift too; without a text field node the page says so", async () => {
  await must(script, { op: "set", node: "c", param: is.KEY_VALUE, int: 0x157 });
  await type("{shift}");
  await page.held("virtual key 16").waitFor();
  await key("w").hover();
  await page.mouse.down();
  await page.fires(is.CHECK_DOWN, 1);
  await page.mouse.up();
  await page.fires(is.CHECK_UP, 1);
  await page.held("virtual key 16").waitFor({ state: "detached" });
  await must(script, { op: "destroy", node: "t" });
  await page.page.getByText("The scene has no text field node").waitFor();
  await must(script, { op: "set", node: "c", param: is.KEY_VALUE, int: 81 });
  await key("q").click();
  await page.fires(is.CHECK_UP, 2);
});
