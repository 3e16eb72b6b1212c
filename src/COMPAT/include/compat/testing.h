// Controls for tests and for programs that play the machine's part. They exist only with this framework run-time.
#pragma once

#include <compat/api.h>

#if !defined(_WIN32)
#include <windows.h>
#endif

#include <cstdint>
#include <functional>
#include <optional>

// While on, AfxInitExtensionModule fails, so that a module that uses it must refuse to be loaded.
COMPAT_API void CompatFailExtensionModuleInit(bool bFail);

// Number of CDynLinkLibrary objects alive.
COMPAT_API int CompatExtensionModuleCount();

#if !defined(_WIN32)

// Makes GetTickCount answer the low 32 bits of this fixed value; the running clock again for nullopt.
COMPAT_API void CompatFreezeTickCount(std::optional<std::uint64_t> nMilliseconds);

// While there is a taker, each datagram that the process gives sendto calls it instead of going out, and sendto answers
// that all of it was sent. None: they go out again.
COMPAT_API void CompatTakeDatagrams(std::function<void()> taker);

// Sets the ANSI code page (CP_ACP): 1252, 936, 65001 ... False, and no change, for one that is unknown.
COMPAT_API bool CompatSetAnsiCodePage(unsigned nCodePage);

// Calls the DllMain of a loaded library, as the loader of Windows does on more occasions than LoadLibraryW and
// FreeLibrary. Answers what it answers.
COMPAT_API bool CompatCallModuleEntry(HMODULE hModule, DWORD nReason);

// Why the calling thread's last LoadLibraryW failed, in the loader's words (UTF-8); empty when it did not.
COMPAT_API const char* CompatLoadErrorText();

#endif
