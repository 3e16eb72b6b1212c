import assert from "node:assert/strict";
import { beforeEach, test } from "node:test";
import { KeyboardState, type KeyboardRequest } from "../src/input/keyboardState.ts";

let told: KeyboardRequest[];
let state: KeyboardState;
const locks = (...on: string[]) => ({ getModifierState: (name: string) => on.includes(name) });

beforeEach(() => {
  told = [];
  state = new KeyboardState((now) => told.push(now));
});

test("each change of what is down is told once, as a whole", () => {
  const keyboard = {};
  state.setDown(keyboard, [65]);
  state.setDown(keyboard, [65]);
  state.setDown(keyboard, [65, 16]);
  state.setDown(keyboard, []);
  assert.deepEqual(told.map(({ down }) => down), [[65], [16, 65], []]);
});

test("several keyboards hold their keys together", () => {
  const [one, other] = [{}, {}];
  state.setDown(one, [65, 16]);
  state.setDown(other, [16]);
  state.setDown(one, []);
  assert.deepEqual(told.at(-1), { down: [16], toggled: [] });
});

test("locks are taken over from the keyboard when they change there", () => {
  state.readLocks(locks("NumLock"));
  state.readLocks(locks("NumLock", "CapsLock"));
  state.readLocks(locks("NumLock"));
  assert.deepEqual(told.map(({ toggled }) => toggled), [[144], [20, 144], [144]]);
});

test("a lock that was toggled on the screen stays until the keyboard's own changes", () => {
  state.setToggled(20, true);
  state.readLocks(locks());
  assert.equal(state.isToggled(20), true);
  state.readLocks(locks("CapsLock"));
  state.readLocks(locks());
  assert.equal(state.isToggled(20), false);
});

test("after a forced release the next change is told though it is the same again", () => {
  const keyboard = {};
  state.setDown(keyboard, [65]);
  state.forget();
  state.setDown(keyboard, [65]);
  assert.deepEqual(told.map(({ down }) => down), [[65], [65]]);
});
