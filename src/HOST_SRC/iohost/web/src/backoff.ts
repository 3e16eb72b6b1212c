const FIRST_DELAY_MS = 500;
const LONGEST_DELAY_MS = 8000;

/** How long to wait before reconnecting, after this many attempts in a row that failed. */
export function reconnectDelay(failures: number): number {
  return Math.min(FIRST_DELAY_MS * 2 ** Math.min(failures, 10), LONGEST_DELAY_MS);
}
