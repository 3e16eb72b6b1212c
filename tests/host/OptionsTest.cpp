// The command line.
#include <gtest/gtest.h>

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

TEST(Options, AllAreRead) {
    const SOptions options = Parse({"--listen", "127.0.0.1:8040", "--app", "a", "--module", "m.so", "--texts", "zh",
                                    "--scene", "s.json", "--fps", "29.97", "--web", "w", "--scenes", "s"});
    EXPECT_EQ(options.nFront, EFront::Page);
    EXPECT_EQ(options.listen.strAddress, "127.0.0.1");
    EXPECT_EQ(options.listen.nPort, 8040);
    EXPECT_EQ(options.listen.fFps, 29.97);
    EXPECT_EQ(options.listen.webFolder, "w");
    EXPECT_EQ(options.listen.sceneFolder, "s");
    EXPECT_EQ(options.appFolder, "a");
    EXPECT_EQ(options.moduleFile, "m.so");
    EXPECT_EQ(options.texts, ETextTable::Chinese);
    EXPECT_EQ(options.sceneFile, "s.json");
    EXPECT_EQ(Parse({"--listen", "[::1]:0"}).listen.strAddress, "::1");
    EXPECT_EQ(Parse({"--listen", "127.0.0.1:1"}).listen.fFps, 60);
    EXPECT_EQ(Parse({"--listen", "127.0.0.1:1", "--fps", "0.01"}).listen.fFps, 0.01);
    EXPECT_EQ(Parse({"--listen", "127.0.0.1:1", "--fps", "1000"}).listen.fFps, 1000);
}

TEST(Options, RecordingsHaveTheirFiles) {
    EXPECT_EQ(Parse({"--stdio", "--record", "r.jsonl"}).recordFile, "r.jsonl");
    EXPECT_EQ(Parse({"--record", "r.jsonl", "--listen", "a:1"}).recordFile, "r.jsonl");
    EXPECT_EQ(Parse({"--stdio"}).evaluation, std::nullopt);
    EXPECT_EQ(Parse({"--stdio", "--evaluate", "event"}).evaluation, EEvaluation::Event);
    EXPECT_EQ(Parse({"--listen", "a:1", "--evaluate", "frame"}).evaluation, EEvaluation::Frame);
    const SOptions options = Parse({"--replay", "r.jsonl", "--texts", "zh"});
    EXPECT_EQ(options.nFront, EFront::Replay);
    EXPECT_EQ(options.replayFile, "r.jsonl");
    EXPECT_EQ(Parse({"--describe", "markdown"}).nFront, EFront::Describe);
    EXPECT_FALSE(Parse({"--describe", "markdown"}).bDescribeTypes);
    EXPECT_TRUE(Parse({"--describe", "typescript"}).bDescribeTypes);
}

TEST(Options, TheLastOfTwoCounts) {
    EXPECT_EQ(Parse({"--listen", "127.0.0.1:1", "--listen", "127.0.0.1:2"}).listen.nPort, 2);
}

TEST(Options, TheWindowHasASizeAndAFrameRate) {
    const SOptions plain = Parse({"--window"});
    EXPECT_EQ(plain.nFront, EFront::Window);
    EXPECT_EQ(plain.window.nWidth, 1280);
    EXPECT_EQ(plain.window.nHeight, 720);
    EXPECT_EQ(plain.window.fFps, 60);
    const SOptions chosen = Parse({"--window", "--size", "640x480", "--fps", "30", "--scene", "s", "--record", "r"});
    EXPECT_EQ(chosen.window.nWidth, 640);
    EXPECT_EQ(chosen.window.nHeight, 480);
    EXPECT_EQ(chosen.window.fFps, 30);
}

TEST(Options, TheStandInDeviceCanMisbehave) {
    const SOptions plain = Parse({"--device", "9000"});
    EXPECT_EQ(plain.nFront, EFront::Device);
    EXPECT_EQ(plain.device.strAddress, "127.0.0.1");
    EXPECT_EQ(plain.device.nPort, 9000);
    EXPECT_TRUE(plain.device.bFramed);
    EXPECT_FALSE(plain.device.delay);
    EXPECT_FALSE(plain.device.dropAfter);
    EXPECT_FALSE(plain.device.bRefuse);
    EXPECT_FALSE(plain.device.bStall);
    EXPECT_TRUE(plain.device.strSay.empty());
    const SOptions direct =
        Parse({"--device", "[::1]:9001", "--parser", "direct", "--delay", "250", "--say", "{}", "--drop-after", "7"});
    EXPECT_EQ(direct.device.strAddress, "::1");
    EXPECT_EQ(direct.device.nPort, 9001);
    EXPECT_FALSE(direct.device.bFramed);
    EXPECT_EQ(direct.device.delay, 250u);
    EXPECT_EQ(direct.device.strSay, "{}");
    EXPECT_EQ(direct.device.dropAfter, 7u);
    EXPECT_TRUE(Parse({"--device", "1", "--refuse"}).device.bRefuse);
    EXPECT_TRUE(Parse({"--device", "1", "--stall"}).device.bStall);
}

