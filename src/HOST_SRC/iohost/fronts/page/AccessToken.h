// What a server that others can reach asks of them: the token of the address that it printed.
#pragma once

#include <string>
#include <string_view>

class CAccessToken {
public:
    /// None: whoever reaches the server may ask.
    CAccessToken() = default;

    /// A new one, from the system's random numbers. The port tells apart the cookies of servers on one machine.
    static CAccessToken Make(unsigned short nPort);

    /// Empty where none is needed; else the query that goes behind the server's address.
    std::string Query() const;

    /// Whether a request with these headers and this target has the token, or none is needed.
    bool IsIn(std::string_view authorization, std::string_view cookies, std::string_view target) const;

    /// Whether a target's query has the token, so that the answer sets the cookie.
    bool IsInQuery(std::string_view target) const;

    /// The cookie by which the page's further requests have it, as a header's value.
    std::string SetCookie() const;

private:
    bool Is(std::string_view text) const;

    std::string m_strToken; ///< empty: none is needed
    std::string m_strCookie;
};
