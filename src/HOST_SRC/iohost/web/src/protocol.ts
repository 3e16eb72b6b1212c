// The messages of the WebSocket /session, as far as the page uses them.

/** A parameter of a node, as `inspect` tells it. */
export interface Param {
  id: number;
  name: string;
  display: string;
  type: number;
  control: number;
  range: [number, number, number, number] | null;
  int: number;
  float: number;
  string: string;
  choices: string[];
  available: number | boolean;
}

export interface ParamGroup {
  id: number;
  name: string;
  display: string;
  params: Param[];
}

export interface NodeDetails {
  type: string;
  name: string;
  inputs: ParamGroup[];
  outputs: ParamGroup[];
}

export interface SceneNode {
  node: string;
  type: string;
  clip: string | null;
  graph: string;
  name: string;
}

/** An output of one node that feeds an input of another: an event triggers it, a value is copied. */
export interface Link {
  from: string;
  output: number;
  to: string;
  input: number;
}

export interface Scene {
  version: number;
  nodes: SceneNode[];
  links: Link[];
}

/** An object of a clip, with its transform: the elements 12 to 14 are its place. */
export interface SceneObject {
  clip: string;
  name: string;
  matrix: number[];
}

/** Something that a connection holds down. */
export interface HeldEntry {
  connection: number;
  device: number;
  what: string;
  /** Text of a key; number of a pointer, a hand or a virtual key. */
  identity: string | number;
  /** How long it has been held. */
  ms: number;
}

/** A general event that a node's output fired. */
export interface PostedEvent {
  node: string;
  output: number;
  via: "window" | "host";
}

export interface LogEntry {
  level: number;
  text: string;
}

/** What the module did: stands in replies and in pushes alike. */
export interface Happened {
  posted?: PostedEvent[];
  log?: LogEntry[];
}

export interface OutputValue {
  int: number;
  float: number;
  string: string;
}

export type Reply<Body = object> = Happened & ({ ok: true; id?: number } & Body | { ok: false; id?: number; error: string });

/** To an event: what each node made of it. */
export type EventReply = Reply<{ results: Record<string, number> }>;

export type Push =
  | { push: "hello"; version: string; fps: number; address: string; connection: number }
  | { push: "objects"; objects: SceneObject[] }
  /** What is held; the connections that were released by another one's wish are named. */
  | { push: "held"; held: HeldEntry[]; released?: number[] }
  | ({ push: "happened"; frame: number } & Happened)
  | { push: "outputs"; nodes: Record<string, Record<string, OutputValue>> }
  | { push: "scene"; version: number };

export interface KeyPayload {
  is: "key";
  text: string;
}

export interface PointerPayload {
  is: "pointer";
  rx: number;
  ry: number;
  x: number;
  y: number;
  pointer: number;
  relative: 0 | 1;
}

/** A sample of a hand's controller. */
export interface VRPayload {
  is: "vr";
  hand: number;
  trigger: 0 | 1;
  pad: 0 | 1;
  padx: number;
  pady: number;
  /** Transform: the elements 12 to 14 are the place. */
  pose: number[];
  /** Where its ray hits. */
  hit: [number, number, number];
  /** When the trigger went down and up last, in milliseconds. */
  press: number;
  release: number;
}

/** An input event on its way to every node of the scene. */
export type InputEvent =
  | { device: 0; event: number; payload: KeyPayload }
  | { device: 1; event: number; payload: PointerPayload }
  | { device: 3; event: number; payload: VRPayload };

export const Device = { keyboard: 0, pointer: 1, hand: 3 } as const;

export const EventId = {
  keyDown: 2002,
  keyUp: 2003,
  enter: 3002,
  leave: 3003,
  hover: 3004,
  leftDown: 3005,
  leftUp: 3006,
  middleDown: 3007,
  middleUp: 3008,
  rightDown: 3009,
  rightUp: 3010,
  wheelUp: 3011,
  wheelDown: 3012,
  move: 3013,
} as const;
