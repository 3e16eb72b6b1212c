import type { ComponentChildren } from "preact";
import { useLayoutEffect, useState } from "preact/hooks";
import { fedInput } from "../fed.ts";
import { shortestFloat } from "../format.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { CombinationCapture } from "../input/capture.ts";
import { keyValueText, virtualKeyName } from "../input/virtualKeys.ts";
import { boundsOf, kindOf, parseNumber, shownValue, type EditValue, type ParamKind } from "../params.ts";
import type { Param } from "../messages.ts";
import { characters } from "../texts.ts";
import "./cell.css";
import { DeviceChoice, namesDevice } from "./DeviceChoice.tsx";
import { Editing } from "./Editing.tsx";
import { LeavingButton } from "./LeavingButton.tsx";
import { LinkSources } from "./Links.tsx";
import { LongText } from "./LongText.tsx";
import "./paramEditor.css";

interface EditorProps {
  host: Host;
  node: string;
  param: Param;
}

/** An input of a node with the control that fits its type. */
export function ParamEditor({ host, node, param: present }: EditorProps) {
  const param = fedInput(host, node, present);
  const [error, setError] = useState<string | null>(null);
  const [scene] = useState(host.sceneNumber.peek());
  const kind = kindOf(param);
  /** Answers whether that was taken. */
  const edit = async (value: EditValue): Promise<boolean> => {
    if (!host.isCurrent(scene)) {
      return false; // what is typed while its scene goes isn't done to the next one
    }
    const refused = await host.requests.change({ op: "edit", node, param: param.id, ...value });
    setError(refused);
    return refused === null;
  };
  const trigger = async () => setError(await host.requests.trigger(node, param.id));
  const common = { node, param, onEdit: edit, onError: setError };

  let control: ComponentChildren;
  switch (kind) {
    case "switch":
      control = <Switch {...common} />;
      break;
    case "keyCode":
      control = <KeyCombination {...common} />;
      break;
    case "integer":
    case "float":
      control = <NumberField {...common} kind={kind} />;
      break;
    case "text":
      control = <TextField {...common} />;
      break;
    case "choice":
      control = <Choice {...common} />;
      break;
    case "event":
      control = (
        <button type="button" {...inputProps(node, param)} onClick={trigger}>
          {t("Fire")}
        </button>
      );
      break;
    case "other":
      control = <ParamValue param={param} />;
      break;
  }
  if (namesDevice(param)) {
    control = <DeviceChoice host={host} node={node} param={param} otherwise={control} onEdit={edit} />;
  }
  if (kind !== "event") {
    control = <Editing otherwise={<ParamValue param={param} />}>{control}</Editing>;
  }
  // A button isn't labelled by what it stands in: a click beside it must not fire.
  const Frame = kind === "event" || kind === "keyCode" ? "div" : "label";
  return (
    <Frame class="input" title={`${param.name}, ${param.id}`}>
      <span class="output-name">{param.display}</span>
      {control}
      <LinkSources host={host} node={node} input={param.id} />
      {error !== null && (
        <span class="input-error" role="alert">
          {error}
        </span>
      )}
    </Frame>
  );
}

/** By what an input's control is found, and whether it can be used. */
function inputProps(node: string, param: Param) {
  return { disabled: !param.available, "data-node": node, "data-param": param.id };
}

function ParamValue({ param }: { param: Param }) {
  const text = kindOf(param) === "keyCode" ? { text: keyValueText(param.int) } : shownValue(param, param);
  return (
    <span class="value-text" data-param-value={param.id}>
      {text.text === "" ? <span class="none">{t("empty")}</span> : <LongText {...text} />}
    </span>
  );
}

/**
 * The key that a key check node looks for. It's set by pressing it, together with the modifiers that it needs; leaving
 * the field without a press changes nothing.
 */
