// The host has its names of types, pins and choices in one language (`--texts`); here they are in the reader's.
import EN from "../../../../../app/Config/Texts/en.json";
import ZH from "../../../../../app/Config/Texts/zh.json";
import type { NodeView } from "./host.ts";
import { language, type Language } from "./i18n.ts";
import type { ParamGroup } from "./messages.ts";

const keys = Object.keys(EN) as (keyof typeof EN & keyof typeof ZH)[];
/** By the text in the other language. Where two keys have the same English, the later one's Chinese is taken. */
const TEXTS: Record<Language, ReadonlyMap<string, string>> = {
  en: new Map(keys.map((key) => [ZH[key], EN[key]])),
  zh: new Map(keys.map((key) => [EN[key], ZH[key]])),
};

/** A text of the host, which may end in a number, in the reader's language; one that the tables don't have stays as it is. */
export function hostText(text: string): string {
  const texts = TEXTS[language.value];
  const [, words = "", number = ""] = /^(.*?)(\d*)$/s.exec(text)!;
  const known = texts.get(words);
  return texts.get(text) ?? (known === undefined ? text : known + number);
}

const made: Record<Language, WeakMap<NodeView, NodeView>> = { en: new WeakMap(), zh: new WeakMap() };

/** A node with its pins in the reader's language: the same one each time. Its type's name stays the host's, as its log has it. */
export function withTexts(node: NodeView): NodeView {
  const nodes = made[language.value];
  const { inputs, outputs } = node.details;
  let shown = nodes.get(node);
  if (shown === undefined) {
    const details = { ...node.details, inputs: inputs.map(groupWithTexts), outputs: outputs.map(groupWithTexts) };
    nodes.set(node, (shown = { ...node, details }));
  }
  return shown;
}

function groupWithTexts(group: ParamGroup): ParamGroup {
  const params = group.params.map((param) => ({ ...param, display: hostText(param.display), choices: param.choices.map(hostText) }));
  return { ...group, display: hostText(group.display), params };
}
