// A real browser without a window.
import { createRequire } from "node:module";
import { LONGEST_WAIT_MS } from "./host.mjs";
import { opened } from "./opened.mjs";

// To import it, Node.js would search its megabytes for the names that it exports.
const { chromium } = createRequire(import.meta.url)("playwright-core");

// Drawing in space by the processor alone takes a lot of it, also for the rest of the page.
const DRAWING_IN_SPACE = ["--use-angle=swiftshader", "--enable-unsafe-swiftshader"];

/** Pages of its first context are tabs of one window; where they draw in space it's a small one. */
export async function startBrowser({ space = false } = {}) {
  const browser = await chromium.launch({
    executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium-headless-shell",
    args: [
      "--no-sandbox",
      ...(space ? DRAWING_IN_SPACE : ["--disable-gpu"]),
      "--disable-quic",
      "--no-first-run",
      "--disable-background-networking",
      "--disable-component-update",
      "--disable-sync",
    ],
  });
  opened.push(() => browser.close());
  await openContext(browser, { viewport: space ? { width: 1024, height: 560 } : { width: 1280, height: 800 } });
  return browser;
}

/** A window of its own, which knows nothing of the others. */
export async function openContext(browser, options) {
  const context = await browser.newContext(options);
  context.setDefaultTimeout(LONGEST_WAIT_MS);
  return context;
}
