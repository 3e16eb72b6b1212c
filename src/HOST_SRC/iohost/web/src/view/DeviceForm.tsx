import { useState } from "preact/hooks";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import type { DeviceState } from "../protocol.ts";

const PARSERS = ["framed", "direct", "json", "none"] as const;
/** What a new device's items may wait for its connection. */
const USUAL_SECONDS = "2";

type Device = Pick<DeviceState, "id" | "name" | "parser" | "address"> & { drop_after?: number };

interface DeviceFormProps {
  host: Host;
  /** Null: a new one. */
  device: Device | null;
  onDone(): void;
}

/** A device's settings: adds it, or changes the one that is there. */
export function DeviceForm({ host, device, onDone }: DeviceFormProps) {
  const present = host.network.peek()?.state.devices ?? [];
  const [id, setId] = useState(String(device?.id ?? Math.max(0, ...present.map((one) => one.id)) + 1));
  const [name, setName] = useState(device?.name ?? "");
  const [address, setAddress] = useState(device?.address ?? "");
  const [parser, setParser] = useState<string>(device?.parser ?? "direct");
  const [seconds, setSeconds] = useState(device === null ? USUAL_SECONDS : String(device.drop_after ?? ""));
  const [error, setError] = useState<string | null>(null);

  const submit = async (event: Event) => {
    event.preventDefault();
    if (device === null && present.some((one) => one.id === Number(id))) {
      setError(t("There is a device {id} already.", { id }));
      return;
    }
    const problem = await host.requests.change({
      op: "device",
      device: Number(id),
      name,
      parser,
      address: address.trim() === "" ? null : address.trim(),
      drop_after: seconds.trim() === "" ? null : Number(seconds),
    });
    setError(problem);
    if (problem === null) {
      onDone();
    }
  };
  return (
    <form class="device-form" onSubmit={submit} data-device-form={device?.id ?? "new"}>
      <label>
        {t("Number")}
        <input
          class="field"
          type="number"
          min="0"
          required
          readOnly={device !== null}
          value={id}
          data-device="id"
          onInput={(event) => setId(event.currentTarget.value)}
        />
      </label>
      <label>
        {t("Name")}
        <input class="field" required value={name} data-device="name" onInput={(event) => setName(event.currentTarget.value)} />
      </label>
      <label>
        {t("Address")}
        <input
          class="field"
          placeholder={EXAMPLE_ADDRESS}
          value={address}
          data-device="address"
          onInput={(event) => setAddress(event.currentTarget.value)}
        />
      </label>
      <label>
        {t("Parser")}
        <select value={parser} data-device="parser" onChange={(event) => setParser(event.currentTarget.value)}>
          {PARSERS.map((one) => (
            <option key={one} value={one}>
              {one}
            </option>
          ))}
        </select>
      </label>
      <label title={t("Empty: what can't be sent waits until it can.")}>
        {t("Drop after (s)")}
        <input
          class="field"
          type="number"
          min="0"
          step="any"
          value={seconds}
          data-device="drop-after"
          onInput={(event) => setSeconds(event.currentTarget.value)}
        />
      </label>
      <div class="dialog-row">
        <button type="submit">{device === null ? t("Add device") : t("Change device")}</button>
        <button type="button" onClick={onDone}>
          {t("Cancel")}
        </button>
      </div>
      {error !== null && (
        <p class="input-error" role="alert">
          {error}
        </p>
      )}
    </form>
  );
}

const EXAMPLE_ADDRESS = "127.0.0.1:8052";
