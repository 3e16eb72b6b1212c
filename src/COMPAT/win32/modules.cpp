// Shared libraries, over dlopen.

#include "module_table.h"
#include "text.h"

#include <compat/module_registry.h>
#include <compat/testing.h>

#include <algorithm>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <link.h>
#include <map>
#include <string>
#include <unistd.h>
#include <utility>

namespace {

typedef BOOL(WINAPI* ModuleEntryFunction)(HINSTANCE, DWORD, LPVOID);

struct SLoadedModule {
    void* pLoaderHandle; // of dlopen
    int nUses;
};

// Both outlive the static objects of all libraries, which still take themselves out at the end of the process.
std::map<HMODULE, SLoadedModule>& LoadedModules() {
    static auto& modules = *new std::map<HMODULE, SLoadedModule>;
    return modules;
}
std::map<HMODULE, ModuleEntryFunction>& ModuleEntries() {
    static auto& entries = *new std::map<HMODULE, ModuleEntryFunction>;
    return entries;
}

thread_local std::string t_strLoadError;

// The loader's entry of a library.
link_map* LoaderEntry(void* pLoaderHandle) {
    link_map* pEntry = nullptr;
    dlinfo(pLoaderHandle, RTLD_DI_LINKMAP, &pEntry);
    return pEntry;
}

HMODULE ModuleOf(const link_map* pEntry) {
    return ModuleFromAddress(pEntry->l_ld); // the library's own dynamic section
}

bool IsLibraryFile(const std::string& strPath) {
    char szMagic[4] = {};
    std::ifstream(strPath, std::ios::binary).read(szMagic, sizeof(szMagic));
    return std::string(szMagic, sizeof(szMagic)) == "\x7F"
                                                    "ELF";
}

} // namespace

HMODULE ModuleFromAddress(const void* pAddress) {
    Dl_info info;
    return dladdr(pAddress, &info) != 0 ? static_cast<HMODULE>(info.dli_fbase) : nullptr;
}

std::recursive_mutex& ModuleMutex() {
    static auto& mutex = *new std::recursive_mutex;
    return mutex;
}

// ---- Announcements by the libraries ---------------------------------------------------------------------------------

CompatModuleEntry::CompatModuleEntry(ModuleEntryFunction pfnDllMain)
    : m_hModule(ModuleFromAddress(reinterpret_cast<const void*>(pfnDllMain))) {
    const std::lock_guard lock(ModuleMutex());
    ModuleEntries()[m_hModule] = pfnDllMain;
}

CompatModuleEntry::~CompatModuleEntry() {
    const std::lock_guard lock(ModuleMutex());
    ModuleEntries().erase(m_hModule);
}

// ---- Loading --------------------------------------------------------------------------------------------------------

const char* CompatLoadErrorText() {
    return t_strLoadError.c_str();
}

// True when the library has no entry point, which is allowed.
bool CompatCallModuleEntry(HMODULE hModule, DWORD nReason) {
    const auto entry = ModuleEntries().find(hModule);
    return entry == ModuleEntries().end() || entry->second(hModule, nReason, nullptr) != FALSE;
}

HMODULE WINAPI LoadLibraryW(LPCWSTR pszFileName) {
    t_strLoadError.clear();
    const std::string strPath = NativePath(pszFileName);
    const std::lock_guard lock(ModuleMutex());
    void* pLoaderHandle = dlopen(strPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (pLoaderHandle == nullptr) {
        t_strLoadError = dlerror();
        const bool bBadFile = access(strPath.c_str(), F_OK) == 0 && !IsLibraryFile(strPath);
        SetLastError(bBadFile ? ERROR_BAD_EXE_FORMAT : ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    const HMODULE hModule = ModuleOf(LoaderEntry(pLoaderHandle));
    if (const auto loaded = LoadedModules().find(hModule); loaded != LoadedModules().end()) {
        loaded->second.nUses++;
        dlclose(pLoaderHandle); // one loader handle stands for all uses
        return hModule;
    }
    LoadedModules()[hModule] = {pLoaderHandle, 1};
    if (!CompatCallModuleEntry(hModule, DLL_PROCESS_ATTACH)) {
        // As on Windows, a library that refuses is told to detach, too.
        CompatCallModuleEntry(hModule, DLL_PROCESS_DETACH);
        LoadedModules().erase(hModule);
        dlclose(pLoaderHandle);
        t_strLoadError = strPath + ": refused by its DllMain";
        SetLastError(ERROR_DLL_INIT_FAILED);
        return nullptr;
    }
    return hModule;
}

BOOL WINAPI FreeLibrary(HMODULE hModule) {
    const std::lock_guard lock(ModuleMutex());
    const auto loaded = LoadedModules().find(hModule);
    if (loaded == LoadedModules().end())
        return FALSE;
    if (--loaded->second.nUses > 0)
        return TRUE;
    void* pLoaderHandle = loaded->second.pLoaderHandle;
    CompatCallModuleEntry(hModule, DLL_PROCESS_DETACH);
    LoadedModules().erase(hModule);
    dlclose(pLoaderHandle);
    return TRUE;
}

FARPROC WINAPI GetProcAddress(HMODULE hModule, LPCSTR pszName) {
    const std::lock_guard lock(ModuleMutex());
    const auto loaded = LoadedModules().find(hModule);
    void* pAddress = loaded == LoadedModules().end() ? nullptr : dlsym(loaded->second.pLoaderHandle, pszName);
    return ModuleFromAddress(pAddress) == hModule ? reinterpret_cast<FARPROC>(pAddress) : nullptr;
}

HMODULE WINAPI GetModuleHandleW(LPCWSTR pszModuleName) {
    const std::lock_guard lock(ModuleMutex());
    void* pLoaderHandle = dlopen(nullptr, RTLD_LAZY);
    const link_map* pEntry = LoaderEntry(pLoaderHandle); // the program's; those of the libraries follow it
    dlclose(pLoaderHandle);
    if (pszModuleName == nullptr)
        return ModuleOf(pEntry);
    const std::string strName = WideToUtf8(pszModuleName);
    while (pEntry != nullptr && std::filesystem::path(pEntry->l_name).filename() != strName)
        pEntry = pEntry->l_next;
    return pEntry == nullptr ? nullptr : ModuleOf(pEntry);
}

DWORD WINAPI GetCurrentProcessId() {
    return static_cast<DWORD>(getpid());
}

DWORD WINAPI GetModuleFileNameW(HMODULE, LPWSTR pszFileName, DWORD nSize) {
    std::error_code error; // then the path is empty
    const std::wstring strPath = ToWide(CP_UTF8, std::filesystem::read_symlink("/proc/self/exe", error).native());
    const std::size_t nCopied = std::min<std::size_t>(strPath.size(), nSize - 1);
    std::wmemcpy(pszFileName, strPath.data(), nCopied);
    pszFileName[nCopied] = 0;
    return nCopied < strPath.size() ? nSize : static_cast<DWORD>(nCopied);
}