TEST(Options, HelpAndVersionNeedNoFront) {
    EXPECT_EQ(Parse({"--help"}).nFront, EFront::Help);
    EXPECT_EQ(Parse({"--version"}).nFront, EFront::Version);
    EXPECT_EQ(Parse({"--stdio", "--help"}).nFront, EFront::Help);
}

TEST(Options, WrongOnesAreNamed) {
    const struct {
        std::vector<std::string> arguments;
        const char* pszError;
    } cases[] = {
        {{}, "one of --stdio, --listen, --window, --device, --describe and --replay is needed; --help tells more"},
        {{"--fly"}, R"(there is no option "--fly"; --help tells more)"},
        {{"stdio"}, R"(there is no option "stdio"; --help tells more)"},
        {{"--stdio", "--listen", "127.0.0.1:1"},
         "--listen: --stdio, --listen, --window, --device, --describe and --replay exclude each other"},
        {{"--stdio", "--app"}, "--app: needs a value"},
        {{"--stdio", "--module", ""}, "--module: needs a value"},
        {{"--stdio", "--texts", "fr"}, R"(--texts: "fr" is none of keys, en, zh)"},
        {{"--listen", "8040"}, R"(--listen: "8040" isn't an address and a port, as in 127.0.0.1:8040)"},
        {{"--listen", ":8040"}, R"(--listen: ":8040" isn't an address and a port, as in 127.0.0.1:8040)"},
        {{"--listen", "a:65536"}, R"(--listen: "a:65536" isn't an address and a port, as in 127.0.0.1:8040)"},
        {{"--listen", "a:1x"}, R"(--listen: "a:1x" isn't an address and a port, as in 127.0.0.1:8040)"},
        {{"--listen", "a:1", "--fps", "0"}, R"(--fps: "0" isn't a number from 0.01 to 1000)"},
        {{"--listen", "a:1", "--fps", "0.009"}, R"(--fps: "0.009" isn't a number from 0.01 to 1000)"},
        {{"--listen", "a:1", "--fps", "1e-11"}, R"(--fps: "1e-11" isn't a number from 0.01 to 1000)"},
        {{"--listen", "a:1", "--fps", "-1"}, R"(--fps: "-1" isn't a number from 0.01 to 1000)"},
        {{"--listen", "a:1", "--fps", "nan"}, R"(--fps: "nan" isn't a number from 0.01 to 1000)"},
        {{"--listen", "a:1", "--fps", "1001"}, R"(--fps: "1001" isn't a number from 0.01 to 1000)"},
        {{"--stdio", "--fps", "30"}, "--fps: goes with --listen and --window only"},
        {{"--stdio", "--size", "1x1"}, "--size: goes with --window only"},
        {{"--window", "--size", "100"}, R"(--size: "100" isn't a width and a height, as in 1280x720)"},
        {{"--window", "--size", "100x0"}, R"(--size: "100x0" isn't a width and a height, as in 1280x720)"},
        {{"--window", "--size", "9x99999"}, R"(--size: "9x99999" isn't a width and a height, as in 1280x720)"},
        {{"--window", "--listen", "a:1"},
         "--listen: --stdio, --listen, --window, --device, --describe and --replay exclude each other"},
        {{"--stdio", "--web", "w"}, "--web: goes with --listen only"},
        {{"--stdio", "--scenes", "s"}, "--scenes: goes with --listen only"},
        {{"--stdio", "--say", "t"}, "--say: goes with --device only"},
        {{"--stdio", "--stall"}, "--stall: goes with --device only"},
        {{"--device", "65536"}, R"(--device: "65536" isn't an address and a port, as in 127.0.0.1:8040)"},
        {{"--device", "1", "--parser", "json"}, R"(--parser: "json" is none of framed, direct)"},
        {{"--device", "1", "--delay", "soon"}, R"(--delay: "soon" isn't a whole number)"},
        {{"--device", "1", "--delay", "-1"}, R"(--delay: "-1" isn't a whole number)"},
        {{"--device", "1", "--drop-after"}, "--drop-after: needs a value"},
        {{"--describe"}, "--describe: needs a value"},
        {{"--describe", "html"}, R"(--describe: "html" is none of markdown, typescript)"},
        {{"--describe", "markdown", "--scene", "s"}, "--scene: goes with --stdio, --listen and --window only"},
        {{"--stdio", "--evaluate", "never"}, "--evaluate: \"never\" is none of event, frame"},
        {{"--replay", "r", "--record", "s"}, "--record: goes with --stdio, --listen and --window only"},
        {{"--replay", "r", "--stdio"},
         "--stdio: --stdio, --listen, --window, --device, --describe and --replay exclude each other"},
    };
    for (const auto& [arguments, pszError] : cases) {
        EXPECT_EQ(Error(arguments), pszError);
    }
}

} // namespace
