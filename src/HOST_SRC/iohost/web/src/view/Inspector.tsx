import { memo } from "preact/compat";
import { useEffect, useLayoutEffect, useRef } from "preact/hooks";
import type { Desk } from "../desk.ts";
import type { Host, NodeView } from "../host.ts";
import { hostText } from "../hostTexts.ts";
import { t } from "../i18n.ts";
import { iconOf } from "../icons.ts";
import { outputsOf } from "../nodePins.ts";
import { kindOf } from "../params.ts";
import type { ParamGroup } from "../messages.ts";
import { DeviceCard } from "./DeviceCard.tsx";
import "./inspector.css";
import { JsonVerdictLine } from "./JsonPanel.tsx";
import { LeavingButton } from "./LeavingButton.tsx";
import { useLit } from "./lit.tsx";
import { NodeActivity, NodeCounters, NodeWarning } from "./NodeState.tsx";
import { ObjectCard } from "./ObjectCard.tsx";
import { EventOutput, ValueOutput } from "./Outputs.tsx";
import { ParamEditor } from "./ParamEditor.tsx";
import { PartIndex } from "./PartIndex.tsx";
import { useFirstThenAll } from "./useFirstThenAll.ts";
import { useSeen } from "./useSeen.ts";

/** The device or object that was opened, or the nodes. */
export function Inspector({ host, desk }: { host: Host; desk: Desk }) {
  const section = useRef<HTMLElement>(null);
  const opened = desk.opened.value;
  const scene = host.sceneNumber.value;
  const shownOf = useFirstThenAll(host); // kept here: the cards go while something is opened
  useEffect(() => () => void (desk.opened.value = null), [desk, scene]); // what was opened belongs to that scene
  // The focus comes to what was opened, before somebody can go on there, and goes back to where that was done.
  useLayoutEffect(() => {
    if (opened === null) {
      return undefined;
    }
    const opener = document.activeElement;
    section.current!.scrollTop = 0;
    section.current!.focus();
    return () => {
      if (document.activeElement === document.body) {
        const isThere = opener instanceof HTMLElement && opener.isConnected && opener !== document.body;
        (isThere ? opener : section.current)?.focus();
      }
    };
  }, [opened]);
  return (
    <section class="nodes" aria-labelledby="inspector-title" tabIndex={-1} ref={section}>
      {opened === null ? (
        <Nodes host={host} desk={desk} shownOf={shownOf} />
      ) : opened.is === "device" ? (
        <DeviceCard key={opened.id} host={host} desk={desk} id={opened.id} />
      ) : (
        <ObjectCard key={JSON.stringify(opened.name)} host={host} desk={desk} name={opened.name} />
      )}
    </section>
  );
}

interface NodesProps {
  host: Host;
  desk: Desk;
  /** What is shown of a long list by now. */
  shownOf(list: readonly NodeView[]): readonly NodeView[];
}

/** The cards of the nodes that are chosen on the canvas, or of all, with what else the scene has. */
function Nodes({ host, desk, shownOf }: NodesProps) {
  const nodes = host.nodes.value;
  const scene = host.sceneNumber.value;
  const chosen = desk.chosen.value;
  const listed = nodes ?? host.firstNodes.value;
  const shown = chosen.length === 0 ? listed : listed?.filter(({ node }) => chosen.includes(node));
  return (
    <>
      <div class="panel-head">
        <h2 id="inspector-title">{t("Nodes")}</h2>
        {nodes !== null && (
          <span class="hint">
            {chosen.length === 0
              ? t("{count} in the scene", { count: nodes.length })
              : t("{chosen} of {count} chosen", { chosen: chosen.length, count: nodes.length })}
          </span>
        )}
        {chosen.length > 0 && (
          <LeavingButton onClick={() => desk.showAll()}>{t("Show all")}</LeavingButton>
        )}
        <button
          type="button"
          class="quiet"
          disabled={host.connection.value.is !== "open"}
          onClick={async () => desk.tell(await host.requests.resetCounters(), "")}
        >
          {t("Reset counts")}
        </button>
      </div>
      {nodes !== null && nodes.length > 1 && chosen.length === 0 && <NodeIndex host={host} nodes={shownOf(nodes)} />}
      {chosen.length === 0 && <PartIndex host={host} desk={desk} />}
      {/* The first cards know nothing of links and other nodes yet. */}
      <div class="cards" key={scene} inert={nodes === null}>
        {nodes?.length === 0 && <p class="empty">{t("The scene has no nodes.")}</p>}
        {shown && shownOf(shown).map((node) => <NodeCard key={node.node} host={host} node={node} />)}
      </div>
    </>
  );
}

