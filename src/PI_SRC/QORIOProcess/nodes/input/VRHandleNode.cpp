#include "nodes/input/VRHandleNode.h"

#include <algorithm>
#include <cmath>

#include "host/NodeTypeGuid.h"
#include "nodes/shared/NodeSupport.h"
#include "nodes/shared/SharedRows.h"

namespace {

enum { INPUT_OBJECT_NAME = 802, INPUT_HANDLE_TYPE = 803 };
enum { OUTPUT_POSITION_GROUP = 851, OUTPUT_POSITION_X = 852, OUTPUT_POSITION_Y = 853, OUTPUT_POSITION_Z = 854 };
enum { OUTPUT_HIT_GROUP = 856, OUTPUT_HIT_X = 857, OUTPUT_HIT_Y = 858, OUTPUT_HIT_Z = 859 };
enum { OUTPUT_TRIGGER_DOWN = 862, OUTPUT_TRIGGER_UP = 863, OUTPUT_TRIGGER_CLICK = 864 };
enum { OUTPUT_TOUCH_PAD_DOWN = 865, OUTPUT_TOUCH_PAD_UP = 866 };
enum { CLICK_NONE = 0, CLICK_CENTER = 867, CLICK_LEFT = 868, CLICK_RIGHT = 869, CLICK_TOP = 870, CLICK_BOTTOM = 871 };

constexpr int VERSION_WITH_HIT_POSITION = 2;

/// A trigger released within this time of its press was clicked; milliseconds.
constexpr unsigned CLICK_TIME = 500;

void FillHandleTypes(CStringArray& arChoice) {
    arChoice.Add(LoadText(L"IO_PROCESS_VRHANLDE_HANDLE_LEFT"));
    arChoice.Add(LoadText(L"IO_PROCESS_VRHANLDE_HANDLE_RIGHT"));
}

// The text keys spell "VRHANLDE"; the host's text tables and saved projects do too.
constexpr ParamRow INPUTS[] = {
    VersionRow(VERSION_WITH_HIT_POSITION),
    ENABLE_ROW,
    StringRow(INPUT_OBJECT_NAME, L"ObjectName", L"IO_PROCESS_VRHANLDE_OBJECT"),
    ChoiceRow(INPUT_HANDLE_TYPE, L"HandleType", L"IO_PROCESS_VRHANLDE_SELECTHANDLE", std::nullopt, FLAGS_ORDINARY, 0,
              FillHandleTypes),
};

constexpr ParamRow CoordinateRow(unsigned nId, const wchar_t* pszName, const wchar_t* pszDisplayKey) {
    return {nId, pszName, pszDisplayKey, PARAM_FLOAT, ParamRange{0, -1e9f, 1e9f, 1}, FLAGS_ORDINARY};
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
    EventRow(CLICK_CENTER, L"TouchPadCenterClick", L"IO_PROCESS_VRHANLDE_TOUCHPAD_CENTER_CLICK"),
    EventRow(CLICK_LEFT, L"TouchPadLeftClick", L"IO_PROCESS_VRHANLDE_TOUCHPAD_LEFT_CLICK"),
    EventRow(CLICK_RIGHT, L"TouchPadRightClick", L"IO_PROCESS_VRHANLDE_TOUCHPAD_RIGHT_CLICK"),
    EventRow(CLICK_TOP, L"TouchPadTopClick", L"IO_PROCESS_VRHANLDE_TOUCHPAD_TOP_CLICK"),
    EventRow(CLICK_BOTTOM, L"TouchPadBottomClick", L"IO_PROCESS_VRHANLDE_TOUCHPAD_BOTTOM_CLICK"),
};

constexpr GroupRow HIT_GROUP{OUTPUT_HIT_GROUP, L"HitPos", L"IO_PROCESS_VRHANLDE_HITPOS", HIT_OUTPUTS};

constexpr GroupRow OUTPUT_GROUPS[] = {
    {OUTPUT_POSITION_GROUP, L"OutputParam", L"IO_PROCESS_VRHANLDE", POSITION_OUTPUTS},
    HIT_GROUP,
    {861, L"OutputEvent", L"TOUCH_CONTROL_EVENT_OUTPUT", EVENT_OUTPUTS},
};

/// What releasing the touch-pad clicks: an output, by the thumb's position (about -1 to 1 on both axes, y growing
/// upwards). A position exactly on the border of two zones clicks nothing.
int ClickOf(float fX, float fY) {
    constexpr float BORDER = 0.5f;
    const float fAbsX = std::fabs(fX);
    const float fAbsY = std::fabs(fY);
    if (fAbsX > BORDER && fAbsX > fAbsY) {
        return fX > 0 ? CLICK_RIGHT : CLICK_LEFT;
    }
    if (fAbsY > BORDER && fAbsY > fAbsX) {
        return fY > 0 ? CLICK_TOP : CLICK_BOTTOM;
    }
    return fAbsX < BORDER && fAbsY < BORDER ? CLICK_CENTER : CLICK_NONE;
}

/// Add the outputs that a sample fires, in order: the trigger's, then the touch-pad's.
void AddFired(CArray<int>& arOutput, const SVRPluginData& previous, const SVRPluginData& sample) {
    if (TriggerOf(sample) != 0 && TriggerOf(previous) == 0) {
        arOutput.Add(OUTPUT_TRIGGER_DOWN);
    } else if (TriggerOf(sample) == 0 && TriggerOf(previous) != 0) {
        arOutput.Add(OUTPUT_TRIGGER_UP);
        // The times wrap; a release before the press is then very far from it.
        if (ReleaseTimeOf(sample) - PressTimeOf(sample) < CLICK_TIME) {
            arOutput.Add(OUTPUT_TRIGGER_CLICK);
        }
    }
    if (TouchPadOf(sample) != 0 && TouchPadOf(previous) == 0) {
        arOutput.Add(OUTPUT_TOUCH_PAD_DOWN);
    } else if (TouchPadOf(sample) == 0 && TouchPadOf(previous) != 0) {
        arOutput.Add(OUTPUT_TOUCH_PAD_UP);
        if (const int nClick = ClickOf(TouchPadXOf(sample), TouchPadYOf(sample)); nClick != CLICK_NONE) {
            arOutput.Add(nClick);
        }
    }
}

CControlLayout s_layout(4, L"CVEKIOVRHandle.XML");

} // namespace

