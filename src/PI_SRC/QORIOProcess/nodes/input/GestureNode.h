// Touch gesture node: follows one pointer from press to release and fires a tap, a drag or a swipe.
#pragma once

#include <afxtempl.h>
#include <gdiplus.h>

#include "nodes/input/StrokeRecogniser.h"
#include "nodes/shared/NodeType.h"

class CGestureIOProcess : public COutputNode<CGestureIOProcess, CNodeWithLayout<CGestureIOProcess>> {
public:
    void InitParam() override;
    void GetNodeOutput(SGraphNode* pGraphNode) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

    static const NodeType TYPE;

private:
    int Press(const SQORMouseData& sample);
    int Move(const SQORMouseData& sample);
    int Release(const SQORMouseData& sample);
    void Append(const SQORMouseData& sample);

    int m_bEnable = 0;                         ///< "Enable" as last read by ProcessNode
    SGraphNode* m_pGraphNode = nullptr;        ///< graph node last handed to ProcessNode; not owned
    CArray<CPoint> m_arPixelPoint;             ///< pixel samples of the stroke
    CArray<Gdiplus::PointF> m_arRelativePoint; ///< relative samples of the stroke
    int m_bMoving = 0;                         ///< "StartMove" was fired for the stroke
    int m_nActivePointer = NO_POINTER;         ///< pointer that is followed

    static constexpr int NO_POINTER = -1;
};
