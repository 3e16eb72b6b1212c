// A page of another server, in the same browser, reaches nothing.
import assert from "node:assert/strict";
import { once } from "node:events";
import http from "node:http";
import { openPage, openTab } from "./support/page.mjs";
import { browser, host, script, useHost } from "./support/scene.mjs";
import { createNode, must, postedIn, Type } from "./support/session.mjs";
import { after, before, test } from "./support/test.mjs";

const TEXT = '{"zoom":3}';
const TAKEN = ["o", 1253];

let server;
let foreign;

before(async () => {
  server = http.createServer((_, response) => {
    response.setHeader("Content-Type", "text/html");
    response.end("<!doctype html><title>Another server's page</title>");
  });
  server.listen(0, "127.0.0.1");
  await once(server, "listening");
});
after(() => server.close());

useHost({
  async prepare() {
    await createNode(script, "o", Type.objectJson, "Object text");
    await must(script, { op: "set", node: "o", param: 1202, string: "Demo" });
    await must(script, { op: "set", node: "o", param: 1203, string: "Map" });
    foreign = await openTab(browser);
    await foreign.goto(`http://127.0.0.1:${server.address().port}/`);
  },
});

/** What becomes of a WebSocket that a page opens: "open", or "error" when it never was. */
const openSocket = (from) =>
  from.evaluate(
    (address) =>
      new Promise((resolve) => {
        const socket = new WebSocket(`ws://${address}/session`);
        socket.onopen = () => (socket.close(), resolve("open"));
        socket.onerror = () => resolve("error");
      }),
    host.address,
  );

/** What a page's script sees of a request: the status, "opaque", or "error" when it's told nothing. */
const fetchFrom = (from, path, options) =>
  from.evaluate(
    ([url, given]) =>
      fetch(url, given).then(
        ({ status, type }) => (type === "opaque" ? type : status),
        () => "error",
      ),
    [`http://${host.address}${path}`, options],
  );

const post = { method: "POST", body: TEXT };
const OBJECT = "/object-text?clip=Demo&object=Map";

test("the host's own page opens the session and posts a text", async () => {
  const { page } = await openPage(browser, host);
  assert.equal(await openSocket(page), "open");
  assert.equal(await fetchFrom(page, OBJECT, post), 200);
  await must(script, { op: "scene" });
  assert.deepEqual(postedIn(script.pushes), [TAKEN]);
});

test("another server's page gets no session and no answer, and what it or its form posts changes nothing", async () => {
  assert.equal(await openSocket(foreign), "error");
  assert.deepEqual((await must(script, { op: "scene" })).nodes.map(({ node }) => node), ["k", "m", "o"]);
  assert.equal(await fetchFrom(foreign, OBJECT, post), "error");
  assert.equal(await fetchFrom(foreign, OBJECT, { ...post, mode: "no-cors" }), "opaque");
  assert.equal(await fetchFrom(foreign, "/", {}), "error");
  assert.equal(await fetchFrom(foreign, "/", { mode: "no-cors" }), "opaque");
  assert.deepEqual((await must(script, { op: "json" })).nodes, {});
  await foreign.evaluate(
    ([action, text]) => {
      const form = Object.assign(document.createElement("form"), { method: "post", action, enctype: "text/plain" });
      form.append(Object.assign(document.createElement("textarea"), { name: "text", value: text }));
      document.body.append(form);
      form.submit();
    },
    [`http://${host.address}${OBJECT}`, TEXT],
  );
  await foreign.getByText("Origin is not a page of this server").waitFor();
  assert.deepEqual((await must(script, { op: "json" })).nodes, {});
  assert.deepEqual(postedIn(script.pushes), []);
});
