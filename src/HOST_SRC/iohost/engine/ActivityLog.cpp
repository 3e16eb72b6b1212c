#include "engine/ActivityLog.h"

#include <cwchar>

#include "base/TextUtf8.h"

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
    const VEKProperty* pNode = nullptr;
    std::optional<int> output;
    std::vector<std::optional<std::string>> points;
    points.reserve(static_cast<size_t>(pEvent->m_lstParam.GetCount()));
    for (POSITION pos = pEvent->m_lstParam.GetHeadPosition(); pos != nullptr;) {
        const VEKParam& param = *pEvent->m_lstParam.GetNext(pos);
        points.push_back(PointsAt(param));
        if (PointsAtType(param, L"VEKProperty")) {
            pNode = static_cast<const VEKProperty*>(param.m_pValue);
        } else if (param.m_pValue != nullptr && PointsAtType(param, L"EventID")) {
            output = *static_cast<const int*>(param.m_pValue);
        }
    }
    OnFired(pNode, output, SFiredByWindow{std::move(pEvent), wParam, std::move(points)});
}

void CActivityLog::OnFired(const VEKProperty* pNode, std::optional<int> output, decltype(SFired::by) by) {
    SNode* pFound = m_scene.Find(pNode);
    if (pFound != nullptr) {
        pFound->CountFired(output);
        if (output) {
            m_scene.Fire(*pFound, static_cast<unsigned>(*output));
        }
    }
    m_activity.fired.push_back({HandleOf(pFound), output, std::move(by)});
}

void CActivityLog::OnNotifyMessage(WPARAM wParam, LPARAM lParam) {
    m_activity.notified.push_back({HandleOf(m_pCalledNode), wParam, lParam});
}

void CActivityLog::OnLogLine(const SLogLine& line) {
    m_activity.logged.push_back({static_cast<int>(line.nLevel), std::to_array(line.nArguments), line.strText, {}});
    m_lines.Add(m_activity.logged.back());
}

void CActivityLog::OnGeneralEvent(VEKProperty* pNode, VEKClip* pClip, VEKObject* pObject, int nOutput) {
    OnFired(pNode, nOutput,
            SFiredByHost{ClipName(pClip), pObject != nullptr ? std::optional(pObject->m_strName) : std::nullopt});
}

void CActivityLog::OnNodeRedraw(SGraphNode* pGraphNode) {
    m_activity.redrawn.push_back({HandleOf(m_scene.Find(pGraphNode))});
}

std::optional<CString> CActivityLog::ClipName(const void* pClip) const {
    const VEKClip* pKnownClip = m_scene.FindClip(pClip);
    return pKnownClip != nullptr ? std::optional(pKnownClip->m_strName) : std::nullopt;
}

std::optional<std::string> CActivityLog::PointsAt(const VEKParam& param) const {
    if (param.m_pValue == nullptr) {
        return std::nullopt;
    }
    if (PointsAtType(param, L"VEKClip")) {
        const auto name = ClipName(param.m_pValue);
        return name ? std::optional("clip:" + Utf8(*name)) : std::nullopt;
    }
    if (PointsAtType(param, L"VEKProperty")) {
        const auto handle = HandleOf(m_scene.Find(static_cast<const VEKProperty*>(param.m_pValue)));
        return handle ? std::optional("node:" + *handle) : std::nullopt;
    }
    if (PointsAtType(param, L"EventID")) {
        return "int:" + std::to_string(*static_cast<const int*>(param.m_pValue));
    }
    return std::nullopt;
}
