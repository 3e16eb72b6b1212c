// A person's session in the page is recorded and answered the same again by the host without page.
import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { startBrowser } from "./support/browser.mjs";
import { temporaryFolder } from "./support/folder.mjs";
import { runHost, startHost } from "./support/host.mjs";
import * as is from "./support/page.mjs";
import { createNode, createScene, must, postedIn, Type, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

const folder = temporaryFolder();

/** Whether an output was fired in any of the pushes or replies. */
const posts = (messages, [node, output]) => postedIn(messages).some((fired) => fired[0] === node && fired[1] === output);

/** Types, presses, swipes and leaves a key held, while everything is recorded. The file. */
async function record() {
  const file = join(folder, "page.jsonl");
  const host = await startHost({ options: ["--record", file] });
  const script = await createScene(host.address);
  await createNode(script, "g", Type.gesture, "Touch 1");
  await createNode(script, "c", Type.keyCheck, "Key check 1");
  await must(script, { op: "set", node: "c", param: is.KEY_VALUE, int: 65 });
  await must(script, { op: "set", node: "c", param: 1103, int: 100 });
  const page = await is.openPage(await startBrowser(), host);
  await page.focus();
  await page.fires(is.LEFT_UP, 1);
  await page.touch.down([[1, 50, 200]]);
  await page.touch.move([[1, 150, 200]]);
  await page.touch.move([[1, 300, 200]]);
  await page.touch.up([]);
  await page.fires(is.SWIPE_RIGHT, 1);
  await page.keyboard.down("a");
  await page.fires(is.CHECK_DOWN, 1);
  await until("three holds", async () => (await page.count(is.CHECK_HOLD)) >= 3);
  await page.close(); // the key is let go of
  await until("the release", () => posts(script.pushes, is.CHECK_UP));
  assert.equal(await host.end(), 0);
  return file;
}

test("what was done in the page is answered the same by a replay, and a change in it is found", async () => {
  const file = await record();
  const replay = await runHost("--replay", file);
  assert.equal(replay.code, 0, replay.stdout + replay.stderr);

  const lines = readFileSync(file, "utf8").trimEnd().split("\n");
  const recorded = lines.map((line) => JSON.parse(line));
  const replies = recorded.map(({ reply }) => reply);
  for (const fired of [is.SWIPE_RIGHT, is.CHECK_DOWN, is.CHECK_HOLD, is.CHECK_UP, is.KEY_DOWN, is.KEY_UP, is.LEFT_DOWN]) {
    assert.ok(posts(replies, fired), `${fired} is in the recording`);
  }

  // Without the swipe's start the nodes have nothing to recognise. The mouse is the first of a page's hundred pointers.
  const press = recorded.findIndex(({ op, event, payload }) => op === "event" && event === 3005 && payload.pointer % 100 !== 0);
  assert.notEqual(press, -1);
  const changed = join(folder, "changed.jsonl");
  writeFileSync(changed, lines.filter((_, index) => index !== press).join("\n") + "\n");
  const other = await runHost("--replay", changed);
  assert.equal(other.code, 3, other.stdout);
  assert.match(other.stdout, /^line \d+, event: /m);
});
