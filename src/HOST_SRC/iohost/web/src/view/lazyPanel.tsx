import type { ComponentType } from "preact";
import { useEffect, useState } from "preact/hooks";
import type { PanelProps } from "./panels.ts";

/** A panel whose code is large: it's loaded when the panel is opened for the first time. */
export function lazyPanel(load: () => Promise<ComponentType<PanelProps>>): ComponentType<PanelProps> {
  return function LazyPanel(props) {
    const [View, setView] = useState<ComponentType<PanelProps> | null>(null);
    const [error, setError] = useState<string | null>(null);
    useEffect(() => {
      load().then(
        (loaded) => setView(() => loaded),
        (reason: unknown) => setError(String(reason)),
      );
    }, []);
    if (View === null) {
      return <p class="empty">{error ?? "Loading…"}</p>;
    }
    return <View {...props} />;
  };
}
