#include "session/HeldInput.h"

#include <algorithm>

#include "host/Codes.h"

namespace {

/// One kind of thing that can be held. Keys and buttons go down and up by events of their own; the parts of a hand's
/// controller are fields of its samples.
struct HeldKind {
    EIODevice nDevice;
    int nDown;
    int nUp;
    const char* pszField; ///< 1 in the payload while it is held; null for the kinds with events of their own
    const char* pszWhat;
};

constexpr HeldKind HELD_KINDS[] = {
    {DEVICE_KEYBOARD, EVENT_KEY_DOWN, EVENT_KEY_UP, nullptr, "key"},
    {DEVICE_POINTER, EVENT_LEFT_DOWN, EVENT_LEFT_UP, nullptr, "left button of pointer"},
    {DEVICE_POINTER, EVENT_MIDDLE_DOWN, EVENT_MIDDLE_UP, nullptr, "middle button of pointer"},
    {DEVICE_POINTER, EVENT_RIGHT_DOWN, EVENT_RIGHT_UP, nullptr, "right button of pointer"},
    {DEVICE_VR_HANDLE, 0, 0, "trigger", "trigger of hand"},
    {DEVICE_VR_HANDLE, 0, 0, "pad", "touch-pad of hand"},
    {DEVICE_KEYBOARD, 0, 0, nullptr, "virtual key"},
};
constexpr size_t VIRTUAL_KEY = std::size(HELD_KINDS) - 1;

/// The field by which one key, pointer or hand of a device is told from another.
const char* IdentityField(int nDevice) {
    switch (nDevice) {
    case DEVICE_KEYBOARD:
        return "text";
    case DEVICE_POINTER:
        return "pointer";
    default:
        return "hand";
    }
}

/// Events without payload, or with another kind than the device's, mean the nameless key, pointer or hand 0.
Json Identity(int nDevice, const Json& payload) {
    const bool bText = nDevice == DEVICE_KEYBOARD;
    if (payload.is_object()) {
        const auto found = payload.find(IdentityField(nDevice));
        if (found != payload.end() && (bText ? found->is_string() : found->is_number_integer())) {
            return *found;
        }
    }
    return bText ? Json("") : Json(0);
}

/// Whether the event puts this kind of thing down (true) or up (false); none: it says nothing of it.
std::optional<bool> GoesDown(const HeldKind& kind, int nEvent, const Json& payload) {
    if (kind.pszField != nullptr) {
        const bool bSample = payload.is_object() && payload.value("is", "") == "vr";
        return bSample ? std::optional(payload.value(kind.pszField, 0) != 0) : std::nullopt;
    }
    if (kind.nDown == kind.nUp) {
        return std::nullopt;
    }
    return nEvent == kind.nDown ? std::optional(true) : nEvent == kind.nUp ? std::optional(false) : std::nullopt;
}

long long AgeMs(std::chrono::steady_clock::time_point tDown) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - tDown).count();
}

/// A hand's sample with one part of it let go. A trigger's release comes as long after its press as it was held.
void LetGo(Json& sample, const char* pszField, long long nAgeMs) {
    sample[pszField] = 0;
    if (pszField == std::string_view("trigger")) {
        sample["release"] = static_cast<unsigned>(sample["press"].get<unsigned>() + nAgeMs);
    }
}

std::string Describe(const HeldKind& kind, const Json& identity) {
    const std::string strIdentity =
        identity.is_string() ? Quoted(identity.get_ref<const std::string&>()) : identity.dump();
    return std::string(kind.pszWhat) + " " + strIdentity;
}

} // namespace

bool CHeldInput::Follow(std::vector<SHeld>& arHeld, const CFields& request) {
    if (!request.Has("device") || !request.Has("event")) {
        return false; // a null record
    }
    const Json node = request.Object().value("node", Json());
    const int nDevice = request.Int("device");
    const int nEvent = request.Int("event");
    const Json payload = request.Object().value("payload", Json());
    const Json identity = Identity(nDevice, payload);

    if (nDevice != DEVICE_KEYBOARD && payload.is_object()) {
        for (SHeld& held : arHeld) {
            if (HELD_KINDS[held.nKind].nDevice == nDevice && held.identity == identity) {
                held.payload = payload;
            }
        }
    }
    bool bChanged = false;
    for (size_t nKind = 0; nKind < std::size(HELD_KINDS); ++nKind) {
        const HeldKind& kind = HELD_KINDS[nKind];
        const std::optional<bool> bDown = kind.nDevice == nDevice ? GoesDown(kind, nEvent, payload) : std::nullopt;
        if (!bDown) {
            continue;
        }
        const auto found = std::ranges::find_if(arHeld, [&](const SHeld& held) {
            return held.nKind == nKind && held.identity == identity && held.node == node;
        });
        // A repeated press is held once, since the first one.
        if (*bDown && found == arHeld.end()) {
            const int nUpEvent = kind.pszField != nullptr ? nEvent : kind.nUp;
            arHeld.push_back({nKind, identity, node, nUpEvent, payload, Clock::now()});
            bChanged = true;
        } else if (!*bDown && found != arHeld.end()) {
            arHeld.erase(found);
            bChanged = true;
        }
    }
    return bChanged;
}

