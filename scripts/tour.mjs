// A tour of the thirteen nodes: plays a recorded session through the demo scene and prints what each node did. Ends with 0
// only if all did what they should.
//
//   scripts/own_network node scripts/tour.mjs IOHOST
//
// The recording (docs/session-protocol.md) says what the user and the clock do, and how the host answered. Here the host
// must answer the same, but what came from the network has to come by itself: from stand-in devices, and from the broadcast
// that the scene sends.
import { spawn } from "node:child_process";
import { once } from "node:events";
import { readFileSync } from "node:fs";
import { createInterface } from "node:readline";
import { isDeepStrictEqual } from "node:util";

const SCENE = "app/scenes/demo.json";
const RECORDING = "app/scenes/tour.jsonl";
const TOUR_TIME_MS = 60000;
const ITEM_TIME_MS = 5000;

const [iohost] = process.argv.slice(2);
if (iohost === undefined) {
  console.error("tour: which iohost?");
  process.exit(2);
}

// ---- The programs ----------------------------------------------------------------------------------------------------

const children = [];

/** Starts iohost. `line()` answers its next line of output, `lines` keeps all. */
function start(...options) {
  const child = spawn(iohost, options, { stdio: ["pipe", "pipe", "inherit"] });
  children.push(child);
  const reader = createInterface({ input: child.stdout });
  const lines = [];
  const waiting = [];
  reader.on("line", (text) => {
    const line = JSON.parse(text);
    lines.push(line);
    waiting.shift()?.(line);
  });
  let taken = 0;
  const ended = once(child, "close").then(() => {
    throw new Error(`iohost ${options.join(" ")} ended too early`);
  });
  ended.catch(() => {}); // only who waits for a line is told
  return {
    child,
    lines,
    async line() {
      taken += 1;
      if (lines.length < taken) {
        await Promise.race([new Promise((resolve) => waiting.push(resolve)), ended]);
      }
      return lines[taken - 1];
    },
    /** Waits until a device has told that its connection is closed. */
    async closed() {
      while ((await this.line()).closed === undefined) {}
    },
  };
}

/** The devices of the scene, by id, all listening. */
async function startDevices(scene) {
  const behaviour = {
    framed: ["--parser", "framed", "--delay", "0"], // sends back what it's sent
    direct: ["--parser", "direct"],
    json: ["--parser", "direct", "--say", recordedText()],
  };
  const devices = new Map();
  for (const { id, name, parser, address } of scene.devices) {
    const device = start("--device", address, ...behaviour[parser]);
    await device.line();
    devices.set(id, { name, ...device });
  }
  return devices;
}

const recording = readFileSync(RECORDING, "utf8")
  .trimEnd()
  .split("\n")
  .map((line) => JSON.parse(line));

/** The text that the recorded device sent. */
function recordedText() {
  return recording.find((line) => line.from === "device" && line.payload.is === "device_text").payload.text;
}

// ---- Playing ---------------------------------------------------------------------------------------------------------

const differences = [];

function differ(place, recorded, now) {
  differences.push(`${place}: recorded ${JSON.stringify(recorded)}, now ${JSON.stringify(now)}`);
}

function compare(place, recorded, now) {
  const isObject = (value) => typeof value === "object" && value !== null;
  if (!isObject(recorded) || !isObject(now) || Array.isArray(recorded) !== Array.isArray(now)) {
    if (!isDeepStrictEqual(recorded, now)) {
      differ(place, recorded, now);
    }
    return;
  }
  for (const key of new Set([...Object.keys(recorded), ...Object.keys(now)])) {
    compare(`${place}/${key}`, recorded[key], now[key]);
  }
}

/** A reply as recordings hold it: without the host's own log lines. */
function kept(reply) {
  const { log = [], ...others } = reply;
  const lines = log.filter((line) => line.args.some((argument) => argument !== 0));
  return lines.length > 0 ? { ...others, log: lines } : others;
}

