// Ready-made collections.
#pragma once

#include <afxtempl.h>

// An array of strings; see CArray for indices and growth. Not copied by assignment: use Copy.
class CStringArray : public CArray<CString, const CString&> {};
