import { signal } from "@preact/signals";

/** The time, in milliseconds since 1970, once a second. */
export const clock = signal(Date.now());

setInterval(() => (clock.value = Date.now()), 1000);
