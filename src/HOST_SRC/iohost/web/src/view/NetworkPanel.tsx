import type { ComponentChildren } from "preact";
import type { Desk } from "../desk.ts";
import { t } from "../i18n.ts";
import { errorsText, isLost, queueText, rejectedText, type ErrorCounts } from "../network.ts";
import type { BroadcastState, ControlState, DeviceState, ItemCounts } from "../protocol.ts";
import { DeviceLine } from "./DeviceLine.tsx";
import { Editing } from "./Editing.tsx";
import { DeviceBytes, LastBytes } from "./LastBytes.tsx";
import "./network.css";
import type { PanelProps } from "./panels.ts";

/** What goes over the network: to and from the devices, and what other hosts send to this one. */
export function NetworkPanel({ host, desk, shown }: PanelProps) {
  const network = host.network.value;
  if (!shown || network === null) {
    return null;
  }
  const { devices, broadcast, control, listen_only: listenOnly } = network.state;
  const listen = async (box: HTMLInputElement) => {
    const error = await host.requests.listenOnly(box.checked);
    desk.tell(error, "");
    if (error !== null) {
      box.checked = listenOnly;
    }
  };
  return (
    <>
      <div class="panel-head">
        <label class="network-switch">
          <input
            type="checkbox"
            role="switch"
            class="switch"
            checked={listenOnly}
            disabled={host.connection.value.is !== "open"}
            data-listen-only
            onChange={(event) => void listen(event.currentTarget)}
          />
          {t("Listen only")}
        </label>
        <span class="hint">
          {listenOnly
            ? t("What nodes send, broadcasts too, is only shown here and doesn't go out.")
            : t("What nodes send to devices goes out.")}
        </span>
        <Editing>
          <button type="button" class="quiet" onClick={() => desk.open({ is: "device", id: null })}>
            {t("Add device")}
          </button>
        </Editing>
      </div>
      <Overview desk={desk} devices={devices ?? []} />
      <div class="network" tabIndex={0} role="group" aria-label={t("Devices and other hosts")}>
        {devices?.map((device) => <Device key={device.id} desk={desk} device={device} told={network.told} />)}
        {broadcast !== null && <Broadcasts state={broadcast} />}
        {control !== null && <Control state={control} />}
      </div>
    </>
  );
}

/** How many devices are connected, and which aren't: of many, only a few are in sight. */
function Overview({ desk, devices }: { desk: Desk; devices: readonly DeviceState[] }) {
  const all = devices.filter(({ address }) => address !== null);
  const lost = all.filter(isLost);
  return (
    <div class="overview" data-overview>
      {devices.length === 0 && t("No devices yet.")}
      {all.length > 0 && t("{count} of {all} connected", { count: all.length - lost.length, all: all.length })}
      {lost.length > 0 && <span class="problem">{t("Not connected:")}</span>}
      {lost.map((device) => (
        <DeviceLink key={device.id} desk={desk} device={device} />
      ))}
    </div>
  );
}

/** Opens a device in the inspector. */
function DeviceLink({ desk, device: { id, name } }: { desk: Desk; device: DeviceState }) {
  return (
    <button type="button" class="link" onClick={() => desk.open({ is: "device", id })}>
      {id} · {name}
    </button>
  );
}

function Device({ desk, device, told }: { desk: Desk; device: DeviceState; told: number }) {
  const lamp = isLost(device) ? "lamp lamp-lost" : device.address !== null ? "lamp lamp-open" : "lamp";
  return (
    <Peer id={`device-${device.id}`} title={<DeviceLink desk={desk} device={device} />} lamp={lamp}>
      <DeviceLine device={device} told={told} />
      <dl class="counts">
        <Count label={t("Queue")} field="queue" value={queueText(device)} />
        <Count label={t("Sent")} field="sent" value={device.sent} />
        <Trouble label={t("Refused")} field="refused" count={device.refused} />
        <Trouble label={t("Lost")} field="lost" count={device.lost} />
        <Trouble label={t("Dropped")} field="dropped" count={device.dropped ?? 0} />
        {device.shown > 0 && <Count label={t("Shown only")} field="shown" value={device.shown} />}
        <Received counts={device} />
        <Trouble label={t("Errors")} field="errors" count={device.errors} />
      </dl>
      <DeviceBytes device={device} />
    </Peer>
  );
}

function Broadcasts({ state }: { state: BroadcastState }) {
  return (
    <Peer id="broadcast" title={t("Broadcasts")} lamp={state.problem === null ? "lamp lamp-open" : "lamp lamp-lost"}>
      <p class="hint">
        UDP {state.port} ·{" "}
        {state.problem === null ? (
          t("received here")
        ) : (
          <span class="problem" data-field="problem">
            {t("not received: {problem}; trying again", { problem: state.problem })}
          </span>
        )}
      </p>
      <dl class="counts">
        <Received counts={state} />
        <Errors counts={state} />
      </dl>
      <LastBytes label={t("Last received")} field="received-bytes" bytes={state.last_received_bytes} />
    </Peer>
  );
}

function Control({ state }: { state: ControlState }) {
  return (
    <Peer id="control" title={t("Records of other hosts")} lamp="lamp lamp-open">
      <p class="hint">
        TCP {state.port} · {t("{count} connected", { count: state.connections })}
      </p>
      <dl class="counts">
        <Received counts={state} />
        <Trouble label={t("Turned away")} field="turned-away" count={state.turned_away} />
        <Errors counts={state} />
      </dl>
    </Peer>
  );
}

function Peer({ id, title, lamp, children }: { id: string; title: ComponentChildren; lamp: string; children: ComponentChildren }) {
  return (
    <article class="peer" data-peer={id}>
      <h3>
        <span class={lamp} aria-hidden="true" />
        {title}
      </h3>
      {children}
    </article>
  );
}

function Received({ counts }: { counts: ItemCounts }) {
  return (
    <>
      <Count label={t("Received")} field="received" value={counts.received} />
      <Count label={t("Matched")} field="matched" value={counts.matched} />
      <Trouble label={t("Rejected")} field="rejected" count={counts.rejected} value={rejectedText(counts)} />
    </>
  );
}

function Errors({ counts }: { counts: ErrorCounts }) {
  return <Trouble label={t("Errors")} field="errors" count={counts.errors} value={errorsText(counts)} />;
}

/** Shows once there is some. */
function Trouble({ count, value = count, ...named }: { label: string; field: string; count: number; value?: string | number }) {
  return count > 0 ? <Count {...named} value={value} isTrouble /> : null;
}

function Count(props: { label: string; field: string; value: string | number; isTrouble?: boolean }) {
  return (
    <div class={props.isTrouble === true ? "count count-trouble" : "count"}>
      <dt>{props.label}</dt>
      <dd data-field={props.field}>{props.value}</dd>
    </div>
  );
}
