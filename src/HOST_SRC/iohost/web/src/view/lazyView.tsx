import type { ComponentType } from "preact";
import { useEffect, useState } from "preact/hooks";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";

/**
 * A view whose code is large: it's loaded when the view is shown for the first time, after the page's first paint; from a host
 * that is away, once it's back.
 */
export function lazyView<Props extends { host: Host }>(load: () => Promise<ComponentType<Props>>): ComponentType<Props> {
  return function LazyView(props) {
    const [View, setView] = useState<ComponentType<Props> | null>(null);
    const [hasFailed, setHasFailed] = useState(false);
    useEffect(() => {
      load().then(
        (loaded) => setView(() => loaded),
        () => setHasFailed(true),
      );
    }, [props.host.connection.value.is]);
    if (View === null) {
      return <p class="empty">{hasFailed ? t("This couldn't be loaded. The next connection to the host tries again.") : t("Loading…")}</p>;
    }
    return <View {...props} />;
  };
}
