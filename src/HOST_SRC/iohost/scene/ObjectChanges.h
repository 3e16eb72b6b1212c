// Tells when the scene's objects moved.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "scene/Scene.h"

/// An object of a clip, with its transform.
struct SObjectState {
    CString strClip;
    CString strName;
    std::array<float, 16> matrix;

    bool operator==(const SObjectState&) const = default;
};

/// The objects of all clips.
std::vector<SObjectState> ObjectsOf(const CScene& scene);

class CObjectChanges {
public:
    /// All objects when any changed, came or went since the last call; none otherwise.
    std::optional<std::vector<SObjectState>> Take(const CScene& scene);

    /// Let the next call return the list.
    void Forget() { m_taken.reset(); }

private:
    std::optional<std::vector<SObjectState>> m_taken; ///< none: nothing was taken yet
};
