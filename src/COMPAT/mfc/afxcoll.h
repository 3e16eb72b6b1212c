// Ready-made collections.
#pragma once

#include <afx.h>
#include <afxtempl.h>

// An array of strings; see CArray for indices and growth. Not copied by assignment: use Copy or Append.
class COMPAT_API CStringArray : public CArray<CString, const CString&> {
    DECLARE_DYNAMIC(CStringArray)
public:
    CStringArray();
    ~CStringArray() override;
};

class COMPAT_API CUIntArray : public CArray<UINT, UINT> {
    DECLARE_DYNAMIC(CUIntArray)
public:
    CUIntArray();
    ~CUIntArray() override;
};
