// Requests over HTTP as they stand: nothing is tidied up on the way.
import { once } from "node:events";
import http from "node:http";
import WebSocket from "ws";

/** Sends one request; the whole answer. */
export async function ask(address, path, { body, ...options } = {}) {
  const [host, port] = address.split(":");
  const request = http.request({ host, port, path, ...options });
  request.on("error", () => {}); // of a body that is refused before all of it was sent
  request.end(body);
  const [response] = await once(request, "response");
  const text = Buffer.concat(await response.toArray()).toString();
  return { status: response.statusCode, headers: response.headers, body: text };
}

/** Posts a request of the session; its reply. */
export async function postRequest(address, request) {
  const { body } = await ask(address, "/session", { method: "POST", body: JSON.stringify(request) });
  return JSON.parse(body);
}

/** The status that the request for a WebSocket is answered with. */
export function upgrade(address, path, headers) {
  return new Promise((resolve, reject) => {
    const socket = new WebSocket(`ws://${address}${path}`, { headers });
    socket.on("open", () => (socket.close(), resolve(101)));
    socket.on("unexpected-response", (_, response) => (response.resume(), resolve(response.statusCode)));
    socket.on("error", reject);
  });
}
