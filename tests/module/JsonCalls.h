// Stands between the module and its JSON services.
#pragma once

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
