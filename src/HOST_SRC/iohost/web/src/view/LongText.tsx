import { cutText, lengthText, type CutText } from "../texts.ts";

/** A text that may be very long: its beginning is shown, and its title says how long it is. */
export function LongText(props: CutText) {
  const cut = cutText(props);
  return cut.length === undefined ? <>{cut.text}</> : <span title={lengthText(cut)}>{cut.text}…</span>;
}
