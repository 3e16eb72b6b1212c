// Net parameter send node: sends one remote-control record to one or all of the host's play-control devices.
#pragma once

#include "nodes/shared/NodeType.h"

class CNetParameterSendIOProcess
    : public CIOProcessNode<CNetParameterSendIOProcess, CNodeWithLayout<CNetParameterSendIOProcess>> {
public:
    void InitParam() override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

    static const NodeType TYPE;

private:
    void ReadInputs(SGraphNode& graphNode);
    void Send(SQORNetPlayCtrlDev* pDevice);

    // The inputs as last read by ProcessNode.
    CString m_strClipName;
    CString m_strGroupName;
    CString m_strKeyName;
    int m_nKeyNumber = 0;
    CString m_strKeyValue;
    CString m_strHelpParameter;
    int m_nLayer = 1; ///< index of the choice
    int m_bToDev = 0; ///< off, though the parameter starts on: the first evaluation then sets up the panel
};
