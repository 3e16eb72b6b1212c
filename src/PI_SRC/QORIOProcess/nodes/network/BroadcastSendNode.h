// Broadcast send node: sends its four texts as one datagram to every host of the network.
#pragma once

#include "nodes/shared/HostMembers.h"

#include <winsock2.h>

class CBroadcastIOProcess : public P_ExtDevIOProcess {
public:
    CBroadcastIOProcess();

    int ProcessNode(SGraphNode* pGraphNode) override;

private:
    void OpenSocket();
    CString MakeText() const;
    void Send(const CString& strText) const;

    // The inputs as last read by ProcessNode.
    CString m_strFlag;
    CString m_strClipName;
    CString m_strName;
    CString m_strData;

    int m_nPort = 0; ///< as configured; the low 16 bits count
    SOCKET m_hSocket = INVALID_SOCKET;
    sockaddr_in m_addrDestination = {}; ///< stays unset without a socket
};
