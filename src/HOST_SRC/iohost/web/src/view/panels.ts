import type { ComponentType } from "preact";
import type { Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import type { Label } from "../i18n.ts";
import { JsonPanel } from "./JsonPanel.tsx";
import { lazyView } from "./lazyView.tsx";
import { LogPanel } from "./LogPanel.tsx";
import { NetworkPanel } from "./NetworkPanel.tsx";
import { ObjectsPanel } from "./ObjectsPanel.tsx";

export interface PanelProps {
  host: Host;
  desk: Desk;
  /** False while another panel is in front: nothing needs to be drawn then. */
  shown: boolean;
}

/** One of the panels below the canvas, each behind its own tab. Its view fills the box that it's given. */
export interface Panel {
  /** Stands in the page's address, as in `/#log`. */
  id: string;
  title: Label;
  View: ComponentType<PanelProps>;
  /** How much of the page's height it takes, when that isn't the usual third: a length of CSS. */
  height?: string;
}

const LazyKeyboard = lazyView(async () => (await import("./KeyboardPanel.tsx")).KeyboardPanel);
const LazyHands = lazyView(async () => (await import("../vr/HandsView.tsx")).HandsView);

/** In the order of the tabs; the first one is in front at first. */
export const PANELS: readonly Panel[] = [
  { id: "log", title: "Log", View: LogPanel },
  { id: "keyboard", title: "On-screen keyboard", View: LazyKeyboard, height: "46%" },
  { id: "hands", title: "VR hands", View: LazyHands, height: "56%" },
  { id: "network", title: "Network", View: NetworkPanel, height: "46%" },
  { id: "json", title: "JSON texts", View: JsonPanel },
  { id: "objects", title: "Objects", View: ObjectsPanel },
];