/** Carries the tour out. Answers with all replies, and what tells how nodes and outputs are called. */
async function play(host) {
  const ask = async (request) => {
    host.child.stdin.write(JSON.stringify(request) + "\n");
    return host.line();
  };
  const nodes = new Map();
  for (const { node, name } of (await ask({ op: "scene" })).nodes) {
    const groups = (await ask({ op: "inspect", node })).outputs;
    nodes.set(node, { name, outputs: new Map(groups.flatMap(({ params }) => params.map((param) => [param.id, param]))) });
  }
  await ask({ op: "listen" });

  const replies = [];
  for (const [index, line] of recording.entries()) {
    const place = `line ${index + 1}, ${line.op}`;
    const { reply: recorded, from, connection, ...request } = line;
    if (request.op === "load") {
      continue; // the scene that is there is the one to tour
    }
    let reply;
    if (from === undefined) {
      reply = await ask(request);
      compare(place, recorded, kept(reply));
    } else {
      reply = await ask({ op: "wait", ms: ITEM_TIME_MS });
      const { dispatched, ...happened } = kept(reply);
      const { results, ...others } = recorded;
      compare(place, [{ from, device: line.device, event: line.event, results }], dispatched);
      compare(place, others, happened);
    }
    replies.push(reply);
  }
  const network = await ask({ op: "network" });
  host.child.stdin.end(); // it ends its connections
  const [code] = await once(host.child, "close");
  if (code !== 0) {
    differ("the host's exit code", 0, code);
  }
  return { replies, nodes, network };
}

// ---- What each node did ----------------------------------------------------------------------------------------------

class Trace {
  constructor({ replies, nodes, network }, devices) {
    this.replies = replies;
    this.nodes = nodes;
    this.network = network;
    this.devices = devices;
  }

  /** The names of the events that a node fired, in order. */
  fired(node) {
    const { outputs } = this.nodes.get(node);
    const posted = this.replies.flatMap((reply) => reply.posted ?? []);
    return posted.filter((event) => event.node === node).map((event) => outputs.get(event.output).display);
  }

  /** The values that an output took, in order. */
  shown(node, output) {
    const [id, { type }] = [...this.nodes.get(node).outputs].find(([, param]) => param.name === output);
    const member = { 1: "string", 2: "int", 5: "int" }[type];
    return this.replies.flatMap((reply) => reply.outputs?.[node]?.[id]?.[member] ?? []).slice(1);
  }

  matrix(name) {
    const replies = this.replies.filter((reply) => reply.objects !== undefined);
    return replies.at(-1)?.objects.find((object) => object.name === name)?.matrix;
  }

  /** What a device was sent, as it printed it. */
  received(id, field) {
    return this.devices.get(id).lines.flatMap((line) => line[field] ?? []);
  }
}

function need(condition, what) {
  if (!condition) {
    throw new Error(what);
  }
}

/** Needs these events in this order, among others; answers with the text that says so. */
function needFired(trace, node, ...events) {
  const fired = trace.fired(node);
  let next = 0;
  for (const event of fired) {
    next += event === events[next] ? 1 : 0;
  }
  need(next === events.length, `fired ${fired.join(", ") || "nothing"}; ${events[next]} is missing`);
  return `fired ${fired.join(", ")}`;
}

const quoted = (texts) => texts.map((text) => JSON.stringify(text)).join(" ");

