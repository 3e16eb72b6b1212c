#include "nodes/input/GestureNode.h"

#include <array>

#include "host/NodeSupport.h"
#include "host/NodeTables.h"
#include "host/NodeTypeGuid.h"

namespace {

enum : unsigned {
    INPUT_GROUP = 701,

    OUTPUT_GROUP = 751,
    OUTPUT_START_MOVE = 752,
    OUTPUT_END_MOVE = 753,
    OUTPUT_SWIPE_LEFT = 754,
    OUTPUT_SWIPE_RIGHT = 755,
    OUTPUT_SWIPE_UP = 756,
    OUTPUT_SWIPE_DOWN = 757,
    OUTPUT_SINGLE_TAP = 758,
};

constexpr int VERSION_CURRENT = 3;
constexpr int VERSION_WITH_SINGLE_TAP = 2;

constexpr ParamRow INPUTS[] = {
    VersionRow(VERSION_CURRENT),
    // Another control than the "Enable" of most nodes, and on by its range rather than by a value of its own.
    {.nId = PARAM_ENABLE,
     .pszName = L"Enable",
     .pszDisplayKey = L"TOUCH_CONTROL_ENABLED",
     .codes = PARAM_SWITCH_BOX,
     .range = ParamRange{1, 0, 1, 1},
     .flags = FLAGS_ORDINARY},
};

constexpr GroupRow INPUT_GROUP_ROW{
    .nId = INPUT_GROUP, .pszName = L"Base param", .pszDisplayKey = L"TOUCH_CONTROL_TOUCH_GESTURE", .params = INPUTS};

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

constexpr GroupRow OUTPUT_GROUPS[] = {
    {.nId = OUTPUT_GROUP, .pszName = L"Outputs", .pszDisplayKey = L"TOUCH_CONTROL_OUTPUTS", .params = OUTPUTS},
};

struct FiredRow {
    unsigned nOutput;
    const wchar_t* pszLogFormat;
};

constexpr FiredRow FIRED[] = {
    {OUTPUT_SINGLE_TAP, L"[%s.%s.%s]触发输出事件[单击]"},      {OUTPUT_START_MOVE, L"[%s.%s.%s]触发输出事件[开始拖动]"},
    {OUTPUT_END_MOVE, L"[%s.%s.%s]触发输出事件[结束拖动]"},    {OUTPUT_SWIPE_LEFT, L"[%s.%s.%s]触发输出事件[向左滑动]"},
    {OUTPUT_SWIPE_RIGHT, L"[%s.%s.%s]触发输出事件[向右滑动]"}, {OUTPUT_SWIPE_UP, L"[%s.%s.%s]触发输出事件[向上滑动]"},
    {OUTPUT_SWIPE_DOWN, L"[%s.%s.%s]触发输出事件[向下滑动]"},
};

/// Output of a direction, by EGestureType.
constexpr unsigned SWIPE_OUTPUT[] = {OUTPUT_SWIPE_LEFT, OUTPUT_SWIPE_RIGHT, OUTPUT_SWIPE_UP, OUTPUT_SWIPE_DOWN};

/// First, middle and last sample of a stroke of at least one sample.
template <typename Point>
std::array<Point, 3> KeyPoints(const CArray<Point>& arPoint) {
    const INT_PTR nCount = arPoint.GetSize();
    return {arPoint[0], arPoint[nCount / 2], arPoint[nCount - 1]};
}

/// Append a sample. The framework lets an array grow by 1024 elements at most, which would copy all of them ever more
/// often while a release fails to come; a long stroke grows by half of its length.
template <typename Point>
void AddSample(CArray<Point>& arPoint, const Point& point) {
    constexpr INT_PTR LONG_STROKE = 8192; // samples
    if (arPoint.GetSize() >= LONG_STROKE) {
        arPoint.SetSize(arPoint.GetSize(), arPoint.GetSize() / 2);
    }
    arPoint.Add(point);
}

/// Free all samples; the next stroke grows from the start again.
template <typename Point>
void RemoveSamples(CArray<Point>& arPoint) {
    arPoint.SetSize(0, 0);
}

EGestureType ClassifyStroke(const CArray<CPoint>& arPoint) {
    return ClassifyPixelStroke(KeyPoints(arPoint));
}

EGestureType ClassifyStroke(const CArray<Gdiplus::PointF>& arPoint) {
    const auto points = KeyPoints(arPoint);
    // A middle point that equals the last one is left out; pixel strokes keep theirs.
    const bool bEqual = points[1].X == points[2].X && points[1].Y == points[2].Y;
    return ClassifyRelativeStroke(std::span(points).first(bEqual ? 2 : 3));
}

CParamLayout s_layout;

} // namespace

