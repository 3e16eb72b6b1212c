// Key names of an on-screen keyboard, applied to an edited text.
#pragma once

#include <afxwin.h>

/// What a key name does to the text. Names: one character; "Num 7", "Num Del", "Num Enter"; "Space", "Backspace";
/// "Shift+a"; other names and texts are appended whole.
/// nCapsLockState: GetKeyState of Caps Lock (bit 0x8000: held, bit 1: toggled on).
CString ApplyKeyName(const CString& strText, const CString& strKeyName, SHORT nCapsLockState);
