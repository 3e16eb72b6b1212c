#include "nodes/network/StringDataSendNode.h"

#include <iterator>
#include <new>

#include "host/NodeSupport.h"
#include "host/NodeTables.h"
#include "host/NodeTypeGuid.h"
#include "nodes/network/NetworkNodes.h"

namespace {

enum : unsigned {
    INPUT_GROUP = 1501,
    INPUT_TO_DEV = 1502,
    INPUT_DEV_ID = 1503,
    INPUT_DEV_NAME = 1504,
    INPUT_STRING_DATA = 1505,
    INPUT_CODE_TYPE = 1506,
    INPUT_SEND = 1507,
};

constexpr DeviceInputs DEVICE_INPUTS{INPUT_TO_DEV, INPUT_DEV_ID, INPUT_DEV_NAME};

/// One choice of "CodeType". The labels don't describe the conversions; projects and operators know them like this.
struct CodeTypeRow {
    const wchar_t* pszLabel;
    UINT nCodePage;
    size_t nZeroBehind; ///< where the buffer's closing zero stands, counted from behind the converted bytes
};

constexpr CodeTypeRow CODE_TYPES[] = {
    {L"unicode", CP_ACP, 1}, // one further than with the other
    {L"multi-byte", CP_UTF8, 0},
};

void FillCodeTypes(CStringArray& arChoice) {
    for (const CodeTypeRow& row : CODE_TYPES) {
        arChoice.Add(row.pszLabel);
    }
}

constexpr ParamRow INPUTS[] = {
    VersionRow(1),
    {.nId = INPUT_TO_DEV,
     .pszName = L"ToDev",
     .pszDisplayKey = L"TOUCH_NETSEND_TODEV",
     .codes = PARAM_SWITCH,
     .range = RANGE_SWITCH,
     .flags = FLAGS_NONE,
     .nValue = 1},
    {.nId = INPUT_DEV_ID,
     .pszName = L"DevID",
     .pszDisplayKey = L"IO_PROCESS_NETSEND_DEVID",
     .codes = PARAM_INTEGER,
     .range = ParamRange{0, 0, 1000, 1},
     .flags = FLAGS_ORDINARY,
     .nValue = 0},
    StringRow(INPUT_DEV_NAME, L"DevName", L"IO_PROCESS_NETSEND_DEVNAME"),
    StringRow(INPUT_STRING_DATA, L"StringData", L"IO_PROCESS_STRING_DATA"),
    {.nId = INPUT_CODE_TYPE,
     .pszName = L"CodeType",
     .pszDisplayKey = L"IO_PROCESS_STRING_CODE_TYPE",
     .codes = PARAM_CHOICE,
     .range = ParamRange{0, 0, 5, 1}, // more than there are choices
     .flags = FLAGS_NONE,
     .nValue = 0,
     .pFillChoices = FillCodeTypes},
    EventRow(INPUT_SEND, L"Send", L"IO_PROCESS_NETSEND_SEND"),
};

constexpr GroupRow INPUT_GROUP_ROW{
    .nId = INPUT_GROUP, .pszName = L"Base param", .pszDisplayKey = L"IO_PROCESS_STRING_SEND", .params = INPUTS};

} // namespace

CStringDataSendIOProcess::CStringDataSendIOProcess() {
    m_nKindCode = KIND_IO_PROCESS;
    m_guidType = GUID_IOPROCESS_STRING_DATA_SEND;
    AppendInputGroup(m_lstParamGroup, INPUT_GROUP_ROW);
}

CStringDataSendIOProcess::~CStringDataSendIOProcess() = default;

void CStringDataSendIOProcess::InitParam() try {
    FillChoicesOnce(FindParam(m_lstParamGroup, MakeParamGuid(INPUT_CODE_TYPE)), FillCodeTypes);
} catch (...) {
    RejectFailure();
}

BOOL CStringDataSendIOProcess::NeedUpdateSingleParam(const GUID& guid) {
    return IsEqualGUID(guid, MakeParamGuid(INPUT_TO_DEV)) ? TRUE : FALSE;
}