CGestureIOProcess::CGestureIOProcess() {
    m_nKindCode = KIND_IO_PROCESS;
    m_guidType = GUID_IOPROCESS_GESTURE;
    AppendInputGroup(m_lstParamGroup, INPUT_GROUP_ROW);
}

CGestureIOProcess::~CGestureIOProcess() = default;

void CGestureIOProcess::InitParam() try {
    VEKParam* pVersion = FindParam(m_lstParamGroup, MakeParamGuid(PARAM_VERSION));
    const int nVersion = pVersion != nullptr ? pVersion->m_nValue : 0;
    if (nVersion < VERSION_CURRENT) {
        if (VEKParam* pEnable = FindParam(m_lstParamGroup.GetHead(), MakeParamGuid(PARAM_ENABLE))) {
            pEnable->m_bAvailable = 1;
        }
    }
    if (pVersion != nullptr) {
        pVersion->m_nValue = VERSION_CURRENT;
    }
} catch (...) {
    RejectFailure();
}

void CGestureIOProcess::GetNodeOutput(SGraphNode* pGraphNode) try {
    if (pGraphNode == nullptr) {
        return;
    }
    if (pGraphNode->m_lstOutputGroup.IsEmpty()) {
        AppendOutputGroupsOnce(pGraphNode, OUTPUT_GROUPS);
        return;
    }
    const VEKParam* pVersion = FindParam(m_lstParamGroup, MakeParamGuid(PARAM_VERSION));
    if (pVersion != nullptr && pVersion->m_nValue >= VERSION_WITH_SINGLE_TAP &&
        FindOutput(*pGraphNode, OUTPUT_SINGLE_TAP) == nullptr) {
        VEKParamGroup* pGroup = pGraphNode->m_lstOutputGroup.GetHead();
        if (pGroup == nullptr) {
            AfxThrowInvalidArgException();
        }
        auto pSingleTap = MakeOutput(SINGLE_TAP_ROW);
        pGroup->m_lstParam.AddTail(pSingleTap.get());
        static_cast<void>(pSingleTap.release());
    }
} catch (...) {
    RejectFailure();
}

int CGestureIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    m_pGraphNode = pGraphNode;
    if (pGraphNode == nullptr) {
        return 0;
    }
    const VEKParam* pEnable = FindInput(*this, *pGraphNode, PARAM_ENABLE);
    if (pEnable == nullptr) {
        return 0;
    }
    m_bEnable = pEnable->m_nValue;
    return m_bEnable != 0 ? 1 : 0;
} catch (...) {
    return RejectFailure();
}

