#include "Options.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "base/TextTables.h"
#include "base/TextUtf8.h"
#include "protocol/Fields.h"

const char* const HELP_TEXT =
    R"(iohost - the reference host: loads the input and output node module and plays the host's part.

  iohost --stdio [options]               one JSON request a line on standard input, one reply a line on standard output
  iohost --listen ADDR:PORT [options]    serves the page and its WebSocket, for example 127.0.0.1:8040
  iohost --window [options]              opens a render window and hands its keyboard and mouse to the nodes (Windows)
  iohost --device [ADDR:]PORT [options]  stands in for a play-control device: prints what it's sent, one JSON object a line
  iohost --describe markdown [options]   writes the reference of the node types, from the module itself
  iohost --replay FILE [options]         replays a recording with the clock as recorded, names each reply that isn't the
                                         recorded one, and ends with 3 if there is any

options
  --app DIR          application folder (default: app beside this program)
  --module FILE      the module (default: beside this program)
  --texts TABLE      display texts: keys, en or zh (default: en; keys where the application folder has no
                     Config/Texts/en.json; with --replay the recording's)
  --scene FILE       scene to start with (default: an empty one)
  --record FILE      writes what comes in, with the replies, as a recording; with --stdio, --listen and --window
  --fps N            evaluations of the graph a second, 0.01 to 1000, with --listen and --window (default: 60)
  --size WxH         pixels of the window's inside, with --window (default: 1280x720)
  --web DIR          the page's files, with --listen (default: web beside this program)
  --control ADDR:PORT  takes remote-control records from other hosts, with --listen (default: takes none)
  --help             print this text
  --version          print the version

options of --device
  --parser KIND      framed or direct (default: framed)
  --delay MS         send back what it's sent, after MS milliseconds (default: send nothing)
  --say TEXT         send TEXT and a line feed when a connection opens
  --refuse           close each connection at once
  --drop-after N     close each connection after N bytes
  --stall            take connections and never read
)";

namespace {

/// Takes the arguments one by one; wrong ones are refused with the option's name.
class CParser {
public:
    CParser(const std::vector<std::string>& arguments, SOptions& options)
        : m_arguments(arguments), m_options(options) {}

    void Parse() {
        while (m_nNext < m_arguments.size()) {
            ParseOption(m_arguments[m_nNext++]);
        }
        if (!m_front) {
            throw CRefusal(
                "one of --stdio, --listen, --window, --device, --describe and --replay is needed; --help tells more");
        }
        m_options.nFront = *m_front;
        const bool bHelp = m_front == EFront::Help || m_front == EFront::Version;
        if (m_pszPageOption != nullptr && m_front != EFront::Page && !bHelp) {
            Refuse(m_pszPageOption, "goes with --listen only");
        }
        if (m_pszDeviceOption != nullptr && m_front != EFront::Device && !bHelp) {
            Refuse(m_pszDeviceOption, "goes with --device only");
        }
        if (m_bFps && m_front != EFront::Page && m_front != EFront::Window && !bHelp) {
            Refuse("--fps", "goes with --listen and --window only");
        }
        if (m_bSize && m_front != EFront::Window && !bHelp) {
            Refuse("--size", "goes with --window only");
        }
        const bool bSession = m_front == EFront::Stdio || m_front == EFront::Page || m_front == EFront::Window;
        if (!m_options.recordFile.empty() && !bSession && !bHelp) {
            Refuse("--record", "goes with --stdio, --listen and --window only");
        }
        if (!m_options.sceneFile.empty() && (m_front == EFront::Describe || m_front == EFront::Replay)) {
            Refuse("--scene", "goes with --stdio, --listen and --window only");
        }
    }

private:
    void ParseOption(const std::string& strName) {
        if (strName == "--stdio") {
            ChooseFront(EFront::Stdio, strName);
        } else if (strName == "--listen") {
            ChooseFront(EFront::Page, strName);
            ParseAddress(strName, Value(strName), m_options.listen.strAddress, m_options.listen.nPort);
        } else if (strName == "--window") {
            ChooseFront(EFront::Window, strName);
        } else if (strName == "--device") {
            ChooseFront(EFront::Device, strName);
            ParseDevice(Value(strName));
        } else if (strName == "--describe") {
            ChooseFront(EFront::Describe, strName);
            if (Value(strName) != "markdown") {
                Refuse(strName, Quoted(m_arguments[m_nNext - 1]) + " isn't markdown, the only form there is");
            }
        } else if (strName == "--replay") {
            ChooseFront(EFront::Replay, strName);
            m_options.replayFile = Value(strName);
        } else if (strName == "--help" || strName == "--version") {
            m_front = strName == "--help" ? EFront::Help : EFront::Version;
            m_nNext = m_arguments.size();
        } else if (strName == "--app") {
            m_options.appFolder = Value(strName);
        } else if (strName == "--module") {
            m_options.moduleFile = Value(strName);
        } else if (strName == "--scene") {
            m_options.sceneFile = Value(strName);
        } else if (strName == "--record") {
            m_options.recordFile = Value(strName);
        } else if (strName == "--texts") {
            ParseTexts(Value(strName));
        } else if (strName == "--fps") {
            m_bFps = true;
            ParseFps(Value(strName));
        } else if (strName == "--size") {
            m_bSize = true;
            ParseSize(Value(strName));
        } else if (strName == "--web") {
            m_pszPageOption = "--web";
            m_options.listen.webFolder = Value(strName);
        } else if (strName == "--control") {
            m_pszPageOption = "--control";
            ParseAddress(strName, Value(strName), m_options.listen.strControlAddress, m_options.listen.nControlPort);
        } else if (strName == "--parser") {
            m_pszDeviceOption = "--parser";
            ParseParser(Value(strName));
        } else if (strName == "--delay") {
            m_pszDeviceOption = "--delay";
            m_options.device.delay = ParseCount<unsigned>(strName);
        } else if (strName == "--say") {
            m_pszDeviceOption = "--say";
            m_options.device.strSay = Value(strName);
        } else if (strName == "--refuse") {
            m_pszDeviceOption = "--refuse";
            m_options.device.bRefuse = true;
        } else if (strName == "--drop-after") {
            m_pszDeviceOption = "--drop-after";
            m_options.device.dropAfter = ParseCount<std::uint64_t>(strName);
        } else if (strName == "--stall") {
            m_pszDeviceOption = "--stall";
            m_options.device.bStall = true;
        } else {
            throw CRefusal("there is no option " + Quoted(strName) + "; --help tells more");
        }
    }

