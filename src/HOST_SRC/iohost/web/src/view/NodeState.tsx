// What a node does right now, and what is wrong with it: on its face as on its card.
import { computed } from "@preact/signals";
import { useMemo } from "preact/hooks";
import { clock } from "../clock.ts";
import { fedInput } from "../fed.ts";
import { agoText } from "../format.ts";
import type { Host, NodeView } from "../host.ts";
import { t } from "../i18n.ts";
import type { Param } from "../messages.ts";
import type { NodeCounts } from "../protocol.ts";
import { textWarning } from "../textWarning.ts";
import { CALM_LIT_MS, EventLamp } from "./lit.tsx";
import "./nodeState.css";

/** How often a node did what, in one line. */
export function NodeCounters({ host, node }: { host: Host; node: string }) {
  return (
    <p class="node-counters" data-counters>
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

/** The network tells of itself several times a second; a warning seldom changes. */
export function NodeWarning({ host, node }: { host: Host; node: NodeView }) {
  const fed = (input: Param) => fedInput(host, node.node, input);
  const warning = useMemo(
    () =>
      computed(() => {
        const network = host.network.value;
        return textWarning(node, network && (network.state.devices ?? []), fed); // a scene without a list has no devices
      }),
    [node],
  ).value;
  return warning === null ? null : <p class="node-warning">{warning}</p>;
}

/** Flashes when the node does something, and says how long ago that was. */
export function NodeActivity({ host, node }: { host: Host; node: string }) {
  const last = host.active.of(node).value;
  if (last === null) {
    return null;
  }
  const age = clock.value - last;
  return (
    <span class={`node-activity ${age < CALM_LIT_MS ? "fired" : ""}`} data-active={last}>
      <EventLamp last={last} /> {agoText(age)}
    </span>
  );
}
