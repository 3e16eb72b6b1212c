// One connection of the page's server: gives the page's files, takes texts for objects, hands WebSockets over.
#pragma once

#include "base/Network.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "fronts/page/AccessToken.h"
#include "fronts/page/HttpFiles.h"
#include "fronts/page/ObjectAddress.h"
#include "fronts/page/WebSocketClient.h"
#include "session/Session.h"

/// What every connection is served from.
struct SHttpSite {
    const CHttpFiles& files;
    std::string strBoundAddress; ///< as text, without brackets
    unsigned short nPort;
    CAccessToken token;
    IWebSocketListener& listener; ///< of the WebSocket /session
    CSession& session;
    std::function<std::string(std::string_view request)> answer; ///< to a POST to /session
    mutable std::weak_ptr<void> sceneTurn = {};                  ///< whoever is being sent the scene, or uploads one
};

/// Serves the connection until it ends. The site outlives it.
Awaitable<void> ServeHttpConnection(TcpSocket socket, const SHttpSite& site);

/// Answers whatever the connection asks for by 503 with this reason, and closes it.
Awaitable<void> TurnAwayHttpConnection(TcpSocket socket, std::string strReason);
