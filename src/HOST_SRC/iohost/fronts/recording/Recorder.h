// Keeps what comes into a session as a recording that can be replayed.
//
// A recording is a text of session requests, one a line, each with the reply that it got:
//   {"op":"recording","version":1,"texts":"en","reply":{"ok":true}}
//   {"op":"clock","ms":123456,"reply":{"ok":true}}
//   {"op":"process","frame":true,"reply":{"ok":true,"results":{"m":1}}}
// "connection" numbers the page connection that a request came from; "from" stands in events that a network item was.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include "protocol/Fields.h"

inline constexpr int RECORDING_VERSION = 1;

/// The reply as recordings hold it: without the host's own log lines, which also tell of connections.
OrderedJson ReplyToKeep(OrderedJson reply);

class CRecorder {
public:
    /// A recorder on this file, which is written anew. Null, with a message, when it can't be.
    static std::unique_ptr<CRecorder> Open(const std::filesystem::path& file, std::string& strError);

    /// Stop the module's clock at the present time until the next call, so that a replay finds the same time: called
    /// before anything that is going to be kept. A clock that a request has set is left alone.
    void StopClock();

    /// Keep a request with its reply. Requests that don't change the session and whose replies are another at another
    /// time aren't kept; devices are kept without their addresses, so that a replay connects to nobody. nConnection: 0
    /// for none.
    void Keep(const Json& request, int nConnection, const OrderedJson& reply);

    /// False once something couldn't be written; nothing is kept from then on.
    bool IsComplete() const { return static_cast<bool>(m_file); }

private:
    CRecorder(const std::filesystem::path& file) : m_file(file, std::ios::binary) {}

    void KeepClock();
    void Write(const OrderedJson& line);

    std::ofstream m_file;
    bool m_bClockSet = false;                ///< by a request
    std::optional<std::uint64_t> m_nStopped; ///< where the clock was stopped last
    std::optional<std::uint64_t> m_nKept;    ///< and what the recording says
};
