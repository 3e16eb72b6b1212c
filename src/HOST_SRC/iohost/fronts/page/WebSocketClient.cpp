#include "fronts/page/WebSocketClient.h"

#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/websocket/rfc6455.hpp>

#include <array>
#include <utility>

#include "base/HostLine.h"
#include "fronts/page/QueuedTexts.h"

namespace beast = boost::beast;
namespace websocket = beast::websocket;

namespace {

constexpr size_t LONGEST_TEXT = size_t{1024} * 1024;
constexpr size_t LONGEST_GATHERED = size_t{256} * 1024;
constexpr size_t MOST_WAITING = size_t{4} << 20;
constexpr std::chrono::milliseconds GATHER_TIME{100}; // people don't see the difference
constexpr std::chrono::seconds HANDSHAKE_TIME{10};
constexpr std::chrono::seconds LONGEST_SILENCE{30}; // after half of it the client is asked whether it's there

websocket::stream_base::timeout Timeouts(websocket::stream_base::duration longestSilence) {
    return {HANDSHAKE_TIME, longestSilence, true};
}

} // namespace

CWebSocketClient::CWebSocketClient(TcpStream stream, IWebSocketListener& listener, bool bGathered)
    : m_socket(std::move(stream)), m_listener(listener), m_bGathered(bGathered), m_gatherTimer(m_socket.get_executor()),
      m_roomTimer(m_socket.get_executor()) {}

Awaitable<void> CWebSocketClient::Run(UpgradeRequest request) {
    // The coroutine keeps the client alive.
    const std::shared_ptr<CWebSocketClient> pSelf = shared_from_this();

    beast::get_lowest_layer(m_socket).expires_never();
    m_socket.set_option(Timeouts(LONGEST_SILENCE));
    m_socket.read_message_max(LONGEST_TEXT);
    m_socket.auto_fragment(false); // one write for each text, not one for every 4 KiB of it

    error_code error;
    co_await m_socket.async_accept(request, AwaitInto(error));
    if (error) {
        co_return;
    }
    m_socket.text(true);
    m_listener.OnClientOpened(pSelf);
    co_await ReadTexts();
    Drop(); // a client that has only shut down its sending side would stay connected
    m_listener.OnClientClosed(*this);
}

Awaitable<void> CWebSocketClient::ReadTexts() {
    while (QueuedBytes() <= MOST_WAITING || co_await AwaitRoom()) {
        error_code error;
        co_await m_socket.async_read(m_received, AwaitInto(error));
        if (error) {
            co_return;
        }
        const std::string strText = beast::buffers_to_string(m_received.data());
        m_received.clear();
        m_listener.OnClientText(*this, strText);
    }
}

/// Waits while the client asks for more than it reads. False: it took nothing for too long.
Awaitable<bool> CWebSocketClient::AwaitRoom() {
    // Meanwhile nothing is read, so the client can't show that it's there.
    m_socket.set_option(Timeouts(websocket::stream_base::none()));
    while (QueuedBytes() > MOST_WAITING) {
        error_code error;
        m_roomTimer.expires_after(LONGEST_SILENCE);
        co_await m_roomTimer.async_wait(AwaitInto(error));
        if (!error) {
            WriteHostLine(LOG_INFORMATION, "a connection is closed: it read nothing for 30 seconds");
            co_return false;
        }
    }
    m_socket.set_option(Timeouts(LONGEST_SILENCE));
    co_return true;
}

void CWebSocketClient::Send(std::shared_ptr<const std::string> pText, bool bUrgent) {
    if (m_bClosing) {
        return;
    }
    m_nQueuedBytes += pText->size() + CQueuedTexts::COST_OF_EACH;
    m_queue.push_back(std::move(pText));
    if (bUrgent) {
        DontWait();
    }
    WriteOn();
}

void CWebSocketClient::WriteOn() {
    if (!std::exchange(m_bWriting, true)) {
        Spawn(m_socket.get_executor(), "a page isn't written to any longer",
              [pSelf = shared_from_this()] { return pSelf->WriteQueue(); });
    }
}

Awaitable<void> CWebSocketClient::WriteQueue() {
    const size_t nBracket = m_bGathered ? 1 : 0;
    error_code error;
    while (!m_queue.empty()) {
        if (m_bGathered && !m_bUrgent) {
            co_await Pause(m_gatherTimer, GATHER_TIME);
        }
        if (m_queue.empty()) {
            break; // dropped meanwhile
        }
        m_nWritingBytes = 0;
        const std::shared_ptr<const std::string> pText = m_bGathered ? TakeGathered() : TakeText();
        const std::array<asio::const_buffer, 3> message = {asio::buffer("[", nBracket), asio::buffer(*pText),
                                                           asio::buffer("]", nBracket)};
        co_await m_socket.async_write(message, AwaitInto(error));
        m_nQueuedBytes -= m_nWritingBytes;
        m_roomTimer.cancel();
        if (error) {
            Drop();
            break;
        }
    }
    m_bWriting = false;
    if (m_bClosing) {
        co_await m_socket.async_close(websocket::close_code::going_away, AwaitInto(error));
    }
}

std::shared_ptr<const std::string> CWebSocketClient::TakeText() {
    std::shared_ptr<const std::string> pText = std::move(m_queue.front());
    m_queue.pop_front();
    m_nWritingBytes += pText->size() + CQueuedTexts::COST_OF_EACH;
    return pText;
}

/// Joins texts into a message of about LONGEST_GATHERED at most, or takes a single longer one as it is. What is left
/// goes out right after.
std::shared_ptr<const std::string> CWebSocketClient::TakeGathered() {
    std::shared_ptr<const std::string> pText = TakeText();
    if (pText->size() < LONGEST_GATHERED) {
        std::string strMessage = *pText;
        while (!m_queue.empty() && strMessage.size() + m_queue.front()->size() < LONGEST_GATHERED) {
            strMessage += ',' + *TakeText();
        }
        pText = std::make_shared<const std::string>(std::move(strMessage));
    }
    m_bUrgent = !m_queue.empty();
    return pText;
}

void CWebSocketClient::DontWait() {
    m_bUrgent = true;
    m_gatherTimer.cancel();
}

void CWebSocketClient::Close() {
    if (m_bClosing) {
        return;
    }
    m_bClosing = true;
    DontWait();
    WriteOn();
}

void CWebSocketClient::Drop() {
    // Ends the pending read, which ends Run.
    m_bClosing = true;
    m_bDropped = true;
    m_queue.clear();
    DontWait();
    m_roomTimer.cancel();
    beast::get_lowest_layer(m_socket).close();
}
