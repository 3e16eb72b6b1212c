// Tests that end what they opened: hosts, browsers, pages, connections, devices, folders. What was opened before the
// first of a file's tests is for all of them.
import { after, afterEach, beforeEach } from "node:test";
import { endOpened, opened } from "./opened.mjs";

export { after, afterEach, before, beforeEach, test } from "node:test";

let common;
beforeEach(() => (common ??= opened.length));
afterEach(() => endOpened(common));
after(() => endOpened());
