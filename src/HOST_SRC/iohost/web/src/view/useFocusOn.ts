import type { RefObject } from "preact";
import { useLayoutEffect } from "preact/hooks";

type Part = RefObject<HTMLElement | null>;

/** Puts the focus on what has come. When all of that goes with the focus in it, what had the focus before gets it back. */
export function useFocusOn(first: Part, all: Part = first): void {
  useLayoutEffect(() => {
    const [part, before] = [all.current!, document.activeElement as HTMLElement | null];
    first.current!.focus();
    return () => {
      if (part.contains(document.activeElement)) {
        before?.focus({ preventScroll: true });
      }
    };
  }, []);
}
