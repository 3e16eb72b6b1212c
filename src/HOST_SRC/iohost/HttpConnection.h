// One connection of the page's server: answers requests for the page's files, and hands a WebSocket over to its client.
#pragma once

#include "Network.h"

#include <string>

#include "HttpFiles.h"
#include "WebSocketClient.h"

/// What every connection is served from.
struct SHttpSite {
    const CHttpFiles& files;
    std::string strBoundAddress; ///< as text, without brackets
    unsigned short nPort;
    IWebSocketListener& listener; ///< of the WebSocket /session
};

/// Serves the connection until it ends. The site outlives it.
Awaitable<void> ServeHttpConnection(TcpSocket socket, const SHttpSite& site);
