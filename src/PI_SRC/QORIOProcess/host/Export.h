// Where the contract's classes and functions come from: a library of the host defines its own macro as an export.
#pragma once

#include <afxwin.h>

#ifndef VEKCOMMON_API
#define VEKCOMMON_API __declspec(dllimport)
#endif

#ifndef VEKRENDER_API
#define VEKRENDER_API __declspec(dllimport)
#endif

#ifndef VEKLOG_API
#define VEKLOG_API __declspec(dllimport)
#endif
