// A device's text is answered when it comes, not with the next frame: here that would be minutes later.
import assert from "node:assert/strict";
import { startDevice } from "./support/device.mjs";
import { startHost } from "./support/host.mjs";
import { createNode, expectEventually, must, openSession, Type, until } from "./support/session.mjs";
import { test } from "./support/test.mjs";

const RECEIVED_TEXT = 1452;
const RECEIVED = 1453;
const SENT_TEXT = 1505;
const SEND = 1507;

async function start(options) {
  const device = await startDevice();
  const host = await startHost({ options: ["--fps", "0.01", ...options] });
  const session = await openSession(host.address);
  await createNode(session, "in", Type.deviceJson, "In");
  await createNode(session, "out", Type.stringSend, "Out");
  await must(session, { op: "set", node: "out", param: 1503, int: 1 });
  await must(session, { op: "link", from: "in", output: RECEIVED_TEXT, to: "out", input: SENT_TEXT });
  await must(session, { op: "link", from: "in", output: RECEIVED, to: "out", input: SEND });
  await must(session, { op: "process" });
  await must(session, { op: "devices", list: [{ id: 1, name: "Wall", parser: "json", address: device.address }] });
  await until("the connection", device.isConnected);
  return { session, device };
}

test("a text goes through two linked nodes and back at once", async () => {
  const { device } = await start([]);
  let answers = "";
  for (const text of ['{"n":1}', '{"n":2}', '{"n":3}']) {
    device.write(`${text}\n`);
    answers += `${text}\0`;
    await expectEventually("the answers", () => String(device.received), answers);
  }
});

test("with --evaluate frame it waits for the frame", async () => {
  const { session, device } = await start(["--evaluate", "frame"]);
  device.write("{}\n");
  await until("the text", async () => (await must(session, { op: "json" })).nodes.in);
  const { devices } = await must(session, { op: "network" });
  assert.equal(devices[0].sent, 0);
  assert.equal((await must(session, { op: "process", frame: true })).sent.length, 1);
});
