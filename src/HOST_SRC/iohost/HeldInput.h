// What one connection holds down by the events that it sent: keys, and buttons of pointers.
#pragma once

#include <vector>

#include "Fields.h"

/// One release that is due.
struct SRelease {
    Json request;               ///< the `event` request that releases it
    std::string strDescription; ///< for the log
};

class CHeldInput {
public:
    /// Follow an `event` request that was carried out.
    void Note(const CFields& request);

    /// Whether what this request would hold still has room; the account is bounded because connections name keys
    /// freely.
    bool HasRoomFor(const CFields& request) const;

    static constexpr size_t MOST_HELD = 256;

    /// The releases of all that is held, in the order in which it went down; nothing is held afterwards.
    std::vector<SRelease> TakeReleases();

private:
    struct SHeld {
        Json node; ///< handle that the events name; null: all nodes
        int nDevice;
        int nUp;       ///< event id of the release
        Json identity; ///< text of the key, or number of the pointer
        Json payload;  ///< payload of the release: the key as it went down, or the pointer's last sample
    };

    std::vector<SHeld> m_arHeld;
};
