#include "nodes/network/NetParameterSendNode.h"

#include <algorithm>
#include <memory>
#include <new>

#include "host/NodeSupport.h"
#include "host/NodeTables.h"
#include "host/NodeTypeGuid.h"
#include "nodes/network/LayerNumbers.h"
#include "nodes/network/NetworkNodes.h"

namespace {

enum : unsigned {
    INPUT_GROUP = 401,
    INPUT_DEV_ID = 402,
    INPUT_DEV_NAME = 403,
    INPUT_CLIP_NAME = 404,
    INPUT_GROUP_NAME = 405,
    INPUT_KEY_NAME = 406,
    INPUT_KEY_NUMBER = 407,
    INPUT_KEY_VALUE = 408,
    INPUT_HELP_PARAMETER = 409,
    INPUT_SEND = 410,
    INPUT_LAYER = 411,
    INPUT_TO_DEV = 412,
};

constexpr DeviceInputs DEVICE_INPUTS{INPUT_TO_DEV, INPUT_DEV_ID, INPUT_DEV_NAME};

constexpr int VERSION_WITH_LAYER = 2;
constexpr int VERSION_WITH_TO_DEV = 3;
constexpr int VERSION_WITH_HIDDEN_DEVICE = 4;
constexpr int VERSION_WITH_TO_DEV_FIRST = 5;
constexpr int VERSION_CURRENT = VERSION_WITH_TO_DEV_FIRST;

constexpr ParamRow Hidden(ParamRow row) {
    row.bAvailable = false;
    return row;
}

constexpr ParamRow TO_DEV_ROW{.nId = INPUT_TO_DEV,
                              .pszName = L"ToDev",
                              .pszDisplayKey = L"TOUCH_NETSEND_TODEV",
                              .codes = PARAM_SWITCH,
                              .range = RANGE_SWITCH,
                              .flags = FLAGS_NONE,
                              .nValue = 1};

constexpr ParamRow LAYER_ROW{.nId = INPUT_LAYER,
                             .pszName = L"Layer",
                             .pszDisplayKey = L"LAYER_LAYER",
                             .codes = PARAM_CHOICE,
                             .range = ParamRange{0, 0, 20, 1},
                             .flags = FLAGS_NONE,
                             .nValue = 1,
                             .pFillChoices = FillLayerLabels};

/// What an upgrade adds to an older parameter set differs from a new node's: it has the ordinary flags.
constexpr ParamRow Added(ParamRow row, int nValue) {
    row.flags = FLAGS_ORDINARY;
    row.nValue = nValue;
    return row;
}

constexpr ParamRow INPUTS[] = {
    Hidden(VersionRow(VERSION_CURRENT)),
    TO_DEV_ROW,
    StringRow(INPUT_DEV_ID, L"DevID", L"IO_PROCESS_NETSEND_DEVID"),
    StringRow(INPUT_DEV_NAME, L"DevName", L"IO_PROCESS_NETSEND_DEVNAME"),
    StringRow(INPUT_CLIP_NAME, L"ClipName", L"IO_PROCESS_NETSEND_CLIPNAME"),
    LAYER_ROW,
    StringRow(INPUT_GROUP_NAME, L"GroupName", L"IO_PROCESS_NETSEND_GROUPNAME"),
    StringRow(INPUT_KEY_NAME, L"KeyName", L"IO_PROCESS_NETSEND_KEYNAME"),
    {.nId = INPUT_KEY_NUMBER,
     .pszName = L"KeyNumber",
     .pszDisplayKey = L"IO_PROCESS_NETSEND_KEYNUMBER",
     .codes = PARAM_INTEGER,
     .range = ParamRange{0, 0, 1e9f, 1},
     .flags = FLAGS_ORDINARY,
     .nValue = 0},
    StringRow(INPUT_KEY_VALUE, L"KeyValue", L"IO_PROCESS_NETSEND_KEYVALUE"),
    StringRow(INPUT_HELP_PARAMETER, L"HelpParameter", L"IO_PROCESS_NETSEND_HELPPARAMETER"),
    EventRow(INPUT_SEND, L"Send", L"IO_PROCESS_NETSEND_SEND"),
};

constexpr GroupRow INPUT_GROUP_ROW{
    .nId = INPUT_GROUP, .pszName = L"Base param", .pszDisplayKey = L"IO_PROCESS_NETSEND", .params = INPUTS};

using ParamList = CList<VEKParam*>;

/// The position of the parameter in the list; null if absent.
POSITION FindPosition(const VEKParamGroup& group, unsigned nId) {
    VEKParam* pParam = FindParam(&group, MakeParamGuid(nId));
    return pParam != nullptr ? group.m_lstParam.Find(pParam) : nullptr;
}

/// There was no memory for a record.
class NoRecord : public std::bad_alloc {};

std::unique_ptr<CQORPanelRemoteCtrlData> MakeRecord() try {
    return std::make_unique<CQORPanelRemoteCtrlData>();
} catch (const std::bad_alloc&) {
    throw NoRecord();
} catch (CMemoryException* pException) {
    pException->Delete();
    throw NoRecord();
}

CParamLayout s_layout;

} // namespace

