// What the nodes that send to play-control devices share.
#pragma once

#include "host/HostNetwork.h"

/// Ids of the inputs that choose the device.
struct DeviceInputs {
    unsigned nToDev; ///< one device rather than all
    unsigned nDevID;
    unsigned nDevName;
};

/// Offer the node's own device inputs in the editor; with bToDev 0 they are hidden and their texts emptied.
void OfferDeviceInputs(VEKProperty& node, const DeviceInputs& inputs, int bToDev);

/// Take over the "ToDev" input as the graph supplies it. Where it differs from bToDev the device inputs follow it.
/// Whether it differed, so that the panel must be redrawn.
bool FollowToDev(VEKProperty& node, const SGraphNode& graphNode, const DeviceInputs& inputs, int& bToDev);

/// Tell the editor to redraw the node's panel.
void RedrawPanel(const VEKProperty& node, SGraphNode& graphNode);
