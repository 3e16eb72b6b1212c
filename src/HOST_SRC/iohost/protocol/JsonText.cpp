#include "protocol/JsonText.h"

#include <algorithm>

#include <nlohmann/json.hpp>

void CJsonText::Name(std::string_view name) {
    Next();
    Quote(name);
    m_strText += m_bInLines ? ": " : ":";
    m_bNamed = true;
}

void CJsonText::Value(std::nullptr_t) {
    Next() += "null";
}

void CJsonText::Value(bool bValue) {
    Next() += bValue ? "true" : "false";
}

void CJsonText::Value(double fValue) {
    Next() += nlohmann::json(fValue).dump();
}

void CJsonText::Value(std::string_view text) {
    Next();
    Quote(text);
}

void CJsonText::Open(char cBracket) {
    Next() += cBracket;
    ++m_nDepth;
    m_bFirst = true;
}

void CJsonText::Close(char cBracket) {
    --m_nDepth;
    if (!m_bFirst) {
        NewLine();
    }
    m_strText += cBracket;
    m_bFirst = false;
}

/// The text, ready for what comes next.
std::string& CJsonText::Next() {
    if (!std::exchange(m_bNamed, false)) {
        if (!std::exchange(m_bFirst, false)) {
            m_strText += ',';
        }
        if (m_nDepth > 0) {
            NewLine();
        }
    }
    return m_strText;
}

void CJsonText::NewLine() {
    if (m_bInLines) {
        m_strText += '\n';
        m_strText.append(static_cast<size_t>(m_nDepth), ' ');
    }
}

void CJsonText::Quote(std::string_view text) {
    const auto isPlain = [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; };
    if (std::ranges::all_of(text, isPlain)) {
        ((m_strText += '"') += text) += '"';
    } else {
        m_strText += nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    }
}
