import assert from "node:assert/strict";
import { readdirSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { afterEach, test } from "node:test";
import { language } from "../src/i18n.ts";
import { othersStepText, stepText } from "../src/steps.ts";

afterEach(() => {
  language.value = "en";
});

const IN_CHINESE: [name: string, op: string, of: string | undefined, text: string][] = [
  ["Add Mouse 1", "create", "Mouse 1", "添加 Mouse 1"],
  ["Add object Lamp", "create", "object Lamp", "添加 object Lamp"],
  ["Add object Lamp", "object", "Lamp", "添加物体 Lamp"],
  ["Change object Lamp", "change_object", "Lamp", "更改物体 Lamp"],
  ["Remove object Lamp", "remove_object", "Lamp", "移除物体 Lamp"],
  ["Add device Wall", "device", "Wall", "添加设备 Wall"],
  ["Change device Wall", "device", "Wall", "更改设备 Wall"],
  ["Remove device Wall", "remove_device", "Wall", "移除设备 Wall"],
  ["Change devices", "devices", undefined, "更改设备列表"],
  ["Change notes", "place", undefined, "更改便签"],
  ["Move 3 nodes", "place", "3 nodes", "移动 3 个节点"],
  ["Move Mouse 1", "place", "Mouse 1", "移动 Mouse 1"],
  ["Rename Mouse 1 to Pointer", "rename", "Mouse 1 to Pointer", "重命名 Mouse 1 → Pointer"],
  ["Link Mouse 1 to Net send 1", "link", "Mouse 1 to Net send 1", "连接 Mouse 1 → Net send 1"],
  ["Unlink Mouse 1 from Net send 1", "unlink", "Mouse 1 from Net send 1", "断开 Mouse 1 → Net send 1"],
  ["Open demo.json", "load", "demo.json", "打开 demo.json"],
  ["Open a scene", "load", undefined, "打开场景"],
  ["Recover demo.json", "load", "demo.json", "恢复 demo.json"],
  ["Recover a scene", "load", undefined, "恢复场景"],
  ["Add a note", "batch", undefined, "添加 1 个便签"],
  ["Delete 3 nodes", "batch", undefined, "删除 3 个节点"],
  ["Delete a note", "batch", undefined, "删除 1 个便签"],
  ["Delete 2 notes", "batch", undefined, "删除 2 个便签"],
  ["Delete 3 nodes and 2 notes", "batch", undefined, "删除 3 个节点、2 个便签"],
  ["Duplicate a note", "batch", undefined, "创建副本：1 个便签"],
  ["Paste Mouse 1 and a note", "batch", undefined, "粘贴 Mouse 1、1 个便签"],
  ["Choose device Wall", "batch", undefined, "选择设备 Wall"],
  ["Begin with keyboard to text", "batch", undefined, "从“键盘到文本”开始"],
  ["Change the scene", "batch", undefined, "更改场景"],
  ["Lights for act 2", "batch", undefined, "Lights for act 2"],
];

test("a step's whole name is told in the reader's language", () => {
  for (const [name, op, of, text] of IN_CHINESE) {
    const step = { name, op, ...(of !== undefined && { of }) };
    assert.equal(stepText(step), name);
    language.value = "zh";
    assert.equal(stepText(step), text);
    language.value = "en";
  }
});

test("a step that changed a parameter says which, as the panel does", () => {
  const step = { name: "Change Net send 1", op: "edit", of: "Net send 1", param: "Clip name" };
  assert.equal(stepText(step), "Change Net send 1 · Clip name");
  language.value = "zh";
  assert.equal(stepText(step), "更改 Net send 1 · 素材名称");
});

test("what others undo, do again, or take away is told, and no other step of theirs", () => {
  const told = (name: string, was: "taken" | "undone" | "redone" = "taken") => othersStepText({ was, step: { name, op: "batch" } });
  assert.equal(told("Move Mouse 1", "undone"), "Undone elsewhere: Move Mouse 1");
  assert.equal(told("Move Mouse 1", "redone"), "Done again elsewhere: Move Mouse 1");
  assert.equal(told("Move Mouse 1"), null);
  for (const name of ["Delete 3 nodes", "Unlink", "Remove device Wall", "Open show 2.json", "Recover a scene"]) {
    assert.equal(told(name), `Elsewhere: ${name}`);
  }
});

test("every batch of the page has a name in the reader's language", () => {
  const sources = readdirSync("src", { recursive: true, encoding: "utf8" })
    .filter((name) => /\.tsx?$/.test(name))
    .map((name) => readFileSync(join("src", name), "utf8"));
  const names = sources.flatMap((source) => [...source.matchAll(/\bbatch\(\s*[`"]([^`"]*)[`"]/g)]).map(([, name]) => name!);
  assert.ok(names.length > 3);
  language.value = "zh";
  for (const name of names.map((one) => one.replace("${verb}", "Paste"))) {
    assert.notEqual(stepText({ name, op: "batch" }), name, name);
  }
});
