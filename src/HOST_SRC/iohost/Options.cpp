#include "Options.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include <CLI/CLI.hpp>

#include "base/Network.h"
#include "base/Refusal.h"

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

/// The options that choose what the program does.
using FrontOptions = std::vector<std::pair<EFront, CLI::Option*>>;

/// Help without what each option excludes, which the headings say.
class CHelp final : public CLI::Formatter {
    std::string make_option_opts(const CLI::Option* pOption) const override {
        return pOption->get_type_size() > 0 ? " " + pOption->get_type_name() : std::string();
    }
};

/// Declare an option with a value. What `read` refuses is told by the value and strWrong.
CLI::Option* Add(CLI::App& app, const std::string& strName, const char* pszValue, const char* pszDescription, Read read,
                 const std::string& strWrong = "is no value for it") {
    const auto take = [strName, read, strWrong](const std::string& strValue) {
        if (strValue.empty() || !read(strValue)) {
            throw CLI::ValidationError(strName, Quoted(strValue) + " " + strWrong);
        }
    };
    return app.add_option_function<std::string>(strName, take, pszDescription)->type_name(pszValue);
}

/// Options that stand under one heading; of the fronts they go with these only.
void Group(const char* pszHeading, const FrontOptions& fronts, const std::vector<EFront>& only,
           std::initializer_list<CLI::Option*> options) {
    for (CLI::Option* pOption : options) {
        pOption->group(pszHeading)->take_last();
        for (const auto& [nFront, pFront] : fronts) {
            if (std::ranges::find(only, nFront) == only.end()) {
                pOption->excludes(pFront);
            }
        }
    }
}

constexpr char WRONG_ADDRESS[] = "isn't an address and a port, as in 127.0.0.1:8040";

FrontOptions DeclareFronts(CLI::App& app, SOptions& options) {
    SStandInOptions& device = options.device;
    const Read readDevice = [&device](const std::string& strValue) {
        return Number<unsigned short>(device.nPort)(strValue) || Address(device.strAddress, device.nPort)(strValue);
    };
    const FrontOptions fronts = {
        {EFront::Stdio, app.add_flag("--stdio")->description("one JSON request a line on standard input, one reply a "
                                                             "line on standard output")},
        {EFront::Page, Add(app, "--listen", "ADDR:PORT",
                           "serves the page and its WebSocket at a numeric address, for example 127.0.0.1:8040",
                           Address(options.listen.strAddress, options.listen.nPort), WRONG_ADDRESS)},
        {EFront::Window, app.add_flag("--window")
                             ->description("opens a render window and hands its keyboard and mouse "
                                           "to the nodes (Windows)")},
        {EFront::Device, Add(app, "--device", "[ADDR:]PORT",
                             "stands in for a play-control device: prints what it's sent, one JSON object a line",
                             readDevice, WRONG_ADDRESS)},
        {EFront::Describe,
         Add(app, "--describe", "FORM",
             "writes the reference of the node types, from the module itself (markdown), or the\n"
             "page's types of the session's messages (typescript)",
             Either(options.bDescribeTypes, "typescript", "markdown"), "is none of markdown, typescript")},
        {EFront::Replay, Add(app, "--replay", "FILE",
                             "replays a recording with the clock as recorded, names each reply that isn't\n"
                             "the recorded one, and ends with 3 if there is any",
                             Text(options.replayFile))}};
    for (const auto& [nFront, pOption] : fronts) {
        Group("What it does, one of", fronts, {nFront}, {pOption});
    }
    return fronts;
}

