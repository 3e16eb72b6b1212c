import { useEffect, useState } from "preact/hooks";

const STEP_MS = 250;

/** The time, in milliseconds since 1970. While it runs it's shown anew a few times a second, else with what else changes. */
export function useNow(runs: boolean): number {
  const [, setTime] = useState(0);
  useEffect(() => {
    const timer = runs ? setInterval(() => setTime(Date.now()), STEP_MS) : undefined;
    return () => clearInterval(timer);
  }, [runs]);
  return Date.now();
}
