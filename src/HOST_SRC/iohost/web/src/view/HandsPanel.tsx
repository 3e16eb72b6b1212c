import type { ComponentType } from "preact";
import { useEffect, useState } from "preact/hooks";
import type { PanelProps } from "./panels.ts";

/** The hand controllers. What draws in space is large, so it's loaded when the panel is opened for the first time. */
export function HandsPanel(props: PanelProps) {
  const [View, setView] = useState<ComponentType<PanelProps> | null>(null);
  const [error, setError] = useState<string | null>(null);
  useEffect(() => {
    import("../vr/HandsView.tsx").then(
      ({ HandsView }) => setView(() => HandsView),
      (reason: unknown) => setError(String(reason)),
    );
  }, []);
  if (View === null) {
    return <p class="empty">{error ?? "Loading…"}</p>;
  }
  return <View {...props} />;
}
