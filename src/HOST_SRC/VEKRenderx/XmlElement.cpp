#include "XmlElement.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include <pugixml.hpp>

#include "HostSetup.h"

struct CXmlElement::SDocument {
    pugi::xml_document document;
    std::map<std::string_view, std::string> attributes; ///< names within the document, and values
};

namespace {

// The library reads what isn't quite XML, too. It is told to show everything but comments and the declaration, so that
// what doesn't belong there is seen, and to leave references as they are: they are replaced here, where wrong ones are
// refused.
constexpr unsigned PARSE_OPTIONS = pugi::parse_fragment | pugi::parse_pi | pugi::parse_doctype | pugi::parse_cdata |
                                   pugi::parse_wconv_attribute | pugi::parse_eol;

/// The character that a reference names, such as "lt" or "#x3C"; nothing when it names none.
std::optional<std::uint32_t> NamedCharacter(std::string_view name) {
    constexpr std::pair<std::string_view, char> NAMES[] = {
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    for (const auto& [known, cCharacter] : NAMES) {
        if (name == known) {
            return static_cast<std::uint32_t>(cCharacter);
        }
    }
    if (!name.starts_with('#')) {
        return std::nullopt;
    }
    const bool bHexadecimal = name.starts_with("#x");
    name.remove_prefix(bHexadecimal ? 2 : 1);
    std::uint32_t nCharacter = 0;
    const char* pEnd = name.data() + name.size();
    const auto [pRead, nError] = std::from_chars(name.data(), pEnd, nCharacter, bHexadecimal ? 16 : 10);
    const bool bSurrogate = nCharacter >= 0xD800 && nCharacter < 0xE000;
    if (nError != std::errc() || pRead != pEnd || nCharacter == 0 || nCharacter > 0x10FFFF || bSurrogate) {
        return std::nullopt;
    }
    return nCharacter;
}

void AppendUtf8(std::string& utf8, std::uint32_t nCharacter) {
    const int nTrail = nCharacter < 0x80 ? 0 : nCharacter < 0x800 ? 1 : nCharacter < 0x10000 ? 2 : 3;
    constexpr unsigned LEADS[] = {0x00, 0xC0, 0xE0, 0xF0};
    utf8 += static_cast<char>(LEADS[nTrail] | nCharacter >> 6 * nTrail);
    for (int i = nTrail - 1; i >= 0; --i) {
        utf8 += static_cast<char>(0x80 | (nCharacter >> 6 * i & 0x3F));
    }
}

/// A value with its references replaced; nothing when it isn't one.
std::optional<std::string> ReadValue(std::string_view written) {
    std::string value;
    while (!written.empty()) {
        const size_t nPlain = std::min(written.find_first_of("&<"), written.size());
        value.append(written.substr(0, nPlain));
        written.remove_prefix(nPlain);
        if (written.empty()) {
            break;
        }
        const size_t nEnd = written.find(';');
        const auto character = written.starts_with('&') && nEnd != std::string_view::npos
                                   ? NamedCharacter(written.substr(1, nEnd - 1))
                                   : std::nullopt;
        if (!character) {
            return std::nullopt;
        }
        AppendUtf8(value, *character);
        written.remove_prefix(nEnd + 1);
    }
    return value;
}

} // namespace

CXmlElement::CXmlElement() : m_pDocument(std::make_unique<SDocument>()) {}
CXmlElement::~CXmlElement() = default;

bool CXmlElement::Parse(const CString& strXml, const char* pszName) {
    auto& [document, attributes] = *m_pDocument;
    attributes.clear();
    const std::string utf8 = ToUtf8(strXml, strXml.GetLength());
    // The library takes a zero for the end.
    if (utf8.find('\0') != std::string::npos ||
        !document.load_buffer(utf8.data(), utf8.size(), PARSE_OPTIONS, pugi::encoding_utf8)) {
        return false;
    }
    const pugi::xml_node element = document.first_child();
    if (element.type() != pugi::node_element || element.next_sibling() || element.first_child() ||
        std::string_view(element.name()) != pszName) {
        return false;
    }
    for (const pugi::xml_attribute& attribute : element.attributes()) {
        auto value = ReadValue(attribute.value());
        if (!value || !attributes.emplace(attribute.name(), std::move(*value)).second) {
            attributes.clear();
            return false;
        }
    }
    return true;
}

bool CXmlElement::GetText(const char* pszAttribute, CString& strValue) const {
    const auto attribute = m_pDocument->attributes.find(pszAttribute);
    if (attribute == m_pDocument->attributes.end()) {
        return false;
    }
    strValue = FromUtf8(attribute->second);
    return true;
}

bool CXmlElement::GetNumber(const char* pszAttribute, int& nValue) const {
    const auto attribute = m_pDocument->attributes.find(pszAttribute);
    if (attribute == m_pDocument->attributes.end()) {
        return false;
    }
    const std::string& text = attribute->second;
    const char* pEnd = text.data() + text.size();
    int nParsed = 0;
    const auto [pRead, nError] = std::from_chars(text.data(), pEnd, nParsed);
    if (nError != std::errc() || pRead != pEnd) {
        return false;
    }
    nValue = nParsed;
    return true;
}
