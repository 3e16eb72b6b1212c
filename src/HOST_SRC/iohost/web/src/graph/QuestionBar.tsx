import { useEffect, useRef } from "preact/hooks";
import type { Desk } from "../desk.ts";
import { t } from "../i18n.ts";

/** Asks before something is taken away. */
export function QuestionBar({ desk }: { desk: Desk }) {
  const yes = useRef<HTMLButtonElement>(null);
  const question = desk.question.value;
  useEffect(() => yes.current?.focus(), [question]);
  if (question === null) {
    return null;
  }
  const close = () => (desk.question.value = null);
  return (
    <div
      class="question"
      role="alertdialog"
      aria-label={question.text}
      onKeyDown={(event) => {
        if (event.key === "Escape") {
          close();
        }
      }}
    >
      <span>{question.text}</span>
      <button
        type="button"
        ref={yes}
        onClick={() => {
          close();
          question.act();
        }}
      >
        {question.yes}
      </button>
      <button type="button" onClick={close}>
        {t("Leave it")}
      </button>
    </div>
  );
}
