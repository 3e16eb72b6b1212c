#include "network/BroadcastReceiver.h"

#include "BroadcastDatagram.h"
#include "base/Caught.h"
#include "base/HostLine.h"
#include "host/EventRecord.h"

namespace asio = boost::asio;
using boost::system::error_code;

namespace {

constexpr std::chrono::seconds RETRY_PAUSE{1};

} // namespace

CBroadcastReceiver::CBroadcastReceiver(asio::io_context& context, const asio::ip::udp::endpoint& endpoint,
                                       IPeerHost& host)
    : m_context(context), m_endpoint(endpoint), m_nPort(endpoint.port()), m_host(host), m_socket(context),
      m_timer(context) {}

std::string CBroadcastReceiver::Open() {
    error_code error;
    m_socket.open(m_endpoint.protocol(), error);
    if (!error) {
        m_socket.bind({m_endpoint.address(), m_nPort}, error);
    }
    if (error) {
        CloseSocket();
        return "UDP " + EndpointText(m_endpoint) + ": " + error.message();
    }
    m_nPort = m_socket.local_endpoint().port();
    m_timer.cancel();
    return {};
}

void CBroadcastReceiver::Start() {
    Spawn(m_context, "broadcasts aren't received any longer", [pSelf = shared_from_this()] { return pSelf->Run(); });
}

void CBroadcastReceiver::Stop() {
    m_bStopped = true;
    CloseSocket();
    m_timer.cancel();
}

void CBroadcastReceiver::CloseSocket() {
    error_code ignored;
    m_socket.close(ignored);
    m_host.Gate().Wake();
}

OrderedJson CBroadcastReceiver::State() const {
    OrderedJson state = {{"port", Port()},
                         {"problem", TextOrNull(m_strProblem)},
                         {"errors", m_nErrors},
                         {"last_error", TextOrNull(m_strLastError)}};
    m_counts.AddTo(state);
    state["last_received_bytes"] = m_lastReceived.ToJson();
    return state;
}

Awaitable<void> CBroadcastReceiver::Run() {
    while (!m_bStopped) {
        try {
            const std::string strProblem = m_socket.is_open() ? std::string() : Open();
            ShowProblem(strProblem);
            if (strProblem.empty()) {
                co_await Receive();
            }
        } catch (...) {
            CountError(CaughtText());
        }
        if (!m_bStopped) {
            // Whatever it was, it doesn't get better within the same moment.
            m_timer.expires_after(RETRY_PAUSE);
            error_code ignored;
            co_await m_timer.async_wait(AwaitInto(ignored));
        }
    }
}

/// Why the port can't be had now; empty when it can.
void CBroadcastReceiver::ShowProblem(const std::string& strProblem) {
    if (!strProblem.empty()) {
        ++m_nErrors;
        m_strLastError = strProblem;
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
}

void CBroadcastReceiver::CountError(const std::string& strError) {
    ++m_nErrors;
    m_strLastError = strError;
    m_errorLine.Write("receiving broadcasts on UDP " + std::to_string(Port()) + ": " + strError);
    m_host.OnStateChanged();
}

/// Receive until an error. None is about one datagram: the buffer takes the longest, and nothing is sent from this
/// socket that somebody could refuse.
Awaitable<void> CBroadcastReceiver::Receive() {
    for (;;) {
        error_code error;
        asio::ip::udp::endpoint sender;
        const size_t nBytes = co_await m_socket.async_receive_from(asio::buffer(m_datagram), sender, AwaitInto(error));
        if (m_bStopped) {
            co_return;
        }
        if (error == asio::error::operation_aborted && m_socket.is_open()) {
            continue; // it was given back and opened again
        }
        if (error) {
            CountError(error.message());
            CloseSocket();
            co_return;
        }
        co_await m_host.Gate().Pass(m_socket);
        if (m_bStopped) {
            co_return;
        }
        Take({m_datagram.data(), nBytes});
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