    void ChooseFront(EFront nFront, const std::string& strName) {
        if (m_front && m_front != nFront) {
            Refuse(strName, "--stdio, --listen, --window, --device, --describe and --replay exclude each other");
        }
        m_front = nFront;
    }

    const std::string& Value(const std::string& strName) {
        if (m_nNext == m_arguments.size() || m_arguments[m_nNext].empty()) {
            Refuse(strName, "needs a value");
        }
        return m_arguments[m_nNext++];
    }

    static void ParseAddress(const std::string& strName, const std::string& strValue, std::string& strAddress,
                             unsigned short& nPort) {
        const size_t nColon = strValue.rfind(':');
        if (nColon == std::string::npos || nColon == 0 || !ReadNumber(strValue.substr(nColon + 1), nPort)) {
            Refuse(strName, Quoted(strValue) + " isn't an address and a port, as in 127.0.0.1:8040");
        }
        strAddress = strValue.substr(0, nColon);
        if (strAddress.size() > 2 && strAddress.front() == '[' && strAddress.back() == ']') {
            strAddress = strAddress.substr(1, strAddress.size() - 2);
        }
    }

    /// A port, or an address and a port.
    void ParseDevice(const std::string& strValue) {
        if (!ReadNumber(strValue, m_options.device.nPort)) {
            ParseAddress("--device", strValue, m_options.device.strAddress, m_options.device.nPort);
        }
    }

    void ParseParser(const std::string& strValue) {
        if (strValue != "framed" && strValue != "direct") {
            Refuse("--parser", Quoted(strValue) + " is none of framed, direct");
        }
        m_options.device.bFramed = strValue == "framed";
    }

    template <typename T>
    T ParseCount(const std::string& strName) {
        T nCount = 0;
        const std::string& strValue = Value(strName);
        if (!ReadNumber(strValue, nCount)) {
            Refuse(strName, Quoted(strValue) + " isn't a whole number");
        }
        return nCount;
    }

    void ParseTexts(const std::string& strValue) {
        m_options.texts = FindTextTable(strValue);
        if (!m_options.texts) {
            Refuse("--texts", Quoted(strValue) + " is none of keys, en, zh");
        }
    }

    void ParseFps(const std::string& strValue) {
        constexpr double LEAST_FPS = 0.01;
        constexpr double MOST_FPS = 1000;
        double fFps = 0;
        if (!ReadNumber(strValue, fFps) || !(fFps >= LEAST_FPS && fFps <= MOST_FPS)) {
            Refuse("--fps", Quoted(strValue) + " isn't a number from 0.01 to 1000");
        }
        m_options.listen.fFps = fFps;
        m_options.window.fFps = fFps;
    }

    void ParseSize(const std::string& strValue) {
        constexpr int MOST_PIXELS = 16384;
        const size_t nBy = strValue.find('x');
        const auto isSize = [](int nPixels) { return nPixels > 0 && nPixels <= MOST_PIXELS; };
        if (nBy == std::string::npos || !ReadNumber(strValue.substr(0, nBy), m_options.window.nWidth) ||
            !ReadNumber(strValue.substr(nBy + 1), m_options.window.nHeight) || !isSize(m_options.window.nWidth) ||
            !isSize(m_options.window.nHeight)) {
            Refuse("--size", Quoted(strValue) + " isn't a width and a height, as in 1280x720");
        }
    }

    template <typename T>
    static bool ReadNumber(const std::string& strText, T& number) {
        const char* pEnd = strText.data() + strText.size();
        const auto [pRead, error] = std::from_chars(strText.data(), pEnd, number);
        return error == std::errc() && pRead == pEnd;
    }

    const std::vector<std::string>& m_arguments;
    SOptions& m_options;
    size_t m_nNext = 0;
    std::optional<EFront> m_front;
    bool m_bFps = false;
    bool m_bSize = false;
    const char* m_pszPageOption = nullptr;   ///< an option was given that only the page has
    const char* m_pszDeviceOption = nullptr; ///< an option was given that only the stand-in device has
};

} // namespace

std::optional<SOptions> ParseOptions(const std::vector<std::string>& arguments,
                                     const std::filesystem::path& programFolder, std::string& strError) {
    SOptions options;
    options.appFolder = programFolder / "app";
    options.moduleFile = programFolder / MODULE_FILE_NAME;
    options.listen = {.strAddress = {},
                      .nPort = 0,
                      .fFps = 60,
                      .webFolder = programFolder / "web",
                      .strControlAddress = {},
                      .nControlPort = 0};
    try {
        CParser(arguments, options).Parse();
    } catch (const CRefusal& refusal) {
        strError = refusal.what();
        return std::nullopt;
    }
    return options;
}
