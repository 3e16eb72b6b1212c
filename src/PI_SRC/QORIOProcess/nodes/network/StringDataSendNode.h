// String data send node: writes a text as bytes to one or all of the host's play-control devices.
#pragma once

#include "nodes/shared/NodeType.h"

class CStringDataSendIOProcess : public CIOProcessNode<CStringDataSendIOProcess> {
public:
    void InitParam() override;
    BOOL NeedUpdateSingleParam(const GUID& guid) override;
    int UpdateSingleParamValue(const GUID& guid) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

    static const NodeType TYPE;

private:
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
    int m_bToDev = 0;                   ///< "ToDev" as the panel was last told
};
