// The messages of the WebSocket /session, as far as the page uses them.
import type { JsonVerdict } from "./json.ts";
import type { NetworkState } from "./network.ts";
import type { CutText } from "./texts.ts";

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
  /** Of the whole string, where the host cut it. */
  length?: number;
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
  own: ParamGroup[];
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

export interface LogEntry extends CutText {
  level: number;
}

/** What the module did: stands in replies and in pushes alike. */
export interface Happened {
  posted?: PostedEvent[];
  log?: LogEntry[];
  /** Nodes that asked for their panel to be drawn anew. */
  redrawn?: { node: string }[];
}

export interface OutputValue {
  int: number;
  float: number;
  string: string;
  /** Of the whole string, where the host cut it. */
  length?: number | undefined;
}

export type Reply<Body = object> = Happened & ({ ok: true; id?: number } & Body | { ok: false; id?: number; error: string });

/** To an event: what each node made of it. */
export type EventReply = Reply<{ results: Record<string, number> }>;

export type Push =
  | { push: "hello"; version: string; fps: number; address: string; connection: number }
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

export interface DeviceTextPayload {
  is: "device_text";
  device: number;
  text: string;
}

export interface ObjectTextPayload {
  is: "object_text";
  clip: string;
  object: string;
  text: string;
}

/** An input event on its way to every node of the scene. */
export type InputEvent =
  | { device: 0; event: number; payload: KeyPayload }
  | { device: 1; event: number; payload: PointerPayload }
  | { device: 3; event: number; payload: VRPayload }
  | { device: 5; event: number; payload: DeviceTextPayload }
  | { device: 6; event: number; payload: ObjectTextPayload };

export const Device = { keyboard: 0, pointer: 1, hand: 3, text: 5, objectText: 6 } as const;

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
