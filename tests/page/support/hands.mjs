// The hand controllers' panel, and what the tests do to it.
import { drawn } from "./canvas.mjs";
import { openPage } from "./page.mjs";
import { browser, host, page, script, useScene } from "./scene.mjs";
import { createNode, must, Type } from "./session.mjs";

const NO_DRAWING = () => (HTMLCanvasElement.prototype.getContext = () => null);

/** A VR node "v" that takes the right hand and moves the object "Lamp". */
export async function createHand() {
  await createNode(script, "v", Type.vrHandle, "VR hand 1");
  await must(script, { op: "object", clip: "Demo", name: "Lamp" });
  await must(script, { op: "set", node: "v", param: 802, string: "Lamp" });
  await must(script, { op: "set", node: "v", param: 803, choice: 1 });
}

/** A page with the panel, and what it moves. Drawing in `space` takes long here. */
export function useHands({ space = false } = {}) {
  useScene({
    space,
    panel: "hands",
    scripts: space ? [] : [NO_DRAWING],
    prepare: createHand,
    async look() {
      await look(page);
      // What is drawn, or why nothing is, has its place then.
      await (space ? page.page.evaluate(drawn) : page.page.getByText("This browser can't draw in space here").waitFor());
    },
  });
}

async function look(view) {
  await view.page.locator("article[data-node=v]").waitFor();
  await view.page.locator("[data-hand='1']").waitFor();
}

/** Another page with this panel. */
export async function openHands(options = {}) {
  const opened = await openPage(browser, host, { panel: "hands", ...options });
  await look(opened);
  return opened;
}

export const hand = (side) => page.page.locator(`[data-hand="${side}"]`);

/** Puts another panel in front, as a second finger does while the first one presses. */
export const openLog = () => page.page.evaluate(() => document.querySelector("[data-tab=log]").click());
export const openHandsAgain = () => page.page.evaluate(() => document.querySelector("[data-tab=hands]").click());
