// What the network hands to the host around it.
#pragma once

#include <span>

#include "base/Names.h"
#include "host/EventRecord.h"
#include "host/PlayControlItem.h"

/// Where an item came in.
enum class EPeer { Broadcast, Control, Device };
NAMES(EPeer, "broadcast", "control", "device")

/// What a node handed to a device's socket; lives for the call.
struct SSentItem {
    int nDevice;                             ///< number of the device
    const CQORNetItemPlayCtlProtocol* pItem; ///< a record; null for bytes
    std::span<const unsigned char> bytes;    ///< bytes as they are; empty for an item
};

/// Takes what the network brings. All calls come from the host's one thread.
class INetworkReceiver {
public:
    /// An item came in: hand it to the nodes. Whether one of them took it. The record lives for the call.
    virtual bool OnItem(EPeer nFrom, const SIOEventRecord& record) = 0;

    virtual void OnSent(const SSentItem& item) = 0;

protected:
    ~INetworkReceiver() = default;
};
