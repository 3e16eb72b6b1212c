import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { afterEach, test } from "node:test";
import { language } from "../src/i18n.ts";
import { REASONS, reasonText } from "../src/reasons.ts";
import { HOST } from "./hostSources.ts";

/** The texts in what an expression finds in a source. */
const textsIn = (file: string, part: RegExp) =>
  [...(part.exec(readFileSync(join(HOST, file), "utf8"))?.[0] ?? "").matchAll(/"([^"]*)"/g)].map(([, text]) => text!.replace(/: $/, ""));

afterEach(() => {
  language.value = "en";
});

test("each of the host's reasons has a Chinese text, and no other text has one", () => {
  const reasons = [
    ...textsIn("network/ItemReader.cpp", /"closed [^;]*/),
    ...textsIn("network/ItemReader.cpp", /"out of [^;]*/),
    ...textsIn("network/TextLines.h", /NAMES\(ELineRefusal[^)]*/),
    ...textsIn("../VEKRenderx/PlayControlFrame.cpp", /NAMES\[\] = [^}]*/),
    ...textsIn("../VEKRenderx/BroadcastDatagram.cpp", /NAMES\[\] = [^}]*/),
  ];
  assert.deepEqual(Object.keys(REASONS).sort(), reasons.sort());
});

test("reasons are told in the reader's language, and the system's as they are", () => {
  assert.equal(reasonText("out of step: bad magic"), "out of step: bad magic");
  language.value = "zh";
  assert.equal(reasonText("out of step: bad magic"), "帧失步: 帧头错误");
  assert.equal(reasonText("Connection refused"), "Connection refused");
});
