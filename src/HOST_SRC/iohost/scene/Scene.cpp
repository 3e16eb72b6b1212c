#include "scene/Scene.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

template <typename Key>
SNode* Lookup(const std::unordered_map<Key, SNode*>& nodes, const Key& key) {
    const auto node = nodes.find(key);
    return node != nodes.end() ? node->second : nullptr;
}

/// The nearest whole number that an integer can hold.
int Rounded(float fNumber) {
    using Limits = std::numeric_limits<int>;
    return std::isnan(fNumber)
               ? 0
               : static_cast<int>(std::clamp<double>(std::round(fNumber), Limits::min(), Limits::max()));
}

void CopyValue(const VEKParam& from, VEKParam& to, ELinkKind nKind) {
    to.m_nValue = nKind == ELinkKind::Rounded ? Rounded(from.m_fValue) : from.m_nValue;
    to.m_fValue = from.m_fValue;
    to.m_strValue = from.m_strValue;
}

ELinkKind LinkKind(EPinKind nOutput, EPinKind nInput, bool bRounding) {
    if (nOutput == EPinKind::Event) {
        return ELinkKind::Event;
    }
    return bRounding && nOutput == EPinKind::Float && nInput == EPinKind::Integer ? ELinkKind::Rounded
                                                                                  : ELinkKind::Copy;
}

std::optional<EPinKind> PinKind(const VEKParamGroupList& lstGroup, const PinKinds& own, unsigned nId) {
    if (const VEKParam* pParam = FindParam(lstGroup, MakeParamGuid(nId))) {
        return KindOf(*pParam);
    }
    const auto pin = own.find(nId);
    return pin != own.end() ? std::optional(pin->second) : std::nullopt;
}

bool JoinsSamePins(const SLink& a, const SLink& b) {
    return a.pFrom == b.pFrom && a.nOutput == b.nOutput && a.pTo == b.pTo && a.nInput == b.nInput;
}

} // namespace

EPinKind KindOf(const VEKParam& pin) {
    if (pin.m_nType == PARAM_EVENT.m_nType) {
        return EPinKind::Event;
    }
    if (pin.m_nType == PARAM_FLOAT.m_nType && pin.m_nControl == PARAM_FLOAT.m_nControl) {
        return EPinKind::Float;
    }
    const auto types = {PARAM_INTEGER.m_nType, PARAM_SWITCH.m_nType, PARAM_CHOICE.m_nType, PARAM_KEY_CODE.m_nType};
    return std::ranges::find(types, pin.m_nType) != types.end() ? EPinKind::Integer : EPinKind::Other;
}

std::optional<EPinKind> SNode::InputKind(unsigned nInput) const {
    return PinKind(pGraphNode->m_lstInputGroup, ownInputs, nInput);
}

std::optional<EPinKind> SNode::OutputKind(unsigned nOutput) const {
    return PinKind(pGraphNode->m_lstOutputGroup, ownOutputs, nOutput);
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
    SNode& added = *m_nodes.emplace_back(std::make_unique<SNode>(std::move(node)));
    m_byHandle[added.strHandle] = &added;
    m_byNode[added.pNode] = &added;
    m_byGraphNode[added.pGraphNode.get()] = &added;
    return added;
}

void CScene::SetOrders(const std::vector<std::pair<SNode*, unsigned long long>>& orders) {
    for (const auto& [pNode, nOrder] : orders) {
        pNode->nOrder = nOrder;
        m_nNextOrder = std::max(m_nNextOrder, nOrder + 1);
    }
    std::ranges::sort(m_nodes, {}, [](const auto& pNode) { return pNode->nOrder; });
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
    m_nodes.erase(std::ranges::lower_bound(m_nodes, node.nOrder, {}, [](const auto& pNode) { return pNode->nOrder; }));
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

void CScene::Link(SNode& from, unsigned nOutput, SNode& to, unsigned nInput, bool bRounding) {
    const ELinkKind nKind = LinkKind(*from.OutputKind(nOutput), *to.InputKind(nInput), bRounding);
    const SLink link{&from, nOutput, &to, nInput, nKind, m_nNextLink};
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
    const SLink link{&from, nOutput, &to, nInput, {}, {}};
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
        if (link.nKind == ELinkKind::Event && link.nOutput == nOutput) {
            Trigger(*link.pTo, link.nInput);
        }
    }
}

CEvaluationInputs::CEvaluationInputs(SNode& node) : m_node(node) {
    const VEKParamGroupList& lstInput = node.pGraphNode->m_lstInputGroup;
    for (const SLink& link : node.arIncoming) {
        if (link.nKind == ELinkKind::Event) {
            continue;
        }
        const VEKParam* pOutput = FindParam(link.pFrom->pGraphNode->m_lstOutputGroup, MakeParamGuid(link.nOutput));
        VEKParam* pInput = FindParam(lstInput, MakeParamGuid(link.nInput));
        if (pOutput != nullptr && pInput != nullptr) {
            CopyValue(*pOutput, *pInput, link.nKind);
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
