import { useState } from "preact/hooks";
import type { Host, NodeView } from "../host.ts";
import { t } from "../i18n.ts";
import { addressText, keepTexts, readTexts, verdictText, withText, type SentText, type TextAddress } from "../json.ts";
import { inputOf } from "../nodePins.ts";
import { JsonPin, NodeType, nodesOf } from "../nodeTypes.ts";
import { Device } from "../codes.ts";
import { characters, shortText } from "../texts.ts";
import "./json.css";
import { LongText } from "./LongText.tsx";
import type { PanelProps } from "./panels.ts";

/** What was typed in, or filled in again. */
interface Typed {
  to?: TextAddress["to"];
  device?: number;
  clip?: string;
  object?: string;
  text?: string;
}

/** Texts for the JSON nodes: sent as a device, or to an object; and what the nodes made of the last ones. */
export function JsonPanel({ host, shown }: PanelProps) {
  const nodes = shown ? host.nodes.value : null; // what is hidden needn't follow
  const deviceNodes = nodesOf(nodes, NodeType.deviceJson);
  const objectNodes = nodesOf(nodes, NodeType.objectJson);
  const [texts, setTexts] = useState(() => readTexts(localStorage));
  const [typed, setTyped] = useState<Typed>(texts[0] ?? {});
  const type = (more: Typed) => setTyped((now) => ({ ...now, ...more }));
  const [error, setError] = useState<string | null>(null);

  // Until somebody says otherwise, the text is for the first node of the scene that takes one.
  const { to = "device", text = "" } = typed;
  const inputOfFirst = ([node]: NodeView[], pin: number) => node && inputOf(node, pin);
  const device = typed.device ?? inputOfFirst(deviceNodes, JsonPin.deviceId)?.int ?? 1;
  const clip = typed.clip ?? inputOfFirst(objectNodes, JsonPin.clipName)?.string ?? "";
  const object = typed.object ?? inputOfFirst(objectNodes, JsonPin.objectName)?.string ?? "";
  const address: TextAddress = to === "device" ? { to, device } : { to, clip, object };

  const send = async (event: Event) => {
    event.preventDefault();
    const sent: SentText = { ...address, text };
    setError(await sendText(host, sent));
    const kept = withText(texts, sent);
    setTexts(kept);
    keepTexts(localStorage, kept);
  };

  return (
    <div class="json">
      <form class="json-form" onSubmit={send}>
        <div class="json-address">
          <select
            aria-label={t("Send to")}
            data-json="to"
            value={to}
            onChange={(event) => type({ to: event.currentTarget.value as TextAddress["to"] })}
          >
            <option value="device">{t("as device")}</option>
            <option value="object">{t("to object")}</option>
          </select>
          {to === "device" ? (
            <input
              class="field field-number"
              type="number"
              required
              step="1"
              aria-label={t("Device number")}
              data-json="device"
              value={device}
              onInput={(event) => type({ device: event.currentTarget.valueAsNumber })}
            />
          ) : (
            <>
              <input
                class="field"
                placeholder={t("clip")}
                aria-label={t("Clip")}
                data-json="clip"
                value={clip}
                onInput={(event) => type({ clip: event.currentTarget.value })}
              />
              <input
                class="field"
                placeholder={t("object")}
                aria-label={t("Object")}
                data-json="object"
                value={object}
                onInput={(event) => type({ object: event.currentTarget.value })}
              />
            </>
          )}
          <button type="submit" data-json="send">
            {t("Send")}
          </button>
        </div>
        <textarea
          class="field json-text"
          spellcheck={false}
          placeholder='{"cmd":"start"}'
          aria-label={t("Text")}
          data-json="text"
          value={text}
          onInput={(event) => type({ text: event.currentTarget.value })}
        />
        {error !== null && (
          <p class="input-error" role="alert">
            {error}
          </p>
        )}
      </form>
      <section class="json-side" tabIndex={0} aria-label={t("What the nodes made of their last texts")}>
        {deviceNodes.length + objectNodes.length === 0 && <p class="empty">{t("The scene has no JSON node.")}</p>}
        {[...deviceNodes, ...objectNodes].map((node) => (
          <div class="json-node" key={node.node}>
            <span>{node.graph}</span>
            <JsonVerdictLine host={host} node={node.node} />
          </div>
        ))}
      </section>
      <section class="json-side" aria-label={t("Last texts")}>
        <ol class="json-texts">
          {texts.map((sent) => (
            <li key={`${addressText(sent)} ${sent.text}`}>
              <button type="button" title={t("Fill this in again")} onClick={() => type(sent)}>
                <span class="json-to">{shortText(addressText(sent))}</span>
                <code>
                  <LongText text={sent.text} />
                </code>
              </button>
            </li>
          ))}
        </ol>
        {texts.length === 0 && <p class="empty">{t("Texts that were sent are kept here.")}</p>}
      </section>
    </div>
  );
}

/** What a JSON node made of its last text. Nothing for other nodes, and before the first text. */
export function JsonVerdictLine({ host, node }: { host: Host; node: string }) {
  const verdict = host.jsonVerdicts.of(node).value;
  if (verdict === null) {
    return null;
  }
  return (
    <p
      class={verdict.verdict === "taken" ? "json-verdict json-taken" : "json-verdict"}
      data-verdict={verdict.verdict}
      title={verdict.text.length < verdict.length ? `${verdict.text}… (${characters(verdict.length)})` : verdict.text}
    >
      {t("Last text: {verdict}", { verdict: verdictText(verdict) })}
    </p>
  );
}

async function sendText(host: Host, { text, ...address }: SentText): Promise<string | null> {
  const reply = await host.askInput(
    address.to === "device"
      ? { device: Device.text, event: 0, payload: { is: "device_text", device: address.device, text } }
      : { device: Device.objectText, event: 0, payload: { is: "object_text", clip: address.clip, object: address.object, text } },
  );
  return reply.ok ? null : reply.error;
}