function KeyCombination({ node, param, onEdit }: ControlProps) {
  const [capture, setCapture] = useState<CombinationCapture | null>(null);
  const [held, setHeld] = useState<readonly number[]>([]);

  const finish = (value: number | null) => {
    if (value !== null) {
      onEdit({ int: value });
      setCapture(null);
    }
    setHeld(value === null ? (capture?.held ?? []) : []);
  };
  const follow = (step: (event: KeyboardEvent) => number | null) => (event: KeyboardEvent) => {
    if (capture !== null) {
      event.preventDefault();
      event.stopPropagation();
      finish(step(event));
    }
  };
  const text = keyValueText(param.int);
  const waiting = held.length > 0 ? `${held.map(virtualKeyName).join(" + ")} + …` : t("Press the keys…");
  return (
    <span class="combination">
      <button
        type="button"
        class={capture !== null ? "combination-field capturing" : "combination-field"}
        {...inputProps(node, param)}
        data-key-value={param.int}
        onClick={() => setCapture(capture ?? new CombinationCapture())}
        onBlur={() => {
          setCapture(null);
          setHeld([]);
        }}
        onKeyDown={follow((event) => capture!.down(event))}
        onKeyUp={follow((event) => capture!.up(event))}
      >
        {capture !== null ? waiting : text === "" ? <span class="none">{t("none: click and press")}</span> : text}
      </button>
      {text !== "" && (
        <LeavingButton
          class="icon-button"
          title={t("No key")}
          aria-label={t("{input}: no key", { input: param.display })}
          disabled={!param.available}
          onClick={() => onEdit({ int: 0 })}
        >
          ×
        </LeavingButton>
      )}
    </span>
  );
}

interface ControlProps {
  node: string;
  param: Param;
  onEdit(value: EditValue): Promise<boolean>;
  onError(error: string | null): void;
}

function Switch({ node, param, onEdit }: ControlProps) {
  return (
    <input
      type="checkbox"
      role="switch"
      class="switch"
      checked={param.int !== 0}
      {...inputProps(node, param)}
      onChange={(event) => onEdit({ int: event.currentTarget.checked ? 1 : 0 })}
    />
  );
}

function Choice({ node, param, onEdit }: ControlProps) {
  return (
    <select
      value={String(param.int)}
      {...inputProps(node, param)}
      onChange={(event) => onEdit({ choice: Number(event.currentTarget.value) })}
    >
      {param.choices.map((choice, index) => (
        <option key={index} value={String(index)}>
          {choice}
        </option>
      ))}
    </select>
  );
}

/**
 * What is typed into a field stays there until it's taken (Enter, or the field loses the focus), whatever the host
 * tells meanwhile; Escape takes it back.
 */
function useDraft(current: string, { param, onError }: ControlProps, commit: (draft: string) => Promise<boolean>) {
  const [draft, setDraft] = useState<string | null>(null);
  const change = (changed: string | null) => {
    setDraft(changed);
    onError(null);
  };
  useLayoutEffect(() => {
    if (!param.available) {
      change(null); // nobody could take it back
    }
  }, [param.available]);
  const finish = async () => {
    if (draft !== null && (await commit(draft))) {
      setDraft((now) => (now === draft ? null : now));
    }
  };
  return {
    value: draft ?? current,
    onInput: (event: { currentTarget: HTMLInputElement }) => change(event.currentTarget.value),
    onBlur: () => (draft === current ? setDraft(null) : finish()),
    onKeyDown: (event: KeyboardEvent & { currentTarget: HTMLInputElement }) => {
      if (event.isComposing) {
        return;
      }
      if (event.key === "Enter") {
        void finish();
      } else if (event.key === "Escape") {
        change(null);
      }
    },
  };
}

function NumberField({ kind, ...props }: ControlProps & { kind: ParamKind }) {
  const { node, param, onEdit, onError } = props;
  const field = useDraft(kind === "float" ? shortestFloat(param.float) : String(param.int), props, async (draft) => {
    const value = parseNumber(draft, kind, param.range);
    if (value === null) {
      onError(wantedNumber(kind, boundsOf(param.range)));
    }
    return value !== null && onEdit(value);
  });
  return (
    <input
      type="text"
      inputMode={kind === "float" ? "decimal" : "numeric"}
      class="field field-number"
      {...inputProps(node, param)}
      {...field}
    />
  );
}

function wantedNumber(kind: ParamKind, bounds: { min: number; max: number } | null): string {
  if (bounds === null) {
    return kind === "float" ? t("A number, please.") : t("A whole number, please.");
  }
  return kind === "float"
    ? t("A number from {min} to {max}, please.", bounds)
    : t("A whole number from {min} to {max}, please.", bounds);
}

/** Of a text that the host cut the end isn't known: it can be replaced, not edited. */
function TextField(props: ControlProps) {
  const { node, param, onEdit } = props;
  const isCut = param.length !== undefined;
  const field = useDraft(isCut ? "" : param.string, props, (draft) => onEdit({ string: draft }));
  return (
    <input
      type="text"
      class="field"
      spellcheck={false}
      placeholder={isCut ? t("{characters}; typing replaces them", { characters: characters(param.length!) }) : undefined}
      {...inputProps(node, param)}
      {...field}
    />
  );
}
