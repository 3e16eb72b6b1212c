// One page (or script) on the WebSocket: reads its texts one after the other, keeps what it's to be sent in order.
#pragma once

#include "base/Network.h"

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/websocket/stream.hpp>

#include <deque>
#include <memory>
#include <string>
#include <string_view>

class CWebSocketClient;

/// Hears of the clients. All calls come from the server's one thread.
class IWebSocketListener {
public:
    virtual ~IWebSocketListener() = default;

    /// The client is there: Send works from now on.
    virtual void OnClientOpened(const std::shared_ptr<CWebSocketClient>& pClient) = 0;

    /// The client sent a text. While too much waits for it, the next one is left unread.
    virtual void OnClientText(CWebSocketClient& client, std::string_view text) = 0;

    /// The client is gone, by itself or dropped. Follows every OnClientOpened once.
    virtual void OnClientClosed(CWebSocketClient& client) = 0;
};

class CWebSocketClient : public std::enable_shared_from_this<CWebSocketClient> {
public:
    using UpgradeRequest = boost::beast::http::request<boost::beast::http::empty_body>;

    /// With bGathered, what is sent comes together: each message is an array of texts.
    CWebSocketClient(TcpStream stream, IWebSocketListener& listener, bool bGathered);

    /// Answers the upgrade and serves the client until it's gone.
    Awaitable<void> Run(UpgradeRequest request);

    /// Queues a text. Never waits. Where texts come together, they wait for a moment; an urgent one goes out at once
    /// with all before it.
    void Send(std::shared_ptr<const std::string> pText, bool bUrgent = false);

    /// Says goodbye; what is queued goes out first.
    void Close();

    /// Ends the connection at once.
    void Drop();

    /// Bytes of the texts not yet taken, and what keeping them costs; 0 once the client was dropped.
    size_t QueuedBytes() const { return m_bDropped ? 0 : m_nQueuedBytes; }

private:
    Awaitable<void> ReadTexts();
    Awaitable<bool> AwaitRoom();
    void WriteOn();
    Awaitable<void> WriteQueue();
    std::shared_ptr<const std::string> TakeText();
    std::shared_ptr<const std::string> TakeGathered();
    void DontWait();

    boost::beast::websocket::stream<TcpStream> m_socket;
    IWebSocketListener& m_listener;
    boost::beast::flat_buffer m_received;
    const bool m_bGathered;
    std::deque<std::shared_ptr<const std::string>> m_queue;
    size_t m_nQueuedBytes = 0;  ///< with those that are being written
    size_t m_nWritingBytes = 0; ///< and those alone
    bool m_bUrgent = false;     ///< the queue goes out without waiting for more
    bool m_bWriting = false;
    bool m_bClosing = false;
    bool m_bDropped = false;
    SteadyTimer m_gatherTimer;
    SteadyTimer m_roomTimer; ///< runs while nothing is read; each text that is written ends the wait
};
