import type { ComponentChildren } from "preact";
import type { Desk } from "../desk.ts";
import { t } from "../i18n.ts";
import "./partCard.css";

/** A device or an object in the inspector. */
export function PartCard({ desk, title, children }: { desk: Desk; title: string; children: ComponentChildren }) {
  return (
    <>
      <div class="panel-head">
        <h2 id="inspector-title">{title}</h2>
        <button type="button" class="quiet" onClick={() => desk.showAll()}>
          {t("Show all")}
        </button>
      </div>
      <div class="cards">
        <article class="panel card" data-part-card>
          {children}
        </article>
      </div>
    </>
  );
}

interface PartActions {
  submit: string;
  /** Null for a part that isn't there yet. */
  remove: (() => void) | null;
  error: string | null;
  /** What came of it. */
  done?: string;
}

/** What came of a button, beside it. */
export function Outcome({ text }: { text: string }) {
  return (
    <span class="hint" role="status" data-outcome>
      {text}
    </span>
  );
}

/** The end of a part's form. */
export function PartButtons({ submit, remove, error, done = "" }: PartActions) {
  return (
    <>
      <div class="part-row">
        <button type="submit">{submit}</button>
        {remove !== null && (
          <button type="button" onClick={remove}>
            {t("Remove")}
          </button>
        )}
        <Outcome text={done} />
      </div>
      {error !== null && (
        <p class="input-error" role="alert">
          {error}
        </p>
      )}
    </>
  );
}
