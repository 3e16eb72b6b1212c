import { useState } from "preact/hooks";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import type { DeviceState } from "../protocol.ts";
import { DeviceForm } from "./DeviceForm.tsx";

/** What can be done to a device: changed, removed, connected now, and sent a text to see whether it arrives. */
export function DeviceTools({ host, device }: { host: Host; device: DeviceState }) {
  const [isEditing, setEditing] = useState(false);
  const [text, setText] = useState<string | null>(null);
  const [answer, setAnswer] = useState("");
  const { id } = device;
  const takesTexts = device.parser === "direct" || device.parser === "json";
  const tell = (error: string | null, done: string) => setAnswer(error ?? done);
  const sendText = async (event: Event) => {
    event.preventDefault();
    tell(await host.requests.sendText(id, text ?? ""), t("Handed over: see “Last sent”."));
  };
  if (isEditing) {
    return <DeviceForm host={host} device={device} onDone={() => setEditing(false)} />;
  }
  return (
    <div class="device-tools">
      <button type="button" onClick={() => setEditing(true)}>
        {t("Edit")}
      </button>
      <button type="button" onClick={async () => tell(await host.requests.change({ op: "remove_device", device: id }), "")}>
        {t("Remove")}
      </button>
      {device.address !== null && (
        <button type="button" onClick={async () => tell(await host.requests.connect(id), t("Trying to connect…"))}>
          {t("Try to connect")}
        </button>
      )}
      {takesTexts && (
        <button type="button" aria-expanded={text !== null} onClick={() => setText(text === null ? TEST_TEXT : null)}>
          {t("Send a test text")}
        </button>
      )}
      {text !== null && (
        <form class="device-test" onSubmit={sendText}>
          <input class="field" aria-label={t("Test text")} value={text} data-test-text onInput={(event) => setText(event.currentTarget.value)} />
          <button type="submit" data-send-test>
            {t("Send")}
          </button>
        </form>
      )}
      {answer !== "" && (
        <span class="hint" role="status">
          {answer}
        </span>
      )}
    </div>
  );
}

const TEST_TEXT = "test";
