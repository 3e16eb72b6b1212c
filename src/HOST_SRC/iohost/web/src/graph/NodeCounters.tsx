import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import type { NodeCounts } from "../protocol.ts";
import "./nodeCounters.css";

/** How often a node did what, in one line. */
export function NodeCounters({ host, node }: { host: Host; node: string }) {
  return (
    <p class="face-counters" data-counters>
      {counterTexts(host.counters.of(node).value ?? {}).join(" · ")}
    </p>
  );
}

/** Those that count something, and how often it fired in any case. */
function counterTexts({ fired = 0, received = 0, matched = 0, rejected = 0, sent = 0, dropped = 0 }: Partial<NodeCounts>): string[] {
  const texts = [
    { count: received, text: t("received {count}", { count: received }) },
    { count: matched, text: t("matched {count}", { count: matched }) },
    { count: rejected, text: t("rejected {count}", { count: rejected }) },
    { count: sent, text: t("sent {count}", { count: sent }) },
    { count: dropped, text: t("dropped {count}", { count: dropped }) },
  ];
  return [t("fired {count}", { count: fired }), ...texts.filter(({ count }) => count > 0).map(({ text }) => text)];
}
