// Generic-text names; text is always wide here.
#pragma once

#include <cwchar>

#define _T(x) L##x
#define _TEXT(x) L##x

#define _tcslen std::wcslen
#define _tcscmp std::wcscmp
#define _tcsncmp std::wcsncmp
#define _tcschr std::wcschr
#define _tcsrchr std::wcsrchr
#define _tcsstr std::wcsstr
#define _tcsicmp _wcsicmp
#define _ttoi _wtoi
#define _tstof _wtof
