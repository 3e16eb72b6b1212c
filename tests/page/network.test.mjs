// The network panel: devices and what went over their connections, what other hosts send, and choosing a device.
import assert from "node:assert/strict";
import { createSocket } from "node:dgram";
import { once } from "node:events";
import { mkdirSync, writeFileSync } from "node:fs";
import { connect } from "node:net";
import { join } from "node:path";
import { startDevice } from "./support/device.mjs";
import { temporaryFolder } from "./support/folder.mjs";
import * as is from "./support/page.mjs";
import { browser, host, page, script, useScene } from "./support/scene.mjs";
import { createNode, expectEventually, must, Type, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

const NET_SEND = { devId: 402, devName: 403, keyValue: 408, send: 410, toDev: 412 };
const NET_RECEIVE = { keyName: 503, keyValue: 552, event: 554 };
const BROADCAST_RECEIVE = { flag: 1302, name: 1352, data: 1353 };
const STRING_SEND = { devId: 1503, devName: 1504, text: 1505, send: 1507 };

async function freeUdpPort() {
  const socket = createSocket("udp4").bind(0, "127.0.0.1");
  await once(socket, "listening");
  const { port } = socket.address();
  socket.close();
  return port;
}

/** A play-control frame with a remote-control record. */
function recordFrame(keyName, keyValue) {
  const clip = Buffer.from("Far");
  const body = Buffer.from(
    `<PanelRemoteCtrl DevID="" DevName="" ClipName="Demo" GroupName="" KeyName="${keyName}" KeyNumber="0" ` +
      `HelpParameter="" KeyValue="${keyValue}" Layer="0"/>`,
  );
  const header = Buffer.alloc(16);
  header.write("QPCF");
  header.writeUInt16BE(1, 4);
  header.writeUInt16BE(clip.length, 6);
  header.writeUInt32BE(clip.length + body.length, 8);
  header.writeUInt32BE(50, 12);
  return Buffer.concat([header, clip, body]);
}

let broadcastPort;

/** The folder names a broadcast port that is free. */
async function useFolder() {
  const folder = temporaryFolder();
  broadcastPort = await freeUdpPort();
  mkdirSync(join(folder, "Config"));
  writeFileSync(join(folder, "Config", "PortConfig.ini"), `[iFable]\nBroadcastPort=${broadcastPort}\n`);
  return { options: ["--app", folder, "--control", "127.0.0.1:0", "--scenes", folder] };
}

useScene({ panel: "network", start: useFolder });

const ask = (request) => must(script, request);
const create = (node, type) => createNode(script, node, type, node);
const setDevices = (...list) => ask({ op: "devices", list });
const peer = (name) => page.page.locator(`[data-peer="${name}"]`);
const field = (name, which) => peer(name).locator(`dd[data-field="${which}"], p [data-field="${which}"]`);
const shows = (name, which, text) =>
  expectEventually(`${which} of ${name}`, () => field(name, which).innerText(), text);
const input = (node, param) => page.page.locator(`article[data-node=${node}] [data-param="${param}"]`);

/** A send node whose card's "Send" is pressed. */
const pressSend = (node, param) => input(node, param).click();

test("devices are shown with their state, their queue, their counters and the last bytes", async () => {
  await page.page.getByText("No devices yet.").waitFor();
  const [wall, gone] = [await startDevice(), await startDevice()];
  await gone.close();
  await setDevices(
    { id: 3, name: "Wall", parser: "framed", address: wall.address },
    { id: 4, name: "Text", parser: "direct" },
    { id: 5, name: "Gone", parser: "direct", address: gone.address },
  );
  await expectEventually("the overview", () => page.page.locator("[data-overview]").innerText(), "1 of 2 connected\nNot connected:\n5 · Gone");
  await page.page.locator("[data-tab=network] [data-lost]").waitFor();
  await page.page.locator("[data-open-device='5'] [data-lost]").waitFor();
  assert.equal(await page.page.locator("[data-open-device='3'] [data-lost]").count(), 0);
  await until("the reason", async () => /refused/.test(await field("device-5", "problem").innerText()));
  await ask({ op: "send", device: 5, text: "x".repeat(1024) });
  await shows("device-5", "queue", "1 item, 1.0 KiB");
  assert.equal(await peer("device-3").locator("h3").innerText(), "3 · Wall");
  await until("the connection", async () =>
    /^connected since \d\d:\d\d:\d\d$/.test(await field("device-3", "state").innerText()));
  assert.match(await field("device-4", "state").innerText(), /has no address/);
  await shows("device-3", "queue", "empty");

  await create("send", Type.netSend);
  await ask({ op: "set", node: "send", param: NET_SEND.devId, string: "3" });
  await ask({ op: "set", node: "send", param: NET_SEND.keyValue, string: "<12>" });
  await pressSend("send", NET_SEND.send);
  await shows("device-3", "sent", "1");
  await until("the record", () => wall.received.includes('KeyValue="&lt;12&gt;"'));
  const bytes = peer("device-3").locator("[data-field=sent-bytes]");
  assert.match(await bytes.innerText(), /^Last sent, \d+ bytes/);
  const shown = (await bytes.locator("[data-bytes=hex]").innerText()).split(" ").map((pair) => parseInt(pair, 16));
  assert.deepEqual(Buffer.from(shown), wall.received.subarray(0, 256));
  assert.match(await bytes.locator("[data-bytes=text]").innerText(), /^QPCF\.{8}.*<PanelRemoteCtrl DevID="3"/);

  wall.write(recordFrame("no node's", "x"));
  await shows("device-3", "received", "1");
  await shows("device-3", "matched", "0");
  assert.match(await peer("device-3").locator("[data-field=received-bytes]").innerText(), /KeyName="no node's"/);
});

test("the listen-only switch shows what would be sent instead of sending it, as every page's badge says", async () => {
  const wall = await startDevice();
  await setDevices({ id: 3, name: "Wall", parser: "direct", address: wall.address });
  await until("the connection", wall.isConnected);
  await create("text", Type.stringSend);
  await ask({ op: "set", node: "text", param: STRING_SEND.devId, int: 3 });
  await ask({ op: "set", node: "text", param: STRING_SEND.text, string: "first" });
  const other = await is.openPage(browser, host);
  await other.page.locator("[data-tab=network]").click();

  await is.turn(page.page.locator("[data-listen-only]"), true);
  await until("the other page's switch", () => other.page.locator("[data-listen-only]").isChecked());
  await pressSend("text", STRING_SEND.send);
  await shows("device-3", "shown", "1");
  const bytes = peer("device-3").locator("[data-field=sent-bytes]");
  assert.match(await bytes.innerText(), /^Would be sent, 6 bytes/);
  assert.equal(await bytes.locator("[data-bytes=text]").innerText(), "first.");
  assert.equal(await bytes.locator("[data-bytes=hex]").innerText(), "66 69 72 73 74 00");

  await other.page.locator("[data-live=false]", { hasText: "LISTEN ONLY" }).click();
  await page.page.locator("[data-live=true]", { hasText: "LIVE" }).waitFor();
  await until("this page's switch", async () => !(await page.page.locator("[data-listen-only]").isChecked()));
  await ask({ op: "set", node: "text", param: STRING_SEND.text, string: "second" });
  await pressSend("text", STRING_SEND.send);
  await until("the second text", () => wall.received.length > 0);
  assert.equal(String(wall.received), "second\0");
  await until("the label", async () => (await bytes.innerText()).startsWith("Last sent, 7 bytes"));
});

test("the device of a send node is chosen from the list, and its name follows", async () => {
  const wall = await startDevice();
  await setDevices(
    { id: 3, name: "Wall", parser: "framed", address: wall.address },
    { id: 7, name: "Desk", parser: "direct" },
  );
  await create("send", Type.netSend);
  await until("the choices", async () => (await input("send", NET_SEND.devId).locator("option").count()) === 3);
  assert.deepEqual(await input("send", NET_SEND.devId).locator("option").allTextContents(), ["none", "3 · Wall", "7 · Desk"]);
  await input("send", NET_SEND.devId).selectOption("3");
  await expectEventually("the name", () => input("send", NET_SEND.devName).inputValue(), "Wall");
  await page.page.locator('[data-undo][title="Undo: Choose device Wall"]').waitFor();
  await pressSend("send", NET_SEND.send);
  await until("the record", () => wall.received.includes('DevName="Wall"'));

  await is.turn(input("send", NET_SEND.toDev), false); // to all: there is nothing to choose
  await until("the choice to be closed", () => input("send", NET_SEND.devId).isDisabled());
  await is.turn(input("send", NET_SEND.toDev), true);
  await until("the choice to be open", () => input("send", NET_SEND.devId).isEnabled());
});

test("broadcasts on the configured port and records of other hosts reach the nodes while the frames go on", async () => {
  await create("heard", Type.broadcastReceive);
  await ask({ op: "set", node: "heard", param: BROADCAST_RECEIVE.flag, string: "1" });
  await create("receive", Type.netReceive);
  await ask({ op: "set", node: "receive", param: NET_RECEIVE.keyName, string: "key" });
  await page.page.locator("article[data-node=heard]").waitFor();
  await page.page.locator("article[data-node=receive]").waitFor();
  assert.equal((await script.request({ op: "wait", ms: 1000 })).ok, false);

  const sender = createSocket("udp4");
  sender.send('[.{<Broadcast Flag="1" ClipName="c" Name="score" Data="12|7"/>}.]\0', broadcastPort, "127.0.0.1");
  await page.shows(["heard", BROADCAST_RECEIVE.name], "score");
  await page.shows(["heard", BROADCAST_RECEIVE.data], "12|7");
  sender.send("[.{<Other/>}.]", broadcastPort, "127.0.0.1");
  await shows("broadcast", "received", "1");
  await shows("broadcast", "matched", "1");
  await shows("broadcast", "rejected", "1 (not the element Broadcast)");
  sender.close();

  const { control } = await ask({ op: "network" });
  const far = connect(control.port, "127.0.0.1");
  await once(far, "connect");
  far.write(recordFrame("key", "from afar"));
  await page.shows(["receive", NET_RECEIVE.keyValue], "from afar");
  await page.fires(["receive", NET_RECEIVE.event], 1);
  await until("the connection to be shown", async () => /1 connected/.test(await peer("control").innerText()));
  far.destroy();
  await until("its end to be shown", async () => /0 connected/.test(await peer("control").innerText()));
});

test("errors and what was refused are counted, with the last one where it is told", async () => {
  await setDevices({ id: 3, name: "Wall", parser: "framed" });
  await peer("device-3").waitFor();
  assert.equal(await page.page.locator(".count-trouble").count(), 0);
  // Most such errors are the system's: they are put into what the host tells.
  await is.between(page.page, {
    toPage(messages) {
      for (const message of messages.filter(({ control }) => control)) {
        Object.assign(message.control, { errors: 2, last_error: "Too many open files" });
        Object.assign(message.broadcast, { errors: 1, last_error: "Address already in use", problem: "port in use" });
        Object.assign(message.devices[0], { errors: 5, refused: 76 });
      }
      return messages;
    },
  });
  await page.page.reload();
  const trouble = (name, which) => peer(name).locator(`.count-trouble dd[data-field=${which}]`).innerText();
  assert.equal(await trouble("broadcast", "errors"), "1 (Address already in use)");
  assert.match(await field("broadcast", "problem").innerText(), /port in use/);
  assert.equal(await trouble("control", "errors"), "2 (Too many open files)");
  assert.equal(await trouble("device-3", "errors"), "5");
  assert.equal(await trouble("device-3", "refused"), "76");
});
