#include "nodes/network/BroadcastSendNode.h"

#include <cstring>
#include <new>
#include <utility>

#include "host/HostCommon.h"
#include "host/NodeSupport.h"
#include "host/NodeTables.h"
#include "host/NodeTypeGuid.h"

namespace {

enum : unsigned {
    INPUT_GROUP = 601,
    INPUT_FLAG = 602,
    INPUT_CLIP_NAME = 603,
    INPUT_NAME = 604,
    INPUT_DATA = 605,
    INPUT_SEND = 606,
};

constexpr ParamRow INPUTS[] = {
    VersionRow(1),
    StringRow(INPUT_FLAG, L"Flag", L"IO_PROCESS_BROADCAST_FLAG"),
    StringRow(INPUT_CLIP_NAME, L"ClipName", L"IO_PROCESS_NETSEND_CLIPNAME"),
    StringRow(INPUT_NAME, L"Name", L"IO_PROCESS_BROADCAST_NAME"),
    StringRow(INPUT_DATA, L"Data", L"IO_PROCESS_BROADCAST_VALUE"),
    EventRow(INPUT_SEND, L"Send", L"IO_PROCESS_NETSEND_SEND"),
};

constexpr GroupRow INPUT_GROUP_ROW{
    .nId = INPUT_GROUP, .pszName = L"Base param", .pszDisplayKey = L"IO_PROCESS_BROADCAST", .params = INPUTS};

const CString DATA_SEPARATOR = L"|";

int ReadBroadcastPort() {
    const CString strPath = PXGetPath(PATH_CONFIG) + L"\\PortConfig.ini";
    return static_cast<int>(GetPrivateProfileIntW(L"iFable", L"BroadcastPort", 0, strPath));
}

} // namespace

CBroadcastIOProcess::CBroadcastIOProcess() {
    m_nKindCode = KIND_IO_PROCESS;
    m_guidType = GUID_IOPROCESS_BROADCAST_SEND;
    AppendInputGroup(m_lstParamGroup, INPUT_GROUP_ROW);
    OpenSocket();
}

/// The socket stays open and Windows Sockets started: both belong to the process until it ends.
CBroadcastIOProcess::~CBroadcastIOProcess() = default;

int CBroadcastIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    if (pGraphNode == nullptr || m_pOwnerClip == nullptr) {
        return 0;
    }
    ReadInputs(*pGraphNode);
    if (IsTriggered(*pGraphNode, INPUT_SEND) && MakeText()) {
        SendText();
    }
    return 1;
} catch (...) {
    return RejectFailure();
}

/// The host has started Windows Sockets by now; a process where it hasn't gets no socket, and nothing is started.
void CBroadcastIOProcess::OpenSocket() {
    m_nPort = ReadBroadcastPort();
    m_hSocket = socket(AF_INET, SOCK_DGRAM, 0);
    if (m_hSocket == INVALID_SOCKET) {
        return;
    }
    WSADATA data;
    WSAStartup(0x0202, &data);
    const int bBroadcast = 1;
    setsockopt(m_hSocket, SOL_SOCKET, SO_BROADCAST, reinterpret_cast<const char*>(&bBroadcast), sizeof(bBroadcast));
    m_addrDestination.sin_family = AF_INET;
    m_addrDestination.sin_addr.s_addr = INADDR_BROADCAST; // all ones in either byte order
    m_addrDestination.sin_port = htons(static_cast<unsigned short>(m_nPort));
}

void CBroadcastIOProcess::ReadInputs(const SGraphNode& graphNode) {
    const std::pair<unsigned, CString*> inputs[] = {{INPUT_FLAG, &m_strFlag},
                                                    {INPUT_CLIP_NAME, &m_strClipName},
                                                    {INPUT_NAME, &m_strName},
                                                    {INPUT_DATA, &m_strData}};
    for (const auto& [nId, pMember] : inputs) {
        if (const VEKParam* pParam = FindInput(*this, graphNode, nId)) {
            AssignIfDifferent(*pMember, pParam->m_strValue);
        }
    }
}

/// Make the text of the datagram; false when there is no data to send. The data goes out as one text: its pieces only
/// decide whether there is any.
bool CBroadcastIOProcess::MakeText() {
    if (m_strData.IsEmpty() || SplitString(m_strData, DATA_SEPARATOR, m_arPiece, SPLIT_KEEP_EMPTY) == 0) {
        return false;
    }
    CMarkup markup;
    markup.AddElem(L"Broadcast");
    markup.SetAttrib(L"Flag", m_strFlag);
    markup.SetAttrib(L"ClipName", m_strClipName);
    markup.SetAttrib(L"Name", m_strName);
    markup.SetAttrib(L"Data", m_strData);
    m_strText = L"[.{";
    m_strText += markup.GetDoc();
    m_strText += L"}.]";
    return true;
}

/// Send the text in the system's code page with its terminating zero. What fails, fails silently.
void CBroadcastIOProcess::SendText() {
    const int nLength = WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, m_strText, -1, nullptr, 0, nullptr, nullptr);
    if (nLength > m_nBufferSize) {
        m_pBuffer.reset(new (std::nothrow) char[static_cast<size_t>(nLength)]);
        m_nBufferSize = m_pBuffer != nullptr ? nLength : 0;
    }
    if (m_pBuffer != nullptr) {
        std::memset(m_pBuffer.get(), 0, static_cast<size_t>(nLength));
        WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, m_strText, -1, m_pBuffer.get(), nLength, nullptr, nullptr);
    }
    sendto(m_hSocket, m_pBuffer.get(), nLength, 0, reinterpret_cast<const sockaddr*>(&m_addrDestination),
           sizeof(m_addrDestination));
}
