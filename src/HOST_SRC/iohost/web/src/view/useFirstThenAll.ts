import { useEffect, useState } from "preact/hooks";

/** More than there is room for. */
const FIRST = 60;

/** What is shown of a long list: its beginning at once, and all of it once the rest of the page has been drawn. */
export function useFirstThenAll<Item>(list: readonly Item[]): readonly Item[] {
  const [isAll, setIsAll] = useState(false);
  const isLong = list.length > FIRST;
  useEffect(() => {
    if (isLong && !isAll) {
      requestAnimationFrame(() => setTimeout(() => setIsAll(true)));
    }
  }, [isLong]);
  return isAll ? list : list.slice(0, FIRST);
}
