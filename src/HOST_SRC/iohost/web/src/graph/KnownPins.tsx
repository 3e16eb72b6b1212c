import { useStoreApi } from "@xyflow/react";
import { useState } from "preact/hooks";

/**
 * Has the library in which it stands read how large nodes are drawn, and no more: where their pins are it's told with each
 * node. It would look for them in what is drawn, find none in far nodes, and draw all nodes anew.
 */
export function KnownPins() {
  const canvas = useStoreApi();
  // Before the library's nodes come, which keep this function.
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
