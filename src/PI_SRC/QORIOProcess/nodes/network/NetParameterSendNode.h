// Net parameter send node: sends one remote-control record to one or all of the host's play-control devices.
#pragma once

#include "host/HostNetwork.h"

class CNetParameterSendIOProcess : public P_ExtDevIOProcess {
public:
    CNetParameterSendIOProcess();
    ~CNetParameterSendIOProcess() override;

    void InitParam() override;
    /// Raises a std::bad_alloc when there is no memory for a record; those before it have been sent.
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(const SIOEventRecord* pRecord) override;

    CVEKXml* GetXmlReader() override;
    int* GetXmlLoadStatePtr() override;
    CString GetCtrlPosXmlPath() override;
    NodeParamInfoGrpArray* GetNodeParamInfoGrpAr() override;

    /// Empty the class's control layout; it is read again when asked for.
    static void ReleaseLayout();

private:
    void ReadInputs(SGraphNode& graphNode);
    void SendToAll(const SGraphNode& graphNode) const;
    void SendToOne(const SGraphNode& graphNode, const CString& strDevID) const;
    void Send(const SQORNetPlayCtrlDev* pDevice) const;

    // The inputs as last read by ProcessNode.
    CString m_strDevID;
    CString m_strDevName;
    CString m_strClipName;
    CString m_strGroupName;
    CString m_strKeyName;
    int m_nKeyNumber = 0;
    CString m_strKeyValue;
    CString m_strHelpParameter;
    int m_nLayer = 1; ///< index of the choice
    int m_bToDev = 0; ///< off, though the parameter starts on: the first evaluation then sets up the panel
};