CNetParameterSendIOProcess::CNetParameterSendIOProcess() {
    m_nKindCode = KIND_IO_PROCESS;
    m_guidType = GUID_IOPROCESS_NET_PARAMETER_SEND;
    AppendInputGroup(m_lstParamGroup, INPUT_GROUP_ROW);
}

CNetParameterSendIOProcess::~CNetParameterSendIOProcess() = default;

void CNetParameterSendIOProcess::InitParam() try {
    if (m_lstParamGroup.IsEmpty()) {
        return;
    }
    const VEKParamGroup& group = *m_lstParamGroup.GetHead();
    ParamList& lstParam = m_lstParamGroup.GetHead()->m_lstParam;
    const auto find = [&group](unsigned nId) { return FindParam(&group, MakeParamGuid(nId)); };

    VEKParam* pVersion = find(PARAM_VERSION);
    const int nVersion = pVersion != nullptr ? pVersion->m_nValue : 0;
    if (nVersion < VERSION_WITH_LAYER && find(INPUT_LAYER) == nullptr) {
        auto pLayer = MakeInput(Added(LAYER_ROW, m_nLayer));
        lstParam.InsertAfter(FindPosition(group, INPUT_CLIP_NAME), pLayer.get());
        static_cast<void>(pLayer.release());
    }
    if (nVersion < VERSION_WITH_TO_DEV && find(INPUT_TO_DEV) == nullptr) {
        auto pNewToDev = MakeInput(Added(TO_DEV_ROW, 0));
        lstParam.InsertBefore(FindPosition(group, INPUT_CLIP_NAME), pNewToDev.get());
        static_cast<void>(pNewToDev.release());
    }
    VEKParam* pToDev = find(INPUT_TO_DEV);
    if (nVersion < VERSION_WITH_HIDDEN_DEVICE && pToDev != nullptr) {
        OfferDeviceInputs(*this, DEVICE_INPUTS, pToDev->m_nValue, {&m_strDevID, &m_strDevName});
    }
    if (nVersion < VERSION_WITH_TO_DEV_FIRST && pToDev != nullptr && pVersion != nullptr) {
        const POSITION posBefore = lstParam.Find(pToDev);
        lstParam.InsertAfter(lstParam.Find(pVersion), pToDev);
        lstParam.RemoveAt(posBefore); // at last: the parameter is in the list at any time
    }
    if (VEKParam* pLayer = find(INPUT_LAYER)) {
        FillChoicesOnce(pLayer, FillLayerLabels);
        pLayer->m_nValue = std::min(pLayer->m_nValue, LAYER_CHOICE_COUNT - 1);
    }
    if (pVersion != nullptr) {
        pVersion->m_nValue = VERSION_CURRENT;
    }
} catch (...) {
    RejectFailure();
}

int CNetParameterSendIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    if (pGraphNode == nullptr || m_pOwnerClip == nullptr) {
        return 0;
    }
    ReadInputs(*pGraphNode);
    const VEKParam* pToDev = FindInput(*this, *pGraphNode, INPUT_TO_DEV);
    if (pToDev == nullptr) {
        return 0;
    }
    if (!IsTriggered(*pGraphNode, INPUT_SEND)) {
        return 1;
    }
    const VEKParam* pDevID = FindInput(*this, *pGraphNode, INPUT_DEV_ID);
    if (pDevID == nullptr || (pToDev->m_nValue != 0 && pDevID->m_strValue.IsEmpty())) {
        WriteNodeLog(LOG_ERROR, *this, *pGraphNode, L"[%s.%s.%s]找不到网络播放控制设备ID");
    } else if (pToDev->m_nValue != 0) {
        SendToOne(*pGraphNode, pDevID->m_strValue);
    } else {
        SendToAll(*pGraphNode);
    }
    return 1;
} catch (const NoRecord&) {
    throw;
} catch (...) {
    return RejectFailure();
}

