// A whole scene as plain data: what a scene file holds.
#pragma once

#include <optional>
#include <vector>

#include "network/NetworkState.h"
#include "scene/Document.h"

using DeviceSetups = std::optional<std::vector<SDeviceSetup>>; ///< none: the host has no list

struct SSceneDocument {
    std::vector<SClipDocument> clips;
    std::vector<SNodeDocument> nodes;
    std::vector<SLinkDocument> links;
    DeviceSetups devices;
    Notes notes = {};
};
