#include "nodes/network/BroadcastSendNode.h"

#include <algorithm>
#include <new>

#include "host/NodeTypeGuid.h"
#include "nodes/shared/NodeSupport.h"
#include "nodes/shared/SharedRows.h"

namespace {

enum { INPUT_FLAG = 602, INPUT_CLIP_NAME = 603, INPUT_NAME = 604, INPUT_DATA = 605, INPUT_SEND = 606 };

constexpr ParamRow INPUTS[] = {
    VersionRow(1),
    StringRow(INPUT_FLAG, TEXT_FLAG),
    StringRow(INPUT_CLIP_NAME, TEXT_CLIP_NAME),
    StringRow(INPUT_NAME, TEXT_BROADCAST_NAME),
    StringRow(INPUT_DATA, TEXT_BROADCAST_DATA),
    SendRow(INPUT_SEND),
};

const CString DATA_SEPARATOR = L"|";

int ReadBroadcastPort() {
    const CString strPath = ConfigFolder() + L"\\PortConfig.ini";
    return static_cast<int>(GetPrivateProfileIntW(L"iFable", L"BroadcastPort", 0, strPath));
}

} // namespace

const NodeType CBroadcastIOProcess::TYPE{GUID_IOPROCESS_BROADCAST_SEND,
                                         {601, L"Base param", L"IO_PROCESS_BROADCAST", INPUTS}};

CBroadcastIOProcess::CBroadcastIOProcess() {
    OpenSocket();
}

int CBroadcastIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    if (pGraphNode == nullptr || ClipOf(*this) == nullptr) {
        return 0;
    }
    ReadText(*this, *pGraphNode, INPUT_FLAG, m_strFlag);
    ReadText(*this, *pGraphNode, INPUT_CLIP_NAME, m_strClipName);
    ReadText(*this, *pGraphNode, INPUT_NAME, m_strName);
    ReadText(*this, *pGraphNode, INPUT_DATA, m_strData);
    if (IsTriggered(*pGraphNode, INPUT_SEND) && MakeText()) {
        SendText();
    }
    return 1;
} catch (...) {
    return EndException();
}

/// socket() comes before WSAStartup, since the host has started Windows Sockets by now. Where it hasn't, the node gets
/// no socket and starts nothing. Nothing is ever closed: socket and Windows Sockets belong to the process.
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

/// Make the text of the datagram; false when there is no data to send. The data goes out as one text: its pieces only
/// decide whether there is any.
bool CBroadcastIOProcess::MakeText() {
    if (m_strData.IsEmpty()) {
        return false;
    }
    SplitString(m_strData, DATA_SEPARATOR, m_arPiece, SPLIT_KEEP_EMPTY);
    if (m_arPiece.IsEmpty()) {
        return false;
    }
    CMarkup markup;
    markup.AddElem(L"Broadcast");
    markup.SetAttrib(L"Flag", m_strFlag);
    markup.SetAttrib(L"ClipName", m_strClipName);
    markup.SetAttrib(L"Name", m_strName);
    markup.SetAttrib(L"Data", m_strData);
    m_strText = L"[.{";
    m_strText += TextOf(markup);
    m_strText += L"}.]";
    return true;
}

/// Send the text in the system's code page with its terminating zero. What fails, fails silently.
void CBroadcastIOProcess::SendText() {
    constexpr int SHORTEST_BUFFER = 10; // bytes
    const int nLength = WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, m_strText, -1, nullptr, 0, nullptr, nullptr);
    const int nSize = std::max(nLength, SHORTEST_BUFFER);
    if (nSize > m_nBufferSize) {
        m_pBuffer.reset(new (std::nothrow) char[static_cast<size_t>(nSize)]);
        m_nBufferSize = m_pBuffer != nullptr ? nSize : 0;
    }
    if (m_pBuffer != nullptr) {
        std::fill_n(m_pBuffer.get(), nSize, '\0');
        WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, m_strText, -1, m_pBuffer.get(), nLength, nullptr, nullptr);
    }
    sendto(m_hSocket, m_pBuffer.get(), nLength, 0, reinterpret_cast<const sockaddr*>(&m_addrDestination),
           sizeof(m_addrDestination));
}
