import type { Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import "./liveBadge.css";

/** Whether what nodes send goes out to the devices; pressed, it's the other way. */
export function LiveBadge({ host, desk }: { host: Host; desk: Desk }) {
  const network = host.network.value;
  if (network === null) {
    return null;
  }
  const isListening = network.state.listen_only;
  return (
    <button
      type="button"
      class={isListening ? "live-badge listening" : "live-badge"}
      title={isListening ? t("What nodes send is only shown. Press to go live.") : t("What nodes send goes out. Press to listen only.")}
      disabled={host.connection.value.is !== "open"}
      data-live={!isListening}
      onClick={async () => desk.tell(await host.requests.listenOnly(!isListening), "")}
    >
      {isListening ? t("LISTEN ONLY") : t("LIVE")}
    </button>
  );
}
