import { t } from "../i18n.ts";
import "./connection.css";

/** At what leads to a device that isn't connected. */
export function LostLamp() {
  return <span class="lamp lamp-lost" role="img" aria-label={t("Not connected")} data-lost />;
}
