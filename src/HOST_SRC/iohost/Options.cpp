#include "Options.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include <CLI/CLI.hpp>

#include "base/Network.h"
#include "protocol/Fields.h"

namespace {

/// Takes an option's value; false when it can't.
using Read = std::function<bool(const std::string& strValue)>;

template <typename T>
Read Text(T& text) {
    return [&text](const std::string& strValue) {
        text = strValue;
        return true;
    };
}

template <typename T, typename Target>
Read Number(Target& number, T least = std::numeric_limits<T>::lowest(), T most = std::numeric_limits<T>::max()) {
    return [&number, least, most](const std::string& strValue) {
        T value{};
        const char* pEnd = strValue.data() + strValue.size();
        const auto [pRead, error] = std::from_chars(strValue.data(), pEnd, value);
        number = value;
        return error == std::errc() && pRead == pEnd && value >= least && value <= most;
    };
}

Read Address(std::string& strAddress, unsigned short& nPort) {
    return [&](const std::string& strValue) { return SplitEndpoint(strValue, strAddress, nPort); };
}

template <typename Enum>
Read Named(std::optional<Enum>& value) {
    return [&value](const std::string& strValue) { return (value = FindByName<Enum>(strValue)).has_value(); };
}

/// One of two names, true for the first one.
Read Either(bool& bFirst, std::string_view first, std::string_view second) {
    return [&bFirst, first, second](const std::string& strValue) {
        bFirst = strValue == first;
        return bFirst || strValue == second;
    };
}

Read Size(int& nWidth, int& nHeight) {
    return [&](const std::string& strValue) {
        constexpr int MOST_PIXELS = 16384;
        const size_t nBy = strValue.find('x');
        return nBy != std::string::npos && Number(nWidth, 1, MOST_PIXELS)(strValue.substr(0, nBy)) &&
               Number(nHeight, 1, MOST_PIXELS)(strValue.substr(nBy + 1));
    };
}

/// The command line as the library reads it. What is wrong is thrown as CLI::ParseError.
class CCommandLine {
public:
    using Fronts = std::vector<EFront>;

    CCommandLine() {
        constexpr size_t COLUMN = 24;
        m_app.set_help_flag("--help", "print this text");
        m_app.set_version_flag("--version", "iohost " IOHOST_VERSION, "print the version");
        m_app.get_formatter()->column_width(COLUMN);
    }

    /// Options declared from now on stand under this heading, and go with these fronts only (none: with any).
    void Begin(const char* pszGroup, Fronts fronts = {}) {
        m_strGroup = pszGroup;
        m_fronts = std::move(fronts);
    }

    /// An option with a value. What it refuses is told by the value and strWrong.
    CLI::Option* Add(const std::string& strName, const char* pszValue, const char* pszDescription, Read read,
                     const std::string& strWrong = {}) {
        const auto take = [strName, read, strWrong](const std::string& strValue) {
            if (strValue.empty()) {
                throw CLI::ValidationError(strName, "needs a value");
            }
            if (!read(strValue)) {
                throw CLI::ValidationError(strName, Quoted(strValue) + " " + strWrong);
            }
        };
        return Declare(m_app.add_option_function<std::string>(strName, take, pszDescription)->type_name(pszValue));
    }

    CLI::Option* AddFlag(const char* pszName, const std::string& strDescription, bool* pFlag = nullptr) {
        return Declare(pFlag != nullptr ? m_app.add_flag(pszName, *pFlag, strDescription)
                                        : m_app.add_flag(pszName, strDescription));
    }

    /// An option that chooses what the program does.
    void IsFront(EFront nFront, CLI::Option* pOption) { m_choices.emplace_back(nFront, pOption); }

    EFront Parse(std::vector<std::string> arguments) {
        std::ranges::reverse(arguments); // as the library wants them
        try {
            m_app.parse(std::move(arguments));
        } catch (const CLI::CallForHelp&) {
            return EFront::Help;
        } catch (const CLI::CallForVersion&) {
            return EFront::Version;
        } catch (const CLI::ArgumentMismatch& mismatch) {
            const std::string strText = mismatch.what();
            throw CLI::ValidationError(strText.substr(0, strText.find(':')), "needs a value");
        } catch (const CLI::ExtrasError&) {
            throw CLI::ParseError("there is no option " + Quoted(m_app.remaining().front()) + "; --help tells more", 0);
        }
        const EFront nFront = Chosen();
        for (const auto& [pOption, fronts] : m_onlyWith) {
            if (pOption->count() > 0 && std::ranges::find(fronts, nFront) == fronts.end()) {
                throw CLI::ValidationError(pOption->get_name(), "goes with " + Names(fronts) + " only");
            }
        }
        return nFront;
    }

