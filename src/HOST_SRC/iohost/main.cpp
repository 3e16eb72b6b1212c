// iohost: the reference host.
#include <iostream>

#include "Options.h"
#include "base/HostLine.h"
#include "base/Platform.h"
#include "base/PrintableText.h"
#include "base/TextUtf8.h"
#include "fronts/describe/Describe.h"
#include "fronts/recording/Recorder.h"
#include "fronts/recording/Replay.h"
#include "fronts/stdio/StdioFront.h"
#include "network/Peers.h"
#include "protocol/SceneFile.h"

namespace {

constexpr int EXIT_SESSION = 1; ///< the session can't be opened, its scene not loaded, a file not read or written
constexpr int EXIT_OPTIONS = 2; ///< the command line is wrong
constexpr int EXIT_REPLAY = 3;  ///< replies differ from the recorded ones

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

int Fail(const std::string& strError, int nExitCode = EXIT_SESSION) {
    std::cerr << "iohost: " << PrintableText(strError) << '\n';
    return nExitCode;
}

/// Whether two names are of one file, which needn't be there yet.
bool IsSameFile(const std::filesystem::path& one, const std::filesystem::path& other) {
    std::error_code error;
    if (std::filesystem::equivalent(one, other, error)) {
        return true;
    }
    const auto place = std::filesystem::weakly_canonical(std::filesystem::absolute(one, error), error);
    return !error && place == std::filesystem::weakly_canonical(std::filesystem::absolute(other, error), error);
}

/// The fronts that have a session with the module.
int RunSession(const SOptions& options) {
    std::string strError;
    std::unique_ptr<CReplay> pReplay;
    if (options.nFront == EFront::Replay) {
        pReplay = CReplay::Open(options.replayFile, strError);
        if (pReplay == nullptr) {
            return Fail("--replay: " + strError);
        }
    }
    const ETextTable nDefaultTexts = pReplay != nullptr ? pReplay->Texts() : DefaultTexts(options.appFolder);
    const auto pSession = CSession::Open({.appFolder = options.appFolder,
                                          .moduleFile = options.moduleFile,
                                          .texts = options.texts.value_or(nDefaultTexts),
                                          .bMayBroadcast = pReplay == nullptr},
                                         strError);
    if (pSession == nullptr) {
        return Fail(strError);
    }
    if (pReplay != nullptr) {
        const CReplay::EResult nResult = pReplay->Run(*pSession, std::cout);
        return nResult == CReplay::EResult::Same        ? 0
               : nResult == CReplay::EResult::Different ? EXIT_REPLAY
                                                        : EXIT_SESSION;
    }
    if (options.nFront == EFront::Describe) {
        std::cout << (options.bDescribeTypes ? ProtocolTypes() : NodeTypesMarkdown(*pSession)) << std::flush;
        return std::cout ? 0 : EXIT_SESSION;
    }
    // A script evaluates nodes itself.
    pSession->SetEvaluation(
        options.evaluation.value_or(options.nFront == EFront::Stdio ? EEvaluation::Frame : EEvaluation::Event));
    std::unique_ptr<CRecorder> pRecorder;
    if (!options.recordFile.empty()) {
        if (!options.sceneFile.empty() && IsSameFile(options.sceneFile, options.recordFile)) {
            return Fail("--record: " + Utf8(options.recordFile) + " is the file of --scene", EXIT_OPTIONS);
        }
        if (options.nFront == EFront::Stdio && IsSameFile(StandardInputFile(), options.recordFile)) {
            return Fail("--record: " + Utf8(options.recordFile) + " is what standard input reads", EXIT_OPTIONS);
        }
        pRecorder = CRecorder::Open(*pSession, options.recordFile, strError);
        if (pRecorder == nullptr) {
            return Fail("--record: " + strError);
        }
    }
    if (!options.sceneFile.empty()) {
        CSystemFiles files;
        const Json reply =
            Json::parse(Answer(*pSession, {{"op", "load"}, {"file", Utf8(options.sceneFile)}, {"step", false}}, files));
        if (!reply["ok"]) {
            return Fail("--scene " + Utf8(options.sceneFile) + ": " + reply["error"].get<std::string>());
        }
    }
    if (const std::string strProblem = ConfiguredPortProblem(); !strProblem.empty()) {
        if (options.nFront == EFront::Stdio) {
            std::cerr << "iohost: " << strProblem << '\n'; // a script gets log lines only in replies
        } else {
            WriteHostLine(LOG_ERROR, strProblem);
        }
    }
    int nExitCode = 0;
    if (options.nFront == EFront::Page) {
        nExitCode = RunPageServer(*pSession, options.listen);
    } else if (options.nFront == EFront::Window) {
        nExitCode = RunRenderWindow(*pSession, options.window);
    } else {
        RunStdio(*pSession, std::cin, std::cout);
    }
    const bool bLost = pRecorder != nullptr && !pRecorder->IsComplete();
    return nExitCode == 0 && bLost ? EXIT_SESSION : nExitCode;
}

} // namespace

int main(int nArguments, char** ppszArguments) {
    std::ios::sync_with_stdio(false);
    PrepareStandardStreams();
    AllowManySockets();
    std::string strError;
    const auto options = ParseOptions({ppszArguments + 1, ppszArguments + nArguments}, ProgramFolder(), strError);
    if (!options) {
        std::cerr << "iohost: " << strError << "; --help tells more\n";
        return EXIT_OPTIONS;
    }
    if (options->nFront == EFront::Help) {
        std::cout << options->strHelp;
        return 0;
    }
    if (options->nFront == EFront::Version) {
        std::cout << "iohost " IOHOST_VERSION "\n";
        return 0;
    }
    if (options->nFront == EFront::Device) {
        return RunStandInDevice(options->device,
                                [](std::string_view text) { return WriteStandard(STANDARD_OUTPUT, text); });
    }
    return RunSession(*options);
}
