// How the network is set up and how it stands, as plain values.
#pragma once

#include "base/Network.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "network/TextLines.h"

enum class EDeviceParser { Framed, Direct, JsonLines, None };
NAMES(EDeviceParser, "framed", "direct", "json", "none")

/// How a device is set up.
struct SDeviceSetup {
    int nId = 0;
    std::string strName;
    EDeviceParser nParser = EDeviceParser::None;
    std::optional<asio::ip::tcp::endpoint> address;          ///< none: never connected; what is sent is shown only
    std::optional<std::chrono::milliseconds> dropAfter = {}; ///< how long an item may wait; none: for ever

    bool operator==(const SDeviceSetup&) const = default;
};

/// The first bytes of a message, for people.
struct SLastBytes {
    size_t nSize = 0; ///< of the whole message
    std::vector<unsigned char> bytes;
    std::optional<bool> bSent = {}; ///< false: it was shown instead; none: it came in
};

/// Note a message as the last one; its beginning is kept.
inline void SetLast(std::optional<SLastBytes>& last, std::span<const unsigned char> message) {
    constexpr size_t MOST_KEPT = 256;
    const auto kept = message.first(std::min(message.size(), MOST_KEPT));
    SLastBytes& bytes = last ? *last : last.emplace();
    bytes.nSize = message.size();
    bytes.bytes.assign(kept.begin(), kept.end());
}

/// The items of one source: how many came, what became of them.
struct SItemCounts {
    unsigned long long nReceived = 0; ///< whole and well-formed ones
    unsigned long long nMatched = 0;  ///< of these, taken by a node
    unsigned long long nRejected = 0; ///< refused by the reader
    std::string strLastRejected = {}; ///< why the last one was refused
};

/// How a device's connection stands.
enum class ELinkState { Unconnected, Connecting, Connected, Waiting };
NAMES(ELinkState, "unconnected", "connecting", "connected", "waiting")

struct SDeviceState {
    SDeviceSetup setup = {};
    ELinkState nState = ELinkState::Unconnected;
    long long nSinceMs = 0;          ///< how long it has been connected, or has not
    std::string strLastProblem = {}; ///< why the connection isn't or wasn't there
    size_t nQueuedItems = 0;
    size_t nQueuedBytes = 0;
    unsigned long long nSent = 0;    ///< items
    unsigned long long nRefused = 0; ///< items that weren't taken from nodes
    unsigned long long nLost = 0;    ///< items that were being written when the connection was lost
    unsigned long long nDropped = 0; ///< items that waited too long
    unsigned long long nShown = 0;   ///< items that were only shown
    unsigned long long nErrors = 0;  ///< failures of this host over a connection
    unsigned long long nReceivedBytes = 0;
    SItemCounts counts = {};
    std::optional<LineRefusalCounts> rejectedLines = {}; ///< of a device that sends texts
    std::optional<SLastBytes> lastSent = {};
    std::optional<SLastBytes> lastReceived = {};
};

struct SBroadcastState {
    unsigned short nPort = 0;
    std::string strProblem = {}; ///< why nothing is received now
    unsigned long long nErrors = 0;
    std::string strLastError = {};
    SItemCounts counts = {};
    std::optional<SLastBytes> lastReceived = {};
};

struct SControlState {
    unsigned short nPort = 0;
    size_t nConnections = 0;
    unsigned long long nTurnedAway = 0; ///< connections beyond the most that are served at once
    unsigned long long nErrors = 0;
    std::string strLastError = {};
    SItemCounts counts = {};
};

/// Members without a value: the host has no device list, receives no broadcasts, or takes no records of other hosts.
struct SNetworkState {
    std::optional<std::vector<SDeviceState>> devices = {};
    std::optional<SBroadcastState> broadcast = {};
    std::optional<SControlState> control = {};
    bool bListenOnly = false; ///< what nodes send is shown only
};
