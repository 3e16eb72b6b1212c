// The messages of the WebSocket /session/gathered as the page uses them, made of the protocol's types.
import type {
  GroupState,
  InspectedNode,
  Happened as AllHappened,
  LogEntry as WholeLogEntry,
  LogLine,
  NodeResults,
  ParamState,
  Payload,
  PostedEvent,
  Push,
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
export type SceneState = Extract<Push, { push: "history" }>;

/** A step that another page or a script took, undid or did again. */
export type OthersStep = Pick<Extract<Push, { push: "step" }>, "was" | "step">;

/** A line of the host's log, by its number there. */
export type NumberedLine = LogEntry & Pick<LogLine, "n" | "ms">;

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