int CStringDataSendIOProcess::UpdateSingleParamValue(const GUID& guid) try {
    if (m_pGraphNode == nullptr || !NeedUpdateSingleParam(guid)) {
        return 0;
    }
    FollowToDev(*this, *m_pGraphNode, DEVICE_INPUTS, m_bToDev);
    return 1;
} catch (...) {
    return RejectFailure();
}

int CStringDataSendIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    m_pGraphNode = pGraphNode;
    if (pGraphNode == nullptr || m_pOwnerClip == nullptr) {
        return 0;
    }
    const VEKParam* pText = FindInput(*this, *pGraphNode, INPUT_STRING_DATA);
    const VEKParam* pCodeType = FindInput(*this, *pGraphNode, INPUT_CODE_TYPE);
    const VEKParam* pToDev = FindInput(*this, *pGraphNode, INPUT_TO_DEV);
    const VEKParam* pDevID = FindInput(*this, *pGraphNode, INPUT_DEV_ID);
    const VEKParam* pSend = FindParam(pGraphNode->m_lstInputGroup, MakeParamGuid(INPUT_SEND));
    if (pText == nullptr || pCodeType == nullptr || pToDev == nullptr || pDevID == nullptr || pSend == nullptr) {
        return 0;
    }
    if (pSend->m_nValue == 0) {
        return 1;
    }
    WriteNodeLog(LOG_INFORMATION, *this, *pGraphNode, L"[%s.%s.%s]触发发送事件");
    if (pToDev->m_nValue != 0) {
        const SQORNetPlayCtrlDev* pDevice = G_FindNetPlayCtrlDevByID(pDevID->m_nValue);
        if (pDevice == nullptr) {
            WriteNodeLog(LOG_ERROR, *this, *pGraphNode, L"[%s.%s.%s]找不到网络播放控制设备");
        }
        Send(pDevice, pText->m_strValue, pCodeType->m_nValue);
    } else if (const NetPlayCtrlDevArray* pDevices = G_GetArNetPlayCtrlDev()) {
        const int nCount = static_cast<int>(pDevices->GetSize());
        for (int i = 0; i < nCount; ++i) {
            Send(pDevices->GetAt(i), pText->m_strValue, pCodeType->m_nValue);
        }
    }
    return 1;
} catch (...) {
    return RejectFailure();
}

int CStringDataSendIOProcess::DevIOEventOccurred(const SIOEventRecord* /*pRecord*/) {
    return 1;
}

/// Send to a device that takes bytes as they are; any other is left alone.
void CStringDataSendIOProcess::Send(const SQORNetPlayCtrlDev* pDevice, const CString& strText, int nCodeType) {
    if (pDevice == nullptr || DYNAMIC_DOWNCAST(CZTDirectParser, pDevice->m_pSocket->GetParser()) == nullptr) {
        return;
    }
    if (nCodeType < 0 || nCodeType >= static_cast<int>(std::size(CODE_TYPES))) {
        return;
    }
    const CodeTypeRow& codeType = CODE_TYPES[nCodeType];
    const int nLength = WideCharToMultiByte(codeType.nCodePage, 0, strText, -1, nullptr, 0, nullptr, nullptr);
    const size_t nZero = static_cast<size_t>(nLength) + codeType.nZeroBehind;
    if (nZero >= m_nBufferSize) {
        m_pBuffer.reset(new (std::nothrow) unsigned char[nZero + 1]);
        m_nBufferSize = m_pBuffer != nullptr ? nZero + 1 : 0;
    }
    if (m_pBuffer == nullptr) {
        return;
    }
    WideCharToMultiByte(codeType.nCodePage, 0, strText, -1, reinterpret_cast<char*>(m_pBuffer.get()), nLength, nullptr,
                        nullptr);
    m_pBuffer[nZero] = 0;
    pDevice->m_pSocket->SendInfo(m_pBuffer.get(), nLength);
}
