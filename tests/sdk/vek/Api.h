#pragma once

#include <afxtempl.h>
#include <afxwin.h>

#define VEK_API __declspec(dllimport)
