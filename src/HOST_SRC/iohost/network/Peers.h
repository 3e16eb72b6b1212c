// The host's network: play-control devices, the broadcast receiver and the listener for other hosts' records.
//
// Everything runs in one io_context. Where a front runs that (RunAlways), items reach the nodes as they come; otherwise
// connections are made and bytes written along with the requests, and items are read by Wait alone.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/EventRecord.h"
#include "network/BroadcastReceiver.h"
#include "network/ControlListener.h"
#include "network/DeviceLink.h"
#include "network/ItemObserver.h"

class CHost;

/// What to listen on; a port that isn't given isn't listened on.
struct SListenSetup {
    std::optional<std::string> address;      ///< numeric; none: broadcasts from anywhere, records from this machine
    std::optional<unsigned short> broadcast; ///< UDP port
    std::optional<unsigned short> control;   ///< TCP port, 0: any
};

class CPeers final : private IPeerHost {
public:
    explicit CPeers(CHost& host) : m_host(host) {}
    ~CPeers() { Close(); }

    CPeers(const CPeers&) = delete;
    CPeers& operator=(const CPeers&) = delete;

    /// The loop that all of it runs in. A front may run it, and may put its own work into it.
    boost::asio::io_context& Context() { return m_context; }

    /// Devices out of [{"id","name","parser","address"}], or none for null. strPath stands before field names in
    /// refusals.
    static std::optional<std::vector<SDeviceSetup>> ReadDevices(const Json& list, const std::string& strPath);

    /// Replace the devices; nothing: there is no list then.
    void SetDevices(std::optional<std::vector<SDeviceSetup>> setups);

    /// The list as ReadDevices takes it; null without one.
    OrderedJson DeviceList() const;

    /// Listen on these ports in place of others; refuses a port that can't be had, and then nothing is changed.
    void Listen(const SListenSetup& setup);

    /// Receive broadcasts on the port for as long as the host runs, trying again while it can't be had.
    void KeepReceivingBroadcasts(unsigned short nPort);

    /// From now on a front runs the loop: items reach the nodes as they come.
    void RunAlways();
    bool RunsAlways() const { return m_bRunsAlways; }

    /// Do what can be done at once. For fronts that don't run the loop.
    void Poll();

    /// Let each device try to connect once, for up to so long.
    void AwaitFirstAttempts(unsigned nMilliseconds);

    /// Read the network for up to so long, or until something was handed to the nodes. The list of what was:
    /// [{"from","device","event","results"}].
    OrderedJson Wait(unsigned nMilliseconds);

    /// While it is on, what nodes send to devices is shown only, and what waits to be written goes on waiting.
    void SetListenOnly(bool bOn);

    /// {"devices":[...] or null,"broadcast":{...} or null,"control":{...} or null,"listen_only"}
    OrderedJson State() const;

    /// Grows whenever State would tell something else but times.
    unsigned long long StateVersion() const { return m_nStateVersion; }

    /// Null for none. It isn't owned.
    void SetItemObserver(IItemObserver* pObserver) { m_pItemObserver = pObserver; }

    /// End all connections.
    void Close();

private:
    CReadGate& Gate() override { return m_gate; }
    bool OnRecord(EPeer nFrom, EIODevice nDevice, CQORPanelRemoteCtrlData& record) override;
    bool OnBroadcast(SBroadcastItem& item) override;
    bool OnDeviceText(int nDeviceId, const CString& strText) override;
    void OnSent(OrderedJson entry) override;
    size_t MostShownBytes() const override;
    bool IsListenOnly() const override { return m_bListenOnly; }
    void OnStateChanged() override { ++m_nStateVersion; }

    bool Dispatch(EPeer nFrom, const SIOEventRecord& record);
    bool HandOver(EPeer nFrom, const SIOEventRecord& record);
    void StopDevices();

    CHost& m_host;
    boost::asio::io_context m_context{1};
    CReadGate m_gate{m_context};
    bool m_bRunsAlways = false;
    bool m_bListenOnly = false;
    bool m_bDeviceList = false;
    NetPlayCtrlDevArray m_arDevice;                    ///< what nodes see
    std::vector<std::shared_ptr<CDeviceLink>> m_links; ///< in the order of the array
    std::shared_ptr<CBroadcastReceiver> m_pBroadcast;
    std::shared_ptr<CControlListener> m_pControl;
    OrderedJson m_dispatched; ///< an array while Wait collects
    CLimitedLine m_faultLine{LOG_ERROR};
    unsigned long long m_nStateVersion = 0;
    IItemObserver* m_pItemObserver = nullptr;
};

/// The port of broadcasts in the application folder's configuration; 0 without one.
unsigned short ConfiguredBroadcastPort();
