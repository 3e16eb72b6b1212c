#include "network/ControlListener.h"

#include <algorithm>
#include <array>

#include "PlayControlParser.h"
#include "base/Caught.h"
#include "base/Listener.h"
#include "base/Platform.h"

namespace asio = boost::asio;
using boost::system::error_code;

namespace {

constexpr size_t MOST_CONNECTIONS = 64;
constexpr std::chrono::milliseconds ACCEPT_PAUSE{100};

} // namespace

/// One host that sends.
class CControlListener::CConnection final : public std::enable_shared_from_this<CConnection>, private IRecordReceiver {
public:
    CConnection(TcpSocket socket, std::shared_ptr<CControlListener> pListener)
        : m_socket(std::move(socket)), m_pListener(std::move(pListener)) {}
    ~CConnection() = default;

    Awaitable<void> Run() {
        const auto pSelf = shared_from_this();
        try {
            co_await Read();
        } catch (...) {
            m_pListener->CountError(CaughtText());
        }
        m_pListener->m_connections.erase(pSelf);
        Close();
        m_parser.Finish();
        CountRejected();
        m_pListener->m_host.OnStateChanged();
    }

    void Close() {
        error_code ignored;
        m_socket.close(ignored);
        m_pListener->m_host.Gate().Wake();
    }

private:
    /// Read until the connection ends.
    Awaitable<void> Read() {
        NoticeLostPeer(static_cast<std::uintptr_t>(m_socket.native_handle()));
        for (;;) {
            error_code error;
            const size_t nBytes = co_await m_socket.async_read_some(asio::buffer(m_received), AwaitInto(error));
            if (error) {
                co_return;
            }
            for (size_t nBegin = 0; nBegin < nBytes; nBegin += PARSED_AT_ONCE) {
                if (!co_await m_pListener->m_host.Gate().Pass(m_socket)) {
                    co_return;
                }
                const size_t nLength = std::min(PARSED_AT_ONCE, nBytes - nBegin);
                const bool bInStep = m_parser.Receive(m_received.data() + nBegin, static_cast<int>(nLength));
                CountRejected();
                if (!bInStep) {
                    co_return;
                }
            }
        }
    }

    void OnRecord(const CString& /*strClip*/, CQORPanelRemoteCtrlData& record) override {
        ++m_pListener->m_counts.nReceived;
        if (m_pListener->m_host.OnRecord(EPeer::Control, DEVICE_NETWORK_CONTROL, record)) {
            ++m_pListener->m_counts.nMatched;
        }
        m_pListener->m_host.OnStateChanged();
    }

    void CountRejected() {
        const unsigned long long nRejected = m_parser.Reader().RefusedCount();
        if (nRejected != m_nRejected) {
            m_pListener->m_counts.nRejected += nRejected - m_nRejected;
            m_pListener->m_counts.strLastRejected = FrameRefusalName(*m_parser.Reader().LastRefusal());
            m_nRejected = nRejected;
            m_pListener->m_host.OnStateChanged();
        }
    }

    TcpSocket m_socket;
    std::shared_ptr<CControlListener> m_pListener;
    CQORPlayCtlParser m_parser{*this};
    unsigned long long m_nRejected = 0; ///< as counted so far
    std::array<unsigned char, 65536> m_received;
};

CControlListener::CControlListener(asio::io_context& context, const asio::ip::tcp::endpoint& endpoint, IPeerHost& host)
    : m_context(context), m_endpoint(endpoint), m_nPort(endpoint.port()), m_host(host), m_acceptor(context),
      m_timer(context) {}

CControlListener::~CControlListener() = default;

std::string CControlListener::Open() {
    error_code error;
    OpenListener(m_acceptor, {m_endpoint.address(), m_nPort}, error);
    if (error) {
        return "TCP " + EndpointText(m_endpoint) + ": " + error.message();
    }
    m_nPort = m_acceptor.local_endpoint().port();
    m_timer.cancel();
    return {};
}

void CControlListener::Start() {
    Spawn(m_context, "records of other hosts aren't taken any longer",
          [pSelf = shared_from_this()] { return pSelf->Run(); });
}

void CControlListener::CloseSocket() {
    error_code ignored;
    m_acceptor.close(ignored);
}

void CControlListener::Stop() {
    m_bStopped = true;
    CloseSocket();
    m_timer.cancel();
    for (const auto& pConnection : m_connections) {
        pConnection->Close();
    }
    m_connections.clear(); // each lives on until its reading has ended
}

OrderedJson CControlListener::State() const {
    OrderedJson state = {{"port", Port()},
                         {"connections", m_connections.size()},
                         {"turned_away", m_nTurnedAway},
                         {"errors", m_nErrors},
                         {"last_error", TextOrNull(m_strLastError)}};
    m_counts.AddTo(state);
    return state;
}

Awaitable<void> CControlListener::Run() {
    while (!m_bStopped) {
        std::string strError;
        try {
            strError = co_await TakeConnection();
        } catch (...) {
            strError = CaughtText();
        }
        if (!strError.empty() && !m_bStopped) {
            // Mostly the system is short of something: a pause leaves it the time to get over that.
            CountError(strError);
            m_timer.expires_after(ACCEPT_PAUSE);
            error_code ignored;
            co_await m_timer.async_wait(AwaitInto(ignored));
        }
    }
}

/// Take one connection; the reason when that fails, else nothing.
Awaitable<std::string> CControlListener::TakeConnection() {
    if (!m_acceptor.is_open()) {
        if (std::string strProblem = Open(); !strProblem.empty()) {
            co_return strProblem;
        }
    }
    error_code error;
    TcpSocket socket(m_context);
    co_await m_acceptor.async_accept(socket, AwaitInto(error));
    if (m_bStopped || (error == asio::error::operation_aborted && m_acceptor.is_open())) {
        co_return std::string(); // or it was given back and opened again
    }
    if (error) {
        co_return error.message();
    }
    if (m_connections.size() >= MOST_CONNECTIONS) {
        ++m_nTurnedAway;
    } else {
        const auto pConnection = std::make_shared<CConnection>(std::move(socket), shared_from_this());
        m_connections.insert(pConnection);
        Spawn(m_context, "a connection of another host", [pConnection] { return pConnection->Run(); });
    }
    m_host.OnStateChanged();
    co_return std::string();
}

void CControlListener::CountError(const std::string& strError) {
    ++m_nErrors;
    m_strLastError = strError;
    m_errorLine.Write("taking records of other hosts on TCP " + std::to_string(Port()) + ": " + strError);
    m_host.OnStateChanged();
}
