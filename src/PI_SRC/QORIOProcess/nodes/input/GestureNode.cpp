#include "nodes/input/GestureNode.h"

#include <array>

#include "host/NodeTypeGuid.h"
#include "nodes/shared/NodeSupport.h"
#include "nodes/shared/SharedRows.h"

namespace {

enum { OUTPUT_START_MOVE = 752, OUTPUT_END_MOVE = 753, OUTPUT_SINGLE_TAP = 758 };
enum { OUTPUT_SWIPE_LEFT = 754, OUTPUT_SWIPE_RIGHT = 755, OUTPUT_SWIPE_UP = 756, OUTPUT_SWIPE_DOWN = 757 };

constexpr int VERSION_WITH_SINGLE_TAP = 2;
constexpr int VERSION_CURRENT = 3;

constexpr ParamRow INPUTS[] = {
    VersionRow(VERSION_CURRENT),
    // Another control than other nodes' "Enable"; its default comes from the range.
    {PARAM_ENABLE, L"Enable", L"TOUCH_CONTROL_ENABLED", PARAM_SWITCH_BOX, ParamRange{1, 0, 1, 1}, FLAGS_ORDINARY},
};

constexpr ParamRow SINGLE_TAP_ROW = EventRow(OUTPUT_SINGLE_TAP, L"SingleTap", L"TOUCH_CONTROL_EVENT_SINGLETAP");

constexpr ParamRow OUTPUTS[] = {
    SINGLE_TAP_ROW,
    EventRow(OUTPUT_START_MOVE, L"StartMove", L"TOUCH_CONTROL_EVENT_BEGIN"),
    EventRow(OUTPUT_END_MOVE, L"EndMove", L"TOUCH_CONTROL_EVENT_END"),
    EventRow(OUTPUT_SWIPE_LEFT, L"SwipeLeft", L"TOUCH_CONTROL_EVENT_SWIPELEFT"),
    EventRow(OUTPUT_SWIPE_RIGHT, L"SwipeRight", L"TOUCH_CONTROL_EVENT_SWIPERIGHT"),
    EventRow(OUTPUT_SWIPE_UP, L"SwipeUp", L"TOUCH_CONTROL_EVENT_SWIPETOP"),
    EventRow(OUTPUT_SWIPE_DOWN, L"SwipeDown", L"TOUCH_CONTROL_EVENT_SWIPEDOWN"),
};

constexpr GroupRow OUTPUT_GROUPS[] = {{751, L"Outputs", L"TOUCH_CONTROL_OUTPUTS", OUTPUTS}};

constexpr FiredRow START_MOVE{EVENT_POINTER_SAMPLE, OUTPUT_START_MOVE, L"[%s.%s.%s]触发输出事件[开始拖动]"};
constexpr FiredRow END_MOVE{EVENT_LEFT_UP, OUTPUT_END_MOVE, L"[%s.%s.%s]触发输出事件[结束拖动]"};
constexpr FiredRow SINGLE_TAP{EVENT_LEFT_UP, OUTPUT_SINGLE_TAP, L"[%s.%s.%s]触发输出事件[单击]"};

constexpr FiredRow SWIPES[] = {
    {GESTURE_LEFT, OUTPUT_SWIPE_LEFT, L"[%s.%s.%s]触发输出事件[向左滑动]"},
    {GESTURE_RIGHT, OUTPUT_SWIPE_RIGHT, L"[%s.%s.%s]触发输出事件[向右滑动]"},
    {GESTURE_UP, OUTPUT_SWIPE_UP, L"[%s.%s.%s]触发输出事件[向上滑动]"},
    {GESTURE_DOWN, OUTPUT_SWIPE_DOWN, L"[%s.%s.%s]触发输出事件[向下滑动]"},
};

/// First, middle and last sample of a stroke of at least one sample.
template <typename Point>
std::array<Point, 3> KeyPoints(const CArray<Point>& arPoint) {
    const INT_PTR nCount = arPoint.GetSize();
    return {arPoint[0], arPoint[nCount / 2], arPoint[nCount - 1]};
}

EGestureType Classify(const CArray<CPoint>& arPoint) {
    return ClassifyPixelStroke(KeyPoints(arPoint));
}

EGestureType Classify(const CArray<Gdiplus::PointF>& arPoint) {
    const auto points = KeyPoints(arPoint);
    // A middle point that equals the last one is left out; pixel strokes keep theirs.
    const bool bEqual = points[1].X == points[2].X && points[1].Y == points[2].Y;
    return ClassifyRelativeStroke(std::span(points).first(bEqual ? 2 : 3));
}

CControlLayout s_layout(1, L"CVEKIOGesture.XML");

} // namespace

const NodeType CGestureIOProcess::TYPE{
    GUID_IOPROCESS_GESTURE, {701, L"Base param", L"TOUCH_CONTROL_TOUCH_GESTURE", INPUTS}, OUTPUT_GROUPS, &s_layout};

