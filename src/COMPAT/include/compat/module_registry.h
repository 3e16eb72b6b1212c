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

// Announces one icon resource. The object lies in the library, which it is known by.
class COMPAT_API CompatIconResource {
public:
    explicit CompatIconResource(WORD nId);
    ~CompatIconResource();
    CompatIconResource(const CompatIconResource&) = delete;
    CompatIconResource& operator=(const CompatIconResource&) = delete;

private:
    HMODULE m_hModule;
    WORD m_nId;
};
