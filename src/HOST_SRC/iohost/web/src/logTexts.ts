// The module logs in Chinese, the host in English: what their lines mean in the other language.
import { textsByFormat } from "./formats.ts";
import type { Language } from "./i18n.ts";
import { chineseByFormat, REFUSALS } from "./refusals.ts";

/** By the format that the module writes a line with. */
export const LOG_TEXTS: Record<string, string> = {
  "[%s.%s.%s]DevIOEventOccurred函数数据错误": "[%s.%s.%s] was called without an event record",
  "[%s.%s.%s]DevIOEventOccurred": "[%s.%s.%s] was called without an event record",
  "[%s.%s.%s]DevIOEventOccurred: pIOData == NULL": "[%s.%s.%s] was called without an event record",
  "[%s.%s.%s]DevIOEventOccurred:JSON解析失败": "[%s.%s.%s] was given a text that isn't JSON",
  "[%s.%s.%s]DevIOEventOccurred:不是JSON对象": "[%s.%s.%s] was given JSON that isn't an object",
  "[%s.%s.%s 触发[地图反馈]事件]": "[%s.%s.%s] fired [JSON received]",
  "[%s.%s.%s 触发[接收设备json]事件]": "[%s.%s.%s] fired [JSON received]",
  "[%s.%s.%s 触发[网络触发]事件]": "[%s.%s.%s] fired [Net trigger]",
  "[%s.%s.%s]触发事件": "[%s.%s.%s] sends",
  "[%s.%s.%s]触发发送事件": "[%s.%s.%s] sends",
  "[%s.%s.%s]找不到网络播放控制设备": "[%s.%s.%s] found no play-control device",
  "[%s.%s.%s]找不到网络播放控制设备ID": "[%s.%s.%s] has no device ID of a play-control device",
  "[%s.%s.%s]触发输出事件[按下]键盘信息为[%s]": "[%s.%s.%s] fired [Pressed] for the key [%s]",
  "[%s.%s.%s]触发输出事件[抬起]键盘信息为[%s]": "[%s.%s.%s] fired [Released] for the key [%s]",
  "[%s.%s.%s]触发输出事件[进入窗口]": "[%s.%s.%s] fired [Enter window]",
  "[%s.%s.%s]触发输出事件[离开窗口]": "[%s.%s.%s] fired [Leave window]",
  "[%s.%s.%s]触发输出事件[停留]": "[%s.%s.%s] fired [Hover]",
  "[%s.%s.%s]触发输出事件[左键按下]": "[%s.%s.%s] fired [Left pressed]",
  "[%s.%s.%s]触发输出事件[左键抬起]": "[%s.%s.%s] fired [Left released]",
  "[%s.%s.%s]触发输出事件[中键按下]": "[%s.%s.%s] fired [Middle pressed]",
  "[%s.%s.%s]触发输出事件[中键抬起]": "[%s.%s.%s] fired [Middle released]",
  "[%s.%s.%s]触发输出事件[右键按下]": "[%s.%s.%s] fired [Right pressed]",
  "[%s.%s.%s]触发输出事件[右键抬起]": "[%s.%s.%s] fired [Right released]",
  "[%s.%s.%s]触发输出事件[向上滚动]": "[%s.%s.%s] fired [Wheel up]",
  "[%s.%s.%s]触发输出事件[向下滚动]": "[%s.%s.%s] fired [Wheel down]",
  "[%s.%s.%s]触发输出事件[开始拖动]": "[%s.%s.%s] fired [Drag start]",
  "[%s.%s.%s]触发输出事件[结束拖动]": "[%s.%s.%s] fired [Drag end]",
  "[%s.%s.%s]触发输出事件[单击]": "[%s.%s.%s] fired [Single tap]",
  "[%s.%s.%s]触发输出事件[向左滑动]": "[%s.%s.%s] fired [Swipe left]",
  "[%s.%s.%s]触发输出事件[向右滑动]": "[%s.%s.%s] fired [Swipe right]",
  "[%s.%s.%s]触发输出事件[向上滑动]": "[%s.%s.%s] fired [Swipe up]",
  "[%s.%s.%s]触发输出事件[向下滑动]": "[%s.%s.%s] fired [Swipe down]",
  "[%s]触发输入事件[输入事件]": "[%s] took [Input event]",
  "[%s]触发输入事件[清除]": "[%s] took [Clear]",
  "没有VR手柄数据": "A VR event came without data",
};

