// The program itself, run with --stdio.
#include "HostTest.h"

#include <algorithm>
#include <cstdlib>
#include <random>
#include <sstream>

#if __has_include(<sys/wait.h>)
#include <sys/wait.h>
#endif

namespace {

class Program : public testing::Test {
protected:
    struct SResult {
        int nExitCode;
        std::string strOutput;
        std::string strErrors;
    };

    SResult Run(const std::string& strArguments, const std::string& strInput) {
        const auto input = m_folder.Write("in", strInput);
        const auto output = m_folder.Path() / "out";
        const auto errors = m_folder.Path() / "errors";
        std::string strCommand = Quote(PROGRAM_FILE) + " " + strArguments + " < " + Quote(input) + " > " +
                                 Quote(output) + " 2> " + Quote(errors);
#if defined(_WIN32)
        strCommand = "\"" + strCommand + "\""; // its command interpreter takes the outermost quotes away
#endif
        int nStatus = std::system(strCommand.c_str());
#ifdef WEXITSTATUS
        EXPECT_TRUE(WIFEXITED(nStatus));
        nStatus = WEXITSTATUS(nStatus);
#endif
        return {nStatus, ReadAll(output), ReadAll(errors)};
    }

    std::string Quote(std::filesystem::path path) {
        return "\"" + path.make_preferred().string() + "\"";
    }

    /// Arguments of a session on an application folder without anything in it.
    std::string Stdio() {
        return "--stdio --texts keys --app " + Quote(m_folder.Path());
    }

    CTemporaryFolder m_folder;
};

TEST_F(Program, SessionRunsToTheEndOfItsInputOrToQuit) {
    for (const char* pszEnd : {"", "{\"op\":\"quit\"}\nnever read\n"}) {
        const SResult result = Run(Stdio(), Request(CREATE_MOUSE).dump() + "\n{\"op\":\"process\"}\n" + pszEnd);
        EXPECT_EQ(result.nExitCode, 0);
        EXPECT_EQ(result.strOutput,
                  "{\"ok\":true,\"result\":1,\"created\":true}\n{\"ok\":true,\"results\":{\"m\":1}}\n" +
                      std::string(*pszEnd != 0 ? "{\"ok\":true}\n" : ""));
        EXPECT_EQ(result.strErrors, "");
    }
}

TEST_F(Program, ABroadcastPortThatIsNoneIsTold) {
    m_folder.Write("Config/PortConfig.ini", "[iFable]\nBroadcastPort=70000\n");
    const SResult result = Run(Stdio(), "{\"op\":\"listen\"}\n");
    EXPECT_EQ(result.strOutput, "{\"ok\":true,\"broadcast\":null,\"control\":null}\n");
    EXPECT_TRUE(result.strErrors.starts_with("iohost: Config/PortConfig.ini: BroadcastPort 70000 is no port: "))
        << result.strErrors;
    EXPECT_NE(result.strErrors.find("to port 4464"), std::string::npos) << result.strErrors;
}

TEST_F(Program, TextsComeFromTheApplicationFolder) {
    const std::string strApp = " --app " + Quote(APP_FOLDER);
    const std::string strHere = " --app " + Quote(m_folder.Path());
    const std::pair<std::string, const char*> cases[] = {{"--texts zh" + strApp, "鼠标"},
                                                         {strApp, "Mouse"},
                                                         {"--texts keys" + strApp, "IO_PROCESS_MOUSE\""},
                                                         {strHere, "IO_PROCESS_MOUSE\""}}; // which has no table
    for (const auto& [strArguments, pszName] : cases) {
        const SResult result = Run("--stdio " + strArguments, Request(CREATE_MOUSE).dump() + "\n{\"op\":\"scene\"}\n");
        EXPECT_NE(result.strOutput.find("\"name\":\"" + std::string(pszName)), std::string::npos) << result.strOutput;
    }
    const SResult result = Run("--stdio --texts en" + strHere, "");
    EXPECT_EQ(result.nExitCode, 1);
    EXPECT_NE(result.strErrors.find("text table"), std::string::npos);
}

TEST_F(Program, GarbageIsAnsweredLineByLine) {
    std::mt19937 random(20240501);
    std::string strGarbage;
    for (int i = 0; i < 200'000; ++i) {
        strGarbage.push_back(static_cast<char>(random()));
    }
    strGarbage += "\n{\"op\":\"objects\"}\n";
    const SResult result = Run(Stdio(), strGarbage);
    EXPECT_EQ(result.nExitCode, 0);
    EXPECT_EQ(result.strErrors, "");
    EXPECT_EQ(std::ranges::count(result.strOutput, '\n'), std::ranges::count(strGarbage, '\n'));
    EXPECT_TRUE(result.strOutput.ends_with("\n{\"ok\":true,\"objects\":[]}\n"));
    std::istringstream lines(result.strOutput);
    for (std::string strLine; std::getline(lines, strLine);) {
        EXPECT_TRUE(Json::accept(strLine)) << strLine;
    }
}

TEST_F(Program, LineOfAMillionCharactersIsTaken) {
    const std::string strText(1'000'000, 'x');
    const SResult result = Run(Stdio(), R"({"op":"object","clip":"C","name":")" + strText +
                                            "\"}\n{\"op\":\"objects\"}\n" + strText + "\n{\"op\":\"quit\"}\n");
    EXPECT_EQ(result.nExitCode, 0);
    EXPECT_NE(result.strOutput.find(R"("name":")" + strText + "\""), std::string::npos);
    EXPECT_TRUE(
        result.strOutput.ends_with("{\"ok\":false,\"error\":\"request: not JSON, from byte 1 on\"}\n{\"ok\":true}\n"));
}

