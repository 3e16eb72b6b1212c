#include "host/HostRender.h"

#include <algorithm>
#include <iterator>

#include "RenderSink.h"
#include "host/EventRecord.h"
#include "host/GeneralEvent.h"
#include "host/HostCommon.h"

namespace {

IRenderSink* s_pSink = nullptr;

constexpr float IDENTITY_MATRIX[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

} // namespace

void SetRenderSink(IRenderSink* pSink) {
    s_pSink = pSink;
}

SQORNodeOutput::SQORNodeOutput(unsigned nId, const CString& strName, const CString& strDisplay, int nType, int nControl)
    : VEKParam(nId, strName, strDisplay, nType, nControl) {}

VEKParam* SQORNodeOutput::Clone() const {
    return new SQORNodeOutput(*this);
}

VEKObject::VEKObject(const CString& strName) : m_strName(strName) {
    std::copy(std::begin(IDENTITY_MATRIX), std::end(IDENTITY_MATRIX), m_fMatrix);
}

void SClipRefNodeInfo::UpdateNodeByProperty(SGraphNode* pGraphNode) {
    if (s_pSink != nullptr) {
        s_pSink->OnNodeRedraw(pGraphNode);
    }
}

VEKClip::VEKClip(const CString& strName) : m_strName(strName) {}

VEKClip::~VEKClip() {
    while (!m_lstObject.IsEmpty()) {
        delete m_lstObject.RemoveHead();
    }
}

VEKObject* VEKClip::FindObject(const CString& strName, int /*nOption*/) {
    for (POSITION pos = m_lstObject.GetHeadPosition(); pos != nullptr;) {
        VEKObject* pObject = m_lstObject.GetNext(pos);
        if (pObject->m_strName == strName) {
            return pObject;
        }
    }
    return nullptr;
}

SQOREvent::SQOREvent(EQOREventID nId, const CString& strName) : m_nId(nId), m_strName(strName) {}

SQOREvent::~SQOREvent() {
    while (!m_lstParam.IsEmpty()) {
        VEKParam* pParam = m_lstParam.RemoveHead();
        if (std::wcscmp(pParam->m_szTypeName, L"EventID") == 0) {
            delete static_cast<int*>(pParam->m_pValue);
        }
        delete pParam;
    }
}

CQORIOAttachedData::CQORIOAttachedData() = default;
CQORIOAttachedData::~CQORIOAttachedData() = default;

SQORMouseData::SQORMouseData(int nPointer, float fRelativeX, float fRelativeY, CPoint ptPixel, int bRelative)
    : m_fRelativeX(fRelativeX), m_fRelativeY(fRelativeY), m_ptPixel(ptPixel), m_nPointer(nPointer),
      m_bRelative(bRelative) {}

SQORMouseData::~SQORMouseData() = default;

SVRPluginData::SVRPluginData() {
    clear();
}

SVRPluginData::~SVRPluginData() = default;

void SVRPluginData::clear() {
    m_nSampleNumber = 0;
    m_nHand = 0;
    m_bTriggerPressed = 0;
    m_bTouchPadPressed = 0;
    m_fTouchPadX = 0.0f;
    m_fTouchPadY = 0.0f;
    m_bTouchPadTouched = 0;
    std::fill(std::begin(m_fPose), std::end(m_fPose), 0.0f);
    std::fill(std::begin(m_fHitPosition), std::end(m_fHitPosition), 0.0f);
    m_nPressTime = 0;
    m_nReleaseTime = 0;
}

VEKParam* QORFindParamByGuid(const GUID& guid, const VEKParamGroupList& lstGraphInput,
                             const VEKParamGroupList& lstOwn) {
    VEKParam* pParam = FindParam(lstGraphInput, guid);
    return pParam != nullptr ? pParam : FindParam(lstOwn, guid);
}

int PostGeneralEventMessage(VEKProperty* pNode, VEKClip* pClip, VEKObject* pObject, int nOutput) {
    if (s_pSink == nullptr || pNode == nullptr) {
        return 0;
    }
    s_pSink->OnGeneralEvent(pNode, pClip, pObject, nOutput);
    return 1;
}

CString G_GetModulePath() {
    return PXGetAppPath();
}
