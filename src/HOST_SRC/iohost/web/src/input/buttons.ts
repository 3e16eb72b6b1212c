import { EventId } from "../codes.ts";

interface Button {
  /** Its bit in the browser's `buttons`. */
  mask: number;
  down: number;
  up: number;
}

const BUTTONS: readonly Button[] = [
  { mask: 1, down: EventId.leftDown, up: EventId.leftUp },
  { mask: 4, down: EventId.middleDown, up: EventId.middleUp },
  { mask: 2, down: EventId.rightDown, up: EventId.rightUp },
];

/**
 * Turns the browser's set of held buttons into button events. The browser tells a second button as movement with
 * another set, so the sets are compared whatever kind of event brings them.
 */
export class HeldButtons {
  #held = 0;
  #ignored = 0;

  get any(): boolean {
    return this.#held !== 0;
  }

  /** The event ids that lead from the last set to this one. */
  change(buttons: number): number[] {
    this.#ignored &= buttons;
    const now = buttons & ~this.#ignored;
    const events: number[] = [];
    for (const button of BUTTONS) {
      const isHeld = (now & button.mask) !== 0;
      if (isHeld !== ((this.#held & button.mask) !== 0)) {
        events.push(isHeld ? button.down : button.up);
      }
    }
    this.#held = now;
    return events;
  }

  /** Buttons that went down elsewhere aren't the surface's until they have been let go. */
  ignore(buttons: number): void {
    this.#ignored |= buttons & ~this.#held;
  }

  /** Forgets what is held; a button that stays down in fact presses nothing until it has been let go. */
  clear(): void {
    this.#ignored |= this.#held;
    this.#held = 0;
  }
}
