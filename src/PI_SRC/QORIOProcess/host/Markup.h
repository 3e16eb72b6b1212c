// Writes XML text.
#pragma once

#include <afxwin.h>

#include "host/Export.h"

/// Elements one after another, each empty, with its attributes in the order in which they were set and "\r\n" behind
/// it. In values the characters & < > " and control characters are written as references. Names must be XML names; they
/// are written as they are.
class VEKCOMMON_API CMarkup {
public:
    CMarkup();
    ~CMarkup();

    /// Append an empty element, which becomes the one that SetAttrib works on. False, and no change, for an empty name.
    bool AddElem(const wchar_t* pszName);

    /// Give the last element an attribute, behind its others; it must have none of that name yet. False, and no change,
    /// without an element or for an empty name.
    bool SetAttrib(const wchar_t* pszName, const CString& strValue);

    /// The document so far.
    const CString& GetDoc() const { return m_strDocument; }

private:
    CString m_strDocument;
};
