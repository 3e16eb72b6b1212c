import { render } from "preact";
import "./base.css";
import "./view/controls.css";
import { Host } from "./host.ts";
import { startLanguage } from "./i18n.ts";
import { App } from "./view/App.tsx";

startLanguage();

const scheme = location.protocol === "https:" ? "wss" : "ws";
const host = new Host(`${scheme}://${location.host}/session/gathered`);

// What is held when the page can't see any more how it ends is let go.
const release = (reason: string) => host.holders.any && host.releaseAll(reason);
window.addEventListener("blur", () => release("the page lost the focus"));
window.addEventListener("pagehide", () => {
  release("the page was left");
  (document.activeElement as HTMLElement).blur(); // what is being typed is kept
});
document.addEventListener("visibilitychange", () => document.hidden && release("the page was hidden"));

render(<App host={host} />, document.getElementById("app")!);
