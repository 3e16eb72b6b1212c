// A script on the host's WebSocket: a second client beside the page.
import { once } from "node:events";
import WebSocket from "ws";
import { LONGEST_WAIT_MS } from "./host.mjs";
import { opened } from "./opened.mjs";

/** The node types by the last byte of their GUIDs. */
export const Type = {
  keyboard: "01", textField: "02", mouse: "03", netSend: "04", netReceive: "05", gesture: "07", vrHandle: "08",
  keyCheck: "0B", objectJson: "0C", broadcastReceive: "0D", deviceJson: "0E", stringSend: "0F",
};

/** A node as requests and scenes describe it. */
export const nodeOf = (node, type, graph, more) =>
  ({ node, type: `{8164BB40-6B6A-4707-88B7-386BCB0D1B${type}}`, clip: "Demo", graph, ...more });

/** Opens the session. Replies are handed to who asked; pushes gather in `pushes`. */
export async function openSession(address, options = {}) {
  const socket = new WebSocket(`ws://${address}/session`, options);
  const pushes = [];
  const waiting = [];
  socket.on("message", (data) => {
    const message = JSON.parse(String(data));
    if (message.push) {
      pushes.push(message);
    } else {
      waiting.shift()?.resolve(message);
    }
  });
  socket.on("close", () => waiting.splice(0).forEach(({ reject }) => reject(new Error("The host closed the connection."))));
  const close = async () => {
    if (socket.readyState !== WebSocket.CLOSED) {
      const closed = once(socket, "close");
      socket.close();
      await closed;
    }
  };
  await once(socket, "open");
  opened.push(close);
  // The host has it among its clients, and pushes to it, from its greeting on, of which this is the last.
  await until("the greeting", () => pushes.some(({ push }) => push === "history"));
  return {
    socket,
    pushes,
    request(request) {
      socket.send(typeof request === "string" ? request : JSON.stringify(request));
      return new Promise((resolve, reject) => waiting.push({ resolve, reject }));
    },
    close,
  };
}

/** What pushes told of fired events: [node, output] each. */
export function postedIn(pushes) {
  return pushes.flatMap((push) => push.posted ?? []).map(({ node, output }) => [node, output]);
}

export function logIn(pushes) {
  return pushes.flatMap((push) => push.log ?? []).map((line) => line.text);
}

/** A request that must be carried out. */
export async function must(session, request) {
  const reply = await session.request(request);
  if (!reply.ok) {
    throw new Error(`${JSON.stringify(request)} was answered by ${JSON.stringify(reply)}`);
  }
  return reply;
}

export async function createNode(session, node, type, graph) {
  const { created } = await must(session, { op: "create", ...nodeOf(node, type, graph) });
  if (!created) {
    throw new Error(`The node ${node} wasn't made.`);
  }
}

/** How often an output has fired by now; the page is told a few times a second. */
export async function timesFired(session, [node, output]) {
  return (await must(session, { op: "counters" })).nodes[node].outputs?.[output] ?? 0;
}

/** A keyboard node "k" and a mouse node "m", as the tests use them: evaluated once, as they must have been to fire. */
export async function createScene(address, options) {
  const session = await openSession(address, options);
  await createNode(session, "k", Type.keyboard, "Keyboard 1");
  await createNode(session, "m", Type.mouse, "Mouse 1");
  await until("the first values", () => session.pushes.some(({ push, nodes }) => push === "outputs" && nodes.m));
  return session;
}

/** Waits until something holds; fails after a while with what it looked for. */
export async function until(what, holds) {
  const end = Date.now() + LONGEST_WAIT_MS;
  for (let pause = 10; !(await holds()); pause = Math.min(2 * pause, 50)) {
    if (Date.now() > end) {
      throw new Error(`Waited in vain for: ${what}`);
    }
    await new Promise((resolve) => setTimeout(resolve, pause));
  }
}

/** Waits until reading gives what is expected; fails with what it gave last. */
export async function expectEventually(what, read, expected) {
  let last;
  try {
    await until(what, async () => (last = await read()) === expected);
  } catch (error) {
    throw new Error(`${error.message}; it stayed at ${last}`);
  }
}
