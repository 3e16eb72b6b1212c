// The connection to one play-control device: kept up by itself, written from a bounded queue.
#pragma once

#include "network/PeerLoop.h"

#include <array>
#include <memory>
#include <optional>

#include "PlayControlParser.h"
#include "SocketTransport.h"
#include "base/LimitedLine.h"
#include "host/PlayControlDevice.h"
#include "network/SendQueue.h"
#include "network/TextLines.h"

enum class EDeviceParser { None, Direct, Framed, JsonLines };

/// How a device is set up.
struct SDeviceSetup {
    int nId = 0;
    std::string strName;
    EDeviceParser nParser = EDeviceParser::None;
    std::optional<boost::asio::ip::tcp::endpoint> address; ///< none: never connected; what is sent is shown only
};

class CDeviceLink final : public std::enable_shared_from_this<CDeviceLink>,
                          private ISocketTransport,
                          private IReceivedBytes,
                          private IRecordReceiver,
                          private ITextReceiver {
public:
    /// The host must outlive the io_context's handlers.
    CDeviceLink(boost::asio::io_context& context, SDeviceSetup setup, IPeerHost& host);
    ~CDeviceLink();

    /// Connect, and again whenever the connection is lost, until Stop.
    void Start();
    void Stop();

    /// Write what waits, if it may be written now.
    void Write();

    /// The device as nodes see it.
    SQORNetPlayCtrlDev& Device() { return m_device; }

    /// Whether the first attempt to connect has ended; at once without an address.
    bool WasTried() const { return m_bTried || !m_setup.address; }

    /// How it is set up, and how it stands.
    OrderedJson SetupJson() const;
    OrderedJson State() const;

private:
    enum class EState { Unconnected, Connecting, Connected, Waiting };

    bool SendItem(const CZtBaseNetProtocol& item) override;
    bool SendBytes(std::span<const unsigned char> bytes) override;
    void OnConnectionBegins() override {}
    void OnBytes(std::span<const unsigned char> bytes) override;
    void OnRecord(const CString& strClip, CQORPanelRemoteCtrlData& record) override;
    void OnText(const CString& strText) override;

    std::unique_ptr<CZtSocketParser> MakeParser();
    Awaitable<void> Run();
    Awaitable<std::string> Connect();
    Awaitable<std::string> Serve();
    Awaitable<std::string> Read();
    Awaitable<void> Pause();
    bool Queue(std::span<const unsigned char> bytes);
    bool RefuseItem(CLimitedLine& line, const char* pszReason);
    void OnWritten(unsigned long long nConnection, const boost::system::error_code& error);
    void WatchAnswers();
    void Disconnect(std::string strReason);
    void CloseSocket();
    void EndConnection();
    void SetState(EState nState);
    void CountRejected();
    std::string Description() const;

    boost::asio::io_context& m_context;
    const SDeviceSetup m_setup;
    IPeerHost& m_host;
    CTextLines m_textLines{*this};                ///< of a device that sends texts
    std::unique_ptr<CZtSocketParser> m_pParser;   ///< null: what comes in is dropped
    CQORPlayCtlParser* m_pFramedParser = nullptr; ///< the parser, when it is one of frames
    CZTSocket m_deviceSocket;
    SQORNetPlayCtrlDev m_device;

    TcpSocket m_socket;
    SteadyTimer m_timer; ///< ends an attempt to connect and the pause before the next; between them, WatchAnswers
    std::chrono::milliseconds m_backoff;
    EState m_nState = EState::Unconnected;
    std::chrono::steady_clock::time_point m_tState; ///< when it became that
    bool m_bTried = false;
    bool m_bStopped = false;
    bool m_bWriting = false;
    unsigned long long m_nConnection = 0; ///< number of the present connection, or of the next one
    std::string m_strLastProblem;         ///< why the connection isn't or wasn't there
    std::string m_strDisconnectReason;    ///< why this side closed it

    CFrameWriter m_frameWriter;
    CSendQueue m_queue;
    unsigned long long m_nRefused = 0;
    unsigned long long m_nRefusedLately = 0; ///< since items were last taken without interruption
    std::chrono::steady_clock::time_point m_tRefused;
    CLimitedLine m_wrongItemLine{LOG_ERROR};
    CLimitedLine m_fullQueueLine{LOG_ERROR};
    unsigned long long m_nErrors = 0; ///< failures of this host over a connection
    unsigned long long m_nShown = 0;  ///< items that were only shown
    std::array<unsigned char, 65536> m_received;
    unsigned long long m_nReceivedBytes = 0;
    SItemCounts m_counts;
    CLastBytes m_lastSent;
    bool m_bLastShownOnly = false;
    CLastBytes m_lastReceived;
};
