// The scene is edited on the canvas: by the mouse and by keys, each step as one, seen by other pages at once.
import assert from "node:assert/strict";
import { beforeEach, test } from "node:test";
import { canvasOf } from "./support/canvas.mjs";
import * as is from "./support/page.mjs";
import { browser, host, page, script, useScene } from "./support/scene.mjs";
import { createNode, expectEventually, must, Type, until } from "./support/session.mjs";

const TEXT_INPUT = 202;
const APPEND_INPUT = 203;
const CLEAR_INPUT = 204;

useScene({
  prepare: async () => {
    await createNode(script, "t", Type.textField, "Text field 1");
    const nodes = { k: { x: 0, y: 0 }, m: { x: 0, y: 200 }, t: { x: 420, y: 0 } };
    await must(script, { op: "place", nodes });
    await must(script, { op: "link", from: "k", output: is.KEY_TEXT[1], to: "t", input: TEXT_INPUT });
  },
  look: async () => {
    await page.page.locator('[data-face="t"]').waitFor();
    await page.page.locator(".react-flow__edge").waitFor();
  },
});

let canvas;
beforeEach(() => (canvas = canvasOf(page.page, script)));

const undoStep = async () => (await must(script, { op: "history" })).steps.at(-1)?.name;
const stepIs = (name) => expectEventually("the step", undoStep, name);
const placeOf = async (node) => (await canvas.scene()).nodes.find((one) => one.node === node).place;

/** A place on the canvas with nothing on it. */
async function freePlace() {
  const { x, y, width, height } = await canvas.pane().boundingBox();
  return { x: x + width * 0.8, y: y + height * 0.8 };
}

