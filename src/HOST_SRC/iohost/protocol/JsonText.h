// JSON as text, written from front to back without a document of it in memory.
#pragma once

#include <charconv>
#include <concepts>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

class CJsonText {
public:
    /// In lines, each member and element has one of its own; otherwise all is one line.
    explicit CJsonText(bool bInLines = false) : m_bInLines(bInLines) {}

    /// What write writes, between brackets.
    template <std::invocable Write>
    void Object(Write write) {
        Open('{');
        write();
        Close('}');
    }
    template <std::invocable Write>
    void List(Write write) {
        Open('[');
        write();
        Close(']');
    }

    /// In an object, the name of the value that comes next.
    void Name(std::string_view name);

    void Value(std::nullptr_t);
    void Value(bool bValue);
    void Value(double fValue); ///< null where it isn't finite
    void Value(std::string_view text);
    void Value(const char* pszText) { Value(std::string_view(pszText)); }
    void Raw(std::string_view json) { Next() += json; } ///< a value that is JSON already

    template <std::integral Integer>
    void Value(Integer nValue) {
        char szDigits[24];
        const auto [pEnd, error] = std::to_chars(std::begin(szDigits), std::end(szDigits), nValue);
        Next().append(szDigits, pEnd);
    }

    /// The text. Bytes that aren't UTF-8 have been replaced in texts, but not in what Raw was given.
    std::string Take() { return std::move(m_strText); }

private:
    void Open(char cBracket);
    void Close(char cBracket);
    std::string& Next();
    void NewLine();
    void Quote(std::string_view text);

    const bool m_bInLines;
    int m_nDepth = 0;
    bool m_bFirst = true;  ///< the next value is the first at its depth
    bool m_bNamed = false; ///< the next value's name is written
    std::string m_strText;
};
