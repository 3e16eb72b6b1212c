import {
  Background,
  Controls,
  MiniMap,
  ReactFlow,
  SelectionMode,
  useEdgesState,
  useNodesState,
  type Connection,
  type Edge,
  type FinalConnectionState,
  type NodeChange,
  type ReactFlowInstance,
  type XYPosition,
} from "@xyflow/react";
import { useEffect, useRef, useState } from "preact/hooks";
import type { Desk } from "../desk.ts";
import type { Host, NodeView } from "../host.ts";
import { t } from "../i18n.ts";
import { inputsOf, outputsOf } from "../nodePins.ts";
import type { Link } from "../protocol.ts";
import { ariaLabels } from "./ariaLabels.ts";
import { CanvasHead } from "./CanvasHead.tsx";
import { Editor, linkOf, type Pin } from "./editor.ts";
import { EmptyScene } from "./EmptyScene.tsx";
import { Face, type FaceNode } from "./Face.tsx";
import { AutomaticPlaces, boxOf } from "./layout.ts";
import { NoteFace, type NoteNode } from "./NoteFace.tsx";
import { Outline } from "./Outline.tsx";
import { Palette } from "./Palette.tsx";
import { QuestionBar } from "./QuestionBar.tsx";
import { useCanvasKeys } from "./useCanvasKeys.ts";
import { WireEdge, type Wire } from "./WireEdge.tsx";
import { conversion, sortOf } from "./wiring.ts";

export type CanvasNode = FaceNode | NoteNode;

const FAR_ZOOM = 0.2;
const FACES = { face: Face, note: NoteFace };
const WIRES = { wire: WireEdge };

/** The scene as a graph, live: nodes are added, wired, moved, named and removed here. Another scene begins anew. */
export function Canvas({ host, desk }: { host: Host; desk: Desk }) {
  return <SceneCanvas key={host.sceneNumber.value} host={host} desk={desk} />;
}

