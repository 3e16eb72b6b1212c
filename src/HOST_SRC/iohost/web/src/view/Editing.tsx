import type { ComponentChildren } from "preact";
import { useContext } from "preact/hooks";
import { DeskContext } from "../desk.ts";

/** What changes the scene: only on a desk where it's edited. */
export function Editing({ children, otherwise = null }: { children: ComponentChildren; otherwise?: ComponentChildren }) {
  return <>{useContext(DeskContext).edits ? children : otherwise}</>;
}
