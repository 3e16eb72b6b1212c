// Broadcast send node: sends its four texts as one datagram to every host of the network.
#pragma once

#include <afxwin.h>
#include <winsock2.h>

#include <memory>

#include "host/HostNetwork.h"

class CBroadcastIOProcess : public P_ExtDevIOProcess {
public:
    CBroadcastIOProcess();
    ~CBroadcastIOProcess() override;

    int ProcessNode(SGraphNode* pGraphNode) override;

private:
    void OpenSocket();
    void ReadInputs(const SGraphNode& graphNode);
    bool MakeText();
    void SendText();

    // The inputs as last read by ProcessNode.
    CString m_strFlag;
    CString m_strClipName;
    CString m_strName;
    CString m_strData;

    int m_nPort = 0; ///< as configured; the low 16 bits count
    SOCKET m_hSocket = INVALID_SOCKET;
    sockaddr_in m_addrDestination = {}; ///< stays unset without a socket

    // Kept from one send to the next, so that a steady sender allocates nothing for them.
    CStringArray m_arPiece;
    CString m_strText;
    int m_nBufferSize = 0;
    std::unique_ptr<char[]> m_pBuffer;
};
