import type { Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { openAnother } from "../openAnother.ts";
import "./recoveredBanner.css";

/** Offers what an earlier run of the host left unsaved. */
export function RecoveredBanner({ host, desk }: { host: Host; desk: Desk }) {
  const recovered = host.recovered.value;
  if (recovered === null) {
    return null;
  }
  const name = recovered.file ?? t("untitled scene");
  const answer = async (take: boolean) => {
    desk.tell(await host.requests.recover(take), take ? t("Recovered. Save it to keep it.") : t("Discarded."));
  };
  const askToDiscard = () => {
    desk.question.value = {
      text: t("The unsaved changes can't be brought back after that. Discard them?"),
      yes: t("Discard"),
      act: () => void answer(false),
    };
  };
  return (
    <div class="recovered" role="alert" data-recovered>
      <span>
        {t("An earlier run left unsaved changes to {file} from {time}.", {
          file: name,
          time: new Date(recovered.modified_ms).toLocaleString(),
        })}
      </span>
      <button type="button" onClick={() => openAnother(host, desk, name, () => answer(true))}>
        {t("Recover them")}
      </button>
      <button type="button" onClick={askToDiscard}>
        {t("Discard them")}
      </button>
    </div>
  );
}
