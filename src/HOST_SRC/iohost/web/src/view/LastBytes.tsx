import { t } from "../i18n.ts";
import { pairedHex, readableText } from "../network.ts";
import type { DeviceState, MessageBytes } from "../protocol.ts";
import "./lastBytes.css";

/** What a device was sent last, and what came from it. */
export function DeviceBytes({ device }: { device: DeviceState }) {
  return (
    <>
      <LastBytes
        label={device.last_sent_bytes?.sent === false ? t("Would be sent") : t("Last sent")}
        field="sent-bytes"
        bytes={device.last_sent_bytes}
      />
      <LastBytes label={t("Last received")} field="received-bytes" bytes={device.last_received_bytes} />
    </>
  );
}

/** A message as text, and in hexadecimal. */
export function LastBytes({ label, field, bytes }: { label: string; field: string; bytes: MessageBytes | null }) {
  if (bytes === null) {
    return null;
  }
  const isCut = bytes.hex.length < 2 * bytes.size;
  return (
    <div class="bytes" data-field={field}>
      <span class="bytes-label">
        {label}, {bytes.size === 1 ? t("1 byte") : t("{count} bytes", { count: bytes.size })}
        {isCut && `, ${t("the beginning")}`}
      </span>
      <code tabIndex={0} data-bytes="text">{readableText(bytes.hex)}</code>
      <code class="bytes-hex" tabIndex={0} data-bytes="hex">
        {pairedHex(bytes.hex)}
      </code>
    </div>
  );
}
