// Mouse node: fires an output for each pointer event of the render window and offers button states and position.
#pragma once

#include "nodes/shared/ControlLayout.h"

class CMouseIOProcess : public P_ExtDevIOProcess {
    DECLARE_CONTROL_LAYOUT()
public:
    CMouseIOProcess();

    void GetNodeOutput(SGraphNode* pGraphNode) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

private:
    int m_bEnable = 0;                  ///< "Enable" as last read by ProcessNode
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
    int m_bButtonLeft = 0;              ///< left button held
    int m_bButtonRight = 0;             ///< right button held
    int m_bButtonMiddle = 0;            ///< middle button held
    SQORMouseData m_mouseData;          ///< last pointer sample received
};
