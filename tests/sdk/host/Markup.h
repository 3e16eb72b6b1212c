#pragma once

#include "vek/Api.h"

class VEK_API CMarkup {
public:
    CMarkup();
    virtual ~CMarkup();

    bool AddElem(LPCTSTR pszName);
    bool SetAttrib(LPCTSTR pszName, LPCTSTR pszValue);
    bool GetText(CString& strText);
};
