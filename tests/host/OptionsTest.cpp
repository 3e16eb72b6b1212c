// The command line.
#include <gtest/gtest.h>

#include "HostTest.h"
#include "Options.h"

namespace {

SOptions Parse(const std::vector<std::string>& arguments) {
    std::string strError;
    const auto options = ParseOptions(arguments, "/here", strError);
    EXPECT_TRUE(options) << strError;
    return options.value_or(SOptions());
}

std::string Error(const std::vector<std::string>& arguments) {
    std::string strError;
    EXPECT_FALSE(ParseOptions(arguments, "/here", strError));
    return strError;
}

TEST(Options, DefaultsLieBesideTheProgram) {
    const SOptions options = Parse({"--stdio"});
    EXPECT_EQ(options.nFront, EFront::Stdio);
    EXPECT_EQ(options.appFolder, std::filesystem::path("/here") / "app");
    EXPECT_EQ(options.moduleFile.parent_path(), "/here");
    EXPECT_EQ(options.moduleFile.stem(), "QORIOProcessx");
    EXPECT_EQ(options.listen.webFolder, std::filesystem::path("/here") / "web");
    EXPECT_EQ(options.listen.sceneFolder, std::filesystem::path("/here") / "app" / "scenes");
    EXPECT_EQ(Parse({"--stdio", "--app", "a"}).listen.sceneFolder, std::filesystem::path("a") / "scenes");
    EXPECT_FALSE(options.texts);
    EXPECT_TRUE(options.sceneFile.empty());
}

TEST(Options, AnInstalledModuleComesFirst) {
    const CTemporaryFolder folder;
    const auto installed = folder.Write("Plugins/NodePlugin/" + Parse({"--stdio"}).moduleFile.filename().string(), "");
    EXPECT_EQ(Parse({"--stdio", "--app", folder.Path().string()}).moduleFile, installed);
}

TEST(Options, AllAreRead) {
    const SOptions options =
        Parse({"--listen", "127.0.0.1:1", "--listen", "127.0.0.1:8040", "--app", "a",     "--module", "m.so",
               "--texts",  "zh",          "--scene",  "s.json",         "--fps", "29.97", "--web",    "w",
               "--scenes", "s",           "--record", "r.jsonl"});
    EXPECT_EQ(options.nFront, EFront::Page);
    EXPECT_EQ(options.listen.strAddress, "127.0.0.1");
    EXPECT_EQ(options.listen.nPort, 8040) << "the last of two counts";
    EXPECT_EQ(options.listen.fFps, 29.97);
    EXPECT_EQ(options.listen.webFolder, "w");
    EXPECT_EQ(options.listen.sceneFolder, "s");
    EXPECT_EQ(options.appFolder, "a");
    EXPECT_EQ(options.moduleFile, "m.so");
    EXPECT_EQ(options.texts, ETextTable::Chinese);
    EXPECT_EQ(options.sceneFile, "s.json");
    EXPECT_EQ(options.recordFile, "r.jsonl");
    EXPECT_EQ(Parse({"--listen", "[::1]:0"}).listen.strAddress, "::1");
    EXPECT_EQ(Parse({"--listen", "a:1"}).listen.fFps, 60);
    for (const char* pszFps : {"0.01", "1000"}) {
        EXPECT_EQ(Parse({"--listen", "a:1", "--fps", pszFps}).listen.fFps, std::stod(pszFps));
    }
}

TEST(Options, EachFrontHasItsOwn) {
    EXPECT_EQ(Parse({"--stdio"}).evaluation, std::nullopt);
    EXPECT_EQ(Parse({"--stdio", "--evaluate", "event"}).evaluation, EEvaluation::Event);
    EXPECT_EQ(Parse({"--listen", "a:1", "--evaluate", "frame"}).evaluation, EEvaluation::Frame);
    EXPECT_EQ(Parse({"--replay", "r.jsonl"}).nFront, EFront::Replay);
    EXPECT_EQ(Parse({"--replay", "r.jsonl"}).replayFile, "r.jsonl");
    EXPECT_EQ(Parse({"--describe", "markdown"}).nFront, EFront::Describe);
    EXPECT_TRUE(Parse({"--describe", "typescript"}).bDescribeTypes);
    EXPECT_EQ(Parse({"--stdio", "--help"}).nFront, EFront::Help);
    EXPECT_EQ(Parse({"--version"}).nFront, EFront::Version);
    const auto window = Parse({"--window"}).window;
    EXPECT_EQ(Parse({"--window"}).nFront, EFront::Window);
    EXPECT_EQ(std::tuple(window.nWidth, window.nHeight, window.fFps), std::tuple(1280, 720, 60.0));
    const auto chosen = Parse({"--window", "--size", "640x480", "--fps", "30", "--scene", "s", "--record", "r"}).window;
    EXPECT_EQ(std::tuple(chosen.nWidth, chosen.nHeight, chosen.fFps), std::tuple(640, 480, 30.0));
}

TEST(Options, TheStandInDeviceCanMisbehave) {
    const auto plain = Parse({"--device", "9000"}).device;
    EXPECT_EQ(Parse({"--device", "9000"}).nFront, EFront::Device);
    EXPECT_EQ(std::tuple(plain.strAddress, plain.nPort, plain.bFramed, plain.bRefuse, plain.bStall, plain.strSay),
              std::tuple("127.0.0.1", 9000, true, false, false, ""));
    EXPECT_FALSE(plain.delay || plain.dropAfter);
    const auto direct = Parse({"--device", "[::1]:9001", "--parser", "direct", "--delay", "250", "--say", "{}",
                               "--drop-after", "7", "--refuse", "--stall"})
                            .device;
    EXPECT_EQ(std::tuple(direct.strAddress, direct.nPort, direct.bFramed, direct.bRefuse, direct.bStall, direct.strSay),
              std::tuple("::1", 9001, false, true, true, "{}"));
    EXPECT_EQ(direct.delay, 250u);
    EXPECT_EQ(direct.dropAfter, 7u);
}

TEST(Options, WrongOnesAreNamed) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{}, "one of --stdio, --listen, --window, --device, --describe and --replay is required"},
        {{"--fly"}, "The following argument was not expected: --fly"},
        {{"--stdio", "--listen", "127.0.0.1:1"}, "--stdio excludes --listen"},
        {{"--stdio", "--module", ""}, R"(--module: "" is no value for it)"},
        {{"--stdio", "--texts", "fr"}, R"(--texts: "fr" is none of keys, en, zh)"},
        {{"--device", "1", "--parser", "json"}, R"(--parser: "json" is none of framed, direct)"},
        {{"--device", "1", "--delay", "soon"}, R"(--delay: "soon" isn't a whole number)"},
        {{"--device", "65536"}, R"(--device: "65536" isn't an address and a port, as in 127.0.0.1:8040)"},
        {{"--describe", "html"}, R"(--describe: "html" is none of markdown, typescript)"},
        {{"--stdio", "--fps", "30"}, "--stdio excludes --fps"},
        {{"--stdio", "--size", "1x1"}, "--stdio excludes --size"},
        {{"--stdio", "--web", "w"}, "--stdio excludes --web"},
        {{"--stdio", "--say", "t"}, "--stdio excludes --say"},
        {{"--describe", "markdown", "--scene", "s"}, "--describe excludes --scene"},
        {{"--stdio", "--evaluate", "never"}, "--evaluate: \"never\" is none of event, frame"},
    };
    for (const auto& [arguments, strError] : cases) {
        EXPECT_EQ(Error(arguments), strError);
    }
    for (const std::string strAddress : {"8040", ":8040", "a:65536", "a:1x"}) {
        EXPECT_EQ(Error({"--listen", strAddress}),
                  "--listen: \"" + strAddress + "\" isn't an address and a port, as in 127.0.0.1:8040");
    }
    for (const std::string strFps : {"0", "0.009", "1e-11", "-1", "nan", "1001"}) {
        EXPECT_EQ(Error({"--listen", "a:1", "--fps", strFps}),
                  "--fps: \"" + strFps + "\" isn't a number from 0.01 to 1000");
    }
    for (const std::string strSize : {"100", "100x0", "9x99999"}) {
        EXPECT_EQ(Error({"--window", "--size", strSize}),
                  "--size: \"" + strSize + "\" isn't a width and a height, as in 1280x720");
    }
}

} // namespace
