#pragma once

#include "vek/Api.h"

enum EPXFolder { ePXFolderConfig = 10 };

VEK_API const wchar_t* PXLoadString(const wchar_t* pszKey);
VEK_API CString PXGetAppPath();
VEK_API const wchar_t* PXGetPath(EPXFolder eFolder);
VEK_API BOOL SplitString(CString strText, CString strSplit, CStringArray& arPart, BOOL bKeepEmpty);
