#include "network/BroadcastReceiver.h"

#include "BroadcastDatagram.h"
#include "base/Caught.h"
#include "host/EventRecord.h"

CBroadcastReceiver::CBroadcastReceiver(CPeerLoop& loop, const asio::ip::udp::endpoint& endpoint)
    : m_loop(loop), m_endpoint(endpoint), m_state{.nPort = endpoint.port()}, m_socket(loop.Context()),
      m_timer(loop.Context()) {}

std::string CBroadcastReceiver::Open() {
    error_code error;
    m_socket.open(m_endpoint.protocol(), error);
    if (!error) {
        m_socket.bind({m_endpoint.address(), m_state.nPort}, error);
    }
    if (error) {
        CloseSocket();
        return "UDP " + EndpointText(m_endpoint) + ": " + error.message();
    }
    m_state.nPort = m_socket.local_endpoint().port();
    m_timer.cancel();
    return {};
}

void CBroadcastReceiver::Start() {
    Spawn(m_loop.Context(), "broadcasts aren't received any longer",
          [pSelf = shared_from_this()] { return pSelf->Run(); });
}

void CBroadcastReceiver::Stop() {
    m_bStopped = true;
    CloseSocket();
    m_timer.cancel();
}

void CBroadcastReceiver::CloseSocket() {
    error_code ignored;
    m_socket.close(ignored);
    m_loop.Gate().Wake();
}

Awaitable<void> CBroadcastReceiver::Run() {
    constexpr std::chrono::seconds RETRY_PAUSE{1};
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
            // An attempt right away would fail the same way.
            co_await Pause(m_timer, RETRY_PAUSE);
        }
    }
}

/// Note why the port can't be had now (empty: it can), and log a change.
void CBroadcastReceiver::ShowProblem(const std::string& strProblem) {
    if (!strProblem.empty()) {
        ++m_state.nErrors;
        m_state.strLastError = strProblem;
        m_loop.OnStateChanged();
    }
    if (strProblem != m_state.strProblem) {
        m_state.strProblem = strProblem;
        if (strProblem.empty()) {
            WriteHostLine(LOG_INFORMATION, "broadcasts are received on UDP " + std::to_string(Port()));
        } else {
            WriteHostLine(LOG_ERROR, "broadcasts can't be received on " + strProblem + "; trying again");
        }
        m_loop.OnStateChanged();
    }
}

void CBroadcastReceiver::CountError(const std::string& strError) {
    ++m_state.nErrors;
    m_state.strLastError = strError;
    m_errorLine.Write("receiving broadcasts on UDP " + std::to_string(Port()) + ": " + strError);
    m_loop.OnStateChanged();
}

/// Receive until an error. None is about a single datagram: the buffer holds the longest, and nothing is sent.
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
        co_await m_loop.Gate().Pass(m_socket);
        if (m_bStopped) {
            co_return;
        }
        Take({m_datagram.data(), nBytes});
    }
}

void CBroadcastReceiver::Take(std::span<const unsigned char> datagram) {
    SetLast(m_state.lastReceived, datagram);
    SBroadcastItem item;
    EBroadcastRefusal nRefusal{};
    if (ReadBroadcast(datagram, item, nRefusal)) {
        ++m_state.counts.nReceived;
        if (m_loop.HandOver(EPeer::Broadcast, {DEVICE_NETWORK, EVENT_BROADCAST, &item})) {
            ++m_state.counts.nMatched;
        }
    } else {
        ++m_state.counts.nRejected;
        m_state.counts.strLastRejected = BroadcastRefusalName(nRefusal);
    }
    m_loop.OnStateChanged();
}