/** By the format that the host writes a line with. */
export const HOST_LINES: Record<string, string> = {
  // Devices
  "device %s is connected": "设备 %s 已连接",
  "device %s was lost: closed by the device": "设备 %s 的连接已断开：设备关闭了连接",
  "device %s was lost: %s": "设备 %s 的连接已断开：%s",
  "device %s can't be reached: %s": "无法连接设备 %s：%s",
  "device %s: %s item that waited is dropped": "设备 %s：已丢弃 %s 项等待发送的内容",
  "device %s: %s items that waited are dropped": "设备 %s：已丢弃 %s 项等待发送的内容",
  "device %s: %s item sent by %s waited too long and is dropped": "设备 %s：%s 项内容（发送者：%s）等待过久，已丢弃",
  "device %s: %s items sent by %s waited too long and are dropped": "设备 %s：%s 项内容（发送者：%s）等待过久，已丢弃",
  "device %s: the item is too long, the item is refused": "设备 %s：内容过长，已拒绝",
  "device %s: the queue is full, the item is refused": "设备 %s：队列已满，内容已拒绝",
  "device %s: items are taken again after %s refused": "设备 %s：拒绝 %s 项后恢复接收",

  // Broadcasts and other hosts
  "broadcasts are received on UDP %s": "正在 UDP %s 上接收广播",
  "broadcasts can't be received on %s; trying again": "无法接收广播：%s；正在重试",
  "receiving broadcasts on UDP %s: %s": "在 UDP %s 上接收广播时出错：%s",
  "a broadcast of the node %s was held back: listen-only is on": "节点 %s 的广播未发出：已开启只监听",
  "a broadcast was held back: listen-only is on": "一条广播未发出：已开启只监听",
  "taking records of other hosts on TCP %s: %s": "在 TCP %s 上接收其他主机的记录时出错：%s",
  "records of other hosts on TCP %s: the silent connection of %s makes room for another":
    "TCP %s 上其他主机的记录：%s 的静默连接已为新连接让位",
  "Config/PortConfig.ini: BroadcastPort %s is no port: broadcasts aren't received, and nodes send theirs to port %s":
    "Config/PortConfig.ini：BroadcastPort %s 不是端口号：不接收广播，节点的广播发往端口 %s",

  // The page's connections
  "a connection was turned away: the page's server has %s connections, which is its most":
    "已拒绝一个连接：页面服务器已有 %s 个连接，达到上限",
  "a connection couldn't be turned away: %s": "无法拒绝一个连接：%s",
  "connections can't be taken: %s": "无法接受连接：%s",
  "a connection of the page failed: %s": "页面的一个连接出错：%s",
  "a connection is closed: it read nothing for 30 seconds": "已关闭一个连接：它 30 秒未读取任何内容",
  "a request ends the host": "主机按请求结束",

  // The scene, its files and recordings
  "the node %s is triggered by what it caused: that waits for the next frame": "节点 %s 被自身引起的事件触发：推迟到下一帧",
  "synthetic release of the %s: %s": "已自动释放 %s：%s",
  "there is no folder %s: scenes can't be saved, and unsaved ones won't be kept":
    "文件夹 %s 不存在：无法保存场景，也不会保留未保存的场景",
  "the unsaved scene can't be written aside: %s": "无法另存未保存的场景：%s",
  "what was left unsaved in %s can't be read: %s": "无法读取 %s 中留下的未保存内容：%s",
  "the recording can't be written any further; nothing more is recorded": "无法继续写入录制；不再录制",
};

/** The three names count as one: they stand together in both texts. */
const WITH_NAMES_AS_ONE = Object.entries(LOG_TEXTS).map((texts) => texts.map((text) => text.replace("%s.%s.%s", "%s")));

const inEnglish = textsByFormat(Object.fromEntries(WITH_NAMES_AS_ONE));
// Faults of the module are logged with the texts that requests are refused with.
const inChinese = chineseByFormat({ ...REFUSALS, ...HOST_LINES });

/** What a line says in the language that it isn't written in; null where that isn't known. */
export function translationOf(line: string): { language: Language; text: string } | null {
  const english = inEnglish(line);
  if (english !== null) {
    return { language: "en", text: english };
  }
  const [, text = line, times] = /^(.*) \(and (\d+) times since the last line\)$/s.exec(line) ?? [];
  const chinese = inChinese(text);
  if (chinese === null) {
    return null;
  }
  return { language: "zh", text: times === undefined ? chinese : `${chinese}（自上一行以来又有 ${times} 次）` };
}
