import assert from "node:assert/strict";
import { test } from "node:test";
import { timeOfDay } from "../src/format.ts";
import { deviceChoices, errorsText, pairedHex, patienceText, queueText, readableText, rejectedText, sendingText, stateText } from "../src/network.ts";
import type { DeviceState } from "../src/protocol.ts";

const DEVICE: DeviceState = {
  id: 3,
  name: "Wall",
  parser: "framed",
  address: "127.0.0.1:9000",
  state: "connected",
  since_ms: 2000,
  last_problem: null,
  queued_items: 0,
  queued_bytes: 0,
  sent: 0,
  refused: 0,
  lost: 0,
  shown: 0,
  errors: 0,
  received_bytes: 0,
  received: 0,
  matched: 0,
  rejected: 0,
  last_rejected: null,
  last_sent_bytes: null,
  last_received_bytes: null,
};

test("a device's state says since when", () => {
  const told = Date.UTC(2026, 10, 21, 12, 0, 5, 700);
  const since = timeOfDay(told - 2000).slice(0, 8);
  assert.equal(stateText(DEVICE, told), `connected since ${since}`);
  for (const state of ["connecting", "waiting"] as const) {
    assert.equal(stateText({ ...DEVICE, state }, told), `not connected since ${since}, trying again`);
  }
  assert.match(stateText({ ...DEVICE, state: "unconnected" }, told), /only shown$/);
});

test("what became of a text follows from how its device stands", () => {
  const [gone, late] = [{ ...DEVICE, state: "waiting" as const }, { ...DEVICE, queued_items: 1, drop_after: 0.5 }];
  assert.equal(sendingText({ ...DEVICE, address: null }, true), "Only shown: the device has no address.");
  assert.equal(sendingText(DEVICE, true), "Only shown: listen only is on.");
  assert.equal(sendingText(DEVICE, false), "Sent.");
  assert.equal(sendingText(gone, false), "The text waits until the device takes it.");
  assert.equal(sendingText(late, false), "The text waits for the device, and is dropped after 0.5 s.");
  assert.equal(patienceText(gone), "what can't be sent waits");
  assert.equal(patienceText(late), "what can't be sent is dropped after 0.5 s");
});

test("a queue is told in items and in bytes", () => {
  const queue = (queued_items: number, queued_bytes: number) => queueText({ ...DEVICE, queued_items, queued_bytes });
  assert.equal(queue(0, 0), "empty");
  assert.equal(queue(1, 200), "1 item, 200 bytes");
  assert.equal(queue(2, 1536), "2 items, 1.5 KiB");
  assert.equal(queue(1024, 4 * 1024 ** 2), "1024 items, 4.0 MiB");
});

test("what was rejected is told with the last reason", () => {
  assert.equal(rejectedText(DEVICE), "0");
  assert.equal(rejectedText({ ...DEVICE, rejected: 2, last_rejected: "bad magic" }), "2 (bad magic)");
});

test("errors are told with the last one, where the host tells it", () => {
  assert.equal(errorsText({ errors: 0, last_error: null }), "0");
  assert.equal(errorsText({ errors: 3, last_error: "port taken" }), "3 (port taken)");
});

test("bytes are read as UTF-8, with dots for what isn't printable text", () => {
  const text = (bytes: string | number[]) => readableText(Buffer.from(bytes as string).toString("hex"));
  assert.equal(text("你好 é 🎬"), "你好 é 🎬");
  assert.equal(text("a\n\0b\x7f\u0085\u202e\u2028c\ufeff"), "a..b....c.");
  assert.equal(text([0x51, 0xff, 0x80, 0xe4, 0xbd]), "Q...");
  assert.equal(text(""), "");
});

test("hexadecimal stands in pairs", () => {
  assert.equal(pairedHex(""), "");
  assert.equal(pairedHex("3c"), "3c");
  assert.equal(pairedHex("31327c00"), "31 32 7c 00");
});

test("the devices are offered by number and name, and what is set stays to be seen", () => {
  const devices = [DEVICE, { ...DEVICE, id: 10, name: "Text" }];
  const labels = (current: string) => deviceChoices(devices, current).map(({ value, label }) => `${value}=${label}`);
  assert.deepEqual(labels("10"), ["3=3 · Wall", "10=10 · Text"]);
  assert.deepEqual(labels(""), ["=none", "3=3 · Wall", "10=10 · Text"]);
  assert.deepEqual(labels(" 3rd"), [" 3rd= 3rd · no such device", "3=3 · Wall", "10=10 · Text"]);
});
