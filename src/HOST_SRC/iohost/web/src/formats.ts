// Texts of the module and the host, recognised by the formats that they are written with: %s stands for a value.

/** What makes the table's text of one that is written with its format, with the values in their order; null of any other. */
export function textsByFormat(table: Record<string, string>): (text: string) => string | null {
  const patterns = Object.entries(table).map(([format, text]) => ({
    pattern: new RegExp(`^${format.replace(/[[\].]/g, "\\$&").replaceAll("%s", "(.*)")}$`, "s"),
    parts: text.split("%s"),
  }));
  return (text) => {
    for (const { pattern, parts } of patterns) {
      const values = pattern.exec(text)?.slice(1);
      if (values !== undefined) {
        return parts.reduce((before, part, index) => before + values[index - 1] + part);
      }
    }
    return null;
  };
}
