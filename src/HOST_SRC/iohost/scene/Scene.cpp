#include "scene/Scene.h"

#include <algorithm>

namespace {

template <typename Key>
SNode* Lookup(const std::unordered_map<Key, SNode*>& nodes, const Key& key) {
    const auto node = nodes.find(key);
    return node != nodes.end() ? node->second : nullptr;
}

void CopyValue(const VEKParam& from, VEKParam& to) {
    to.m_nValue = from.m_nValue;
    to.m_fValue = from.m_fValue;
    to.m_strValue = from.m_strValue;
}

std::optional<int> PinType(const VEKParamGroupList& lstGroup, const PinTypes& own, unsigned nId) {
    if (const VEKParam* pParam = FindParam(lstGroup, MakeParamGuid(nId))) {
        return pParam->m_nType;
    }
    const auto pin = own.find(nId);
    return pin != own.end() ? std::optional(pin->second) : std::nullopt;
}

bool JoinsSamePins(const SLink& a, const SLink& b) {
    return a.pFrom == b.pFrom && a.nOutput == b.nOutput && a.pTo == b.pTo && a.nInput == b.nInput;
}

} // namespace

std::optional<int> SNode::InputType(unsigned nInput) const {
    return PinType(pGraphNode->m_lstInputGroup, ownInputs, nInput);
}

std::optional<int> SNode::OutputType(unsigned nOutput) const {
    return PinType(pGraphNode->m_lstOutputGroup, ownOutputs, nOutput);
}

void SNode::CountFired(std::optional<int> output) {
    Count(&SNodeCounts::nFired);
    if (output) {
        const auto nOutput = static_cast<unsigned>(*output);
        auto entry = std::ranges::find(counts.outputs, nOutput, &std::pair<unsigned, unsigned long long>::first);
        if (entry == counts.outputs.end()) {
            entry = counts.outputs.insert(entry, {nOutput, 0});
        }
        ++entry->second;
    }
}

SNode& CScene::Add(SNode node) {
    node.nOrder = m_nNextOrder++;
    SNode& added = m_nodes.emplace(node.nOrder, std::move(node)).first->second;
    m_byHandle[added.strHandle] = &added;
    m_byNode[added.pNode] = &added;
    m_byGraphNode[added.pGraphNode.get()] = &added;
    return added;
}

void CScene::SetOrders(const std::vector<std::pair<SNode*, unsigned long long>>& orders) {
    std::vector<NodeMap::node_type> entries;
    for (const auto& [pNode, nOrder] : orders) {
        entries.push_back(m_nodes.extract(pNode->nOrder));
        entries.back().key() = nOrder;
        pNode->nOrder = nOrder;
        m_nNextOrder = std::max(m_nNextOrder, nOrder + 1);
    }
    for (NodeMap::node_type& entry : entries) {
        m_nodes.insert(std::move(entry));
    }
}

void CScene::Remove(SNode& node) {
    for (const SLink& link : node.arOutgoing) {
        std::erase(link.pTo->arIncoming, link);
    }
    for (const SLink& link : node.arIncoming) {
        std::erase(link.pFrom->arOutgoing, link);
    }
    std::erase(m_triggered, &node);
    m_byHandle.erase(node.strHandle);
    m_byNode.erase(node.pNode);
    m_byGraphNode.erase(node.pGraphNode.get());
    m_nodes.erase(node.nOrder);
}

SNode* CScene::Find(const std::string& strHandle) {
    return Lookup(m_byHandle, strHandle);
}

SNode* CScene::Find(const VEKProperty* pNode) {
    return Lookup(m_byNode, pNode);
}

SNode* CScene::Find(const SGraphNode* pGraphNode) {
    return Lookup(m_byGraphNode, pGraphNode);
}

VEKClip* CScene::FindClip(const CString& strName) {
    const auto clip = std::ranges::find(m_clips, strName, &VEKClip::m_strName);
    return clip != m_clips.end() ? &*clip : nullptr;
}

