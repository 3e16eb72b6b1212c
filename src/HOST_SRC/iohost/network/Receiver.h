// What the network hands to the host around it.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "base/Names.h"
#include "host/EventRecord.h"
#include "host/PlayControlItem.h"

/// Where an item came in.
enum class EPeer { Broadcast, Control, Device };
NAMES(EPeer, "broadcast", "control", "device")

/// What was handed to a device's socket; lives for the call.
struct SSentItem {
    int nDevice;                             ///< number of the device
    const CQORNetItemPlayCtlProtocol* pItem; ///< a record; null for bytes
    std::span<const unsigned char> bytes;    ///< bytes as they are; empty for an item
};

/// Items that waited for a device longer than they may, and that nobody sends any longer.
struct SDroppedItems {
    int nDevice;
    std::optional<std::string> sender; ///< as OnSent named it
    size_t nItems;
};

/// Takes what the network brings. All calls come from the host's one thread.
class INetworkReceiver {
public:
    /// An item came in: hand it to the nodes. Whether one of them took it. The record lives for the call.
    virtual bool OnItem(EPeer nFrom, const SIOEventRecord& record) = 0;

    /// Something is sent. Who sends it: the handle of a node, or none.
    virtual std::optional<std::string> OnSent(const SSentItem& item) = 0;

    virtual void OnDropped(const SDroppedItems& /*dropped*/) {}

protected:
    ~INetworkReceiver() = default;
};
