// The records that cross the boundary between host and module; compiled only for the layouts that the compiler prints.

#include "host/EventRecord.h"
#include "host/PluginContract.h"

template <typename... Records>
struct SSizes {
    static constexpr std::size_t TOTAL = (sizeof(Records) + ...);
};

// A compiler lays out what it's asked the size of.
static_assert(SSizes<CString, CStringArray, CArray<SIOProcessNodeInfo>, SIOProcessNodeInfo, SIOProcessPluginData,
                     SIOProcessNodeRef, SIOEventRecord, SKeyEventData, SDeviceTextData, SObjectTextData>::TOTAL > 0);
