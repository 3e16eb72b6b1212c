// Key names of an on-screen keyboard, applied to an edited text.
#pragma once

#include <afxwin.h>

/// What a key name does to the text. Names: one character; "Num 7", "Num Del", "Num Enter"; "Space", "Backspace";
/// "Shift+a". Other names that begin with "Num" or "Shift" append nothing, unless a character above 255 is in them:
/// those, and all further names, are appended whole.
/// nCapsLockState: GetKeyState of Caps Lock (bit 0x8000: held, bit 1: toggled on).
CString ApplyKeyName(const CString& strText, const CString& strKeyName, SHORT nCapsLockState);
