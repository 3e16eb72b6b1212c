// Nodes are wired on the canvas, by the mouse and by keys; wires show what runs through them.
import assert from "node:assert/strict";
import {
  APPEND_INPUT, canvas, CLEAR_INPUT, placeOf, shownAt, stepIs, TEXT_INPUT, useCanvas,
} from "./support/editing.mjs";
import * as is from "./support/page.mjs";
import { page, script } from "./support/scene.mjs";
import { createNode, expectEventually, must, nodeOf, Type, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

useCanvas();

/** A place on the canvas with nothing on it. */
async function freePlace() {
  const { x, y, width, height } = await canvas.pane().boundingBox();
  return { x: x + width * 0.8, y: y + height * 0.8 };
}

test("a wire that is dropped on the canvas adds a node that it fits, wired", async () => {
  await canvas.drag(await canvas.middleOf(canvas.pin("t", is.TEXT[1])), await freePlace());
  await page.page.locator("[data-palette]").waitFor();
  const fitting = page.page.locator('[data-entry="String data send"]');
  await fitting.waitFor();
  assert.equal(await page.page.locator("[data-entry=Mouse]").count(), 0, "a mouse takes no text");
  await fitting.click();
  await until("the link", async () => (await canvas.links()).length === 2);
  const [, link] = await canvas.links();
  const { nodes } = await canvas.scene();
  assert.deepEqual(link, { from: "t", output: is.TEXT[1], to: nodes.at(-1).node, input: 1505 });
  assert.ok(nodes.at(-1).place.x > 420);
  await stepIs("Add String data send 1");
  await page.keyboard.press("Control+z");
  await canvas.nodesAre(["Keyboard 1", "Mouse 1", "Text field 1"]);
});

test("another source for a value replaces the first one only when somebody says so, as one step", async () => {
  await createNode(script, "k2", Type.keyboard, "Keyboard 2");
  await must(script, { op: "place", nodes: { k2: { x: 0, y: -300 } } });
  await expectEventually("the place shown", () => shownAt("k2"), "0 -300");
  await page.page.locator(".react-flow__controls-fitview").click();
  const wire = () => canvas.pin("k2", is.KEY_TEXT[1]).dragTo(canvas.pin("t", TEXT_INPUT));
  await wire();
  const question = page.page.getByRole("alertdialog");
  await question.getByText("Text field 1 · Input key takes its value from Keyboard 1 · Key.").waitFor();
  await question.getByRole("button", { name: "Leave it" }).click();
  assert.equal(page.sent.some(({ op }) => op === "batch"), false);
  await wire();
  await question.getByRole("button", { name: "Replace" }).click();
  await expectEventually("the source", async () => (await canvas.links()).map(({ from }) => from).join(), "k2");
  await stepIs("Link Keyboard 2 · Key to Text field 1 · Input key");
  await page.page.locator("[data-undo]").click();
  await expectEventually("the source", async () => (await canvas.links()).map(({ from }) => from).join(), "k");
});

test("a question gives the focus back to what asked it, and takes it again when it's asked again", async () => {
  await createNode(script, "k2", Type.keyboard, "Keyboard 2");
  await canvas.pin("k2", is.KEY_TEXT[1]).waitFor();
  const ask = async () => {
    await canvas.pin("k2", is.KEY_TEXT[1]).press("Enter");
    await canvas.pin("t", TEXT_INPUT).press("Enter");
    await page.page.locator("[role=alertdialog] button:focus", { hasText: "Leave it" }).waitFor();
  };
  const pinHasFocus = () => until("the focus on the pin", () => canvas.pin("t", TEXT_INPUT).evaluate((pin) => pin.matches(":focus")));
  await ask();
  await page.keyboard.press("Escape");
  await pinHasFocus();
  await ask();
  await ask();
  await page.keyboard.press("Shift+Tab");
  await page.keyboard.press("Enter");
  await expectEventually("the source", async () => (await canvas.links()).map(({ from }) => from).join(), "k2");
  await pinHasFocus();
});

test("a button that goes when it's pressed leaves the focus to the field beside it, or to the inspector", async () => {
  await page.page.locator("article[data-node=t] [data-unlink=k]").press("Enter");
  await page.page.locator("[data-unlink]").waitFor({ state: "detached" });
  await page.page.locator(`article [data-node=t][data-param="${TEXT_INPUT}"]:focus`).waitFor();
  await canvas.choose("t");
  await page.page.getByText("Show all").press("Enter");
  await page.page.locator(".nodes:focus").waitFor();
});

test("a number is wired to a whole number, and the wire says that it's rounded", async () => {
  await canvas.pin("m", is.RELATIVE_X[1]).dragTo(canvas.pin("t", is.ENABLE));
  await expectEventually("wires", () => canvas.wires().count(), 2);
  assert.deepEqual((await canvas.links()).at(-1), { from: "m", output: is.RELATIVE_X[1], to: "t", input: is.ENABLE });
  const says = "rounded to the nearest whole number, taken as switch";
  await page.page.locator(`.wire-conversion[title="${says}"]`, { hasText: "≈" }).waitFor();
  assert.equal(await page.page.locator(".wire-label").count(), 1, "nothing is to be told of the other wire");
  const outline = `Text field 1, Text field input\\s+Input key from Keyboard 1 · Key.*from Mouse 1 · .*, ${says}`;
  assert.match(await page.page.locator("[data-outline]").innerText(), new RegExp(outline, "s"));
  await page.page.getByLabel(new RegExp(`^Wire from Mouse 1 .*, ${says}$`)).press("Enter");
  await page.page.locator(".wire-conversion", { hasText: `≈ ${says}` }).waitFor();
  await page.page.locator("[data-wire-value]").waitFor();
  const enable = page.page.locator(`article[data-node=t] input[data-param="${is.ENABLE}"]`);
  await expectEventually("the switch", () => enable.isChecked(), false);
  await page.moveTo(page.box.height / 2, page.box.height / 4);
  await expectEventually("the switch", () => enable.isChecked(), true);
});

test("an event input takes wires of several events without asking", async () => {
  await canvas.pin("k", is.KEY_DOWN[1]).dragTo(canvas.pin("t", APPEND_INPUT));
  await expectEventually("wires", () => canvas.wires().count(), 2);
  await canvas.pin("m", is.LEFT_DOWN[1]).dragTo(canvas.pin("t", APPEND_INPUT));
  await expectEventually("wires", () => canvas.wires().count(), 3);
});

test("a linked input shows what comes, from where, and can't be changed by hand until it's unlinked", async () => {
  const field = page.page.locator(`article[data-node=t] input[data-param="${TEXT_INPUT}"]`);
  await must(script, { op: "event", device: 0, event: 2002, payload: { is: "key", text: "F5" } });
  await expectEventually("the value", () => field.inputValue(), "F5");
  assert.equal(await field.isDisabled(), true);
  assert.equal(await page.page.locator("[data-link-from=k]").innerText(), "← Keyboard 1 · Key");
  await page.page.locator("[data-unlink=k]").click();
  await until("a field to type in", () => field.isEnabled());
  assert.deepEqual(await canvas.links(), []);
});

test("a wire lights when an event runs through it, and shows its value while it's pointed at or chosen", async () => {
  await must(script, { op: "link", from: "k", output: is.KEY_DOWN[1], to: "t", input: APPEND_INPUT });
  await expectEventually("wires", () => canvas.wires().count(), 2);
  assert.equal(await page.page.locator("[data-pulse]").count(), 0);
  await page.page.evaluate(is.watchLights);
  await must(script, { op: "event", device: 0, event: 2002, payload: { is: "key", text: "F7" } });
  await expectEventually("lit wires", () => is.lights(page.page, "[data-pulse]"), 2);
  const value = page.page.locator("[data-wire-value]", { hasText: "F7" });
  const { x, y } = await canvas.wires().first().locator("path").first().evaluate((path) => {
    const { x, y } = path.getPointAtLength(path.getTotalLength() / 2);
    return new DOMPoint(x, y).matrixTransform(path.getScreenCTM());
  });
  await page.mouse.move(x, y);
  await value.waitFor();
  await page.mouse.move(x, y + 100);
  await value.waitFor({ state: "detached" });
  await canvas.wires().first().focus();
  await page.page.keyboard.press("Enter");
  await value.waitFor();
});

test("a node that a link switches off looks so, and no longer when that switches it on", async () => {
  const point = (x) => must(script, { op: "event", device: 1, event: 3013, payload: { is: "pointer", rx: x, ry: 0, x, y: 0, pointer: 0, relative: 0 } });
  await must(script, { op: "link", from: "m", output: is.PIXEL_X[1], to: "t", input: is.ENABLE });
  const off = page.page.locator("[data-face=t].face-off");
  await point(0);
  await off.waitFor();
  await point(1);
  await off.waitFor({ state: "detached" });
  await point(0);
  await off.waitFor();
});

test("nodes are wired, chosen, renamed and removed whatever their handles are", async () => {
  const keyboard = 'a"b';
  const fields = ["x y", "note:n1", "back\\slash", "constructor", "__proto__"];
  const node = (handle, type, x, y) => nodeOf(handle, type, `The ${handle}`, { place: { x, y } });
  const nodes = [node(keyboard, Type.keyboard, 0, 0), ...fields.map((handle, index) => node(handle, Type.textField, 400, 220 * index))];
  const notes = { n1: { x: 0, y: 300, width: 200, height: 100, text: "here" } };
  await must(script, { op: "load", scene: { format: "iohost scene", version: 1, nodes, links: [], notes } });
  await canvas.face(fields.at(-1)).waitFor();
  await page.page.locator("[data-note=n1]").waitFor();
  await expectEventually("faces", () => page.page.locator("[data-face]").count(), 6);
  for (const [index, field] of fields.entries()) {
    await canvas.pin(keyboard, is.KEY_DOWN[1]).dragTo(canvas.pin(field, APPEND_INPUT));
    await expectEventually("wires", () => canvas.wires().count(), index + 1);
  }
  assert.deepEqual((await canvas.links()).map(({ from, to }) => [from, to]), fields.map((field) => [keyboard, field]));
  await canvas.wires().nth(1).focus();
  await page.keyboard.press("Enter");
  await page.keyboard.press("Delete");
  await expectEventually("wires", () => canvas.wires().count(), 4);
  assert.equal((await canvas.links()).some(({ to }) => to === fields[1]), false);
  for (const handle of [keyboard, ...fields]) {
    await canvas.choosePalette(`The ${handle}`);
    await page.page.locator(`article[data-node=${JSON.stringify(handle)}]`).waitFor();
    await page.page.locator(".react-flow__node.selected:focus").waitFor();
    await page.keyboard.press("F2");
    await page.page.locator(".face-rename:focus").waitFor();
    await page.keyboard.type(`Now ${handle}`);
    await page.keyboard.press("Enter");
    await canvas.face(handle).locator("strong", { hasText: `Now ${handle}` }).waitFor();
    await canvas.choose(handle);
    await page.keyboard.press("ArrowDown");
    await until("another place", async () => (await placeOf(handle)).y % 10 !== 0);
    await page.keyboard.press("Delete");
    await canvas.face(handle).waitFor({ state: "detached" });
  }
  assert.equal(await page.page.locator("[data-note=n1]").count(), 1);
});

test("without a mouse: a node is added, wired, found and removed", async () => {
  await canvas.choosePalette("Mouse");
  await page.page.getByRole("heading", { name: "Mouse 2" }).waitFor();
  await canvas.choosePalette("Keyboard 1");
  await page.page.getByRole("heading", { name: "Keyboard 1" }).waitFor();
  const focused = () => page.page.evaluate(() => document.activeElement.getAttribute("aria-label"));
  const tabTo = async (label) => {
    for (let steps = 0; (await focused()) !== label; ++steps) {
      assert.ok(steps < 60, `Tab never came to ${label}`);
      await page.keyboard.press("Tab");
    }
  };
  await tabTo("Output Pressed");
  await page.keyboard.press("Enter");
  await page.page.getByText("Wire from Keyboard 1 · Pressed").waitFor();
  await tabTo("Input Clear");
  await page.keyboard.press("Enter");
  await expectEventually("the link", async () => JSON.stringify((await canvas.links()).at(-1)),
    JSON.stringify({ from: "k", output: is.KEY_DOWN[1], to: "t", input: CLEAR_INPUT }));
  await canvas.choosePalette("Mouse 2");
  await page.page.getByRole("heading", { name: "Mouse 2" }).waitFor();
  await page.keyboard.press("Delete");
  await canvas.nodesAre(["Keyboard 1", "Mouse 1", "Text field 1"]);
  await page.page.locator("[data-graph]:focus").waitFor();
  await page.keyboard.press("Control+a");
  await expectEventually("chosen", () => canvas.chosen().count(), 3);
});

test("a click on a pin begins a wire, and one on another pin ends it or is told why not", async () => {
  const [begun, message] = [page.page.locator(".pin-begun"), page.page.locator("[data-graph-message]")];
  await canvas.pin("k", is.KEY_DOWN[1]).click();
  await begun.waitFor();
  await canvas.pin("t", CLEAR_INPUT).click();
  await until("the link", async () => (await canvas.links()).some(({ from, output, to, input }) =>
    from === "k" && output === is.KEY_DOWN[1] && to === "t" && input === CLEAR_INPUT));
  assert.equal(await begun.count(), 0);
  await canvas.pin("m", is.LEFT_DOWN[1]).click();
  await begun.waitFor();
  await canvas.pin("t", TEXT_INPUT).click();
  await message.filter({ hasText: "event" }).waitFor();
  assert.equal(await begun.count(), 0);
  await canvas.pin("m", is.LEFT_DOWN[1]).click();
  await begun.waitFor();
  await page.page.locator(".react-flow__pane").click({ position: { x: 5, y: 5 } });
  await expectEventually("wires that are begun", () => begun.count(), 0);
  await canvas.pin("m", is.LEFT_DOWN[1]).click();
  await begun.waitFor();
  await must(script, { op: "destroy", node: "m" });
  await canvas.face("m").waitFor({ state: "detached" });
  await must(script, { op: "undo" });
  await canvas.face("m").waitFor();
  assert.equal(await begun.count(), 0);
  assert.doesNotMatch(await message.innerText(), /Wire from/);
});

test("keys go on with what was just made: it has the focus", async () => {
  await page.page.getByRole("button", { name: "Add node" }).click();
  await page.page.locator("[data-palette] input").fill("Mouse");
  await page.page.locator('[data-entry="Mouse"].marked').waitFor();
  await page.keyboard.press("Enter");
  const focused = (label) => page.page.locator(`.react-flow__node[aria-label^="${label}"]:focus`);
  await focused("Mouse 2").waitFor();
  const { node, graph, clip } = (await canvas.scene()).nodes.at(-1);
  assert.deepEqual([node, graph, clip], ["Mouse 1", "Mouse 2", "Demo"]);
  await page.keyboard.press("Control+d");
  await focused("Mouse 3").waitFor();
  const place = async () => (await must(script, { op: "scene" })).nodes.find(({ graph }) => graph === "Mouse 3").place.x;
  const before = await place();
  await page.keyboard.press("ArrowRight");
  await until("that it moved", async () => (await place()) > before);
  await page.keyboard.press("Delete");
  await canvas.nodesAre(["Keyboard 1", "Mouse 1", "Text field 1", "Mouse 2"]);
});

test("a wire that was begun by keys is given up by Escape, and ended by Ctrl+K at a node that it adds", async () => {
  await canvas.choose("k");
  await canvas.pin("k", is.KEY_TEXT[1]).press("Enter");
  await page.page.locator(".pin-begun").waitFor();
  const hint = canvas.message().getByText("Wire from Keyboard 1");
  await hint.waitFor();
  await page.page.getByRole("button", { name: "Fold Keyboard 1" }).click();
  await page.page.locator("[data-face=k][data-folded=true]").waitFor();
  await hint.waitFor();
  await page.keyboard.press("Control+c");
  await canvas.message().getByText("Copied: 1").waitFor();
  await hint.waitFor();
  await page.keyboard.press("Escape");
  await hint.waitFor({ state: "detached" });
  await canvas.pin("k", is.KEY_TEXT[1]).press("Enter");
  await page.page.locator(".pin-begun").waitFor();
  await canvas.choosePalette("String data send");
  await until("the link", async () => (await canvas.links()).some(({ from, output, to }) =>
    from === "k" && output === is.KEY_TEXT[1] && to === "String data send 1"));
  assert.equal(await page.page.locator(".pin-begun").count(), 0);
});
