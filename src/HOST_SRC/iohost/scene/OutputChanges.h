// Tells which value outputs of a scene changed.
#pragma once

#include <map>
#include <string>
#include <unordered_map>

#include "protocol/Fields.h"
#include "scene/Scene.h"

class COutputChanges {
public:
    /// The value outputs that changed since the last call, by node and parameter id:
    ///   {"m": {"370": {"int": 5, "float": 0.0, "string": ""}}}
    OrderedJson Take(CScene& scene);

    /// Let the next Take tell all value outputs.
    void Forget() { m_told.clear(); }

private:
    /// The values of an output as they were told last.
    struct SOutputValue {
        int nValue;
        float fValue;
        CString strValue;
    };

    std::unordered_map<std::string, std::map<unsigned, SOutputValue>> m_told; ///< by node and parameter id
};
