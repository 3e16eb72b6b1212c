#include "fronts/page/RequestOrigin.h"

#include <algorithm>

#include <boost/algorithm/string/predicate.hpp>

namespace {

/// IPv6 addresses stand in brackets before a port.
std::string HostText(std::string_view address) {
    const std::string strAddress(address);
    return address.find(':') == std::string_view::npos ? strAddress : "[" + strAddress + "]";
}

} // namespace

CRequestOrigin::CRequestOrigin(std::string_view boundAddress, std::string_view localAddress, unsigned short nPort) {
    constexpr unsigned short HTTP_PORT = 80;
    std::vector<std::string_view> names = {boundAddress, localAddress};
    if (localAddress == "127.0.0.1" || localAddress == "::1") {
        names.push_back("localhost");
    }
    for (const std::string_view name : names) {
        const std::string strHost = HostText(name);
        m_arHosts.push_back(strHost + ":" + std::to_string(nPort));
        if (nPort == HTTP_PORT) {
            m_arHosts.push_back(strHost);
        }
    }
}

bool CRequestOrigin::IsOwnHost(std::string_view host) const {
    return std::ranges::any_of(m_arHosts,
                               [&](const std::string& strOwn) { return boost::algorithm::iequals(strOwn, host); });
}

bool CRequestOrigin::IsOwnOrigin(std::string_view origin) const {
    constexpr std::string_view SCHEME = "http://";
    return origin.starts_with(SCHEME) && IsOwnHost(origin.substr(SCHEME.size()));
}
