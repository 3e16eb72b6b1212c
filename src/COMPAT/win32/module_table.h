// What the Win32 subset knows about loaded libraries; shared by the loader and the resource functions.
#pragma once

#include <windows.h>

#include <mutex>

// Handle of the library (or program) that contains an address: where it is mapped. Null for other addresses.
HMODULE ModuleFromAddress(const void* pAddress);

// Held while libraries are loaded and unloaded and while their resources are read.
std::recursive_mutex& ModuleMutex();
