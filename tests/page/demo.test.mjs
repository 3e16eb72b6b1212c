// The demo scene as a user meets it: every one of its thirteen nodes is seen at work. It runs in a network of its own,
// since the scene broadcasts.
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import path from "node:path";
import { fileURLToPath } from "node:url";
import { startBrowser } from "./support/browser.mjs";
import { takePicture } from "./support/pictures.mjs";
import { expectEventually, until } from "./support/session.mjs";
import { after, before, test } from "./support/test.mjs";

const ROOT = fileURLToPath(new URL("../..", import.meta.url));
const PANEL_TEXT = '{"scene":"demo","level":70}';

let demo;
let printed = "";
let browser;
let page;
let surface;
let box;

before(async () => {
  demo = spawn("scripts/demo", [process.env.IOHOST, "--listen", "127.0.0.1:0"], { cwd: ROOT });
  demo.stdout.on("data", (data) => (printed += data));
  demo.stderr.on("data", (data) => (printed += data));
  await until("the page's address", () => /page at http/.test(printed));
  browser = await startBrowser();
  page = await browser.contexts()[0].newPage();
  await page.setViewportSize({ width: 1280, height: 1120 }); // in the pictures cards are seen whole
  await page.goto(/page at (http:\S+)/.exec(printed)[1]);
  await page.locator("article[data-node=broadcast_receive]").waitFor();
  surface = page.locator("[data-surface]");
  box = await surface.boundingBox();
});

after(async () => {
  demo.kill("SIGINT");
  await once(demo, "close");
});

const output = (node, id) => page.locator(`[data-node="${node}"][data-output="${id}"]`);
const count = async (node, id) => Number(await output(node, id).getAttribute("data-count"));
const shows = (node, id, value) =>
  expectEventually(`${node} shows ${value}`, () => output(node, id).getAttribute("data-value"), value);
const tab = (id) => page.locator(`[data-tab=${id}]`).click();
const focus = () => page.mouse.click(box.x + 5, box.y + 5);

/** An event that an action fires once, or more often if asked for. */
async function fires(node, id, action, times = 1) {
  const before = await count(node, id);
  await action();
  await expectEventually(`${node} fired ${id}`, () => count(node, id), before + times);
}

/** What a stand-in device printed. */
const linesOf = (name) => printed.split("\n").filter((line) => line.startsWith(`${name}: {`));

async function drag(fromX, toX) {
  await page.mouse.move(box.x + fromX, box.y + 150);
  await page.mouse.down();
  await page.mouse.move(box.x + toX, box.y + 152, { steps: 8 });
  await page.mouse.up();
}

/** A picture with this card in view. */
async function picture(name, node, part) {
  await page.locator(`article[data-node=${node}]`).evaluate((card) => card.scrollIntoView({ block: "start" }));
  await takePicture(page, name, part);
}

test("all thirteen types have their card", async () => {
  const cards = page.locator("article[data-node]");
  await cards.last().evaluate((card) => card.scrollIntoView());
  await cards.last().locator("img").waitFor();
  const icons = () => page.locator("article[data-node] img").evaluateAll((images) =>
    images.filter(({ naturalWidth }) => naturalWidth > 0).map(({ src }) => src));
  await expectEventually("the icons' pictures", async () => (await icons()).length, 13);
  assert.equal(new Set(await icons()).size, 13);
});

test("the Panel's text is taken, and the Stage gets it and answers", async () => {
  await shows("device_json", 1452, PANEL_TEXT);
  await shows("net_receive", 552, PANEL_TEXT);
  await until("the Stage's line", () => linesOf("Stage").some((line) => line.includes('"KeyValue":"{\\"scene')));
});

test("keys make a text", async () => {
  await focus();
  await fires("keyboard", 152, () => page.keyboard.type("hi"), 2);
  await shows("text_field", 253, "hi");
  await shows("text_field", 252, "on");
  await until("both releases", async () => (await count("keyboard", 153)) === 2);
  await picture("graph", "text_field", "[data-graph]");
});

