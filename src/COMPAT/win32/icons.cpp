// Icon resources.

#include "module_table.h"

#include <compat/module_registry.h>

#include <set>
#include <utility>

namespace {

struct SIcons {
    std::set<std::pair<HMODULE, WORD>> resources;
    std::set<HICON> loaded;
    std::uintptr_t nNextHandle = 0x20003;
};

// With ModuleMutex held.
SIcons& Icons() {
    static SIcons& icons = *new SIcons; // outlives the static objects of all libraries
    return icons;
}

} // namespace

CompatIconResource::CompatIconResource(WORD nId) : m_hModule(ModuleFromAddress(this)), m_nId(nId) {
    const std::lock_guard lock(ModuleMutex());
    Icons().resources.emplace(m_hModule, m_nId);
}

CompatIconResource::~CompatIconResource() {
    const std::lock_guard lock(ModuleMutex());
    Icons().resources.erase({m_hModule, m_nId});
}

HANDLE WINAPI LoadImageW(HINSTANCE hInstance, LPCWSTR pszName, UINT, int, int, UINT) {
    const std::lock_guard lock(ModuleMutex());
    if (!Icons().resources.contains({hInstance, static_cast<WORD>(reinterpret_cast<std::uintptr_t>(pszName))}))
        return nullptr;
    const HICON hIcon = reinterpret_cast<HICON>(Icons().nNextHandle);
    Icons().nNextHandle += 4;
    Icons().loaded.insert(hIcon);
    return hIcon;
}

BOOL WINAPI DestroyIcon(HICON hIcon) {
    const std::lock_guard lock(ModuleMutex());
    return Icons().loaded.erase(hIcon) != 0;
}
