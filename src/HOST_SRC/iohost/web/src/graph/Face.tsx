import {
  Handle,
  Position,
  useStore,
  useUpdateNodeInternals,
  type Node,
  type NodeProps,
  type ReactFlowState,
  type Rect,
} from "@xyflow/react";
import { computed, useComputed } from "@preact/signals";
import { useLayoutEffect, useMemo, useRef } from "preact/hooks";
import { clock } from "../clock.ts";
import { fedInput } from "../fed.ts";
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
import { boxOf, pinTop } from "./layout.ts";
import { NodeCounters } from "./NodeCounters.tsx";
import { textWarning } from "./textWarning.ts";
import { sortOf } from "./wiring.ts";

/** What is linked of it, as linkedPin() names pins: links of other nodes draw nothing of it anew. */
export type FaceNode = Node<{ editor: Editor; node: NodeView; folded: boolean; linked: readonly string[] }, "face">;

/** As many values stand beside their pins; the others show on the wires and in the inspector. */
const MOST_VALUES = 3;
const ENABLE = 2;
/** From further away nobody reads a pin's name. */
const LEGIBLE_ZOOM = 0.2;
/** So that nothing is missing while the canvas is panned. */
const NEAR_PX = 100;

/**
 * A node on the canvas: what it is, what it does right now, and its pins; folded those alone that are linked. What is out of
 * sight, or too far to be read, is its name and the pins that wires lead to.
 */
export function Face({ id, data, selected, positionAbsoluteX: x, positionAbsoluteY: y }: NodeProps<FaceNode>) {
  const { editor, node, folded, linked } = data;
  const { host } = editor;
  const inputs = inputsOf(node);
  const outputs = outputsOf(node);
  const isSwitched = linked.includes(linkedPin("input", ENABLE));
  const enable = inputs.find((input) => input.id === ENABLE);
  const isOff = useMemo(
    () => computed(() => enable !== undefined && (isSwitched ? fedInput(host, node.node, enable) : enable).int === 0),
    [enable, isSwitched],
  ).value;
  const { width, height } = boxOf(node);
  const isLegible = useStore((canvas) => isInSight({ x, y, width, height }, canvas));
  const isWhole = isLegible || folded || selected;
  useMeasured(id, isWhole ? "all" : linked.join());
  const pinProps = { editor, node: node.node, isReachable: selected };
  return (
    <div
      class={isOff ? "face face-off" : "face"}
      style={{ height: isWhole ? undefined : `${height}px` }}
      data-face={node.node}
      data-folded={folded}
    >
      <header class="face-head">
        {isWhole && <FaceIcon type={node.type} />}
        <FaceName editor={editor} node={node} />
        {isWhole && (
          <>
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
          </>
        )}
      </header>
      {isWhole ? (
        <>
          <FacePins {...pinProps} inputs={inputs} outputs={outputs} folded={folded} linked={linked} />
          <NodeCounters host={host} node={node.node} />
          <JsonVerdictLine host={host} node={node.node} />
          <Warning host={host} node={node} />
        </>
      ) : (
        <div class="face-pins">
          <WiredPins {...pinProps} params={inputs} is="input" linked={linked} />
          <WiredPins {...pinProps} params={outputs} is="output" linked={linked} />
        </div>
      )}
    </div>
  );
}

const unmeasured = new Set<string>();

/** The library learns of a node's pins when it measures it: anew when others are drawn, and all such nodes at once. */
function useMeasured(id: string, pins: string): void {
  const measure = useUpdateNodeInternals();
  const before = useRef(pins);
  useLayoutEffect(() => {
    if (before.current === pins) {
      return; // it measures what comes by itself
    }
    before.current = pins;
    if (unmeasured.size === 0) {
      queueMicrotask(() => {
        measure([...unmeasured]);
        unmeasured.clear();
      });
    }
    unmeasured.add(id);
  }, [pins]);
}

