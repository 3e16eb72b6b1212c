// The module's instance, as registered with the framework when the module loads.
#pragma once

#include <afxwin.h>

/// Instance handle that the module's resources are loaded from; null before the module is loaded.
HINSTANCE ModuleInstance();
