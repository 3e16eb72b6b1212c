import { useEffect, useRef, useState } from "preact/hooks";
import "simple-keyboard/build/css/index.css";
import { language, t } from "../i18n.ts";
import { ScreenKeyboard } from "../input/screenKeyboard.ts";
import { VirtualKey } from "../input/virtualKeys.ts";
import { NodeType, nodesOf, TextFieldPin } from "../nodeTypes.ts";
import { cutText } from "../texts.ts";
import "./keyboard.css";
import { LongText } from "./LongText.tsx";
import type { PanelProps } from "./panels.ts";
import { usePhone } from "./usePhone.ts";

/** The on-screen keyboard. It types into one text field node of the scene, whose text is shown above it. */
export function KeyboardPanel({ host }: PanelProps) {
  const isPhone = usePhone();
  const place = useRef<HTMLDivElement>(null);
  const keyboard = useRef<ScreenKeyboard | null>(null);
  const nodes = nodesOf(host.nodes.value, NodeType.textField);
  const [chosen, setChosen] = useState<string | null>(null);
  const target = nodes.find(({ node }) => node === chosen) ?? nodes[0];
  const targetNode = useRef(target?.node);
  targetNode.current = target?.node;
  const [lastName, setLastName] = useState<string | null>(null);
  const output = target && host.values.of(target.node, TextFieldPin.output).value;
  const text = cutText({ text: output?.string ?? "", length: output?.length });

  useEffect(() => {
    const made = new ScreenKeyboard(place.current!, {
      type: (name) => {
        setLastName(name);
        if (targetNode.current !== undefined) {
          host.typeKey(targetNode.current, TextFieldPin, name);
        }
      },
      clear: () => {
        setLastName(null);
        if (targetNode.current !== undefined) {
          void host.requests.trigger(targetNode.current, TextFieldPin.clear);
        }
      },
      toggleCapsLock: () => host.keyboard.setToggled(VirtualKey.capsLock, !host.keyboard.isToggled(VirtualKey.capsLock)),
      keys: (down) => host.keyboard.setDown(made, down),
    });
    keyboard.current = made;
    const stopHolding = host.holders.add(made);
    const stopFollowing = host.capsLock.subscribe((on) => (made.capsLock = on));
    const stopTranslating = language.subscribe(() => made.draw());
    return () => {
      stopTranslating();
      stopFollowing();
      stopHolding();
      made.detach();
    };
  }, [host]);

  return (
    <>
      <div class="panel-head keyboard-head">
        {nodes.length === 0 ? (
          <span class="hint">{t("The scene has no text field node: keys set the keyboard state only.")}</span>
        ) : (
          <label class="keyboard-target">
            {t("Types into")}
            <select value={target!.node} onChange={(event) => setChosen(event.currentTarget.value)}>
              {nodes.map(({ node, graph }) => (
                <option key={node} value={node}>
                  {graph}
                </option>
              ))}
            </select>
          </label>
        )}
        <output class="keyboard-text" aria-label={t("Text")} data-keyboard-text={text.text}>
          <LongText {...text} />
          <span class="keyboard-caret" aria-hidden="true" />
        </output>
        <span class="hint keyboard-last">
          {t("Key name")} {lastName === null && "–"}
          {lastName !== null && <code data-key-name={lastName}>{lastName}</code>}
        </span>
      </div>
      {/* It's moved by keys, too, where it's wider than the window. */}
      <div class="keyboard-place" role="group" aria-label={t("On-screen keyboard")} tabIndex={isPhone ? 0 : undefined}>
        <div class="screen-keyboard" ref={place} />
      </div>
    </>
  );
}
