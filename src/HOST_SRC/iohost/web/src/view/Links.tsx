import { useContext } from "preact/hooks";
import { DeskContext } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { inputOf, inputText, outputOf, outputText } from "../nodePins.ts";
import { Editing } from "./Editing.tsx";
import { LeavingButton } from "./LeavingButton.tsx";
import "./links.css";

/** Leads to a node: to its card, or on the canvas where other nodes' cards are shown alone. */
function useShow(): (handle: string) => void {
  const desk = useContext(DeskContext);
  return (handle) => {
    if (desk.chosen.peek().length > 0) {
      desk.goTo(handle);
    } else {
      document.getElementById(`node-${handle}`)?.scrollIntoView({ block: "start" });
    }
  };
}

/** What an output feeds. */
export function LinkTargets({ host, node, output }: { host: Host; node: string; output: number }) {
  const show = useShow();
  const links = host.links.value.filter((link) => link.from === node && link.output === output);
  return links.map((link) => {
    const target = host.byHandle.value.get(link.to);
    return (
      target !== undefined && (
        <button
          type="button"
          class="link"
          key={`${link.to} ${link.input}`}
          data-link-to={link.to}
          title={t("Goes to {node}, {pin}", { node: target.graph, pin: inputOf(target, link.input)?.display ?? link.input })}
          onClick={() => show(link.to)}
        >
          → {inputText(target, link.input)}
        </button>
      )
    );
  });
}

/** What feeds an input. */
export function LinkSources({ host, node, input }: { host: Host; node: string; input: number }) {
  const desk = useContext(DeskContext);
  const show = useShow();
  const links = host.links.value.filter((link) => link.to === node && link.input === input);
  return links.map((link) => {
    const source = host.byHandle.value.get(link.from);
    return (
      source !== undefined && (
        <span class="link-source" key={`${link.from} ${link.output}`}>
          <button
            type="button"
            class="link"
            data-link-from={link.from}
            title={t("Comes from {node}, {pin}", { node: source.graph, pin: outputOf(source, link.output)?.display ?? link.output })}
            onClick={() => show(link.from)}
          >
            ← {outputText(source, link.output)}
          </button>
          <Editing>
            <LeavingButton
              class="icon-button"
              title={t("Unlink")}
              aria-label={t("Unlink from {node}", { node: source.graph })}
              data-unlink={link.from}
              onClick={async () => desk.tell(await host.requests.change({ op: "unlink", ...link }), "")}
            >
              ×
            </LeavingButton>
          </Editing>
        </span>
      )
    );
  });
}
