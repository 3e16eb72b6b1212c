import type { ComponentChildren } from "preact";
import type { Desk } from "../desk.ts";
import { t } from "../i18n.ts";
import { errorsText, queueText, rejectedText, type ErrorCounts } from "../network.ts";
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
            ? t("What nodes send is shown here and goes nowhere, broadcasts too.")
            : t("What nodes send to devices goes out.")}
        </span>
        <Editing>
          <button type="button" class="quiet" onClick={() => desk.open({ is: "device", id: null })}>
            {t("Add device")}
          </button>
        </Editing>
      </div>
      <div class="network" tabIndex={0} role="group" aria-label={t("Devices and other hosts")}>
        {devices === null && <p class="empty">{t("The scene has no list of devices.")}</p>}
        {devices?.length === 0 && <p class="empty">{t("The scene's list of devices is empty.")}</p>}
        {devices?.map((device) => <Device key={device.id} desk={desk} device={device} told={network.told} />)}
        {broadcast !== null && <Broadcasts state={broadcast} />}
        {control !== null && <Control state={control} />}
      </div>
    </>
  );
}

function Device({ desk, device, told }: { desk: Desk; device: DeviceState; told: number }) {
  const lamp = { connected: "lamp lamp-open", waiting: "lamp lamp-lost", connecting: "lamp", unconnected: "lamp" };
  const title = (
    <button type="button" class="link" onClick={() => desk.open({ is: "device", id: device.id })}>
      {device.id} · {device.name}
    </button>
  );
  return (
    <Peer id={`device-${device.id}`} title={title} lamp={lamp[device.state]}>
      <DeviceLine device={device} told={told} />
      <dl class="counts">
        <Count label={t("Queue")} field="queue" value={queueText(device)} />
        <Count label={t("Sent")} field="sent" value={device.sent} />
        <Count label={t("Refused")} field="refused" value={device.refused} isTrouble={device.refused > 0} />
        <Count label={t("Lost")} field="lost" value={device.lost} isTrouble={device.lost > 0} />
        {(device.dropped ?? 0) > 0 && <Count label={t("Dropped")} field="dropped" value={device.dropped!} isTrouble />}
        <Count label={t("Shown only")} field="shown" value={device.shown} />
        <Received counts={device} />
        <Count label={t("Errors")} field="errors" value={device.errors} isTrouble={device.errors > 0} />
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
        <Count label={t("Turned away")} field="turned-away" value={state.turned_away} isTrouble={state.turned_away > 0} />
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
      <Count label={t("Rejected")} field="rejected" value={rejectedText(counts)} isTrouble={counts.rejected > 0} />
    </>
  );
}

function Errors({ counts }: { counts: ErrorCounts }) {
  return <Count label={t("Errors")} field="errors" value={errorsText(counts)} isTrouble={counts.errors > 0} />;
}

function Count(props: { label: string; field: string; value: string | number; isTrouble?: boolean }) {
  return (
    <div class={props.isTrouble === true ? "count count-trouble" : "count"}>
      <dt>{props.label}</dt>
      <dd data-field={props.field}>{props.value}</dd>
    </div>
  );
}
