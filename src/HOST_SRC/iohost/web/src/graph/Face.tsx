import { useStore, type Node, type NodeProps, type ReactFlowState } from "@xyflow/react";
import { computed, useComputed } from "@preact/signals";
import { useLayoutEffect, useMemo, useRef } from "preact/hooks";
import { fedInput } from "../fed.ts";
import type { Host, NodeView } from "../host.ts";
import { t } from "../i18n.ts";
import { iconOf } from "../icons.ts";
import { inputOf } from "../nodePins.ts";
import { JsonVerdictLine } from "../view/JsonPanel.tsx";
import { NodeActivity, NodeCounters, NodeWarning } from "../view/NodeState.tsx";
import { useFocusOn } from "../view/useFocusOn.ts";
import type { Editor } from "./editor.ts";
import { linkedPin } from "./elements.ts";
import { EndPins, FacePins } from "./FacePins.tsx";
import { boxOf, type Rect } from "./layout.ts";
import "./face.css";
import { useFocusWhenChosen } from "./useFocusWhenChosen.ts";

/** What is linked of it, as linkedPin() names pins: links of other nodes draw nothing of it anew. */
export type FaceNode = Node<{ editor: Editor; node: NodeView; folded: boolean; linked: readonly string[] }, "face">;

const ENABLE = 2;
/** From further away nobody reads a pin's name. */
const LEGIBLE_ZOOM = 0.2;
/** So that nothing is missing while the canvas is panned. */
const NEAR_PX = 100;

/** A node on the canvas. What is out of sight, or too far to be read, is a box with a name. */
export function Face({ data, selected, positionAbsoluteX: x, positionAbsoluteY: y }: NodeProps<FaceNode>) {
  const { editor, node, folded, linked } = data;
  const isOff = useIsOff(editor.host, node, linked);
  const { width, height } = boxOf(node);
  const isLegible = useStore((canvas) => isInSight({ x, y, width, height }, canvas));
  const isWhole = isLegible || folded || selected;
  const face = useRef<HTMLDivElement>(null);
  useFocusWhenChosen(face, selected);
  return (
    <div
      ref={face}
      class={isOff ? "face face-off" : "face"}
      style={{ height: isWhole ? undefined : `${height}px` }}
      data-face={node.node}
      data-folded={folded}
    >
      {isWhole ? (
        <WholeFace {...data} selected={selected} isOff={isOff} />
      ) : (
        <>
          <strong class="face-far">{node.graph}</strong>
          {editor.from.value !== null && <EndPins editor={editor} node={node} />}
        </>
      )}
    </div>
  );
}

/** What a node is, what it does right now, and its pins; folded those alone that are linked. */
function WholeFace({ editor, node, folded, linked, selected, isOff }: FaceNode["data"] & { selected: boolean; isOff: boolean }) {
  const { host } = editor;
  return (
    <>
      <header class="face-head">
        <FaceIcon type={node.type} />
        <FaceName editor={editor} node={node} />
        {isOff && <span class="face-state">{t("off")}</span>}
        <NodeActivity host={host} node={node.node} />
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
      <FacePins editor={editor} node={node} folded={folded} linked={linked} isReachable={selected} />
      <NodeCounters host={host} node={node.node} />
      <JsonVerdictLine host={host} node={node.node} />
      <NodeWarning host={host} node={node} />
    </>
  );
}

/** Whether a node is switched off, by hand or by what its switch is linked to. */
function useIsOff(host: Host, node: NodeView, linked: readonly string[]): boolean {
  const isSwitched = linked.includes(linkedPin("input", ENABLE));
  const enable = inputOf(node, ENABLE);
  return useMemo(
    () => computed(() => enable !== undefined && (isSwitched ? fedInput(host, node.node, enable) : enable).int === 0),
    [enable, isSwitched],
  ).value;
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

/** A double click or F2 makes a field of it. */
function FaceName({ editor, node }: { editor: Editor; node: NodeView }) {
  const isOpen = useComputed(() => editor.renaming.value === node.node).value;
  return isOpen ? (
    <NameField editor={editor} node={node} />
  ) : (
    <strong title={node.graph} onDblClick={() => (editor.renaming.value = node.node)}>{node.graph}</strong>
  );
}

function NameField({ editor, node }: { editor: Editor; node: NodeView }) {
  const field = useRef<HTMLInputElement>(null);
  useFocusOn(field);
  useLayoutEffect(() => {
    field.current!.select();
    return () => {
      if (editor.renaming.peek() === node.node) {
        editor.renaming.value = null; // the face is gone, or a box now
      }
    };
  }, []);
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
