// A real browser without a window.
import { chromium } from "playwright-core";

// Drawing in space by the processor alone takes a lot of it, also for the rest of the page.
const DRAWING_IN_SPACE = ["--use-angle=swiftshader", "--enable-unsafe-swiftshader"];

export function startBrowser({ space = false } = {}) {
  return chromium.launch({
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
}
