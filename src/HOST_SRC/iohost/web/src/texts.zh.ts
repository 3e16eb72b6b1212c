/** The page's texts in Chinese, by the English ones. Names in braces stand for values. */
export const ZH = {
  "Language": "语言",
  "input and output nodes, live": "实时输入与输出节点",
} as const satisfies Record<string, string>;
