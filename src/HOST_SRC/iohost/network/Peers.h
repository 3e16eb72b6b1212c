// The host's network: play-control devices, the broadcast receiver and the listener for other hosts' records.
//
// Everything runs in one io_context. Where a front runs that (RunAlways), items reach the nodes as they come; otherwise
// connections are made and bytes written along with the requests, and items are read by Wait alone.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "network/BroadcastReceiver.h"
#include "network/ControlListener.h"
#include "network/DeviceLink.h"
#include "network/NetworkState.h"

/// What to listen on; a port that isn't given isn't listened on.
struct SListenSetup {
    std::optional<std::string> address;      ///< numeric; none: broadcasts from anywhere, records from this machine
    std::optional<unsigned short> broadcast; ///< UDP port
    std::optional<unsigned short> control;   ///< TCP port, 0: any
};

class CPeers {
public:
    /// The receiver must outlive this object.
    explicit CPeers(INetworkReceiver& receiver) : m_loop(receiver) {}
    ~CPeers() { Close(); }

    /// The loop that all of it runs in. A front may run it, and may put its own work into it.
    asio::io_context& Context() { return m_loop.Context(); }

    /// Replace the devices and connect to each anew; without a value there is no device list.
    void SetDevices(std::optional<std::vector<SDeviceSetup>> setups);

    /// Replace the devices. Those reached as before keep their connections and what waits for them.
    void ChangeDevices(std::optional<std::vector<SDeviceSetup>> setups);

    /// How the device of that id is set up; null for an unknown one.
    const SDeviceSetup* FindDevice(int nId) const;

    /// The devices as they were set.
    std::optional<std::vector<SDeviceSetup>> Devices() const;

    /// Listen on these ports in place of others; refuses a port that can't be had, and then nothing is changed.
    void Listen(const SListenSetup& setup);

    /// Try now to connect to a device; refuses one that isn't there or has no address.
    void Connect(int nId) { LinkOf(nId).TryNow(); }

    /// Send bytes to a device as a node would; refuses what it doesn't take.
    void Send(int nId, std::span<const unsigned char> bytes) { LinkOf(nId).Send(bytes); }

    /// Receive broadcasts on the port for as long as the host runs, trying again while it can't be had.
    void KeepReceivingBroadcasts(unsigned short nPort);

    /// From now on a front runs the loop: items reach the nodes as they come.
    void RunAlways();
    bool RunsAlways() const { return m_bRunsAlways; }

    /// Do what can be done at once. For fronts that don't run the loop.
    void Poll();

    /// Let each device try to connect once, for up to so long.
    void AwaitFirstAttempts(unsigned nMilliseconds);

    /// Read the network for up to so long, or until something was handed to the nodes.
    void Wait(unsigned nMilliseconds);

    /// While it is on, what nodes send to devices is shown only, and what waits to be written isn't written.
    void SetListenOnly(bool bOn);

    SNetworkState State() const;

    /// Grows whenever State would return something different, times aside.
    unsigned long long StateVersion() const { return m_loop.StateVersion(); }

    /// End all connections.
    void Close();

private:
    CDeviceLink* FindLink(int nId) const;
    CDeviceLink& LinkOf(int nId) const;

    CPeerLoop m_loop;
    bool m_bRunsAlways = false;
    bool m_bDeviceList = false;
    NetPlayCtrlDevArray m_arDevice;                    ///< what nodes see
    std::vector<std::shared_ptr<CDeviceLink>> m_links; ///< in the order of the array
    std::shared_ptr<CBroadcastReceiver> m_pBroadcast;
    std::shared_ptr<CControlListener> m_pControl;
};

/// The port of broadcasts in the application folder's configuration; 0 without one, and for a number that is no port.
unsigned short ConfiguredBroadcastPort();

/// What is wrong with that number; empty when nothing is.
std::string ConfiguredPortProblem();