const VEKClip* CScene::FindClip(const void* pClip) const {
    const auto clip = std::ranges::find_if(m_clips, [pClip](const VEKClip& other) { return &other == pClip; });
    return clip != m_clips.end() ? &*clip : nullptr;
}

VEKClip& CScene::Clip(const CString& strName) {
    VEKClip* pClip = FindClip(strName);
    return pClip != nullptr ? *pClip : m_clips.emplace_back(strName);
}

void CScene::SetClips(const std::vector<CString>& names) {
    std::list<VEKClip> clips;
    for (const CString& strName : names) {
        const auto clip = std::ranges::find(m_clips, strName, &VEKClip::m_strName);
        if (clip != m_clips.end()) {
            clips.splice(clips.end(), m_clips, clip); // nodes point at it
        } else {
            clips.emplace_back(strName);
        }
    }
    m_clips = std::move(clips);
}

void CScene::Link(SNode& from, unsigned nOutput, SNode& to, unsigned nInput) {
    const SLink link{&from, nOutput, &to, nInput, from.OutputType(nOutput) == PARAM_EVENT.m_nType, m_nNextLink};
    if (std::ranges::none_of(from.arOutgoing, [&](const SLink& other) { return JoinsSamePins(link, other); })) {
        Relink(link);
    }
}

void CScene::Relink(const SLink& link) {
    for (auto* pLinks : {&link.pFrom->arOutgoing, &link.pTo->arIncoming}) {
        pLinks->insert(std::ranges::upper_bound(*pLinks, link.nOrder, {}, &SLink::nOrder), link);
    }
    m_nNextLink = std::max(m_nNextLink, link.nOrder + 1);
}

bool CScene::Unlink(SNode& from, unsigned nOutput, SNode& to, unsigned nInput) {
    const SLink link{&from, nOutput, &to, nInput, false, 0};
    const auto isIt = [&](const SLink& other) { return JoinsSamePins(link, other); };
    std::erase_if(to.arIncoming, isIt);
    return std::erase_if(from.arOutgoing, isIt) > 0;
}

void CScene::Trigger(SNode& node, unsigned nInput) {
    if (std::ranges::find(node.arTriggered, nInput) == node.arTriggered.end()) {
        node.arTriggered.push_back(nInput);
    }
    m_triggered.push_back(&node);
}

void CScene::Fire(SNode& node, unsigned nOutput) {
    for (const SLink& link : node.arOutgoing) {
        if (link.bEvent && link.nOutput == nOutput) {
            Trigger(*link.pTo, link.nInput);
        }
    }
}

CEvaluationInputs::CEvaluationInputs(SNode& node) : m_node(node) {
    const VEKParamGroupList& lstInput = node.pGraphNode->m_lstInputGroup;
    for (const SLink& link : node.arIncoming) {
        const VEKParam* pOutput = FindParam(link.pFrom->pGraphNode->m_lstOutputGroup, MakeParamGuid(link.nOutput));
        VEKParam* pInput = FindParam(lstInput, MakeParamGuid(link.nInput));
        if (!link.bEvent && pOutput != nullptr && pInput != nullptr) {
            CopyValue(*pOutput, *pInput);
        }
    }
    for (const unsigned nInput : node.arTriggered) {
        if (VEKParam* pInput = FindParam(lstInput, MakeParamGuid(nInput))) {
            m_arRestored.emplace_back(nInput, pInput->m_nValue);
            pInput->m_nValue = 1;
        }
    }
    node.arTriggered.clear();
}

CEvaluationInputs::~CEvaluationInputs() {
    for (const auto& [nInput, nValue] : m_arRestored) {
        if (VEKParam* pInput = FindParam(m_node.pGraphNode->m_lstInputGroup, MakeParamGuid(nInput))) {
            pInput->m_nValue = nValue;
        }
    }
}
