// Text and path services of the host's library VEKCommonx.
#pragma once

#include <afxwin.h>

#include "host/Export.h"

/// The display text of a key; the key itself when the text table has none.
VEKCOMMON_API CString PXLoadString(const wchar_t* pszKey);

/// The host's application folder, without a trailing separator.
VEKCOMMON_API CString PXGetAppPath();

/// A folder of the host by its kind, without a trailing separator; empty for a kind that the host doesn't have.
VEKCOMMON_API CString PXGetPath(int nKind);

/// Split a text at each occurrence of the separator into the array, which is emptied first; answers the number of
/// pieces. Keeping empty pieces, a text with n separators gives n + 1 pieces; an empty text gives none.
VEKCOMMON_API int SplitString(const CString& strText, const CString& strSeparator, CStringArray& arPiece, int nOption);
