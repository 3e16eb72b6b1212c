// What the tests read off the page and do to it.
import { expectEventually } from "./session.mjs";

export const KEY_DOWN = ["k", 152];
export const KEY_UP = ["k", 153];
export const KEY_TEXT = ["k", 154];
export const ENTER = ["m", 352];
export const LEAVE = ["m", 353];
export const HOVER = ["m", 354];
export const WHEEL_UP = ["m", 355];
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
export const ENABLE = 2;

/** Opens the page and waits until it shows the scene. Frames that it sends gather in `sent`. */
export async function openPage(browser, host) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 800 } });
  const page = await context.newPage();
  const sent = [];
  const problems = [];
  page.on("pageerror", (error) => problems.push(error.message));
  page.on("console", (message) => message.type() === "error" && problems.push(message.text()));
  page.on("websocket", (socket) => socket.on("framesent", ({ payload }) => sent.push(JSON.parse(payload))));
  await page.goto(host.page);
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
    moveTo: (x, y, options) => page.mouse.move(box.left + x, box.top + y, options),
    focus: () => page.mouse.click(box.left + 5, box.top + 5),
    count: async (which) => Number(await output(which).getAttribute("data-count")),
    value: (which) => output(which).getAttribute("data-value"),
    fires: (which, count) =>
      expectEventually(`${which} fired ${count} times`, async () =>
        Number(await output(which).getAttribute("data-count")), count),
    shows: (which, value) =>
      expectEventually(`${which} shows ${value}`, () => output(which).getAttribute("data-value"), value),
    logs: (text) => page.locator("[data-log] .line-text", { hasText: text }).first().waitFor({ timeout: 15000 }),
    close: () => context.close(),
  };
}
