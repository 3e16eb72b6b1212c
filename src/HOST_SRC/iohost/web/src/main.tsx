import { render } from "preact";
import { Host } from "./host.ts";
import "./page.css";
import { App } from "./view/App.tsx";

const scheme = location.protocol === "https:" ? "wss" : "ws";
const host = new Host(`${scheme}://${location.host}/session`);

render(<App host={host} />, document.getElementById("app")!);
