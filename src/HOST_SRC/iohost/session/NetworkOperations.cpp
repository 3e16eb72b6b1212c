// What the commands about the network do.
#include "session/Session.h"

#include <algorithm>

#include "base/Platform.h"
#include "base/Refusal.h"

/// Where the host doesn't run the loop by itself, devices are given the time to be there for the next command.
void CSession::AwaitDevices() {
    constexpr unsigned LONGEST_WAIT = 1000;
    if (!m_peers.RunsAlways()) {
        m_peers.AwaitFirstAttempts(LONGEST_WAIT);
    }
}

void CSession::On(const SDevicesCommand& command) {
    m_peers.SetDevices(command.devices);
    AwaitDevices();
}

void CSession::On(const SDeviceCommand& command) {
    std::vector<SDeviceSetup> devices = m_peers.Devices().value_or(std::vector<SDeviceSetup>());
    const auto found = std::ranges::find(devices, command.nId, &SDeviceSetup::nId);
    if (found != devices.end()) {
        if (command.bNew) {
            Refuse("device", "there is a device " + std::to_string(command.nId) + " already");
        }
        *found = command;
    } else {
        devices.push_back(command);
    }
    m_peers.ChangeDevices(std::move(devices));
    AwaitDevices();
}

void CSession::On(const SRemoveDeviceCommand& command) {
    std::vector<SDeviceSetup> devices = m_peers.Devices().value_or(std::vector<SDeviceSetup>());
    const auto found = std::ranges::find(devices, command.nId, &SDeviceSetup::nId);
    if (found == devices.end()) {
        Refuse("device", "there is no device " + std::to_string(command.nId));
    }
    devices.erase(found);
    m_peers.ChangeDevices(std::move(devices));
}

void CSession::On(const SConnectCommand& command) {
    m_peers.Connect(command.nId);
    AwaitDevices();
}

void CSession::On(const SSendCommand& command) {
    if (command.strText.empty()) {
        Refuse("text", "is empty");
    }
    m_peers.Send(command.nId, {reinterpret_cast<const unsigned char*>(command.strText.data()), command.strText.size()});
}

Result CSession::On(const SListenCommand& command) {
    const unsigned short nConfigured = ConfiguredBroadcastPort();
    const auto configured = nConfigured != 0 ? std::optional(nConfigured) : std::nullopt;
    m_peers.Listen({command.address, command.broadcast.value_or(configured), command.control});
    const SNetworkState state = m_peers.State();
    SListening listening;
    if (state.broadcast) {
        listening.broadcast = state.broadcast->nPort;
    }
    if (state.control) {
        listening.control = state.control->nPort;
    }
    return listening;
}

Result CSession::On(const SWaitCommand& command) {
    constexpr unsigned LONGEST_WAIT = 600'000;
    if (command.nMilliseconds > LONGEST_WAIT) {
        Refuse("ms", "is longer than " + std::to_string(LONGEST_WAIT));
    }
    if (m_peers.RunsAlways()) {
        Refuse("op", "the host reads the network by itself here");
    }
    m_dispatched.clear();
    m_peers.Wait(command.nMilliseconds);
    return SWaited{std::exchange(m_dispatched, {})};
}

void CSession::On(const SListenOnlyCommand& command) {
    m_peers.SetListenOnly(command.bOn);
    TakeDatagrams(command.bOn ? [this] { OnHeldBack(); } : std::function<void()>());
}

/// Log a broadcast held back: the session doesn't see it otherwise, since the node owns its socket.
void CSession::OnHeldBack() {
    const SNode* pNode = m_pHost->Activity().CalledNode();
    m_heldBackLine.Write("a broadcast" + (pNode != nullptr ? " of the node " + Quoted(pNode->strHandle) : "") +
                         " was held back: listen-only is on");
}
