// Mouse node: fires an output for each pointer event of the render window and offers button states and position.
#pragma once

#include "nodes/shared/NodeType.h"

class CMouseIOProcess : public COutputNode<CMouseIOProcess, CNodeWithLayout<CMouseIOProcess>> {
public:
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

    static const NodeType TYPE;

private:
    int m_bEnable = 0;                                         ///< "Enable" as last read by ProcessNode
    SGraphNode* m_pGraphNode = nullptr;                        ///< graph node last handed to ProcessNode; not owned
    int m_bButtonLeft = 0;                                     ///< left button held
    int m_bButtonRight = 0;                                    ///< right button held
    int m_bButtonMiddle = 0;                                   ///< middle button held
    SQORMouseData m_mouseData{0, 0.0f, 0.0f, CPoint(0, 0), 0}; ///< last pointer sample received
};
