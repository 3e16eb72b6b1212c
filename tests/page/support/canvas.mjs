// The canvas: what the tests read off it and do to it.
import { expectEventually, must, until } from "./session.mjs";

/** Done when what the page does after it drew is done. */
export const drawn = () =>
  new Promise((resolve) => requestAnimationFrame(() => setTimeout(() => requestAnimationFrame(() => setTimeout(resolve)))));

/** What is on the canvas of a page, whose scene a script can ask for. */
export function canvasOf(page, script) {
  const face = (node) => page.locator(`[data-face=${JSON.stringify(node)}]`);
  const scene = () => must(script, { op: "scene" });
  const isChosen = (node) => page.locator(".react-flow__node.selected").filter({ has: face(node) }).waitFor();
  const zoom = () => page.locator(".react-flow__viewport").evaluate((view) => new DOMMatrix(getComputedStyle(view).transform).a);
  const middleOf = async (locator) => {
    const { x, y, width, height } = await locator.boundingBox();
    return { x: x + width / 2, y: y + height / 2 };
  };
  /** What is chosen meanwhile is added to what is chosen. */
  const adding = async (choose) => {
    await page.keyboard.down("Control");
    await page.evaluate(drawn); // the canvas takes note of the key
    await choose();
    await page.keyboard.up("Control");
  };
  return {
    face,
    pin: (node, id) => face(node).locator(`[data-handleid="${id}"]`),
    wires: () => page.locator(".react-flow__edge"),
    chosen: () => page.locator(".react-flow__node.selected"),
    message: () => page.locator("[data-graph-message]"),
    pane: () => page.locator("[data-graph]"),
    zoom,
    /** By the wheel, at the middle of what is seen. */
    zoomTo: async (wanted) => {
      const { x, y } = await middleOf(page.locator("[data-graph]"));
      await page.mouse.move(x, y);
      await page.mouse.wheel(0, Math.log2((await zoom()) / wanted) / 0.002);
      await until(`a zoom of ${wanted}`, async () => Math.abs((await zoom()) - wanted) < 0.001);
    },
    scene,
    links: async () => (await scene()).links,
    names: async () => (await scene()).nodes.map(({ graph }) => graph),
    nodesAre: (names) => expectEventually("the nodes", async () => (await scene()).nodes.map(({ graph }) => graph).join(), names.join()),
    /** Chooses nodes by clicks on their heads, with Ctrl held from the second one on. */
    choose: async (first, ...others) => {
      await face(first).locator("header img").click();
      await isChosen(first);
      for (const node of others) {
        await adding(() => face(node).locator("header img").click());
        await isChosen(node);
      }
    },
    adding,
    /** Chooses in the palette: a type to add, or a node to go to. */
    choosePalette: async (name) => {
      await page.keyboard.press("Control+k");
      await page.locator("[data-palette] input:focus").waitFor();
      await page.keyboard.type(name);
      await page.locator(`[data-entry=${JSON.stringify(name)}].marked`).waitFor();
      await page.keyboard.press("Enter");
    },
    /** Drags by the mouse in steps, as a hand does. */
    drag: async (from, to) => {
      await page.mouse.move(from.x, from.y);
      await page.mouse.down();
      await page.mouse.move((from.x + to.x) / 2, (from.y + to.y) / 2, { steps: 4 });
      await page.mouse.move(to.x, to.y, { steps: 4 });
      await page.mouse.up();
    },
    middleOf,
  };
}
