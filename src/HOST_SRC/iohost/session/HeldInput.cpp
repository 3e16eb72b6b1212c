#include "session/HeldInput.h"

#include <algorithm>

#include "base/Refusal.h"
#include "base/TextUtf8.h"
#include "host/Codes.h"
#include "session/EventRecords.h"

namespace {

/// A kind of thing that can be held. Keys and buttons go down and up by events, parts of a controller in its samples.
struct HeldKind {
    EIODevice nDevice;
    int nDown;
    int nUp;
    int SVRPluginData::*pPart; ///< not 0 in a sample while it is held; null for the kinds with events of their own
    const char* pszWhat;
};

constexpr HeldKind HELD_KINDS[] = {
    {DEVICE_KEYBOARD, EVENT_KEY_DOWN, EVENT_KEY_UP, nullptr, "key"},
    {DEVICE_POINTER, EVENT_LEFT_DOWN, EVENT_LEFT_UP, nullptr, "left button of pointer"},
    {DEVICE_POINTER, EVENT_MIDDLE_DOWN, EVENT_MIDDLE_UP, nullptr, "middle button of pointer"},
    {DEVICE_POINTER, EVENT_RIGHT_DOWN, EVENT_RIGHT_UP, nullptr, "right button of pointer"},
    {DEVICE_VR_HANDLE, 0, 0, &SVRPluginData::m_bTriggerPressed, "trigger of hand"},
    {DEVICE_VR_HANDLE, 0, 0, &SVRPluginData::m_bTouchPadPressed, "touch-pad of hand"},
    {DEVICE_KEYBOARD, 0, 0, nullptr, "virtual key"},
};
constexpr size_t VIRTUAL_KEY = std::size(HELD_KINDS) - 1;

/// Which key, pointer or hand; without a payload the nameless one, or number 0.
HeldIdentity Identity(int nDevice, const Payload& payload) {
    if (const auto* pKey = std::get_if<SKeyEventData>(&payload)) {
        return Utf8(pKey->m_strText);
    }
    if (const auto* pPointer = std::get_if<SQORMouseData>(&payload)) {
        return pPointer->m_nPointer;
    }
    if (const auto* pHand = std::get_if<SVRPluginData>(&payload)) {
        return pHand->m_nHand;
    }
    return nDevice == DEVICE_KEYBOARD ? HeldIdentity("") : HeldIdentity(0);
}

/// Whether the event puts this kind of thing down (true) or up (false); none: it says nothing of it.
std::optional<bool> GoesDown(const HeldKind& kind, int nEvent, const Payload& payload) {
    if (kind.pPart != nullptr) {
        const auto* pSample = std::get_if<SVRPluginData>(&payload);
        return pSample != nullptr ? std::optional(pSample->*kind.pPart != 0) : std::nullopt;
    }
    if (kind.nDown == kind.nUp) {
        return std::nullopt;
    }
    return nEvent == kind.nDown ? std::optional(true) : nEvent == kind.nUp ? std::optional(false) : std::nullopt;
}

std::string Describe(const HeldKind& kind, const HeldIdentity& identity) {
    const auto* pText = std::get_if<std::string>(&identity);
    return std::string(kind.pszWhat) + " " +
           (pText != nullptr ? Quoted(*pText) : std::to_string(std::get<int>(identity)));
}

} // namespace

bool CHeldInput::Follow(std::vector<SHeld>& arHeld, const SEventCommand& event) const {
    if (!event.bRecord) {
        return false;
    }
    // One of another device's kind says nothing of a key, pointer or hand.
    const Payload payload = DeviceFitsPayload(event) ? event.payload : Payload();
    const HeldIdentity identity = Identity(event.nDevice, payload);
    if (event.nDevice != DEVICE_KEYBOARD && payload.index() != 0) {
        for (SHeld& held : arHeld) {
            if (HELD_KINDS[held.nKind].nDevice == event.nDevice && held.identity == identity) {
                held.payload = payload;
            }
        }
    }
    bool bChanged = false;
    for (size_t nKind = 0; nKind < std::size(HELD_KINDS); ++nKind) {
        const HeldKind& kind = HELD_KINDS[nKind];
        const std::optional<bool> bDown =
            kind.nDevice == event.nDevice ? GoesDown(kind, event.nEvent, payload) : std::nullopt;
        if (!bDown) {
            continue;
        }
        const auto found = std::ranges::find_if(arHeld, [&](const SHeld& held) {
            return held.nKind == nKind && held.identity == identity && held.handle == event.handle;
        });
        // A repeated press is held once, since the first one.
        if (*bDown && found == arHeld.end()) {
            const int nUpEvent = kind.pPart != nullptr ? event.nEvent : kind.nUp;
            arHeld.push_back({nKind, identity, event.handle, nUpEvent, payload, m_clock.Now()});
            bChanged = true;
        } else if (!*bDown && found != arHeld.end()) {
            arHeld.erase(found);
            bChanged = true;
        }
    }
    return bChanged;
}

