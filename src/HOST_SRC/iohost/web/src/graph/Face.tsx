import { Handle, Position, type Node, type NodeProps } from "@xyflow/react";
import { computed, useComputed } from "@preact/signals";
import { useLayoutEffect, useMemo, useRef } from "preact/hooks";
import { clock } from "../clock.ts";
import { agoText } from "../format.ts";
import type { Host, NodeView } from "../host.ts";
import { t } from "../i18n.ts";
import { iconOf } from "../icons.ts";
import type { Param } from "../messages.ts";
import { inputsOf, outputsOf } from "../nodePins.ts";
import { shownValue } from "../params.ts";
import { LongText } from "../view/LongText.tsx";
import { JsonVerdictLine } from "../view/JsonPanel.tsx";
import { useFocusOn } from "../view/useFocusOn.ts";
import type { Editor, Pin } from "./editor.ts";
import { linkedPin } from "./elements.ts";
import { NodeCounters } from "./NodeCounters.tsx";
import { textWarning } from "./textWarning.ts";
import { sortOf } from "./wiring.ts";

/** What is linked of it, as linkedPin() names pins: links of other nodes draw nothing of it anew. */
export type FaceNode = Node<{ editor: Editor; node: NodeView; folded: boolean; linked: readonly string[] }, "face">;

/** As many values stand beside their pins; the others show on the wires and in the inspector. */
const MOST_VALUES = 3;
const ENABLE = 2;

/** A node on the canvas: what it is, what it does right now, and its pins. Folded it has only those that are linked. */
export function Face({ data: { editor, node, folded, linked }, selected }: NodeProps<FaceNode>) {
  const { host } = editor;
  const icon = iconOf(node.type);
  const inputs = inputsOf(node);
  const outputs = outputsOf(node);
  const isOff = inputs.some(({ id, int }) => id === ENABLE && int === 0);
  const shown = (params: readonly Param[], is: Pin["is"]) =>
    folded ? params.filter(({ id }) => linked.includes(linkedPin(is, id))) : params;
  const isSource = ({ id }: Param) => Number(linked.includes(linkedPin("output", id)));
  const values = outputs.filter((param) => sortOf(param) !== "event");
  const linkedFirst = [...values].sort((a, b) => isSource(b) - isSource(a));
  const valued = new Set(linkedFirst.slice(0, MOST_VALUES).map(({ id }) => id));
  // The network tells of itself several times a second; a warning seldom changes.
  const warning = useMemo(() => computed(() => textWarning(node, host.network.value?.state.devices ?? null)), [node]).value;
  const pinProps = { editor, node: node.node, isReachable: selected };
  return (
    <div class={isOff ? "face face-off" : "face"} data-face={node.node} data-folded={folded}>
      <header class="face-head">
        {icon !== null && <img src={icon} alt="" width="22" height="22" />}
        <FaceName editor={editor} node={node} />
        {isOff && <span class="face-state">{t("off")}</span>}
        <Activity host={host} node={node.node} />
        <button
          type="button"
          class="face-fold nodrag"
          aria-label={folded ? t("Unfold {name}", { name: node.graph }) : t("Fold {name}", { name: node.graph })}
          aria-expanded={!folded}
          tabIndex={selected ? 0 : -1}
          onClick={() => void editor.place({ [node.node]: { ...editor.view.placeOf(node.node), folded: !folded } })}
        >
          {folded ? "▸" : "▾"}
        </button>
      </header>
      <div class="face-pins">
        <div>
          {shown(inputs, "input").map((param) => (
            <InputPin key={param.id} {...pinProps} param={param} />
          ))}
        </div>
        <div>
          {shown(outputs, "output").map((param) => (
            <OutputPin key={param.id} {...pinProps} param={param} hasValue={valued.has(param.id)} />
          ))}
        </div>
      </div>
      <NodeCounters host={host} node={node.node} />
      <JsonVerdictLine host={host} node={node.node} />
      {warning !== null && <p class="face-warning">{warning}</p>}
    </div>
  );
}

