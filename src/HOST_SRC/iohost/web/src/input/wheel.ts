import { EventId } from "../codes.ts";

/** Up is away from the user, which scrolls content down the negative way; null when the wheel went sideways only. */
export function wheelEvent(deltaY: number): number | null {
  if (deltaY === 0) {
    return null;
  }
  return deltaY < 0 ? EventId.wheelUp : EventId.wheelDown;
}
