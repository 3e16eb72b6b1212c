// The host's own answers to the virtual operations; a node overrides what it needs.
#include "host/NodeBase.h"
#include "host/Clip.h"
#include "host/EventRecord.h"

#include <memory>
#include <utility>

#include "HostSetup.h"

namespace {

using ParamList = CList<VEKParam*>;

INodeSink* s_pSink = nullptr;

} // namespace

void SetNodeSink(INodeSink* pSink) {
    s_pSink = pSink;
}

BaseStruct::BaseStruct() = default;
BaseStruct::~BaseStruct() = default;

int BaseStruct::GetLowVersion() {
    return m_nLowVersion;
}

int BaseStruct::GetReleaseVersion() {
    return m_nReleaseVersion;
}

void BaseStruct::SetLowVersion(int nVersion) {
    m_nLowVersion = nVersion;
}

void BaseStruct::SetReleaseVersion(int nVersion) {
    m_nReleaseVersion = nVersion;
}

CVEKXml* SParamGrpPosAdjust::GetXmlReader() {
    return nullptr;
}

int* SParamGrpPosAdjust::GetXmlLoadStatePtr() {
    return nullptr;
}

BOOL SParamGrpPosAdjust::ShouldReCalHeight() {
    return FALSE;
}

CString SParamGrpPosAdjust::GetCtrlPosXmlPath() {
    return CString();
}

CArray<SNodeParamInfoGrp*>* SParamGrpPosAdjust::GetNodeParamInfoGrpAr() {
    return nullptr;
}

void SParamGrpPosAdjust::FillNodeParamInfoGrpAr(CArray<SNodeParamInfoGrp*>& arGroup) {
    CVEKXml* pReader = GetXmlReader();
    int* pLoadState = GetXmlLoadStatePtr();
    if (pReader == nullptr || pLoadState == nullptr || !arGroup.IsEmpty()) {
        return;
    }
    if (*pLoadState != XML_LOADED) {
        *pLoadState = pReader->Load(GetCtrlPosXmlPath()) ? XML_LOADED : XML_FAILED;
    }
    pReader->ReadParamLayout(arGroup);
}

VEKProperty::VEKProperty() : m_guidType() {}

VEKProperty::~VEKProperty() {
    VEKProperty::Empty();
    if (s_pSink != nullptr) {
        s_pSink->OnNodeDestroyed(this);
    }
}

void VEKProperty::Empty() {
    while (!m_lstParamGroup.IsEmpty()) {
        delete m_lstParamGroup.RemoveHead();
    }
    delete std::exchange(m_pStoredParams, nullptr);
}

void VEKProperty::Init() {}
void VEKProperty::InitParam() {}
void VEKProperty::ApplyFromParam() {}
void VEKProperty::ApplyToParam() {}

BOOL VEKProperty::NeedUpdateSingleParam(const GUID& /*guid*/) {
    return FALSE;
}

int VEKProperty::UpdateSingleParamValue(const GUID& /*guid*/) {
    return 0;
}

BOOL VEKProperty::IsParamTypeChangeable(const GUID& /*guid*/) {
    return FALSE;
}

BOOL VEKProperty::NeedPIGetNodeInput() {
    return FALSE;
}

void VEKProperty::GetNodeInput(SGraphNode* /*pGraphNode*/) {}
void VEKProperty::GetNodeOutput(SGraphNode* /*pGraphNode*/) {}

int VEKProperty::ProcessNode(SGraphNode* /*pGraphNode*/) {
    return 0;
}

void VEKProperty::GetSubTypes(CStringArray& arSubType) {
    arSubType.RemoveAll();
}

void VEKProperty::SetSubType(int /*nSubType*/) {}
void VEKProperty::SetSubType(CString /*strSubType*/) {} // NOLINT(performance-unnecessary-value-param): the contract

int VEKProperty::GetSubType() {
    return 0;
}

VEKClip* VEKProperty::GetNodeRefClip() {
    return nullptr;
}

