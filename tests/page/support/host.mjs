// Starts the real host for a test and ends it afterwards.
import { spawn } from "node:child_process";
import { once } from "node:events";

const PROGRAM = process.env.IOHOST;
const START_TIME_MS = 20000;
const END_TIME_MS = 10000;

/** Runs iohost to its end: what it printed, and its exit code (null if it had to be stopped). */
export async function runHost(...options) {
  const child = start(options);
  const output = collect(child);
  const timer = setTimeout(() => child.kill("SIGKILL"), START_TIME_MS);
  const [code] = await once(child, "close");
  clearTimeout(timer);
  return { code, stdout: output.stdout, stderr: output.stderr };
}

/**
 * Starts iohost, on a free port of loopback unless others are given. Answers when it has printed its address:
 * `address` ("127.0.0.1:PORT"), `page` (its URL), `output` (what it printed so far) and `end()`.
 */
export async function startHost({ at = "127.0.0.1", port = 0, options = [] } = {}) {
  const child = start(["--listen", `${at}:${port}`, ...options]);
  const output = collect(child);
  const ended = once(child, "close");
  const [page, address] = await new Promise((resolve, reject) => {
    const timer = setTimeout(() => reject(new Error("iohost printed no address")), START_TIME_MS);
    child.stdout.on("data", () => {
      const match = /page at (http:\/\/(\S+)\/\S*)\n/.exec(output.stdout);
      if (match) {
        clearTimeout(timer);
        resolve(match.slice(1));
      }
    });
    child.once("close", (code) => {
      clearTimeout(timer);
      reject(new Error(`iohost ended with ${code}: ${output.stderr}`));
    });
  });
  return {
    address,
    pid: child.pid,
    page,
    output,
    /** Leaves what it prints unread for now. */
    stopReading: () => child.stdout.pause(),
    readOn: () => child.stdout.resume(),
    kill: (signal = "SIGKILL") => child.kill(signal),
    /** Asks it to end as a terminal does, and answers with the exit code (null if it had to be stopped). */
    end() {
      child.kill("SIGINT");
      return this.ended();
    },
    /** Waits until it has ended by itself. */
    async ended() {
      const timer = setTimeout(() => child.kill("SIGKILL"), END_TIME_MS);
      const [code] = await ended;
      clearTimeout(timer);
      return code;
    },
  };
}

function start(options) {
  if (!PROGRAM) {
    throw new Error("The environment variable IOHOST names no program.");
  }
  const web = process.env.IOHOST_WEB ? ["--web", process.env.IOHOST_WEB] : [];
  // The sanitizer otherwise keeps freed memory for a long time, which looks like growth.
  const env = { ...process.env, ASAN_OPTIONS: `${process.env.ASAN_OPTIONS ?? ""}:quarantine_size_mb=1` };
  return spawn(PROGRAM, [...web, ...options], { stdio: ["ignore", "pipe", "pipe"], env });
}

function collect(child) {
  const output = { stdout: "", stderr: "" };
  for (const name of ["stdout", "stderr"]) {
    child[name].setEncoding("utf8");
    child[name].on("data", (text) => (output[name] += text));
  }
  return output;
}
