// A stand-in for a play-control device: prints what it's sent, and can misbehave so that each failure can be seen.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/Listener.h"

/// How the device behaves.
struct SStandInOptions {
    std::string strAddress = "127.0.0.1"; ///< numeric address to listen on
    unsigned short nPort = 0;             ///< 0: any free port
    bool bFramed = true;                  ///< takes frames; else bytes as they are
    bool bRefuse = false;                 ///< closes each connection at once
    bool bStall = false;                  ///< takes connections and never reads

    /// Sends back what it's sent, after so many milliseconds; none: sends nothing back.
    std::optional<unsigned> delay = std::nullopt;

    /// Sends this and a line feed when a connection opens; empty: nothing.
    std::string strSay = {};

    /// At most 64 connections are open. When another comes, the one silent for longest makes room, if for at least this
    /// long; else the new one is turned away.
    std::chrono::milliseconds silence = SILENCE;

    /// Closes each connection after so many bytes.
    std::optional<std::uint64_t> dropAfter = std::nullopt;
};

/// Serve until the process is told to end, one JSON object a line:
///   {"listening":"127.0.0.1:9000"}
///   {"connection":1,"opened":"127.0.0.1:51234"}
///   {"connection":1,"command":50,"clip":"Clip","record":{...}}     a record, of a framed device
///   {"connection":1,"rejected":1,"last_rejected":"malformed"}      frames that it didn't take
///   {"connection":1,"size":4,"text":"12|.","hex":"31327c00"}       bytes, of a direct device
///   {"connection":1,"closed":"why"}                                also of one that was turned away
///   {"missing_lines":12}                                           lines left out, since nobody read them in time
///   {"problem":"Too many open files"}                              why connections can't be taken
/// A thread of its own calls `write`, which waits as long as it takes, and answers false when it can't write; that ends
/// the program.
/// Returns the exit code of the program: 1, with a message on standard error, when the port can't be had.
int RunStandInDevice(const SStandInOptions& options, std::function<bool(std::string_view text)> write);
