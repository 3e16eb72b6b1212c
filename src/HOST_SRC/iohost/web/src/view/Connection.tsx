import { timeNow } from "../clock.ts";
import { isStalled } from "../frames.ts";
import type { ConnectionState, Host } from "../host.ts";
import { t } from "../i18n.ts";
import "./connection.css";

/** The state of the connection in the header, always there, and how long ago the host had its last frame. */
export function ConnectionLamp({ host }: { host: Host }) {
  const state = host.connection.value;
  const frames = host.frames.value;
  const age = frames?.age(timeNow()) ?? 0;
  const stalled = state.is === "open" && isStalled(age, state.fps);
  return (
    <>
      {stalled && (
        <span class="stalled" role="alert">
          <strong>{t("The host has stalled:")}</strong> {t("what you do here is carried out when it goes on.")}
        </span>
      )}
      <span class="connection">
        <span data-connection={stalled ? "stalled" : state.is} role="status" title={lampTitle(state)}>
          <span class={`lamp lamp-${stalled ? "stalled" : state.is}`} aria-hidden="true" />
          {lampText(state)}
        </span>
        {frames !== null && (
          <>
            {" · "}
            <span data-frame-age>{t("last frame < {seconds} s ago", { seconds: Math.floor(age / 1000) + 1 })}</span>
          </>
        )}
      </span>
    </>
  );
}

function lampText(state: ConnectionState): string {
  switch (state.is) {
    case "open":
      return t("Connected");
    case "connecting":
      return t("Connecting…");
    case "lost":
      return t("Not connected");
  }
}

function lampTitle(state: ConnectionState): string | undefined {
  return state.is === "open" ? t("Connected to {address} · {fps} frames/s · version {version}", state) : undefined;
}

/** Across the page while there is no connection: nothing that is done then reaches the nodes. */
export function ConnectionBanner({ host }: { host: Host }) {
  const state = host.connection.value;
  if (state.is !== "lost") {
    return null;
  }
  const seconds = Math.max(0, Math.ceil((state.retryAt - timeNow()) / 1000));
  return (
    <div class="banner" role="alert">
      <strong>{t("Connection lost.")}</strong> {t("Held keys and buttons were released.")}{" "}
      {host.isRefused.value
        ? t("The host was started anew: open the address that it prints.")
        : seconds > 0
          ? t("Trying again in {seconds} s.", { seconds })
          : t("Trying again…")}
    </div>
  );
}
