// How a library makes itself known to the Win32 subset (Linux only). Used by module_entry.cpp and by the generated
// resource sources, not by hand: static objects of these classes live in the library.
#pragma once

#include <windows.h>

// Announces the library's DllMain.
class COMPAT_API CompatModuleEntry {
public:
    explicit CompatModuleEntry(BOOL(WINAPI* pfnDllMain)(HINSTANCE, DWORD, LPVOID));
    ~CompatModuleEntry();
    CompatModuleEntry(const CompatModuleEntry&) = delete;
    CompatModuleEntry& operator=(const CompatModuleEntry&) = delete;

private:
    HMODULE m_hModule;
};

// Announces one icon resource: the bytes of an .ico file, which lie in the library.
class COMPAT_API CompatIconResource {
public:
    CompatIconResource(WORD nId, const BYTE* pBegin, const BYTE* pEnd);
    ~CompatIconResource();
    CompatIconResource(const CompatIconResource&) = delete;
    CompatIconResource& operator=(const CompatIconResource&) = delete;

private:
    HMODULE m_hModule;
    WORD m_nId;
};
