// Shared libraries, over dlopen.

#include "module_table.h"
#include "text.h"

#include <compat/module_registry.h>
#include <compat/testing.h>

#include <algorithm>
#include <climits>
#include <dlfcn.h>
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

HMODULE ModuleFromLoaderHandle(void* pLoaderHandle) {
    link_map* pMap = nullptr;
    if (dlinfo(pLoaderHandle, RTLD_DI_LINKMAP, &pMap) != 0)
        return nullptr;
    return ModuleFromAddress(pMap->l_ld); // the library's own dynamic section
}

HMODULE ProgramModule() {
    void* pLoaderHandle = dlopen(nullptr, RTLD_LAZY);
    const HMODULE hModule = ModuleFromLoaderHandle(pLoaderHandle);
    dlclose(pLoaderHandle);
    return hModule;
}

std::string ProgramPath() {
    char szPath[PATH_MAX];
    const ssize_t nLength = readlink("/proc/self/exe", szPath, sizeof(szPath));
    return nLength > 0 ? std::string(szPath, static_cast<std::size_t>(nLength)) : std::string();
}

std::string ModulePath(HMODULE hModule) {
    if (hModule == nullptr || hModule == ProgramModule())
        return ProgramPath();
    Dl_info info;
    if (dladdr(hModule, &info) == 0 || info.dli_fbase != hModule)
        return std::string();
    char szPath[PATH_MAX];
    return realpath(info.dli_fname, szPath) != nullptr ? szPath : info.dli_fname;
}

// True when the library has no entry point, which is allowed.
bool CallEntry(HMODULE hModule, DWORD nReason) {
    const auto entry = ModuleEntries().find(hModule);
    return entry == ModuleEntries().end() || entry->second(hModule, nReason, nullptr) != FALSE;
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

HMODULE WINAPI LoadLibraryW(LPCWSTR pszFileName) {
    t_strLoadError.clear();
    if (pszFileName == nullptr || *pszFileName == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    std::string strPath = NativePath(pszFileName);
    if (strPath.find('/') == std::string::npos) {
        // A bare name is looked for beside the program first.
        const std::string strProgram = ProgramPath();
        const std::string strBeside = strProgram.substr(0, strProgram.rfind('/') + 1) + strPath;
        if (access(strBeside.c_str(), F_OK) == 0)
            strPath = strBeside;
    }

    const std::lock_guard lock(ModuleMutex());
    void* pLoaderHandle = dlopen(strPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (pLoaderHandle == nullptr) {
        t_strLoadError = dlerror();
        const bool bBadFile = access(strPath.c_str(), F_OK) == 0 && !IsLibraryFile(strPath);
        SetLastError(bBadFile ? ERROR_BAD_EXE_FORMAT : ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    const HMODULE hModule = ModuleFromLoaderHandle(pLoaderHandle);
    if (const auto loaded = LoadedModules().find(hModule); loaded != LoadedModules().end()) {
        loaded->second.nUses++;
        dlclose(pLoaderHandle); // one loader handle stands for all uses
        return hModule;
    }
    LoadedModules()[hModule] = {pLoaderHandle, 1};
    if (!CallEntry(hModule, DLL_PROCESS_ATTACH)) {
        // As on Windows, a library that refuses is told to detach, too.
        CallEntry(hModule, DLL_PROCESS_DETACH);
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
    if (loaded == LoadedModules().end()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (--loaded->second.nUses > 0)
        return TRUE;
    void* pLoaderHandle = loaded->second.pLoaderHandle;
    CallEntry(hModule, DLL_PROCESS_DETACH);
    LoadedModules().erase(hModule);
    dlclose(pLoaderHandle);
    return TRUE;
}

FARPROC WINAPI GetProcAddress(HMODULE hModule, LPCSTR pszName) {
    const std::lock_guard lock(ModuleMutex());
    if (hModule == nullptr)
        hModule = ProgramModule();
    const bool bIsOrdinal = reinterpret_cast<std::uintptr_t>(pszName) >> 16 == 0; // libraries here have none
    void* pLoaderHandle = nullptr;
    if (hModule == ProgramModule())
        pLoaderHandle = dlopen(nullptr, RTLD_LAZY);
    else if (const std::string strPath = ModulePath(hModule); !strPath.empty())
        pLoaderHandle = dlopen(strPath.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (pLoaderHandle == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    void* pAddress = bIsOrdinal ? nullptr : dlsym(pLoaderHandle, pszName);
    dlclose(pLoaderHandle); // the module stays loaded by its own count
    if (pAddress == nullptr || ModuleFromAddress(pAddress) != hModule) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    return reinterpret_cast<FARPROC>(pAddress);
}

HMODULE WINAPI GetModuleHandleW(LPCWSTR pszModuleName) {
    if (pszModuleName == nullptr)
        return ProgramModule();

    struct SSearch {
        std::string strName;
        HMODULE hModule;
    } search{NativePath(pszModuleName), nullptr};
    if (search.strName.find('/') != std::string::npos) {
        void* pLoaderHandle = dlopen(search.strName.c_str(), RTLD_LAZY | RTLD_NOLOAD);
        if (pLoaderHandle != nullptr) {
            search.hModule = ModuleFromLoaderHandle(pLoaderHandle);
            dlclose(pLoaderHandle);
        }
    } else {
        const auto compareName = [](dl_phdr_info* pInfo, std::size_t, void* pData) {
            SSearch& wanted = *static_cast<SSearch*>(pData);
            const std::string strPath = pInfo->dlpi_name;
            if (strPath.substr(strPath.rfind('/') + 1) != wanted.strName || strPath.empty() || pInfo->dlpi_phnum == 0)
                return 0;
            const void* pFirstSegment = reinterpret_cast<const void*>(pInfo->dlpi_addr + pInfo->dlpi_phdr->p_vaddr);
            wanted.hModule = ModuleFromAddress(pFirstSegment);
            return 1;
        };
        dl_iterate_phdr(compareName, &search);
    }
    if (search.hModule == nullptr)
        SetLastError(ERROR_MOD_NOT_FOUND);
    return search.hModule;
}

DWORD WINAPI GetModuleFileNameW(HMODULE hModule, LPWSTR pszFileName, DWORD nSize) {
    const std::wstring strPath = Utf8ToWide(ModulePath(hModule));
    if (strPath.empty()) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return 0;
    }
    if (pszFileName == nullptr || nSize == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    const std::size_t nCopied = std::min<std::size_t>(strPath.size(), nSize - 1);
    std::wmemcpy(pszFileName, strPath.data(), nCopied);
    pszFileName[nCopied] = 0;
    if (nCopied < strPath.size()) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return nSize;
    }
    return static_cast<DWORD>(nCopied);
}
