#include "engine/Module.h"

#include <stdexcept>
#include <string>

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

CModule::CModule(const std::filesystem::path& file) {
    const std::string strSubject = "the module " + Utf8(file) + " ";
    std::error_code error;
    const std::filesystem::path absoluteFile = std::filesystem::absolute(file, error);
    if (error || !std::filesystem::exists(absoluteFile, error)) {
        throw std::runtime_error(strSubject + "can't be loaded: there is no such file");
    }
    if (!std::filesystem::is_regular_file(absoluteFile, error)) {
        throw std::runtime_error(strSubject + "can't be loaded: it isn't a file");
    }
    m_hModule = LoadLibraryW(absoluteFile.wstring().c_str());
    if (m_hModule == nullptr) {
        const std::string strWhy = WhyNotLoaded(GetLastError());
        const std::string strDetail = LoadErrorDetail();
        throw std::runtime_error(strSubject + "can't be loaded: " + strWhy +
                                 (strDetail.empty() ? "" : " (" + strDetail + ")"));
    }
    // By way of a plain pointer: the two function types differ.
    m_pFunction =
        reinterpret_cast<IOProcessFuncType>(reinterpret_cast<void*>(GetProcAddress(m_hModule, "IOProcessFunc")));
    if (m_pFunction == nullptr) {
        FreeLibrary(m_hModule);
        throw std::runtime_error(strSubject + "has no function IOProcessFunc");
    }
    SetModule(m_hModule);
}

CModule::~CModule() {
    SetModule(nullptr);
    FreeLibrary(m_hModule);
}
