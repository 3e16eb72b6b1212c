#include "XmlElement.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "HostSetup.h"

namespace {

// The library reads what isn't quite XML, too. It is told to show everything but comments and the declaration, so that
// what doesn't belong there is seen, and to leave references as they are: they are replaced here, where wrong ones are
// refused.
constexpr unsigned PARSE_OPTIONS = pugi::parse_fragment | pugi::parse_pi | pugi::parse_doctype | pugi::parse_cdata |
                                   pugi::parse_wconv_attribute | pugi::parse_eol;

constexpr size_t USUAL_ATTRIBUTES = 9; // a record's; a broadcast has four
constexpr auto NAME = &std::pair<std::string_view, std::string_view>::first;

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

/// Write the character in UTF-8; returns the position behind it.
char* WriteUtf8(char* pTo, std::uint32_t nCharacter) {
    const int nTrail = nCharacter < 0x80 ? 0 : nCharacter < 0x800 ? 1 : nCharacter < 0x10000 ? 2 : 3;
    constexpr unsigned LEADS[] = {0x00, 0xC0, 0xE0, 0xF0};
    *pTo++ = static_cast<char>(LEADS[nTrail] | nCharacter >> 6 * nTrail);
    for (int i = nTrail - 1; i >= 0; --i) {
        *pTo++ = static_cast<char>(0x80 | (nCharacter >> 6 * i & 0x3F));
    }
    return pTo;
}

/// A value, its references replaced in place: none is shorter than what it names. Nothing when it isn't a value.
std::optional<std::string_view> ReadValue(char* pWritten) {
    char* pEnd = pWritten;
    for (const char* pRead = pWritten; *pRead != '\0';) {
        if (*pRead != '&' && *pRead != '<') {
            *pEnd++ = *pRead++;
            continue;
        }
        const char* pReferenceEnd = *pRead == '&' ? std::strchr(pRead, ';') : nullptr;
        const auto character = pReferenceEnd != nullptr ? NamedCharacter({pRead + 1, pReferenceEnd}) : std::nullopt;
        if (!character) {
            return std::nullopt;
        }
        pEnd = WriteUtf8(pEnd, *character);
        pRead = pReferenceEnd + 1;
    }
    return std::string_view(pWritten, pEnd);
}

} // namespace

bool CXmlElement::Parse(std::string xml, std::string_view name) {
    m_attributes.clear();
    m_strText = std::move(xml);
    // The library ends at a zero, and overwrites the last character with one: so it is given the text's own zero, too.
    if (m_strText.find('\0') != std::string::npos ||
        !m_document.load_buffer_inplace(m_strText.data(), m_strText.size() + 1, PARSE_OPTIONS, pugi::encoding_utf8)) {
        return false;
    }
    const pugi::xml_node element = m_document.first_child();
    if (element.type() != pugi::node_element || element.next_sibling() || element.first_child() ||
        element.name() != name) {
        return false;
    }
    m_attributes.reserve(USUAL_ATTRIBUTES);
    for (const pugi::xml_attribute& attribute : element.attributes()) {
        const auto value = ReadValue(m_strText.data() + (attribute.value() - m_strText.data()));
        if (!value) {
            m_attributes.clear();
            return false;
        }
        m_attributes.emplace_back(attribute.name(), *value);
    }
    std::ranges::sort(m_attributes, {}, NAME);
    if (std::ranges::adjacent_find(m_attributes, {}, NAME) != m_attributes.end()) {
        m_attributes.clear();
        return false;
    }
    return true;
}

/// The value of an attribute; nothing without it.
std::optional<std::string_view> CXmlElement::Find(std::string_view name) const {
    const auto attribute = std::ranges::find(m_attributes, name, NAME);
    return attribute != m_attributes.end() ? std::optional(attribute->second) : std::nullopt;
}

bool CXmlElement::GetText(std::string_view attribute, CString& strValue) const {
    const auto value = Find(attribute);
    if (!value) {
        return false;
    }
    strValue = FromUtf8(*value);
    return true;
}

bool CXmlElement::GetNumber(std::string_view attribute, int& nValue) const {
    const auto value = Find(attribute);
    if (!value) {
        return false;
    }
    const char* pEnd = value->data() + value->size();
    int nParsed = 0;
    const auto [pRead, nError] = std::from_chars(value->data(), pEnd, nParsed);
    if (nError != std::errc() || pRead != pEnd) {
        return false;
    }
    nValue = nParsed;
    return true;
}