int CNetParameterSendIOProcess::DevIOEventOccurred(const SIOEventRecord* /*pRecord*/) {
    return 1;
}

void CNetParameterSendIOProcess::ReadInputs(SGraphNode& graphNode) {
    const auto readText = [this, &graphNode](unsigned nId, CString& strMember) {
        if (const VEKParam* pParam = FindInput(*this, graphNode, nId)) {
            AssignIfDifferent(strMember, pParam->m_strValue);
        }
    };
    const auto readNumber = [this, &graphNode](unsigned nId, int& nMember) {
        if (const VEKParam* pParam = FindInput(*this, graphNode, nId)) {
            nMember = pParam->m_nValue;
        }
    };
    readText(INPUT_DEV_ID, m_strDevID);
    readText(INPUT_DEV_NAME, m_strDevName);
    FollowToDev(*this, graphNode, DEVICE_INPUTS, m_bToDev, {&m_strDevID, &m_strDevName});
    readText(INPUT_CLIP_NAME, m_strClipName);
    readText(INPUT_GROUP_NAME, m_strGroupName);
    readText(INPUT_KEY_NAME, m_strKeyName);
    readNumber(INPUT_KEY_NUMBER, m_nKeyNumber);
    readText(INPUT_KEY_VALUE, m_strKeyValue);
    readText(INPUT_HELP_PARAMETER, m_strHelpParameter);
    readNumber(INPUT_LAYER, m_nLayer);
}

void CNetParameterSendIOProcess::SendToAll(const SGraphNode& graphNode) const {
    const NetPlayCtrlDevArray* pDevices = G_GetArNetPlayCtrlDev();
    if (pDevices == nullptr || pDevices->IsEmpty()) {
        WriteNodeLog(LOG_ERROR, *this, graphNode, L"[%s.%s.%s]找不到网络播放控制设备");
        return;
    }
    WriteNodeLog(LOG_INFORMATION, *this, graphNode, L"[%s.%s.%s]触发事件");
    const int nCount = static_cast<int>(pDevices->GetSize());
    for (int i = 0; i < nCount; ++i) {
        Send(pDevices->GetAt(i));
    }
}

void CNetParameterSendIOProcess::SendToOne(const SGraphNode& graphNode, const CString& strDevID) const {
    // Text that isn't a number reads as 0, and device 0 may exist.
    const SQORNetPlayCtrlDev* pDevice = G_FindNetPlayCtrlDevByID(_wtoi(strDevID));
    if (pDevice == nullptr) {
        WriteNodeLog(LOG_ERROR, *this, graphNode, L"[%s.%s.%s]找不到网络播放控制设备");
        return;
    }
    WriteNodeLog(LOG_INFORMATION, *this, graphNode, L"[%s.%s.%s]触发事件");
    Send(pDevice);
}

void CNetParameterSendIOProcess::Send(const SQORNetPlayCtrlDev* pDevice) const {
    if (pDevice == nullptr) {
        return;
    }
    auto pRecord = MakeRecord();
    pRecord->m_strDevID = QORIntToStr(pDevice->m_nId);
    pRecord->m_strDevName = pDevice->m_strName;
    pRecord->m_strClipName = m_strClipName;
    pRecord->m_strGroupName = m_strGroupName;
    pRecord->m_strKeyName = m_strKeyName;
    pRecord->m_nKeyNumber = m_nKeyNumber;
    pRecord->m_strHelpParameter = m_strHelpParameter;
    pRecord->m_strKeyValue = m_strKeyValue;
    pRecord->m_nLayer = LayerNumberOfChoice(m_nLayer);

    CQORNetItemPlayCtlProtocol protocol;
    protocol.m_nCommandCode = COMMAND_REMOTE_CONTROL;
    protocol.m_pAttachedData = pRecord.release();
    protocol.m_pClip = m_pOwnerClip;
    pDevice->m_pSocket->SendInfo(&protocol);
}

CVEKXml* CNetParameterSendIOProcess::GetXmlReader() {
    return s_layout.Reader();
}

int* CNetParameterSendIOProcess::GetXmlLoadStatePtr() {
    return s_layout.LoadState();
}

CString CNetParameterSendIOProcess::GetCtrlPosXmlPath() {
    return ParamLayoutPath(L"CVEKIONetParameterSend.XML");
}

NodeParamInfoGrpArray* CNetParameterSendIOProcess::GetNodeParamInfoGrpAr() {
    return s_layout.Groups(*this);
}

void CNetParameterSendIOProcess::ReleaseLayout() {
    s_layout.Release();
}