TEST_F(Program, WrongOptionsEndWithTwoAndAMessage) {
    const SResult result = Run("--stdio --fly", "");
    EXPECT_EQ(result.nExitCode, 2);
    EXPECT_EQ(result.strOutput, "");
    EXPECT_TRUE(result.strErrors.starts_with("iohost: "));
}

TEST_F(Program, HelpAndVersionArePrinted) {
    const SResult help = Run("--help", "");
    EXPECT_EQ(help.nExitCode, 0);
    for (const char* pszOption : {"--stdio", "--listen", "--app", "--module", "--texts", "--scene", "--fps", "--web"}) {
        EXPECT_NE(help.strOutput.find(pszOption), std::string::npos) << pszOption;
    }
    const SResult version = Run("--version", "");
    EXPECT_EQ(version.nExitCode, 0);
    EXPECT_EQ(version.strOutput, "iohost " IOHOST_VERSION "\n");
}

TEST_F(Program, ASceneIsNoPlaceForARecording) {
    const std::string strScene = R"({"format":"iohost scene","version":1,"nodes":[]})";
    const auto scene = m_folder.Write("scene.json", strScene);
    std::filesystem::create_directory(m_folder.Path() / "sub");
    std::filesystem::create_hard_link(scene, m_folder.Path() / "other.json");
    for (const auto& record : {scene, m_folder.Path() / "sub" / ".." / "scene.json", m_folder.Path() / "other.json"}) {
        const SResult result = Run(Stdio() + " --scene " + Quote(scene) + " --record " + Quote(record), "");
        EXPECT_EQ(result.nExitCode, 2);
        EXPECT_NE(result.strErrors.find("is the file of --scene"), std::string::npos) << result.strErrors;
        EXPECT_EQ(ReadAll(scene), strScene);
    }
    const auto none = m_folder.Path() / "none.json";
    EXPECT_EQ(Run(Stdio() + " --scene " + Quote(none) + " --record " + Quote(none), "").nExitCode, 2);
    EXPECT_FALSE(std::filesystem::exists(none));
}

TEST_F(Program, ARecordingIsNotMadeOverItsOwnRequests) {
    const std::string strRequest = "{\"op\":\"objects\"}\n";
    const auto input = m_folder.Path() / "in";
    const SResult result = Run(Stdio() + " --record " + Quote(input), strRequest);
    EXPECT_NE(result.nExitCode, 0);
    EXPECT_TRUE(result.strErrors.starts_with("iohost: --record: ")) << result.strErrors; // or Windows doesn't share it
    EXPECT_EQ(ReadAll(input), strRequest);
}

TEST_F(Program, WhatASceneOrARecordingHoldsDoesNotSteerTheTerminal) {
    const auto scene = m_folder.Write("scene.json", R"({"format":"iohost scene","version":1,"nodes":[
        {"node":"\u001b]0;x\u0007","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":null,"graph":"G"},
        {"node":"\u001b]0;x\u0007","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":null,"graph":"G"}]})");
    const SResult loaded = Run(Stdio() + " --scene " + Quote(scene), "");
    EXPECT_EQ(loaded.nExitCode, 1);
    EXPECT_NE(loaded.strErrors.find(R"(\x1B]0;x\x07)"), std::string::npos) << loaded.strErrors;
    EXPECT_EQ(loaded.strErrors.find('\x1B'), std::string::npos);

    const auto recording = m_folder.Write(
        "recording.jsonl", "{\"op\":\"recording\",\"version\":1,\"texts\":\"keys\",\"reply\":{\"ok\":true}}\n"
                           "{\"op\":\"\\u001b[2J\",\"reply\":{\"ok\":true,\"\\u009b\":1}}\n");
    const SResult replayed = Run("--replay " + Quote(recording) + " --app " + Quote(m_folder.Path()), "");
    EXPECT_EQ(replayed.nExitCode, 3);
    EXPECT_NE(replayed.strOutput.find(R"(line 2, \x1B[2J: )"), std::string::npos) << replayed.strOutput;
    EXPECT_NE(replayed.strOutput.find(R"(\x9B: recorded 1, now nothing)"), std::string::npos) << replayed.strOutput;
    EXPECT_EQ(replayed.strOutput.find('\x1B'), std::string::npos);
}

TEST_F(Program, SceneIsLoadedAtTheStart) {
    const auto scene = m_folder.Write("scene.json", R"({"format":"iohost scene","version":1,"nodes":[
        {"node":"m","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":"Intro","graph":"Mouse 1"}]})");
    EXPECT_EQ(Run(Stdio() + " --scene " + Quote(scene), "{\"op\":\"process\"}\n").strOutput,
              "{\"ok\":true,\"results\":{\"m\":1}}\n");
    const SResult result = Run(Stdio() + " --scene " + Quote(m_folder.Path() / "none.json"), "");
    EXPECT_EQ(result.nExitCode, 1);
    EXPECT_NE(result.strErrors.find("none.json: file: can't be read"), std::string::npos) << result.strErrors;
}

} // namespace
