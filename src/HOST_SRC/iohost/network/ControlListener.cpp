#include "network/ControlListener.h"

#include <boost/asio/post.hpp>

#include "base/Caught.h"
#include "base/Platform.h"
#include "network/ItemReader.h"

namespace {

constexpr size_t MOST_CONNECTIONS = 64;

} // namespace

/// One host that sends.
class CControlListener::CConnection final : public std::enable_shared_from_this<CConnection> {
public:
    CConnection(TcpSocket socket, std::shared_ptr<CControlListener> pListener)
        : m_socket(std::move(socket)), m_pListener(std::move(pListener)),
          m_reader(m_pListener->m_loop, EPeer::Control, EDeviceParser::Framed, 0, m_pListener->m_state.counts) {
        NoticeLostPeer(static_cast<std::uintptr_t>(m_socket.native_handle()));
    }

    Awaitable<void> Run() {
        const auto pSelf = shared_from_this();
        try {
            co_await m_reader.Read(m_socket);
        } catch (...) {
            m_pListener->CountError(CaughtText());
        }
        m_pListener->m_connections.erase(pSelf);
        Close();
        m_reader.EndConnection();
        m_pListener->m_loop.OnStateChanged();
    }

    steady_clock::time_point SilentSince() const { return m_reader.SilentSince(); }

    /// Address and port of the other host.
    std::string Address() const {
        error_code ignored;
        return EndpointText(m_socket.remote_endpoint(ignored));
    }

    void Close() {
        error_code ignored;
        m_socket.close(ignored);
        m_pListener->m_loop.Gate().Wake();
    }

private:
    TcpSocket m_socket;
    std::shared_ptr<CControlListener> m_pListener;
    CItemReader m_reader;
};

CControlListener::CControlListener(CPeerLoop& loop, const asio::ip::tcp::endpoint& endpoint,
                                   steady_clock::duration silence)
    : m_loop(loop), m_endpoint(endpoint), m_silence(silence), m_state{.nPort = endpoint.port()},
      m_acceptor(loop.Context()), m_timer(loop.Context()) {}

CControlListener::~CControlListener() = default;

std::string CControlListener::Open() {
    const std::string strProblem = OpenListener(m_acceptor, {m_endpoint.address(), m_state.nPort});
    if (!strProblem.empty()) {
        return "TCP " + EndpointText(m_endpoint) + ": " + strProblem;
    }
    m_state.nPort = m_acceptor.local_endpoint().port();
    m_timer.cancel();
    return {};
}

void CControlListener::Start() {
    Spawn(m_loop.Context(), "records of other hosts aren't taken any longer",
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

SControlState CControlListener::State() const {
    SControlState state = m_state;
    state.nConnections = m_connections.size();
    return state;
}

Awaitable<void> CControlListener::Run() {
    constexpr std::chrono::milliseconds PAUSE{100};
    while (!m_bStopped) {
        std::string strError;
        try {
            strError = co_await TakeConnection();
        } catch (...) {
            strError = CaughtText();
        }
        if (!strError.empty() && !m_bStopped) {
            // Mostly the system is out of something: a pause gives it time to recover.
            CountError(strError);
            co_await Pause(m_timer, PAUSE);
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
    TcpSocket socket(m_loop.Context());
    co_await m_acceptor.async_accept(socket, AwaitInto(error));
    if (m_bStopped || (error == asio::error::operation_aborted && m_acceptor.is_open())) {
        co_return std::string(); // or it was given back and opened again
    }
    if (error) {
        co_return error.message();
    }
    const bool bRoom = co_await MakeRoom();
    if (m_bStopped) {
        co_return std::string();
    }
    if (!bRoom) {
        ++m_state.nTurnedAway;
    } else {
        const auto pConnection = std::make_shared<CConnection>(std::move(socket), shared_from_this());
        m_connections.insert(pConnection);
        Spawn(m_loop.Context(), "a connection of another host", [pConnection] { return pConnection->Run(); });
    }
    m_loop.OnStateChanged();
    co_return std::string();
}

/// Whether there is a place for one more connection; one that was silent for long enough gives up its own.
Awaitable<bool> CControlListener::MakeRoom() {
    if (m_connections.size() >= MOST_CONNECTIONS) {
        // Whatever has come in already is looked at first: who sent it isn't silent.
        co_await asio::post(m_loop.Context(), asio::use_awaitable_t<Executor>());
    }
    if (m_connections.size() >= MOST_CONNECTIONS) {
        if (const auto pSilent = LongestSilent(m_connections, m_silence)) {
            m_roomLine.Write("records of other hosts on TCP " + std::to_string(Port()) + ": the silent connection of " +
                             pSilent->Address() + " makes room for another");
            pSilent->Close();
            m_connections.erase(pSilent);
        }
    }
    co_return m_connections.size() < MOST_CONNECTIONS;
}

void CControlListener::CountError(const std::string& strError) {
    ++m_state.nErrors;
    m_state.strLastError = strError;
    m_errorLine.Write("taking records of other hosts on TCP " + std::to_string(Port()) + ": " + strError);
    m_loop.OnStateChanged();
}
