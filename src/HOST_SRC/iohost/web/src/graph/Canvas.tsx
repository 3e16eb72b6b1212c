import {
  Background,
  ControlButton,
  Controls,
  getViewportForBounds,
  MiniMap,
  ReactFlow,
  ReactFlowProvider,
  SelectionMode,
  useEdgesState,
  useNodesState,
  type Connection,
  type Edge,
  type FinalConnectionState,
  type NodeChange,
  type OnConnectStartParams,
  type ReactFlowInstance,
  type XYPosition,
} from "@xyflow/react";
import "@xyflow/react/dist/base.css";
import { useCallback, useEffect, useLayoutEffect, useMemo, useRef, useState } from "preact/hooks";
import type { Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import { language, t } from "../i18n.ts";
import type { Link } from "../protocol.ts";
import { ariaLabels } from "./ariaLabels.ts";
import { CanvasHead } from "./CanvasHead.tsx";
import { Editor, linkOf, movedNote, type Pin } from "./editor.ts";
import { chosenIn, facesOf, wiresOf, type CanvasNode } from "./elements.ts";
import { EmptyScene } from "./EmptyScene.tsx";
import { Face } from "./Face.tsx";
import { handleOf, nodeId, noteId } from "./ids.ts";
import { KnownPins } from "./KnownPins.tsx";
import { around, arrangeWithNotes, AutomaticPlaces, boxOf } from "./layout.ts";
import { NoteFace } from "./NoteFace.tsx";
import { Outline } from "./Outline.tsx";
import { Palette } from "./Palette.tsx";
import { QuestionBar } from "./QuestionBar.tsx";
import { useCanvasKeys } from "./useCanvasKeys.ts";
import { WireEdge, type Wire } from "./WireEdge.tsx";
import "./canvas.css";

const FACES = { face: Face, note: NoteFace };
const WIRES = { wire: WireEdge };
// Made once: the library takes a new object for a changed setting.
const ADDING_KEYS = ["Control", "Meta"];
const MAP_SIZE = { width: 120, height: 80 };
/** Paddings that keep the whole scene clear of the buttons and the map, 15 pixels from the edge: between them, or above them. */
const CLEAR_OF_PANELS = [{ left: "55px", right: "150px", y: "20px" }, { x: "20px", top: "20px", bottom: "105px" }] as const;
/** Small enough to show hundreds of nodes at once. */
const LEAST_ZOOM = 0.01;

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
  /** The series of what this page moves by arrow keys. */
  const [arrows] = useState(() => String(Math.random()));
  const [faces, setFaces, onFacesChange] = useNodesState<CanvasNode>([]);
  const [wires, setWires, onWiresChange] = useEdgesState<Wire>([]);
  const flow = useRef<ReactFlowInstance<CanvasNode, Wire> | null>(null);
  const pane = useRef<HTMLDivElement>(null);
  const labels = useMemo(ariaLabels, [language.value]);
  /** Those to choose when they come: what was just made isn't here yet. */
  const wantChosen = useRef<readonly string[]>([]);
  /** Where nodes and notes were moved to, until that is asked for. */
  const moved = useRef(new Map<string, XYPosition>());

  useLayoutEffect(() => {
    editor.nodesChanged();
    automatic.follow(nodes ?? [], links);
    const wanted = wantChosen.current;
    const isMoved = (id: string) => moved.current.has(id) || editor.isPlacing(id);
    setFaces((kept) => facesOf(editor, { nodes: nodes ?? [], links, notes }, automatic, kept, wanted, isMoved));
    const came = new Set([...(nodes ?? []).map(({ node }) => nodeId(node)), ...Object.keys(notes).map(noteId)]);
    wantChosen.current = wanted.filter((id) => !came.has(id));
  }, [nodes, links, notes, language.value]);
  useLayoutEffect(() => {
    setWires((kept) => wiresOf(editor, nodes ?? [], links, kept));
  }, [nodes, links, language.value]);
  const showAll = useConstant((shown: readonly CanvasNode[] = faces) => {
    const boxes = shown.map(drawnBox);
    const seen = pane.current; // null once the canvas is gone: the library may get ready after that
    if (boxes.length > 0 && seen !== null) {
      const [between, above] = CLEAR_OF_PANELS.map((padding) =>
        getViewportForBounds(around(boxes), seen.clientWidth, seen.clientHeight, LEAST_ZOOM, 1, padding),
      );
      void flow.current?.setViewport(between!.zoom > above!.zoom ? between! : above!);
    }
  });
  // The whole scene comes into sight with its first nodes, or by `keepFlow` where the library is ready later.
  useEffect(() => showAll(), [faces.length > 0]);

  // What is chosen here the inspector shows, and it can be chosen from elsewhere.
  const chosenFaces = faces.filter(({ selected }) => selected);
  const chosen = {
    nodes: chosenFaces.flatMap((face) => (face.type === "face" ? face.data.node.node : [])),
    notes: chosenFaces.flatMap((face) => (face.type === "note" ? face.data.id : [])),
  };
  useEffect(() => {
    desk.chosen.value = chosen.nodes;
  }, [chosen.nodes.join("\n")]);
  useEffect(() => {
    desk.choose = (handles) => editor.view.choose(handles, []);
    desk.goTo = (handle) => {
      desk.choose([handle]);
      // Before the view moves: where the focus goes out of sight, the library takes the view there by itself.
      pane.current?.querySelector<HTMLElement>(`[data-id="${nodeId(handle)}"]`)?.focus({ preventScroll: true });
      const node = editor.node(handle);
      if (node !== undefined) {
        const { x, y } = editor.view.placeOf(handle);
        const { width, height } = boxOf(node);
        void flow.current?.fitBounds({ x, y, width, height }, { padding: 0.5, duration: 200 });
      }
    };
    editor.view = {
      placeOf: (handle) => {
        const face = flow.current?.getNode(nodeId(handle));
        return { ...(face?.position ?? { x: 0, y: 0 }), ...(face?.type === "face" && face.data.folded && { folded: true }) };
      },
      choose: (handles, notes) => {
        const ids = [...handles.map(nodeId), ...notes.map(noteId)];
        wantChosen.current = ids;
        setFaces((kept) => chosenIn(kept, (id) => ids.includes(id)));
      },
      moveTo: ({ x, y, width, height }) => {
        const seen = pane.current!.getBoundingClientRect();
        const from = flow.current!.flowToScreenPosition({ x, y });
        const to = flow.current!.flowToScreenPosition({ x: x + width, y: y + height });
        if (from.x < seen.left || from.y < seen.top || to.x > seen.right || to.y > seen.bottom) {
          goToPlace(null, { x: x + width / 2, y: y + height / 2 });
        }
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

  /** As these stand, as one step, or with those of the series. */
  const keepPlaces = (all: readonly CanvasNode[], series?: string) => {
    const movedNodes = all.flatMap(({ type, data, position }) =>
      type === "face" ? [[data.node.node, { ...editor.view.placeOf(data.node.node), ...position }]] : [],
    );
    const movedNotes = all.flatMap(({ type, data, position, width, height }) =>
      type === "note" ? [[data.id, movedNote(data.note, { ...position, width: width!, height: height! })]] : [],
    );
    if (all.length > 0) {
      void editor.place(Object.fromEntries(movedNodes), Object.fromEntries(movedNotes), series);
    }
  };
  const mayDrag = useRef(false);
  const isDragging = useRef(false);
  const place = useConstant((series?: string) => {
    if (isDragging.current) {
      return; // the drop will
    }
    const all = faces.flatMap((face) => (moved.current.has(face.id) ? { ...face, position: moved.current.get(face.id)! } : []));
    moved.current.clear();
    keepPlaces(all, series);
  });
  const align = (axis: "x" | "y") => {
    const line = Math.min(...chosenFaces.map(({ position }) => position[axis]));
    keepPlaces(chosenFaces.map((face) => ({ ...face, position: { ...face.position, [axis]: line } })));
  };
  const arrange = () => {
    const [boxes, noteBoxes] = (["face", "note"] as const).map((type) => faces.filter((face) => face.type === type).map(drawnBox));
    const between = links.map((link) => ({ ...link, from: nodeId(link.from), to: nodeId(link.to) }));
    const places = arrangeWithNotes(boxes!, noteBoxes!, between);
    const arranged = faces.map((face) => ({ ...face, position: places.get(face.id) ?? face.position }));
    setFaces(arranged);
    showAll(arranged);
    keepPlaces(arranged);
  };
  const follow = useConstant((told: NodeChange<CanvasNode>[]) => {
    // After a drag that broke off at the edge the library drags and pans on until it hears that it's not to.
    const changes = told.filter((change) => mayDrag.current || change.type !== "position" || change.dragging !== true);
    let isDropped = false;
    for (const change of changes) {
      if (change.type === "select") {
        wantChosen.current = []; // somebody chooses otherwise
      }
      // A note that is sized by its upper or left edge moves, too, and keeps that by itself.
      if (change.type === "position" && change.position !== undefined && change.dragging !== undefined) {
        moved.current.set(change.id, change.position);
        isDropped ||= isDragging.current && !change.dragging;
        isDragging.current = change.dragging;
        mayDrag.current &&= change.dragging;
      }
    }
    onFacesChange(changes);
    // The library tells the end of a drag that breaks off only by this change, not by onNodeDragStop.
    if (isDropped) {
      place();
    }
  });
  const keys = useCanvasKeys(editor, {
    pane,
    chosen,
    chosenLinks: wires.flatMap(({ selected, data }) => (selected && data ? data.link : [])),
    chooseAll: () => setFaces((kept) => chosenIn(kept, () => true)),
    place: () => place(`${arrows} ${host.scene.peek()?.saved}`), // the saved state stays one to go back to
  });

  const keepFlow = useConstant((instance: ReactFlowInstance<CanvasNode, Wire>) => {
    flow.current = instance;
    showAll();
  });
  const goToPlace = useConstant((_: unknown, { x, y }: XYPosition) => {
    void flow.current?.setCenter(x, y, { zoom: flow.current.getZoom(), duration: 200 });
  });
  const giveUp = useConstant(() => editor.giveUp());
  const canLink = useConstant((connection: Connection | Edge) => editor.whyNot(asLink(connection)) === null);
  const link = useConstant((connection: Connection) => {
    editor.giveUp(); // a wire that was begun otherwise
    void editor.connect(asLink(connection));
  });
  const beginWire = useConstant((_: unknown, { nodeId, handleId, handleType }: OnConnectStartParams) => {
    editor.dragged.value = pinOf({ nodeId: nodeId!, id: handleId, type: handleType! });
  });
  const endWire = useConstant((event: MouseEvent | TouchEvent, { isValid, fromHandle, toHandle }: FinalConnectionState) => {
    editor.dragged.value = null;
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
  });

  return (
    <>
      <CanvasHead
        editor={editor}
        chosen={chosen}
        onArrange={arrange}
        onAlign={align}
      />
      <div class="question-place">
        <QuestionBar desk={desk} />
      </div>
      <div
        class="graph"
        data-graph
        ref={pane}
        tabIndex={-1}
        onPointerDownCapture={() => (mayDrag.current = true)}
        onTouchStartCapture={keepFromNodes}
        onTouchMoveCapture={keepFromNodes}
        {...keys}
      >
        <ReactFlowProvider>
          <KnownPins />
          <ReactFlow<CanvasNode, Wire>
            colorMode="system"
            nodes={faces}
            edges={wires}
            nodeTypes={FACES}
            edgeTypes={WIRES}
            onNodesChange={follow}
            onEdgesChange={onWiresChange}
            isValidConnection={canLink}
            onConnect={link}
            onConnectStart={beginWire}
            onConnectEnd={endWire}
            connectOnClick={false}
            onPaneClick={giveUp}
            onInit={keepFlow}
            deleteKeyCode={null}
            panActivationKeyCode={null}
            selectionKeyCode="Shift"
            selectionMode={SelectionMode.Partial}
            multiSelectionKeyCode={ADDING_KEYS}
            zoomOnDoubleClick={false}
            nodeDragThreshold={2}
            autoPanOnNodeDrag={isDragging.current}
            minZoom={LEAST_ZOOM}
            maxZoom={1.5}
            ariaLabelConfig={labels}
          >
            <Background />
            <Controls showInteractive={false} showFitView={false}>
              <ControlButton className="react-flow__controls-fitview" onClick={() => showAll()} title={t("Show the whole graph")}>
                <svg viewBox="0 0 12 12">
                  <path d="M1 4V1h3M8 1h3v3M11 8v3H8M4 11H1V8" fill="none" stroke="currentColor" />
                </svg>
              </ControlButton>
            </Controls>
            <MiniMap pannable zoomable onClick={goToPlace} style={MAP_SIZE} />
          </ReactFlow>
        </ReactFlowProvider>
        {nodes?.length === 0 && faces.length === 0 && <EmptyScene editor={editor} />}
        {editor.palette.value !== null && <Palette editor={editor} call={editor.palette.value} />}
      </div>
      <Outline host={host} />
    </>
  );
}

/** Where a face or note stands, as large as it's drawn: folded ones are low. */
function drawnBox({ id, position, measured }: CanvasNode) {
  return { id, ...position, width: measured!.width!, height: measured!.height! };
}

/** While a second finger is down nodes wait: the library would break the drag off, and begin the next one where this was taken. */
function keepFromNodes(event: TouchEvent): void {
  if (event.touches.length > 1 && (event.target as Element).closest(".react-flow__node") !== null) {
    event.stopPropagation();
  }
}

/** The same function each time, which calls the newest `act`: a new one has the library draw everything anew. */
function useConstant<Arguments extends unknown[], Result>(act: (...given: Arguments) => Result): typeof act {
  const last = useRef(act);
  last.current = act;
  return useCallback((...given: Arguments) => last.current(...given), []);
}

function asLink({ source, sourceHandle, target, targetHandle }: Connection | Edge): Link {
  return { from: handleOf(source), output: Number(sourceHandle), to: handleOf(target), input: Number(targetHandle) };
}

function pinOf(handle: Pick<NonNullable<FinalConnectionState["fromHandle"]>, "nodeId" | "id" | "type">): Pin {
  return { node: handleOf(handle.nodeId), id: Number(handle.id), is: handle.type === "source" ? "output" : "input" };
}