const NodeType CVRHandleIOProcess::TYPE{
    GUID_IOPROCESS_VR_HANDLE, {801, L"Base param", L"IO_PROCESS_VRHANLDE", INPUTS}, OUTPUT_GROUPS, &s_layout};

void CVRHandleIOProcess::InitParam() try {
    if (GroupsOf(*this).IsEmpty()) {
        AfxThrowInvalidArgException();
    }
    FillChoicesOnce(FindOwn(*this, INPUT_HANDLE_TYPE), FillHandleTypes);
    if (VEKParam* pVersion = FindOwn(*this, PARAM_VERSION)) {
        IntegerOf(*pVersion) = VERSION_WITH_HIT_POSITION;
    }
} catch (...) {
    EndException();
}

void CVRHandleIOProcess::GetNodeOutput(SGraphNode* pGraphNode) try {
    if (pGraphNode == nullptr || OutputsOf(*pGraphNode).IsEmpty()) {
        COutputNode::GetNodeOutput(pGraphNode);
        return;
    }
    CList<VEKParamGroup*>& lstGroup = OutputsOf(*pGraphNode);
    VEKParam* pVersion = FindOwn(*this, PARAM_VERSION);
    if (pVersion == nullptr || IntegerOf(*pVersion) < VERSION_WITH_HIT_POSITION ||
        FindGroup(lstGroup, MakeParamGuid(OUTPUT_HIT_GROUP)) != nullptr) {
        return;
    }
    if (VEKParamGroup* pPosition = FindGroup(lstGroup, MakeParamGuid(OUTPUT_POSITION_GROUP))) {
        auto pHit = MakeOutputGroup(HIT_GROUP);
        lstGroup.InsertAfter(lstGroup.Find(pPosition), pHit.get());
        static_cast<void>(pHit.release());
    }
} catch (...) {
    EndException();
}

int CVRHandleIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    m_pGraphNode = pGraphNode;
    if (pGraphNode == nullptr || !ReadEnable(*this, *pGraphNode, m_bEnable)) {
        return 0;
    }
    VEKParam* pObjectName = FindInput(*this, *pGraphNode, INPUT_OBJECT_NAME);
    if (pObjectName == nullptr) {
        return 0;
    }
    m_strObjectName = TextOf(*pObjectName);
    VEKParam* pHandleType = FindInput(*this, *pGraphNode, INPUT_HANDLE_TYPE);
    if (pHandleType == nullptr) {
        return 0;
    }
    if (IntegerOf(*pHandleType) != m_nHandleType) {
        // The other hand starts with everything released.
        m_nHandleType = IntegerOf(*pHandleType);
        ForgetSample(m_previousSample);
    }
    return 1;
} catch (...) {
    return EndException();
}

int CVRHandleIOProcess::DevIOEventOccurred(EventRecordPtr pRecord) try {
    if (m_bEnable == 0 || !CheckRecord(pRecord, *this, m_pGraphNode) || DeviceOf(*pRecord) != DEVICE_VR_HANDLE) {
        return 0;
    }
    if (PayloadOf(*pRecord) == nullptr) {
        WriteNodeLog(LEVEL_ERROR, *this, *m_pGraphNode, L"没有VR手柄数据"); // without the names
        return 0;
    }
    const auto& sample = *static_cast<const SVRPluginData*>(PayloadOf(*pRecord));
    if (HandOf(sample) != m_nHandleType) {
        return 0;
    }
    ShowSample(sample);
    CArray<int> arOutput;
    AddFired(arOutput, m_previousSample, sample);
    m_previousSample = sample;
    for (INT_PTR i = 0; i < arOutput.GetSize(); ++i) {
        FireGeneralEvent(this, arOutput[i]);
    }
    return 1;
} catch (...) {
    return EndException();
}

/// Move the object and write the positions. They aren't compared first: -0 equals 0, and a change of sign would be
/// lost.
void CVRHandleIOProcess::ShowSample(const SVRPluginData& sample) {
    VEKObject* pObject = m_strObjectName.IsEmpty() ? nullptr : FindObject(*ClipOf(*this), m_strObjectName);
    if (pObject != nullptr) {
        std::copy_n(PoseOf(sample), 16, MatrixOf(*pObject));
    }
    for (int i = 0; i < 3; ++i) {
        if (VEKParam* pPosition = FindOutput(*m_pGraphNode, static_cast<unsigned>(OUTPUT_POSITION_X + i))) {
            FloatOf(*pPosition) = PoseOf(sample)[12 + i];
        }
        if (VEKParam* pHit = FindOutput(*m_pGraphNode, static_cast<unsigned>(OUTPUT_HIT_X + i))) {
            FloatOf(*pHit) = HitPositionOf(sample)[i];
        }
    }
}
