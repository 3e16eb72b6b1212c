import { useEffect, useMemo } from "preact/hooks";
import { Desk, DeskContext } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { othersStepText } from "../steps.ts";
import { ConnectionBanner } from "./Connection.tsx";
import "./desk.css";
import { Dock } from "./Dock.tsx";
import { Editing } from "./Editing.tsx";
import { Inspector } from "./Inspector.tsx";
import { lazyView } from "./lazyView.tsx";
import { RecoveredBanner } from "./RecoveredBanner.tsx";
import { RenderSurface } from "./RenderSurface.tsx";
import { TopBar } from "./TopBar.tsx";
import { usePhone } from "./usePhone.ts";

const Canvas = lazyView(async () => (await import("../graph/Canvas.tsx")).Canvas);

/** What came of the last step, where no canvas says it. */
function Message({ desk }: { desk: Desk }) {
  const text = desk.message.value;
  return (
    <div class={text === "" ? "message message-none" : "message"}>
      <p role="status" data-message>
        {text}
      </p>
      <button type="button" class="icon-button" aria-label={t("Close")} onClick={() => desk.tell(null, "")}>
        ×
      </button>
    </div>
  );
}

export function App({ host }: { host: Host }) {
  const isPhone = usePhone();
  // Without the canvas nothing is chosen.
  const desk = useMemo(() => new Desk(!isPhone), [isPhone]);
  // What was said before is about another host's scene.
  useEffect(
    () => host.connection.subscribe((state) => state.is === "open" && !host.isCurrent(state.scene) && desk.tell(null, "")),
    [host, desk],
  );
  useEffect(() => {
    host.onOthersStep = (told) => (desk.message.value = othersStepText(told) ?? desk.message.peek());
  }, [host, desk]);
  return (
    <DeskContext.Provider value={desk}>
      <div class={isPhone ? "app phone" : "app"}>
        <TopBar host={host} desk={desk} />
        <ConnectionBanner host={host} />
        <Editing>
          <RecoveredBanner host={host} desk={desk} />
        </Editing>
        {isPhone && <p class="hint wider">{t("The graph takes a wider window.")}</p>}
        <main class={desk.surfaceIsLarge.value ? "desk desk-surface" : "desk"}>
          <div class="stage">
            <Editing>
              <section class="panel canvas" aria-label={t("Graph of the scene")}>
                <Canvas host={host} desk={desk} />
              </section>
            </Editing>
            <Dock host={host} desk={desk} />
          </div>
          <div class="side">
            <RenderSurface host={host} desk={desk} />
            <Inspector host={host} desk={desk} />
          </div>
        </main>
        {isPhone && <Message desk={desk} />}
      </div>
    </DeskContext.Provider>
  );
}
