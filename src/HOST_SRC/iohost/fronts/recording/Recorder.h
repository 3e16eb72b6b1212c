// Keeps what comes into a session as a recording that can be replayed.
//
// A recording is a text of session requests, one a line, each with the reply that it got:
//   {"op":"recording","version":1,"texts":"en","reply":{"ok":true}}
//   {"op":"clock","ms":123456,"reply":{"ok":true}}
//   {"op":"process","frame":true,"reply":{"ok":true,"results":{"m":1}}}
// "connection": number of the page connection that sent the request; "from": the event was a network item.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include "protocol/Fields.h"
#include "session/Session.h"

/// False for commands that ask about what changes with time, and for those that reach outside of the session.
bool IsKept(const Command& command);

/// The command as a replay may carry it out: it connects to nobody.
Command WithoutAddresses(Command command);

/// All but the host's own log lines: they tell of connections, too.
SActivity ActivityToKeep(SActivity activity);

/// Stops the session's clock before each command, unless one has set it: a replay can then set the same times.
class CRecorder final : private ISessionObserver {
public:
    /// Records the session, which must outlive it, on this file anew. Null, with a message, when that can't be written.
    static std::unique_ptr<CRecorder> Open(CSession& session, const std::filesystem::path& file, std::string& strError);
    ~CRecorder();

    /// False once something couldn't be written; nothing is kept from then on.
    bool IsComplete() const { return static_cast<bool>(m_file); }

private:
    CRecorder(CSession& session, const std::filesystem::path& file);

    void OnBegin(const Command& command) override;
    void OnDone(const SDone& done) override;

    void KeepClock();
    void Write(const SDone& done);

    CSession& m_session;
    std::ofstream m_file;
    COutputChanges m_frameOutputs;
    bool m_bSaid = false;                    ///< the log says that nothing more is written
    bool m_bClockSet = false;                ///< by a command
    std::optional<std::uint64_t> m_nStopped; ///< where the clock was stopped last
    std::optional<std::uint64_t> m_nKept;    ///< the time last written to the recording
};
