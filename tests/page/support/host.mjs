// Starts the real host for a test and ends it afterwards.
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import { opened } from "./opened.mjs";

/** No test asks how fast the machine is. */
export const LONGEST_WAIT_MS = 60_000;

const PROGRAM = process.env.IOHOST;

/** Runs iohost to its end: what it printed, and its exit code (null if it had to be stopped). */
export async function runHost(...options) {
  const child = start(options);
  const output = collect(child);
  const timer = setTimeout(() => child.kill("SIGKILL"), LONGEST_WAIT_MS);
  const [code] = await once(child, "close");
  clearTimeout(timer);
  return { code, stdout: output.stdout, stderr: output.stderr };
}

/**
 * Starts iohost, on a free port of loopback unless others are given. Answers when it has printed its address:
 * `address` ("127.0.0.1:PORT"), `page` (its URL), `output` (what it printed so far) and `end()`. A host that the test
 * doesn't end is ended with it, and must end well; none may complain.
 */
export async function startHost({ at = "127.0.0.1", port = 0, options = [] } = {}) {
  const web = process.env.IOHOST_WEB ? ["--web", process.env.IOHOST_WEB] : [];
  const child = start(["--listen", `${at}:${port}`, ...web, ...options]);
  const output = collect(child);
  const ended = once(child, "close");
  let isEnded = false;
  const [page, address] = await new Promise((resolve, reject) => {
    const timer = setTimeout(() => child.kill("SIGKILL"), LONGEST_WAIT_MS);
    child.stdout.on("data", () => {
      const match = /page at (http:\/\/(\S+)\/\S*)\n/.exec(output.stdout);
      if (match) {
        clearTimeout(timer);
        resolve(match.slice(1));
      }
    });
    child.once("close", (code) => {
      clearTimeout(timer);
      reject(new Error(`iohost ended with ${code} before it printed its address: ${output.stderr}`));
    });
  });
  const host = {
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
      isEnded = true;
      const timer = setTimeout(() => child.kill("SIGKILL"), LONGEST_WAIT_MS);
      const [code] = await ended;
      clearTimeout(timer);
      return code;
    },
  };
  opened.push(async () => assert.deepEqual([isEnded ? 0 : await host.end(), output.stderr], [0, ""]));
  return host;
}

function start(options) {
  if (!PROGRAM) {
    throw new Error("The environment variable IOHOST names no program.");
  }
  // The sanitizer otherwise keeps freed memory for a long time, which looks like growth.
  const env = { ...process.env, ASAN_OPTIONS: `${process.env.ASAN_OPTIONS ?? ""}:quarantine_size_mb=1` };
  return spawn(PROGRAM, options, { stdio: ["ignore", "pipe", "pipe"], env });
}

function collect(child) {
  const output = { stdout: "", stderr: "" };
  for (const name of ["stdout", "stderr"]) {
    child[name].setEncoding("utf8");
    child[name].on("data", (text) => (output[name] += text));
  }
  return output;
}
