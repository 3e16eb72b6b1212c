// Tests that end what they opened: hosts, browsers, pages, connections, devices, folders. What was opened before the
// first of a file's tests is for all of them.
import { after, afterEach, beforeEach, test as run } from "node:test";
import { LONGEST_WAIT_MS } from "./host.mjs";
import { endOpened, opened } from "./opened.mjs";

export { after, afterEach, before, beforeEach } from "node:test";

/** One that takes too long is ended by itself, so that it's named and the others run. */
export const test = (name, ...rest) => run(name, { timeout: 2 * LONGEST_WAIT_MS, ...(rest.length > 1 ? rest[0] : {}) }, rest.at(-1));

let common;
beforeEach(() => (common ??= opened.length));
afterEach(() => endOpened(common));
after(() => endOpened());
