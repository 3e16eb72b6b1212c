#include "BroadcastReceiver.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>

#include "BroadcastDatagram.h"
#include "HostLine.h"

namespace asio = boost::asio;
using boost::system::error_code;

namespace {

constexpr std::chrono::seconds RETRY_PAUSE{1};

} // namespace

CBroadcastReceiver::CBroadcastReceiver(asio::io_context& context, const asio::ip::udp::endpoint& endpoint,
                                       IPeerHost& host)
    : m_context(context), m_endpoint(endpoint), m_host(host), m_socket(context), m_timer(context) {}

std::string CBroadcastReceiver::Open() {
    error_code error;
    m_socket = UdpSocket(m_context);
    m_socket.open(m_endpoint.protocol(), error);
    if (!error) {
        m_socket.bind(m_endpoint, error);
    }
    if (error) {
        error_code ignored;
        m_socket.close(ignored);
    }
    return error ? "UDP " + EndpointText(m_endpoint) + ": " + error.message() : std::string();
}

void CBroadcastReceiver::Start() {
    asio::co_spawn(
        m_context, [pSelf = shared_from_this()] { return pSelf->Run(); }, asio::detached);
}

void CBroadcastReceiver::Stop() {
    m_bStopped = true;
    error_code ignored;
    m_socket.close(ignored);
    m_timer.cancel();
}

unsigned short CBroadcastReceiver::Port() const {
    error_code ignored;
    return m_socket.is_open() ? m_socket.local_endpoint(ignored).port() : m_endpoint.port();
}

OrderedJson CBroadcastReceiver::State() const {
    OrderedJson state = {{"port", Port()}, {"problem", TextOrNull(m_strProblem)}, {"errors", m_nErrors}};
    m_counts.AddTo(state);
    state["last_received_bytes"] = m_lastReceived.ToJson();
    return state;
}

Awaitable<void> CBroadcastReceiver::Run() {
    while (!m_bStopped) {
        const std::string strProblem = m_socket.is_open() ? std::string() : Open();
        if (!strProblem.empty()) {
            ++m_nErrors;
            m_host.OnStateChanged();
        }
        if (strProblem != m_strProblem) {
            m_strProblem = strProblem;
            if (strProblem.empty()) {
                WriteHostLine(LOG_INFORMATION, "broadcasts are received on UDP " + std::to_string(Port()));
            } else {
                WriteHostLine(LOG_ERROR, "broadcasts can't be received on " + strProblem + "; trying again");
            }
            m_host.OnStateChanged();
        }
        if (strProblem.empty()) {
            co_await Receive();
        }
        if (!m_bStopped) {
            // Whatever it was, it doesn't get better within the same moment.
            m_timer.expires_after(RETRY_PAUSE);
            error_code ignored;
            co_await m_timer.async_wait(AwaitInto(ignored));
        }
    }
}

/// Receive until an error that isn't about one datagram.
Awaitable<void> CBroadcastReceiver::Receive() {
    for (;;) {
        error_code error;
        asio::ip::udp::endpoint sender;
        const size_t nBytes = co_await m_socket.async_receive_from(asio::buffer(m_datagram), sender, AwaitInto(error));
        if (m_bStopped) {
            co_return;
        }
        if (error) {
            ++m_nErrors;
            m_host.OnStateChanged();
            // Windows reports that way that an answer reached nobody, and a datagram that is too long.
            if (error != asio::error::connection_reset && error != asio::error::connection_refused &&
                error != asio::error::message_size) {
                error_code ignored;
                m_socket.close(ignored);
                co_return;
            }
        } else {
            co_await m_host.Gate().Pass();
            if (m_bStopped) {
                co_return;
            }
            Take({m_datagram.data(), nBytes});
        }
    }
}

void CBroadcastReceiver::Take(std::span<const unsigned char> datagram) {
    m_lastReceived.Set(datagram);
    SBroadcastItem item;
    EBroadcastRefusal nRefusal{};
    if (ReadBroadcast(datagram, item, nRefusal)) {
        ++m_counts.nReceived;
        if (m_host.OnBroadcast(item)) {
            ++m_counts.nMatched;
        }
    } else {
        ++m_counts.nRejected;
        m_counts.strLastRejected = BroadcastRefusalName(nRefusal);
    }
    m_host.OnStateChanged();
}
