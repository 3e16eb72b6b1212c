#include "scene/ObjectChanges.h"

#include <algorithm>
#include <bit>

namespace {

/// Bit by bit: an undefined number equals itself.
bool IsSame(const SObjectState& a, const SObjectState& b) {
    using Bits = std::array<unsigned, 16>;
    return a.strClip == b.strClip && a.strName == b.strName &&
           std::bit_cast<Bits>(a.matrix) == std::bit_cast<Bits>(b.matrix);
}

} // namespace

std::vector<SObjectState> ObjectsOf(const CScene& scene) {
    std::vector<SObjectState> objects;
    for (const VEKClip& clip : scene.Clips()) {
        for (POSITION pos = clip.m_lstObject.GetHeadPosition(); pos != nullptr;) {
            const VEKObject& object = *clip.m_lstObject.GetNext(pos);
            objects.push_back({clip.m_strName, object.m_strName, std::to_array(object.m_fMatrix)});
        }
    }
    return objects;
}

std::optional<std::vector<SObjectState>> CObjectChanges::Take(const CScene& scene) {
    std::vector<SObjectState> objects = ObjectsOf(scene);
    if (m_taken && std::ranges::equal(objects, *m_taken, IsSame)) {
        return std::nullopt;
    }
    m_taken = std::move(objects);
    return m_taken;
}
