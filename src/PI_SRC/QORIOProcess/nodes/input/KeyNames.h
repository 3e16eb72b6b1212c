// Key names of an on-screen keyboard, applied to an edited text.
#pragma once

#include <afxwin.h>

/// What a key name does to the text. One character: appended, a letter in the case that Caps Lock says. A name with a
/// character above 255: appended whole. "Num ...": the part behind its only space is appended, "Del" as a point,
/// "Enter" and "Lock" not at all. "Shift...": the shifted form of the one character behind its only plus. "Space",
/// "Backspace". Any other name: appended whole. nCapsLockState: GetKeyState of Caps Lock (0x8000: held, 0x0001: toggled
/// on).
CString ApplyKeyName(const CString& strText, const CString& strKeyName, SHORT nCapsLockState);
