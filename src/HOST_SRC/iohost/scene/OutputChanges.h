// Tells which value outputs of a scene changed.
#pragma once

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "scene/Document.h"
#include "scene/Scene.h"

/// Outputs' values by node handle and output id.
using OutputValues = std::vector<std::pair<std::string, std::vector<std::pair<unsigned, SValues>>>>;

class COutputChanges {
public:
    /// The value outputs that changed since the last call.
    OutputValues Take(CScene& scene);

    /// Let the next Take tell all value outputs.
    void Forget() { m_told.clear(); }

private:
    std::unordered_map<std::string, std::map<unsigned, SValues>> m_told; ///< by handle and id
};
