// Numbers of devices and of their events.

export const Device = { keyboard: 0, pointer: 1, hand: 3, text: 5, objectText: 6 } as const;

export const EventId = {
  keyDown: 2002,
  keyUp: 2003,
  enter: 3002,
  leave: 3003,
  hover: 3004,
  leftDown: 3005,
  leftUp: 3006,
  middleDown: 3007,
  middleUp: 3008,
  rightDown: 3009,
  rightUp: 3010,
  wheelUp: 3011,
  wheelDown: 3012,
  move: 3013,
} as const;
