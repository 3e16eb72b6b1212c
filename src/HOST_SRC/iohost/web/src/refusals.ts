// The host says in English why it refuses a request: what that means in Chinese, and how it's shown.
import { textsByFormat } from "./formats.ts";
import { language, t, type Label } from "./i18n.ts";
import type { Reply } from "./messages.ts";

/** What the host finds wrong with a field, which it names in front. */
const OF_A_FIELD: Record<string, string> = {
  "is missing": "缺少此项",
  "is empty": "不能为空",
  "must be an object": "必须是对象",
  "must be a list": "必须是列表",
  "must be a string": "必须是字符串",
  "must be a string or null": "必须是字符串或 null",
  "must be an array or null": "必须是数组或 null",
  "must be an array of %s numbers": "必须是含 %s 个数字的数组",
  "must be an integer": "必须是整数",
  "must be a whole number": "必须是非负整数",
  "must be a number": "必须是数字",
  "must be a number or a string": "必须是数字或字符串",
  "must be a string, a number, true, false or null": "必须是字符串、数字、true、false 或 null",
  "must be true or false": "必须是 true 或 false",
  "must be 0 or 1": "必须是 0 或 1",
  "must be null or missing": "必须是 null 或不填",
  "must be from 0.001 to 86400 seconds": "必须在 0.001 到 86400 秒之间",
  "must be the text of a key or the number of a pointer, hand or virtual key": "必须是按键的文本，或指针、手柄、虚拟键的编号",
  "exactly one of them must be there": "必须有且只有其中一项",
  "is outside the signed 32-bit range": "超出有符号 32 位整数的范围",
  "is outside the unsigned 32-bit range": "超出无符号 32 位整数的范围",
  "is outside the range of a 32-bit float": "超出 32 位浮点数的范围",
  "is longer than %s": "超过 %s",
  "not JSON, from byte %s on": "从第 %s 字节起不是 JSON",
  "not JSON, a number is out of range": "不是 JSON：有数字超出范围",
  "nested deeper than %s levels": "嵌套超过 %s 层",
  "can't be part of a batch": "不能作为批处理的一部分",
  "doesn't go with frame, which evaluates the whole scene": "不能与 frame 同时使用：frame 对整个场景求值",
  "this session's are %s": "此会话的是 %s",
  "names parameter %s twice": "参数 %s 重复",
  "names no place": "没有指明位置",
  "must be the name of a file in the folder of scenes": "必须是场景文件夹中的文件名",
  "no part of it may begin with a dot": "任何一级名称都不能以点开头",
  "is out of reach here": "在此无法访问",
  "can't be read": "无法读取",
  "can't be written": "无法写入",
  "is there already": "已存在",
  "isn't a regular file": "不是普通文件",
  "isn't a scene of this version": "不是此版本的场景",
  "is larger than 256 MiB": "大于 256 MiB",
};