/** Leads to each node's card, and flashes when the node fires, so that it's seen whichever cards are in sight. */
function NodeIndex({ host, nodes }: { host: Host; nodes: readonly NodeView[] }) {
  return (
    <nav class="node-index" aria-label={t("Nodes")}>
      {nodes.map((node) => (
        <NodeIndexEntry key={node.node} host={host} node={node} />
      ))}
    </nav>
  );
}

const NodeIndexEntry = memo(function NodeIndexEntry({ host, node }: { host: Host; node: NodeView }) {
  const events = outputsOf(node).filter((param) => kindOf(param) === "event");
  const last = Math.max(0, ...events.map(({ id }) => host.fired.of(node.node, id).value ?? 0));
  const entry = useRef<HTMLButtonElement>(null);
  useLit(entry, last);
  return (
    <button
      type="button"
      ref={entry}
      title={`${node.graph} (${hostText(node.details.name)})`}
      aria-label={node.graph}
      onClick={() => document.getElementById(`node-${node.node}`)?.scrollIntoView({ block: "start" })}
    >
      <NodeIcon type={node.type} />
    </button>
  );
});

/** Of a node that nobody has scrolled to yet it has the name alone. */
const NodeCard = memo(function NodeCard({ host, node }: { host: Host; node: NodeView }) {
  const card = useRef<HTMLElement>(null);
  const isSeen = useSeen(card);
  return (
    <article class="panel card" id={`node-${node.node}`} data-node={node.node} ref={card}>
      {isSeen ? <CardContent host={host} node={node} /> : <h3>{node.graph}</h3>}
    </article>
  );
});

function CardContent({ host, node }: { host: Host; node: NodeView }) {
  const { inputs, outputs } = node.details;
  const place = node.clip === null ? t("no clip") : node.clip;
  return (
    <>
      <header class="card-head">
        <NodeIcon type={node.type} />
        <div class="card-names">
          <h3 title={node.graph}>{node.graph}</h3>
          <p>
            {hostText(node.details.name)} <span class="dot">·</span> {place}
          </p>
        </div>
        <NodeActivity host={host} node={node.node} />
      </header>
      <NodeCounters host={host} node={node.node} />
      <NodeWarning host={host} node={node} />
      {inputs.some((group) => group.params.length > 0) && (
        <section class="group">
          <h4>{t("Inputs")}</h4>
          <div class="inputs">
            {inputs.flatMap((group) =>
              group.params.map((param) => <ParamEditor key={param.id} host={host} node={node.node} param={param} />),
            )}
          </div>
        </section>
      )}
      {outputs.map((group) => (
        <OutputGroup key={group.id} host={host} node={node.node} group={group} />
      ))}
      <JsonVerdictLine host={host} node={node.node} />
    </>
  );
}

function OutputGroup({ host, node, group }: { host: Host; node: string; group: ParamGroup }) {
  return (
    <section class="group">
      <h4>{group.display}</h4>
      <div class="outputs" aria-live="off">
        {group.params.map((param) =>
          kindOf(param) === "event" ? (
            <EventOutput key={param.id} host={host} node={node} param={param} />
          ) : (
            <ValueOutput key={param.id} host={host} node={node} param={param} />
          ),
        )}
      </div>
    </section>
  );
}

function NodeIcon({ type }: { type: string }) {
  const address = iconOf(type);
  return (
    <span class="card-icon" aria-hidden="true">
      {address === null ? "◇" : <img src={address} alt="" width="28" height="28" />}
    </span>
  );
}
