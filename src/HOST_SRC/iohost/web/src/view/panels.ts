import type { ComponentType } from "preact";
import type { Host } from "../host.ts";
import { LogPanel } from "./LogPanel.tsx";

export interface PanelProps {
  host: Host;
  /** False while another panel is in front: nothing needs to be drawn then. */
  shown: boolean;
}

/** One of the panels below the render surface, each behind its own tab. Its view fills the box that it's given. */
export interface Panel {
  /** Stands in the page's address, as in `/#log`. */
  id: string;
  title: string;
  View: ComponentType<PanelProps>;
  /** How much of the page's height it takes: a third unless it says otherwise. */
  height?: "half";
}

/** In the order of the tabs; the first one is in front at first. */
export const PANELS: readonly Panel[] = [{ id: "log", title: "Log", View: LogPanel }];
