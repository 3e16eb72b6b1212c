// The scene's nodes and notes are changed on the canvas, by the mouse and by keys, each change as one step, seen by other
// pages at once.
import assert from "node:assert/strict";
import { canvasOf, drawn } from "./support/canvas.mjs";
import { canvas, isShown, placeOf, shownAt, stepIs, TEXT_INPUT, useCanvas } from "./support/editing.mjs";
import * as is from "./support/page.mjs";
import { browser, host, page, script } from "./support/scene.mjs";
import { createNode, expectEventually, must, nodeOf, Type, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

const HAS_TEXT = 252;

useCanvas();

test("a node that is dragged stays where it was put, on every page, and goes back when that's undone", async () => {
  const second = await is.openPage(browser, host);
  const other = canvasOf(second.page, script);
  const from = await canvas.middleOf(canvas.face("m").locator("header strong"));
  await canvas.drag(from, { x: from.x + 60, y: from.y + 30 });
  await until("another place", async () => (await placeOf("m")).x > 0);
  await stepIs("Move Mouse 1");
  const { x, y } = await placeOf("m");
  await expectEventually("the place here", () => shownAt("m"), `${x} ${y}`);
  await expectEventually("the place there", () => shownAt("m", other), `${x} ${y}`);
  await page.keyboard.press("Control+z");
  await expectEventually("the place there", () => shownAt("m", other), "0 200");
});

test("what was moved stays where it was put when the drag breaks off or the key's end goes elsewhere, and the view stands still", async () => {
  const view = () => page.page.locator(".react-flow__viewport").getAttribute("style");
  const before = await view();
  await canvas.choose("k", "m");
  const from = await canvas.middleOf(canvas.face("k").locator("header strong"));
  const { x, width } = await canvas.pane().boundingBox();
  const edge = x + width - 10;
  await page.mouse.move(from.x, from.y);
  await page.mouse.down();
  await page.page.locator(".log-search").focus();
  await page.mouse.move(edge, from.y + 30, { steps: 8 });
  await until("a view that follows", async () => (await view()) !== before);
  await must(script, { op: "destroy", node: "k" });
  await canvas.face("k").waitFor({ state: "detached" });
  await page.mouse.move(edge - 1, from.y + 30);
  await page.mouse.up();
  await stepIs("Move Mouse 1");
  assert.ok((await placeOf("m")).x > 0);
  await page.page.evaluate(drawn); // the library pans until it heard of the end
  const after = await view();
  await page.page.evaluate(drawn);
  assert.equal(await view(), after);
  await page.page.locator(".react-flow__controls-fitview").click();
  await canvas.choose("t");
  await page.keyboard.down("ArrowDown");
  await page.page.locator(".log-search").focus();
  await stepIs("Move Text field 1");
});

/** Takes back the step that moved the mouse node, which was all that moved it. */
async function undoMove() {
  await stepIs("Move Mouse 1");
  await page.keyboard.press("Control+z");
  await until("the place before", async () => JSON.stringify(await placeOf("m")) === '{"x":0,"y":200}');
}

test("a node is dragged again after a pinch that began on it, from where the finger takes it; each drag is a step", async () => {
  const wire = await page.page.context().newCDPSession(page.page);
  await wire.send("Emulation.setTouchEmulationEnabled", { enabled: true, maxTouchPoints: 2 });
  await page.page.reload();
  await isShown();
  const touch = (type, ...touchPoints) => wire.send("Input.dispatchTouchEvent", { type, touchPoints });
  const zoom = await canvas.zoom();
  /** Moves the node by so many pixels of the screen, from so far left of its middle. */
  const drag = async (by, left, ...others) => {
    const { x: middle, y } = await canvas.middleOf(canvas.face("m").locator("header"));
    const x = middle - left;
    await touch("touchStart", { x, y });
    await touch("touchMove", { x: x + 40, y }); // from here it goes with the finger
    await touch("touchMove", { x: x + 40 + by, y });
    for (const other of others) {
      await touch("touchStart", { x: x + 40 + by, y }, { x, y: y + other });
      await touch("touchMove", { x: x + 50 + by, y }, { x, y: y + other + 10 });
    }
    await touch("touchEnd");
  };
  await drag(50, 0, 60);
  await stepIs("Move Mouse 1");
  const { x, y } = await placeOf("m");
  await expectEventually("the place shown", () => shownAt("m"), `${x} ${y}`);
  await drag(50, 20);
  await until("another place", async () => (await placeOf("m")).x > x);
  assert.equal((await placeOf("m")).x - x, Math.round(50 / zoom));
  await page.keyboard.press("Control+z");
  await until("the place before", async () => (await placeOf("m")).x === x);
  await undoMove();
});

test("a drag during which the focus leaves is one step", async () => {
  await canvas.choose("m");
  await canvas.chosen().focus();
  const { x, y } = await canvas.middleOf(canvas.face("m").locator("header strong"));
  await page.mouse.move(x, y);
  await page.mouse.down();
  await page.mouse.move(x + 30, y, { steps: 4 });
  await page.page.locator(".log-search").focus();
  await page.mouse.move(x + 60, y, { steps: 4 });
  await page.mouse.up();
  await canvas.pane().focus();
  await undoMove();
});

test("arrow keys, held or pressed several times, are one step, also after a click that jittered", async () => {
  const { x, y } = await canvas.middleOf(canvas.face("m").locator("header strong"));
  await page.mouse.move(x, y);
  await page.mouse.down();
  await page.mouse.move(x + 4, y);
  await page.mouse.up();
  await canvas.chosen().focus();
  for (let held = 0; held < 3; ++held) {
    await page.keyboard.down("ArrowDown");
  }
  await page.keyboard.up("ArrowDown");
  await stepIs("Move Mouse 1");
  const { y: held } = await placeOf("m");
  await page.page.evaluate(drawn); // each press moves from where the node is drawn
  await page.keyboard.press("ArrowDown");
  await page.page.evaluate(drawn);
  await page.keyboard.press("ArrowRight");
  await until("another place", async () => (await placeOf("m")).x > 0 && (await placeOf("m")).y > held);
  await undoMove();
});

test("what is moved by keys goes on from where it's shown, though the host tells of an older place meanwhile", async () => {
  let isHeldBack = false;
  const asked = [];
  await is.between(page.page, {
    toHost: (request) => (isHeldBack && request.op === "place" ? void asked.push(request) : request),
  });
  await page.page.reload();
  await isShown();
  const hear = async (name) => {
    await must(script, { op: "rename", node: "t", graph: name });
    await canvas.face("t").getByText(name).waitFor();
    await page.page.evaluate(drawn);
  };
  await canvas.choose("m");
  await canvas.chosen().focus();
  await page.keyboard.down("ArrowDown");
  await hear("while the key is down");
  await page.keyboard.down("ArrowDown");
  isHeldBack = true;
  await page.keyboard.up("ArrowDown");
  await until("it's asked for", () => asked.length === 1);
  await hear("before it's answered");
  isHeldBack = false;
  await page.keyboard.press("ArrowRight");
  await until("another place", async () => (await placeOf("m")).x > 0);
  const [{ x: step }, { y }] = [await placeOf("m"), asked[0].nodes.m];
  assert.equal(y, 200 + 2 * step);
  assert.equal((await placeOf("m")).y, y);
});

test("what is chosen by a frame is moved by the arrow keys as one step", async () => {
  await page.page.locator(".react-flow__controls-fitview").click();
  const { x, y, width, height } = await canvas.pane().boundingBox();
  await page.keyboard.down("Shift");
  await page.page.locator(".react-flow__pane.selection").waitFor();
  await page.page.evaluate(drawn); // until then the mouse would still move the view
  await canvas.drag({ x: x + 4, y: y + 4 }, { x: x + width - 4, y: y + height - 60 });
  await page.keyboard.up("Shift");
  await expectEventually("chosen", () => canvas.chosen().count(), 3);
  await canvas.chosen().first().focus();
  await page.keyboard.press("ArrowDown");
  await stepIs("Move 3 nodes");
  assert.ok((await placeOf("k")).y > 0);
});

test("nodes are lined up, or all of them arranged, each with its note, as one step", async () => {
  await canvas.choose("k", "t");
  await page.page.getByRole("button", { name: "Align left" }).click();
  await until("one line", async () => (await placeOf("t")).x === 0);
  const note = { x: 0, y: 290, width: 200, height: 90, text: "below the folded mouse" };
  await must(script, { op: "place", nodes: { m: { x: 0, y: 200, folded: true } }, notes: { n: note } });
  await page.page.locator("[data-note=n]").waitFor();
  await page.page.locator("[data-face=m][data-folded=true]").waitFor();
  await page.page.getByRole("button", { name: "Arrange" }).click();
  await stepIs("Move 3 nodes");
  const [{ x, y }, { notes: { n } }] = [await placeOf("m"), await canvas.scene()];
  assert.notDeepEqual([x, y], [0, 200]);
  assert.deepEqual(n, { ...note, x, y: n.y });
  assert.ok(n.y - y <= 90, `${n.y - y} below its node's top`);
  await page.keyboard.press("Control+z");
  await expectEventually("the note's place", async () => (await canvas.scene()).notes.n.y, 290);
  assert.equal((await placeOf("m")).y, 200);
});

test("what is typed into an input stays while Escape is for composing, and goes with Escape alone", async () => {
  await createNode(script, "s", Type.stringSend, "Sender");
  await canvas.choosePalette("Sender");
  const field = page.page.locator('article input[data-param="1505"]');
  await field.fill("ni");
  const escape = (isComposing) =>
    field.evaluate((one, composing) => one.dispatchEvent(new KeyboardEvent("keydown", { key: "Escape", isComposing: composing, bubbles: true })), isComposing);
  await escape(true);
  await page.page.evaluate(drawn);
  assert.equal(await field.inputValue(), "ni");
  await escape(false);
  await expectEventually("the text", () => field.inputValue(), "");
});

test("a text that is too long for the page is left out of a copy, which says so", async () => {
  await createNode(script, "s", Type.stringSend, "Sender");
  await must(script, { op: "edit", node: "s", param: 1505, string: "x".repeat(70000) });
  await canvas.choosePalette("Sender");
  await page.page.locator('article input[data-param="1505"][placeholder^="70,000"]').waitFor();
  await canvas.face("s").focus();
  await page.keyboard.press("Control+c");
  await page.page.getByText("Copied: 1 · too long to be copied, left out: 1").waitFor();
  await page.keyboard.press("Control+d");
  await page.page.getByText("Added: 1 · too long to be copied, left out: 1").waitFor();
});

test("chosen nodes are copied with their links, and pasted on another page", async () => {
  await canvas.choose("k", "t", "m");
  await page.keyboard.press("Control+c");
  await page.page.getByText("Copied: 3").waitFor();
  const other = await is.openPage(browser, host);
  const there = canvasOf(other.page, script);
  await there.choose("k");
  await other.keyboard.press("Control+v");
  await canvas.nodesAre(["Keyboard 1", "Mouse 1", "Text field 1", "Keyboard 2", "Mouse 2", "Text field 2"]);
  const { nodes, links } = await canvas.scene();
  const [keyboard, , text] = nodes.slice(3).map(({ node }) => node);
  assert.deepEqual(links.at(-1), { from: keyboard, output: is.KEY_TEXT[1], to: text, input: TEXT_INPUT });
  await stepIs("Paste 3 nodes");
  await other.keyboard.press("Control+z");
  await canvas.nodesAre(["Keyboard 1", "Mouse 1", "Text field 1"]);
});

test("a chosen node is doubled, and several are deleted as one step", async () => {
  await canvas.choose("m");
  await page.page.getByRole("button", { name: "Duplicate" }).click();
  await page.page.getByRole("heading", { name: "Mouse 2" }).waitFor();
  await canvas.choose("k", "t");
  await page.page.getByRole("button", { name: "Delete", exact: true }).click();
  await page.page.getByText("Deleted: 2 nodes and a wire. Undo brings it back.").waitFor();
  await canvas.nodesAre(["Mouse 1", "Mouse 2"]);
  await stepIs("Delete 2 nodes");
  await page.keyboard.press("Control+z");
  await until("both", async () => (await canvas.names()).length === 4);
  assert.equal((await canvas.links()).length, 1);
});

const isInSight = (node) =>
  until(`${node} in sight`, async () => {
    const [pane, face] = [await canvas.pane().boundingBox(), await canvas.face(node).boundingBox()];
    return face !== null && face.x >= pane.x && face.x + face.width <= pane.x + pane.width;
  });

test("nodes that are added one after the other stand side by side, and the last one is seen", async () => {
  const types = ["Touch gesture", "Device JSON receive", "VR handle"];
  for (const type of types) {
    await canvas.choosePalette(type);
    await canvas.face(`${type} 1`).waitFor();
  }
  const places = (await canvas.scene()).nodes.slice(3).map(({ place }) => place.x);
  assert.ok(places[0] + 300 < places[1] && places[1] + 300 < places[2], String(places));
  await isInSight("VR handle 1");
});

test("a node that is added stands apart from what is below it, though it's of the highest type", async () => {
  await must(script, { op: "place", notes: { n: { x: -300, y: 600, width: 1500, height: 100, text: "" } } });
  await page.page.locator("[data-note=n]").waitFor();
  await canvas.choosePalette("Mouse");
  await canvas.face("Mouse 1").locator("header", { hasText: "Mouse 2" }).waitFor();
  const isOnAnother = await canvas.face("Mouse 1").evaluate((face) => {
    const own = face.getBoundingClientRect();
    return [...document.querySelectorAll("[data-face], [data-note]")]
      .filter((one) => one !== face)
      .map((one) => one.getBoundingClientRect())
      .some(({ x, y, right, bottom }) => x < own.right && own.x < right && y < own.bottom && own.y < bottom);
  });
  assert.equal(isOnAnother, false);
});

test("what is pasted comes into sight, where a few nodes aren't shown larger than they are", async () => {
  await canvas.choose("m");
  await page.keyboard.press("Control+c");
  await page.page.getByText("Copied: 1").waitFor();
  await must(script, { op: "place", nodes: { k: { x: 5000, y: 5000 } } });
  await must(script, { op: "destroy", node: "m" });
  await must(script, { op: "destroy", node: "t" });
  await expectEventually("faces", () => page.page.locator("[data-face]").count(), 1);
  await expectEventually("the place shown", () => shownAt("k"), "5000 5000");
  await page.page.locator(".react-flow__controls-fitview").click();
  await expectEventually("the zoom", () => canvas.zoom(), 1);
  await page.keyboard.press("Control+v");
  await isInSight("m 1");
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

test("a node is renamed by F2 and by a double click; Escape, or Enter in a word that is composed, renames nothing", async () => {
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
  await page.keyboard.press("F2");
  await page.page.locator(".face-rename:focus").waitFor();
  await page.page.locator(".log-search").click();
  await page.page.locator(".face-rename").waitFor({ state: "detached" });
  await page.page.locator(".log-search:focus").waitFor();
  assert.equal(page.sent.filter(({ op }) => op === "rename").length, 1);

  await canvas.choose("m");
  await page.keyboard.press("F2");
  const field = page.page.locator(".face-rename:focus");
  await field.fill("名");
  await field.dispatchEvent("keydown", { key: "Enter", isComposing: true, bubbles: true });
  await field.fill("名字");
  await page.keyboard.press("Enter");
  await stepIs("Rename Pointer to 名字");
  assert.equal(page.sent.filter(({ op }) => op === "rename").length, 2);
  await nodeHasFocus();
  await page.keyboard.press("F2");
  await field.fill("Keyboard 1");
  await page.keyboard.press("Enter");
  await canvas.message().getByText("Keyboard 1 is the name of another node, too.").waitFor();
});

test("a node that goes while it's renamed comes back as it was, without the field for its name", async () => {
  await canvas.choose("m");
  await page.keyboard.press("F2");
  await page.page.locator(".face-rename:focus").fill("half a name");
  await must(script, { op: "destroy", node: "m" });
  await canvas.face("m").waitFor({ state: "detached" });
  await must(script, { op: "undo" });
  await canvas.face("m").getByText("Mouse 1").waitFor();
  assert.equal(await page.page.locator(".face-rename").count(), 0);
});

/** How far the wire's ends are from the outer edges of its pins, in pixels. */
function gaps(path) {
  const pin = ([face, id]) => document.querySelector(`[data-face=${face}] [data-handleid="${id}"]`).getBoundingClientRect();
  const [from, to] = [["k", 154], ["t", 202]].map(pin);
  const ends = [0, path.getTotalLength()].map((at) => path.getPointAtLength(at).matrixTransform(path.getScreenCTM()));
  const edges = [{ x: from.right, y: from.top + from.height / 2 }, { x: to.left, y: to.top + to.height / 2 }];
  return Math.max(...ends.map(({ x, y }, index) => Math.hypot(x - edges[index].x, y - edges[index].y)));
}

test("a folded node has only its linked pins, on every page", async () => {
  const second = await is.openPage(browser, host);
  const other = canvasOf(second.page, script);
  const wireEnds = () => until("a wire that ends at its pins", async () =>
    (await page.page.locator(".react-flow__edge-path").evaluate(gaps)) < 1);
  await wireEnds();
  await page.page.getByRole("button", { name: "Fold Keyboard 1" }).click();
  await page.page.locator('[data-face="k"][data-folded=true]').waitFor();
  await other.face("k").locator(".pin").first().waitFor();
  await expectEventually("pins", () => other.face("k").locator(".pin").count(), 1);
  await wireEnds();
  await page.page.getByRole("button", { name: "Unfold Keyboard 1" }).click();
  await expectEventually("pins", () => canvas.face("k").locator(".pin").count(), 4);
  await must(script, { op: "place", nodes: { m: { x: 0, y: 200, folded: true } } });
  await page.page.reload();
  await isShown();
  const zoom = await canvas.zoom();
  await page.page.locator(".react-flow__controls-fitview").click();
  await page.page.evaluate(drawn);
  assert.equal(await canvas.zoom(), zoom, "at first it's shown as large as it is");
});

test("notes are part of the scene: written, moved, and taken away", async () => {
  await page.page.getByRole("button", { name: "Add note" }).evaluate((button) => {
    button.click();
    button.click(); // before the host has answered
    document.execCommand("insertText", false, "Keys ");
  });
  await page.page.locator(".react-flow__node-note.selected").waitFor();
  await stepIs("Add a note");
  const field = page.page.locator("[data-note] textarea:focus");
  const notes = async () => Object.values((await canvas.scene()).notes ?? {});
  const write = async (keys, written) => {
    await field.waitFor();
    await page.keyboard.type(keys);
    await page.keyboard.press("Escape");
    await page.page.locator(".react-flow__node-note:focus").waitFor();
    await expectEventually("the text", async () => (await notes())[0]?.text, written);
  };
  await write("for the title", "Keys for the title");
  assert.equal((await notes()).length, 1);
  await page.keyboard.press("F2");
  await write("\n".repeat(9), `Keys for the title${"\n".repeat(9)}`);
  assert.equal(await page.page.locator("[data-note] textarea").evaluate(({ scrollTop }) => scrollTop), 0);
  await page.keyboard.press("Enter");
  await field.waitFor();
  await page.keyboard.press("Escape");
  const { x } = (await notes())[0];
  const box = await page.page.locator("[data-note]").boundingBox();
  await canvas.drag({ x: box.x + 20, y: box.y + 6 }, { x: box.x + 70, y: box.y + 6 });
  await until("another place", async () => (await notes())[0].x > x);
  await page.keyboard.press("Delete");
  await until("no note", async () => (await notes()).length === 0);
});

/** The texts of the scene's notes. */
const noteTexts = async () => Object.values((await canvas.scene()).notes ?? {}).map(({ text }) => text).sort().join();

test("what was written in a note while the connection was away is kept once it's back", async () => {
  await must(script, { op: "place", notes: { n: { x: 0, y: 420, width: 200, height: 100, text: "before" } } });
  const other = await is.openTab(browser);
  let connection = null;
  let isAway = false;
  await other.routeWebSocket(/gathered/, (socket) => {
    connection = socket;
    if (isAway) {
      void socket.close();
    } else {
      socket.connectToServer();
    }
  });
  await other.goto(host.address);
  await other.locator("[data-note] textarea").fill("after");
  isAway = true;
  await connection.close();
  await other.locator("[data-connection=lost]").waitFor();
  await other.keyboard.press("Escape");
  await other.locator("[data-graph-message]", { hasText: "Not connected" }).waitFor();
  isAway = false;
  await expectEventually("the text", noteTexts, "after");
});

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
  await expectEventually("notes shown", () => note.count(), 1);
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
});

test("what is being typed into a note stays while another page changes the note, and what isn't touched follows", async () => {
  const note = { x: 30, y: 420, width: 200, height: 100, text: "first" };
  const change = (text) => must(script, { op: "place", notes: { n: { ...note, text } } });
  await change("first");
  const field = page.page.locator("[data-note=n] textarea");
  await field.waitFor();
  await field.focus();
  await change("second");
  await expectEventually("the text", () => field.inputValue(), "second");
  await field.fill("typed");
  await must(script, { op: "place", notes: { n: { ...note, text: "third" }, o: { ...note, y: 620, text: "other" } } });
  await page.page.locator("[data-note=o]").waitFor();
  await page.page.locator("[data-note=n] textarea:focus").waitFor();
  assert.equal(await field.inputValue(), "typed");
  await field.blur();
  await expectEventually("the notes", noteTexts, "other,typed");
  await change("fourth");
  await expectEventually("the text", () => field.inputValue(), "fourth");
});

test("what is being typed when the page is left is kept", async () => {
  await createNode(script, "s", Type.stringSend, "Sender");
  await must(script, { op: "place", notes: { n: { x: 30, y: 420, width: 200, height: 100, text: "" } } });
  await page.page.locator("[data-note=n] textarea").fill("a note");
  await page.page.reload();
  await expectEventually("the notes", noteTexts, "a note");
  await page.page.locator('article[data-node=s] [data-param="1505"]').fill("a text");
  await page.page.reload();
  await expectEventually("the text", () => page.page.locator('article[data-node=s] [data-param="1505"]').inputValue(), "a text");
});

test("a note that is moved, sized or lined up keeps the text that another page gave it just then", async () => {
  let hears = true;
  await is.between(page.page, { toPage: (messages) => messages.filter(({ push }) => hears || push !== "scene") });
  const note = { x: 420, y: 220, width: 200, height: 100 };
  const kept = async () => (await canvas.scene()).notes.n;
  const expectKept = async (what, value) => {
    await expectEventually(what, async () => (await kept())[what], value);
    assert.equal((await kept()).text, "second");
  };
  await must(script, { op: "place", notes: { n: { ...note, text: "first" } } });
  await page.page.reload();
  await page.page.locator("[data-note=n]").click({ position: { x: 3, y: 3 } });
  await canvas.adding(() => canvas.face("k").locator("header img").click());
  await expectEventually("chosen", () => canvas.chosen().count(), 2);
  hears = false;
  await must(script, { op: "place", notes: { n: { ...note, text: "second" } } });
  await page.page.getByRole("button", { name: "Align left" }).click();
  await expectKept("x", 0);
  await page.page.getByRole("button", { name: "Size of the note" }).press("ArrowRight");
  await expectKept("width", 220);
  await page.page.locator(".react-flow__node-note").press("ArrowDown");
  await until("another place", async () => (await kept()).y > 220);
  assert.equal((await kept()).text, "second");
});

test("a note that is moved, sized and written in a row stays as it was moved and sized, before the page is told", async () => {
  let hears = true;
  await is.between(page.page, { toPage: (messages) => messages.filter(({ push }) => hears || push !== "scene") });
  await must(script, { op: "place", notes: { n: { x: 420, y: 220, width: 200, height: 100, text: "here" } } });
  await page.page.reload();
  const kept = async () => (await canvas.scene()).notes.n;
  const sizeBy = (key) => page.page.getByRole("button", { name: "Size of the note" }).press(key);
  await page.page.locator("[data-note=n]").click({ position: { x: 3, y: 3 } });
  hears = false;
  await sizeBy("ArrowRight");
  await expectEventually("the width", async () => (await kept()).width, 220);
  await page.page.locator(".react-flow__node-note").press("ArrowDown");
  await until("another place", async () => (await kept()).y > 220);
  const { y, width } = await kept();
  assert.equal(width, 220);
  await sizeBy("ArrowDown");
  await expectEventually("the height", async () => (await kept()).height, 120);
  assert.equal((await kept()).y, y);
  const field = page.page.locator("[data-note=n] textarea");
  await field.fill("there");
  await field.blur();
  await expectEventually("the text", async () => (await kept()).text, "there");
  assert.deepEqual(await kept(), { x: 420, y, width: 220, height: 120, text: "there" });
  await canvas.adding(() => canvas.face("k").locator("header img").click());
  await page.page.getByRole("button", { name: "Align tops" }).click();
  await expectEventually("the place", async () => (await kept()).y, 0);
  assert.deepEqual(await kept(), { x: 420, y: 0, width: 220, height: 120, text: "there" });
});

test("a note too long for the page stays whole when it's sized, isn't copied, and typing replaces it", async () => {
  const place = { x: 420, y: 220, width: 200, height: 100 };
  await must(script, { op: "place", notes: { n: { ...place, text: "x".repeat(70_000) } } });
  const kept = async () => (await canvas.scene()).notes.n;
  const field = page.page.getByPlaceholder("70,000 characters; typing replaces them");
  await field.focus();
  assert.equal(await field.inputValue(), "");
  await page.keyboard.press("Escape");
  await page.keyboard.press("Enter");
  await page.page.locator(".react-flow__node-note.selected").waitFor();
  for (const [keys, done] of [["Control+c", "Copied"], ["Control+d", "Added"]]) {
    await page.page.locator(".react-flow__node-note").press(keys);
    await canvas.message().getByText(`${done}: 0 · too long to be copied, left out: 1`).waitFor();
  }
  await page.page.getByRole("button", { name: "Size of the note" }).press("ArrowRight");
  await expectEventually("the width", async () => (await kept()).width, 220);
  assert.equal((await kept()).length, 70_000);
  await field.fill("short");
  await field.blur();
  await expectEventually("the text", async () => (await kept()).text, "short");
  await expectEventually("the field", () => page.page.locator("[data-note=n] textarea").inputValue(), "short");
});

test("a note is sized by keys at its corner, a held key as one step, and by the pointer there", async () => {
  await must(script, { op: "place", notes: { n: { x: 420, y: 220, width: 200, height: 100, text: "here" } } });
  const note = page.page.locator(".react-flow__node-note");
  const sizeIs = (size) => expectEventually("the size", async () => {
    const { width, height } = (await canvas.scene()).notes.n;
    return `${width} ${height}`;
  }, size);
  await note.focus();
  await page.keyboard.press("Enter");
  await page.page.locator(".react-flow__node-note.selected").waitFor();
  await page.keyboard.press("Tab");
  await page.keyboard.press("Tab");
  const corner = page.page.getByRole("button", { name: "Size of the note" });
  await until("the focus on the corner", () => corner.evaluate((one) => one.matches(":focus")));
  for (let held = 0; held < 3; ++held) {
    await page.keyboard.down("ArrowRight");
  }
  await page.keyboard.up("ArrowRight");
  await sizeIs("260 100");
  await page.keyboard.press("ArrowDown");
  await sizeIs("260 120");
  for (let pressed = 0; pressed < 5; ++pressed) {
    await page.keyboard.press("ArrowUp");
  }
  await sizeIs("260 60");
  await page.keyboard.press("Control+z");
  await sizeIs("260 80");
  for (const size of ["260 100", "260 120", "260 100", "200 100"]) {
    await page.keyboard.press("Control+z");
    await sizeIs(size);
  }
  await expectEventually("the width shown", () => note.evaluate((one) => one.offsetWidth), 200);
  const edges = await page.page.locator(".react-flow__resize-control:is(.handle, .left, .right):not(.note-corner)").evaluateAll((all) => all.map(({ offsetWidth }) => offsetWidth));
  assert.ok(edges.length === 6 && Math.max(...edges) < 10, `handles ${edges} wide`);
  const zoom = await canvas.zoom();
  const from = await canvas.middleOf(corner);
  await canvas.drag(from, { x: from.x + 40 * zoom, y: from.y + 60 * zoom });
  await until("another size", async () => (await canvas.scene()).notes.n.width > 200);
  const { x, y, width, height } = (await canvas.scene()).notes.n;
  assert.deepEqual([x, y], [420, 220]);
  assert.ok(Math.abs(width - 240) < 3 && Math.abs(height - 160) < 3, `${width} ${height}`);
});

test("what was typed and wasn't taken stays, with the reason, until it's taken or taken back", async () => {
  let isRefused = true;
  const refuse = ({ id }) => void tell([{ ok: false, id, error: "the session has ended" }]);
  const tell = await is.between(page.page, {
    toHost: (request) => (isRefused && ["edit", "rename"].includes(request.op) ? refuse(request) : request),
  });
  await createNode(script, "s", Type.stringSend, "Sender");
  await page.page.reload();
  await canvas.face("s").locator("strong").dblclick();
  const name = page.page.locator(".face-rename");
  await name.fill("Wall");
  await page.keyboard.press("Enter");
  await expectEventually("the reason", () => canvas.message().innerText(), "the session has ended");
  assert.equal(await name.inputValue(), "Wall");
  const card = page.page.locator("article[data-node=s]");
  const reason = card.getByRole("alert");
  const text = card.locator('[data-param="1505"]');
  await text.fill("Hello");
  await text.blur();
  await expectEventually("the reason", () => reason.innerText(), "the session has ended");
  assert.equal(await text.inputValue(), "Hello");
  isRefused = false;
  await text.press("Enter");
  await reason.waitFor({ state: "detached" });
  await name.press("Enter");
  await name.waitFor({ state: "detached" });
  await card.getByRole("heading", { name: "Wall" }).waitFor();
  assert.equal(await text.inputValue(), "Hello");
  const number = card.locator('[data-param="1503"]');
  await number.fill("12a");
  await number.press("Enter");
  await reason.waitFor();
  assert.equal(await number.inputValue(), "12a");
  await number.press("Escape");
  await reason.waitFor({ state: "detached" });
  await number.fill("12a");
  await number.press("Enter");
  await reason.waitFor();
  await must(script, { op: "link", from: "t", output: HAS_TEXT, to: "s", input: 1503 });
  await reason.waitFor({ state: "detached" });
  assert.equal(await number.inputValue(), "0");
});

test("what is being typed goes with its scene: the next one's node and note of the same name stay as they are", async () => {
  const nodes = [nodeOf("k", Type.keyboard, "Keys"), nodeOf("m", Type.mouse, "m"), nodeOf("s", Type.stringSend, "s")];
  const notes = { n: { x: 30, y: 420, width: 200, height: 100, text: "" } };
  const load = async () => {
    await must(script, { op: "load", scene: { format: "iohost scene", version: 1, nodes, notes, links: [] } });
    await page.page.locator(".face-rename, :focus[data-param], .note-text:focus").waitFor({ state: "detached" });
    await page.page.locator("[data-note] textarea").waitFor();
  };
  await load();
  await canvas.face("k").locator("strong").dblclick();
  await page.page.locator(".face-rename:focus").fill("half a name");
  await load();
  await page.page.locator("[data-note] textarea").fill("half a note");
  await load();
  await page.page.locator('article[data-node=s] [data-param="1505"]').fill("half a text");
  await load();
  await page.page.evaluate(drawn);
  assert.deepEqual(page.sent.filter(({ op }) => ["rename", "place", "edit"].includes(op)), []);
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

test("Ctrl+K opens nothing behind a dialog", async () => {
  await page.page.getByRole("button", { name: "Open", exact: true }).click();
  const dialog = page.page.getByRole("dialog", { name: "Open a scene" });
  await dialog.waitFor();
  await page.keyboard.press("Control+k");
  await page.keyboard.press("Escape");
  await dialog.waitFor({ state: "detached" });
  assert.equal(await page.page.locator("[data-palette]").count(), 0);
});

test("Escape unselects a node, which keeps the focus", async () => {
  await canvas.choose("k");
  await page.page.locator(".react-flow__node.selected").focus();
  await page.keyboard.press("Escape");
  await expectEventually("chosen", () => canvas.chosen().count(), 0);
  await page.page.evaluate(drawn);
  await page.page.locator(`.react-flow__node[data-id="node:k"]:focus`).waitFor();
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
  await page.page.getByText("Undone: Rename Mouse 1 to Pointer. What nodes heard or sent since isn't undone.").waitFor();
  const told = other.page.locator("[data-graph-message]");
  await told.getByText("Undone elsewhere: Rename Mouse 1 to Pointer").waitFor();
  await expectEventually("the step", () => button(other, "redo").getAttribute("title"), "Redo: Rename Mouse 1 to Pointer");
  await page.keyboard.press("Control+Shift+z");
  await expectEventually("the name", async () => (await canvas.names())[1], "Pointer");
  await other.page.locator("article[data-node=m] h3", { hasText: "Pointer" }).waitFor();
  await told.getByText("Done again elsewhere: Rename Mouse 1 to Pointer").waitFor();
  await page.page.getByText("Done again: Rename Mouse 1 to Pointer").waitFor();
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
