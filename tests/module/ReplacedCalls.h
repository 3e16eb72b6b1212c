// Comes between the module and functions of the libraries that it calls. Natively the program's own definitions come
// before those of its libraries, for every caller; on Windows the module's imports are led to them.
#pragma once

#include <afxwin.h>

/// Behind a declaration: the function stands in place of the one of that symbol.
#if defined(_WIN32)
#define IN_PLACE_OF(symbol)
#else
#define IN_PLACE_OF(symbol) __asm__(symbol) __attribute__((visibility("default")))
#endif

/// A function's symbol, as Microsoft's compilers write it and as others do.
#if defined(_MSC_VER)
#define SYMBOL(microsoft, other) microsoft
#else
#define SYMBOL(microsoft, other) other
#endif

void* FindOriginal(const wchar_t* pszLibrary, const char* pszSymbol);

/// The library's own function. Natively libraries are searched in their order, whatever the name.
template <typename Function>
Function* Original(const wchar_t* pszLibrary, const char* pszSymbol) {
    return reinterpret_cast<Function*>(FindOriginal(pszLibrary, pszSymbol));
}

void ReplaceImport(HMODULE hModule, const void* pOriginal, void* pReplacement);

/// Lead the module's import of the library's function to the replacement; natively it's there already.
template <typename Function>
void ReplaceImport(HMODULE hModule, const wchar_t* pszLibrary, const char* pszSymbol, Function* pReplacement) {
    ReplaceImport(hModule, FindOriginal(pszLibrary, pszSymbol), reinterpret_cast<void*>(pReplacement));
}
