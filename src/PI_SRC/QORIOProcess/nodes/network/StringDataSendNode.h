// String data send node: writes a text as bytes to one or all of the host's play-control devices.
#pragma once

#include <memory>

#include "host/HostNetwork.h"

class CStringDataSendIOProcess : public P_ExtDevIOProcess {
public:
    CStringDataSendIOProcess();
    ~CStringDataSendIOProcess() override;

    void InitParam() override;
    BOOL NeedUpdateSingleParam(const GUID& guid) override;
    int UpdateSingleParamValue(const GUID& guid) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(const SIOEventRecord* pRecord) override;

private:
    void Send(const SQORNetPlayCtrlDev* pDevice, const CString& strText, int nCodeType);

    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
    int m_bToDev = 0;                   ///< "ToDev" as the panel was last told

    // Kept from one send to the next, so that a steady sender allocates nothing.
    size_t m_nBufferSize = 0;
    std::unique_ptr<unsigned char[]> m_pBuffer;
};
