// The command line of iohost.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "HostSetup.h"
#include "fronts/page/PageServer.h"
#include "fronts/window/RenderWindow.h"
#include "session/Command.h"
#include "standin/StandInDevice.h"

enum class EFront { Stdio, Page, Window, Device, Describe, Replay, Help, Version };

struct SOptions {
    EFront nFront = EFront::Stdio;
    std::filesystem::path appFolder;
    std::filesystem::path moduleFile;
    std::optional<ETextTable> texts;       ///< none: English where the application folder has it, keys elsewhere
    std::filesystem::path sceneFile;       ///< loaded at the start; empty: none
    std::filesystem::path recordFile;      ///< for EFront::Stdio, Page and Window; empty: nothing is recorded
    std::optional<EEvaluation> evaluation; ///< none: what suits the front
    std::filesystem::path replayFile;      ///< for EFront::Replay
    bool bDescribeTypes = false;           ///< for EFront::Describe: the protocol's types, not the nodes
    SListenOptions listen;                 ///< for EFront::Page
    SWindowOptions window;                 ///< for EFront::Window
    SStandInOptions device;                ///< for EFront::Device
    std::string strHelp;                   ///< what --help prints
};

/// Read the arguments behind the program's name. Nothing, with a message that names the option, when they are wrong.
std::optional<SOptions> ParseOptions(const std::vector<std::string>& arguments,
                                     const std::filesystem::path& programFolder, std::string& strError);