void CHeldInput::NoteEvent(const CFields& request) {
    m_nVersion += Follow(m_arHeld, request) ? 1 : 0;
}

void CHeldInput::NoteKeys(const KeySet& down) {
    if (down == m_keys) {
        return;
    }
    ++m_nVersion;
    m_keys = down;
    std::erase_if(m_arHeld,
                  [&](const SHeld& held) { return held.nKind == VIRTUAL_KEY && !down[held.identity.get<size_t>()]; });
    for (size_t nCode = 0; nCode < down.size(); ++nCode) {
        const bool bKnown = std::ranges::any_of(
            m_arHeld, [&](const SHeld& held) { return held.nKind == VIRTUAL_KEY && held.identity == nCode; });
        if (down[nCode] && !bKnown) {
            m_arHeld.push_back({VIRTUAL_KEY, nCode, nullptr, 0, nullptr, Clock::now()});
        }
    }
}

bool CHeldInput::HasRoomFor(const CFields& request) const {
    const auto count = [](const std::vector<SHeld>& arHeld) {
        return std::ranges::count_if(arHeld, [](const SHeld& held) { return held.nKind != VIRTUAL_KEY; });
    };
    if (m_arHeld.size() + std::size(HELD_KINDS) < MOST_HELD) {
        return true;
    }
    std::vector<SHeld> arAfterwards = m_arHeld;
    Follow(arAfterwards, request);
    return count(arAfterwards) <= std::max<std::ptrdiff_t>(count(m_arHeld), MOST_HELD);
}

std::vector<SRelease> CHeldInput::TakeReleases(const SHeldFilter& filter) {
    std::vector<SHeld> arTaken;
    std::erase_if(m_arHeld, [&](const SHeld& held) {
        const bool bTaken = (!filter.nDevice || *filter.nDevice == HELD_KINDS[held.nKind].nDevice) &&
                            (filter.identity.is_null() || filter.identity == held.identity);
        if (bTaken) {
            arTaken.push_back(held);
        }
        return bTaken;
    });
    m_nVersion += arTaken.empty() ? 0 : 1;

    std::vector<SRelease> releases;
    for (size_t i = 0; i < arTaken.size(); ++i) {
        SHeld& held = arTaken[i];
        const HeldKind& kind = HELD_KINDS[held.nKind];
        SRelease release{nullptr, std::nullopt, Describe(kind, held.identity)};
        if (held.nKind == VIRTUAL_KEY) {
            m_keys.reset(held.identity.get<size_t>());
            release.nVirtualKey = held.identity.get<int>();
        } else {
            if (kind.pszField != nullptr) {
                // A hand's sample says how all its parts are: those let go already stay so in the next one.
                for (size_t n = i; n < arTaken.size(); ++n) {
                    if (HELD_KINDS[arTaken[n].nKind].nDevice == kind.nDevice && arTaken[n].identity == held.identity) {
                        LetGo(arTaken[n].payload, kind.pszField, AgeMs(held.tDown));
                    }
                }
            }
            release.request = {
                {"op", "event"}, {"device", kind.nDevice}, {"event", held.nUpEvent}, {"payload", held.payload}};
            if (!held.node.is_null()) {
                release.request["node"] = held.node;
            }
        }
        releases.push_back(std::move(release));
    }
    return releases;
}

void CHeldInput::AppendState(OrderedJson& list) const {
    for (const SHeld& held : m_arHeld) {
        list.push_back({{"connection", m_nConnection},
                        {"device", HELD_KINDS[held.nKind].nDevice},
                        {"what", HELD_KINDS[held.nKind].pszWhat},
                        {"identity", held.identity},
                        {"ms", AgeMs(held.tDown)}});
    }
}

CHeldInput& CHeldInputs::Open() {
    return m_connections.emplace_back(++m_nLastConnection, m_nVersion);
}

void CHeldInputs::Close(const CHeldInput& connection) {
    ++m_nVersion;
    m_connections.remove_if([&](const CHeldInput& other) { return &other == &connection; });
}

void CHeldInputs::NoteReleasedByOther(const CHeldInput& connection) {
    ++m_nVersion;
    m_arReleasedByOthers.push_back(connection.Connection());
}

KeySet CHeldInputs::VirtualKeys() const {
    KeySet keys;
    for (const CHeldInput& connection : m_connections) {
        keys |= connection.VirtualKeys();
    }
    return keys;
}

OrderedJson CHeldInputs::State() const {
    OrderedJson list = OrderedJson::array();
    for (const CHeldInput& connection : m_connections) {
        connection.AppendState(list);
    }
    return list;
}
