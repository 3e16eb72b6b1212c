import type { ComponentType } from "preact";
import { useEffect, useState } from "preact/hooks";
import { t } from "../i18n.ts";

/** A view whose code is large: it's loaded when the view is shown for the first time, after the page's first paint. */
export function lazyView<Props extends object>(load: () => Promise<ComponentType<Props>>): ComponentType<Props> {
  return function LazyView(props) {
    const [View, setView] = useState<ComponentType<Props> | null>(null);
    const [error, setError] = useState<string | null>(null);
    useEffect(() => {
      load().then(
        (loaded) => setView(() => loaded),
        (reason: unknown) => setError(String(reason)),
      );
    }, []);
    if (View === null) {
      return <p class="empty">{error ?? t("Loading…")}</p>;
    }
    return <View {...props} />;
  };
}
