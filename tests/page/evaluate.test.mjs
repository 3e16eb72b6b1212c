// A device's text is answered when it comes, not with the next frame: here that would be minutes later.
import assert from "node:assert/strict";
import { once } from "node:events";
import net from "node:net";
import { test } from "node:test";
import { startHost } from "./support/host.mjs";
import { createNode, must, openSession } from "./support/session.mjs";

const RECEIVED_TEXT = 1452;
const RECEIVED = 1453;
const SENT_TEXT = 1505;
const SEND = 1507;

async function answering(options, work) {
  const server = net.createServer().listen(0, "127.0.0.1").unref();
  await once(server, "listening");
  const host = await startHost({ options: ["--fps", "0.01", ...options] });
  const session = await openSession(host.address);
  await createNode(session, "in", "0E", "In");
  await createNode(session, "out", "0F", "Out");
  await must(session, { op: "set", node: "out", param: 1503, int: 1 });
  await must(session, { op: "link", from: "in", output: RECEIVED_TEXT, to: "out", input: SENT_TEXT });
  await must(session, { op: "link", from: "in", output: RECEIVED, to: "out", input: SEND });
  await must(session, { op: "process" });
  const address = `127.0.0.1:${server.address().port}`;
  const connected = once(server, "connection");
  await must(session, { op: "devices", list: [{ id: 1, name: "Wall", parser: "json", address }] });
  const [device] = await connected;
  try {
    await work(session, device);
  } finally {
    device.destroy();
    server.close();
    await session.close();
    assert.equal(await host.end(), 0);
  }
}

test("a text goes through two linked nodes and back at once", () =>
  answering([], async (session, device) => {
    for (const text of ['{"n":1}', '{"n":2}', '{"n":3}']) {
      device.write(`${text}\n`);
      let answer = "";
      while (!answer.endsWith("\0")) {
        answer += (await once(device, "data"))[0];
      }
      assert.equal(answer, `${text}\0`);
    }
  }));

test("with --evaluate frame it waits for the frame", () =>
  answering(["--evaluate", "frame"], async (session, device) => {
    device.write("{}\n");
    for (let reply; !reply?.nodes.in; ) {
      reply = await must(session, { op: "json" }); // until the text has come
    }
    const { devices } = await must(session, { op: "network" });
    assert.equal(devices[0].sent, 0);
    assert.equal((await must(session, { op: "process", frame: true })).sent.length, 1);
  }));
