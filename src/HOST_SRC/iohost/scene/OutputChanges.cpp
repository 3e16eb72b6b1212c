#include "scene/OutputChanges.h"

#include <bit>

#include "scene/ParamSet.h"

OutputValues COutputChanges::Take(CScene& scene) {
    OutputValues changed;
    std::erase_if(m_told, [&](const auto& told) { return scene.Find(told.first) == nullptr; });
    for (const auto& pNode : scene.Nodes()) {
        auto& told = m_told[pNode->strHandle];
        std::vector<std::pair<unsigned, SValues>> values;
        const VEKParamGroupList& lstGroup = pNode->pGraphNode->m_lstOutputGroup;
        for (POSITION pos = lstGroup.GetHeadPosition(); pos != nullptr;) {
            const VEKParamGroup& group = *lstGroup.GetNext(pos);
            for (POSITION posParam = group.m_lstParam.GetHeadPosition(); posParam != nullptr;) {
                const VEKParam& output = *group.m_lstParam.GetNext(posParam);
                if (KindOf(output) == EPinKind::Event) {
                    continue;
                }
                const unsigned nId = output.m_guid.Data1;
                const auto [entry, bNew] = told.try_emplace(nId);
                SValues& value = entry->second;
                // Bit by bit: an undefined number counts as unchanged.
                if (bNew || value.nInteger != output.m_nValue || value.strText != output.m_strValue ||
                    std::bit_cast<unsigned>(value.fNumber) != std::bit_cast<unsigned>(output.m_fValue)) {
                    value = ValuesOf(output);
                    values.emplace_back(nId, value);
                }
            }
        }
        if (!values.empty()) {
            changed.emplace_back(pNode->strHandle, std::move(values));
        }
    }
    return changed;
}
