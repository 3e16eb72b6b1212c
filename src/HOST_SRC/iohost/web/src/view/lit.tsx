// Lights that something turns on for a moment. They stay the same elements, since one made anew costs more, and don't fade:
// what fades is a layer of its own to the browser, which costs more than to paint it.
import type { RefObject } from "preact";
import { useLayoutEffect, useRef } from "preact/hooks";

const LIT_MS = 500;
/** Where less motion is wished, and for the colour of what has just happened, which doesn't flash. */
export const CALM_LIT_MS = 2000;
const calm = matchMedia("(prefers-reduced-motion: reduce)");

/** What was longer ago when it's drawn lights nothing any more. */
const FRESH_MS = 1000;

/** Until when those that are lit are, by `performance.now()`, which nobody sets. */
const lit = new Map<Element, number>();
let timer: ReturnType<typeof setTimeout> | undefined;

/** Marks an element with `data-lit` for a moment whenever there is another last time that something happened. */
export function useLit(light: RefObject<Element | null>, last: number | null): void {
  useLayoutEffect(() => {
    if (last !== null && Date.now() - last < FRESH_MS) {
      const lasts = calm.matches ? CALM_LIT_MS : LIT_MS;
      light.current!.setAttribute("data-lit", "");
      lit.set(light.current!, performance.now() + lasts);
      timer ??= setTimeout(putOut, lasts);
    }
  }, [last]);
}

function putOut(): void {
  const now = performance.now();
  for (const [light, until] of lit) {
    if (until <= now) {
      light.removeAttribute("data-lit");
      lit.delete(light);
    }
  }
  timer = lit.size === 0 ? undefined : setTimeout(putOut, Math.min(...lit.values()) - now);
}

/** Flashes when something happened. */
export function EventLamp({ last }: { last: number | null }) {
  const lamp = useRef<HTMLSpanElement>(null);
  useLit(lamp, last);
  return <span class="event-lamp" ref={lamp} aria-hidden="true" />;
}
