// Mouse node: fires an output for each pointer event of the render window and offers button states and position.
#pragma once

#include "host/EventRecord.h"

class CMouseIOProcess : public P_ExtDevIOProcess {
public:
    CMouseIOProcess();
    ~CMouseIOProcess() override;

    void GetNodeOutput(SGraphNode* pGraphNode) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(const SIOEventRecord* pRecord) override;

    CVEKXml* GetXmlReader() override;
    int* GetXmlLoadStatePtr() override;
    CString GetCtrlPosXmlPath() override;
    NodeParamInfoGrpArray* GetNodeParamInfoGrpAr() override;

    /// Empty the class's control layout; it is read again when asked for.
    static void ReleaseLayout();

private:
    struct PointerEventRow;
    static const PointerEventRow POINTER_EVENTS[];

    int m_bEnable = 0;                  ///< "Enable" as last read by ProcessNode
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
    int m_bButtonLeft = 0;              ///< left button held
    int m_bButtonRight = 0;             ///< right button held
    int m_bButtonMiddle = 0;            ///< middle button held
    SQORMouseData m_mouseData;          ///< last pointer sample received
};
