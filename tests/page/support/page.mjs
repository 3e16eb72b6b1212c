// What the tests read off the page and do to it.
import assert from "node:assert/strict";
import { opened } from "./opened.mjs";
import { expectEventually, until } from "./session.mjs";

export const TABS = ["log", "keyboard", "hands", "network", "json", "objects"];

export const KEY_DOWN = ["k", 152];
export const KEY_UP = ["k", 153];
export const KEY_TEXT = ["k", 154];
export const ENTER = ["m", 352];
export const LEAVE = ["m", 353];
export const HOVER = ["m", 354];
export const WHEEL_DOWN = ["m", 356];
export const LEFT_DOWN = ["m", 358];
export const RIGHT_DOWN = ["m", 359];
export const MIDDLE_DOWN = ["m", 360];
export const LEFT_UP = ["m", 362];
export const RIGHT_UP = ["m", 363];
export const MIDDLE_UP = ["m", 364];
export const BUTTON_LEFT = ["m", 366];
export const BUTTON_RIGHT = ["m", 367];
export const BUTTON_MIDDLE = ["m", 368];
export const PIXEL_X = ["m", 370];
export const PIXEL_Y = ["m", 371];
export const RELATIVE_X = ["m", 372];
export const RELATIVE_Y = ["m", 373];
export const TAP = ["g", 758];
export const START_MOVE = ["g", 752];
export const END_MOVE = ["g", 753];
export const SWIPE_RIGHT = ["g", 755];
export const TEXT = ["t", 253];
export const HAS_TEXT = ["t", 252];
export const CHECK_DOWN = ["c", 1152];
export const CHECK_HOLD = ["c", 1153];
export const CHECK_UP = ["c", 1154];
export const KEY_VALUE = 1102;
export const POSITION = [852, 853, 854].map((id) => ["v", id]);
export const HIT = [857, 858, 859].map((id) => ["v", id]);
export const TRIGGER_DOWN = ["v", 862];
export const TRIGGER_UP = ["v", 863];
export const TRIGGER_CLICK = ["v", 864];
export const PAD_DOWN = ["v", 865];
export const PAD_UP = ["v", 866];
export const PAD_RIGHT_CLICK = ["v", 869];
export const ENABLE = 2;

/** A tab of the browser's one window, closed with its test, until when no script of it may fail. */
export async function openTab(browser) {
  const page = await browser.contexts()[0].newPage();
  const failures = [];
  page.on("pageerror", ({ message }) => failures.push(message));
  opened.push(async () => {
    await page.close();
    assert.deepEqual(failures, []);
  });
  return page;
}

/**
 * Opens the page, with a panel in front, and waits until it shows the scene. Frames that it sends gather in `sent`, and
 * what the browser complains of in `problems`: there must be none at the test's end. Scripts run before those of the page.
 */
export async function openPage(browser, host, { panel = "log", scripts = [] } = {}) {
  const page = await openTab(browser);
  for (const script of scripts) {
    await page.addInitScript(script);
  }
  const sent = [];
  const problems = [];
  let connection;
  opened.push(async () => assert.deepEqual(problems, []));
  page.on("console", (message) => message.type() === "error" && problems.push(message.text()));
  page.on("websocket", (socket) => {
    socket.on("framesent", ({ payload }) => sent.push(JSON.parse(payload)));
    socket.on("framereceived", ({ payload }) => {
      const messages = [JSON.parse(payload)].flat(); // a test may open a plain session in the page
      connection = messages.find(({ push }) => push === "hello")?.connection ?? connection;
    });
  });
  await page.goto(`${host.page}#${panel}`);
  await page.locator("article[data-node=k]").waitFor();
  await page.locator("article[data-node=m]").waitFor();
  const surface = page.locator("[data-surface]");
  const box = await surface.evaluate((element) => {
    const bounds = element.getBoundingClientRect();
    return {
      left: bounds.left + element.clientLeft,
      top: bounds.top + element.clientTop,
      width: element.clientWidth,
      height: element.clientHeight,
    };
  });

  const output = ([node, id]) => page.locator(`[data-node="${node}"][data-output="${id}"]`);
  return {
    page,
    sent,
    problems,
    surface,
    box,
    mouse: page.mouse,
    keyboard: page.keyboard,
    /** The input events that the page sent, as [event id, payload]. */
    sentEvents: () => sent.filter(({ op }) => op === "event").map(({ event, payload }) => [event, payload]),
    /**
     * Fingers on the surface, as [number, x, y]: `down` and `move` take all that are there, `up` those that lift (none: all of
     * them), `cancel` none.
     */
    touch: await touchScreen(page, box),
    /** The number by which the nodes know a pointer of this page: the mouse is 0 here, fingers and pens count from 1. */
    pointer: (number) => 100 * (connection - 1) + number,
    held: (what) => page.locator(`[data-held="${what}"]`),
    moveTo: (x, y, options) => page.mouse.move(box.left + x, box.top + y, options),
    focus: () => page.mouse.click(box.left + 5, box.top + 5),
    count: async (which) => Number(await output(which).getAttribute("data-count")),
    value: (which) => output(which).getAttribute("data-value"),
    fires: (which, count) =>
      expectEventually(`${which} fired ${count} times`, async () =>
        Number(await output(which).getAttribute("data-count")), count),
    shows: (which, value) =>
      expectEventually(`${which} shows ${value}`, () => output(which).getAttribute("data-value"), value),
    logs: (text) => page.locator("[data-log] .line-text", { hasText: text }).first().waitFor(),
    close: () => page.close(),
  };
}

/**
 * Stands between a page and its host: what either says passes through a function, which may hold it back by answering
 * undefined. The page must be opened or reloaded then. Answers with what tells the page more.
 */
export async function between(page, { toHost = (request) => request, toPage = (messages) => messages }) {
  let socket;
  const passOn = (side, change) => (text) => {
    const changed = change(JSON.parse(text));
    if (changed !== undefined) {
      side.send(JSON.stringify(changed));
    }
  };
  await page.routeWebSocket(/\/session\/gathered$/, (route) => {
    socket = route;
    const host = socket.connectToServer();
    socket.onMessage(passOn(host, toHost));
    host.onMessage(passOn(socket, toPage));
  });
  return (messages) => socket.send(JSON.stringify(messages));
}

/** Clicks a switch that isn't so yet, and waits until it shows it: switches follow the host's answer. */
export async function turn(locator, on) {
  await until(`a switch that is ${on ? "off" : "on"}`, async () => (await locator.isChecked()) !== on);
  await locator.click();
  await until(`a switch that is ${on ? "on" : "off"}`, async () => (await locator.isChecked()) === on);
}

/** Run in a page, takes note of what is lit from then on, however short. */
export function watchLights() {
  globalThis.litSoFar = [];
  const note = (changes) =>
    globalThis.litSoFar.push(...changes.map(({ target }) => target).filter((one) => one.hasAttribute("data-lit")));
  new MutationObserver(note).observe(document, { attributeFilter: ["data-lit"], subtree: true });
}

/** How many elements that match were lit so far. */
export const lights = (page, selector) =>
  page.evaluate((what) => new Set(globalThis.litSoFar.filter((one) => one.matches(what))).size, selector);

async function touchScreen(page, box) {
  const wire = await page.context().newCDPSession(page);
  const send = (type) => (fingers) =>
    wire.send("Input.dispatchTouchEvent", {
      type,
      touchPoints: fingers.map(([id, x, y]) => ({ id, x: box.left + x, y: box.top + y })),
    });
  return { down: send("touchStart"), move: send("touchMove"), up: send("touchEnd"), cancel: send("touchCancel") };
}
