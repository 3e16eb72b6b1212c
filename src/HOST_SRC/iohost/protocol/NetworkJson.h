// The network as JSON: devices out of requests, and how all of it stands.
#pragma once

#include "network/NetworkState.h" // the network's libraries first

#include "protocol/Fields.h"

/// Devices out of [{"id","name","parser","address"}], or none for null. strPath stands before field names in refusals.
std::optional<std::vector<SDeviceSetup>> ReadDevices(const Json& list, const std::string& strPath);

/// The list as ReadDevices takes it.
OrderedJson DevicesToJson(const std::optional<std::vector<SDeviceSetup>>& setups);

/// {"devices":[...] or null,"broadcast":{...} or null,"control":{...} or null,"listen_only"}
OrderedJson NetworkToJson(const SNetworkState& state);
