// Measures what bench/page says: the demo's nodes, once or many times over, in a page of the headless browser.
import { readFileSync, writeFileSync } from "node:fs";
import { parseArgs } from "node:util";
import { startBrowser } from "../tests/page/support/browser.mjs";
import { startHost } from "../tests/page/support/host.mjs";
import { must, openSession } from "../tests/page/support/session.mjs";

const { values: options } = parseArgs({
  options: { rounds: { type: "string", default: "5" }, seconds: { type: "string", default: "5" } },
});
const ROUNDS = Number(options.rounds);
const SECONDS = Number(options.seconds);
const EVENTS_PER_SECOND = 60;
const MOST_AT_REST = 0.04; // share of a core
const KEYBOARD = 0; // the device, and its events
const KEY_DOWN = 2002;
const KEY_UP = 2003;
const SCENE = "build/bench-page.json";

const demo = JSON.parse(readFileSync("app/scenes/demo.json", "utf8"));

/** The demo's nodes so many times over, without devices: connecting isn't measured. */
function writeScene(times) {
  const copies = Array.from({ length: times }, (_, index) => index);
  const nodes = copies.flatMap((copy) =>
    demo.nodes.map(({ place, ...node }) => ({ ...node, node: `${node.node}${copy}`, graph: `${node.graph} ${copy}` })),
  );
  const links = copies.flatMap((copy) =>
    demo.links.map((link) => ({ ...link, from: `${link.from}${copy}`, to: `${link.to}${copy}` })),
  );
  writeFileSync(SCENE, JSON.stringify({ ...demo, nodes, links, devices: [] }));
}

const pause = (seconds) => new Promise((resolve) => setTimeout(resolve, seconds * 1000));
const median = (values) => [...values].sort((a, b) => a - b)[values.length >> 1];

/** The browser's processor time so far, all of its processes together, in seconds. */
async function browserTime(tools) {
  const { processInfo } = await tools.send("SystemInfo.getProcessInfo");
  return processInfo.reduce((sum, { cpuTime }) => sum + cpuTime, 0);
}

/** What share of a core the browser takes while something goes on. */
async function share(tools, goOn) {
  const before = await browserTime(tools);
  const start = performance.now();
  await goOn();
  return (await browserTime(tools) - before) / ((performance.now() - start) / 1000);
}

/** Waits until the page is drawn, which may take it long after all is there, and the browser has tidied its memory up. */
async function rest(tools) {
  for (let tries = 0; (await share(tools, () => pause(1))) > MOST_AT_REST; ++tries) {
    if (tries === 60) {
      throw new Error("The page doesn't come to rest.");
    }
  }
}

async function typeKeys(script) {
  const start = performance.now();
  for (let sent = 0; sent < EVENTS_PER_SECOND * SECONDS; ++sent) {
    const event = sent % 2 === 0 ? KEY_DOWN : KEY_UP;
    await must(script, { op: "event", device: KEYBOARD, event, payload: { is: "key", text: "A" } });
    await pause(Math.max(0, start + ((sent + 1) * 1000) / EVENTS_PER_SECOND - performance.now()) / 1000);
  }
}

async function measure(times, rows) {
  writeScene(times);
  const host = await startHost({ options: ["--scene", SCENE] });
  const browser = await startBrowser();
  try {
    const tools = await browser.newBrowserCDPSession();
    const [context] = browser.contexts();
    const page = await context.newPage();
    const count = times * demo.nodes.length;
    const add = (what, value) => (rows[`${what}, ${count} nodes`] ??= []).push(value);

    await page.goto("about:blank");
    const begun = await browserTime(tools);
    // By the page's own clock, which begins with the address: when it tells, it may be busy already.
    const measureUntil = async (what, timeOf, counts) => {
      const time = await page.waitForFunction(timeOf, counts, { polling: "raf", timeout: 120_000 });
      add(`${what}, ms`, await time.jsonValue());
    };
    await page.goto(host.page, { waitUntil: "commit" });
    await measureUntil("address to the first card", () => document.querySelector("article.card .output") !== null && performance.now());
    const timeDrawn = (counts) =>
      Object.entries(counts).every(([what, number]) => document.querySelectorAll(what).length === number) && performance.now();
    await measureUntil("address to all of the graph", timeDrawn, {
      "[data-face]": count,
      ".react-flow__edge": times * demo.links.length,
    });
    await rest(tools);
    add("until it rests, ms of processor time", (await browserTime(tools) - begun) * 1000);

    add("idle, share of a core", await share(tools, () => pause(SECONDS)));
    const script = await openSession(host.address);
    if (times === 1) {
      add(`${EVENTS_PER_SECOND} key events a second, share of a core`, await share(tools, () => typeKeys(script)));
      await pause(1);
    }
    const STEPS = 30;
    const { x, y, width, height } = await page.locator("[data-graph]").boundingBox();
    const beforePanning = await browserTime(tools);
    await page.mouse.move(x + 4, y + 4);
    await page.mouse.down();
    for (let step = 0; step < STEPS; ++step) {
      await page.mouse.move(x + 4 + (step % 2) * width * 0.5, y + 4 + (step % 3) * height * 0.2);
    }
    await page.mouse.move(x + 4, y + 4); // so that all sizes of scenes are edited where they were opened
    await page.mouse.up();
    await pause(0.3);
    add("a step of panning, ms of processor time", ((await browserTime(tools) - beforePanning) / STEPS) * 1000);

    const EDITS = 10;
    const before = await browserTime(tools);
    for (let edit = 0; edit < EDITS; ++edit) {
      await must(script, { op: "edit", node: "text_field0", param: 2, int: edit % 2 });
      await pause(0.3);
    }
    add("an edit, ms of processor time", ((await browserTime(tools) - before) / EDITS) * 1000);
    await script.close();
  } finally {
    await browser.close();
    await host.end();
  }
}

await measure(1, {}); // what the first page alone waits for isn't measured
const rows = {};
for (let round = 0; round < ROUNDS; ++round) {
  for (const times of [1, 10, 100]) {
    await measure(times, rows);
  }
}
for (const [what, values] of Object.entries(rows)) {
  const show = (value) => String(Number(value.toPrecision(3)));
  console.log(`${what.padEnd(60)} ${show(median(values)).padStart(9)}  (${show(Math.min(...values))} to ${show(Math.max(...values))})`);
}
