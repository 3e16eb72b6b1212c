import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { opened } from "./opened.mjs";

/** A folder that goes with its test. */
export function temporaryFolder() {
  const folder = mkdtempSync(join(tmpdir(), "iohost-"));
  opened.push(async () => rmSync(folder, { recursive: true, force: true }));
  return folder;
}
