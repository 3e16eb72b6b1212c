#include "scene/ObjectChanges.h"

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
    if (m_taken == objects) {
        return std::nullopt;
    }
    m_taken = std::move(objects);
    return m_taken;
}