test("Esc, held, is seen by the key check node and empties the text", async () => {
  const holds = await count("key_check", 1153);
  await fires("key_check", 1152, () => page.keyboard.down("Escape"));
  await until("held", async () => (await count("key_check", 1153)) >= holds + 2);
  await fires("key_check", 1154, () => page.keyboard.up("Escape"));
  await shows("text_field", 253, "");
  await picture("page", "keyboard");
});

test("the on-screen keyboard types through the same nodes", async () => {
  await tab("keyboard");
  for (const key of ["o", "k"]) {
    await fires("keyboard", 152, () => page.locator(`.screen-keyboard [data-skbtn="${key}"]`).click());
  }
  await shows("text_field", 253, "ok");
  await picture("keys", "text_field");
  await tab("log");
});

test("a swipe sends the text to the Display", async () => {
  await fires("gesture", 755, () => drag(100, 400));
  await until("the Display's line", () => linesOf("Display").some((line) => line.includes('"hex":"6f6b00"')));
  await picture("pointer", "gesture");
  await fires("gesture", 754, () => drag(400, 100));
  await shows("text_field", 253, "");
});

test("the mouse has its buttons, wheel and place; the right button sends to the Stage", async () => {
  await fires("mouse", 355, () => page.mouse.wheel(0, -100));
  const sent = linesOf("Stage").length;
  const answered = await count("net_receive", 554);
  await fires("mouse", 359, () => page.mouse.click(box.x + 123, box.y + 45, { button: "right" }));
  await until("the place", async () => Math.abs(Number(await output("mouse", 370).getAttribute("data-value")) - 123) < 2);
  await until("another line of the Stage", () => linesOf("Stage").length > sent);
  await expectEventually("the Stage's answer", () => count("net_receive", 554), answered + 1);
  await picture("mouse", "mouse");
});

test("the right hand moves the Lamp", async () => {
  await tab("hands");
  await page.locator(".space-place canvas").waitFor();
  const place = async () => page.locator("[data-place='1']").innerText();
  const before = await place();
  await page.locator(".space-place").focus();
  for (let step = 0; step < 6; ++step) {
    await page.keyboard.press("ArrowRight");
  }
  await until("the hand to move", async () => (await place()) !== before);
  await until("the node's value", async () => {
    const x = Number((await place()).split(/\s+/)[0]); // it may be shown on the way
    return Math.abs(Number(await output("vr_handle", 852).getAttribute("data-value")) - x) < 0.01;
  });
  await page.locator("[data-hand='1'] .trigger").hover();
  await fires("vr_handle", 864, () => Promise.all([page.mouse.down(), page.mouse.up()]));
  assert.match(await page.locator("[data-hand='1']").innerText(), /moves Lamp/);
  await picture("hands", "vr_handle");
});

test("text for the Lamp is passed on, and goes to the Stage with the next record", async () => {
  await tab("json");
  await page.locator("[data-json=to]").selectOption("object");
  await page.locator("[data-json=clip]").fill("Demo");
  await page.locator("[data-json=object]").fill("Lamp");
  await page.locator("[data-json=text]").fill('{"on":true}');
  await fires("object_json", 1253, () => page.locator("[data-json=send]").click());
  await shows("object_json", 1252, '{"on":true}');
  await picture("json", "object_json");
  await picture("device_json", "device_json");
  await page.locator('button[data-node=net_send][data-param="410"]').click();
  await shows("net_receive", 553, '{"on":true}');
});

test("the devices' connections are shown", async () => {
  await tab("network");
  await until("all three", async () => /Stage[^]*Display[^]*Panel/.test(await page.locator("#panel-network").innerText()));
  await picture("parameters", "net_send");
});

test("nothing is broadcast until Send is pressed", async () => {
  await shows("broadcast_receive", 1353, "");
  await page.locator('button[data-node=broadcast_send][data-param="606"]').click();
  await shows("broadcast_receive", 1352, "greeting");
  await shows("broadcast_receive", 1353, "hello|everybody");
  await picture("broadcast", "broadcast_send");
});
