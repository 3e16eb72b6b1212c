// What most tests of the page begin and end with: a host with a keyboard and a mouse node, a script, and the page.
import { startBrowser } from "./browser.mjs";
import { startHost } from "./host.mjs";
import { openPage } from "./page.mjs";
import { createScene } from "./session.mjs";
import { before, beforeEach } from "./test.mjs";

/** Those of the test that runs. */
export let browser;
export let host;
export let script;
export let page;

/**
 * Each test of the file gets a host and a page of its own, in one browser that draws in `space` or not. What `start` answers
 * are the host's options; `prepare` adds to the scene before the page opens with `panel` in front, and `look` waits for what
 * it added.
 */
export function useScene({ panel, scripts, look = () => {}, ...options } = {}) {
  useHost(options);
  beforeEach(async () => {
    page = await openPage(browser, host, { panel, scripts });
    await look();
  });
}

/** The same without the page, for tests that open what they look at. */
export function useHost({ space, start = () => {}, prepare = () => {} } = {}) {
  before(async () => {
    browser = await startBrowser({ space });
  });
  beforeEach(async () => {
    await startScene(await start());
    await prepare();
  });
}

export async function startScene(options) {
  host = await startHost(options);
  script = await createScene(host.address);
}
