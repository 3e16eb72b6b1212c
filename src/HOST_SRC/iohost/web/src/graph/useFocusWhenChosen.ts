import type { RefObject } from "preact";
import { useLayoutEffect, useRef } from "preact/hooks";
import { takesKeys } from "../desk.ts";

/**
 * Focuses a node or note that comes chosen, unless somebody types; one that is chosen later only while nothing has the focus.
 * One that `isWritten` comes with the focus in the part, which takes what is typed.
 */
export function useFocusWhenChosen(part: RefObject<HTMLElement | null>, isChosen: boolean, isWritten = false): void {
  const isNew = useRef(true);
  useLayoutEffect(() => {
    const focused = document.activeElement;
    if (isChosen && (isNew.current ? !takesKeys(focused) : focused === document.body)) {
      const whole = part.current!.closest<HTMLElement>(".react-flow__node")!;
      (isNew.current && isWritten ? part.current! : whole).focus({ preventScroll: true });
    }
    isNew.current = false;
  }, [isChosen]);
}
