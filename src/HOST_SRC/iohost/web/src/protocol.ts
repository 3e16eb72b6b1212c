// The messages of the session, from the host's own tables. To renew it:
//   iohost --describe typescript

export type ParamState = {
  id: number;
  name?: string;
  display?: string;
  type?: number;
  control?: number;
  range?: [number | null, number | null, number | null, number | null] | null;
  flags?: [number, number, number, number] | null;
  int?: number;
  float?: number | null;
  string?: string;
  length?: number;
  choices?: string[];
  available?: number;
  extra?: number;
};

export type GroupState = {
  id: number;
  name?: string;
  display?: string;
  params: ParamState[];
};

export type InspectedNode = {
  type: string;
  kind_code: number;
  name: string;
  second_name: string;
  own: GroupState[];
  inputs: GroupState[];
  outputs: GroupState[];
};

export type Place = {
  x: number;
  y: number;
  folded?: boolean;
};

export type Note = {
  x: number;
  y: number;
  width: number;
  height: number;
  text: string;
  length?: number;
};

export type SceneNode = {
  node: string;
  type: string;
  clip: string | null;
  graph: string;
  name: string;
  place?: Place;
};

export type Link = {
  from: string;
  output: number;
  to: string;
  input: number;
};

export type Scene = {
  version: number;
  nodes: SceneNode[];
  links: Link[];
  notes?: Record<string, Note>;
};

export type Step = {
  name: string;
  op: string;
  of?: string;
  param?: string;
  ms?: number;
};

export type SceneFile = {
  file: string | null;
  unsaved: boolean;
  saved?: number;
};

export type History = {
  steps: Step[];
  done: number;
  states: number[];
} & SceneFile;

export type SceneFileInfo = {
  file: string;
  bytes: number;
  modified_ms: number;
};

export type OfferedType = {
  guid: string;
  kind: number;
  name: string;
  aux: string;
  tip: string;
  icon: boolean;
  enable: number;
  reserved: [number, number, number, number];
};

export type SceneObject = {
  clip: string;
  name: string;
  matrix: number[];
};

export type HeldEntry = {
  connection: number;
  device: number;
  what: string;
  identity: number | string;
  ms: number;
};

export type RemoteControlRecord = {
  DevID: string;
  DevName: string;
  ClipName: string;
  GroupName: string;
  KeyName: string;
  KeyNumber: number;
  HelpParameter: string;
  KeyValue: string;
  Layer: number;
};

export type PostedEvent = {
  node: string | null;
  output: number | null;
} & ({ via: "window" } & { name: string; event_id: number; wparam: number; params: object[] } | { via: "host" } & {
    clip: string | null;
    object: string | null;
  });

export type LogEntry = {
  level: number;
  args: [number, number, number, number];
  text: string;
  length?: number;
};

export type LogLine = {
  n: number;
  ms: number;
} & LogEntry;

export type Happened = {
  posted?: PostedEvent[];
  log?: LogEntry[];
  notified?: ({
    node: string | null;
    wparam: number;
    lparam: number;
  })[];
  sent?: ({
    device: number;
    command: number;
    clip: string | null;
    record: RemoteControlRecord;
  } | {
    device: number;
    raw: string;
    size?: number;
  })[];
  redrawn?: ({
    node: string | null;
  })[];
};

export type OutputValue = {
  int: number;
  float: number;
  string: string;
  length?: number;
};

export type NodeResults = {
  results: Record<string, number | null>;
};

export type JsonVerdict = {
  text: string;
  length: number;
} & ({ verdict: "taken" } | { verdict: "other_device" } & {
    device: number;
    expected: number;
  } | { verdict: "other_object" } & {
    clip: string;
    object: string;
    expected_clip: string;
    expected_object: string;
  } | { verdict: "not_json" } | { verdict: "not_object" } | { verdict: "key_missing" } & {
    key: string;
  } | { verdict: "value_differs" } & {
    key: string;
    value: string;
    expected: string;
  } | { verdict: "not_ready" });

export type Payload = { is: "key" } & {
  text: string;
} | { is: "pointer" } & {
  rx: number;
  ry: number;
  pointer: number;
  relative: number;
} & {
    x: number;
    y: number;
  } | { is: "vr" } & {
  hand: number;
  trigger: number;
  pad: number;
  padx: number;
  pady: number;
  pose: number[];
  hit: [number, number, number];
  press: number;
  release: number;
} | { is: "broadcast" } & {
  flag: string;
  clip: string;
  name: string;
  data: string;
} | { is: "record" } & RemoteControlRecord | { is: "device_text" } & {
  device: number;
  text: string;
} | { is: "object_text" } & {
  clip: string;
  object: string;
  text: string;
};

export type MessageBytes = { size: number; text: string; hex: string; sent?: boolean };

export type ItemCounts = {
  received: number;
  matched: number;
  rejected: number;
  last_rejected: string | null;
};

export type DeviceState = {
  state: "unconnected" | "connecting" | "connected" | "waiting";
  since_ms: number;
  last_problem: string | null;
  queued_items: number;
  queued_bytes: number;
  sent: number;
  refused: number;
  lost: number;
  dropped?: number;
  shown: number;
  errors: number;
  received_bytes: number;
  rejected_lines?: Record<string, number>;
  last_sent_bytes: MessageBytes | null;
  last_received_bytes: MessageBytes | null;
} & ({
    id: number;
    name: string;
    parser: "framed" | "direct" | "json" | "none";
    address: string | null;
    drop_after?: number;
  }) & ItemCounts;

export type BroadcastState = {
  port: number;
  problem: string | null;
  errors: number;
  last_error: string | null;
  last_received_bytes: MessageBytes | null;
} & ItemCounts;

export type ControlState = {
  port: number;
  connections: number;
  turned_away: number;
  errors: number;
  last_error: string | null;
} & ItemCounts;

export type NetworkState = {
  devices: DeviceState[] | null;
  broadcast: BroadcastState | null;
  control: ControlState | null;
  listen_only: boolean;
};

export type NodeCounts = {
  fired: number;
  received: number;
  matched: number;
  rejected: number;
  sent: number;
  dropped: number;
  outputs?: Record<string, number>;
};

export type Counters = {
  nodes: Record<string, NodeCounts>;
  idle_ms?: Record<string, number>;
};

export type LeftScene = {
  file: string | null;
  modified_ms: number;
};

export type Push = { push: "hello" } & {
  version: string;
  fps: number;
  address: string;
  connection: number;
  scene: number;
} | { push: "frame" } & {
  frame: number;
} | { push: "happened" } & {
  frame: number;
} & Happened | { push: "outputs" } & {
  nodes: Record<string, Record<string, OutputValue>>;
} | { push: "held" } & {
  held: HeldEntry[];
  released?: number[];
} | { push: "scene" } & {
  version: number;
  nodes?: string[];
  changed?: string[];
  scene?: number;
} | { push: "step" } & {
  was: "taken" | "undone" | "redone";
  step: Step;
} | { push: "history" } & {
  undo: Step | null;
  redo: Step | null;
  state: number;
  recovered?: LeftScene;
} & SceneFile | { push: "counters" } & Counters | { push: "dropped" } & {
  node: string | null;
  device: number;
  items: number;
} | { push: "network" } & NetworkState | { push: "objects" } & {
  objects: SceneObject[];
} | { push: "json" } & {
  nodes: Record<string, JsonVerdict>;
};
