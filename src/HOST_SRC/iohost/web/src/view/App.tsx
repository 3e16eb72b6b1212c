import { useState } from "preact/hooks";
import { Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { ConnectionBanner, ConnectionLamp } from "./Connection.tsx";
import "./desk.css";
import { Dock } from "./Dock.tsx";
import { Inspector } from "./Inspector.tsx";
import { LanguageSwitch } from "./LanguageSwitch.tsx";
import { lazyView } from "./lazyView.tsx";
import "./topBar.css";
import { RenderSurface } from "./RenderSurface.tsx";

const Canvas = lazyView(async () => (await import("../graph/Canvas.tsx")).Canvas);

export function App({ host }: { host: Host }) {
  const [desk] = useState(() => new Desk());
  return (
    <div class="app">
      <header class="top">
        <h1>iohost</h1>
        <span class="top-subtitle">{t("input and output nodes, live")}</span>
        <ConnectionLamp host={host} />
        <LanguageSwitch />
      </header>
      <ConnectionBanner host={host} />
      <main class={desk.surfaceIsLarge.value ? "desk desk-surface" : "desk"}>
        <div class="stage">
          <section class="panel canvas" aria-label={t("Graph of the scene")}>
            <Canvas host={host} desk={desk} />
          </section>
          <Dock host={host} desk={desk} />
        </div>
        <div class="side">
          <RenderSurface host={host} desk={desk} />
          <Inspector host={host} desk={desk} />
        </div>
      </main>
    </div>
  );
}
