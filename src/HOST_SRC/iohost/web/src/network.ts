// How the host's network stands, as `network` tells it, and what the page says about it.
import { timeOfDay } from "./format.ts";
import { t } from "./i18n.ts";
import { reasonText } from "./reasons.ts";
import type { ControlState, DeviceState, ItemCounts } from "./protocol.ts";

/** What went wrong with receiving. */
export type ErrorCounts = Pick<ControlState, "errors" | "last_error">;

/** "connected since 14:03:22"; `told` is when the page heard of it. */
export function stateText(device: DeviceState, told: number): string {
  const time = timeOfDay(told - device.since_ms).replace(/\..*/, "");
  switch (device.state) {
    case "unconnected":
      return t("has no address: what it is sent is only shown");
    case "connected":
      return t("connected since {time}", { time });
    default:
      return t("not connected since {time}, trying again", { time });
  }
}

/** Whether a device should be connected and isn't. */
export function isLost({ address, state }: DeviceState): boolean {
  return address !== null && state !== "connected";
}

/** How long what a device can't take is kept for it. */
export function patienceText({ drop_after: seconds }: Pick<DeviceState, "drop_after">): string {
  return seconds === undefined ? t("what can't be sent waits") : t("what can't be sent is dropped after {seconds} s", { seconds });
}

/** What became of a text that was just sent to a device. */
export function sendingText(device: DeviceState, listenOnly: boolean): string {
  if (device.address === null) {
    return t("Only shown: the device has no address.");
  }
  if (listenOnly) {
    return t("Only shown: listen only is on.");
  }
  if (device.state === "connected" && device.queued_items === 0) {
    return t("Sent.");
  }
  const { drop_after: seconds } = device;
  return seconds === undefined
    ? t("The text waits until the device takes it.")
    : t("The text waits for the device, and is dropped after {seconds} s.", { seconds });
}

export function queueText({ queued_items: items, queued_bytes: bytes }: DeviceState): string {
  if (items === 0) {
    return t("empty");
  }
  const size = bytesText(bytes);
  return items === 1 ? t("1 item, {size}", { size }) : t("{count} items, {size}", { count: items, size });
}

export function rejectedText({ rejected, last_rejected: reason }: ItemCounts): string {
  return withReason(rejected, reason);
}

export function errorsText({ errors, last_error: reason }: ErrorCounts): string {
  return withReason(errors, reason);
}

/** Bytes in hexadecimal as the UTF-8 that they are, with dots for what isn't or can't be printed. */
export function readableText(hex: string): string {
  const bytes = Uint8Array.from(hex.match(/../g) ?? [], (pair) => parseInt(pair, 16));
  return new TextDecoder("utf-8", { ignoreBOM: true }).decode(bytes).replace(/[\p{C}\p{Zl}\p{Zp}\uFFFD]/gu, ".");
}

/** Hexadecimal in pairs: "31 32 7c". */
export function pairedHex(hex: string): string {
  return hex.replace(/..(?=.)/g, "$& ");
}

/** The devices to choose from for a "DevID" that reads so, as value and label; what is there stays to be chosen. */
export function deviceChoices(devices: readonly DeviceState[], current: string): { value: string; label: string }[] {
  const choices = devices.map(({ id, name }) => ({ value: String(id), label: `${id} · ${name}` }));
  if (!choices.some(({ value }) => value === current)) {
    choices.unshift({ value: current, label: current === "" ? t("none") : t("{id} · no such device", { id: current }) });
  }
  return choices;
}

function withReason(count: number, reason: string | null): string {
  return reason === null ? String(count) : `${count} (${reasonText(reason)})`;
}

function bytesText(bytes: number): string {
  if (bytes < 1024) {
    return t("{count} bytes", { count: bytes });
  }
  return bytes < 1024 ** 2 ? `${(bytes / 1024).toFixed(1)} KiB` : `${(bytes / 1024 ** 2).toFixed(1)} MiB`;
}