/** A double click or F2 makes a field of it. */
function FaceName({ editor, node }: { editor: Editor; node: NodeView }) {
  const isOpen = useComputed(() => editor.renaming.value === node.node).value;
  return isOpen ? (
    <NameField editor={editor} node={node} />
  ) : (
    <strong onDblClick={() => (editor.renaming.value = node.node)}>{node.graph}</strong>
  );
}

function NameField({ editor, node }: { editor: Editor; node: NodeView }) {
  const field = useRef<HTMLInputElement>(null);
  useFocusOn(field);
  useLayoutEffect(() => field.current!.select(), []);
  return (
    <input
      ref={field}
      class="field face-rename nodrag nokey"
      aria-label={t("Name of the node")}
      defaultValue={node.graph}
      onKeyDown={(event) => {
        if (event.isComposing) {
          return;
        }
        if (event.key === "Enter") {
          void editor.rename(node.node, event.currentTarget.value.trim());
        } else if (event.key === "Escape") {
          editor.renaming.value = null;
        }
      }}
      onBlur={(event) => editor.renaming.value === node.node && void editor.rename(node.node, event.currentTarget.value.trim())}
    />
  );
}

/** Flashes when the node does something, and says how long ago that was. */
function Activity({ host, node }: { host: Host; node: string }) {
  const last = host.active.of(node).value;
  if (last === null) {
    return null;
  }
  return (
    <span class="face-activity fired" data-active={last}>
      <span class="event-lamp" key={last} aria-hidden="true" /> {agoText(clock.value - last)}
    </span>
  );
}

interface PinProps {
  editor: Editor;
  node: string;
  param: Param;
  /** Tab reaches the pins of chosen nodes, and those where a wire that was begun can end. */
  isReachable: boolean;
}

function PinHandle({ editor, node, param, isReachable, is }: PinProps & { is: Pin["is"] }) {
  const pin: Pin = { node, id: param.id, is };
  const isEnd = editor.canEnd(pin);
  const isBegun = editor.begun.value?.node === node && editor.begun.value.id === param.id && editor.begun.value.is === is;
  return (
    <Handle
      type={is === "output" ? "source" : "target"}
      position={is === "output" ? Position.Right : Position.Left}
      id={String(param.id)}
      className={`pin pin-${sortOf(param)}${isEnd ? " pin-end" : ""}${isBegun ? " pin-begun" : ""}`}
      role="button"
      tabIndex={isReachable || isEnd ? 0 : -1}
      aria-label={is === "output" ? t("Output {name}", { name: param.display }) : t("Input {name}", { name: param.display })}
      onKeyDown={(event) => {
        if (event.key === "Enter" || event.key === " ") {
          event.preventDefault();
          event.stopPropagation();
          editor.usePin(pin);
        }
      }}
    />
  );
}

function InputPin(props: PinProps) {
  const { param } = props;
  return (
    <div class="face-pin" title={`${param.name}, ${param.id}`}>
      <PinHandle {...props} is="input" />
      <span class="face-name">{param.display}</span>
    </div>
  );
}

function OutputPin({ hasValue, ...props }: PinProps & { hasValue: boolean }) {
  const { editor, node, param } = props;
  return (
    <div class="face-pin face-output" title={`${param.name}, ${param.id}`}>
      {(hasValue || sortOf(param) === "event") && <OutputState host={editor.host} node={node} param={param} />}
      <span class="face-name">{param.display}</span>
      <PinHandle {...props} is="output" />
    </div>
  );
}

/** What an output shows right now: how often it fired, or its value. */
function OutputState({ host, node, param }: { host: Host; node: string; param: Param }) {
  if (sortOf(param) === "event") {
    const count = host.firedCount(node, param.id);
    const last = host.fired.of(node, param.id).value;
    return (
      <span class={last !== null ? "face-value fired" : "face-value"} data-face-count={count}>
        {/* A new key makes a new element, whose flash starts afresh. */}
        <span class="event-lamp" key={last} aria-hidden="true" /> {count}
      </span>
    );
  }
  return (
    <span class="face-value">
      <LongText {...shownValue(param, host.values.of(node, param.id).value)} />
    </span>
  );
}
