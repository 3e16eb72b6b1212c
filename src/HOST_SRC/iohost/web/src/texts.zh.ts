/** The page's texts in Chinese, by the English ones. Names in braces stand for values. */
export const ZH = {
  "Language": "语言",
  "input and output nodes, live": "实时输入与输出节点",
  "Graph of the scene": "场景的节点图",
  "Height of the panels": "面板高度",
  "Make it smaller": "缩小",
  "Enlarge": "放大",
  "Enlarge the render surface": "放大渲染面",
  "{count} in the scene": "场景中有 {count} 个",
  "{chosen} of {count} chosen": "已选 {chosen} / {count}",
  "Show all": "全部显示",
} as const satisfies Record<string, string>;
