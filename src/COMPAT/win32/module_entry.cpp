// Compiled into every library that has a DllMain (CMake function compat_add_module_entry): announces it to the loader.

#include <compat/module_registry.h>

static const CompatModuleEntry g_moduleEntry(&DllMain);
