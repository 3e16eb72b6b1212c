// Stands between the module and its JSON services.
#pragma once

#include <cstddef>

#include <afxwin.h>

/// While an object lives, G_ParseDataFormJsObj gives the module one value too few.
class LostLastValue {
public:
    /// The module must be loaded.
    LostLastValue();
    ~LostLastValue();

    LostLastValue(const LostLastValue&) = delete;
    LostLastValue& operator=(const LostLastValue&) = delete;
};

#if !defined(_WIN32)
/// The texts parsed since the last question. Only here: on Windows the JSON library is a part of the module.
size_t TakeParsedTexts();
#endif
