// Texts for the JSON nodes: sent by the page's form, posted over HTTP, sent by a device; and what the nodes made of them.
import assert from "node:assert/strict";
import net from "node:net";
import { ask } from "./support/http.mjs";
import * as is from "./support/page.mjs";
import { browser, host, page, script, useScene } from "./support/scene.mjs";
import { createNode, expectEventually, must, timesFired, Type, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

const DEVICE_TEXT = ["j", 1452];
const DEVICE_EVENT = ["j", 1453];
const OBJECT_TEXT = ["o", 1252];
const OBJECT_EVENT = ["o", 1253];
const LONGEST_TEXT = 1 << 20;

useScene({
  panel: "json",
  async prepare() {
    await createNode(script, "j", Type.deviceJson, "Device text");
    await createNode(script, "o", Type.objectJson, "Object text");
    await set("o", 1202, { string: "Demo" });
    await set("o", 1203, { string: "Map" });
  },
});

const set = (node, param, value) => must(script, { op: "set", node, param, ...value });
const control = (name, view = page) => view.page.locator(`[data-json=${name}]`);

async function sendAsDevice(device, text) {
  await control("to").selectOption("device");
  await control("device").fill(String(device));
  await control("text").fill(text);
  await control("send").click();
}

async function sendToObject(clip, object, text) {
  await control("to").selectOption("object");
  await control("clip").fill(clip);
  await control("object").fill(object);
  await control("text").fill(text);
  await control("send").click();
}

/** Waits until a node's card and the panel tell this verdict. */
async function verdictIs(node, graph, verdict, text) {
  const onCard = page.page.locator(`article[data-node=${node}] [data-verdict]`);
  const inPanel = page.page.locator(".json-node", { hasText: graph }).locator("[data-verdict]");
  await expectEventually(`the verdict of ${node}`, () => onCard.getAttribute("data-verdict"), verdict);
  await expectEventually("its words", () => onCard.textContent(), `Last text: ${text}`); // also of a card that is out of sight
  assert.equal(await inPanel.innerText(), `Last text: ${text}`);
}

const post = (path, body, headers) => ask(host.address, path, { method: "POST", body, headers });

test("a text sent as a device or to an object reaches the node of that device or object", async () => {
  assert.equal(await page.page.locator("[data-verdict]").count(), 0, "before the first text");
  await sendAsDevice(1, '{"cmd":"start"}');
  await page.fires(DEVICE_EVENT, 1);
  await page.shows(DEVICE_TEXT, '{"cmd":"start"}');
  await verdictIs("j", "Device text", "taken", "taken");
  await sendAsDevice(2, "[2]");
  await verdictIs("j", "Device text", "other_device", "from device 2, not 1");
  await page.shows(DEVICE_TEXT, '{"cmd":"start"}');
  await control("to").selectOption("object");
  assert.equal(await control("clip").inputValue(), "Demo", "the scene's object is filled in");
  assert.equal(await control("object").inputValue(), "Map");
  await control("text").fill("no JSON");
  await control("send").click();
  await page.fires(OBJECT_EVENT, 1);
  await page.shows(OBJECT_TEXT, "no JSON");
});

test("the last texts are kept, also by a reload, and can be sent again", async () => {
  await sendAsDevice(1, "[1]");
  await sendToObject("Demo", "Map", "[2]");
  await sendAsDevice(1, "[3]");
  await sendAsDevice(1, "[1]");
  const texts = () => page.page.locator(".json-texts button").allInnerTexts();
  const expected = ["device 1\n[1]", "device 1\n[3]", "Demo.Map\n[2]"];
  await expectEventually("the texts", async () => (await texts()).join("|"), expected.join("|"));
  await page.page.reload();
  await expectEventually("the texts", async () => (await texts()).join("|"), expected.join("|"));
  await page.page.locator("article[data-node=o]").waitFor(); // it's connected
  await page.page.locator(".json-texts button", { hasText: "Demo.Map" }).click();
  await control("send").click();
  await page.shows(OBJECT_TEXT, "[2]");
});

test("another page's texts show here too, and a page that comes later knows the verdicts", async () => {
  await must(script, {
    op: "event",
    device: 5,
    event: 0,
    payload: { is: "device_text", device: 1, text: "[1]" },
  });
  await verdictIs("j", "Device text", "taken", "taken");
  const later = await is.openPage(browser, host, { panel: "json" });
  await later.page.locator("article[data-node=j] [data-verdict=taken]").waitFor();
});

test("a node may have any handle", async () => {
  const handles = ["constructor", "__proto__", "toString", "a b", ".#\""].map((handle) => [handle, JSON.stringify(handle)]);
  const card = (quoted) => page.page.locator(`article[data-node=${quoted}]`);
  for (const [handle, quoted] of handles) {
    await createNode(script, handle, Type.deviceJson, `Node ${handle}`);
    await card(quoted).scrollIntoViewIfNeeded(); // what is out of sight has its name alone
    await card(quoted).locator(`[data-output="${DEVICE_TEXT[1]}"]`).waitFor();
  }
  assert.equal(await page.page.locator("[data-verdict]").count(), 0, "before the first text");
  await sendAsDevice(1, "[1]");
  for (const [, quoted] of handles) {
    await card(quoted).locator("[data-verdict=taken]").waitFor();
    await page.shows([quoted.slice(1, -1), DEVICE_TEXT[1]], "[1]");
    await page.fires([quoted.slice(1, -1), DEVICE_EVENT[1]], 1);
  }
  for (const [handle, quoted] of handles) {
    await must(script, { op: "destroy", node: handle });
    await card(quoted).waitFor({ state: "detached" });
  }
});

test("long texts are shown cut, and say how long they are", async () => {
  await page.page.locator("[data-tab=log]").click();
  for (const text of ["\u0001".repeat(LONGEST_TEXT), "<".repeat(5000)]) {
    await post("/object-text?clip=Demo&object=Map", text);
    const key = text.slice(0, 100_000); // a request has to fit into a message
    await must(script, { op: "event", device: 0, event: 2002, payload: { is: "key", text: key } });
    const late = await is.openPage(browser, host);
    const whole = `${text.length.toLocaleString("en")} characters`;
    for (const view of [page, late]) {
      const output = view.page.locator(`[data-node=o][data-output="${OBJECT_TEXT[1]}"]`);
      await output.locator(`[title^="${whole}"]`).waitFor();
      assert.ok((await output.getAttribute("data-value")).length < 2000);
      assert.match(await output.locator(".value-text").textContent(), new RegExp(`^${text[0]}+…$`));
      const verdict = view.page.locator("article[data-node=o] [data-verdict=taken]");
      await until("the verdict's length", async () => (await verdict.getAttribute("title")).endsWith(`… (${whole})`));
    }
    const line = page.page.locator("[data-log] .line-text", { hasText: text.slice(0, 500) }).last();
    const title = await line.locator("[title]").getAttribute("title");
    assert.ok(Number(/^[\d,]+/.exec(title)[0].replaceAll(",", "")) > key.length, title);
    assert.ok((await line.textContent()).length < 2000);
  }
});

test("an input with a text that the host cut can be replaced, and is left alone otherwise", async () => {
  const text = "x".repeat(70000);
  await set("o", 1203, { string: text });
  const input = page.page.locator('input[data-node=o][data-param="1203"]');
  await until("the length", async () => (await input.getAttribute("placeholder"))?.startsWith("70,000 characters"));
  assert.equal(await input.inputValue(), "");
  await input.focus();
  await input.blur();
  const stored = async () => (await must(script, { op: "inspect", node: "o" })).inputs[0].params.find(({ id }) => id === 1203);
  assert.equal((await stored()).length, text.length);
  await input.fill("Map");
  await input.press("Enter");
  await until("the new name", async () => (await stored()).string === "Map");
});

test("posted texts reach the object's node, long ones and those in pieces, too; wrong posts are refused and named", async () => {
  const { status, body } = await post("/object-text?clip=Demo&object=Map", '{"zoom":3}');
  assert.equal(status, 200);
  const reply = JSON.parse(body);
  assert.equal(reply.ok, true);
  assert.equal(reply.results.o, 1);
  assert.deepEqual(reply.posted.map(({ node, output }) => [node, output]), [OBJECT_EVENT]);
  await page.fires(OBJECT_EVENT, 1);
  await page.shows(OBJECT_TEXT, '{"zoom":3}');
  await verdictIs("o", "Object text", "taken", "taken");

  const other = await post("/object-text?clip=Demo&object=%E5%9B%BE", "é😀");
  assert.equal(JSON.parse(other.body).results.o, 0);
  await verdictIs("o", "Object text", "other_object", "for Demo.图, not Demo.Map");
  assert.equal((await post("/object-text?clip=Demo&object=Map", "")).status, 200);
  await page.shows(OBJECT_TEXT, "");

  const refused = async (path, body, status, problem) => {
    const reply = await post(path, body);
    assert.equal(reply.status, status, path);
    assert.match(reply.body, problem);
  };
  const path = "/object-text?clip=Demo&object=Map";
  await refused("/object-text", "text", 400, /clip: is missing/);
  await refused("/object-text?clip=Demo&object=%FF", "text", 400, /object: isn't UTF-8/);
  await refused(path, Buffer.from([0x61, 0xff]), 400, /the text isn't UTF-8/);
  await refused(path, Buffer.alloc(LONGEST_TEXT + 1, "x"), 413, /longer than 1048576 bytes/);
  await refused("/other", "text", 400, /no HTTP request/);
  assert.equal(await timesFired(script, OBJECT_EVENT), 2);

  const longest = await post(path, Buffer.alloc(LONGEST_TEXT, "x"), { Expect: "100-continue" });
  assert.equal(longest.status, 200);
  await page.fires(OBJECT_EVENT, 3);

  const [name, port] = host.address.split(":");
  const socket = net.connect(Number(port), name);
  let answer = "";
  socket.on("data", (data) => (answer += data));
  const head = (length) =>
    `POST /object-text?clip=Demo&object=Map HTTP/1.1\r\nHost: ${host.address}\r\nContent-Length: ${length}\r\n\r\n`;
  for (const piece of [head(4).slice(0, 20), head(4).slice(20), "te", `xt${head(3)}`, "end"]) {
    socket.write(piece);
    await new Promise((resolve) => setTimeout(resolve, 20));
  }
  await expectEventually("answers", () => answer.split("HTTP/1.1 200 OK").length - 1, 2);
  await page.shows(OBJECT_TEXT, "end");
  const chunked = head(0).replace("Content-Length: 0", "Transfer-Encoding: chunked");
  socket.write(`${chunked}3\r\nchu\r\n4\r\nnked\r\n0\r\n\r\n`);
  await page.shows(OBJECT_TEXT, "chunked");
  socket.write(`${chunked}no length\r\n`);
  await until("the refusal", () => answer.includes("the request's body can't be read: "));
  socket.destroy();
});
