import type { Host, NodeView } from "../host.ts";
import { t } from "../i18n.ts";
import type { ParamGroup } from "../messages.ts";
import "./links.css";

function pinName(groups: readonly ParamGroup[], id: number): string {
  return groups.flatMap(({ params }) => params).find((param) => param.id === id)?.display ?? String(id);
}

function nodeOf(host: Host, handle: string): NodeView | undefined {
  return host.nodes.value?.find(({ node }) => node === handle);
}

function showCard(handle: string): void {
  document.getElementById(`node-${handle}`)?.scrollIntoView({ block: "start" });
}

/** What an output feeds. */
export function LinkTargets({ host, node, output }: { host: Host; node: string; output: number }) {
  const links = host.links.value.filter((link) => link.from === node && link.output === output);
  return links.map((link) => {
    const target = nodeOf(host, link.to);
    return (
      target !== undefined && (
        <button
          type="button"
          class="link"
          key={`${link.to} ${link.input}`}
          data-link-to={link.to}
          title={t("Goes to {node}, {pin}", { node: target.graph, pin: pinName(target.details.inputs, link.input) })}
          onClick={() => showCard(link.to)}
        >
          → {target.graph} · {pinName(target.details.inputs, link.input)}
        </button>
      )
    );
  });
}

/** What feeds an input. */
export function LinkSources({ host, node, input }: { host: Host; node: string; input: number }) {
  const links = host.links.value.filter((link) => link.to === node && link.input === input);
  return links.map((link) => {
    const source = nodeOf(host, link.from);
    return (
      source !== undefined && (
        <button
          type="button"
          class="link"
          key={`${link.from} ${link.output}`}
          data-link-from={link.from}
          title={t("Comes from {node}, {pin}", { node: source.graph, pin: pinName(source.details.outputs, link.output) })}
          onClick={() => showCard(link.from)}
        >
          ← {source.graph} · {pinName(source.details.outputs, link.output)}
        </button>
      )
    );
  });
}