    std::string Help() const { return m_app.help(); }

private:
    CLI::Option* Declare(CLI::Option* pOption) {
        if (!m_fronts.empty()) {
            m_onlyWith.emplace_back(pOption, m_fronts);
        }
        return pOption->group(m_strGroup)->take_last();
    }

    /// The names of fronts: "--stdio, --listen and --window". All, unless some are given.
    std::string Names(const Fronts& fronts = {}) const {
        std::vector<std::string> names;
        for (const auto& [nFront, pOption] : m_choices) {
            if (fronts.empty() || std::ranges::find(fronts, nFront) != fronts.end()) {
                names.push_back(pOption->get_name());
            }
        }
        const std::string strLast = names.back();
        names.pop_back();
        return names.empty() ? strLast : CLI::detail::join(names, ", ") + " and " + strLast;
    }

    EFront Chosen() const {
        const std::pair<EFront, CLI::Option*>* pChosen = nullptr;
        for (const CLI::Option* pGiven : m_app.parse_order()) {
            for (const auto& choice : m_choices) {
                if (choice.second == pGiven && pChosen != nullptr && pChosen != &choice) {
                    throw CLI::ValidationError(pGiven->get_name(), Names() + " exclude each other");
                }
                pChosen = choice.second == pGiven ? &choice : pChosen;
            }
        }
        if (pChosen == nullptr) {
            throw CLI::ParseError("one of " + Names() + " is needed; --help tells more", 0);
        }
        return pChosen->first;
    }

