import type { TargetedEvent } from "preact";
import { useEffect, useState } from "preact/hooks";
import type { Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { sendingText } from "../network.ts";
import type { DeviceState } from "../protocol.ts";
import { reasonText } from "../reasons.ts";
import { DeviceLine } from "./DeviceLine.tsx";
import { Editing } from "./Editing.tsx";
import { DeviceBytes } from "./LastBytes.tsx";
import { Outcome, PartButtons, PartCard } from "./PartCard.tsx";

const PARSERS = ["framed", "direct", "json", "none"] as const;
const EXAMPLE_ADDRESS = "127.0.0.1:8052";
const TEST_TEXT = "test";
const NOT_SENT = { text: "", waits: false };

/** What is set of a device, as it's typed. */
interface Settings {
  id: string;
  name: string;
  address: string;
  parser: string;
  dropAfter: string;
}

interface DeviceCardProps {
  host: Host;
  desk: Desk;
  /** Null: a new one. */
  id: number | null;
}

/** A device in the inspector: its settings, and whether it can be reached. */
export function DeviceCard({ host, desk, id }: DeviceCardProps) {
  const network = host.network.value;
  const devices = network?.state.devices ?? [];
  if (id === null) {
    const free = Math.max(0, ...devices.map((one) => one.id)) + 1;
    const settings = { id: String(free), name: "", address: "", parser: "direct", dropAfter: "2" };
    return (
      <PartCard desk={desk} title={t("New device")}>
        <DeviceForm host={host} desk={desk} settings={settings} isNew />
      </PartCard>
    );
  }
  const device = devices.find((one) => one.id === id);
  return (
    <PartCard desk={desk} title={t("Device {id}", { id })}>
      {network === null || device === undefined ? (
        <p class="hint">{t("There is no device {id}.", { id })}</p>
      ) : (
        <>
          <h3>{device.name}</h3>
          <DeviceLine device={device} told={network.told} />
          <Editing>
            <DeviceForm host={host} desk={desk} settings={settingsOf(device)} isNew={false} />
          </Editing>
          <DeviceTrial host={host} device={device} />
          <DeviceBytes device={device} />
        </>
      )}
    </PartCard>
  );
}

function settingsOf({ id, name, address, parser, drop_after: seconds }: DeviceState): Settings {
  return { id: String(id), name, address: address ?? "", parser, dropAfter: String(seconds ?? "") };
}

/** What is typed stands in place of what is set until it's sent. */
function DeviceForm({ host, desk, settings, isNew }: { host: Host; desk: Desk; settings: Settings; isNew: boolean }) {
  const [typed, setTyped] = useState<Partial<Settings>>({});
  const [error, setError] = useState<string | null>(null);
  const [isChanged, setChanged] = useState(false);
  const shown = { ...settings, ...typed };
  const id = Number(shown.id);
  const type = (more: Partial<Settings>) => {
    setTyped({ ...typed, ...more });
    setError(null);
    setChanged(false);
  };
  const field = (name: keyof Settings) => ({
    class: "field",
    value: shown[name],
    "data-part": name,
    onInput: ({ currentTarget: { value } }: TargetedEvent<HTMLInputElement>) => type({ [name]: value }),
  });
  const submit = async (event: Event) => {
    event.preventDefault();
    const opened = desk.opened.peek();
    const problem = await host.requests.change({
      op: "device",
      device: id,
      name: shown.name,
      parser: shown.parser,
      address: shown.address.trim() || null,
      drop_after: shown.dropAfter.trim() === "" ? null : Number(shown.dropAfter),
      ...(isNew && { new: true }),
    });
    if (problem === null) {
      await host.readNetwork();
      setTyped({});
      if (isNew) {
        desk.leave(opened, { is: "device", id });
      }
    }
    setError(problem);
    setChanged(problem === null);
  };
  const remove = async () => {
    const opened = desk.opened.peek();
    const problem = await host.requests.change({ op: "remove_device", device: id });
    setError(problem);
    if (problem === null) {
      desk.leave(opened, null);
    }
  };
  return (
    <form class="part-form" onSubmit={submit} data-device-form={isNew ? "new" : id}>
      {isNew && (
        <label>
          {t("Number")}
          <input type="number" min="0" required {...field("id")} />
        </label>
      )}
      <label>
        {t("Name")}
        <input required {...field("name")} />
      </label>
      <label>
        {t("Address")}
        <input placeholder={EXAMPLE_ADDRESS} {...field("address")} />
      </label>
      <label>
        {t("Parser")}
        <select
          value={shown.parser}
          data-part="parser"
          onChange={(event) => type({ parser: event.currentTarget.value })}
        >
          {PARSERS.map((one) => (
            <option key={one} value={one}>
              {one}
            </option>
          ))}
        </select>
      </label>
      <label>
        {t("Drop after (s)")}
        <input type="number" min="0" step="any" placeholder={t("never")} {...field("dropAfter")} />
      </label>
      <PartButtons
        submit={isNew ? t("Add device") : t("Change device")}
        remove={isNew ? null : remove}
        error={error}
        done={isChanged ? t("Changed.") : ""}
      />
    </form>
  );
}

/** Finds out whether a device is there: connects now, or sends a text. */
function DeviceTrial({ host, device }: { host: Host; device: DeviceState }) {
  const { id, address, parser, state, last_problem: problem } = device;
  const [text, setText] = useState(TEST_TEXT);
  const takesTexts = parser === "direct" || parser === "json";
  const [isTrying, setTrying] = useState(false);
  /** What the last try came to, which holds while the device's state does. */
  const [attempt, setAttempt] = useState({ text: "", state });
  /** What became of the last text; of one that waits it holds while something does. */
  const [sending, setSending] = useState(NOT_SENT);
  useEffect(() => {
    if (isTrying && state !== "connecting") {
      const text = state === "waiting" ? t("Not reached: {problem}", { problem: reasonText(problem ?? "") }) : t("Connected");
      setAttempt({ text, state });
      setTrying(false);
    }
  }, [isTrying, state]);
  const tryNow = async () => {
    const refusal = await host.requests.connect(id);
    await host.readNetwork(); // by now the attempt has begun: a device that waits is one that it didn't reach
    setAttempt({ text: refusal ?? "", state });
    setTrying(refusal === null);
  };
  const send = async (event: Event) => {
    event.preventDefault();
    const refusal = await host.requests.sendText(id, text);
    await host.readNetwork();
    const { devices = null, listen_only: listenOnly = false } = host.network.peek()?.state ?? {};
    const sentTo = devices?.find((one) => one.id === id);
    setSending({
      text: refusal ?? (sentTo === undefined ? "" : sendingText(sentTo, listenOnly)),
      waits: sentTo !== undefined && sentTo.queued_items > 0,
    });
  };
  return (
    <>
      {address !== null && (
        <div class="part-row">
          <button type="button" onClick={tryNow}>
            {t("Try to connect")}
          </button>
          <Outcome text={isTrying ? t("Trying to connect…") : attempt.state === state ? attempt.text : ""} />
        </div>
      )}
      {takesTexts && (
        <form class="part-row" onSubmit={send}>
          <input
            class="field"
            aria-label={t("Test text")}
            value={text}
            data-test-text
            onInput={(event) => {
              setText(event.currentTarget.value);
              setSending(NOT_SENT);
            }}
          />
          <button type="submit">{t("Send a test text")}</button>
          <Outcome text={sending.waits && device.queued_items === 0 ? "" : sending.text} />
        </form>
      )}
    </>
  );
}