void DeclareOptions(CLI::App& app, const FrontOptions& fronts, SOptions& options) {
    constexpr double LEAST_FPS = 0.01;
    constexpr double MOST_FPS = 1000;
    SListenOptions& listen = options.listen;
    Group("Options of --listen", fronts, {EFront::Page},
          {Add(app, "--web", "DIR", "the page's files (default: web beside this program)", Text(listen.webFolder)),
           Add(app, "--scenes", "DIR",
               "where its connections load scenes from and save them (default: scenes in the\n"
               "application folder)",
               Text(listen.sceneFolder)),
           Add(app, "--control", "ADDR:PORT", "takes remote-control records from other hosts (default: takes none)",
               Address(listen.strControlAddress, listen.nControlPort), WRONG_ADDRESS)});
    Group("Options", {}, {},
          {Add(app, "--app", "DIR", "application folder (default: app beside this program)", Text(options.appFolder)),
           Add(app, "--module", "FILE",
               "the module (default: in Plugins/NodePlugin of the application folder, else beside this\n"
               "program)",
               Text(options.moduleFile)),
           Add(app, "--texts", "TABLE",
               "display texts: keys, en or zh (default: en; keys where the application folder has\n"
               "no Config/Texts/en.json; with --replay the recording's)",
               Named(options.texts), "is none of keys, en, zh")});
    Group("Options of --stdio, --listen and --window", fronts, {EFront::Stdio, EFront::Page, EFront::Window},
          {Add(app, "--scene", "FILE", "scene to start with (default: an empty one)", Text(options.sceneFile)),
           Add(app, "--record", "FILE", "writes what comes in, with the replies, as a recording",
               Text(options.recordFile)),
           Add(app, "--evaluate", "WHEN",
               "evaluates the nodes behind a fired output at once (event) or with the next frame\n"
               "(frame) (default: event; with --stdio frame)",
               Named(options.evaluation), "is none of event, frame")});
    Group("Options of --listen and --window", fronts, {EFront::Page, EFront::Window},
          {Add(app, "--fps", "N", "evaluations of the graph a second, 0.01 to 1000 (default: 60)",
               Number(listen.fFps, LEAST_FPS, MOST_FPS), "isn't a number from 0.01 to 1000")});
    Group("Options of --window", fronts, {EFront::Window},
          {Add(app, "--size", "WxH", "pixels of the window's inside (default: 1280x720)",
               Size(options.window.nWidth, options.window.nHeight), "isn't a width and a height, as in 1280x720")});
}

void DeclareDevice(CLI::App& app, const FrontOptions& fronts, SStandInOptions& device) {
    constexpr char WRONG_NUMBER[] = "isn't a whole number";
    Group("Options of --device", fronts, {EFront::Device},
          {Add(app, "--parser", "KIND", "framed or direct (default: framed)",
               Either(device.bFramed, "framed", "direct"), "is none of framed, direct"),
           Add(app, "--delay", "MS", "send back what it's sent, after MS milliseconds (default: send nothing)",
               Number<unsigned>(device.delay), WRONG_NUMBER),
           Add(app, "--say", "TEXT", "send TEXT and a line feed when a connection opens", Text(device.strSay)),
           app.add_flag("--refuse", device.bRefuse, "close each connection at once"),
           Add(app, "--drop-after", "N", "close each connection after N bytes", Number<std::uint64_t>(device.dropAfter),
               WRONG_NUMBER),
           app.add_flag("--stall", device.bStall, "take connections and never read")});
}

} // namespace

std::optional<SOptions> ParseOptions(const std::vector<std::string>& arguments,
                                     const std::filesystem::path& programFolder, std::string& strError) {
    constexpr size_t COLUMN = 24;
    SOptions options;
    options.appFolder = programFolder / "app";
    options.listen.webFolder = programFolder / "web";
    CLI::App app{"iohost - the reference host: loads the input and output node module and plays the host's part.",
                 "iohost"};
    app.formatter(std::make_shared<CHelp>());
    app.get_formatter()->column_width(COLUMN);
    app.set_help_flag("--help", "print this text");
    app.set_version_flag("--version", "iohost " IOHOST_VERSION, "print the version");
    const FrontOptions fronts = DeclareFronts(app, options);
    DeclareOptions(app, fronts, options);
    DeclareDevice(app, fronts, options.device);
    try {
        app.parse(std::vector(arguments.rbegin(), arguments.rend())); // as the library wants them
        const auto chosen = std::ranges::find_if(fronts, [](const auto& front) { return front.second->count() > 0; });
        if (chosen == fronts.end()) {
            throw CLI::RequiredError("one of --stdio, --listen, --window, --device, --describe and --replay");
        }
        options.nFront = chosen->first;
    } catch (const CLI::CallForHelp&) {
        options.nFront = EFront::Help;
    } catch (const CLI::CallForVersion&) {
        options.nFront = EFront::Version;
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
    options.strHelp = app.help();
    return options;
}
