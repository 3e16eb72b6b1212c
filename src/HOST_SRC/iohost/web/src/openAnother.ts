import type { Desk } from "./desk.ts";
import type { Host } from "./host.ts";
import { t } from "./i18n.ts";

/** Opens another scene; asks first where the present one has changes that aren't saved. */
export function openAnother(host: Host, desk: Desk, name: string, open: () => Promise<void>): void {
  if (host.scene.peek()?.unsaved !== true) {
    void open();
    return;
  }
  desk.question.value = {
    text: t("The scene has changes that aren't saved. Open {file} anyway?", { file: name }),
    yes: t("Open anyway"),
    act: () => void open(),
  };
}
