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
#include "session/Session.h"

/// False for commands that only ask, and about what is another at another time; and for those that reach outside of the
/// session.
bool IsKept(const Command& command);

/// The command as a replay may carry it out: it connects to nobody.
Command WithoutAddresses(Command command);

/// All but the host's own log lines: they tell of connections, too.
SActivity ActivityToKeep(SActivity activity);

/// While something is carried out the session's clock stands still, so that a replay finds the same time. A clock that
/// a command has set is left alone.
class CRecorder final : private ISessionObserver {
public:
    /// A recorder of the session on this file, which is written anew. Null, with a message, when it can't be. The
    /// session must outlive it.
    static std::unique_ptr<CRecorder> Open(CSession& session, const std::filesystem::path& file, std::string& strError);
    ~CRecorder();

    CRecorder(const CRecorder&) = delete;
    CRecorder& operator=(const CRecorder&) = delete;

    /// False once something couldn't be written; nothing is kept from then on.
    bool IsComplete() const { return static_cast<bool>(m_file); }

private:
    CRecorder(CSession& session, const std::filesystem::path& file);

    void OnBegin() override;
    void OnDone(const SDone& done) override;

    void KeepClock();
    void Write(const OrderedJson& line);

    CSession& m_session;
    std::ofstream m_file;
    COutputChanges m_frameOutputs;
    bool m_bSaid = false;                    ///< that nothing more is written
    bool m_bClockSet = false;                ///< by a command
    std::optional<std::uint64_t> m_nStopped; ///< where the clock was stopped last
    std::optional<std::uint64_t> m_nKept;    ///< and what the recording says
};
