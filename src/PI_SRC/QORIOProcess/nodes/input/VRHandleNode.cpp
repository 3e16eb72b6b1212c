#include "nodes/input/VRHandleNode.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "host/HostCommon.h"
#include "host/NodeSupport.h"
#include "host/NodeTables.h"
#include "host/NodeTypeGuid.h"
#include "nodes/input/TouchPad.h"

namespace {

// The text keys spell "VRHANLDE"; the host's text tables and saved projects do too.
enum : unsigned {
    INPUT_GROUP = 801,
    INPUT_OBJECT_NAME = 802,
    INPUT_HANDLE_TYPE = 803,

    OUTPUT_POSITION_GROUP = 851,
    OUTPUT_POSITION_X = 852,
    OUTPUT_POSITION_Y = 853,
    OUTPUT_POSITION_Z = 854,

    OUTPUT_HIT_GROUP = 856,
    OUTPUT_HIT_X = 857,
    OUTPUT_HIT_Y = 858,
    OUTPUT_HIT_Z = 859,

    OUTPUT_EVENT_GROUP = 861,
    OUTPUT_TRIGGER_DOWN = 862,
    OUTPUT_TRIGGER_UP = 863,
    OUTPUT_TRIGGER_CLICK = 864,
    OUTPUT_TOUCH_PAD_DOWN = 865,
    OUTPUT_TOUCH_PAD_UP = 866,
    OUTPUT_TOUCH_PAD_CENTER_CLICK = 867,
    OUTPUT_TOUCH_PAD_LEFT_CLICK = 868,
    OUTPUT_TOUCH_PAD_RIGHT_CLICK = 869,
    OUTPUT_TOUCH_PAD_TOP_CLICK = 870,
    OUTPUT_TOUCH_PAD_BOTTOM_CLICK = 871,
};

constexpr int VERSION_WITH_HIT_POSITION = 2;

/// A trigger released within this time of its press was clicked; milliseconds.
constexpr unsigned CLICK_TIME = 500;

void FillHandleTypes(CStringArray& arChoice) {
    arChoice.Add(PXLoadString(L"IO_PROCESS_VRHANLDE_HANDLE_LEFT"));
    arChoice.Add(PXLoadString(L"IO_PROCESS_VRHANLDE_HANDLE_RIGHT"));
}

constexpr ParamRow INPUTS[] = {
    VersionRow(VERSION_WITH_HIT_POSITION),
    ENABLE_ROW,
    StringRow(INPUT_OBJECT_NAME, L"ObjectName", L"IO_PROCESS_VRHANLDE_OBJECT"),
    {.nId = INPUT_HANDLE_TYPE,
     .pszName = L"HandleType",
     .pszDisplayKey = L"IO_PROCESS_VRHANLDE_SELECTHANDLE",
     .codes = PARAM_CHOICE,
     .flags = FLAGS_ORDINARY,
     .nValue = 0,
     .pFillChoices = FillHandleTypes},
};

constexpr GroupRow INPUT_GROUP_ROW{
    .nId = INPUT_GROUP, .pszName = L"Base param", .pszDisplayKey = L"IO_PROCESS_VRHANLDE", .params = INPUTS};

constexpr ParamRow CoordinateRow(unsigned nId, const wchar_t* pszName, const wchar_t* pszDisplayKey) {
    return {.nId = nId,
            .pszName = pszName,
            .pszDisplayKey = pszDisplayKey,
            .codes = PARAM_FLOAT,
            .range = ParamRange{0, -1e9f, 1e9f, 1},
            .flags = FLAGS_ORDINARY};
}

constexpr ParamRow POSITION_OUTPUTS[] = {
    CoordinateRow(OUTPUT_POSITION_X, L"PosX", L"IO_PROCESS_VRHANLDE_POSX"),
    CoordinateRow(OUTPUT_POSITION_Y, L"PosY", L"IO_PROCESS_VRHANLDE_POSY"),
    CoordinateRow(OUTPUT_POSITION_Z, L"PosZ", L"IO_PROCESS_VRHANLDE_POSZ"),
};

constexpr ParamRow HIT_OUTPUTS[] = {
    CoordinateRow(OUTPUT_HIT_X, L"HitPosX", L"IO_PROCESS_VRHANLDE_HITPOSX"),
    CoordinateRow(OUTPUT_HIT_Y, L"HitPosY", L"IO_PROCESS_VRHANLDE_HITPOSY"),
    CoordinateRow(OUTPUT_HIT_Z, L"HitPosZ", L"IO_PROCESS_VRHANLDE_HITPOSZ"),
};

constexpr ParamRow EVENT_OUTPUTS[] = {
    EventRow(OUTPUT_TRIGGER_DOWN, L"TriggerDown", L"IO_PROCESS_VRHANLDE_TRIGGER_DOWN"),
    EventRow(OUTPUT_TRIGGER_UP, L"TriggerUp", L"IO_PROCESS_VRHANLDE_TRIGGER_UP"),
    EventRow(OUTPUT_TRIGGER_CLICK, L"TriggerClick", L"IO_PROCESS_VRHANLDE_TRIGGER_CLICK"),
    EventRow(OUTPUT_TOUCH_PAD_DOWN, L"TouchPadDown", L"IO_PROCESS_VRHANLDE_TOUCHPAD_DOWN"),
    EventRow(OUTPUT_TOUCH_PAD_UP, L"TouchPadUp", L"IO_PROCESS_VRHANLDE_TOUCHPAD_UP"),
    EventRow(OUTPUT_TOUCH_PAD_CENTER_CLICK, L"TouchPadCenterClick", L"IO_PROCESS_VRHANLDE_TOUCHPAD_CENTER_CLICK"),
    EventRow(OUTPUT_TOUCH_PAD_LEFT_CLICK, L"TouchPadLeftClick", L"IO_PROCESS_VRHANLDE_TOUCHPAD_LEFT_CLICK"),
    EventRow(OUTPUT_TOUCH_PAD_RIGHT_CLICK, L"TouchPadRightClick", L"IO_PROCESS_VRHANLDE_TOUCHPAD_RIGHT_CLICK"),
    EventRow(OUTPUT_TOUCH_PAD_TOP_CLICK, L"TouchPadTopClick", L"IO_PROCESS_VRHANLDE_TOUCHPAD_TOP_CLICK"),
    EventRow(OUTPUT_TOUCH_PAD_BOTTOM_CLICK, L"TouchPadBottomClick", L"IO_PROCESS_VRHANLDE_TOUCHPAD_BOTTOM_CLICK"),
};

constexpr GroupRow HIT_GROUP_ROW{.nId = OUTPUT_HIT_GROUP,
                                 .pszName = L"HitPos",
                                 .pszDisplayKey = L"IO_PROCESS_VRHANLDE_HITPOS",
                                 .params = HIT_OUTPUTS};

constexpr GroupRow OUTPUT_GROUPS[] = {
    {.nId = OUTPUT_POSITION_GROUP,
     .pszName = L"OutputParam",
     .pszDisplayKey = L"IO_PROCESS_VRHANLDE",
     .params = POSITION_OUTPUTS},
    HIT_GROUP_ROW,
    {.nId = OUTPUT_EVENT_GROUP,
     .pszName = L"OutputEvent",
     .pszDisplayKey = L"TOUCH_CONTROL_EVENT_OUTPUT",
     .params = EVENT_OUTPUTS},
};

/// Output of a touch-pad zone; 0 for none.
unsigned ZoneOutput(TouchPadZone nZone) {
    switch (nZone) {
    case TouchPadZone::Center:
        return OUTPUT_TOUCH_PAD_CENTER_CLICK;
    case TouchPadZone::Left:
        return OUTPUT_TOUCH_PAD_LEFT_CLICK;
    case TouchPadZone::Right:
        return OUTPUT_TOUCH_PAD_RIGHT_CLICK;
    case TouchPadZone::Top:
        return OUTPUT_TOUCH_PAD_TOP_CLICK;
    case TouchPadZone::Bottom:
        return OUTPUT_TOUCH_PAD_BOTTOM_CLICK;
    case TouchPadZone::None:
        break;
    }
    return 0;
}

/// The outputs that one sample fires, in order: at most two of the trigger and two of the touch-pad.
class FiredOutputs {
public:
    void Add(unsigned nOutput) { m_outputs[m_nCount++] = nOutput; }
    const unsigned* begin() const { return m_outputs.data(); }
    const unsigned* end() const { return m_outputs.data() + m_nCount; }

private:
    std::array<unsigned, 4> m_outputs = {};
    size_t m_nCount = 0;
};

FiredOutputs CompareSamples(const SVRPluginData& previous, const SVRPluginData& sample) {
    FiredOutputs fired;
    if (sample.m_bTriggerPressed != 0 && previous.m_bTriggerPressed == 0) {
        fired.Add(OUTPUT_TRIGGER_DOWN);
    } else if (sample.m_bTriggerPressed == 0 && previous.m_bTriggerPressed != 0) {
        fired.Add(OUTPUT_TRIGGER_UP);
        // The times wrap; a release before the press is then very far from it.
        if (sample.m_nReleaseTime - sample.m_nPressTime < CLICK_TIME) {
            fired.Add(OUTPUT_TRIGGER_CLICK);
        }
    }
    if (sample.m_bTouchPadPressed != 0 && previous.m_bTouchPadPressed == 0) {
        fired.Add(OUTPUT_TOUCH_PAD_DOWN);
    } else if (sample.m_bTouchPadPressed == 0 && previous.m_bTouchPadPressed != 0) {
        fired.Add(OUTPUT_TOUCH_PAD_UP);
        if (const unsigned nClick = ZoneOutput(ClassifyTouchPad(sample.m_fTouchPadX, sample.m_fTouchPadY))) {
            fired.Add(nClick);
        }
    }
    return fired;
}

/// The position of the group in the list; null if absent.
POSITION FindGroupPosition(const VEKParamGroupList& lstGroup, unsigned nId) {
    for (POSITION pos = lstGroup.GetHeadPosition(); pos != nullptr;) {
        const POSITION posGroup = pos;
        if (IsEqualGUID(lstGroup.GetNext(pos)->m_guid, MakeParamGuid(nId))) {
            return posGroup;
        }
    }
    return nullptr;
}

CParamLayout s_layout;

} // namespace

