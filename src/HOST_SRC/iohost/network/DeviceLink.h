// One play-control device: what nodes see of it, and its connection, which is kept up by itself.
#pragma once

#include "network/DeviceConnection.h"

#include <memory>

#include "SocketTransport.h"
#include "base/HostLine.h"
#include "host/PlayControlDevice.h"
#include "network/NetworkState.h"
#include "network/Reconnection.h"

class CDeviceLink final : public std::enable_shared_from_this<CDeviceLink>, private ISocketTransport {
public:
    /// The loop must outlive its handlers.
    CDeviceLink(CPeerLoop& loop, SDeviceSetup setup);

    /// Connect, and again whenever the connection is lost, until Stop.
    void Start();
    void Stop();

    /// Whether a device that is set up so is reached over this link's connection.
    bool Reaches(const SDeviceSetup& setup) const;

    /// Take over what doesn't concern the connection.
    void Change(const SDeviceSetup& setup);

    /// Try now to connect, unless that is under way or done.
    void TryNow();

    /// Send bytes that no node sent; refuses what the device doesn't take.
    void Send(std::span<const unsigned char> bytes);

    /// Write what waits, if it may be written now.
    void Write() { m_pConnection->Write(); }

    /// The device as nodes see it.
    SQORNetPlayCtrlDev& Device() { return m_device; }

    /// Whether the first attempt to connect has ended; at once without an address.
    bool WasTried() const { return m_bTried || !Setup().address; }

    const SDeviceSetup& Setup() const { return m_state.setup; }
    SDeviceState State() const;

private:
    bool SendItem(const CZtBaseNetProtocol& item) override;
    bool SendBytes(std::span<const unsigned char> bytes) override;
    const char* Queue(std::span<const unsigned char> bytes, CSendQueue::Sender sender);
    const char* RefuseItem(CLimitedLine& line, const char* pszReason);

    void AwaitLateItems();
    void DropLateItems();

    Awaitable<void> Run();
    void SetState(ELinkState nState);
    std::string Description() const;

    CPeerLoop& m_loop;
    SDeviceState m_state; ///< without what the members below know
    CItemReader m_reader{m_loop, EPeer::Device, Setup().nParser, Setup().nId, m_state.counts};
    CReconnection m_reconnection{m_loop.Context()};
    const std::shared_ptr<CDeviceConnection> m_pConnection = std::make_shared<CDeviceConnection>(m_loop);
    CZTSocket m_deviceSocket{this, m_reader.Parser()};
    SQORNetPlayCtrlDev m_device;
    SteadyTimer m_lateTimer{m_loop.Context()};
    bool m_bLateTimer = false;         ///< it runs
    steady_clock::time_point m_tSince; ///< when the device was last connected or lost; at first, when the link was made
    bool m_bTried = false;
    bool m_bStopped = false;

    CFrameWriter m_frameWriter;
    unsigned long long m_nRefusedLately = 0; ///< items refused since the log last said that they are taken again
    steady_clock::time_point m_tRefused;
    CLimitedLine m_wrongItemLine{LOG_ERROR};
    CLimitedLine m_fullQueueLine{LOG_ERROR};
    CLimitedLine m_lateLine{LOG_ERROR};
};