function SceneCanvas({ host, desk }: { host: Host; desk: Desk }) {
  const nodes = host.nodes.value;
  const links = host.links.value;
  const notes = host.notes.value;
  const [editor] = useState(() => new Editor(host, desk));
  const [automatic] = useState(() => new AutomaticPlaces());
  const [faces, setFaces, onFacesChange] = useNodesState<CanvasNode>([]);
  const [wires, setWires, onWiresChange] = useEdgesState<Wire>([]);
  const flow = useRef<ReactFlowInstance<CanvasNode, Wire> | null>(null);
  const pane = useRef<HTMLDivElement>(null);
  const [isFar, setFar] = useState(false);
  const wantChosen = useRef<readonly string[] | null>(null);

  useEffect(() => {
    automatic.follow(nodes ?? [], links);
    const wanted = wantChosen.current;
    wantChosen.current = null;
    setFaces((kept) => {
      const old = new Map(kept.map((face) => [face.id, face]));
      return [...(nodes ?? []).map((node) => faceOf(editor, node, automatic.of(node.node))), ...notesOf(editor, notes)].map((face) => {
        const { measured, selected, dragging, position } = old.get(face.id) ?? {};
        return {
          ...face,
          ...(measured && { measured }),
          selected: wanted === null ? selected === true : wanted.includes(face.id),
          // What is being dragged stays under the pointer.
          ...(dragging === true && position && { position }),
        };
      });
    });
  }, [nodes, links, notes]);
  useEffect(() => {
    setWires((kept) => {
      const chosen = new Set(kept.flatMap(({ id, selected }) => (selected ? id : [])));
      return links.map((link) => wireOf(host, nodes ?? [], link, chosen));
    });
  }, [nodes, links]);
  // The first nodes come into sight as a whole.
  const showAll = (places: ReadonlyMap<string, XYPosition>) => {
    const boxes = (nodes ?? []).map((node) => ({ ...boxOf(node), ...(places.get(node.node) ?? node.place ?? automatic.of(node.node)) }));
    const [left, top] = [Math.min(...boxes.map(({ x }) => x)), Math.min(...boxes.map(({ y }) => y))];
    const [right, bottom] = [Math.max(...boxes.map(({ x, width }) => x + width)), Math.max(...boxes.map(({ y, height }) => y + height))];
    if (boxes.length > 0) {
      void flow.current?.fitBounds({ x: left, y: top, width: right - left, height: bottom - top }, { padding: 0.1 });
    }
  };
  useEffect(() => showAll(new Map()), [faces.length > 0]);

  // What is chosen here the inspector shows, and it can be chosen from elsewhere.
  const chosenFaces = faces.filter(({ selected }) => selected);
  const chosen = chosenFaces.filter(({ type }) => type === "face").map(({ id }) => id);
  useEffect(() => {
    desk.chosen.value = chosen;
  }, [chosen.join("\n")]);
  useEffect(() => {
    desk.choose = (ids) => {
      // Nodes that were just made aren't here yet.
      wantChosen.current = ids.every((id) => flow.current?.getNode(id)) ? null : ids;
      setFaces((kept) => kept.map((face) => ({ ...face, selected: ids.includes(face.id) })));
    };
    desk.goTo = (id) => {
      desk.choose([id]);
      const node = editor.node(id);
      if (node !== undefined) {
        const { x, y } = editor.view.placeOf(id);
        const { width, height } = boxOf(node);
        void flow.current?.fitBounds({ x, y, width, height }, { padding: 0.5, duration: 200 });
      }
      pane.current?.querySelector<HTMLElement>(`[data-id="${CSS.escape(id)}"]`)?.focus({ preventScroll: true });
    };
    editor.view = {
      placeOf: (id) => {
        const face = flow.current?.getNode(id);
        return { ...(face?.position ?? { x: 0, y: 0 }), ...(face?.type === "face" && face.data.folded && { folded: true }) };
      },
      middle: () => {
        const box = pane.current!.getBoundingClientRect();
        return flow.current!.screenToFlowPosition({ x: box.x + box.width / 2, y: box.y + box.height / 2 });
      },
    };
    return () => {
      desk.question.value = null; // it's about this scene
    };
  }, [desk, editor]);

  // Where nodes and notes were moved to, until that is asked for.
  const moved = useRef(new Map<string, XYPosition>());
  const place = () => {
    const all = faces.flatMap((face) => (moved.current.has(face.id) ? { ...face, position: moved.current.get(face.id)! } : []));
    moved.current.clear();
    const movedNodes = all.flatMap(({ id, type, position }) => (type === "face" ? [[id, { ...editor.view.placeOf(id), ...position }]] : []));
    const movedNotes = all.flatMap((one) => (one.type === "note" ? [[one.data.id, { ...one.data.note, ...one.position }]] : []));
    if (all.length > 0) {
      void editor.place(Object.fromEntries(movedNodes), Object.fromEntries(movedNotes));
    }
  };
  const follow = (changes: NodeChange<CanvasNode>[]) => {
    for (const change of changes) {
      // A note that is sized by its upper or left edge moves, too, and keeps that by itself.
      if (change.type === "position" && change.position !== undefined && change.dragging !== undefined) {
        moved.current.set(change.id, change.position);
      }
    }
    onFacesChange(changes);
  };
  const keys = useCanvasKeys(editor, {
    chosenNodes: chosen,
    chosenNotes: chosenFaces.flatMap((face) => (face.type === "note" ? face.data.id : [])),
    chosenLinks: wires.flatMap(({ selected, data }) => (selected && data ? data.link : [])),
    chooseAll: () => setFaces((kept) => kept.map((face) => ({ ...face, selected: true }))),
    place,
  });

  const endWire = (event: MouseEvent | TouchEvent, { isValid, fromHandle, toHandle }: FinalConnectionState) => {
    if (fromHandle === null) {
      return;
    }
    const from = pinOf(fromHandle);
    if (toHandle !== null) {
      if (isValid === false) {
        desk.message.value = editor.whyNot(linkOf(from, pinOf(toHandle))) ?? "";
      }
      return;
    }
    const { clientX, clientY } = "changedTouches" in event ? event.changedTouches[0]! : event;
    if (document.elementFromPoint(clientX, clientY)?.classList.contains("react-flow__pane") === true) {
      editor.palette.value = { at: flow.current!.screenToFlowPosition({ x: clientX, y: clientY }), pin: from };
    }
  };

  return (
    <>
      <CanvasHead
        editor={editor}
        faces={faces}
        onArrange={() => {
          const places = automatic.arrangeAnew(nodes ?? [], links);
          setFaces((kept) => kept.map((face) => ({ ...face, position: places.get(face.id) ?? face.position })));
          showAll(places);
          void editor.place(
            Object.fromEntries([...places].map(([id, at]) => [id, { ...editor.view.placeOf(id), ...at }])),
          );
        }}
      />
      <QuestionBar desk={desk} />
      <div class={isFar ? "graph graph-far" : "graph"} data-graph ref={pane} tabIndex={-1} {...keys}>
        <ReactFlow<CanvasNode, Wire>
          colorMode="system"
          nodes={faces}
          edges={wires}
          nodeTypes={FACES}
          edgeTypes={WIRES}
          onNodesChange={follow}
          onEdgesChange={onWiresChange}
          isValidConnection={(connection) => editor.whyNot(asLink(connection)) === null}
          onConnect={(connection) => void editor.connect(asLink(connection))}
          onConnectEnd={endWire}
          onNodeDragStop={place}
          onSelectionDragStop={place}
          onMove={(_, { zoom }) => setFar(zoom < FAR_ZOOM)}
          onInit={(instance) => (flow.current = instance)}
          deleteKeyCode={null}
          panActivationKeyCode={null}
          selectionKeyCode="Shift"
          selectionMode={SelectionMode.Partial}
          multiSelectionKeyCode={["Control", "Meta"]}
          zoomOnDoubleClick={false}
          nodeDragThreshold={2}
          minZoom={0.1}
          maxZoom={1.5}
          fitView
          ariaLabelConfig={ariaLabels()}
        >
          <Background />
          <Controls showInteractive={false} />
          <MiniMap pannable zoomable style={{ width: 120, height: 80 }} />
        </ReactFlow>
        {nodes?.length === 0 && faces.length === 0 && <EmptyScene editor={editor} />}
        {editor.palette.value !== null && <Palette editor={editor} call={editor.palette.value} />}
      </div>
      <Outline host={host} />
    </>
  );
}

