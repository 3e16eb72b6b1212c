import assert from "node:assert/strict";
import { test } from "node:test";
import { KEY_ROWS, keyLabel, keyName, SCREEN_KEYS, screenKey } from "../src/input/keyNames.ts";

const key = (button: string) => screenKey(button)!;

test("characters have themselves as names, and a prefix with Shift", () => {
  assert.equal(keyName(key("a"), false), "a");
  assert.equal(keyName(key("a"), true), "Shift+a");
  assert.equal(keyName(key("1"), true), "Shift+1");
  assert.equal(keyName(key("\\"), true), "Shift+\\");
});

test("other keys have their names, with Shift and without", () => {
  assert.equal(keyName(key("{space}"), true), "Space");
  assert.equal(keyName(key("{bksp}"), false), "Backspace");
  assert.equal(keyName(key("{num7}"), true), "Num 7");
  assert.equal(keyName(key("{numdel}"), false), "Num Del");
  assert.equal(keyName(key("{numenter}"), false), "Num Enter");
});

test("keys that type nothing have no name", () => {
  for (const button of ["{shift}", "{lock}", "{clear}"]) {
    assert.equal(keyName(key(button), true), null);
  }
});

test("every name has one of the forms that the node takes", () => {
  for (const shift of [false, true]) {
    for (const one of SCREEN_KEYS) {
      const name = keyName(one, shift);
      assert.match(name ?? "Space", /^(.|Shift\+.|Space|Backspace|Num ([0-9]|Del|Enter|[-+*/]))$/);
    }
  }
});

test("every key of the rows is known, and every known key stands in a row", () => {
  const placed = new Set(KEY_ROWS.flatMap((row) => row.split(" ")));
  for (const button of placed) {
    assert.ok(screenKey(button), button);
  }
  for (const { button } of SCREEN_KEYS) {
    assert.ok(placed.has(button), button);
  }
});

test("what stands on a key is what it adds", () => {
  const symbols = "`1234567890-=[]\\;',./";
  const shifted = '~!@#$%^&*()_+{}|:"<>?';
  [...symbols].forEach((symbol, index) => {
    assert.equal(keyLabel(key(symbol), false, false), symbol);
    assert.equal(keyLabel(key(symbol), false, true), symbol);
    assert.equal(keyLabel(key(symbol), true, false), shifted[index]);
  });
  assert.equal(keyLabel(key("q"), false, false), "q");
  assert.equal(keyLabel(key("q"), false, true), "Q");
  assert.equal(keyLabel(key("q"), true, false), "Q");
  // The node makes a letter with Shift upper case though Caps Lock is on.
  assert.equal(keyLabel(key("q"), true, true), "Q");
});

test("keys have the codes of Windows", () => {
  assert.equal(key("a").virtualKey, 65);
  assert.equal(key("7").virtualKey, 55);
  assert.equal(key("{num7}").virtualKey, 103);
  assert.equal(key(";").virtualKey, 186);
  assert.equal(key("'").virtualKey, 222);
  assert.equal(key("{space}").virtualKey, 32);
  assert.equal(key("{numenter}").virtualKey, 13);
  assert.deepEqual(SCREEN_KEYS.filter(({ virtualKey }) => virtualKey === undefined), []);
});