/** By the format that the host writes a refusal with, behind the field that it is about. */
export const REFUSALS: Record<string, string> = {
  ...OF_A_FIELD,

  // Values
  "%s is none of %s": "%s 不在可选值 %s 之中",
  "%s isn't a GUID": "%s 不是 GUID",
  "%s isn't a port": "%s 不是端口号",
  "%s isn't a numeric address": "%s 不是数字 IP 地址",
  "%s isn't a numeric address and a port, as in 127.0.0.1:9000": "%s 不是数字 IP 地址加端口号，例如 127.0.0.1:9000",
  "%s isn't a virtual-key code": "%s 不是虚拟键码",
  "the key %s isn't a parameter id": "键 %s 不是参数 ID",

  // Operations
  "unknown op %s": "未知操作 %s",
  "there is no payload kind %s": "没有 %s 这种数据",
  "release_held is for connections of the page": "release_held 只用于页面的连接",
  "the session has ended": "会话已结束",
  "the host reads the network by itself here": "主机在此自行读取网络",
  "this program reads recordings of version %s": "本程序只读取版本 %s 的录制",
  "there is nothing to undo": "没有可撤销的步骤",
  "there is nothing to redo": "没有可重做的步骤",
  "the scene has no such state there": "场景已没有这个状态",

  // Nodes
  "there is no node %s": "没有节点 %s",
  "there is no note whose text could stay": "便签已不存在",
  "there is a node %s already": "已有节点 %s",
  "there is no such link": "没有此连线",
  "there is no parameter %s among the node's %s": "没有参数 %s（节点的 %s）",
  "the node has no parameter group that could hold parameter %s": "节点没有可容纳参数 %s 的参数组",
  "the node has no parameter %s": "节点没有参数 %s",
  "parameter %s isn't an event input": "参数 %s 不是事件输入",
  "parameter %s is dropped": "参数 %s 已去掉",
  "the node %s would read another kind in a record of device %s": "节点 %s 会从设备 %s 的记录中读取另一种数据",
  "this connection holds %s keys and buttons": "此连接已按住 %s 个按键和按钮",
  "the module makes no such node": "模块不创建此类型的节点",
  "the module makes no node of the type %s": "模块不创建类型为 %s 的节点",
  "the module raised %s": "模块抛出异常 %s",

  // Objects
  "there is no clip %s": "没有素材 %s",
  "the clip has no object %s": "素材中没有物体 %s",
  "the clip has an object %s already": "素材中已有物体 %s",

  // Devices
  "there is no device %s": "没有设备 %s",
  "there is a device %s already": "已有设备 %s",
  "device %s has no address": "设备 %s 没有地址",
  "device %s takes no texts: its parser is %s": "设备 %s 不接收文本：解析器为 %s",
  "the item is too long": "内容过长",
  "the queue is full": "队列已满",

  // Files
  "there is no folder of scenes": "没有场景文件夹",
  "the folder of scenes can't be read": "无法读取场景文件夹",
  "the host ends": "主机正在结束",
  "there is a folder of scenes for connections only": "场景文件夹只供连接使用",
  "the scene is larger than 256 MiB": "场景大于 256 MiB",
  "another scene is being transferred": "正在传输另一个场景",
  "the text is longer than %s bytes": "文本超过 %s 字节",
  "the text isn't UTF-8": "文本不是 UTF-8",
  "the request's body can't be read: %s": "无法读取请求正文：%s",
  "nothing unsaved was left": "没有留下未保存的内容",
};

/** As textsByFormat(), with a device's address in brackets as Chinese has it. */
export function chineseByFormat(table: Record<string, string>): (text: string) => string | null {
  const inChinese = textsByFormat(table);
  return (text) => inChinese(text)?.replace(/(设备 \d+ ".*?") at ([^\s：]+) ?/, "$1（$2）") ?? null;
}

const inChinese = chineseByFormat(REFUSALS);
const ofAField = chineseByFormat(OF_A_FIELD);

/** The page's names of fields that somebody can fill in wrongly. */
const LABELS: Record<string, Label> = {
  file: "File",
  scene: "File",
  device: "Number",
  "payload.device": "Device number",
  drop_after: "Drop after (s)",
  text: "Test text",
  int: "Value",
  float: "Value",
};

/** What another page's change leads to. */
const IN_OTHER_WORDS: Record<string, string> = {
  "the scene has no such state there": "the scene has no such state any more",
  "there is no note whose text could stay": "the note is gone",
};

/** A refusal in the reader's language, with the field only where the rest doesn't tell. A text that no format fits stays. */
export function refusalText(error: string): string {
  const isChinese = language.value === "zh";
  const [, field = "", problem = ""] = /^([^"]*?): (.*)$/s.exec(error) ?? [];
  const chinese = inChinese(problem);
  if (chinese === null) {
    return isChinese ? (inChinese(error) ?? error) : error;
  }
  const told = isChinese ? chinese : capitalised(IN_OTHER_WORDS[problem] ?? problem);
  const isPlaceInFile = /^(?:file|scene)\./.test(field);
  if (!isPlaceInFile && ofAField(problem) === null) {
    return told;
  }
  const label = LABELS[field.replace(/^requests\[\d+\]\./, "")];
  const isSentence = /^(?:is|isn't|must|can't) /.test(problem);
  return t(isSentence ? "{field} {problem}" : "{field}: {problem}", {
    field: label === undefined ? field : t(label),
    problem: isChinese ? chinese : problem,
  });
}

function capitalised(text: string): string {
  return text[0]!.toUpperCase() + text.slice(1);
}

/** The reply, with its refusal in the reader's language. */
export function inReadersLanguage(reply: Reply): Reply {
  return reply.ok ? reply : { ...reply, error: refusalText(reply.error) };
}