float VEKProperty::GetEventDuration(int /*nEvent*/) {
    return 0.0f;
}

int VEKProperty::SeekEventBegin(int /*nEvent*/) {
    return 0;
}

int VEKProperty::PlayIn() {
    return 0;
}

int VEKProperty::PlayNext() {
    return 0;
}

int VEKProperty::PlayByIndex(int /*nIndex*/) {
    return 0;
}

int VEKProperty::PlayOut() {
    return 0;
}

void VEKProperty::GetPlayIndexAndTotalCount(int& nIndex, int& nTotal) {
    nIndex = 0;
    nTotal = 0;
}

void VEKProperty::StopPiThread() {}
void VEKProperty::ClearOutPutData() {}

CString VEKProperty::GetTypeName() {
    return m_strName;
}

CString VEKProperty::GetOutputEventName(int /*nOutput*/) {
    return CString();
}

BOOL VEKProperty::IsInputMulParams() {
    return FALSE;
}

BOOL VEKProperty::IsOutputMulParams() {
    return FALSE;
}

int VEKProperty::GetFixedMulParams() {
    return 0;
}

VEKParamGroup* VEKProperty::GetSave40ParamGrp() {
    return nullptr;
}

int VEKProperty::GetIDFromGrp(const VEKParamGroup* pGroup) {
    return pGroup != nullptr ? static_cast<int>(pGroup->m_guid.Data1) : 0;
}

void VEKProperty::ChangeVectorParam(int /*nCount*/) {}
void VEKProperty::ChangeNodeVectorParam(SGraphNode* /*pGraphNode*/, int /*nCount*/) {}
void VEKProperty::DealWithChangeVectorParam(SGraphNode* /*pGraphNode*/) {}

GUID VEKProperty::CalVectorParamGuid(const GUID& guid, int /*nIndex*/) {
    return guid;
}

int VEKProperty::CalVectorParamIndex(const GUID& /*guid*/) {
    return 0;
}

BOOL VEKProperty::IsParamGroupByGUID(const GUID& guid) {
    return FindGroup(m_lstParamGroup, guid) != nullptr;
}

void VEKProperty::DoParamInit() {
    InitParam();
}

void VEKProperty::PreRender() {}

void VEKProperty::StoreParameters() {
    auto pStored = std::make_unique<VEKParamGroup>();
    for (POSITION posGroup = m_lstParamGroup.GetHeadPosition(); posGroup != nullptr;) {
        const ParamList& lstParam = m_lstParamGroup.GetNext(posGroup)->m_lstParam;
        for (POSITION pos = lstParam.GetHeadPosition(); pos != nullptr;) {
            std::unique_ptr<VEKParam> pCopy(lstParam.GetNext(pos)->Clone());
            pStored->m_lstParam.AddTail(pCopy.get());
            static_cast<void>(pCopy.release());
        }
    }
    delete std::exchange(m_pStoredParams, pStored.release());
}

void VEKProperty::RestoreParameters() {
    for (POSITION posGroup = m_lstParamGroup.GetHeadPosition(); posGroup != nullptr;) {
        const ParamList& lstParam = m_lstParamGroup.GetNext(posGroup)->m_lstParam;
        for (POSITION pos = lstParam.GetHeadPosition(); pos != nullptr;) {
            VEKParam* pParam = lstParam.GetNext(pos);
            if (const VEKParam* pStored = FindParam(m_pStoredParams, pParam->m_guid)) {
                pParam->m_pValue = pStored->m_pValue; // the slot that the integer is in, too
                pParam->m_fValue = pStored->m_fValue;
                pParam->m_strValue = pStored->m_strValue;
            }
        }
    }
}

P_ExtDevIOProcess::P_ExtDevIOProcess() = default;
P_ExtDevIOProcess::~P_ExtDevIOProcess() = default;

int P_ExtDevIOProcess::DevIOEventOccurred(const SIOEventRecord* /*pRecord*/) {
    return 0;
}