bool CHeldInput::NoteEvent(const SEventCommand& event) {
    std::vector<SHeld> arAfterwards = m_arHeld;
    const bool bChanged = Follow(arAfterwards, event);
    const auto isCounted = [](const SHeld& held) { return held.nKind != VIRTUAL_KEY; };
    if (std::ranges::count_if(arAfterwards, isCounted) > MOST_HELD) {
        return false;
    }
    m_arHeld = std::move(arAfterwards);
    m_nVersion += bChanged ? 1 : 0;
    return true;
}

void CHeldInput::NoteKeys(const KeySet& down) {
    const KeySet before = VirtualKeys();
    if (down == before) {
        return;
    }
    ++m_nVersion;
    std::erase_if(m_arHeld, [&](const SHeld& held) {
        return held.nKind == VIRTUAL_KEY && !down[static_cast<size_t>(std::get<int>(held.identity))];
    });
    for (size_t nCode = 0; nCode < down.size(); ++nCode) {
        if (down[nCode] && !before[nCode]) {
            m_arHeld.push_back({VIRTUAL_KEY, static_cast<int>(nCode), std::nullopt, 0, {}, m_clock.Now()});
        }
    }
}

KeySet CHeldInput::VirtualKeys() const {
    KeySet keys;
    for (const SHeld& held : m_arHeld) {
        if (held.nKind == VIRTUAL_KEY) {
            keys.set(static_cast<size_t>(std::get<int>(held.identity)));
        }
    }
    return keys;
}

std::vector<SRelease> CHeldInput::TakeReleases(const SHeldFilter& filter) {
    std::vector<SHeld> arTaken;
    std::erase_if(m_arHeld, [&](const SHeld& held) {
        const bool bTaken = (!filter.device || *filter.device == HELD_KINDS[held.nKind].nDevice) &&
                            (!filter.identity || *filter.identity == held.identity);
        if (bTaken) {
            arTaken.push_back(held);
        }
        return bTaken;
    });
    m_nVersion += arTaken.empty() ? 0 : 1;

    std::vector<SRelease> releases;
    for (size_t i = 0; i < arTaken.size(); ++i) {
        const SHeld& held = arTaken[i];
        const HeldKind& kind = HELD_KINDS[held.nKind];
        SRelease& release = releases.emplace_back();
        release.strDescription = Describe(kind, held.identity);
        if (held.nKind == VIRTUAL_KEY) {
            release.virtualKey = std::get<int>(held.identity);
            continue;
        }
        if (kind.pPart != nullptr) {
            // A hand's sample has the state of all its parts: what is released here stays released in the later
            // samples. A trigger's release time is its press time plus how long it was held.
            for (size_t n = i; n < arTaken.size(); ++n) {
                if (HELD_KINDS[arTaken[n].nKind].nDevice == kind.nDevice && arTaken[n].identity == held.identity) {
                    auto& sample = std::get<SVRPluginData>(arTaken[n].payload);
                    sample.*kind.pPart = 0;
                    if (kind.pPart == &SVRPluginData::m_bTriggerPressed) {
                        sample.m_nReleaseTime = sample.m_nPressTime + static_cast<unsigned>(m_clock.Since(held.tDown));
                    }
                }
            }
        }
        release.event = {
            .handle = held.handle, .nDevice = kind.nDevice, .nEvent = held.nUpEvent, .payload = held.payload};
    }
    return releases;
}

void CHeldInput::AppendState(std::vector<SHeldEntry>& entries) const {
    for (const SHeld& held : m_arHeld) {
        const HeldKind& kind = HELD_KINDS[held.nKind];
        entries.push_back({m_nConnection, kind.nDevice, kind.pszWhat, held.identity, m_clock.Since(held.tDown)});
    }
}

CHeldInput& CHeldInputs::Open() {
    return m_connections.emplace_back(++m_nLastConnection, m_clock, m_nVersion);
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

std::vector<SHeldEntry> CHeldInputs::State() const {
    std::vector<SHeldEntry> entries;
    for (const CHeldInput& connection : m_connections) {
        connection.AppendState(entries);
    }
    return entries;
}