/** Whether a box can be read: it's as large as that, and in what is seen, or close by. */
function isInSight(box: Rect, { transform: [left, top, zoom], width, height }: ReactFlowState): boolean {
  const [x, y] = [box.x * zoom + left, box.y * zoom + top];
  return (
    zoom >= LEGIBLE_ZOOM &&
    x < width + NEAR_PX &&
    y < height + NEAR_PX &&
    x + box.width * zoom > -NEAR_PX &&
    y + box.height * zoom > -NEAR_PX
  );
}

function FaceIcon({ type }: { type: string }) {
  const icon = iconOf(type);
  return icon === null ? null : <img src={icon} alt="" width="22" height="22" />;
}

interface PinsProps extends Omit<PinProps, "param"> {
  linked: readonly string[];
}

interface FacePinsProps extends PinsProps {
  inputs: readonly Param[];
  outputs: readonly Param[];
  folded: boolean;
}

function FacePins({ inputs, outputs, folded, linked, ...props }: FacePinsProps) {
  const shown = (params: readonly Param[], is: Pin["is"]) =>
    folded ? params.filter(({ id }) => linked.includes(linkedPin(is, id))) : params;
  const isSource = ({ id }: Param) => Number(linked.includes(linkedPin("output", id)));
  const values = outputs.filter((param) => sortOf(param) !== "event");
  const linkedFirst = [...values].sort((a, b) => isSource(b) - isSource(a));
  const valued = new Set(linkedFirst.slice(0, MOST_VALUES).map(({ id }) => id));
  return (
    <div class="face-pins">
      <div>
        {shown(inputs, "input").map((param) => (
          <InputPin key={param.id} {...props} param={param} />
        ))}
      </div>
      <div>
        {shown(outputs, "output").map((param) => (
          <OutputPin key={param.id} {...props} param={param} hasValue={valued.has(param.id)} />
        ))}
      </div>
    </div>
  );
}

/** The pins that wires lead to, or could by keys, where they stand in the whole face. */
function WiredPins({ params, is, linked, ...props }: PinsProps & { params: readonly Param[]; is: Pin["is"] }) {
  return params.map((param, row) => {
    const isShown = linked.includes(linkedPin(is, param.id)) || props.editor.canEnd({ node: props.node, id: param.id, is });
    return isShown && <PinHandle key={param.id} {...props} param={param} is={is} top={pinTop(row)} />;
  });
}

/** The network tells of itself several times a second; a warning seldom changes. */
function Warning({ host, node }: { host: Host; node: NodeView }) {
  const fed = (input: Param) => fedInput(host, node.node, input);
  const warning = useMemo(() => computed(() => textWarning(node, host.network.value?.state.devices ?? null, fed)), [node]).value;
  return warning === null ? null : <p class="face-warning">{warning}</p>;
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

/** As long as the mark that stands in place of a flash. */
const LIT_MS = 2000;

/** Flashes when the node does something, and says how long ago that was. */
function Activity({ host, node }: { host: Host; node: string }) {
  const last = host.active.of(node).value;
  if (last === null) {
    return null;
  }
  const age = clock.value - last;
  return (
    <span class={`face-activity ${age < LIT_MS ? "fired" : ""}`} data-active={last}>
      <span class="event-lamp" key={last} aria-hidden="true" /> {agoText(age)}
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

function PinHandle({ editor, node, param, isReachable, is, top }: PinProps & { is: Pin["is"]; top?: number }) {
  const pin: Pin = { node, id: param.id, is };
  const isEnd = editor.canEnd(pin);
  const isBegun = editor.begun.value?.node === node && editor.begun.value.id === param.id && editor.begun.value.is === is;
  return (
    <Handle
      type={is === "output" ? "source" : "target"}
      position={is === "output" ? Position.Right : Position.Left}
      id={String(param.id)}
      className={`pin pin-${sortOf(param)}${isEnd ? " pin-end" : ""}${isBegun ? " pin-begun" : ""}`}
      style={{ top }}
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
