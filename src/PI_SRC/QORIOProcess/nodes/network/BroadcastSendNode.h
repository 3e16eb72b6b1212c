// Broadcast send node: sends its four texts as one datagram to every host of the network.
#pragma once

#include <memory>

#include "nodes/shared/NodeType.h"

#include <winsock2.h>

class CBroadcastIOProcess : public CIOProcessNode<CBroadcastIOProcess> {
public:
    CBroadcastIOProcess();

    int ProcessNode(SGraphNode* pGraphNode) override;

    static const NodeType TYPE;

private:
    void OpenSocket();
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

    // Kept between sends: making them anew would take 9 more allocations each time.
    CStringArray m_arPiece;
    CString m_strText;
    int m_nBufferSize = 0;
    std::unique_ptr<char[]> m_pBuffer;
};
