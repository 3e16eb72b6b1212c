#include "engine/JsonVerdicts.h"

#include <cpprest/json.h>

#include "host/HostRender.h"
#include "host/NodeTypeGuid.h"

namespace {

// Inputs of the nodes, as the contract numbers them.
constexpr unsigned INPUT_DEVICE_ID = 1402;
constexpr unsigned INPUT_CHECK = 1403;
constexpr unsigned INPUT_KEYS[] = {1404, 1406, 1408}; // each with its value's id behind it
constexpr unsigned INPUT_CLIP_NAME = 1202;
constexpr unsigned INPUT_OBJECT_NAME = 1203;

/// How a text begins: as much of it is kept.
CString BeginningOf(const CString& strText) {
    constexpr int MOST_CHARACTERS = 500;
    return strText.Left(MOST_CHARACTERS);
}

/// The input as the node reads it; null when it's missing.
const VEKParam* FindInput(const SNode& node, unsigned nId) {
    return QORFindParamByGuid(MakeParamGuid(nId), node.pGraphNode->m_lstInputGroup, node.pNode->m_lstParamGroup);
}

/// Texts of an input; empty when it's missing.
CString InputText(const SNode& node, unsigned nId) {
    const VEKParam* pParam = FindInput(node, nId);
    return pParam != nullptr ? pParam->m_strValue : CString();
}

SVerdict JudgeObjectText(const SNode& node, const SObjectTextData& text) {
    const CString strClip = InputText(node, INPUT_CLIP_NAME);
    const CString strObject = InputText(node, INPUT_OBJECT_NAME);
    if (text.m_strClipName == strClip && text.m_strObjectName == strObject) {
        return {SNotReady{}};
    }
    return {SOtherObject{BeginningOf(text.m_strClipName), BeginningOf(text.m_strObjectName), BeginningOf(strClip),
                         BeginningOf(strObject)}};
}

/// The kind of a JSON text, read as the node reads it; null for what isn't JSON.
web::json::value::value_type KindOf(const CString& strText) {
    std::error_code error;
    const auto value = web::json::value::parse(
        utility::string_t(strText.GetString(), static_cast<size_t>(strText.GetLength())), error);
    return error ? web::json::value::Null : value.type();
}

} // namespace

CJsonVerdicts::CJsonVerdicts() {
    SetJsonSink(this);
}

CJsonVerdicts::~CJsonVerdicts() {
    SetJsonSink(nullptr);
}

bool CJsonVerdicts::IsText(const SIOEventRecord* pRecord) {
    return pRecord != nullptr && pRecord->m_pPayload != nullptr &&
           (pRecord->m_nDevice == DEVICE_TEXT || pRecord->m_nDevice == DEVICE_OBJECT_TEXT);
}

void CJsonVerdicts::Begin() {
    m_arValue.RemoveAll();
    m_nSought = 0;
    m_nLastFound = -1;
}

const SVerdict* CJsonVerdicts::End(const SNode& node, const SIOEventRecord& record, int nResult) {
    const CString* pText = nullptr;
    SVerdict verdict{STaken{}};
    if (record.m_nDevice == DEVICE_TEXT && IsEqualGUID(node.guidType, GUID_IOPROCESS_DEVICE_JSON_RECEIVE)) {
        const auto& text = *static_cast<const SDeviceTextData*>(record.m_pPayload);
        pText = &text.m_strText;
        if (nResult == 0) {
            verdict = JudgeDeviceText(node, text);
        }
    } else if (record.m_nDevice == DEVICE_OBJECT_TEXT &&
               IsEqualGUID(node.guidType, GUID_IOPROCESS_OBJECT_JSON_RECEIVE)) {
        const auto& text = *static_cast<const SObjectTextData*>(record.m_pPayload);
        pText = &text.m_strText;
        if (nResult == 0) {
            verdict = JudgeObjectText(node, text);
        }
    } else {
        return nullptr;
    }
    verdict.strText = BeginningOf(*pText);
    verdict.nLength = pText->GetLength();
    SKept& kept = m_verdicts[node.pNode];
    kept = {std::move(verdict), true};
    return &kept.verdict;
}

/// Why the text of a device was refused.
SVerdict CJsonVerdicts::JudgeDeviceText(const SNode& node, const SDeviceTextData& text) const {
    const VEKParam* pDeviceId = FindInput(node, INPUT_DEVICE_ID);
    if (pDeviceId != nullptr && pDeviceId->m_nValue != text.m_nDeviceId) {
        return {SOtherDevice{text.m_nDeviceId, pDeviceId->m_nValue}};
    }
    if (m_nSought > 0) {
        return JudgePairs(node);
    }
    // The node looked up no key: it stopped before that, or the text isn't an object.
    const VEKParam* pCheck = FindInput(node, INPUT_CHECK);
    bool bReady = node.pNode->m_pOwnerClip != nullptr && node.pNode->m_pBaseGraphNode != nullptr &&
                  pDeviceId != nullptr && pCheck != nullptr;
    for (const unsigned nKeyId : INPUT_KEYS) {
        bReady = bReady && FindInput(node, nKeyId) != nullptr && FindInput(node, nKeyId + 1) != nullptr;
    }
    if (!bReady) {
        return {SNotReady{}};
    }
    const auto nKind = KindOf(text.m_strText);
    if (nKind == web::json::value::Null) {
        return {SNotJson{}};
    }
    if (nKind != web::json::value::Object && pCheck->m_nValue != 0) {
        return {SNotObject{}};
    }
    return {SNotReady{}};
}

/// The pair at which the node stopped.
SVerdict CJsonVerdicts::JudgePairs(const SNode& node) const {
    CString strKey;
    CString strExpected;
    int nSought = 0;
    for (const unsigned nKeyId : INPUT_KEYS) {
        const CString strInput = InputText(node, nKeyId);
        if (!strInput.IsEmpty() && ++nSought == m_nSought) {
            strKey = BeginningOf(strInput);
            strExpected = BeginningOf(InputText(node, nKeyId + 1));
        }
    }
    if (m_nLastFound < 0) {
        return {SKeyMissing{strKey}};
    }
    const bool bSplit = m_nLastFound < m_arValue.GetSize(); // the index is another list's otherwise
    return {SValueDiffers{strKey, bSplit ? BeginningOf(m_arValue[m_nLastFound]) : CString(), strExpected}};
}

void CJsonVerdicts::ForgetTaken() {
    for (auto& [pNode, kept] : m_verdicts) {
        kept.bNew = true;
    }
}

void CJsonVerdicts::OnObjectSplit(const CStringArray& /*arKey*/, const CStringArray& arValue) {
    m_arValue.Copy(arValue);
}

void CJsonVerdicts::OnStringSought(const CString& /*strText*/, int nIndex) {
    ++m_nSought;
    m_nLastFound = nIndex;
}
