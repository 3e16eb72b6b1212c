#include "ControlListener.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>

#include <array>

#include "Listener.h"
#include "Platform.h"
#include "PlayControlParser.h"

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
        NoticeLostPeer(static_cast<std::uintptr_t>(m_socket.native_handle()));
        for (bool bInStep = true; bInStep;) {
            error_code error;
            const size_t nBytes = co_await m_socket.async_read_some(asio::buffer(m_received), AwaitInto(error));
            if (error) {
                break;
            }
            co_await m_pListener->m_host.Gate().Pass();
            bInStep = !m_pListener->m_bStopped && m_parser.Receive(m_received.data(), static_cast<int>(nBytes));
            CountRejected();
        }
        m_parser.Finish();
        CountRejected();
        Close();
        m_pListener->m_connections.erase(pSelf);
        m_pListener->m_host.OnStateChanged();
    }

    void Close() {
        error_code ignored;
        m_socket.close(ignored);
    }

private:
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
    : m_context(context), m_endpoint(endpoint), m_host(host), m_acceptor(context), m_timer(context) {}

CControlListener::~CControlListener() = default;

std::string CControlListener::Open() {
    error_code error;
    OpenListener(m_acceptor, m_endpoint, error);
    return error ? "TCP " + EndpointText(m_endpoint) + ": " + error.message() : std::string();
}

void CControlListener::Start() {
    asio::co_spawn(
        m_context, [pSelf = shared_from_this()] { return pSelf->Run(); }, asio::detached);
}

void CControlListener::Stop() {
    m_bStopped = true;
    error_code ignored;
    m_acceptor.close(ignored);
    m_timer.cancel();
    for (const auto& pConnection : m_connections) {
        pConnection->Close();
    }
    m_connections.clear(); // each lives on until its reading has ended
}

unsigned short CControlListener::Port() const {
    error_code ignored;
    return m_acceptor.local_endpoint(ignored).port();
}

OrderedJson CControlListener::State() const {
    OrderedJson state = {{"port", Port()}, {"connections", m_connections.size()}, {"turned_away", m_nTurnedAway}};
    m_counts.AddTo(state);
    return state;
}

Awaitable<void> CControlListener::Run() {
    while (!m_bStopped) {
        error_code error;
        TcpSocket socket(m_context);
        co_await m_acceptor.async_accept(socket, AwaitInto(error));
        if (m_bStopped) {
            break;
        }
        if (error) {
            // The system is short of something: a pause leaves it the time to get over that.
            m_timer.expires_after(ACCEPT_PAUSE);
            co_await m_timer.async_wait(AwaitInto(error));
        } else if (m_connections.size() >= MOST_CONNECTIONS) {
            ++m_nTurnedAway;
        } else {
            const auto pConnection = std::make_shared<CConnection>(std::move(socket), shared_from_this());
            m_connections.insert(pConnection);
            asio::co_spawn(
                m_context, [pConnection] { return pConnection->Run(); }, asio::detached);
        }
        m_host.OnStateChanged();
    }
}
