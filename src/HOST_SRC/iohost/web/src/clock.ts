import { signal } from "@preact/signals";

/** The time, in milliseconds since 1970, once a second. */
export const clock = signal(Date.now());

setInterval(() => (clock.value = Date.now()), 1000);

/** The time by now; what renders it is rendered anew once a second. */
export function timeNow(): number {
  return Math.max(clock.value, Date.now());
}
