// What the JSON services report to the host application.
#pragma once

#include <afxwin.h>

#include "host/Export.h"

/// Sees how nodes look at objects. References live for the call.
class IJsonSink {
public:
    /// An object was split into these names and texts.
    virtual void OnObjectSplit(const CStringArray& arKey, const CStringArray& arValue) = 0;

    /// A text was looked for; its index, or a negative number.
    virtual void OnStringSought(const CString& strText, int nIndex) = 0;

protected:
    ~IJsonSink() = default;
};

/// Set the receiver; null drops the reports. It isn't owned and must outlive its registration.
VEKRENDER_API void SetJsonSink(IJsonSink* pSink);
