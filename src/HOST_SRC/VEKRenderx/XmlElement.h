// Reading the one-element documents that hosts exchange.
#pragma once

#include <afxwin.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <pugixml.hpp>

/// A document of exactly one element without content. An XML declaration and comments beside it are passed over.
class CXmlElement {
public:
    /// The text is UTF-8. False, and no element, for one that isn't such a document or whose element has another name.
    bool Parse(std::string xml, std::string_view name);

    /// The value of an attribute; false, and no change, without it or, for a number, when it isn't one in decimal.
    bool GetText(std::string_view attribute, CString& strValue) const;
    bool GetNumber(std::string_view attribute, int& nValue) const;

private:
    std::optional<std::string_view> Find(std::string_view name) const;

    std::string m_strText; ///< what the document and the attributes point into
    pugi::xml_document m_document;
    std::vector<std::pair<std::string_view, std::string_view>> m_attributes; ///< names and values, by name
};
