import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { ConnectionBanner, ConnectionLamp } from "./Connection.tsx";
import { Dock } from "./Dock.tsx";
import { LanguageSwitch } from "./LanguageSwitch.tsx";
import { NodeList } from "./NodeList.tsx";
import { RenderSurface } from "./RenderSurface.tsx";

export function App({ host }: { host: Host }) {
  return (
    <div class="app">
      <header class="top">
        <h1>iohost</h1>
        <span class="top-subtitle">{t("input and output nodes, live")}</span>
        <ConnectionLamp host={host} />
        <LanguageSwitch />
      </header>
      <ConnectionBanner host={host} />
      <main class="desk">
        <div class="stage">
          <RenderSurface host={host} />
          <Dock host={host} />
        </div>
        <NodeList host={host} />
      </main>
    </div>
  );
}
