// The network nodes at real sockets, and what the host makes of a received broadcast.
#pragma once

#include <memory>
#include <span>

#include "Comparison.h"

/// Made anew for measuring; holds on to the host, which it gives a device meanwhile.
class CNetworkComparisons {
public:
    /// Throws when a socket can't be had, or when a floor doesn't stand for what is measured: when node and floor send
    /// other bytes, or the text that the floor parses isn't the broadcast's.
    explicit CNetworkComparisons(const CBenchHost& host);
    ~CNetworkComparisons();

    CNetworkComparisons(const CNetworkComparisons&) = delete;
    CNetworkComparisons& operator=(const CNetworkComparisons&) = delete;

    std::span<const Comparison> All() const { return m_comparisons; }

private:
    class CBroadcastSend;
    class CRecordSend;
    class CBroadcastReceive;

    std::unique_ptr<CBroadcastSend> m_pBroadcastSend; ///< null where broadcasts would reach others
    std::unique_ptr<CRecordSend> m_pRecordSend;
    std::unique_ptr<CBroadcastReceive> m_pBroadcastReceive;
    std::vector<Comparison> m_comparisons;
};
