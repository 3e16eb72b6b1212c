// The inputs by which a node that sends to play-control devices chooses the device.
#pragma once

#include "nodes/shared/HostMembers.h"

/// Their ids.
struct DeviceInputs {
    unsigned nToDev; ///< one device rather than all
    unsigned nDevID;
    unsigned nDevName;
};

/// Offer the node's own device inputs in the editor; with bToDev 0 they are hidden and their texts emptied.
void OfferDeviceInputs(VEKProperty& node, const DeviceInputs& inputs, int bToDev);

/// Take over the "ToDev" input as the graph supplies it. Where it differs from bToDev the device inputs follow it, and
/// the editor is told to redraw the node's panel.
void FollowToDev(VEKProperty& node, SGraphNode& graphNode, const DeviceInputs& inputs, int& bToDev);
