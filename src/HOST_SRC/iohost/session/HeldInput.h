// What connections hold down by the requests that they sent: keys, pointers' buttons, controllers' triggers and pads by
// events, virtual keys by the keyboard state.
#pragma once

#include <bitset>
#include <chrono>
#include <list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "protocol/Fields.h"

using KeySet = std::bitset<256>; ///< virtual-key codes

/// One release that is due.
struct SRelease {
    Json request;                   ///< the `event` request that releases it; null for a virtual key
    std::optional<int> nVirtualKey; ///< its code; the keyboard state tells of its release
    std::string strDescription;     ///< for the log
};

/// What a release is about: all that is held unless a device, and one key, pointer or hand of it, is named.
struct SHeldFilter {
    std::optional<int> nDevice;
    Json identity; ///< as in CHeldInput::State; null: any
};

/// What one connection holds.
class CHeldInput {
public:
    /// The number tells connections apart; each change counts the version up.
    CHeldInput(int nConnection, unsigned long long& nVersion) : m_nConnection(nConnection), m_nVersion(nVersion) {}

    CHeldInput(const CHeldInput&) = delete;
    CHeldInput& operator=(const CHeldInput&) = delete;

    int Connection() const { return m_nConnection; }

    /// Follow an `event` request that was carried out.
    void NoteEvent(const CFields& request);

    /// Follow a `keys` request: these keys are down, and no others.
    void NoteKeys(const KeySet& down);

    /// Whether what this event would hold still has room; the account is bounded because connections name keys freely.
    bool HasRoomFor(const CFields& request) const;

    static constexpr size_t MOST_HELD = 256;

    const KeySet& VirtualKeys() const { return m_keys; }

    /// The releases of what is held, in the order in which it went down; it isn't held afterwards.
    std::vector<SRelease> TakeReleases(const SHeldFilter& filter = {});

    /// Appends one entry for each thing that is held:
    ///   {"connection": 1, "device": 1, "what": "left button of pointer", "identity": 0, "ms": 1200}
    void AppendState(OrderedJson& list) const;

private:
    using Clock = std::chrono::steady_clock;

    struct SHeld {
        size_t nKind;  ///< row of the table of what can be held
        Json identity; ///< text of the key, number of the pointer or hand, virtual-key code
        Json node;     ///< handle that the events name; null: all nodes
        int nUpEvent;  ///< event id of the release
        Json payload;  ///< the key as it went down, or the last sample of the pointer or hand
        Clock::time_point tDown;
    };

    /// Follow an event in a list of what is held; true when something went down or up.
    static bool Follow(std::vector<SHeld>& arHeld, const CFields& request);

    int m_nConnection;
    unsigned long long& m_nVersion;
    std::vector<SHeld> m_arHeld; ///< in the order in which it went down
    KeySet m_keys;
};

/// What all connections hold.
class CHeldInputs {
public:
    /// The account of a new connection. It stays where it is until it is closed.
    CHeldInput& Open();

    /// Forget a connection. What it holds should have been released.
    void Close(const CHeldInput& connection);

    std::list<CHeldInput>& Connections() { return m_connections; }

    /// The virtual keys that any of them holds.
    KeySet VirtualKeys() const;

    /// The virtual keys that are toggled on, as whoever told last has it.
    const KeySet& ToggledKeys() const { return m_toggled; }
    void SetToggledKeys(const KeySet& toggled) { m_toggled = toggled; }

    /// A connection's input was released by another one, which it has to be told.
    void NoteReleasedByOther(const CHeldInput& connection);

    /// The numbers of such connections since the last call.
    std::vector<int> TakeReleasedByOthers() { return std::exchange(m_arReleasedByOthers, {}); }

    /// Grows with every change of what is held.
    unsigned long long Version() const { return m_nVersion; }

    /// The entries of all connections.
    OrderedJson State() const;

private:
    std::list<CHeldInput> m_connections;
    int m_nLastConnection = 0;
    unsigned long long m_nVersion = 0;
    KeySet m_toggled;
    std::vector<int> m_arReleasedByOthers;
};
