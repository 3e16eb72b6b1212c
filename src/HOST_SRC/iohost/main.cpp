// iohost: the reference host.
#include <iostream>

#include "Options.h"
#include "Platform.h"
#include "Session.h"
#include "StdioFront.h"
#include "TextUtf8.h"

namespace {

constexpr int EXIT_SESSION = 1; ///< the session can't be opened, or its scene not loaded
constexpr int EXIT_OPTIONS = 2; ///< the command line is wrong

std::filesystem::path ProgramFolder() {
    wchar_t szFile[4096];
    const DWORD nLength = GetModuleFileNameW(nullptr, szFile, static_cast<DWORD>(std::size(szFile)));
    return std::filesystem::path(std::wstring(szFile, nLength)).parent_path();
}

/// The text table to use when none was asked for.
ETextTable DefaultTexts(const std::filesystem::path& appFolder) {
    std::error_code error;
    return std::filesystem::exists(appFolder / "Config" / "Texts" / "en.json", error) ? ETextTable::English
                                                                                      : ETextTable::Keys;
}

} // namespace

int main(int nArguments, char** ppszArguments) {
    std::ios::sync_with_stdio(false);
    PrepareStandardStreams();
    std::string strError;
    const auto options = ParseOptions({ppszArguments + 1, ppszArguments + nArguments}, ProgramFolder(), strError);
    if (!options) {
        std::cerr << "iohost: " << strError << '\n';
        return EXIT_OPTIONS;
    }
    if (options->nFront == EFront::Help) {
        std::cout << HELP_TEXT;
        return 0;
    }
    if (options->nFront == EFront::Version) {
        std::cout << "iohost " IOHOST_VERSION "\n";
        return 0;
    }
    if (options->nFront == EFront::Device) {
        return RunStandInDevice(options->device, std::cout);
    }
    const auto pSession = CSession::Open({.appFolder = options->appFolder,
                                          .moduleFile = options->moduleFile,
                                          .texts = options->texts.value_or(DefaultTexts(options->appFolder))},
                                         strError);
    if (pSession == nullptr) {
        std::cerr << "iohost: " << strError << '\n';
        return EXIT_SESSION;
    }
    if (!options->sceneFile.empty()) {
        const OrderedJson reply = pSession->Handle({{"op", "load"}, {"file", Utf8(options->sceneFile)}});
        if (!reply["ok"]) {
            std::cerr << "iohost: --scene " << Utf8(options->sceneFile) << ": " << reply["error"].get<std::string>()
                      << '\n';
            return EXIT_SESSION;
        }
    }
    if (options->nFront == EFront::Page) {
        return RunPageServer(*pSession, options->listen);
    }
    RunStdio(*pSession, std::cin, std::cout);
    return 0;
}
