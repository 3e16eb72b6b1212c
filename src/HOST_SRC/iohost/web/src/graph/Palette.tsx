import { useEffect, useRef, useState } from "preact/hooks";
import type { NodeView } from "../host.ts";
import { hostText } from "../hostTexts.ts";
import { t } from "../i18n.ts";
import { iconOf } from "../icons.ts";
import type { OfferedType } from "../protocol.ts";
import { useFocusOn } from "../view/useFocusOn.ts";
import type { Editor, PaletteCall } from "./editor.ts";
import { kindOfType, purposeName, PURPOSES } from "./nodeKinds.ts";
import "./palette.css";

/** Something to choose: a type to add, or a node of the scene to go to. */
type Entry = { type: OfferedType; why: string | null } | { node: NodeView };

const MOST_NODES = 12;

/** Adds nodes by what they are for or by search, and finds those that are there. */
export function Palette({ editor, call }: { editor: Editor; call: PaletteCall }) {
  const [types, setTypes] = useState<readonly OfferedType[]>([]);
  const [search, setSearch] = useState("");
  const [marked, setMarked] = useState(0);
  const field = useRef<HTMLInputElement>(null);
  const list = useRef<HTMLUListElement>(null);
  useFocusOn(field);
  useEffect(() => {
    void editor.host.requests.types().then(setTypes);
  }, []);

  const groups = groupsOf(editor, call, types.map((type) => ({ ...type, name: hostText(type.name) })), search);
  const entries = groups.flatMap((group) => group.entries);
  const close = () => (editor.palette.value = null);
  const take = (entry: Entry | undefined) => {
    if (entry === undefined || ("type" in entry && entry.why !== null)) {
      return;
    }
    close();
    if ("type" in entry) {
      void editor.add(entry.type, call);
    } else {
      editor.desk.goTo(entry.node.node);
    }
  };
  const follow = (event: KeyboardEvent) => {
    if (event.isComposing) {
      return;
    }
    const by = { ArrowDown: 1, ArrowUp: -1 }[event.key];
    if (by !== undefined) {
      event.preventDefault();
      const next = Math.max(0, Math.min(entries.length - 1, marked + by));
      setMarked(next);
      list.current?.querySelectorAll("[role=option]")[next]?.scrollIntoView({ block: "nearest" });
    } else if (event.key === "Enter") {
      event.preventDefault();
      take(entries[marked]);
    } else if (event.key === "Escape") {
      close();
    }
  };

  let index = -1;
  return (
    <div class="palette-back" onPointerDown={(event) => event.target === event.currentTarget && close()}>
      <div class="palette" role="dialog" aria-label={t("Add a node, or find one")} data-palette>
        <input
          ref={field}
          type="text"
          class="field nokey"
          role="combobox"
          aria-expanded="true"
          aria-controls="palette-list"
          aria-activedescendant={entries.length > 0 ? `palette-${marked}` : undefined}
          aria-label={t("Type of a new node, or name of a node")}
          placeholder={t("Type of a new node, or name of a node")}
          value={search}
          onInput={(event) => {
            setSearch(event.currentTarget.value);
            setMarked(0);
          }}
          onKeyDown={follow}
        />
        <ul class="palette-list" id="palette-list" role="listbox" aria-label={t("Found")} ref={list}>
          {groups.map((group) => (
            <li role="group" aria-label={group.title} key={group.title}>
              <span class="palette-group" aria-hidden="true">
                {group.title}
              </span>
              <ul role="presentation">
                {group.entries.map((entry) => {
                  const number = ++index;
                  return (
                    <Option
                      key={number}
                      id={`palette-${number}`}
                      entry={entry}
                      isMarked={number === marked}
                      onPoint={() => setMarked(number)}
                      onTake={() => take(entry)}
                    />
                  );
                })}
              </ul>
            </li>
          ))}
        </ul>
        {entries.length === 0 && <p class="empty">{t("No matches.")}</p>}
      </div>
    </div>
  );
}

interface OptionProps {
  id: string;
  entry: Entry;
  isMarked: boolean;
  onPoint(): void;
  onTake(): void;
}

function Option({ id, entry, isMarked, onPoint, onTake }: OptionProps) {
  const { name, type, note } =
    "type" in entry
      ? { name: entry.type.name, type: entry.type.guid, note: entry.why ?? "" }
      : { name: entry.node.graph, type: entry.node.type, note: t("go there") };
  const icon = iconOf(type);
  return (
    <li
      id={id}
      class={isMarked ? "palette-entry marked" : "palette-entry"}
      role="option"
      aria-selected={isMarked}
      aria-disabled={"type" in entry && entry.why !== null}
      data-entry={name}
      onPointerMove={onPoint}
      onClick={onTake}
    >
      {icon !== null && <img src={icon} alt="" width="20" height="20" />}
      <span>{name}</span>
      <span class="palette-note">{note}</span>
    </li>
  );
}

function groupsOf(editor: Editor, { pin }: PaletteCall, types: readonly OfferedType[], search: string) {
  const wanted = search.trim().toLowerCase();
  const isWanted = (...texts: string[]) => texts.some((text) => text.toLowerCase().includes(wanted));
  const offered = types.filter((type) => pin === null || editor.endFor(pin, type) !== undefined);
  const purposes = [...PURPOSES, null].map((purpose) => {
    const title = purpose === null ? t("Others") : purposeName(purpose);
    const entries = offered
      .filter(({ guid }) => (kindOfType(guid)?.purpose ?? null) === purpose)
      .filter(({ name }) => isWanted(name, title))
      .map((type): Entry => ({ type, why: type.enable === 0 ? whyNotOffered(type) : null }));
    return { title, entries };
  });
  const nodes = wanted === "" || pin !== null ? [] : (editor.host.nodes.value ?? []).filter(({ graph }) => isWanted(graph));
  const found = { title: t("Nodes of the scene"), entries: nodes.slice(0, MOST_NODES).map((node): Entry => ({ node })) };
  return [...purposes, found].filter(({ entries }) => entries.length > 0);
}

function whyNotOffered({ guid }: OfferedType): string {
  const key = kindOfType(guid)?.ini;
  return key === undefined ? t("not offered by the module") : t("switched off: {key} in NodePlugin.ini", { key });
}
