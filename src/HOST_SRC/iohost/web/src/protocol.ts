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

export interface Scene {
  version: number;
  nodes: SceneNode[];
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

export type Push =
  | { push: "hello"; version: string; fps: number; address: string }
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

/** An input event on its way to every node of the scene. */
export interface InputEvent {
  device: number;
  event: number;
  payload: KeyPayload | PointerPayload;
}

export const Device = { keyboard: 0, pointer: 1 } as const;

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
