// Ready-made collections.
#pragma once

#include <afxtempl.h>

// An array of strings; see CArrayBase for indices and growth. Not copied by assignment: use Copy.
class CStringArray : public CArrayBase<CString, const CString&> {};
