import { Handle, Position } from "@xyflow/react";
import { useLayoutEffect, useRef } from "preact/hooks";
import type { Host, NodeView } from "../host.ts";
import { t } from "../i18n.ts";
import type { Param } from "../messages.ts";
import { inputsOf, outputsOf } from "../nodePins.ts";
import { shownValue } from "../params.ts";
import { EventLamp } from "../view/lit.tsx";
import { LongText } from "../view/LongText.tsx";
import type { Editor, Pin } from "./editor.ts";
import { linkedPin, shownPins } from "./elements.ts";
import { pinTop } from "./layout.ts";
import { sortOf } from "./wiring.ts";
import "./facePins.css";

/** As many values stand beside their pins; the others show on the wires and in the inspector. */
const MOST_VALUES = 3;

interface PinProps {
  editor: Editor;
  node: string;
  param: Param;
  /** Tab reaches the pins of chosen nodes, and those where the wire that is being made can end. */
  isReachable: boolean;
}

interface PinsProps {
  editor: Editor;
  node: NodeView;
  folded: boolean;
  /** As linkedPin() names them. */
  linked: readonly string[];
  isReachable: boolean;
}

/** A node's pins with what runs through them; folded those alone that are linked. */
export function FacePins({ editor, node, folded, linked, isReachable }: PinsProps) {
  const { inputs, outputs } = shownPins(node, folded, linked);
  const isSource = ({ id }: Param) => Number(linked.includes(linkedPin("output", id)));
  const values = outputsOf(node).filter((param) => sortOf(param) !== "event");
  const linkedFirst = [...values].sort((a, b) => isSource(b) - isSource(a));
  const valued = new Set(linkedFirst.slice(0, MOST_VALUES).map(({ id }) => id));
  const props = { editor, node: node.node, isReachable };
  return (
    <div class="face-pins">
      <div class="face-column">
        {inputs.map((param) => (
          <InputPin key={param.id} {...props} param={param} />
        ))}
      </div>
      <div class="face-column">
        {outputs.map((param) => (
          <OutputPin key={param.id} {...props} param={param} hasValue={valued.has(param.id)} />
        ))}
      </div>
    </div>
  );
}

/** The pins where the wire that is being made can end, placed as in whole faces. They leave the focus to the node. */
export function EndPins({ editor, node }: Pick<PinsProps, "editor" | "node">) {
  const ends = (params: readonly Param[], is: Pin["is"]) =>
    params.map((param, row) => {
      const isEnd = editor.canEnd({ node: node.node, id: param.id, is });
      return isEnd && <PinHandle key={param.id} editor={editor} node={node.node} param={param} is={is} top={pinTop(row)} isReachable />;
    });
  const pins = useRef<HTMLDivElement>(null);
  useLayoutEffect(() => {
    const all = pins.current!;
    return () => {
      if (all.contains(document.activeElement)) {
        all.closest<HTMLElement>(".react-flow__node")!.focus({ preventScroll: true });
      }
    };
  }, []);
  return (
    <div class="face-pins" ref={pins}>
      {ends(inputsOf(node), "input")}
      {ends(outputsOf(node), "output")}
    </div>
  );
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
      onClick={() => editor.usePin(pin)}
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
        <EventLamp last={last} /> {count}
      </span>
    );
  }
  return (
    <span class="face-value">
      <LongText {...shownValue(param, host.values.of(node, param.id).value)} />
    </span>
  );
}
