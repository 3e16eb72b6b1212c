// The host's own sources, to hold the page's tables to the texts in them.
import { readdirSync, readFileSync } from "node:fs";
import { join } from "node:path";

export const HOST = "..";

/** The texts of the C++ files in folders, named from the host's. */
export function hostSources(...folders: string[]): string[] {
  return folders.flatMap((folder) =>
    readdirSync(join(HOST, folder), { recursive: true, encoding: "utf8" })
      .filter((name) => /\.(cpp|h)$/.test(name))
      .map((name) => readFileSync(join(HOST, folder, name), "utf8")),
  );
}

/** The last argument of a call whose arguments begin there. */
export function lastArgument(source: string, begin: number): string {
  let depth = 0;
  let argument = "";
  for (const [token] of source.slice(begin).matchAll(/"(?:[^"\\]|\\.)*"|[^]/g)) {
    depth += "([{".includes(token) ? 1 : ")]}".includes(token) ? -1 : 0;
    if (depth < 0) {
      break;
    }
    argument = token === "," && depth === 0 ? "" : argument + token;
  }
  return argument.trim();
}
