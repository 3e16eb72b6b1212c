import type { RefObject } from "preact";
import { useLayoutEffect, useState } from "preact/hooks";

/** So that what is scrolled to is there already. */
const AHEAD_PX = 3000;
const AHEAD = `${AHEAD_PX}px`;

const waiting = new WeakMap<Element, () => void>();
const observer = new IntersectionObserver(
  (entries) => entries.filter(({ isIntersecting }) => isIntersecting).forEach(({ target }) => waiting.get(target)?.()),
  { rootMargin: AHEAD, scrollMargin: AHEAD },
);

/** Whether an element was in sight, or close below, at any time. */
export function useSeen(element: RefObject<HTMLElement | null>): boolean {
  const [isSeen, setSeen] = useState(false);
  useLayoutEffect(() => {
    const one = element.current!;
    // The observer tells only after a paint.
    if (one.getBoundingClientRect().top < innerHeight + AHEAD_PX) {
      setSeen(true);
      return undefined;
    }
    const leave = () => observer.unobserve(one);
    waiting.set(one, () => {
      leave();
      setSeen(true);
    });
    observer.observe(one);
    return leave;
  }, []);
  return isSeen;
}
