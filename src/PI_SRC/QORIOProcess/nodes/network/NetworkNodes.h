// What the nodes that send to play-control devices share.
#pragma once

#include <initializer_list>

#include "host/HostNetwork.h"

/// Ids of the inputs that choose the device.
struct DeviceInputs {
    unsigned nToDev; ///< one device rather than all
    unsigned nDevID;
    unsigned nDevName;
};

/// Texts of the node that repeat its device inputs; none may be null.
using DeviceTexts = std::initializer_list<CString*>;

/// Offer the node's own device inputs in the editor; with bToDev 0 they are hidden, and their texts and the node's are
/// emptied.
void OfferDeviceInputs(VEKProperty& node, const DeviceInputs& inputs, int bToDev, DeviceTexts texts);

/// Take over the "ToDev" input as the graph supplies it. Where it differs from bToDev the device inputs follow it and
/// the editor is told to redraw the node's panel; where it can't be told, bToDev stays as it was, so that the next call
/// tells it.
void FollowToDev(VEKProperty& node, SGraphNode& graphNode, const DeviceInputs& inputs, int& bToDev,
                 DeviceTexts texts = {});
