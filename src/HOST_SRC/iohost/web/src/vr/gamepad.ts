/** What the page reads of the browser's gamepad of a hand's controller. */
export interface HandGamepad {
  buttons: readonly { pressed: boolean }[];
  axes: readonly number[];
}

export interface HandButtons {
  trigger: boolean;
  pad: boolean;
  padX: number;
  padY: number;
}

// Places in the browser's standard mapping of hand controllers.
const TRIGGER = 0;
const TOUCHPAD = 2;
const THUMBSTICK = 3;

/**
 * The trigger and the pad. A controller without a pad has its thumbstick as one. The browser's y axis grows towards the
 * wrist; the pad's grows away from it.
 */
export function readGamepad({ buttons, axes }: HandGamepad): HandButtons {
  const pressed = (index: number) => buttons[index]?.pressed ?? false;
  const hasTouchpad = buttons[TOUCHPAD] !== undefined && (axes.length <= 2 || axes[0] !== 0 || axes[1] !== 0 || pressed(TOUCHPAD));
  const first = hasTouchpad || axes.length < 4 ? 0 : 2;
  return {
    trigger: pressed(TRIGGER),
    pad: pressed(hasTouchpad ? TOUCHPAD : THUMBSTICK),
    padX: axes[first] ?? 0,
    padY: -(axes[first + 1] ?? 0) || 0,
  };
}
