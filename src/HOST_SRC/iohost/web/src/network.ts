// How the host's network stands, as `network` tells it, and what the page says about it.
import { timeOfDay } from "./format.ts";
import type { ControlState, DeviceState, ItemCounts } from "./protocol.ts";

/** What went wrong with receiving. */
export type ErrorCounts = Pick<ControlState, "errors" | "last_error">;

/** "connected since 14:03:22"; `told` is when the page heard of it. */
export function stateText(device: DeviceState, told: number): string {
  const since = `since ${timeOfDay(told - device.since_ms).replace(/\..*/, "")}`;
  switch (device.state) {
    case "unconnected":
      return "has no address: what it is sent is only shown";
    case "connected":
      return `connected ${since}`;
    case "connecting":
      return `connecting ${since}`;
    case "waiting":
      return `waiting to try again ${since}`;
  }
}

export function queueText({ queued_items: items, queued_bytes: bytes }: DeviceState): string {
  return items === 0 ? "empty" : `${items} ${items === 1 ? "item" : "items"}, ${bytesText(bytes)}`;
}

export function rejectedText({ rejected, last_rejected: reason }: ItemCounts): string {
  return withReason(rejected, reason);
}

export function errorsText({ errors, last_error: reason }: ErrorCounts): string {
  return withReason(errors, reason);
}

/** Hexadecimal in pairs: "31 32 7c". */
export function pairedHex(hex: string): string {
  return hex.replace(/..(?=.)/g, "$& ");
}

/** The devices to choose from for a "DevID" that reads so, as value and label; what is there stays to be chosen. */
export function deviceChoices(devices: readonly DeviceState[], current: string): { value: string; label: string }[] {
  const choices = devices.map(({ id, name }) => ({ value: String(id), label: `${id} · ${name}` }));
  if (!choices.some(({ value }) => value === current)) {
    choices.unshift({ value: current, label: current === "" ? "none" : `${current} · no such device` });
  }
  return choices;
}

function withReason(count: number, reason: string | null): string {
  return reason === null ? String(count) : `${count} (${reason})`;
}

function bytesText(bytes: number): string {
  if (bytes < 1024) {
    return `${bytes} bytes`;
  }
  return bytes < 1024 ** 2 ? `${(bytes / 1024).toFixed(1)} KiB` : `${(bytes / 1024 ** 2).toFixed(1)} MiB`;
}
