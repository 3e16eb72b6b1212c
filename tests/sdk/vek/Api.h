#pragma once

#include <afxtempl.h>
#include <afxwin.h>

#define VEK_API __declspec(dllimport)

enum EVEKParamType { eParamPointer, eParamText };
enum EVEKParamControl { eControlNone, eControlEdit };
