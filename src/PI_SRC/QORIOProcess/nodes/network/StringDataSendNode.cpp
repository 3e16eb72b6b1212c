#include "nodes/network/StringDataSendNode.h"

#include <iterator>
#include <vector>

#include "host/NodeTypeGuid.h"
#include "nodes/network/DeviceInputs.h"
#include "nodes/shared/NodeSupport.h"
#include "nodes/shared/SharedRows.h"

namespace {

enum { INPUT_TO_DEV = 1502, INPUT_DEV_ID = 1503, INPUT_DEV_NAME = 1504 };
enum { INPUT_STRING_DATA = 1505, INPUT_CODE_TYPE = 1506, INPUT_SEND = 1507 };

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
    ToDevRow(INPUT_TO_DEV),
    IntegerRow(INPUT_DEV_ID, L"DevID", L"IO_PROCESS_NETSEND_DEVID", {0, 0, 1000, 1}, 0),
    StringRow(INPUT_DEV_NAME, TEXT_DEV_NAME),
    StringRow(INPUT_STRING_DATA, L"StringData", L"IO_PROCESS_STRING_DATA"),
    // The maximum is 5, although there are two choices.
    ChoiceRow(INPUT_CODE_TYPE, L"CodeType", L"IO_PROCESS_STRING_CODE_TYPE", ParamRange{0, 0, 5, 1}, FLAGS_NONE, 0,
              FillCodeTypes),
    SendRow(INPUT_SEND),
};

/// Send to a device that takes bytes as they are; any other is left alone.
void Send(SQORNetPlayCtrlDev* pDevice, const CString& strText, int nCodeType) {
    if (pDevice == nullptr || DYNAMIC_DOWNCAST(CZTDirectParser, ParserOf(SocketOf(*pDevice))) == nullptr ||
        nCodeType < 0 || nCodeType >= static_cast<int>(std::size(CODE_TYPES))) {
        return;
    }
    const CodeTypeRow& codeType = CODE_TYPES[nCodeType];
    const int nLength = WideCharToMultiByte(codeType.nCodePage, 0, strText, -1, nullptr, 0, nullptr, nullptr);
    const size_t nZero = static_cast<size_t>(nLength) + codeType.nZeroBehind;
    std::vector<unsigned char> bytes(nZero + 1);
    WideCharToMultiByte(codeType.nCodePage, 0, strText, -1, reinterpret_cast<char*>(bytes.data()), nLength, nullptr,
                        nullptr);
    bytes[nZero] = 0;
    SocketOf(*pDevice).SendInfo(bytes.data(), nLength);
}

} // namespace

const NodeType CStringDataSendIOProcess::TYPE{GUID_IOPROCESS_STRING_DATA_SEND,
                                              {1501, L"Base param", L"IO_PROCESS_STRING_SEND", INPUTS}};

void CStringDataSendIOProcess::InitParam() try {
    FillChoicesOnce(FindOwn(*this, INPUT_CODE_TYPE), FillCodeTypes);
} catch (...) {
    EndException();
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
    return EndException();
}

int CStringDataSendIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    m_pGraphNode = pGraphNode;
    if (pGraphNode == nullptr || ClipOf(*this) == nullptr) {
        return 0;
    }
    const auto [pText, pCodeType, pToDev, pDevID] =
        FindInputs(*this, *pGraphNode, INPUT_STRING_DATA, INPUT_CODE_TYPE, INPUT_TO_DEV, INPUT_DEV_ID);
    VEKParam* pSend = FindTrigger(*pGraphNode, INPUT_SEND);
    if (pText == nullptr || pCodeType == nullptr || pToDev == nullptr || pDevID == nullptr || pSend == nullptr) {
        return 0;
    }
    if (IntegerOf(*pSend) == 0) {
        return 1;
    }
    WriteNodeLog(LEVEL_INFORMATION, *this, *pGraphNode, L"[%s.%s.%s]触发发送事件");
    if (IntegerOf(*pToDev) != 0) {
        SQORNetPlayCtrlDev* pDevice = G_FindNetPlayCtrlDevByID(IntegerOf(*pDevID));
        if (pDevice == nullptr) {
            WriteNodeLog(LEVEL_ERROR, *this, *pGraphNode, L"[%s.%s.%s]找不到网络播放控制设备");
            return 1;
        }
        Send(pDevice, TextOf(*pText), IntegerOf(*pCodeType));
    } else if (const auto* pDevices = G_GetArNetPlayCtrlDev()) {
        const int nCount = static_cast<int>(pDevices->GetSize());
        for (int i = 0; i < nCount; ++i) {
            Send(pDevices->GetAt(i), TextOf(*pText), IntegerOf(*pCodeType));
        }
    }
    return 1;
} catch (...) {
    return EndException();
}

int CStringDataSendIOProcess::DevIOEventOccurred(EventRecordPtr /*pRecord*/) {
    return 1;
}
