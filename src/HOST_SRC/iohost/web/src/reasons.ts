// The host says in English why a connection isn't there or what came wasn't taken: what its words mean in Chinese.
import { language } from "./i18n.ts";

export const REASONS: Record<string, string> = {
  "closed by the device": "设备关闭了连接",
  "out of step": "帧失步",

  // Frames
  "bad magic": "帧头错误",
  "oversized": "帧过长",
  "wrong version": "版本不符",
  "unknown command": "未知命令",
  "malformed": "格式错误",
  "truncated": "不完整",

  // Lines of text
  "empty": "空行",
  "too long": "过长",
  "not UTF-8": "不是 UTF-8",
  "cut off": "被截断",

  // Broadcasts
  "not framed": "没有帧标记",
  "not text": "不是文本",
  "not the element Broadcast": "不是 Broadcast 元素",
  "attribute missing": "缺少属性",
};

/** A reason in the reader's language, which may be several in a row; the system's own stay as they are. */
export function reasonText(reason: string): string {
  return language.value === "zh" ? reason.split(": ").map((part) => REASONS[part] ?? part).join(": ") : reason;
}
