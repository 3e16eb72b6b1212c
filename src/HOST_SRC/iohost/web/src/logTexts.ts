// The module logs in Chinese: what its lines mean in English.
import { textsByFormat } from "./formats.ts";

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

/** The three names count as one: they stand together in both texts. */
const WITH_NAMES_AS_ONE = Object.entries(LOG_TEXTS).map((texts) => texts.map((text) => text.replace("%s.%s.%s", "%s")));

/** A line of the module's log in English; null for any other. */
export const inEnglish = textsByFormat(Object.fromEntries(WITH_NAMES_AS_ONE));
