// Reading the one-element documents that hosts exchange.
#pragma once

#include <afxwin.h>

#include <memory>

/// A document of exactly one element without content. An XML declaration and comments beside it are passed over.
class CXmlElement {
public:
    /// False, and no element, for a text that isn't such a document or whose element has another name.
    bool Parse(const CString& strXml, const char* pszName);

    CXmlElement();
    ~CXmlElement();

    CXmlElement(const CXmlElement&) = delete;
    CXmlElement& operator=(const CXmlElement&) = delete;

    /// The value of an attribute; false, and no change, without it or, for a number, when it isn't one in decimal.
    bool GetText(const char* pszAttribute, CString& strValue) const;
    bool GetNumber(const char* pszAttribute, int& nValue) const;

private:
    struct SDocument;
    std::unique_ptr<SDocument> m_pDocument;
};
