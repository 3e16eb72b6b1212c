import { useEffect, useRef, useState } from "preact/hooks";
import type { Desk } from "../desk.ts";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import { isLost } from "../network.ts";
import "./dock.css";
import { LostLamp } from "./LostLamp.tsx";
import { PANELS } from "./panels.ts";
import { Splitter } from "./Splitter.tsx";

const STORAGE_KEY = "iohost.dock-height";
const LEAST_PX = 120;
/** What the canvas keeps at least. */
const CANVAS_PX = 172;

/** Where the panel in front is remembered, so that a reload and a link lead back to it. */
function panelOfAddress(): string {
  const id = location.hash.slice(1);
  return PANELS.some((panel) => panel.id === id) ? id : PANELS[0]!.id;
}

/**
 * The panels below the canvas, one in front. One that was in front once keeps its state behind the others. Each has the
 * height that suits it until somebody chooses one for all.
 */
export function Dock({ host, desk }: { host: Host; desk: Desk }) {
  const [front, setFront] = useState(panelOfAddress);
  const opened = useRef(new Set<string>());
  const tabs = useRef<HTMLDivElement>(null);
  opened.current.add(front);
  const dock = useRef<HTMLElement>(null);
  const [chosen, setChosen] = useState(() => Number(localStorage.getItem(STORAGE_KEY)) || null);
  const [shown, setShown] = useState({ height: LEAST_PX, most: LEAST_PX });
  useEffect(() => {
    const measure = () =>
      setShown({ height: dock.current!.offsetHeight, most: dock.current!.parentElement!.offsetHeight - CANVAS_PX });
    const watch = new ResizeObserver(measure);
    watch.observe(dock.current!);
    watch.observe(dock.current!.parentElement!);
    return () => watch.disconnect();
  }, []);
  const resize = (height: number) => {
    localStorage.setItem(STORAGE_KEY, String(height));
    setChosen(height);
  };

  useEffect(() => {
    const follow = () => setFront(panelOfAddress());
    window.addEventListener("hashchange", follow);
    return () => window.removeEventListener("hashchange", follow);
  }, []);

  const open = (id: string) => {
    history.replaceState(null, "", `#${id}`);
    setFront(id);
  };
  const step = (event: KeyboardEvent) => {
    const by = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
    if (by !== undefined) {
      event.preventDefault();
      const index = PANELS.findIndex(({ id }) => id === front);
      const next = PANELS[(index + by + PANELS.length) % PANELS.length]!;
      open(next.id);
      tabs.current?.querySelector<HTMLElement>(`#tab-${next.id}`)?.focus();
    }
  };

  return (
    <>
      <Splitter label={t("Height of the panels")} {...shown} least={LEAST_PX} onResize={resize} />
      <section
        class="panel dock"
        aria-label={t("Panels")}
        ref={dock}
        style={{ "--dock-height": chosen === null ? PANELS.find(({ id }) => id === front)?.height : `${chosen}px` }}
      >
      <div class="tabs" role="tablist" ref={tabs} onKeyDown={step}>
        {PANELS.map(({ id, title }) => (
          <button
            type="button"
            role="tab"
            key={id}
            id={`tab-${id}`}
            aria-controls={`panel-${id}`}
            aria-selected={id === front}
            tabIndex={id === front ? 0 : -1}
            data-tab={id}
            onClick={() => open(id)}
          >
            {id === "network" && host.network.value?.state.devices?.some(isLost) && <LostLamp />}
            {t(title)}
          </button>
        ))}
      </div>
      {PANELS.filter(({ id }) => opened.current.has(id)).map(({ id, View }) => (
        <div
          class="dock-panel"
          role="tabpanel"
          key={id}
          id={`panel-${id}`}
          aria-labelledby={`tab-${id}`}
          hidden={id !== front}
          data-panel={id}
        >
          <View host={host} desk={desk} shown={id === front} />
        </div>
      ))}
      </section>
    </>
  );
}
