import { useStoreApi } from "@xyflow/react";
import { useState } from "preact/hooks";

/**
 * Replaces the library's measuring of nodes: their sizes alone are read. Their pins come with each node (`handles`):
 * the library would look for them in what is drawn, find none in far nodes, and draw all nodes anew.
 */
export function KnownPins() {
  const canvas = useStoreApi();
  // At once: the library's observer of sizes keeps the function that it finds first.
  useState(() =>
    canvas.setState({
      updateNodeInternals: (drawn) => {
        const { nodeLookup, triggerNodeChanges } = canvas.getState();
        triggerNodeChanges(
          [...drawn.values()].flatMap(({ id, nodeElement: { offsetWidth: width, offsetHeight: height } }) => {
            const known = nodeLookup.get(id)?.measured;
            const isNews = known !== undefined && (known.width !== width || known.height !== height);
            return isNews ? [{ id, type: "dimensions", dimensions: { width, height } }] : [];
          }),
        );
      },
    }),
  );
  return null;
}
