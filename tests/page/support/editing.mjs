// A scene on the canvas, for tests that change it there.
import { canvasOf } from "./canvas.mjs";
import * as is from "./page.mjs";
import { page, script, useScene } from "./scene.mjs";
import { createNode, expectEventually, must, Type } from "./session.mjs";
import { beforeEach } from "./test.mjs";

export const TEXT_INPUT = 202;
export const APPEND_INPUT = 203;
export const CLEAR_INPUT = 204;

/** Of the test's page. */
export let canvas;

/** A keyboard whose text goes to a text field "t", and a mouse, on the canvas. */
export function useCanvas() {
  useScene({
    prepare: async () => {
      await createNode(script, "t", Type.textField, "Text field 1");
      const nodes = { k: { x: 0, y: 0 }, m: { x: 0, y: 200 }, t: { x: 420, y: 0 } };
      await must(script, { op: "place", nodes });
      await must(script, { op: "link", from: "k", output: is.KEY_TEXT[1], to: "t", input: TEXT_INPUT });
    },
    look: async () => {
      await page.page.locator('[data-face="t"]').waitFor();
      await isShown();
    },
  });
  beforeEach(() => (canvas = canvasOf(page.page, script)));
}

/** Done when the view has the whole scene. */
export async function isShown() {
  await page.page.locator(".react-flow__edge").waitFor();
  await page.page.locator('.react-flow__viewport:not([style*="scale(1)"])').waitFor();
}

const undoStep = async () => (await must(script, { op: "history" })).steps.at(-1)?.name;
export const stepIs = (name) => expectEventually("the step", undoStep, name);
export const placeOf = async (node) => (await canvas.scene()).nodes.find((one) => one.node === node).place;
/** Where a page shows a node, which is rounded only when the host has told it. */
export const shownAt = (node, view = canvas) =>
  view.face(node).locator("..").evaluate((one) => {
    const { e, f } = new DOMMatrix(getComputedStyle(one).transform);
    return `${e} ${f}`;
  });
