// For those who want to know what comes from the network.
#pragma once

#include "protocol/Fields.h"

/// Hears of each item that came from the network and is handed to the nodes.
class IItemObserver {
public:
    virtual void OnItemComes() = 0;

    /// {"from","device","event","payload","results"}
    virtual void OnItemHandled(const OrderedJson& item) = 0;

protected:
    ~IItemObserver() = default;
};
