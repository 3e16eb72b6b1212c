#include "fronts/page/AccessToken.h"

#include <algorithm>
#include <array>
#include <random>

#include <boost/algorithm/string/predicate.hpp>

#include "base/PrintableText.h"

namespace {

/// The value of a name in a list such as "a=1; b=2". Empty when it isn't there.
std::string_view Value(std::string_view list, char separator, std::string_view name) {
    while (!list.empty()) {
        std::string_view pair = list.substr(0, list.find(separator));
        list.remove_prefix(std::min(list.size(), pair.size() + 1));
        pair.remove_prefix(std::min(pair.size(), pair.find_first_not_of(' ')));
        if (pair.starts_with(name) && pair.substr(name.size()).starts_with('=')) {
            return pair.substr(name.size() + 1);
        }
    }
    return {};
}

std::string_view QueryOf(std::string_view target) {
    const size_t nQuery = target.find('?');
    return nQuery == std::string_view::npos ? std::string_view() : target.substr(nQuery + 1);
}

} // namespace

CAccessToken CAccessToken::Make(unsigned short nPort) {
    CAccessToken token;
    std::random_device random; // the system's
    std::array<unsigned char, 16> bytes;
    std::ranges::generate(bytes, [&] { return static_cast<unsigned char>(random()); });
    token.m_strToken = HexText(bytes);
    token.m_strCookie = "iohost_token_" + std::to_string(nPort);
    return token;
}

std::string CAccessToken::Query() const {
    return m_strToken.empty() ? std::string() : "?token=" + m_strToken;
}

bool CAccessToken::IsIn(std::string_view authorization, std::string_view cookies, std::string_view target) const {
    constexpr std::string_view SCHEME = "Bearer ";
    return m_strToken.empty() ||
           (boost::algorithm::istarts_with(authorization, SCHEME) && Is(authorization.substr(SCHEME.size()))) ||
           Is(Value(cookies, ';', m_strCookie)) || IsInQuery(target);
}

bool CAccessToken::IsInQuery(std::string_view target) const {
    return !m_strToken.empty() && Is(Value(QueryOf(target), '&', "token"));
}

std::string CAccessToken::SetCookie() const {
    return m_strCookie + "=" + m_strToken + "; Path=/; HttpOnly; SameSite=Strict";
}

/// Takes equally long however much of the text is right, so that the time tells nothing about the token.
bool CAccessToken::Is(std::string_view text) const {
    if (text.size() != m_strToken.size()) {
        return false;
    }
    unsigned nDifferences = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        nDifferences |= static_cast<unsigned char>(text[i]) ^ static_cast<unsigned char>(m_strToken[i]);
    }
    return nDifferences == 0;
}
