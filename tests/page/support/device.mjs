import { once } from "node:events";
import { createServer } from "node:net";
import { opened } from "./opened.mjs";

/** A device on this machine, on any free port or a given one. What it's sent gathers in `received`. */
export async function startDevice(port = 0) {
  const sockets = new Set();
  const server = createServer((socket) => {
    sockets.add(socket);
    socket.on("close", () => sockets.delete(socket));
    socket.on("data", (data) => (device.received = Buffer.concat([device.received, data]))).on("error", () => {});
  }).listen(port, "127.0.0.1");
  await once(server, "listening");
  const device = {
    port: server.address().port,
    address: `127.0.0.1:${server.address().port}`,
    received: Buffer.alloc(0),
    isConnected: () => sockets.size > 0,
    write: (bytes) => sockets.forEach((socket) => socket.write(bytes)),
    async close() {
      sockets.forEach((socket) => socket.destroy());
      server.close();
    },
  };
  opened.push(device.close);
  return device;
}
