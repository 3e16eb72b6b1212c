// The datagram of a broadcast: "[.{", the element Broadcast with its four attributes, "}.]", one zero byte.
#pragma once

#include <span>

#include "host/EventRecord.h"

/// Why a datagram isn't a broadcast.
enum class EBroadcastRefusal {
    NotFramed,        ///< doesn't begin and end as one
    NotText,          ///< bytes that the code page doesn't have
    NotXml,           ///< not one empty element Broadcast
    AttributeMissing, ///< Flag, ClipName, Name or Data
};
inline constexpr size_t BROADCAST_REFUSAL_COUNT = 4;

/// The name of a refusal, for people and counters.
VEKRENDER_API const char* BroadcastRefusalName(EBroadcastRefusal nRefusal);

/// Read a datagram, which is in the system's ANSI code page; its zero byte may be missing. False, with the reason, and
/// the item unchanged, for any other.
VEKRENDER_API bool ReadBroadcast(std::span<const unsigned char> datagram, SBroadcastItem& item,
                                 EBroadcastRefusal& nRefusal);
