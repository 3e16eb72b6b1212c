// The framework keeps an extension module's glue code here; nothing of it is needed beyond the declarations.
#pragma once

#include <afxwin.h>
