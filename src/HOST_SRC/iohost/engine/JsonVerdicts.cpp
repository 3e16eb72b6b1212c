#include "engine/JsonVerdicts.h"

#include <string>
#include <utility>

#include "base/TextUtf8.h"
#include "host/EventRecord.h"
#include "host/HostRender.h"
#include "host/NodeTypeGuid.h"
#include "host/ParamModel.h"

namespace {

// Inputs of the nodes, as the contract numbers them.
constexpr unsigned INPUT_DEVICE_ID = 1402;
constexpr unsigned INPUT_KEYS[] = {1404, 1406, 1408}; // each with its value's id behind it
constexpr unsigned INPUT_CLIP_NAME = 1202;
constexpr unsigned INPUT_OBJECT_NAME = 1203;

/// How much of a text is kept.
constexpr int MOST_CHARACTERS = 500;

OrderedJson Verdict(const char* pszVerdict) {
    return {{"verdict", pszVerdict}};
}

/// The input as the node reads it; null when it's missing.
const VEKParam* FindInput(const SNode& node, unsigned nId) {
    return QORFindParamByGuid(MakeParamGuid(nId), node.pGraphNode->m_lstInputGroup, node.pNode->m_lstParamGroup);
}

/// Texts of an input; empty when it's missing.
std::string InputText(const SNode& node, unsigned nId) {
    const VEKParam* pParam = FindInput(node, nId);
    return pParam != nullptr ? Utf8(pParam->m_strValue) : std::string();
}

OrderedJson JudgeObjectText(const SNode& node, const SObjectTextData& text) {
    OrderedJson verdict = Verdict("other_object");
    verdict["clip"] = Utf8(text.m_strClipName);
    verdict["object"] = Utf8(text.m_strObjectName);
    verdict["expected_clip"] = InputText(node, INPUT_CLIP_NAME);
    verdict["expected_object"] = InputText(node, INPUT_OBJECT_NAME);
    const bool bForIt = verdict["clip"] == verdict["expected_clip"] && verdict["object"] == verdict["expected_object"];
    return bForIt ? Verdict("not_ready") : verdict;
}

} // namespace

CJsonVerdicts::CJsonVerdicts(const CHappened& happened) : m_happened(happened) {
    SetJsonSink(this);
}

CJsonVerdicts::~CJsonVerdicts() {
    SetJsonSink(nullptr);
}

void CJsonVerdicts::Begin() {
    m_begin = m_happened.Now();
    m_arValue.RemoveAll();
    m_nSought = 0;
    m_nLastFound = -1;
}

void CJsonVerdicts::End(const SNode& node, const SIOEventRecord* pRecord, int nResult) {
    if (pRecord == nullptr || pRecord->m_pPayload == nullptr) {
        return;
    }
    const CString* pText = nullptr;
    OrderedJson verdict;
    if (pRecord->m_nDevice == DEVICE_TEXT && IsEqualGUID(node.guidType, GUID_IOPROCESS_DEVICE_JSON_RECEIVE)) {
        const auto& text = *static_cast<const SDeviceTextData*>(pRecord->m_pPayload);
        pText = &text.m_strText;
        verdict = nResult != 0 ? Verdict("taken") : JudgeDeviceText(node, text);
    } else if (pRecord->m_nDevice == DEVICE_OBJECT_TEXT &&
               IsEqualGUID(node.guidType, GUID_IOPROCESS_OBJECT_JSON_RECEIVE)) {
        const auto& text = *static_cast<const SObjectTextData*>(pRecord->m_pPayload);
        pText = &text.m_strText;
        verdict = nResult != 0 ? Verdict("taken") : JudgeObjectText(node, text);
    } else {
        return;
    }
    verdict["text"] = Utf8(pText->Left(MOST_CHARACTERS));
    verdict["length"] = pText->GetLength();
    m_verdicts[node.pNode] = {std::move(verdict), true};
}

/// Why the text of a device was refused.
OrderedJson CJsonVerdicts::JudgeDeviceText(const SNode& node, const SDeviceTextData& text) const {
    const VEKParam* pDeviceId = FindInput(node, INPUT_DEVICE_ID);
    if (pDeviceId != nullptr && pDeviceId->m_nValue != text.m_nDeviceId) {
        OrderedJson verdict = Verdict("other_device");
        verdict["device"] = text.m_nDeviceId;
        verdict["expected"] = pDeviceId->m_nValue;
        return verdict;
    }
    if (m_nSought > 0) {
        return JudgePairs(node);
    }
    const OrderedJson happened = m_happened.Since(m_begin);
    const auto log = happened.find("log");
    const std::string strLine = log != happened.end() ? log->back()["text"].get<std::string>() : std::string();
    return Verdict(strLine.ends_with("JSON解析失败")   ? "not_json"
                   : strLine.ends_with("不是JSON对象") ? "not_object"
                                                       : "not_ready");
}

/// The pair at which the node stopped.
OrderedJson CJsonVerdicts::JudgePairs(const SNode& node) const {
    std::string strKey;
    std::string strExpected;
    int nSought = 0;
    for (const unsigned nKeyId : INPUT_KEYS) {
        const std::string strInput = InputText(node, nKeyId);
        if (!strInput.empty() && ++nSought == m_nSought) {
            strKey = strInput;
            strExpected = InputText(node, nKeyId + 1);
        }
    }
    OrderedJson verdict = Verdict(m_nLastFound < 0 ? "key_missing" : "value_differs");
    verdict["key"] = strKey;
    if (m_nLastFound >= 0 && m_nLastFound < m_arValue.GetSize()) {
        verdict["value"] = Utf8(m_arValue[m_nLastFound].Left(MOST_CHARACTERS));
        verdict["expected"] = strExpected;
    }
    return verdict;
}

OrderedJson CJsonVerdicts::All(const CScene& scene) const {
    OrderedJson all = OrderedJson::object();
    for (const auto& [nOrder, node] : scene.Nodes()) {
        if (const auto found = m_verdicts.find(node.pNode); found != m_verdicts.end()) {
            all[node.strHandle] = found->second.json;
        }
    }
    return all;
}

OrderedJson CJsonVerdicts::TakeNew(const CScene& scene) {
    OrderedJson news = OrderedJson::object();
    for (const auto& [nOrder, node] : scene.Nodes()) {
        const auto found = m_verdicts.find(node.pNode);
        if (found != m_verdicts.end() && std::exchange(found->second.bNew, false)) {
            news[node.strHandle] = found->second.json;
        }
    }
    return news;
}

void CJsonVerdicts::ForgetTaken() {
    for (auto& [pNode, verdict] : m_verdicts) {
        verdict.bNew = true;
    }
}

void CJsonVerdicts::OnObjectSplit(const CStringArray& /*arKey*/, const CStringArray& arValue) {
    m_arValue.Copy(arValue);
}

void CJsonVerdicts::OnStringSought(const CString& /*strText*/, int nIndex) {
    ++m_nSought;
    m_nLastFound = nIndex;
}
