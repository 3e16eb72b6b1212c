#include "fronts/page/RequestOrigin.h"

#include <algorithm>

namespace {

constexpr unsigned short HTTP_PORT = 80;

/// IPv6 addresses stand in brackets before a port.
std::string HostText(std::string_view address) {
    const std::string strAddress(address);
    return address.find(':') == std::string_view::npos ? strAddress : "[" + strAddress + "]";
}

std::string SmallLetters(std::string_view text) {
    std::string strSmall(text);
    std::ranges::transform(strSmall, strSmall.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return strSmall;
}

} // namespace

CRequestOrigin::CRequestOrigin(std::string_view boundAddress, std::string_view localAddress, unsigned short nPort) {
    std::vector<std::string_view> names = {boundAddress, localAddress};
    if (localAddress == "127.0.0.1" || localAddress == "::1") {
        names.push_back("localhost");
    }
    for (const std::string_view name : names) {
        const std::string strHost = SmallLetters(HostText(name));
        m_arHosts.push_back(strHost + ":" + std::to_string(nPort));
        if (nPort == HTTP_PORT) {
            m_arHosts.push_back(strHost);
        }
    }
}

bool CRequestOrigin::IsOwnHost(std::string_view host) const {
    return std::ranges::find(m_arHosts, SmallLetters(host)) != m_arHosts.end();
}

bool CRequestOrigin::IsOwnOrigin(std::string_view origin) const {
    constexpr std::string_view SCHEME = "http://";
    return origin.starts_with(SCHEME) && IsOwnHost(origin.substr(SCHEME.size()));
}