CVRHandleIOProcess::CVRHandleIOProcess() {
    m_nKindCode = KIND_IO_PROCESS;
    m_guidType = GUID_IOPROCESS_VR_HANDLE;
    AppendInputGroup(m_lstParamGroup, INPUT_GROUP_ROW);
}

CVRHandleIOProcess::~CVRHandleIOProcess() = default;

void CVRHandleIOProcess::InitParam() try {
    if (m_lstParamGroup.IsEmpty()) {
        AfxThrowInvalidArgException();
    }
    FillChoicesOnce(FindParam(m_lstParamGroup, MakeParamGuid(INPUT_HANDLE_TYPE)), FillHandleTypes);
    if (VEKParam* pVersion = FindParam(m_lstParamGroup, MakeParamGuid(PARAM_VERSION))) {
        pVersion->m_nValue = VERSION_WITH_HIT_POSITION;
    }
} catch (...) {
    RejectFailure();
}

void CVRHandleIOProcess::GetNodeOutput(SGraphNode* pGraphNode) try {
    if (pGraphNode == nullptr) {
        return;
    }
    VEKParamGroupList& lstOutputGroup = pGraphNode->m_lstOutputGroup;
    if (lstOutputGroup.IsEmpty()) {
        AppendOutputGroupsOnce(pGraphNode, OUTPUT_GROUPS);
        return;
    }
    const VEKParam* pVersion = FindParam(m_lstParamGroup, MakeParamGuid(PARAM_VERSION));
    if (pVersion == nullptr || pVersion->m_nValue < VERSION_WITH_HIT_POSITION ||
        FindGroupPosition(lstOutputGroup, OUTPUT_HIT_GROUP) != nullptr) {
        return;
    }
    if (const POSITION posPosition = FindGroupPosition(lstOutputGroup, OUTPUT_POSITION_GROUP)) {
        auto pHitGroup = MakeOutputGroup(HIT_GROUP_ROW);
        lstOutputGroup.InsertAfter(posPosition, pHitGroup.get());
        static_cast<void>(pHitGroup.release());
    }
} catch (...) {
    RejectFailure();
}

int CVRHandleIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    m_pGraphNode = pGraphNode;
    if (pGraphNode == nullptr) {
        return 0;
    }
    const VEKParam* pEnable = FindInput(*this, *pGraphNode, PARAM_ENABLE);
    if (pEnable == nullptr) {
        return 0;
    }
    m_bEnable = pEnable->m_nValue;
    if (m_bEnable == 0) {
        return 0;
    }
    const VEKParam* pObjectName = FindInput(*this, *pGraphNode, INPUT_OBJECT_NAME);
    if (pObjectName == nullptr) {
        return 0;
    }
    AssignIfDifferent(m_strObjectName, pObjectName->m_strValue);
    const VEKParam* pHandleType = FindInput(*this, *pGraphNode, INPUT_HANDLE_TYPE);
    if (pHandleType == nullptr) {
        return 0;
    }
    if (pHandleType->m_nValue != m_nHandleType) {
        // The other hand starts with everything released.
        m_nHandleType = pHandleType->m_nValue;
        m_previousSample.clear();
        m_previousSample.m_bTouchPadPressed = 0;
        m_previousSample.m_fTouchPadX = 0.0f;
    }
    return 1;
} catch (...) {
    return RejectFailure();
}

int CVRHandleIOProcess::DevIOEventOccurred(const SIOEventRecord* pRecord) try {
    if (m_pOwnerClip == nullptr || m_bEnable == 0 || m_pGraphNode == nullptr) {
        return 0;
    }
    if (pRecord == nullptr) {
        return RejectNullRecord(*this, *m_pGraphNode);
    }
    if (pRecord->m_nDevice != DEVICE_VR_HANDLE) {
        return 0;
    }
    if (pRecord->m_pPayload == nullptr) {
        WriteNodeLog(LOG_ERROR, *this, *m_pGraphNode, L"没有VR手柄数据");
        return 0;
    }
    const auto& sample = *static_cast<const SVRPluginData*>(pRecord->m_pPayload);
    if (sample.m_nHand != m_nHandleType) {
        return 0;
    }
    MoveObject(sample);
    WriteOutputs(sample);
    const FiredOutputs fired = CompareSamples(m_previousSample, sample);
    for (const unsigned nOutput : fired) {
        FireGeneralEvent(this, static_cast<int>(nOutput));
    }
    m_previousSample = sample; // at last: what couldn't be fired is fired with the next sample
    return 1;
} catch (...) {
    return RejectFailure();
}

