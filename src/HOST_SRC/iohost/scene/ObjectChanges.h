// Tells when the scene's objects moved.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "protocol/Fields.h"
#include "scene/Scene.h"

class CObjectChanges {
public:
    /// All objects with their matrices, as the request `objects` lists them, when any changed, came or went since the
    /// last call; null otherwise.
    OrderedJson Take(const CScene& scene);

    /// Let the next call return the list.
    void Forget() { m_taken.reset(); }

private:
    struct SObject {
        const VEKClip* pClip;
        CString strName;
        std::array<unsigned, 16> matrix; ///< bit by bit: an undefined number equals itself

        bool operator==(const SObject&) const = default;
    };

    std::optional<std::vector<SObject>> m_taken; ///< none: nothing was taken yet
};
