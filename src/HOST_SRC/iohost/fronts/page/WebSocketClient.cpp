#include "fronts/page/WebSocketClient.h"

#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/websocket/rfc6455.hpp>

#include "base/Caught.h"
#include "fronts/page/QueuedTexts.h"

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace websocket = beast::websocket;
using boost::system::error_code;

namespace {

constexpr size_t LONGEST_TEXT = size_t{1024} * 1024;
constexpr size_t MOST_QUEUED_BYTES = size_t{8} * 1024 * 1024;
constexpr size_t LONGEST_GATHERED = size_t{256} * 1024;
constexpr std::chrono::milliseconds GATHER_TIME{100}; // people don't see the difference
constexpr std::chrono::seconds HANDSHAKE_TIME{10};
constexpr std::chrono::seconds PING_PERIOD{10};
constexpr std::chrono::seconds LONGEST_SILENCE{30};

} // namespace

CWebSocketClient::CWebSocketClient(TcpStream stream, IWebSocketListener& listener, bool bGathered)
    : m_socket(std::move(stream)), m_listener(listener), m_bGathered(bGathered), m_gatherTimer(m_socket.get_executor()),
      m_silenceTimer(m_socket.get_executor()) {}

Awaitable<void> CWebSocketClient::Run(UpgradeRequest request) {
    // The coroutine keeps the client alive.
    const std::shared_ptr<CWebSocketClient> pSelf = shared_from_this();

    beast::get_lowest_layer(m_socket).expires_never();
    m_socket.set_option(websocket::stream_base::timeout{HANDSHAKE_TIME, websocket::stream_base::none(), false});
    m_socket.read_message_max(LONGEST_TEXT);
    m_socket.auto_fragment(false); // one write for each text, not one for every 4 KiB of it
    m_socket.control_callback([this](websocket::frame_type, beast::string_view) { Heard(); });

    error_code error;
    co_await m_socket.async_accept(request, AwaitInto(error));
    if (error) {
        co_return;
    }
    m_socket.text(true);
    Heard();
    Spawn(m_socket.get_executor(), "a page's silence isn't noticed any longer",
          [pSelf] { return pSelf->WatchSilence(); });
    m_listener.OnClientOpened(pSelf);
    co_await ReadTexts();
    m_silenceTimer.cancel();
    m_listener.OnClientClosed(*this);
}

Awaitable<void> CWebSocketClient::ReadTexts() {
    for (;;) {
        error_code error;
        co_await m_socket.async_read(m_received, AwaitInto(error));
        if (error) {
            co_return;
        }
        Heard();
        const std::string strText = beast::buffers_to_string(m_received.data());
        m_received.clear();
        m_listener.OnClientText(*this, strText);
    }
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
    if (m_nQueuedBytes > MOST_QUEUED_BYTES) {
        Drop();
    } else {
        WriteOn();
    }
}

void CWebSocketClient::WriteOn() {
    if (!std::exchange(m_bWriting, true)) {
        Spawn(m_socket.get_executor(), "a page isn't written to any longer",
              [pSelf = shared_from_this()] { return pSelf->WriteQueue(); });
    }
}

Awaitable<void> CWebSocketClient::WriteQueue() {
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
        co_await m_socket.async_write(asio::buffer(*pText), AwaitInto(error));
        m_nQueuedBytes -= m_nWritingBytes;
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

/// Joins texts into a message of LONGEST_GATHERED at most, or takes a single longer one. What is left goes out right
/// after.
std::shared_ptr<const std::string> CWebSocketClient::TakeGathered() {
    std::string strMessage;
    do {
        strMessage += (strMessage.empty() ? '[' : ',') + *TakeText();
    } while (!m_queue.empty() && strMessage.size() + m_queue.front()->size() <= LONGEST_GATHERED);
    m_bUrgent = !m_queue.empty();
    return std::make_shared<const std::string>(strMessage + ']');
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

Awaitable<void> CWebSocketClient::WatchSilence() {
    for (;;) {
        error_code error;
        m_silenceTimer.expires_after(PING_PERIOD);
        co_await m_silenceTimer.async_wait(AwaitInto(error));
        if (error) {
            co_return;
        }
        if (std::chrono::steady_clock::now() - m_tHeard >= LONGEST_SILENCE) {
            Drop();
            co_return;
        }
        // A ping stays under way for as long as the client takes nothing.
        if (!m_bPinging) {
            m_bPinging = true;
            m_socket.async_ping({}, [pSelf = shared_from_this()](const error_code&) { pSelf->m_bPinging = false; });
        }
    }
}

void CWebSocketClient::Heard() {
    m_tHeard = std::chrono::steady_clock::now();
}

void CWebSocketClient::Drop() {
    // Ends the pending read, which ends Run.
    m_bClosing = true;
    m_bDropped = true;
    m_queue.clear();
    DontWait();
    beast::get_lowest_layer(m_socket).close();
}
