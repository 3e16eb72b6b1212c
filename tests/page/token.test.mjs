// A server that others can reach asks each of them for the token of the address that it printed.
import assert from "node:assert/strict";
import { openContext, startBrowser } from "./support/browser.mjs";
import { startHost } from "./support/host.mjs";
import { ask, upgrade } from "./support/http.mjs";
import { openTab } from "./support/page.mjs";
import { createScene } from "./support/session.mjs";
import { before, test } from "./support/test.mjs";

let host;
let address;
let token;

before(async () => {
  host = await startHost({ at: "0.0.0.0" });
  address = host.address.replace("0.0.0.0", "127.0.0.1");
  token = new URL(host.page).searchParams.get("token");
});

async function get(path, options) {
  const { status, headers } = await ask(address, path, options);
  return [status, headers["set-cookie"]?.[0]];
}

const post = (path, headers) => get(path, { method: "POST", headers, body: "{}" });
const open = (path, headers) => upgrade(address, path, headers);

test("the printed address has a token of its own", () => {
  assert.match(host.page, /^http:\/\/0\.0\.0\.0:\d+\/\?token=[0-9a-f]{32}$/);
});

test("without the token nothing is answered", async () => {
  const wrong = token.replace(/.$/, (last) => (last === "0" ? "1" : "0"));
  for (const query of ["", `?token=${wrong}`, "?token=", `?tokens=${token}`, `?x=token=${token}`, `?token=${token}0`]) {
    for (const path of ["/", "/page.js", "/none", "/session"]) {
      assert.deepEqual(await get(path + query), [401, undefined], path + query);
    }
    assert.equal(await open(`/session${query}`), 401, query);
    assert.deepEqual(await post(`/object-text${query || "?"}&clip=Demo&object=Map`), [401, undefined]);
  }
  for (const headers of [{ authorization: token }, { authorization: `Basic ${token}` }, { cookie: `token=${token}` }]) {
    assert.equal((await get("/", { headers }))[0], 401);
    assert.equal(await open("/session", headers), 401);
  }
});

test("the token is taken from the query, the cookie that it sets, or the header", async () => {
  const [status, cookie] = await get(`/?token=${token}`);
  assert.equal(status, 200);
  assert.match(cookie, /^iohost_token_\d+=[0-9a-f]{32}; Path=\/; HttpOnly; SameSite=Strict$/);
  const ways = [{ cookie: `other=1; ${cookie.split(";")[0]}` }, { authorization: `Bearer ${token}` }, { authorization: `bearer ${token}` }];
  for (const headers of ways) {
    assert.deepEqual(await get("/page.js", { headers }), [200, undefined]);
    assert.equal(await open("/session", headers), 101);
    assert.equal((await post("/object-text?clip=Demo&object=Map", headers))[0], 200);
  }
  assert.equal(await open(`/session?token=${token}`), 101);
  assert.equal((await post(`/object-text?clip=Demo&token=${token}&object=Map`))[0], 200);
});

test("the page opens by the printed address and stays open to a reload without the query", async () => {
  await createScene(address, { headers: { authorization: `Bearer ${token}` } });
  const browser = await startBrowser();
  const page = await openTab(browser);
  for (const url of [host.page.replace("0.0.0.0", "127.0.0.1"), `http://${address}/`]) {
    await page.goto(url);
    await page.locator("article[data-node=k]").waitFor();
  }
  const stranger = await (await openContext(browser)).newPage();
  assert.equal((await stranger.goto(`http://${address}/`)).status(), 401);
  await browser.close();
});
