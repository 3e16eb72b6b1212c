#include "XmlElement.h"

#include <charconv>
#include <string_view>

#include <pugixml.hpp>

#include "HostSetup.h"

struct CXmlElement::SDocument {
    pugi::xml_document document;
    pugi::xml_node element;
};

CXmlElement::CXmlElement() : m_pDocument(std::make_unique<SDocument>()) {}
CXmlElement::~CXmlElement() = default;

bool CXmlElement::Parse(const CString& strXml, const char* pszName) {
    const std::string utf8 = ToUtf8(strXml, strXml.GetLength());
    m_pDocument->element = pugi::xml_node();
    // As a fragment, text beside the element shows up as a node of its own.
    if (!m_pDocument->document.load_buffer(utf8.data(), utf8.size(), pugi::parse_default | pugi::parse_fragment,
                                           pugi::encoding_utf8)) {
        return false;
    }
    const pugi::xml_node element = m_pDocument->document.first_child();
    if (element.type() != pugi::node_element || element.next_sibling() || element.first_child() ||
        std::string_view(element.name()) != pszName) {
        return false;
    }
    m_pDocument->element = element;
    return true;
}

bool CXmlElement::GetText(const char* pszAttribute, CString& strValue) const {
    const pugi::xml_attribute attribute = m_pDocument->element.attribute(pszAttribute);
    if (!attribute) {
        return false;
    }
    strValue = FromUtf8(attribute.value());
    return true;
}

bool CXmlElement::GetNumber(const char* pszAttribute, int& nValue) const {
    const pugi::xml_attribute attribute = m_pDocument->element.attribute(pszAttribute);
    const std::string_view text = attribute.value();
    int nParsed = 0;
    const auto [pEnd, nError] = std::from_chars(text.data(), text.data() + text.size(), nParsed);
    if (nError != std::errc() || pEnd != text.data() + text.size()) {
        return false;
    }
    nValue = nParsed;
    return true;
}
