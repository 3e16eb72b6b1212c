// How the page looks to whom: its languages, its colours, its motion.
import assert from "node:assert/strict";
import { startHost } from "./support/host.mjs";
import * as is from "./support/page.mjs";
import { host, page, script, useScene } from "./support/scene.mjs";
import { createNode, createScene, must, Type, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

useScene();

const tab = (name) => page.page.locator(`[data-tab=${name}]`).click();
const language = () => page.page.evaluate(() => document.documentElement.lang);
const logLine = () => page.page.locator("[data-log] .line-text").last();

/** What the page says: what stands on it and what it tells screen readers, without the texts of the scene. */
const said = () =>
  page.page.evaluate(() => {
    const said = [];
    const isForeign = (element) => element.closest("kbd, [data-skbtn], .line-text, .react-flow__attribution") !== null;
    const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
    while (walker.nextNode()) {
      const element = walker.currentNode.parentElement;
      if (element.checkVisibility() && !isForeign(element)) {
        said.push(walker.currentNode.textContent);
      }
    }
    for (const element of document.querySelectorAll("[aria-label], [placeholder]")) {
      if (!isForeign(element)) {
        said.push(element.ariaLabel, element.getAttribute("placeholder"));
      }
    }
    return said.filter((text) => text !== null && text.trim() !== "");
  });

test("in Chinese no text is left in English, on any tab", async () => {
  await createNode(script, "t", Type.textField, "文本 1");
  await createNode(script, "v", Type.vrHandle, "手柄 1");
  await page.page.getByRole("button", { name: "中文" }).click();
  assert.equal(await language(), "zh");
  const fromHost = ["Keyboard 1", "Mouse 1", "Demo", "Version", "Wall", "Lamp", "Connection refused"];
  const sameEverywhere = ["iohost", "JSON", "EN", "VR", "Alt", "Page Up", "Page Down", "Delete", "Esc", "UDP", '{"cmd":"start"}', "framed", "direct", "json", "none"];
  const known = [...fromHost, ...sameEverywhere, host.address];
  const english = async () => {
    const rest = (await said()).map((text) => known.reduce((left, word) => left.replaceAll(word, ""), text));
    return rest.filter((text) => /[A-Za-z]{2}/.test(text));
  };
  for (const name of is.TABS) {
    await tab(name);
    await page.page.locator(`#panel-${name} :visible`).first().waitFor();
    assert.deepEqual(await english(), [], name);
  }
  await must(script, { op: "device", device: 1, name: "Wall", parser: "direct", address: "127.0.0.1:9" });
  await must(script, { op: "object", clip: "Demo", name: "Lamp" });
  for (const part of ["[data-open-device]", "[data-open-object]"]) {
    await page.page.locator(part).click();
    await page.page.locator("[data-part-card]").waitFor();
    assert.deepEqual(await english(), [], part);
    await page.page.getByRole("button", { name: "显示全部" }).last().click();
  }
  await must(script, { op: "link", from: "k", output: 154, to: "t", input: 202 });
  await must(script, { op: "rename", node: "m", graph: "Mouse 1" });
  await must(script, { op: "place", nodes: { k: { x: 0, y: 0 }, m: { x: 400, y: 0 } } });
  await must(script, { op: "batch", requests: [{ op: "remove_object", clip: "Demo", name: "Lamp" }] });
  await page.page.locator("[data-history]").click();
  await page.page.locator(".history-list", { hasText: "更改场景" }).waitFor();
  assert.deepEqual(await english(), [], "the history");

  const isRefused = (text) => page.page.locator("dialog [role=alert]", { hasText: text }).waitFor();
  await page.page.getByRole("button", { name: "另存为" }).click();
  await page.page.locator("[data-scene-name]").fill(".hidden");
  await page.page.keyboard.press("Enter");
  await isRefused(/^文件：任何一级名称都不能以点开头$/);
  await page.page.keyboard.press("Escape");
  await page.page.getByRole("button", { name: "打开", exact: true }).click();
  await page.page.locator("[data-upload]").setInputFiles({ name: "a.json", mimeType: "application/json", buffer: Buffer.from("no scene") });
  await page.page.getByRole("button", { name: "仍然打开" }).click();
  await isRefused(/^未能打开 a\.json。文件：从第 2 字节起不是 JSON$/);
});

test("names of types, pins and choices follow the switch, whichever the host's are", async () => {
  const chinese = await startHost({ options: ["--texts", "zh"] });
  const other = await createScene(chinese.address);
  await createNode(other, "j", Type.deviceJson, "JSON");
  await createNode(other, "v", Type.vrHandle, "Hand");
  await page.page.goto(chinese.page);
  const pins = (node) => page.page.locator(`article[data-node=${node}] .output-name`).allTextContents();
  const hands = () => page.page.locator('article[data-node=v] select[data-param="803"] option').allTextContents();
  const type = page.page.locator("article[data-node=k] header");
  await page.page.locator("article[data-node=v] select").waitFor();
  await page.page.locator("[data-face=k]").waitFor(); // the palette comes with the canvas
  for (const [language, pressed, key, keyboard, left] of [["EN", "Pressed", "Key 1", "Keyboard · Demo", "Left hand"], ["中文", "按下", "键1", "键盘 · Demo", "左手柄"]]) {
    await page.page.getByRole("button", { name: language, exact: true }).click();
    await until(`names of pins, ${language}`, async () => (await pins("k")).includes(pressed) && (await pins("j")).includes(key));
    assert.ok((await type.innerText()).includes(keyboard));
    assert.equal((await hands())[0], left);
    await page.page.keyboard.press("Control+k");
    await page.page.locator(`[data-entry="${keyboard.split(" ")[0]}"]`).waitFor();
    await page.page.keyboard.press("Escape");
    await page.page.locator("[data-palette]").waitFor({ state: "detached" });
  }
});

test("the browser's languages choose the page's, and a switch does, which the page remembers", async () => {
  const wire = await page.page.context().newCDPSession(page.page);
  const userAgent = await page.page.evaluate(() => navigator.userAgent);
  await wire.send("Emulation.setUserAgentOverride", { userAgent, acceptLanguage: "zh-CN" });
  await page.page.reload();
  await page.page.getByRole("heading", { name: "渲染画面" }).waitFor();
  await page.page.getByRole("button", { name: "EN" }).click();
  await page.page.getByRole("heading", { name: "Render surface" }).waitFor();
  assert.equal(await language(), "en");
  await page.page.reload();
  await page.page.getByRole("heading", { name: "Render surface" }).waitFor();
});

test("lines of the log are shown in the page's language, with what was logged as the title", async () => {
  await script.request({ op: "event", device: 1, event: 3004 });
  await page.fires(is.HOVER, 1);
  await until("the line", async () => (await logLine().innerText()) === "[Demo.Mouse 1.Mouse] fired [Hover]");
  assert.equal(await logLine().getAttribute("title"), "[Demo.Mouse 1.Mouse]触发输出事件[停留]");
  await page.page.getByRole("button", { name: "中文" }).click();
  await until("the line", async () => (await logLine().innerText()) === "[Demo.Mouse 1.Mouse]触发输出事件[停留]");
  await must(script, { op: "device", device: 1, name: "Wall", parser: "direct", address: "127.0.0.1:9" });
  await until("the host's line", async () => (await logLine().innerText()).startsWith('无法连接设备 1 "Wall"（127.0.0.1:9）：'));
  assert.match(await logLine().getAttribute("title"), /^device 1 "Wall" at 127.0.0.1:9 can't be reached: /);
});

test("light or dark is as the system says, at any time", async () => {
  const ground = () => page.page.evaluate(() => Number(/\d+/.exec(getComputedStyle(document.body).backgroundColor)[0]));
  await page.page.emulateMedia({ colorScheme: "light" });
  assert.ok((await ground()) > 200);
  await page.page.locator(".react-flow.light").waitFor();
  await page.page.emulateMedia({ colorScheme: "dark" });
  assert.ok((await ground()) < 50);
  await page.page.locator(".react-flow.dark").waitFor();
});

test("a flash is a mark that stands a moment, and longer where less motion is wished", async () => {
  const { clock } = page.page;
  await clock.install();
  await clock.pauseAt(Date.now() + 60_000);
  const isLit = async () => (await page.page.locator(".node-index button[data-lit]").count()) > 0;
  const fire = async () => {
    await script.request({ op: "event", device: 1, event: 3004 });
    await until("the mark", async () => {
      await clock.runFor(50); // what came before may have its pause
      return isLit();
    });
  };
  const marks = async (times) => {
    const found = [];
    for (const time of times) {
      await clock.runFor(time);
      found.push(await isLit());
    }
    return found;
  };
  await fire();
  assert.deepEqual(await marks([400, 200]), [true, false]);
  await page.page.emulateMedia({ reducedMotion: "reduce" });
  await fire();
  assert.deepEqual(await marks([400, 200, 1200, 400]), [true, true, true, false]);
});
