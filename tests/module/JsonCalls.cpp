#include "JsonCalls.h"

#include <utility>

#include "ModuleHost.h"

// The library's functions that are replaced here must be seen by the other libraries.
#pragma GCC visibility push(default)
#include "host/HostJson.h"
#pragma GCC visibility pop

namespace {

bool s_bLoseLastValue = false;

using ParseDataFormJsObj = decltype(G_ParseDataFormJsObj);

void ParseObject(ParseDataFormJsObj* pParse, const web::json::value& value, CStringArray& arKey,
                 CStringArray& arValue) {
    pParse(value, arKey, arValue);
    if (s_bLoseLastValue && !arValue.IsEmpty()) {
        arValue.RemoveAt(arValue.GetUpperBound());
    }
}

} // namespace

#if defined(_WIN32)

// The module's import of the function is led here.

namespace {

void WatchedParse(const web::json::value& value, CStringArray& arKey, CStringArray& arValue) {
    ParseObject(G_ParseDataFormJsObj, value, arKey, arValue);
}

template <typename T>
T* At(HMODULE hModule, DWORD nOffset) {
    return reinterpret_cast<T*>(reinterpret_cast<BYTE*>(hModule) + nOffset);
}

void ReplaceImport(HMODULE hModule, ULONG_PTR nOriginal, ULONG_PTR nReplacement) {
    const auto* pHeader = At<IMAGE_NT_HEADERS>(hModule, static_cast<DWORD>(At<IMAGE_DOS_HEADER>(hModule, 0)->e_lfanew));
    const DWORD nImports = pHeader->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* pImport = At<IMAGE_IMPORT_DESCRIPTOR>(hModule, nImports); pImport->Name != 0; ++pImport) {
        for (auto* pAddress = At<ULONG_PTR>(hModule, pImport->FirstThunk); *pAddress != 0; ++pAddress) {
            if (*pAddress == nOriginal) {
                DWORD nProtection;
                VirtualProtect(pAddress, sizeof(*pAddress), PAGE_READWRITE, &nProtection);
                *pAddress = nReplacement;
                VirtualProtect(pAddress, sizeof(*pAddress), nProtection, &nProtection);
            }
        }
    }
}

} // namespace

LostLastValue::LostLastValue() {
    ReplaceImport(GetModuleHandleW(ModuleHost::ModulePath().c_str()),
                  reinterpret_cast<ULONG_PTR>(&G_ParseDataFormJsObj), reinterpret_cast<ULONG_PTR>(&WatchedParse));
    s_bLoseLastValue = true;
}

#else

// The program's own definitions come before those of its libraries, for every caller.

#include <dlfcn.h>

namespace {

size_t s_nParsedTexts = 0;

template <typename Function>
Function* Next(const char* pszName) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, pszName));
}

} // namespace

LostLastValue::LostLastValue() {
    s_bLoseLastValue = true;
}

size_t TakeParsedTexts() {
    return std::exchange(s_nParsedTexts, 0);
}

// Hidden ones would be the program's alone.
#pragma GCC visibility push(default)

void G_ParseDataFormJsObj(const web::json::value& value, CStringArray& arKey, CStringArray& arValue) {
    static const auto s_pParse =
        Next<ParseDataFormJsObj>("_Z20G_ParseDataFormJsObjRKN3web4json5valueER12CStringArrayS5_");
    ParseObject(s_pParse, value, arKey, arValue);
}

web::json::value web::json::value::parse(const utility::string_t& strText) {
    static const auto s_pParse = Next<decltype(web::json::value::parse(strText))(const utility::string_t&)>(
        "_ZN3web4json5value5parseERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE");
    ++s_nParsedTexts;
    return s_pParse(strText);
}

#pragma GCC visibility pop

#endif

LostLastValue::~LostLastValue() {
    s_bLoseLastValue = false;
}
