import type { ButtonHTMLAttributes } from "preact";
import { useLayoutEffect, useRef } from "preact/hooks";

/** A button of the inspector that goes with what it does. The focus goes on to the field beside it then, or to the inspector. */
export function LeavingButton(props: ButtonHTMLAttributes) {
  const button = useRef<HTMLButtonElement>(null);
  useLayoutEffect(() => {
    const left = button.current!;
    return () => {
      if (left === document.activeElement) {
        const field = left.closest(".input")?.querySelector<HTMLElement>("[data-param]:enabled");
        (field ?? left.closest<HTMLElement>(".nodes"))?.focus({ preventScroll: true });
      }
    };
  }, []);
  return <button type="button" {...props} ref={button} />;
}
