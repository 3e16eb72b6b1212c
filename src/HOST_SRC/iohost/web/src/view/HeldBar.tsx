import { clock } from "../clock.ts";
import { ageText } from "../format.ts";
import { heldLabel, isKeyboardState } from "../held.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import type { HeldEntry } from "../protocol.ts";
import "./heldBar.css";

/** What is held in the host, by this page and everybody else, since when; and the button that lets go of it. */
export function HeldBar({ host }: { host: Host }) {
  const { entries, told } = host.held.value;
  const isAny = entries.length > 0;
  // With what else shows the time: a step of its own would be laid out and painted by itself.
  const now = isAny ? Math.max(told, clock.value) : told;

  const state = host.connection.value;
  const chip = (entry: HeldEntry) => {
    const { cap, text } = heldLabel(entry);
    const isOwn = state.is === "open" && state.connection === entry.connection;
    return (
      <span
        class={cap ? "held held-key" : "held"}
        key={`${entry.connection} ${entry.what} ${entry.identity}`}
        title={isOwn ? t("Held on this page") : t("Held by connection {connection}", { connection: entry.connection })}
        data-held={`${entry.what} ${entry.identity}`}
      >
        {text} <span class="held-age">{ageText(entry.ms + now - told)}</span>
        {!isOwn && <span class="held-other"> {t("elsewhere")}</span>}
      </span>
    );
  };
  const keyboard = entries.filter(isKeyboardState);
  return (
    <div class="held-bar" role="group" aria-label={t("Held")}>
      <span class="held-title">{t("Held")}</span>
      <span class="held-list" data-readout="held">
        {!isAny && <span class="none">{t("nothing")}</span>}
        {entries.filter((entry) => !isKeyboardState(entry)).map(chip)}
      </span>
      {keyboard.length > 0 && (
        <>
          <span class="held-title">{t("Keyboard state")}</span>
          <span class="held-list" data-readout="keyboard">
            {keyboard.map(chip)}
          </span>
        </>
      )}
      <button
        type="button"
        class="held-release"
        disabled={!isAny}
        onClick={() => host.releaseAll("somebody released everything", true)}
      >
        {t("Release all")}
      </button>
    </div>
  );
}
