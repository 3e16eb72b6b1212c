import { useEffect, useState } from "preact/hooks";
import type { Host } from "../host.ts";

/** As many of a long list are made at once. */
const FIRST = 60;

/** What is shown of a scene's lists: their beginnings at once, all of them once the rest of the page has been drawn. */
export function useFirstThenAll(host: Host): <Item>(list: readonly Item[]) => readonly Item[] {
  const scene = host.nodes.value === null ? null : host.sceneNumber.value;
  const [whole, setWhole] = useState<number | null>(null);
  useEffect(() => {
    if (scene !== null) {
      requestAnimationFrame(() => setTimeout(() => setWhole(scene)));
    }
  }, [scene]);
  return (list) => (whole === scene ? list : list.slice(0, FIRST));
}
