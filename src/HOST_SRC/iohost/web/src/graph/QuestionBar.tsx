import type { Desk } from "../desk.ts";
import { t } from "../i18n.ts";
import { Answers } from "../view/Answers.tsx";
import "./questionBar.css";

/** Asks before something is taken away. */
export function QuestionBar({ desk }: { desk: Desk }) {
  const question = desk.question.value;
  if (question === null) {
    return null;
  }
  const close = () => (desk.question.value = null);
  return (
    <div
      key={question} // one that's asked again takes the focus again
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
      <Answers
        yes={question.yes}
        onYes={() => {
          close();
          question.act();
        }}
        no={t("Leave it")}
        onNo={close}
      />
    </div>
  );
}