void CVRHandleIOProcess::MoveObject(const SVRPluginData& sample) const {
    if (m_strObjectName.IsEmpty()) {
        return; // an object without name is nobody's
    }
    if (VEKObject* pObject = m_pOwnerClip->FindObject(m_strObjectName, 0)) {
        std::copy(std::begin(sample.m_fPose), std::end(sample.m_fPose), pObject->m_fMatrix);
    }
}

void CVRHandleIOProcess::WriteOutputs(const SVRPluginData& sample) const {
    const std::pair<unsigned, float> values[] = {
        {OUTPUT_POSITION_X, sample.m_fPose[12]},  {OUTPUT_POSITION_Y, sample.m_fPose[13]},
        {OUTPUT_POSITION_Z, sample.m_fPose[14]},  {OUTPUT_HIT_X, sample.m_fHitPosition[0]},
        {OUTPUT_HIT_Y, sample.m_fHitPosition[1]}, {OUTPUT_HIT_Z, sample.m_fHitPosition[2]},
    };
    for (const auto& [nOutput, fValue] : values) {
        if (VEKParam* pOutput = FindOutput(*m_pGraphNode, nOutput)) {
            pOutput->m_fValue = fValue; // as it is, the sign of a zero included
        }
    }
}

CVEKXml* CVRHandleIOProcess::GetXmlReader() {
    return s_layout.Reader();
}

int* CVRHandleIOProcess::GetXmlLoadStatePtr() {
    return s_layout.LoadState();
}

CString CVRHandleIOProcess::GetCtrlPosXmlPath() {
    return ParamLayoutPath(L"CVEKIOVRHandle.XML");
}

NodeParamInfoGrpArray* CVRHandleIOProcess::GetNodeParamInfoGrpAr() {
    return s_layout.Groups(*this);
}

void CVRHandleIOProcess::ReleaseLayout() {
    s_layout.Release();
}
