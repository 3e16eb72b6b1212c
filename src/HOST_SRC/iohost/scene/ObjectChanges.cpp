#include "scene/ObjectChanges.h"

#include <bit>
#include <utility>

#include "protocol/Inspect.h"

OrderedJson CObjectChanges::Take(const CScene& scene) {
    std::vector<SObject> objects;
    for (const VEKClip& clip : scene.Clips()) {
        for (POSITION pos = clip.m_lstObject.GetHeadPosition(); pos != nullptr;) {
            const VEKObject& object = *clip.m_lstObject.GetNext(pos);
            const auto matrix = std::bit_cast<std::array<unsigned, 16>>(std::to_array(object.m_fMatrix));
            objects.push_back({&clip, object.m_strName, matrix});
        }
    }
    if (objects == m_taken) {
        return nullptr;
    }
    m_taken = std::move(objects);
    return ObjectsToJson(scene);
}
