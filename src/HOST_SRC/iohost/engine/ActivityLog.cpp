#include "engine/ActivityLog.h"

#include <cwchar>

namespace {

bool PointsAtType(const VEKParam& param, const wchar_t* pszTypeName) {
    return std::wcscmp(param.m_szTypeName, pszTypeName) == 0;
}

std::optional<std::string> HandleOf(const SNode* pNode) {
    return pNode != nullptr ? std::optional(pNode->strHandle) : std::nullopt;
}

} // namespace

CActivityLog::CActivityLog(CScene& scene) : m_scene(scene) {
    SetLogSink(this);
    SetRenderSink(this);
}

CActivityLog::~CActivityLog() {
    SetRenderSink(nullptr);
    SetLogSink(nullptr);
}

void CActivityLog::OnEventMessage(std::unique_ptr<const SQOREvent> pEvent, WPARAM wParam) {
    SNode* pNode = nullptr;
    std::optional<int> output;
    std::vector<PointedAt> points;
    points.reserve(static_cast<size_t>(pEvent->m_lstParam.GetCount()));
    for (POSITION pos = pEvent->m_lstParam.GetHeadPosition(); pos != nullptr;) {
        const VEKParam& param = *pEvent->m_lstParam.GetNext(pos);
        PointedAt& pointed = points.emplace_back();
        if (param.m_pValue == nullptr) {
            continue;
        }
        if (PointsAtType(param, L"VEKClip")) {
            if (const VEKClip* pClip = m_scene.FindClip(param.m_pValue)) {
                pointed = pClip->m_strName;
            }
        } else if (PointsAtType(param, L"VEKProperty")) {
            pNode = Find(static_cast<const VEKProperty*>(param.m_pValue));
            if (pNode != nullptr) {
                pointed = pNode->strHandle;
            }
        } else if (PointsAtType(param, L"EventID")) {
            output = *static_cast<const int*>(param.m_pValue);
            pointed = *output;
        }
    }
    OnFired(pNode, output, SFiredByWindow{std::move(pEvent), wParam, std::move(points)});
}

void CActivityLog::OnFired(SNode* pNode, std::optional<int> output, decltype(SFired::by) by) {
    if (pNode != nullptr) {
        pNode->CountFired(output);
        if (output) {
            m_scene.Fire(*pNode, static_cast<unsigned>(*output));
        }
    }
    m_activity.fired.push_back({HandleOf(pNode), output, std::move(by)});
}

void CActivityLog::OnNotifyMessage(WPARAM wParam, LPARAM lParam) {
    m_activity.notified.push_back({HandleOf(m_pCalledNode), wParam, lParam});
}

void CActivityLog::OnLogLine(const SLogLine& line) {
    m_activity.logged.push_back({static_cast<int>(line.nLevel), std::to_array(line.nArguments), line.strText, {}});
    m_lines.Add(m_activity.logged.back());
}

void CActivityLog::OnGeneralEvent(VEKProperty* pNode, VEKClip* pClip, VEKObject* pObject, int nOutput) {
    const VEKClip* pKnownClip = m_scene.FindClip(pClip);
    OnFired(Find(pNode), nOutput,
            SFiredByHost{pKnownClip != nullptr ? std::optional(pKnownClip->m_strName) : std::nullopt,
                         pObject != nullptr ? std::optional(pObject->m_strName) : std::nullopt});
}

void CActivityLog::OnNodeRedraw(SGraphNode* pGraphNode) {
    m_activity.redrawn.push_back({HandleOf(m_scene.Find(pGraphNode))});
}

SNode* CActivityLog::Find(const VEKProperty* pNode) {
    const bool bCalled = m_pCalledNode != nullptr && m_pCalledNode->pNode == pNode; // as nearly always
    return bCalled ? m_pCalledNode : m_scene.Find(pNode);
}
