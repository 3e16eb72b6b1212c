// What is open, as functions that end it, in the order in which it was opened. Tests end what they opened (test.mjs).
export const opened = [];

/** Ends all but the first ones, the last one first; fails with what went wrong first. */
export async function endOpened(from = 0) {
  const failures = [];
  for (const end of opened.splice(from).reverse()) {
    await end().catch((failure) => failures.push(failure));
  }
  if (failures.length > 0) {
    throw failures[0];
  }
}
