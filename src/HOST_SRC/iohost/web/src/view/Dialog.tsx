import type { ComponentChildren } from "preact";
import { useEffect, useRef } from "preact/hooks";
import { t } from "../i18n.ts";
import "./dialog.css";

interface DialogProps {
  title: string;
  error: string | null;
  onClose(): void;
  children: ComponentChildren;
}

/** A box in front of the page, which waits for an answer; Escape closes it. */
export function Dialog({ title, error, onClose, children }: DialogProps) {
  const dialog = useRef<HTMLDialogElement>(null);
  useEffect(() => dialog.current!.showModal(), []);
  return (
    <dialog ref={dialog} class="dialog" aria-label={title} onClose={onClose}>
      <header class="dialog-head">
        <h2>{title}</h2>
        <button type="button" class="icon-button" aria-label={t("Close")} onClick={() => dialog.current!.close()}>
          ×
        </button>
      </header>
      {children}
      {error !== null && (
        <p class="dialog-error" role="alert">
          {error}
        </p>
      )}
    </dialog>
  );
}
