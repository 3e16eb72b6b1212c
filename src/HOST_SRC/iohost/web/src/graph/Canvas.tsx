import {
  Background,
  Controls,
  Handle,
  MiniMap,
  Position,
  ReactFlow,
  useEdgesState,
  useNodesState,
  type Connection,
  type Edge,
  type FinalConnectionState,
  type Node,
  type NodeProps,
  type ReactFlowInstance,
} from "@xyflow/react";
import { useEffect, useRef } from "preact/hooks";
import type { Desk } from "../desk.ts";
import type { Host, NodeView } from "../host.ts";
import { t } from "../i18n.ts";
import { iconOf } from "../icons.ts";
import type { Param } from "../messages.ts";
import { shownValue } from "../params.ts";
import type { Link } from "../protocol.ts";
import { LongText } from "../view/LongText.tsx";
import { ariaLabels } from "./ariaLabels.ts";
import { arrange, type Box } from "./layout.ts";
import { NodePalette } from "./NodePalette.tsx";
import { refusal, sortOf } from "./wiring.ts";

type FaceNode = Node<{ host: Host; node: NodeView }, "face">;
type Wire = Edge<{ link: Link }>;

// As the style sheet draws them.
const WIDTH = 300;
const HEAD_HEIGHT = 42;
const PIN_HEIGHT = 20;

const GAP = 24;

const inputsOf = ({ details }: NodeView) => details.inputs.flatMap(({ params }) => params);
const outputsOf = ({ details }: NodeView) => details.outputs.flatMap(({ params }) => params);

function boxOf(node: NodeView): Box {
  const rows = Math.max(inputsOf(node).length, outputsOf(node).length);
  return { id: node.node, width: WIDTH, height: HEAD_HEIGHT + PIN_HEIGHT * rows };
}

/** The scene as a graph: what each node shows right now, and what leads where. Nodes are added, wired and removed here. */
export function Canvas({ host, desk }: { host: Host; desk: Desk }) {
  const nodes = host.nodes.value;
  const links = host.links.value;
  const [faces, setFaces, onFacesChange] = useNodesState<FaceNode>([]);
  const [wires, setWires, onWiresChange] = useEdgesState<Wire>([]);
  const message = desk.message.value;
  const setMessage = (text: string) => (desk.message.value = text);
  const flow = useRef<ReactFlowInstance<FaceNode, Wire> | null>(null);

  const place = (all: readonly NodeView[], kept: readonly FaceNode[]) => {
    const old = new Map(kept.map((face) => [face.id, face]));
    const staying = all.flatMap(({ node }) => old.get(node) ?? []);
    const places = staying.length === 0 ? arrange(all.map(boxOf), links) : null;
    let below = Math.max(...staying.map(({ position, measured }) => position.y + (measured?.height ?? 0)), 0);
    return all.map((node): FaceNode => {
      const data = { host, node };
      const face = old.get(node.node);
      if (face !== undefined) {
        return { ...face, data };
      }
      const position = places?.get(node.node) ?? { x: 0, y: below + GAP };
      below = position.y + boxOf(node).height;
      return { id: node.node, type: "face", position, data, ariaLabel: `${node.graph}, ${node.details.name}` };
    });
  };
  useEffect(() => {
    setFaces((kept) => place(nodes ?? [], kept));
  }, [nodes]);
  // Another scene comes into sight as a whole.
  const first = nodes?.[0]?.node;
  useEffect(() => {
    requestAnimationFrame(() => void flow.current?.fitView());
  }, [first]);

  const draw = (link: Link, kept: readonly Wire[]): Wire => {
    const { from, output, to, input } = link;
    const id = `${from} ${output} ${to} ${input}`;
    const source = nodes?.find(({ node }) => node === from);
    const pin = source && outputsOf(source).find((param) => param.id === output);
    return {
      id,
      source: from,
      sourceHandle: String(output),
      target: to,
      targetHandle: String(input),
      className: `wire wire-${pin ? sortOf(pin) : "text"}`,
      selected: kept.some((wire) => wire.id === id && wire.selected),
      data: { link },
      domAttributes: { tabindex: 0 }, // the library sets tabIndex, which Preact leaves so spelt and SVG doesn't know
    };
  };
  useEffect(() => setWires((kept) => links.map((link) => draw(link, kept))), [nodes, links]);

  const whyNot = ({ source, sourceHandle, target, targetHandle }: Connection | Edge): string | null => {
    const from = nodes?.find(({ node }) => node === source);
    const to = nodes?.find(({ node }) => node === target);
    const output = from && outputsOf(from).find(({ id }) => String(id) === sourceHandle);
    const input = to && inputsOf(to).find(({ id }) => String(id) === targetHandle);
    if (!output || !input) {
      return t("Links lead from an output to an input.");
    }
    const linked = links.some((link) => link.to === target && link.input === input.id);
    return refusal({ node: source, sort: sortOf(output) }, { node: target, sort: sortOf(input), linked });
  };
  const tellRefusal = (_: unknown, { isValid, fromHandle, toHandle }: FinalConnectionState) => {
    if (isValid === false && fromHandle !== null && toHandle !== null) {
      const [from, to] = fromHandle.type === "source" ? [fromHandle, toHandle] : [toHandle, fromHandle];
      setMessage(
        whyNot({ source: from.nodeId, sourceHandle: from.id ?? null, target: to.nodeId, targetHandle: to.id ?? null }) ?? "",
      );
    }
  };

  const arrangeAnew = () => {
    const places = arrange((nodes ?? []).map(boxOf), links);
    setFaces((kept) => kept.map((face) => ({ ...face, position: places.get(face.id) ?? face.position })));
    requestAnimationFrame(() => void flow.current?.fitView());
  };
  /** Keys remove what is chosen only where they are typed: the library would take them from the whole page. */
  const removeChosen = (event: KeyboardEvent) => {
    if (event.key === "Delete" || event.key === "Backspace") {
      event.preventDefault();
      void remove(
        faces.filter(({ selected }) => selected),
        wires.filter(({ selected }) => selected),
      );
    }
  };
  /** Links of nodes that go anyway go with them. */
  const remove = async (gone: readonly FaceNode[], cut: readonly Wire[]) => {
    const ids = new Set(gone.map(({ id }) => id));
    const left = cut.filter(({ source, target }) => !ids.has(source) && !ids.has(target));
    const errors = await Promise.all([
      ...gone.map(({ id }) => host.removeNode(id)),
      ...left.flatMap(({ data }) => (data ? host.unlink(data.link) : [])),
    ]);
    setMessage(errors.filter((error) => error !== null).join(" "));
  };

  // What is chosen here the inspector shows, and it can be chosen from elsewhere.
  const chosen = faces.filter(({ selected }) => selected).map(({ id }) => id);
  useEffect(() => {
    desk.chosen.value = chosen;
  }, [chosen.join("\n")]);
  useEffect(() => {
    desk.choose = (ids) => setFaces((kept) => kept.map((face) => ({ ...face, selected: ids.includes(face.id) })));
  }, [desk]);

  return (
    <>
      <div class="panel-head graph-head">
        <NodePalette host={host} onMessage={setMessage} />
        <button type="button" onClick={arrangeAnew}>
          {t("Arrange")}
        </button>
        <span class="hint" role="status" data-graph-message>
          {message}
        </span>
      </div>
      <div class="graph" data-graph onKeyDown={removeChosen}>
        <ReactFlow
          colorMode="system"
          ariaLabelConfig={ariaLabels()}
          nodes={faces}
          edges={wires}
          nodeTypes={FACES}
          onNodesChange={onFacesChange}
          onEdgesChange={onWiresChange}
          isValidConnection={(connection) => whyNot(connection) === null}
          onConnect={async ({ source, sourceHandle, target, targetHandle }) =>
            setMessage((await host.link(source, Number(sourceHandle), target, Number(targetHandle))) ?? "")
          }
          onConnectEnd={tellRefusal}
          onNodeDoubleClick={(_, { id }) =>
            document.getElementById(`node-${id}`)?.scrollIntoView({ block: "start" })
          }
          onInit={(instance) => (flow.current = instance)}
          deleteKeyCode={null}
          panActivationKeyCode={null}
          selectionKeyCode={null}
          minZoom={0.1}
          fitView
        >
          <Background />
          <Controls showInteractive={false} />
          <MiniMap pannable zoomable />
        </ReactFlow>
      </div>
    </>
  );
}

