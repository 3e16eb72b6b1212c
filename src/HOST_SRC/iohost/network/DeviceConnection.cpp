#include "network/DeviceConnection.h"

#include <boost/asio/write.hpp>
#include <boost/beast/core/error.hpp>

#include <utility>

#include "base/Platform.h"

namespace {

constexpr const char* NO_ANSWER = "no answer";

} // namespace

CDeviceConnection::CDeviceConnection(CPeerLoop& loop)
    : m_loop(loop), m_stream(loop.Context()), m_answerTimer(loop.Context()) {}

Awaitable<std::string> CDeviceConnection::Connect(asio::ip::tcp::endpoint address) {
    constexpr std::chrono::seconds CONNECT_TIME{5};
    error_code error;
    m_stream.expires_after(CONNECT_TIME);
    co_await m_stream.async_connect(address, AwaitInto(error));
    m_stream.expires_never();
    if (error) {
        co_return error == boost::beast::error::timeout ? NO_ANSWER : error.message();
    }
    error_code ignored;
    Socket().set_option(asio::ip::tcp::no_delay(true), ignored);
    Socket().non_blocking(true, ignored);
    NoticeLostPeer(static_cast<std::uintptr_t>(Socket().native_handle()));
    m_bConnected = true;
    co_return std::string();
}

Awaitable<std::string> CDeviceConnection::Serve(CItemReader& reader) {
    m_strDisconnectReason.clear();
    WatchAnswers();
    Write();
    const std::string strReason = co_await reader.Read(Socket());
    co_return strReason.empty() ? m_strDisconnectReason : strReason;
}

void CDeviceConnection::End() {
    Close();
    m_answerTimer.cancel();
    m_bConnected = false;
    ++m_nConnection;
    m_queue.EndConnection();
}

void CDeviceConnection::Close() {
    m_stream.close();
    m_loop.Gate().Wake();
}

/// Close the connection for that reason.
void CDeviceConnection::Disconnect(std::string strReason) {
    m_strDisconnectReason = std::move(strReason);
    Close();
}

/// What the system has room for is written at once, the rest as soon as there is room again.
void CDeviceConnection::Write() {
    while (!m_queue.IsWriting() && m_bConnected && Socket().is_open() && !m_loop.IsListenOnly()) {
        const auto pBytes = m_queue.BeginWrite(steady_clock::now());
        if (pBytes->empty()) {
            return;
        }
        error_code error;
        const size_t nWritten = Socket().write_some(asio::buffer(*pBytes), error);
        if (nWritten == pBytes->size() || (error && error != asio::error::would_block)) {
            OnWritten(error);
            continue;
        }
        asio::async_write(
            Socket(), asio::buffer(*pBytes) + nWritten,
            [pSelf = shared_from_this(), nConnection = m_nConnection, pBytes](const error_code& result, size_t) {
                if (nConnection == pSelf->m_nConnection) { // else that connection is over, and so is what it was sent
                    pSelf->OnWritten(result);
                    pSelf->Write();
                }
            });
    }
}

void CDeviceConnection::OnWritten(const error_code& error) {
    if (!error) {
        m_queue.EndWrite();
        m_loop.OnStateChanged();
    } else if (Socket().is_open()) {
        Disconnect(error.message());
    }
}

/// Look from time to time whether the device still answers what it's sent, until the connection ends.
void CDeviceConnection::WatchAnswers() {
    constexpr std::chrono::seconds ANSWER_LOOK{1};
    m_answerTimer.expires_after(ANSWER_LOOK);
    m_answerTimer.async_wait([pSelf = shared_from_this()](const error_code& error) {
        constexpr std::chrono::seconds ANSWER_TIME{10};
        if (error || !pSelf->m_bConnected) {
            return;
        }
        if (HasStoppedAnswering(static_cast<std::uintptr_t>(pSelf->Socket().native_handle()), ANSWER_TIME)) {
            pSelf->Disconnect(NO_ANSWER);
        } else {
            pSelf->WatchAnswers();
        }
    });
}
