import type { Host } from "../host.ts";
import { ConnectionBanner, ConnectionLamp } from "./Connection.tsx";
import { Dock } from "./Dock.tsx";
import { NodeList } from "./NodeList.tsx";
import { RenderSurface } from "./RenderSurface.tsx";

export function App({ host }: { host: Host }) {
  return (
    <div class="app">
      <header class="top">
        <h1>iohost</h1>
        <span class="top-subtitle">input and output nodes, live</span>
        <ConnectionLamp host={host} />
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
