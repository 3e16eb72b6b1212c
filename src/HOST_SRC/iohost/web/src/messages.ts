// The messages of the WebSocket /session/gathered as the page uses them, made of the protocol's types.
import type {
  Counters,
  DroppedItems,
  GroupState,
  HeldEntry,
  InspectedNode,
  JsonVerdict,
  Happened as AllHappened,
  LogEntry as WholeLogEntry,
  LogLine,
  NetworkState,
  NodeResults,
  OutputValue,
  ParamState,
  Payload,
  PostedEvent,
  SceneFile,
  SceneObject,
  Step,
} from "./protocol.ts";
import type { CutText } from "./texts.ts";

/** A parameter as `inspect` tells it: whole. */
export type Param = Required<Pick<ParamState, "id" | "name" | "display" | "type" | "control" | "int" | "string" | "choices" | "available">> &
  Pick<ParamState, "length"> & { float: number; range: [value: number, min: number, max: number, step: number] | null };

export type ParamGroup = Required<Omit<GroupState, "params">> & { params: Param[] };

export type NodeDetails = Pick<InspectedNode, "type" | "name"> & Record<"own" | "inputs" | "outputs", ParamGroup[]>;

export type LogEntry = Pick<WholeLogEntry, "level"> & CutText;

/** What the module did: stands in replies and in pushes alike. */
export type Happened = Pick<AllHappened, "redrawn"> & {
  posted?: Pick<PostedEvent, "node" | "output">[];
  log?: LogEntry[];
};

/** The events of the scene's nodes. */
export function firedByNodes(posted: Happened["posted"] = []): { node: string; output: number }[] {
  return posted.flatMap(({ node, output }) => (node !== null && output !== null ? [{ node, output }] : []));
}

export type Reply<Body = object> = Happened & ({ ok: true; id?: number } & Body | { ok: false; id?: number; error: string });

/** To an event: what each node made of it. */
export type EventReply = Reply<NodeResults>;

/** Where undo and redo lead, which file the scene is of, and whether it was changed since that was written. */
export type SceneState = SceneFile & { undo: Step | null; redo: Step | null };

/** What an earlier run of the host left unsaved. */
export interface Recovered {
  file: string | null;
  modified_ms: number;
}

/** A line of the host's log, by its number there. */
export type NumberedLine = LogEntry & Pick<LogLine, "n" | "ms">;

export type Push =
  | { push: "hello"; version: string; fps: number; address: string; connection: number; scene: number }
  | ({ push: "history"; recovered?: Recovered } & SceneState)
  | ({ push: "counters" } & Counters)
  /** What waited too long for a device. */
  | ({ push: "dropped" } & DroppedItems)
  /** Once a second: the number of the last frame. */
  | { push: "frame"; frame: number }
  | { push: "objects"; objects: SceneObject[] }
  /** What JSON nodes made of texts that came to them. */
  | { push: "json"; nodes: Record<string, JsonVerdict> }
  /** What is held; the connections that were released by another one's wish are named. */
  | { push: "held"; held: HeldEntry[]; released?: number[] }
  | ({ push: "happened"; frame: number } & Happened)
  | ({ push: "network" } & NetworkState)
  | { push: "outputs"; nodes: Record<string, Record<string, OutputValue>> }
  /** Of `nodes` parameters changed; of `changed` anything, and what the scene lists. */
  | { push: "scene"; version: number; nodes?: string[]; changed?: string[] }
  /** There is another scene; its number. */
  | { push: "scene"; version: number; scene: number };

type PayloadOf<Kind> = Extract<Payload, { is: Kind }>;
export type PointerPayload = PayloadOf<"pointer">;
/** A sample of a hand's controller. The elements 12 to 14 of its pose are the place. */
export type VRPayload = PayloadOf<"vr">;

/** An input event on its way to every node of the scene. */
export type InputEvent =
  | { device: 0; event: number; payload: PayloadOf<"key"> }
  | { device: 1; event: number; payload: PointerPayload }
  | { device: 3; event: number; payload: VRPayload }
  | { device: 5; event: number; payload: PayloadOf<"device_text"> }
  | { device: 6; event: number; payload: PayloadOf<"object_text"> };