void CGestureIOProcess::InitParam() try {
    VEKParam* pVersion = FindOwn(*this, PARAM_VERSION);
    if (pVersion == nullptr || IntegerOf(*pVersion) < VERSION_CURRENT) {
        if (VEKParam* pEnable = FindParam(GroupsOf(*this).GetHead(), MakeParamGuid(PARAM_ENABLE))) {
            AvailabilityOf(*pEnable) = 1;
        }
    }
    if (pVersion != nullptr) {
        IntegerOf(*pVersion) = VERSION_CURRENT;
    }
} catch (...) {
    EndException();
}

void CGestureIOProcess::GetNodeOutput(SGraphNode* pGraphNode) try {
    if (pGraphNode == nullptr || OutputsOf(*pGraphNode).IsEmpty()) {
        COutputNode::GetNodeOutput(pGraphNode);
        return;
    }
    VEKParam* pVersion = FindOwn(*this, PARAM_VERSION);
    if (pVersion == nullptr || IntegerOf(*pVersion) < VERSION_WITH_SINGLE_TAP ||
        FindOutput(*pGraphNode, OUTPUT_SINGLE_TAP) != nullptr) {
        return;
    }
    VEKParamGroup* pGroup = OutputsOf(*pGraphNode).GetHead();
    if (pGroup == nullptr) {
        AfxThrowInvalidArgException();
    }
    AppendOwned(ParamsOf(*pGroup), MakeOutput(SINGLE_TAP_ROW));
} catch (...) {
    EndException();
}

int CGestureIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    m_pGraphNode = pGraphNode;
    return pGraphNode != nullptr && ReadEnable(*this, *pGraphNode, m_bEnable) ? 1 : 0;
} catch (...) {
    return EndException();
}

int CGestureIOProcess::DevIOEventOccurred(EventRecordPtr pRecord) try {
    if (!CheckRecord(pRecord, *this, m_pGraphNode) || DeviceOf(*pRecord) != DEVICE_POINTER || m_bEnable == 0 ||
        PayloadOf(*pRecord) == nullptr) {
        return 0;
    }
    const auto& sample = *static_cast<const SQORMouseData*>(PayloadOf(*pRecord));
    switch (EventOf(*pRecord)) {
    case EVENT_LEFT_DOWN:
        return Press(sample);
    case EVENT_POINTER_SAMPLE:
        return Move(sample);
    case EVENT_LEFT_UP:
        return Release(sample);
    default:
        return 1;
    }
} catch (...) {
    return EndException();
}

int CGestureIOProcess::Press(const SQORMouseData& sample) {
    if (m_nActivePointer != NO_POINTER) {
        return 0;
    }
    m_nActivePointer = PointerOf(sample);
    m_bMoving = 0;
    if (IsRelative(sample)) {
        m_arRelativePoint.RemoveAll();
    } else {
        m_arPixelPoint.RemoveAll();
    }
    Append(sample);
    return 1;
}

int CGestureIOProcess::Move(const SQORMouseData& sample) {
    if (PointerOf(sample) != m_nActivePointer) {
        return 0;
    }
    if (m_arPixelPoint.IsEmpty() && m_arRelativePoint.IsEmpty()) {
        return 1;
    }
    Append(sample);
    if (m_bMoving != 0) {
        return 1;
    }
    const bool bStarted = IsRelative(sample)
                              ? HasStartedMoving(m_arRelativePoint[0], {RelativeXOf(sample), RelativeYOf(sample)})
                              : HasStartedMoving(m_arPixelPoint[0], PixelOf(sample));
    if (bStarted) {
        m_bMoving = 1;
        LogAndFire(*this, *m_pGraphNode, START_MOVE);
    }
    return 1;
}

/// Only samples of the release's own kind decide what the stroke was. It has ended before anything fires.
int CGestureIOProcess::Release(const SQORMouseData& sample) {
    if (PointerOf(sample) != m_nActivePointer) {
        return 0;
    }
    const bool bMoved = m_bMoving != 0;
    m_bMoving = 0;
    m_nActivePointer = NO_POINTER;
    Append(sample);
    const bool bDrag = bMoved && (IsRelative(sample) ? m_arRelativePoint.GetSize() : m_arPixelPoint.GetSize()) >= 3;
    const EGestureType nDirection = IsRelative(sample) ? Classify(m_arRelativePoint) : Classify(m_arPixelPoint);
    m_arPixelPoint.RemoveAll();
    m_arRelativePoint.RemoveAll();
    if (!bMoved) {
        LogAndFire(*this, *m_pGraphNode, SINGLE_TAP);
    } else if (bDrag) {
        LogAndFire(*this, *m_pGraphNode, END_MOVE);
        if (const FiredRow* pSwipe = FindFired(SWIPES, nDirection)) {
            LogAndFire(*this, *m_pGraphNode, *pSwipe);
        }
    }
    return 1;
}

void CGestureIOProcess::Append(const SQORMouseData& sample) {
    if (IsRelative(sample)) {
        m_arRelativePoint.Add(Gdiplus::PointF(RelativeXOf(sample), RelativeYOf(sample)));
    } else {
        m_arPixelPoint.Add(PixelOf(sample));
    }
}