    CLI::App m_app{"iohost - the reference host: loads the input and output node module and plays the host's part.",
                   "iohost"};
    std::string m_strGroup;
    Fronts m_fronts;
    std::vector<std::pair<EFront, CLI::Option*>> m_choices;
    std::vector<std::pair<CLI::Option*, Fronts>> m_onlyWith;
};

void DeclareFronts(CCommandLine& line, SOptions& options) {
    constexpr char WRONG_ADDRESS[] = "isn't an address and a port, as in 127.0.0.1:8040";
    SListenOptions& listen = options.listen;
    SStandInOptions& device = options.device;
    const Read readDevice = [&device](const std::string& strValue) {
        return Number<unsigned short>(device.nPort)(strValue) || Address(device.strAddress, device.nPort)(strValue);
    };

    line.Begin("What it does, one of");
    line.IsFront(EFront::Stdio,
                 line.AddFlag("--stdio", "one JSON request a line on standard input, one reply a line on "
                                         "standard output"));
    line.IsFront(EFront::Page,
                 line.Add("--listen", "ADDR:PORT", "serves the page and its WebSocket, for example 127.0.0.1:8040",
                          Address(listen.strAddress, listen.nPort), WRONG_ADDRESS));
    line.IsFront(EFront::Window,
                 line.AddFlag("--window", "opens a render window and hands its keyboard and mouse to the "
                                          "nodes (Windows)"));
    line.IsFront(EFront::Device, line.Add("--device", "[ADDR:]PORT",
                                          "stands in for a play-control device: prints what it's sent, one JSON object "
                                          "a line",
                                          readDevice, WRONG_ADDRESS));
    line.IsFront(EFront::Describe,
                 line.Add("--describe", "FORM",
                          "writes the reference of the node types, from the module itself (markdown), or the\n"
                          "page's types of the session's messages (typescript)",
                          Either(options.bDescribeTypes, "typescript", "markdown"), "is none of markdown, typescript"));
    line.IsFront(EFront::Replay,
                 line.Add("--replay", "FILE",
                          "replays a recording with the clock as recorded, names each reply that isn't\n"
                          "the recorded one, and ends with 3 if there is any",
                          Text(options.replayFile)));

    line.Begin("Options of --listen", {EFront::Page});
    line.Add("--web", "DIR", "the page's files (default: web beside this program)", Text(listen.webFolder));
    line.Add("--scenes", "DIR",
             "where its connections load scenes from and save them (default: scenes in the\n"
             "application folder)",
             Text(listen.sceneFolder));
    line.Add("--control", "ADDR:PORT", "takes remote-control records from other hosts (default: takes none)",
             Address(listen.strControlAddress, listen.nControlPort), WRONG_ADDRESS);
}

void DeclareOptions(CCommandLine& line, SOptions& options) {
    constexpr double LEAST_FPS = 0.01;
    constexpr double MOST_FPS = 1000;
    line.Begin("Options");
    line.Add("--app", "DIR", "application folder (default: app beside this program)", Text(options.appFolder));
    line.Add("--module", "FILE",
             "the module (default: in Plugins/NodePlugin of the application folder, else beside this\n"
             "program)",
             Text(options.moduleFile));
    line.Add("--texts", "TABLE",
             "display texts: keys, en or zh (default: en; keys where the application folder has\n"
             "no Config/Texts/en.json; with --replay the recording's)",
             Named(options.texts), "is none of keys, en, zh");
    line.Begin("Options of --stdio, --listen and --window", {EFront::Stdio, EFront::Page, EFront::Window});
    line.Add("--scene", "FILE", "scene to start with (default: an empty one)", Text(options.sceneFile));
    line.Add("--record", "FILE", "writes what comes in, with the replies, as a recording", Text(options.recordFile));
    line.Add("--evaluate", "WHEN",
             "evaluates the nodes behind a fired output at once (event) or with the next frame\n"
             "(frame) (default: event; with --stdio frame)",
             Named(options.evaluation), "is none of event, frame");
    line.Begin("Options of --listen and --window", {EFront::Page, EFront::Window});
    line.Add("--fps", "N", "evaluations of the graph a second, 0.01 to 1000 (default: 60)",
             Number(options.listen.fFps, LEAST_FPS, MOST_FPS), "isn't a number from 0.01 to 1000");
    line.Begin("Options of --window", {EFront::Window});
    line.Add("--size", "WxH", "pixels of the window's inside (default: 1280x720)",
             Size(options.window.nWidth, options.window.nHeight), "isn't a width and a height, as in 1280x720");
}

void DeclareDevice(CCommandLine& line, SStandInOptions& device) {
    constexpr char WRONG_NUMBER[] = "isn't a whole number";

    line.Begin("Options of --device", {EFront::Device});
    line.Add("--parser", "KIND", "framed or direct (default: framed)", Either(device.bFramed, "framed", "direct"),
             "is none of framed, direct");
    line.Add("--delay", "MS", "send back what it's sent, after MS milliseconds (default: send nothing)",
             Number<unsigned>(device.delay), WRONG_NUMBER);
    line.Add("--say", "TEXT", "send TEXT and a line feed when a connection opens", Text(device.strSay));
    line.AddFlag("--refuse", "close each connection at once", &device.bRefuse);
    line.Add("--drop-after", "N", "close each connection after N bytes", Number<std::uint64_t>(device.dropAfter),
             WRONG_NUMBER);
    line.AddFlag("--stall", "take connections and never read", &device.bStall);
}

} // namespace

std::optional<SOptions> ParseOptions(const std::vector<std::string>& arguments,
                                     const std::filesystem::path& programFolder, std::string& strError) {
    SOptions options;
    options.appFolder = programFolder / "app";
    options.listen.webFolder = programFolder / "web";
    CCommandLine line;
    DeclareFronts(line, options);
    DeclareOptions(line, options);
    DeclareDevice(line, options.device);
    try {
        options.nFront = line.Parse(arguments);
    } catch (const CLI::ParseError& refusal) {
        strError = refusal.what();
        return std::nullopt;
    }
    if (options.moduleFile.empty()) {
        const auto installed = options.appFolder / "Plugins" / "NodePlugin" / MODULE_FILE_NAME;
        std::error_code error;
        options.moduleFile = std::filesystem::exists(installed, error) ? installed : programFolder / MODULE_FILE_NAME;
    }
    options.window.fFps = options.listen.fFps;
    if (options.listen.sceneFolder.empty()) {
        options.listen.sceneFolder = options.appFolder / "scenes";
    }
    options.strHelp = line.Help();
    return options;
}