/** For each node: what it did, in a sentence; throws when that isn't what it should have done. */
const TOUR = {
  keyboard(trace) {
    const text = needFired(trace, "keyboard", "Pressed", "Released");
    const keys = trace.shown("keyboard", "KeyText");
    need(keys.join("").endsWith("hi"), `heard ${quoted(keys)}`);
    return `heard the keys ${quoted(keys)}: ${text}`;
  },
  key_check(trace) {
    return `saw Esc go down, stay and go up: ${needFired(trace, "key_check", "Pressed", "Held down", "Released")}`;
  },
  text_field(trace) {
    const texts = trace.shown("text_field", "Text");
    need(texts.includes("") && texts.at(-1) === "hi", `made of them ${quoted(texts)}`);
    return `made of the keys ${quoted(texts)}; Esc emptied it`;
  },
  mouse(trace) {
    const text = needFired(trace, "mouse", "Enter window", "Left pressed", "Left released", "Wheel up", "Right pressed");
    const pixels = trace.shown("mouse", "PixelX");
    need(pixels.length > 2, `was moved to ${pixels.join(", ")}`);
    return `went to x ${pixels.join(", ")}: ${text}`;
  },
  gesture(trace) {
    return `saw a stroke: ${needFired(trace, "gesture", "Drag start", "Drag end", "Swipe right")}`;
  },
  vr_handle(trace) {
    const text = needFired(trace, "vr_handle", "Trigger pressed", "Trigger released", "Trigger click");
    const matrix = trace.matrix("Lamp");
    need(matrix !== undefined && matrix[12] === 1.5, `left the Lamp at ${matrix?.slice(12, 15)}`);
    return `moved the Lamp to ${matrix.slice(12, 15).join(", ")}; ${text}`;
  },
  device_json(trace) {
    const texts = trace.shown("device_json", "ReceiveData");
    needFired(trace, "device_json", "JSON received");
    return `took the Panel's ${texts.join(" ")} and handed it to the net parameter send node`;
  },
  object_json(trace) {
    const texts = trace.shown("object_json", "ReceiveData");
    needFired(trace, "object_json", "JSON received");
    return `took the Lamp's ${texts.join(" ")} and handed it to the net parameter send node`;
  },
  net_send(trace) {
    const records = trace.received(1, "record");
    need(records.length === 2, `reached the Stage ${records.length} times`);
    need(records[0].KeyValue === recordedText(), `sent the value ${records[0].KeyValue}`);
    need(records[1].HelpParameter !== "", "sent no auxiliary parameter");
    return `reached the Stage with Level ${records[0].KeyValue}, then with ${records[1].HelpParameter} too`;
  },
  net_receive(trace) {
    needFired(trace, "net_receive", "Net trigger", "Net trigger");
    const values = trace.shown("net_receive", "KeyValue");
    const parameters = trace.shown("net_receive", "HelpParameter");
    return `heard the Stage's answers: Level ${values.join(" ")}, then ${parameters.join(" ")}`;
  },
  string_send(trace) {
    const bytes = trace.received(2, "hex").join("");
    need(bytes === "686900", `the Display got the bytes ${bytes || "none"}`);
    return `the swipe brought the Display the bytes ${bytes.match(/../g).join(" ")}: "hi" and its end`;
  },
  broadcast_send(trace) {
    const { received, last_received_bytes: last } = trace.network.broadcast;
    need(received === 1, `${received} broadcasts arrived`);
    return `"Send" sent one datagram of ${last.size} bytes to everybody in this network`;
  },
  broadcast_receive(trace) {
    const [names, data] = ["Name", "Data"].map((output) => trace.shown("broadcast_receive", output));
    need(names.length === 1 && data.length === 1, "heard nothing");
    return `heard it: Name ${quoted(names)}, Data ${quoted(data)}`;
  },
};

// ---- The tour --------------------------------------------------------------------------------------------------------

function end(code) {
  children.forEach((child) => child.kill());
  process.exit(code);
}

setTimeout(() => {
  console.error(`tour: not at its end after ${TOUR_TIME_MS / 1000} seconds`);
  end(1);
}, TOUR_TIME_MS);

try {
  const devices = await startDevices(JSON.parse(readFileSync(SCENE, "utf8")));
  const host = start("--stdio", "--scene", SCENE, "--texts", recording[0].texts);
  const trace = new Trace(await play(host), devices);
  await Promise.all([...devices.values()].map((device) => device.closed()));
  let good = 0;
  for (const [node, tell] of Object.entries(TOUR)) {
    const name = trace.nodes.get(node)?.name ?? node;
    try {
      console.log(`ok    ${name.padEnd(21)}  ${tell(trace)}`);
      good += 1;
    } catch (problem) {
      console.log(`FAIL  ${name.padEnd(21)}  ${problem.message}`);
    }
  }
  const count = Object.keys(TOUR).length;
  console.log(`${good} of ${count} nodes did what they should`);
  differences.slice(0, 20).forEach((difference) => console.log(difference));
  if (differences.length > 0) {
    console.log(`the host answered differently than recorded, ${differences.length} times`);
  }
  end(good === count && differences.length === 0 ? 0 : 1);
} catch (problem) {
  console.error(`tour: ${problem.message}`);
  end(1);
}
