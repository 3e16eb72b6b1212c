import type { RefObject } from "preact";
import { useLayoutEffect } from "preact/hooks";
import { takesKeys } from "../desk.ts";

/** What comes chosen was just made: keys go on with it, unless somebody types elsewhere. */
export function useFocusWhenMade(part: RefObject<HTMLElement | null>, isChosen: boolean): void {
  useLayoutEffect(() => {
    if (isChosen && !takesKeys(document.activeElement)) {
      part.current!.closest<HTMLElement>(".react-flow__node")!.focus({ preventScroll: true });
    }
  }, []);
}
