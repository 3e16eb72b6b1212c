import { useEffect, useState } from "preact/hooks";
import type { ConnectionState, Host } from "../host.ts";

/** The state of the connection in the header, always there. */
export function ConnectionLamp({ host }: { host: Host }) {
  const state = host.connection.value;
  return (
    <span class="connection" data-connection={state.is} role="status">
      <span class={`lamp lamp-${state.is}`} aria-hidden="true" />
      {lampText(state)}
    </span>
  );
}

function lampText(state: ConnectionState): string {
  switch (state.is) {
    case "open":
      return `Connected to ${state.address} · ${state.fps} frames/s · version ${state.version}`;
    case "connecting":
      return "Connecting…";
    case "lost":
      return "Not connected";
  }
}

/** Across the page while there is no connection: nothing that is done then reaches the nodes. */
export function ConnectionBanner({ host }: { host: Host }) {
  const state = host.connection.value;
  const [now, setNow] = useState(Date.now());
  const isLost = state.is === "lost";
  useEffect(() => {
    if (isLost) {
      const timer = setInterval(() => setNow(Date.now()), 250);
      return () => clearInterval(timer);
    }
    return undefined;
  }, [isLost]);

  if (!isLost) {
    return null;
  }
  const seconds = Math.max(0, Math.ceil((state.retryAt - now) / 1000));
  return (
    <div class="banner" role="alert">
      <strong>Connection lost.</strong> Held keys and buttons were released.{" "}
      {seconds > 0 ? `Trying again in ${seconds} s.` : "Trying again…"}
    </div>
  );
}
