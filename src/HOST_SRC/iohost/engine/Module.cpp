#include "engine/Module.h"

#include "base/Platform.h"
#include "base/TextUtf8.h"

namespace {

std::string WhyNotLoaded(DWORD nError) {
    switch (nError) {
    case ERROR_BAD_EXE_FORMAT:
        return "it isn't a library of this system";
    case ERROR_DLL_INIT_FAILED:
        return "it refused to be loaded";
    case ERROR_MOD_NOT_FOUND:
        return "a library or a function that it needs is missing";
    default:
        return "error " + std::to_string(nError);
    }
}

} // namespace

std::unique_ptr<CModule> CModule::Load(const std::filesystem::path& file, std::string& strError) {
    const std::string strSubject = "the module " + Utf8(file) + " ";
    std::error_code error;
    const std::filesystem::path absoluteFile = std::filesystem::absolute(file, error);
    if (error || !std::filesystem::exists(absoluteFile, error)) {
        strError = strSubject + "can't be loaded: there is no such file";
        return nullptr;
    }
    if (!std::filesystem::is_regular_file(absoluteFile, error)) {
        strError = strSubject + "can't be loaded: it isn't a file";
        return nullptr;
    }
    const HMODULE hModule = LoadLibraryW(absoluteFile.wstring().c_str());
    if (hModule == nullptr) {
        strError = strSubject + "can't be loaded: " + WhyNotLoaded(GetLastError());
        if (const std::string strDetail = LoadErrorDetail(); !strDetail.empty()) {
            strError += " (" + strDetail + ")";
        }
        return nullptr;
    }
    // By way of a plain pointer: the two function types differ.
    const auto pFunction =
        reinterpret_cast<IOProcessFuncType>(reinterpret_cast<void*>(GetProcAddress(hModule, "IOProcessFunc")));
    if (pFunction == nullptr) {
        FreeLibrary(hModule);
        strError = strSubject + "has no function IOProcessFunc";
        return nullptr;
    }
    return std::unique_ptr<CModule>(new CModule(hModule, pFunction));
}

CModule::CModule(HMODULE hModule, IOProcessFuncType pFunction) : m_hModule(hModule), m_pFunction(pFunction) {
    SetClockModule(hModule);
}

CModule::~CModule() {
    SetClockModule(nullptr);
    FreeLibrary(m_hModule);
}
