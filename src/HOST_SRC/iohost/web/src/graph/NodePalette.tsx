import { useEffect, useState } from "preact/hooks";
import type { Host } from "../host.ts";
import { t } from "../i18n.ts";
import type { OfferedType } from "../protocol.ts";
import { freeName } from "./wiring.ts";

/** Adds nodes of the types that the module offers. */
export function NodePalette({ host, onMessage }: { host: Host; onMessage: (message: string) => void }) {
  const [types, setTypes] = useState<readonly OfferedType[]>([]);
  const [chosen, setChosen] = useState("");
  useEffect(() => {
    void host.offeredTypes().then((offered) => {
      setTypes(offered);
      setChosen(offered[0]?.guid ?? "");
    });
  }, [host.connection.value.is]);

  const add = async () => {
    const type = types.find(({ guid }) => guid === chosen);
    const nodes = host.nodes.peek();
    if (type !== undefined && nodes !== null) {
      const graph = freeName(type.name, new Set(nodes.map((node) => node.graph)));
      const handle = freeName(type.name, new Set(nodes.map(({ node }) => node)));
      const clip = nodes.find((node) => node.clip !== null)?.clip ?? "Clip";
      onMessage((await host.addNode(handle, type.guid, clip, graph)) ?? t("{node} was added.", { node: graph }));
    }
  };
  return (
    <>
      <select
        class="field"
        aria-label={t("Type of a new node")}
        value={chosen}
        onChange={(event) => setChosen(event.currentTarget.value)}
        data-palette
      >
        {types.map(({ guid, name, tip }) => (
          <option key={guid} value={guid} title={tip}>
            {name}
          </option>
        ))}
      </select>
      <button type="button" disabled={chosen === ""} onClick={add}>
        {t("Add node")}
      </button>
    </>
  );
}
