// What the module did while the host worked.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <afxwin.h>

#include "host/GeneralEvent.h"
#include "host/RemoteControlRecord.h"

/// What a fired event's parameter points at, as the scene knew it then: a clip's name, a node's handle or an integer.
using PointedAt = std::variant<std::monostate, CString, std::string, int>;

/// The output came by a message to the host's event window.
struct SFiredByWindow {
    std::shared_ptr<const SQOREvent> pEvent; ///< never null
    unsigned long long nWParam;
    std::vector<PointedAt> points; ///< of each parameter
};

/// It came straight to the host.
struct SFiredByHost {
    std::optional<CString> clip;
    std::optional<CString> object;
};

/// An event output that fired.
struct SFired {
    std::optional<std::string> handle; ///< none: of no node of the scene
    std::optional<int> output;
    std::variant<SFiredByWindow, SFiredByHost> by;
};

struct SLogged {
    int nLevel;
    std::array<int, 4> arguments; ///< the four integers given to WriteLog
    CString strText;
    std::optional<int> length; ///< of the text, where only its beginning is told

    /// Whether the host itself wrote it.
    bool IsHosts() const { return arguments == std::array<int, 4>{}; }
};

/// A node's notification message.
struct SNotified {
    std::optional<std::string> handle;
    unsigned long long nWParam;
    long long nLParam;
};

/// A record that a node handed to a device.
struct SSentRecord {
    int nDevice;
    int nCommand;
    std::optional<CString> clip;
    CQORPanelRemoteCtrlData record;
};

/// Bytes that a node handed to a device.
struct SSentBytes {
    int nDevice;
    std::vector<unsigned char> bytes;
    std::optional<size_t> size; ///< of all bytes, where only the first ones are told
};

using Sent = std::variant<SSentRecord, SSentBytes>;

/// A request to redraw a node's panel.
struct SRedrawn {
    std::optional<std::string> handle;
};

/// All of it, each list in the order in which it happened.
struct SActivity {
    std::vector<SFired> fired;
    std::vector<SLogged> logged;
    std::vector<SNotified> notified;
    std::vector<Sent> sent;
    std::vector<SRedrawn> redrawn;

    bool IsEmpty() const {
        return fired.empty() && logged.empty() && notified.empty() && sent.empty() && redrawn.empty();
    }

    void Append(SActivity activity) {
        const auto append = [](auto& list, auto& more) {
            list.insert(list.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
        };
        append(fired, activity.fired);
        append(logged, activity.logged);
        append(notified, activity.notified);
        append(sent, activity.sent);
        append(redrawn, activity.redrawn);
    }
};
