// Whom the page's server answers: who speaks to it by a name of its own, so that no foreign page reaches the nodes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class CRequestOrigin {
public:
    /// Own names: the address that the server listens on, and the one that this connection came in by, which differs
    /// when the server listens on all; without brackets. For a loopback address also "localhost".
    CRequestOrigin(std::string_view boundAddress, std::string_view localAddress, unsigned short nPort);

    /// Whether a Host header names this server.
    bool IsOwnHost(std::string_view host) const;

    /// Whether an Origin header names a page of this server.
    bool IsOwnOrigin(std::string_view origin) const;

private:
    std::vector<std::string> m_arHosts; ///< with the port
};
