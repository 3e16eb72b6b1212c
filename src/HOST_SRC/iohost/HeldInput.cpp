#include "HeldInput.h"

#include <algorithm>
#include <utility>

#include "host/EventRecord.h"

namespace {

/// A press and the release that ends it.
struct PressRow {
    EIODevice nDevice;
    int nDown;
    int nUp;
    const char* pszName;
};

constexpr PressRow PRESSES[] = {
    {DEVICE_KEYBOARD, EVENT_KEY_DOWN, EVENT_KEY_UP, "key"},
    {DEVICE_POINTER, EVENT_LEFT_DOWN, EVENT_LEFT_UP, "left button of pointer"},
    {DEVICE_POINTER, EVENT_MIDDLE_DOWN, EVENT_MIDDLE_UP, "middle button of pointer"},
    {DEVICE_POINTER, EVENT_RIGHT_DOWN, EVENT_RIGHT_UP, "right button of pointer"},
};

/// What tells one key or pointer from another of its device; events without payload mean the nameless key, pointer 0.
Json Identity(int nDevice, const Json& payload) {
    if (nDevice == DEVICE_KEYBOARD) {
        return payload.is_object() ? payload.value("text", "") : "";
    }
    return payload.is_object() ? payload.value("pointer", 0) : 0;
}

} // namespace

void CHeldInput::Note(const CFields& request) {
    if (!request.Has("device") || !request.Has("event")) {
        return; // a null record
    }
    const Json node = request.Object().value("node", Json());
    const int nDevice = request.Int("device");
    const int nEvent = request.Int("event");
    const Json payload = request.Object().value("payload", Json());
    const Json identity = Identity(nDevice, payload);

    const auto isSame = [&](const SHeld& held) {
        return held.node == node && held.nDevice == nDevice && held.identity == identity;
    };
    if (nDevice == DEVICE_POINTER && payload.is_object()) {
        for (SHeld& held : m_arHeld) {
            if (held.nDevice == nDevice && held.identity == identity) {
                held.payload = payload;
            }
        }
    }
    for (const PressRow& press : PRESSES) {
        if (press.nDevice != nDevice || (press.nDown != nEvent && press.nUp != nEvent)) {
            continue;
        }
        // A repeated press is held once.
        std::erase_if(m_arHeld, [&](const SHeld& held) { return isSame(held) && held.nUp == press.nUp; });
        if (press.nDown == nEvent) {
            m_arHeld.push_back({node, nDevice, press.nUp, identity, payload});
        }
    }
}

bool CHeldInput::HasRoomFor(const CFields& request) const {
    if (m_arHeld.size() < MOST_HELD) {
        return true;
    }
    CHeldInput afterwards(*this);
    afterwards.Note(request);
    return afterwards.m_arHeld.size() <= MOST_HELD;
}

std::vector<SRelease> CHeldInput::TakeReleases() {
    std::vector<SRelease> releases;
    for (const SHeld& held : std::exchange(m_arHeld, {})) {
        Json request = {{"op", "event"}, {"device", held.nDevice}, {"event", held.nUp}, {"payload", held.payload}};
        if (!held.node.is_null()) {
            request["node"] = held.node;
        }
        const auto* pPress = std::ranges::find_if(
            PRESSES, [&](const PressRow& press) { return press.nDevice == held.nDevice && press.nUp == held.nUp; });
        const std::string strIdentity = held.identity.is_string() ? Quoted(held.identity.get_ref<const std::string&>())
                                                                  : std::to_string(held.identity.get<int>());
        releases.push_back({std::move(request), std::string(pPress->pszName) + " " + strIdentity});
    }
    return releases;
}
