import { useEffect, useRef, useState } from "preact/hooks";
import type { Desk } from "../desk.ts";
import { timeOfDay } from "../format.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import type { History } from "../protocol.ts";
import { stepText } from "../steps.ts";
import "./historyList.css";

/** The steps that were done and those that can be redone; choosing one goes there. */
export function HistoryList({ host, desk }: { host: Host; desk: Desk }) {
  const [isOpen, setOpen] = useState(false);
  const [list, setList] = useState<History | null>(null);
  const box = useRef<HTMLDivElement>(null);
  const opener = useRef<HTMLButtonElement>(null);
  const state = host.scene.value;
  useEffect(() => {
    if (isOpen) {
      void host.requests.history().then(setList);
    }
  }, [isOpen, state]);
  useEffect(() => {
    const leave = (event: PointerEvent) => box.current?.contains(event.target as Element) === false && setOpen(false);
    window.addEventListener("pointerdown", leave);
    return () => window.removeEventListener("pointerdown", leave);
  }, []);

  const close = () => {
    opener.current!.focus();
    setOpen(false);
  };
  const goTo = async (op: "undo" | "redo", to: number) => {
    const taken = await host.requests.move(op, to);
    desk.tell(typeof taken === "string" ? taken : null, "");
  };
  /** What it was after so many steps. */
  const entry = (step: number, { done, states, saved }: History, text: string, time?: number) => (
    <li key={step}>
      <button
        type="button"
        class={step > done ? "history-undone" : ""}
        aria-current={step === done ? "step" : undefined}
        data-step={step}
        title={text}
        onClick={() => step !== done && void goTo(step < done ? "undo" : "redo", states[step]!)}
      >
        <span>{text}</span>
        {states[step] === saved && <em>{t("saved")}</em>}
        {time !== undefined && <time>{timeOfDay(time).slice(0, 8)}</time>}
      </button>
    </li>
  );
  return (
    <div class="history" ref={box} onKeyDown={(event) => event.key === "Escape" && close()}>
      <button type="button" aria-expanded={isOpen} onClick={() => setOpen(!isOpen)} ref={opener} data-history>
        {t("History")}
      </button>
      {isOpen && list !== null && (
        <div class="history-list" role="dialog" aria-label={t("History")}>
          <p class="hint">{t("Going back changes the scene; what nodes heard or sent isn't undone.")}</p>
          <ol>
            {list.steps.map((step, index) => entry(index + 1, list, stepText(step), step.ms)).reverse()}
            {entry(0, list, t("As far back as is kept"))}
          </ol>
        </div>
      )}
    </div>
  );
}
