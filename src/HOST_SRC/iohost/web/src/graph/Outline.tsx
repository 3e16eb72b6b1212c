import { memo } from "preact/compat";
import type { Host } from "../host.ts";
import { hostText } from "../hostTexts.ts";
import { t } from "../i18n.ts";
import { inputOf, outputOf, outputText } from "../nodePins.ts";
import type { Link } from "../protocol.ts";
import { useFirstThenAll } from "../view/useFirstThenAll.ts";
import { conversion } from "./wiring.ts";

/** The graph as a list, for who can't see it: each node with what its inputs come from. */
export const Outline = memo(function Outline({ host }: { host: Host }) {
  const nodes = useFirstThenAll(host)(host.nodes.value ?? []);
  const links = new Map<string, Link[]>();
  for (const link of host.links.value) {
    links.set(link.to, [...(links.get(link.to) ?? []), link]);
  }
  return (
    <section class="screen-reader" aria-label={t("Outline of the graph")} data-outline>
      <ul>
        {nodes.map((node) => (
          <li key={node.node}>
            {node.graph}, {hostText(node.details.name)}
            <ul>
              {links.get(node.node)?.flatMap((link) => {
                const source = host.byHandle.value.get(link.from);
                const input = inputOf(node, link.input);
                const output = source && outputOf(source, link.output);
                const converted = input && output ? conversion(output, input) : null;
                return source === undefined || input === undefined ? (
                  []
                ) : (
                  <li key={`${link.from} ${link.output} ${link.input}`}>
                    {t("{input} from {output}", { input: input.display, output: outputText(source, link.output) })}
                    {converted !== null && `, ${converted}`}
                  </li>
                );
              })}
            </ul>
          </li>
        ))}
      </ul>
    </section>
  );
});