test("a wire that is dropped on the canvas adds a node that it fits, wired", async () => {
  await canvas.drag(await canvas.middleOf(canvas.pin("t", is.TEXT[1])), await freePlace());
  await page.page.locator("[data-palette]").waitFor();
  assert.equal(await page.page.locator("[data-entry=Mouse]").count(), 0, "a mouse takes no text");
  await page.page.locator('[data-entry="String data send"]').click();
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
  await canvas.face("k2").waitFor();
  await page.page.locator(".react-flow__controls-fitview").click();
  const wire = () => canvas.pin("k2", is.KEY_TEXT[1]).dragTo(canvas.pin("t", TEXT_INPUT));
  await wire();
  const question = page.page.getByRole("alertdialog");
  await question.getByText("Text field 1 · Input key takes its value from Keyboard 1 · Key.").waitFor();
  await question.getByRole("button", { name: "Leave it" }).click();
  assert.deepEqual((await canvas.links()).map(({ from }) => from), ["k"]);
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

test("a number is wired to a whole number, and the wire says that it's rounded", async () => {
  await canvas.pin("m", is.RELATIVE_X[1]).dragTo(canvas.pin("t", is.ENABLE));
  await expectEventually("wires", () => canvas.wires().count(), 2);
  assert.deepEqual((await canvas.links()).at(-1), { from: "m", output: is.RELATIVE_X[1], to: "t", input: is.ENABLE });
  const says = "rounded to the nearest whole number, taken as switch";
  await page.page.locator(`.wire-conversion[title="${says}"]`, { hasText: "≈" }).waitFor();
  assert.equal(await page.page.locator(".wire-label").count(), 1, "nothing is to be told of the other wire");
  assert.match(await page.page.locator("[data-outline]").innerText(), new RegExp(`from Mouse 1 · .*, ${says}`));
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
  await must(script, { op: "event", device: 0, event: 2002, payload: { is: "key", text: "F7" } });
  await expectEventually("lit wires", () => page.page.locator("[data-pulse]").count(), 2);
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

test("a node that is dragged stays where it was put, on every page, and goes back when that's undone", async () => {
  const second = await is.openPage(browser, host);
  const other = canvasOf(second.page, script);
  const from = await canvas.middleOf(canvas.face("m").locator("header strong"));
  await canvas.drag(from, { x: from.x + 60, y: from.y + 30 });
  await until("another place", async () => (await placeOf("m")).x > 0);
  await stepIs("Move Mouse 1");
  const position = (view) => view.face("m").locator("..").evaluate((node) => node.style.transform);
  await until("one place on both pages", async () => {
    const here = await position(canvas);
    return !here.includes("0px, 200px") && (await position(other)) === here;
  });
  await page.keyboard.press("Control+z");
  await until("the place", async () => (await placeOf("m")).x === 0);
  await until("the place on the canvas", async () => /translate\(0px, ?200px\)/.test(await position(other)));
  await second.close();
});

test("what is chosen by a frame is moved by the arrow keys as one step", async () => {
  await page.page.locator(".react-flow__controls-fitview").click();
  const { x, y, width, height } = await canvas.pane().boundingBox();
  await page.keyboard.down("Shift");
  await page.page.locator(".react-flow__pane.selection").waitFor();
  await canvas.drag({ x: x + 4, y: y + 4 }, { x: x + width - 4, y: y + height - 60 });
  await page.keyboard.up("Shift");
  await expectEventually("chosen", () => canvas.chosen().count(), 3);
  await canvas.chosen().first().focus();
  await page.keyboard.press("ArrowDown");
  await stepIs("Move 3 nodes");
  assert.ok((await placeOf("k")).y > 0);
});

test("nodes are lined up", async () => {
  await canvas.choose("k", "t");
  await page.page.getByRole("button", { name: "Align left" }).click();
  await until("one line", async () => (await placeOf("t")).x === 0);
});

test("chosen nodes are copied with their values and links, and pasted on another page", async () => {
  await must(script, { op: "edit", node: "m", param: is.ENABLE, int: 0 });
  await page.page.locator("[data-face=m].face-off").waitFor();
  await canvas.choose("k", "t", "m");
  await page.keyboard.press("Control+c");
  await page.page.getByText("Copied: 3").waitFor();
  const other = await is.openPage(browser, host);
  const there = canvasOf(other.page, script);
  await there.choose("k");
  await other.keyboard.press("Control+v");
  await canvas.nodesAre(["Keyboard 1", "Mouse 1", "Text field 1", "Keyboard 2", "Mouse 2", "Text field 2"]);
  const { nodes, links } = await canvas.scene();
  const [keyboard, mouse, text] = nodes.slice(3).map(({ node }) => node);
  assert.deepEqual(links.at(-1), { from: keyboard, output: is.KEY_TEXT[1], to: text, input: TEXT_INPUT });
  const { inputs } = await must(script, { op: "inspect", node: mouse });
  assert.equal(inputs[0].params.find(({ id }) => id === is.ENABLE).int, 0);
  await stepIs("Paste 3 nodes");
  await other.keyboard.press("Control+z");
  await canvas.nodesAre(["Keyboard 1", "Mouse 1", "Text field 1"]);
  await other.close();
});

test("a chosen node is doubled, and several are deleted as one step", async () => {
  await canvas.choose("m");
  await page.keyboard.press("Control+d");
  await page.page.getByRole("heading", { name: "Mouse 2" }).waitFor();
  await canvas.choose("k", "t");
  await page.keyboard.press("Delete");
  await canvas.nodesAre(["Mouse 1", "Mouse 2"]);
  await stepIs("Delete 2 nodes");
  await page.keyboard.press("Control+z");
  await until("both", async () => (await canvas.names()).length === 4);
  assert.equal((await canvas.links()).length, 1);
});

test("what is doubled twice in a row gets names of its own each time", async () => {
  await canvas.choose("m");
  await page.page.evaluate(() => {
    for (let times = 0; times < 2; ++times) {
      const options = { key: "d", ctrlKey: true, bubbles: true, cancelable: true };
      document.querySelector(".react-flow__node.selected").dispatchEvent(new KeyboardEvent("keydown", options));
    }
  });
  await canvas.nodesAre(["Keyboard 1", "Mouse 1", "Text field 1", "Mouse 2", "Mouse 3"]);
  const places = (await canvas.scene()).nodes.slice(3).map(({ place: { x, y } }) => `${x} ${y}`);
  assert.equal(new Set(places).size, 2, "each stands where it's seen");
  await expectEventually("the chosen node", () => canvas.chosen().locator("strong").allInnerTexts().then(String), "Mouse 3");
});

test("what can't be pasted says so, and what comes next is made all the same", async () => {
  await canvas.choose("m");
  await page.page.evaluate(() => localStorage.setItem("iohost.copied-nodes", '{ "format": "iohost nodes and notes", "nodes": [], "links": [] }'));
  await page.keyboard.press("Control+v");
  await until("the reason", async () => (await canvas.message().innerText()).includes("TypeError"));
  await page.keyboard.press("Control+d");
  await canvas.nodesAre(["Keyboard 1", "Mouse 1", "Text field 1", "Mouse 2"]);
  await page.page.evaluate(() => localStorage.removeItem("iohost.copied-nodes"));
});

test("a node is renamed by F2 and by a double click; Escape keeps the name", async () => {
  await canvas.choose("m");
  await page.keyboard.press("F2");
  await page.page.locator(".face-rename:focus").waitFor();
  await page.keyboard.type("Pointer");
  await page.keyboard.press("Enter");
  await expectEventually("the name", async () => (await canvas.names())[1], "Pointer");
  const nodeHasFocus = () => page.page.locator(".react-flow__node:focus", { has: page.page.locator("[data-face=m]") }).waitFor();
  await nodeHasFocus();
  await page.page.locator("article[data-node=m] h3", { hasText: "Pointer" }).waitFor();
  await canvas.face("m").locator("strong").dblclick();
  await page.page.locator(".face-rename:focus").waitFor();
  await page.keyboard.type("Other");
  await page.keyboard.press("Escape");
  await canvas.face("m").locator("strong", { hasText: "Pointer" }).waitFor();
  await nodeHasFocus();
  assert.equal(await undoStep(), "Rename Mouse 1 to Pointer");
  await page.keyboard.press("F2");
  await page.page.locator(".face-rename:focus").waitFor();
  await page.page.locator(".log-search").click();
  await page.page.locator(".face-rename").waitFor({ state: "detached" });
  await page.page.locator(".log-search:focus").waitFor();
});

test("a folded node has only its linked pins, on every page", async () => {
  const second = await is.openPage(browser, host);
  const other = canvasOf(second.page, script);
  await page.page.getByRole("button", { name: "Fold Keyboard 1" }).click();
  await page.page.locator('[data-face="k"][data-folded=true]').waitFor();
  await other.face("k").locator(".pin").first().waitFor();
  await expectEventually("pins", () => other.face("k").locator(".pin").count(), 1);
  await expectEventually("wires", () => canvas.wires().count(), 1);
  await page.page.getByRole("button", { name: "Unfold Keyboard 1" }).click();
  await expectEventually("pins", () => canvas.face("k").locator(".pin").count(), 4);
  await second.close();
});

test("notes are part of the scene: written, moved, and taken away", async () => {
  await page.page.getByRole("button", { name: "Add note" }).click();
  const note = page.page.locator("[data-note] textarea");
  await note.fill("Keys for the title");
  await page.keyboard.press("Escape");
  await page.page.locator(".react-flow__node-note:focus").waitFor();
  const notes = async () => Object.values((await canvas.scene()).notes ?? {});
  await expectEventually("the text", async () => (await notes())[0]?.text, "Keys for the title");
  const { x } = (await notes())[0];
  const box = await page.page.locator("[data-note]").boundingBox();
  await canvas.drag({ x: box.x + 20, y: box.y + 6 }, { x: box.x + 70, y: box.y + 6 });
  await until("another place", async () => (await notes())[0].x > x);
  await page.keyboard.press("Delete");
  await until("no note", async () => (await notes()).length === 0);
});

/** The texts of the scene's notes. */
const noteTexts = async () => Object.values((await canvas.scene()).notes ?? {}).map(({ text }) => text).sort().join();

test("notes are copied, doubled and lined up as nodes are, and with them", async () => {
  await must(script, { op: "place", notes: { n: { x: -300, y: 420, width: 200, height: 100, text: "here" } } });
  const note = page.page.locator("[data-note]");
  await note.first().waitFor();
  await page.page.locator(".react-flow__controls-fitview").click();
  const chooseNote = async () => {
    await note.first().click({ position: { x: 3, y: 3 } });
    await page.page.locator(".react-flow__node-note.selected").waitFor();
  };
  await chooseNote();
  await page.keyboard.press("Control+d");
  await expectEventually("the notes", noteTexts, "here,here");
  await stepIs("Duplicate a note");
  await page.keyboard.press("Control+z");
  await expectEventually("the notes", noteTexts, "here");
  await canvas.choose("m");
  await canvas.adding(chooseNote);
  await page.keyboard.press("Control+c");
  await page.page.getByText("Copied: 2").waitFor();
  await page.page.getByRole("button", { name: "Align tops" }).click();
  await expectEventually("the place", async () => (await canvas.scene()).notes.n.y, 200);
  const other = await is.openPage(browser, host);
  await canvasOf(other.page, script).choose("k");
  await other.keyboard.press("Control+v");
  await expectEventually("the notes", noteTexts, "here,here");
  await canvas.nodesAre(["Keyboard 1", "Mouse 1", "Text field 1", "Mouse 2"]);
  await stepIs("Paste Mouse 1 and a note");
  await other.close();
});

test("what is being typed into a note stays while another page changes the note, and what isn't touched follows", async () => {
  const note = { x: 30, y: 420, width: 200, height: 100, text: "first" };
  const change = (text) => must(script, { op: "place", notes: { n: { ...note, text } } });
  await change("first");
  const field = page.page.locator("[data-note] textarea");
  await field.waitFor();
  await field.focus();
  await change("second");
  await expectEventually("the text", () => field.inputValue(), "second");
  await field.fill("typed");
  await change("third");
  await expectEventually("what the page knows", () => undoStep(), "Change notes");
  const other = await is.openPage(browser, host);
  await expectEventually("the text", () => other.page.locator("[data-note] textarea").inputValue(), "third");
  await other.close();
  await page.page.locator("[data-note] textarea:focus").waitFor();
  assert.equal(await field.inputValue(), "typed");
  await field.blur();
  await expectEventually("the notes", noteTexts, "typed");
  await change("fourth");
  await expectEventually("the text", () => field.inputValue(), "fourth");
});

test("Enter that ends a composed word keeps the field of a name open", async () => {
  await canvas.choose("m");
  await page.keyboard.press("F2");
  const field = page.page.locator(".face-rename:focus");
  await field.fill("名");
  await field.dispatchEvent("keydown", { key: "Enter", isComposing: true, bubbles: true });
  assert.equal(await field.count(), 1);
  await page.keyboard.press("Enter");
  await expectEventually("the name", async () => (await canvas.names())[1], "名");
});

test("Ctrl+S saves from a note, a node's name and the palette too, with what is being typed", async () => {
  await must(script, { op: "place", notes: { n: { x: 30, y: 420, width: 200, height: 100, text: "" } } });
  const dialog = page.page.getByRole("dialog", { name: "Save the scene" });
  const save = async () => {
    await page.keyboard.press("Control+s");
    await dialog.waitFor();
    await page.keyboard.press("Escape");
    await dialog.waitFor({ state: "detached" });
  };
  await page.page.locator("[data-note] textarea").fill("typed");
  await save();
  await expectEventually("the notes", noteTexts, "typed");
  await canvas.choose("m");
  await page.keyboard.press("F2");
  await page.page.locator(".face-rename:focus").fill("Pointer");
  await save();
  await expectEventually("the name", async () => (await canvas.names())[1], "Pointer");
  await page.keyboard.press("Control+k");
  await page.page.locator("[data-palette] input:focus").waitFor();
  await save();
  await page.keyboard.press("Escape");
  await page.page.locator("[data-palette]").waitFor({ state: "detached" });
  await page.page.locator("[data-history]").focus();
  await save();
  await page.page.locator("[data-history]:focus").waitFor();
});

test("a node that a link switches off looks so, and no longer when that switches it on", async () => {
  const point = (x) => must(script, { op: "event", device: 1, event: 3013, payload: { is: "pointer", rx: x, ry: 0, x, y: 0, pointer: 0, relative: 0 } });
  await must(script, { op: "link", from: "m", output: 370, to: "t", input: is.ENABLE });
  const off = page.page.locator("[data-face=t].face-off");
  await point(0);
  await off.waitFor();
  await point(1);
  await off.waitFor({ state: "detached" });
  await point(0);
  await off.waitFor();
});

test("Ctrl+K opens nothing behind a dialog", async () => {
  await page.page.getByRole("button", { name: "Open", exact: true }).click();
  const dialog = page.page.getByRole("dialog", { name: "Open a scene" });
  await dialog.waitFor();
  await page.keyboard.press("Control+k");
  await page.keyboard.press("Escape");
  await dialog.waitFor({ state: "detached" });
  assert.equal(await page.page.locator("[data-palette]").count(), 0);
});

test("nodes are wired, chosen, renamed and removed whatever their handles are", async () => {
  const keyboard = 'a"b';
  const fields = ["x y", "note:n1", "back\\slash", "constructor", "__proto__"];
  const node = (handle, type, x, y) =>
    ({ node: handle, type: `{8164BB40-6B6A-4707-88B7-386BCB0D1B${type}}`, clip: "Demo", graph: `The ${handle}`, place: { x, y } });
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
  await page.keyboard.press("F2");
  await page.page.locator(".face-rename:focus").waitFor();
  await page.keyboard.type("Pointer");
  await page.keyboard.press("Enter");
  await page.page.getByRole("heading", { name: "Pointer" }).waitFor();
  await page.keyboard.press("Delete");
  await canvas.nodesAre(["Keyboard 1", "Mouse 1", "Text field 1"]);
  await page.page.locator("[data-graph]:focus").waitFor();
  await page.keyboard.press("Control+a");
  await expectEventually("chosen", () => canvas.chosen().count(), 3);
});

test("Escape unselects a node, which keeps the focus", async () => {
  await canvas.choose("k");
  await page.page.locator(".react-flow__node.selected").focus();
  await page.keyboard.press("Escape");
  await expectEventually("chosen", () => canvas.chosen().count(), 0);
  await page.page.evaluate(() => new Promise((drawn) => requestAnimationFrame(() => requestAnimationFrame(drawn))));
  await page.page.locator(`.react-flow__node[data-id="node:k"]:focus`).waitFor();
});

test("Ctrl+K adds a node at the end of a wire that was begun by keys", async () => {
  await canvas.choose("k");
  await canvas.pin("k", is.KEY_TEXT[1]).focus();
  await page.keyboard.press("Enter");
  await page.page.locator(".pin-begun").waitFor();
  await canvas.choosePalette("String data send");
  await until("the link", async () => (await canvas.links()).some(({ from, output, to }) =>
    from === "k" && output === is.KEY_TEXT[1] && to === "String data send 1"));
  assert.equal(await page.page.locator(".pin-begun").count(), 0);
});

test("Escape gives up a wire that was begun by keys", async () => {
  await canvas.choose("k");
  await canvas.pin("k", is.KEY_DOWN[1]).focus();
  await page.keyboard.press("Enter");
  await page.page.locator(".pin-begun").waitFor();
  await page.keyboard.press("Escape");
  await page.page.locator(".pin-begun").waitFor({ state: "detached" });
});

test("the outline tells of each node where its inputs come from", async () => {
  const outline = page.page.locator("[data-outline]");
  assert.match(await outline.innerText(), /Text field 1, Text field input\s+Input key from Keyboard 1 · Key/);
});

test("Ctrl+Z in a field is the field's; elsewhere it undoes, with Shift it does again, as both pages show", async () => {
  const other = await is.openPage(browser, host);
  await must(script, { op: "rename", node: "m", graph: "Pointer" });
  const button = (view, which) => view.page.locator(`[data-${which}]`);
  await expectEventually("the step", () => button(page, "undo").getAttribute("title"), "Undo: Rename Mouse 1 to Pointer");
  await page.page.locator(".log-search").focus();
  await page.keyboard.press("Control+z");
  await button(page, "undo").focus();
  assert.equal((await canvas.names())[1], "Pointer");
  await page.keyboard.press("Control+z");
  await expectEventually("the name", async () => (await canvas.names())[1], "Mouse 1");
  await page.page.getByText("Undone: Rename Mouse 1 to Pointer. What nodes heard or sent meanwhile stays.").waitFor();
  await expectEventually("the step", () => button(other, "redo").getAttribute("title"), "Redo: Rename Mouse 1 to Pointer");
  await page.keyboard.press("Control+Shift+z");
  await expectEventually("the name", async () => (await canvas.names())[1], "Pointer");
  await other.page.locator("article[data-node=m] h3", { hasText: "Pointer" }).waitFor();
  await other.close();
});

test("the history lists the steps and leads back to any of them", async () => {
  for (const graph of ["One", "Two", "Three"]) {
    await must(script, { op: "rename", node: "m", graph });
  }
  await page.page.locator("[data-history]").click();
  await page.page.locator("[data-step]", { hasText: "Rename Mouse 1 to One" }).click();
  await expectEventually("the name", async () => (await canvas.names())[1], "One");
  await page.page.locator("[data-step][aria-current]", { hasText: "to One" }).waitFor();
  await page.page.locator("[data-step]", { hasText: "Rename Two to Three" }).click();
  await expectEventually("the name", async () => (await canvas.names())[1], "Three");
  await page.keyboard.press("Escape");
  await page.page.locator("[data-history]:focus").waitFor();
  assert.equal(await page.page.locator("[data-step]").count(), 0);
});

test("a line of the log leads to its node", async () => {
  await must(script, { op: "event", device: 0, event: 2002, payload: { is: "key", text: "F5" } });
  await page.page.locator("[data-line]").last().click();
  await expectEventually("the chosen node", () => canvas.chosen().locator("[data-face]").getAttribute("data-face"), "k");
  await expectEventually("cards", () => page.page.locator("article[data-node]").count(), 1);
  await page.page.getByRole("heading", { name: "Keyboard 1" }).waitFor();
});

test("the badge says whether what is sent goes out, and switches it for all pages", async () => {
  const other = await is.openPage(browser, host);
  await page.page.locator("[data-live=true]").click();
  await other.page.locator("[data-live=false]", { hasText: "LISTEN ONLY" }).waitFor();
  await other.page.locator("[data-live=false]").click();
  await page.page.locator("[data-live=true]", { hasText: "LIVE" }).waitFor();
  await other.close();
});

test("the panels' height is changed by dragging their edge and by keys, and the surface keeps its size", async () => {
  const edge = page.page.getByRole("separator");
  const height = async () => Math.round((await page.page.locator(".dock").boundingBox()).height);
  const surface = async () => JSON.stringify(await page.surface.boundingBox());
  const [before, seen] = [await height(), await surface()];
  const from = await canvas.middleOf(edge);
  await canvas.drag(from, { x: from.x, y: from.y - 60 });
  await expectEventually("the height", height, before + 60);
  await edge.focus();
  await page.keyboard.press("ArrowDown");
  await expectEventually("the height", height, before + 36);
  for (const tab of ["keyboard", "network", "hands"]) {
    await page.page.locator(`[data-tab=${tab}]`).click();
    assert.equal(await surface(), seen, tab);
  }
  await page.page.evaluate(() => localStorage.removeItem("iohost.dock-height"));
});

test("the render surface is enlarged and made smaller again", async () => {
  const width = async () => (await page.surface.boundingBox()).width;
  const before = await width();
  const button = page.page.getByRole("button", { name: "Enlarge the render surface" });
  await button.click();
  await until("a larger surface", async () => (await width()) > 1.2 * before);
  await button.click();
  await expectEventually("the width", width, before);
});
