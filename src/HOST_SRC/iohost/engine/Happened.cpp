#include "engine/Happened.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <utility>

#include "base/TextUtf8.h"

namespace {

constexpr const char* LIST_NAMES[] = {"posted", "log", "notified", "sent", "redrawn"};

bool PointsAtType(const VEKParam& param, const wchar_t* pszTypeName) {
    return std::wcscmp(param.m_szTypeName, pszTypeName) == 0;
}

/// The parameter of an event that points at a thing of this type; null without one.
const VEKParam* FindPointer(const SQOREvent& event, const wchar_t* pszTypeName) {
    for (POSITION pos = event.m_lstParam.GetHeadPosition(); pos != nullptr;) {
        const VEKParam* pParam = event.m_lstParam.GetNext(pos);
        if (PointsAtType(*pParam, pszTypeName)) {
            return pParam;
        }
    }
    return nullptr;
}

} // namespace

CHappened::CHappened(CScene& scene) : m_scene(scene) {
    static_assert(std::size(LIST_NAMES) == LIST_COUNT);
    m_lists.fill(OrderedJson::array());
    SetLogSink(this);
    SetRenderSink(this);
}

CHappened::~CHappened() {
    SetRenderSink(nullptr);
    SetLogSink(nullptr);
}

void CHappened::OnEventMessage(const SQOREvent& event, WPARAM wParam) {
    const VEKParam* pOwner = FindPointer(event, L"VEKProperty");
    const auto* pNode = pOwner != nullptr ? static_cast<const VEKProperty*>(pOwner->m_pValue) : nullptr;
    const VEKParam* pOutput = FindPointer(event, L"EventID");
    const auto* pOutputId = pOutput != nullptr ? static_cast<const int*>(pOutput->m_pValue) : nullptr;
    if (pOutputId != nullptr) {
        m_scene.Fire(pNode, static_cast<unsigned>(*pOutputId));
    }
    OrderedJson params = OrderedJson::array();
    for (POSITION pos = event.m_lstParam.GetHeadPosition(); pos != nullptr;) {
        const VEKParam& param = *event.m_lstParam.GetNext(pos);
        params.push_back({{"id", static_cast<unsigned>(param.m_guid.Data1)},
                          {"name", Utf8(param.m_strName)},
                          {"display", Utf8(param.m_strDisplay)},
                          {"type", param.m_nType},
                          {"control", param.m_nControl},
                          {"type_name", ToUtf8(param.m_szTypeName)},
                          {"points", PointsAt(param)}});
    }
    m_lists[POSTED].push_back({{"node", Handle(m_scene.Find(pNode))},
                               {"output", pOutputId != nullptr ? Json(*pOutputId) : Json()},
                               {"via", "window"},
                               {"name", Utf8(event.m_strName)},
                               {"event_id", static_cast<int>(event.m_nId)},
                               {"wparam", wParam},
                               {"params", std::move(params)}});
}

void CHappened::OnNotifyMessage(WPARAM wParam, LPARAM lParam) {
    m_lists[NOTIFIED].push_back({{"node", Handle(m_pCalledNode)}, {"wparam", wParam}, {"lparam", lParam}});
}

void CHappened::OnLogLine(const SLogLine& line) {
    m_lists[LOG].push_back(
        {{"level", static_cast<int>(line.nLevel)}, {"args", line.nArguments}, {"text", Utf8(line.strText)}});
}

void CHappened::OnGeneralEvent(VEKProperty* pNode, VEKClip* pClip, VEKObject* pObject, int nOutput) {
    m_scene.Fire(pNode, static_cast<unsigned>(nOutput));
    m_lists[POSTED].push_back({{"node", Handle(m_scene.Find(pNode))},
                               {"output", nOutput},
                               {"via", "host"},
                               {"clip", ClipName(pClip)},
                               {"object", pObject != nullptr ? Json(Utf8(pObject->m_strName)) : Json()}});
}

void CHappened::OnNodeRedraw(SGraphNode* pGraphNode) {
    m_lists[REDRAWN].push_back({{"node", Handle(m_scene.Find(pGraphNode))}});
}

OrderedJson CHappened::Take() {
    OrderedJson happened = OrderedJson::object();
    for (size_t i = 0; i < m_lists.size(); ++i) {
        if (!m_lists[i].empty()) {
            happened[LIST_NAMES[i]] = std::exchange(m_lists[i], OrderedJson::array());
        }
    }
    return happened;
}

CHappened::Mark CHappened::Now() const {
    Mark mark{};
    std::ranges::transform(m_lists, mark.begin(), [](const OrderedJson& list) { return list.size(); });
    return mark;
}

OrderedJson CHappened::Since(const Mark& mark) const {
    OrderedJson happened = OrderedJson::object();
    for (size_t i = 0; i < m_lists.size(); ++i) {
        if (m_lists[i].size() > mark[i]) {
            const auto begin = m_lists[i].begin() + static_cast<std::ptrdiff_t>(mark[i]);
            happened[LIST_NAMES[i]] = OrderedJson::array_t(begin, m_lists[i].end());
        }
    }
    return happened;
}

Json CHappened::Handle(const SNode* pNode) const {
    return pNode != nullptr ? Json(pNode->strHandle) : Json();
}

Json CHappened::ClipName(const void* pClip) const {
    const VEKClip* pKnownClip = m_scene.FindClip(pClip);
    return pKnownClip != nullptr ? Json(Utf8(pKnownClip->m_strName)) : Json();
}

Json CHappened::PointsAt(const VEKParam& param) const {
    if (param.m_pValue == nullptr) {
        return nullptr;
    }
    if (PointsAtType(param, L"VEKClip")) {
        const Json name = ClipName(param.m_pValue);
        return name.is_null() ? name : Json("clip:" + name.get<std::string>());
    }
    if (PointsAtType(param, L"VEKProperty")) {
        const SNode* pNode = m_scene.Find(static_cast<const VEKProperty*>(param.m_pValue));
        return pNode != nullptr ? Json("node:" + pNode->strHandle) : Json();
    }
    if (PointsAtType(param, L"EventID")) {
        return "int:" + std::to_string(*static_cast<const int*>(param.m_pValue));
    }
    return nullptr;
}

void AppendHappened(OrderedJson& target, OrderedJson happened) {
    for (auto& [name, list] : happened.items()) {
        OrderedJson& targetList = target[name];
        for (OrderedJson& entry : list) {
            targetList.push_back(std::move(entry));
        }
    }
}
