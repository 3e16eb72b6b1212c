import { timeOfDay } from "../format.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { kindOf, shownValue } from "../params.ts";
import type { Param } from "../messages.ts";
import "./cell.css";
import { LinkTargets } from "./Links.tsx";
import { EventLamp } from "./lit.tsx";
import { LongText } from "./LongText.tsx";
import "./outputs.css";

interface OutputProps {
  host: Host;
  node: string;
  param: Param;
}

/** An event output: flashes when it fires, and says how often and when it did. */
export function EventOutput({ host, node, param }: OutputProps) {
  const count = host.firedCount(node, param.id);
  const last = host.fired.of(node, param.id).value;
  return (
    <div
      class={last !== null ? "output event fired" : "output event"}
      title={`${param.name}, ${param.id}`}
      data-node={node}
      data-output={param.id}
      data-count={count}
    >
      <EventLamp last={last} />
      <span class="output-name">{param.display}</span>
      <span class="event-count">{count}</span>
      <span class="event-time">{last !== null ? timeOfDay(last) : count === 0 && t("not yet fired")}</span>
      <LinkTargets host={host} node={node} output={param.id} />
    </div>
  );
}

export function ValueOutput({ host, node, param }: OutputProps) {
  const value = host.values.of(node, param.id).value;
  const kind = kindOf(param);
  const text = shownValue(param, value);
  return (
    <div
      class="output value"
      title={`${param.name}, ${param.id}`}
      data-node={node}
      data-output={param.id}
      data-value={text.text}
    >
      <span class="output-name">{param.display}</span>
      <span class={kind === "switch" && value.int !== 0 ? "value-text value-on" : "value-text"}>
        {text.text === "" ? <span class="none">{t("empty")}</span> : <LongText {...text} />}
      </span>
      <LinkTargets host={host} node={node} output={param.id} />
    </div>
  );
}