function Face({ data: { host, node } }: NodeProps<FaceNode>) {
  const icon = iconOf(node.type);
  return (
    <div class="face" data-face={node.node}>
      <header class="face-head">
        {icon !== null && <img src={icon} alt="" width="22" height="22" />}
        <strong>{node.graph}</strong>
      </header>
      <div class="face-pins">
        <div>
          {inputsOf(node).map((param) => (
            <div class="face-pin" key={param.id} title={`${param.name}, ${param.id}`}>
              <Handle type="target" position={Position.Left} id={String(param.id)} className={`pin pin-${sortOf(param)}`} />
              <span class="face-name">{param.display}</span>
            </div>
          ))}
        </div>
        <div>
          {outputsOf(node).map((param) => (
            <div class="face-pin face-output" key={param.id} title={`${param.name}, ${param.id}`}>
              <OutputState host={host} node={node.node} param={param} />
              <span class="face-name">{param.display}</span>
              <Handle type="source" position={Position.Right} id={String(param.id)} className={`pin pin-${sortOf(param)}`} />
            </div>
          ))}
        </div>
      </div>
    </div>
  );
}

/** What an output shows right now: how often it fired, or its value. */
function OutputState({ host, node, param }: { host: Host; node: string; param: Param }) {
  if (sortOf(param) === "event") {
    const { count } = host.fired.of(node, param.id).value;
    return (
      <span class={count > 0 ? "face-value fired" : "face-value"} data-face-count={count}>
        {/* A new key makes a new element, whose flash starts afresh. */}
        <span class="event-lamp" key={count} aria-hidden="true" /> {count}
      </span>
    );
  }
  return (
    <span class="face-value">
      <LongText {...shownValue(param, host.values.of(node, param.id).value)} />
    </span>
  );
}

const FACES = { face: Face };