function faceOf(editor: Editor, node: NodeView, automatic: { x: number; y: number }): FaceNode {
  const { x, y, folded = false } = node.place ?? { ...automatic };
  return {
    id: node.node,
    type: "face",
    position: { x, y },
    data: { editor, node, folded },
    ariaLabel: `${node.graph}, ${node.details.name}`,
    // About so large until it's drawn: the library forgets the pins of a node that comes anew without a size.
    measured: { width: boxOf(node).width, height: boxOf(node).height },
  };
}

function notesOf(editor: Editor, notes: Host["notes"]["value"]): NoteNode[] {
  return Object.entries(notes).map(([id, note]) => ({
    id: `note:${id}`,
    type: "note",
    position: { x: note.x, y: note.y },
    width: note.width,
    height: note.height,
    measured: { width: note.width, height: note.height },
    data: { editor, id, note },
    zIndex: -1,
    ariaLabel: t("Note"),
  }));
}

function wireOf(host: Host, nodes: readonly NodeView[], link: Link, chosen: ReadonlySet<string>): Wire {
  const { from, output, to, input } = link;
  const id = `${from} ${output} ${to} ${input}`;
  const [source, target] = [nodes.find(({ node }) => node === from), nodes.find(({ node }) => node === to)];
  const outputParam = source && outputsOf(source).find((param) => param.id === output);
  const inputParam = target && inputsOf(target).find((param) => param.id === input);
  return {
    id,
    type: "wire",
    source: from,
    sourceHandle: String(output),
    target: to,
    targetHandle: String(input),
    className: `wire wire-${outputParam ? sortOf(outputParam) : "text"}`,
    selected: chosen.has(id),
    data: { host, link, output: outputParam, conversion: outputParam && inputParam ? conversion(outputParam, inputParam) : null },
    domAttributes: { tabindex: 0 }, // the library sets tabIndex, which Preact leaves so spelt and SVG doesn't know
  };
}

function asLink({ source, sourceHandle, target, targetHandle }: Connection | Edge): Link {
  return { from: source, output: Number(sourceHandle), to: target, input: Number(targetHandle) };
}

function pinOf(handle: NonNullable<FinalConnectionState["fromHandle"]>): Pin {
  return { node: handle.nodeId, id: Number(handle.id), is: handle.type === "source" ? "output" : "input" };
}
