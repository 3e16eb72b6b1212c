// What connections hold down by the commands that they sent: keys, pointers' buttons, controllers' triggers and pads by
// events, virtual keys by the keyboard state.
#pragma once

#include <boost/core/noncopyable.hpp>
#include <cstddef>
#include <list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/Clock.h"
#include "session/Command.h"

/// One release that is due.
struct SRelease {
    std::optional<int> virtualKey; ///< its code; the keyboard state tells of its release
    SEventCommand event;           ///< that releases anything else
    std::string strDescription;    ///< for the log
};

/// One thing that is held, for people.
struct SHeldEntry {
    int nConnection;
    int nDevice;
    std::string strWhat; ///< "left button of pointer"
    HeldIdentity identity;
    std::uint64_t nAgeMs;
};

/// What one connection holds.
class CHeldInput : boost::noncopyable {
public:
    /// The number tells connections apart; each change counts the version up.
    CHeldInput(int nConnection, const CClock& clock, unsigned long long& nVersion)
        : m_nConnection(nConnection), m_clock(clock), m_nVersion(nVersion) {}

    int Connection() const { return m_nConnection; }

    /// Follow an event. False, and nothing is noted, where what it would hold has no room: the account is bounded
    /// because connections name keys freely.
    bool NoteEvent(const SEventCommand& event);

    /// Follow the keyboard state: these keys are down, and no others.
    void NoteKeys(const KeySet& down);

    static constexpr std::ptrdiff_t MOST_HELD = 256;

    KeySet VirtualKeys() const;

    /// The releases of what is held, in the order in which it went down; it isn't held afterwards.
    std::vector<SRelease> TakeReleases(const SHeldFilter& filter);

    void AppendState(std::vector<SHeldEntry>& entries) const;

private:
    struct SHeld {
        size_t nKind; ///< row of the table of what can be held
        HeldIdentity identity;
        std::optional<std::string> handle; ///< node that the events name; none: all nodes
        int nUpEvent = 0;                  ///< event id of the release
        Payload payload;                   ///< the key as it went down, or the last sample of the pointer or hand
        std::uint64_t tDown;
    };

    /// Follow an event in a list of what is held; true when something went down or up.
    bool Follow(std::vector<SHeld>& arHeld, const SEventCommand& event) const;

    int m_nConnection;
    const CClock& m_clock;
    unsigned long long& m_nVersion;
    std::vector<SHeld> m_arHeld; ///< in the order in which it went down
};

/// What all connections hold.
class CHeldInputs {
public:
    explicit CHeldInputs(const CClock& clock) : m_clock(clock) {}

    /// The account of a new connection. It stays where it is until it is closed.
    CHeldInput& Open();

    /// Forget a connection. What it holds should have been released.
    void Close(const CHeldInput& connection);

    std::list<CHeldInput>& Connections() { return m_connections; }

    /// The virtual keys that any of them holds.
    KeySet VirtualKeys() const;

    /// The toggled keys, as last reported.
    const KeySet& ToggledKeys() const { return m_toggled; }
    void SetToggledKeys(const KeySet& toggled) { m_toggled = toggled; }

    /// Another connection released this one's input, and this one has to be told.
    void NoteReleasedByOther(const CHeldInput& connection);

    /// The numbers of the connections noted so since the last call.
    std::vector<int> TakeReleasedByOthers() { return std::exchange(m_arReleasedByOthers, {}); }

    /// Grows with every change of what is held.
    unsigned long long Version() const { return m_nVersion; }

    /// The entries of all connections.
    std::vector<SHeldEntry> State() const;

private:
    const CClock& m_clock;
    std::list<CHeldInput> m_connections;
    int m_nLastConnection = 0;
    unsigned long long m_nVersion = 0;
    KeySet m_toggled;
    std::vector<int> m_arReleasedByOthers;
};
