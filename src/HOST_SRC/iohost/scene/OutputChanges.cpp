#include "scene/OutputChanges.h"

#include <bit>

#include "protocol/Inspect.h"

OrderedJson COutputChanges::Take(CScene& scene) {
    OrderedJson changed = OrderedJson::object();
    std::erase_if(m_told, [&](const auto& told) { return scene.Find(told.first) == nullptr; });
    for (const auto& [nOrder, node] : scene.Nodes()) {
        auto& told = m_told[node.strHandle];
        const VEKParamGroupList& lstGroup = node.pGraphNode->m_lstOutputGroup;
        for (POSITION pos = lstGroup.GetHeadPosition(); pos != nullptr;) {
            const VEKParamGroup& group = *lstGroup.GetNext(pos);
            for (POSITION posParam = group.m_lstParam.GetHeadPosition(); posParam != nullptr;) {
                const VEKParam& output = *group.m_lstParam.GetNext(posParam);
                if (output.m_nType == PARAM_EVENT.m_nType) {
                    continue;
                }
                const unsigned nId = output.m_guid.Data1;
                const auto [entry, bNew] = told.try_emplace(nId);
                SOutputValue& value = entry->second;
                // Bit by bit: an undefined number counts as unchanged.
                if (bNew || value.nValue != output.m_nValue || value.strValue != output.m_strValue ||
                    std::bit_cast<unsigned>(value.fValue) != std::bit_cast<unsigned>(output.m_fValue)) {
                    value = {output.m_nValue, output.m_fValue, output.m_strValue};
                    changed[node.strHandle][std::to_string(nId)] = ValuesToJson(output);
                }
            }
        }
    }
    return changed;
}