int CGestureIOProcess::DevIOEventOccurred(const SIOEventRecord* pRecord) try {
    if (m_pOwnerClip == nullptr || m_pGraphNode == nullptr) {
        return 0;
    }
    if (pRecord == nullptr) {
        return RejectNullRecord(*this, *m_pGraphNode);
    }
    if (pRecord->m_nDevice != DEVICE_POINTER || m_bEnable == 0 || pRecord->m_pPayload == nullptr) {
        return 0;
    }
    const auto& sample = *static_cast<const SQORMouseData*>(pRecord->m_pPayload);
    switch (pRecord->m_nEvent) {
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
    return RejectFailure();
}

int CGestureIOProcess::Press(const SQORMouseData& sample) {
    if (m_nActivePointer != NO_POINTER) {
        return 0;
    }
    if (sample.m_bRelative != 0) {
        RemoveSamples(m_arRelativePoint);
    } else {
        RemoveSamples(m_arPixelPoint);
    }
    Append(sample);
    m_nActivePointer = sample.m_nPointer; // once the stroke has its first sample
    m_bMoving = 0;
    return 1;
}

int CGestureIOProcess::Move(const SQORMouseData& sample) {
    if (sample.m_nPointer != m_nActivePointer) {
        return 0;
    }
    if (m_arPixelPoint.IsEmpty() && m_arRelativePoint.IsEmpty()) {
        return 1;
    }
    Append(sample);
    const bool bFarEnough =
        sample.m_bRelative != 0 ? HasStartedMoving(m_arRelativePoint) : HasStartedMoving(m_arPixelPoint);
    if (bFarEnough && m_bMoving == 0) {
        Fire(OUTPUT_START_MOVE);
        m_bMoving = 1;
    }
    return 1;
}

int CGestureIOProcess::Release(const SQORMouseData& sample) {
    if (sample.m_nPointer != m_nActivePointer) {
        return 0;
    }
    try {
        Append(sample);
        FireReleased(sample);
    } catch (...) {
        EndStroke(); // in any case: no other release would come
        throw;
    }
    EndStroke();
    return 1;
}

void CGestureIOProcess::EndStroke() {
    RemoveSamples(m_arPixelPoint);
    RemoveSamples(m_arRelativePoint);
    m_bMoving = 0;
    m_nActivePointer = NO_POINTER;
}

void CGestureIOProcess::Append(const SQORMouseData& sample) {
    if (sample.m_bRelative != 0) {
        AddSample(m_arRelativePoint, Gdiplus::PointF(sample.m_fRelativeX, sample.m_fRelativeY));
    } else {
        AddSample(m_arPixelPoint, sample.m_ptPixel);
    }
}

/// Fire what the stroke was. Its samples of the other kind than the last one's don't count.
void CGestureIOProcess::FireReleased(const SQORMouseData& sample) {
    const bool bRelative = sample.m_bRelative != 0;
    if (m_bMoving == 0) {
        Fire(OUTPUT_SINGLE_TAP);
        return;
    }
    if ((bRelative ? m_arRelativePoint.GetSize() : m_arPixelPoint.GetSize()) < 3) {
        return;
    }
    Fire(OUTPUT_END_MOVE);
    const EGestureType nDirection = bRelative ? ClassifyStroke(m_arRelativePoint) : ClassifyStroke(m_arPixelPoint);
    if (nDirection != GESTURE_NONE) {
        Fire(SWIPE_OUTPUT[nDirection]);
    }
}

void CGestureIOProcess::Fire(unsigned nOutput) {
    for (const FiredRow& row : FIRED) {
        if (row.nOutput == nOutput) {
            WriteNodeLog(LOG_INFORMATION, *this, *m_pGraphNode, row.pszLogFormat);
        }
    }
    FireGeneralEvent(this, static_cast<int>(nOutput));
}

CVEKXml* CGestureIOProcess::GetXmlReader() {
    return s_layout.Reader();
}

int* CGestureIOProcess::GetXmlLoadStatePtr() {
    return s_layout.LoadState();
}

CString CGestureIOProcess::GetCtrlPosXmlPath() {
    return ParamLayoutPath(L"CVEKIOGesture.XML");
}

NodeParamInfoGrpArray* CGestureIOProcess::GetNodeParamInfoGrpAr() {
    return s_layout.Groups(*this);
}

void CGestureIOProcess::ReleaseLayout() {
    s_layout.Release();
}
