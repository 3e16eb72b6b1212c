// The VR handle node: its tables and their upgrade, what a controller's samples write, move and fire.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

#include "HeapUse.h"
#include "HostCalls.h"
#include "HostSetup.h"
#include "ModuleHost.h"

namespace {

const int DEVICE = 3;

const unsigned VERSION = 7;
const unsigned ENABLE = 2;
const unsigned OBJECT_NAME = 802;
const unsigned HANDLE_TYPE = 803;

const unsigned POSITION[] = {852, 853, 854};
const unsigned HIT_POSITION[] = {857, 858, 859};

const int TRIGGER_DOWN = 862;
const int TRIGGER_UP = 863;
const int TRIGGER_CLICK = 864;
const int PAD_DOWN = 865;
const int PAD_UP = 866;
const int PAD_CENTER = 867;
const int PAD_LEFT = 868;
const int PAD_RIGHT = 869;
const int PAD_TOP = 870;
const int PAD_BOTTOM = 871;

const int LEFT_HAND = 0;
const int RIGHT_HAND = 1;

using Outputs = std::vector<int>;

/// A sample of the left controller in which the given is pressed.
SVRPluginData Sample(int bTrigger = 0, int bPad = 0, float fPadX = 0, float fPadY = 0) {
    SVRPluginData sample;
    sample.m_bTriggerPressed = bTrigger;
    sample.m_bTouchPadPressed = bPad;
    sample.m_fTouchPadX = fPadX;
    sample.m_fTouchPadY = fPadY;
    // Far apart, so that no click comes of them.
    sample.m_nPressTime = 1000;
    sample.m_nReleaseTime = 9000;
    return sample;
}

/// Each element of pose and hit position has a value of its own.
SVRPluginData PosedSample(float fFirst = 100.0f) {
    SVRPluginData sample = Sample();
    for (int i = 0; i < 16; ++i) {
        sample.m_fPose[i] = fFirst + static_cast<float>(i);
    }
    for (int i = 0; i < 3; ++i) {
        sample.m_fHitPosition[i] = fFirst + static_cast<float>(50 + i);
    }
    return sample;
}

class VRHandleNode : public ModuleTest {
protected:
    VRHandleNode() { m_scene.Evaluate(); }

    int Send(SVRPluginData sample) { return m_scene.Send(DEVICE, 1, &sample); }

    /// What was fired since the last call. Events have no log lines.
    Outputs Fired() {
        EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
        EXPECT_TRUE(m_host.TakeOtherMessages().empty());
        EXPECT_TRUE(m_host.TakeReportedEvents().empty());
        return m_host.TakeFiredOutputs();
    }

    Outputs FiredBy(const SVRPluginData& sample) {
        EXPECT_EQ(Send(sample), 1);
        return Fired();
    }

    std::vector<float> Values(const unsigned (&ids)[3]) const {
        std::vector<float> values;
        for (const unsigned nId : ids) {
            values.push_back(m_scene.Output(nId).m_fValue);
        }
        return values;
    }

    VEKObject& AddObject(VEKClip& clip, const wchar_t* pszName) {
        clip.m_lstObject.AddTail(new VEKObject(pszName));
        return *clip.m_lstObject.GetTail();
    }
    VEKObject& AddObject(const wchar_t* pszName) { return AddObject(m_scene.m_clip, pszName); }

    static std::vector<float> Matrix(const VEKObject& object) {
        return {std::begin(object.m_fMatrix), std::end(object.m_fMatrix)};
    }

    NodeScene m_scene{m_host, TYPE_VR_HANDLE};
};

const std::vector<float> IDENTITY = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
const std::vector<float> POSED = {100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112, 113, 114, 115};

// ---- Tables --------------------------------------------------------------------------------------------------------

TEST_F(VRHandleNode, Fresh) {
    ExpectFreshNode(*m_host.CreateNode(TYPE_VR_HANDLE), TYPE_VR_HANDLE, "IO_PROCESS_VRHANLDE");
}

TEST_F(VRHandleNode, Inputs) {
    ExpectInputGroups(m_scene.m_pNode->m_lstParamGroup,
                      {{801,
                        "Base param",
                        "IO_PROCESS_VRHANLDE",
                        {{.nId = 7,
                          .pszName = "Version",
                          .pszDisplay = "Version",
                          .nType = 2,
                          .nControl = 1,
                          .range = ExpectedRange{1, 1, 10000, 1},
                          .flags = ExpectedFlags{0, 0, 0, 0},
                          .nValue = 2,
                          .fValue = 1.0f},
                         {.nId = 2,
                          .pszName = "Enable",
                          .pszDisplay = "TOUCH_CONTROL_ENABLED",
                          .nType = 5,
                          .nControl = 5,
                          .range = ExpectedRange{0, 0, 1, 1},
                          .flags = ExpectedFlags{0, 0, 1, 0},
                          .nValue = 1},
                         {.nId = 802,
                          .pszName = "ObjectName",
                          .pszDisplay = "IO_PROCESS_VRHANLDE_OBJECT",
                          .nType = 1,
                          .nControl = 6,
                          .flags = ExpectedFlags{0, 0, 1, 0}},
                         {.nId = 803,
                          .pszName = "HandleType",
                          .pszDisplay = "IO_PROCESS_VRHANLDE_SELECTHANDLE",
                          .nType = 4,
                          .nControl = 1,
                          .flags = ExpectedFlags{0, 0, 1, 0},
                          .nValue = 0,
                          .choices = {"IO_PROCESS_VRHANLDE_HANDLE_LEFT", "IO_PROCESS_VRHANLDE_HANDLE_RIGHT"}}}}});
}

TEST_F(VRHandleNode, DisplayTextsComeFromTheTextTableButThatOfVersion) {
    m_host.WriteFile("Config/Texts/en.json",
                     R"({"Version": "looked up", "IO_PROCESS_VRHANLDE_HANDLE_LEFT": "Left hand",
                         "IO_PROCESS_VRHANLDE_HANDLE_RIGHT": "Right hand"})");
    ASSERT_TRUE(SetTextTable(ETextTable::English));
    const NodePtr pNode = m_host.CreateNode(TYPE_VR_HANDLE);
    EXPECT_EQ(Utf8(FindParam(pNode->m_lstParamGroup, MakeParamGuid(VERSION))->m_strDisplay), "Version");
    const CStringArray& arChoice = FindParam(pNode->m_lstParamGroup, MakeParamGuid(HANDLE_TYPE))->m_arChoice;
    ASSERT_EQ(arChoice.GetSize(), 2);
    EXPECT_EQ(Utf8(arChoice[0]), "Left hand");
    EXPECT_EQ(Utf8(arChoice[1]), "Right hand");
}

ExpectedParam NumberPin(unsigned nId, const char* pszName, const char* pszDisplay) {
    return {.nId = nId,
            .pszName = pszName,
            .pszDisplay = pszDisplay,
            .nType = 2,
            .nControl = 2,
            .range = ExpectedRange{0, -1e9f, 1e9f, 1},
            .flags = ExpectedFlags{0, 0, 1, 0}};
}

const ExpectedGroup POSITION_GROUP = {851,
                                      "OutputParam",
                                      "IO_PROCESS_VRHANLDE",
                                      {NumberPin(852, "PosX", "IO_PROCESS_VRHANLDE_POSX"),
                                       NumberPin(853, "PosY", "IO_PROCESS_VRHANLDE_POSY"),
                                       NumberPin(854, "PosZ", "IO_PROCESS_VRHANLDE_POSZ")}};

const ExpectedGroup HIT_GROUP = {856,
                                 "HitPos",
                                 "IO_PROCESS_VRHANLDE_HITPOS",
                                 {NumberPin(857, "HitPosX", "IO_PROCESS_VRHANLDE_HITPOSX"),
                                  NumberPin(858, "HitPosY", "IO_PROCESS_VRHANLDE_HITPOSY"),
                                  NumberPin(859, "HitPosZ", "IO_PROCESS_VRHANLDE_HITPOSZ")}};

const ExpectedGroup EVENT_GROUP = {861,
                                   "OutputEvent",
                                   "TOUCH_CONTROL_EVENT_OUTPUT",
                                   {EventPin(862, "TriggerDown", "IO_PROCESS_VRHANLDE_TRIGGER_DOWN"),
                                    EventPin(863, "TriggerUp", "IO_PROCESS_VRHANLDE_TRIGGER_UP"),
                                    EventPin(864, "TriggerClick", "IO_PROCESS_VRHANLDE_TRIGGER_CLICK"),
                                    EventPin(865, "TouchPadDown", "IO_PROCESS_VRHANLDE_TOUCHPAD_DOWN"),
                                    EventPin(866, "TouchPadUp", "IO_PROCESS_VRHANLDE_TOUCHPAD_UP"),
                                    EventPin(867, "TouchPadCenterClick", "IO_PROCESS_VRHANLDE_TOUCHPAD_CENTER_CLICK"),
                                    EventPin(868, "TouchPadLeftClick", "IO_PROCESS_VRHANLDE_TOUCHPAD_LEFT_CLICK"),
                                    EventPin(869, "TouchPadRightClick", "IO_PROCESS_VRHANLDE_TOUCHPAD_RIGHT_CLICK"),
                                    EventPin(870, "TouchPadTopClick", "IO_PROCESS_VRHANLDE_TOUCHPAD_TOP_CLICK"),
                                    EventPin(871, "TouchPadBottomClick", "IO_PROCESS_VRHANLDE_TOUCHPAD_BOTTOM_CLICK")}};

TEST_F(VRHandleNode, Outputs) {
    ExpectOutputGroups(m_scene.m_graphNode.m_lstOutputGroup, {POSITION_GROUP, HIT_GROUP, EVENT_GROUP});
}

TEST_F(VRHandleNode, OutputsAreMadeOnce) {
    const auto before = Items(m_scene.m_graphNode.m_lstOutputGroup);
    ASSERT_EQ(before.size(), 3u);
    m_scene.m_pNode->GetNodeOutput(&m_scene.m_graphNode);
    EXPECT_EQ(Items(m_scene.m_graphNode.m_lstOutputGroup), before);
}

TEST_F(VRHandleNode, OutputsOfNoGraphNodeAreNotMade) {
    m_scene.m_pNode->GetNodeOutput(nullptr);
}

TEST_F(VRHandleNode, InheritsTheOtherOperations) {
    EXPECT_EQ(m_scene.m_pNode->NeedUpdateSingleParam(MakeParamGuid(OBJECT_NAME)), FALSE);
    EXPECT_EQ(m_scene.m_pNode->UpdateSingleParamValue(MakeParamGuid(OBJECT_NAME)), 0);
    m_scene.m_pNode->Init();
    EXPECT_EQ(m_scene.m_pNode->m_lstParamGroup.GetCount(), 1);
}

// ---- Older projects ------------------------------------------------------------------------------------------------

class VRHandleNodeUpgrade : public ModuleTest {
protected:
    VEKParam& Own(unsigned nId) const { return *FindParam(m_pNode->m_lstParamGroup, MakeParamGuid(nId)); }

    VEKParamGroup* AddGroup(unsigned nId) {
        auto* pGroup = new VEKParamGroup;
        pGroup->m_guid = MakeParamGuid(nId);
        m_graphNode.m_lstOutputGroup.AddTail(pGroup);
        return pGroup;
    }

    std::vector<unsigned> GroupIds() const {
        std::vector<unsigned> ids;
        for (const VEKParamGroup* pGroup : Items(m_graphNode.m_lstOutputGroup)) {
            ids.push_back(pGroup->m_guid.Data1);
        }
        return ids;
    }

    std::vector<std::string> Choices() const {
        std::vector<std::string> choices;
        const CStringArray& arChoice = Own(HANDLE_TYPE).m_arChoice;
        for (INT_PTR i = 0; i < arChoice.GetSize(); ++i) {
            choices.push_back(Utf8(arChoice[i]));
        }
        return choices;
    }

    SGraphNode m_graphNode;
    NodePtr m_pNode = m_host.CreateNode(TYPE_VR_HANDLE);
};

using Ids = std::vector<unsigned>;
const std::vector<std::string> BOTH_HANDS = {"IO_PROCESS_VRHANLDE_HANDLE_LEFT", "IO_PROCESS_VRHANLDE_HANDLE_RIGHT"};

TEST_F(VRHandleNodeUpgrade, EmptyChoicesAreFilled) {
    Own(HANDLE_TYPE).m_arChoice.RemoveAll();
    Own(HANDLE_TYPE).m_nValue = 1;
    m_pNode->InitParam();
    EXPECT_EQ(Choices(), BOTH_HANDS);
    EXPECT_EQ(Own(HANDLE_TYPE).m_nValue, 1) << "the value is kept";
    m_pNode->InitParam();
    EXPECT_EQ(Choices(), BOTH_HANDS) << "once";
}

TEST_F(VRHandleNodeUpgrade, ChoicesThatAreThereAreKept) {
    m_pNode->InitParam();
    EXPECT_EQ(Choices(), BOTH_HANDS);
    Own(HANDLE_TYPE).m_arChoice.RemoveAll();
    Own(HANDLE_TYPE).m_arChoice.Add(L"only one");
    m_pNode->InitParam();
    EXPECT_EQ(Choices(), std::vector<std::string>{"only one"});
}

TEST_F(VRHandleNodeUpgrade, VersionBecomesTwo) {
    for (const int nVersion : {1, 0, -1, 2, 3, 2147483647}) {
        Own(VERSION).m_nValue = nVersion;
        m_pNode->InitParam();
        EXPECT_EQ(Own(VERSION).m_nValue, 2) << nVersion;
    }
}

TEST_F(VRHandleNodeUpgrade, MissingParametersAreNoFault) {
    Own(VERSION).m_nValue = 1;
    VEKParam& handleType = Own(HANDLE_TYPE);
    handleType.m_guid = MakeParamGuid(9999);
    handleType.m_arChoice.RemoveAll();
    m_pNode->InitParam();
    EXPECT_EQ(Own(VERSION).m_nValue, 2);
    EXPECT_EQ(handleType.m_arChoice.GetSize(), 0);
    handleType.m_guid = MakeParamGuid(HANDLE_TYPE);
    Own(VERSION).m_guid = MakeParamGuid(9999);
    m_pNode->InitParam();
    EXPECT_EQ(Choices(), BOTH_HANDS);
    EXPECT_EQ(m_pNode->m_lstParamGroup.GetHead()->m_lstParam.GetCount(), 4) << "none is added";
}

TEST_F(VRHandleNodeUpgrade, ParametersAreFoundInAnyGroup) {
    m_pNode->m_lstParamGroup.AddHead(new VEKParamGroup);
    Own(VERSION).m_nValue = 1;
    Own(HANDLE_TYPE).m_arChoice.RemoveAll();
    m_pNode->InitParam();
    EXPECT_EQ(Own(VERSION).m_nValue, 2);
    EXPECT_EQ(Choices(), BOTH_HANDS);
}

TEST_F(VRHandleNodeUpgrade, WithoutAnyGroupItRaisesInvalidArgument) {
    m_pNode->Empty();
    bool bRaised = false;
    try {
        m_pNode->InitParam();
    } catch (CInvalidArgException* pException) {
        bRaised = true;
        pException->Delete();
    }
    EXPECT_TRUE(bRaised);
}

TEST_F(VRHandleNodeUpgrade, HitPositionIsInsertedBehindThePosition) {
    AddGroup(851);
    AddGroup(861);
    Own(VERSION).m_nValue = 1;
    m_pNode->InitParam();
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(GroupIds(), (::Ids{851, 856, 861}));
    // The new group, cell by cell; the others as they were.
    VEKParamGroupList lstInserted;
    lstInserted.AddTail(Items(m_graphNode.m_lstOutputGroup)[1]);
    ExpectOutputGroups(lstInserted, {HIT_GROUP});
    EXPECT_TRUE(Items(m_graphNode.m_lstOutputGroup)[0]->m_lstParam.IsEmpty());
    EXPECT_TRUE(Items(m_graphNode.m_lstOutputGroup)[2]->m_lstParam.IsEmpty());
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(GroupIds(), (::Ids{851, 856, 861})) << "once";
}

TEST_F(VRHandleNodeUpgrade, HitPositionFollowsThePositionWhereverItStands) {
    AddGroup(861);
    AddGroup(999);
    AddGroup(851);
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(GroupIds(), (::Ids{861, 999, 851, 856}));
}

TEST_F(VRHandleNodeUpgrade, HitPositionThatIsThereIsEnough) {
    AddGroup(856);
    AddGroup(851);
    AddGroup(861);
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(GroupIds(), (::Ids{856, 851, 861}));
}

TEST_F(VRHandleNodeUpgrade, WithoutThePositionNothingIsInserted) {
    AddGroup(861);
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(GroupIds(), ::Ids{861});
}

TEST_F(VRHandleNodeUpgrade, HitPositionIsInsertedFromVersionTwoOn) {
    AddGroup(851);
    AddGroup(861);
    for (const int nVersion : {1, 0, -1}) {
        Own(VERSION).m_nValue = nVersion;
        m_pNode->GetNodeOutput(&m_graphNode);
        EXPECT_EQ(GroupIds(), (::Ids{851, 861})) << nVersion;
    }
    Own(VERSION).m_nValue = 3;
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(GroupIds(), (::Ids{851, 856, 861}));
}

TEST_F(VRHandleNodeUpgrade, VersionIsTheNodesOwn) {
    AddGroup(851);
    Own(VERSION).m_guid = MakeParamGuid(9999);
    auto* pGroup = new VEKParamGroup;
    auto* pVersion = new VEKParam(VERSION, L"Version", L"", 2, 1);
    pVersion->m_nValue = 2;
    pGroup->m_lstParam.AddTail(pVersion);
    m_graphNode.m_lstInputGroup.AddTail(pGroup);
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(GroupIds(), ::Ids{851});
}

TEST_F(VRHandleNodeUpgrade, FreshOutputsNeedNoVersion) {
    Own(VERSION).m_nValue = 1;
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(GroupIds(), (::Ids{851, 856, 861}));
}

// ---- Evaluation ----------------------------------------------------------------------------------------------------

TEST_F(VRHandleNode, EvaluationHandlesTheCallWhenEnabled) {
    EXPECT_EQ(m_scene.Evaluate(), 1);
    m_scene.Input(ENABLE).m_nValue = 0;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    for (const int nValue : {2, -1, 256, -2147483647 - 1}) {
        m_scene.Input(ENABLE).m_nValue = nValue;
        EXPECT_EQ(m_scene.Evaluate(), 1) << nValue;
        EXPECT_EQ(Send(Sample()), 1) << nValue;
    }
    EXPECT_EQ(Fired(), Outputs{});
}

TEST_F(VRHandleNode, EvaluationWritesNoOutput) {
    for (const VEKParamGroup* pGroup : Items(m_scene.m_graphNode.m_lstOutputGroup)) {
        for (VEKParam* pParam : Items(pGroup->m_lstParam)) {
            pParam->m_nValue = 77;
            pParam->m_fValue = 78.0f;
        }
    }
    EXPECT_EQ(m_scene.Evaluate(), 1);
    for (const VEKParamGroup* pGroup : Items(m_scene.m_graphNode.m_lstOutputGroup)) {
        for (const VEKParam* pParam : Items(pGroup->m_lstParam)) {
            EXPECT_EQ(pParam->m_nValue, 77);
            EXPECT_EQ(pParam->m_fValue, 78.0f);
        }
    }
}

TEST_F(VRHandleNode, EvaluationNeedsNoOwner) {
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    EXPECT_EQ(m_scene.Evaluate(), 1);
}

TEST_F(VRHandleNode, InputsOfTheGraphWinOverTheNodesOwn) {
    VEKParam& graphEnable = m_scene.AddGraphInput(ENABLE, 5, 5);
    VEKParam& graphHandleType = m_scene.AddGraphInput(HANDLE_TYPE, 4, 1);
    VEKParam& graphObjectName = m_scene.AddGraphInput(OBJECT_NAME, 1, 6);
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Send(Sample()), 0);
    graphEnable.m_nValue = 1;
    m_scene.Input(ENABLE).m_nValue = 0;
    graphHandleType.m_nValue = RIGHT_HAND;
    graphObjectName.m_strValue = L"graph";
    m_scene.Input(OBJECT_NAME).m_strValue = L"own";
    const VEKObject& ofGraph = AddObject(L"graph");
    const VEKObject& ofNode = AddObject(L"own");
    EXPECT_EQ(m_scene.Evaluate(), 1);
    SVRPluginData sample = PosedSample();
    EXPECT_EQ(Send(sample), 0);
    sample.m_nHand = RIGHT_HAND;
    EXPECT_EQ(Send(sample), 1);
    EXPECT_EQ(Matrix(ofGraph), POSED);
    EXPECT_EQ(Matrix(ofNode), IDENTITY);
}

TEST_F(VRHandleNode, MissingEnableLeavesTheNodeAsItWas) {
    m_scene.Input(ENABLE).m_guid = MakeParamGuid(9999);
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(FiredBy(Sample(1)), Outputs{TRIGGER_DOWN}) << "still enabled";
    NodeScene other(m_host, TYPE_VR_HANDLE);
    other.m_pNode->Empty();
    EXPECT_EQ(other.Evaluate(), 0);
    SVRPluginData sample = Sample(1);
    EXPECT_EQ(other.Send(DEVICE, 1, &sample), 0) << "never was";
}

TEST_F(VRHandleNode, MissingObjectNameKeepsNameAndHand) {
    const VEKObject& object = AddObject(L"Hand");
    m_scene.Input(OBJECT_NAME).m_strValue = L"Hand";
    EXPECT_EQ(m_scene.Evaluate(), 1);
    m_scene.Input(OBJECT_NAME).m_guid = MakeParamGuid(9999);
    m_scene.Input(HANDLE_TYPE).m_nValue = RIGHT_HAND;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Send(PosedSample()), 1) << "still the left hand, and enabled";
    EXPECT_EQ(Matrix(object), POSED);
}

TEST_F(VRHandleNode, MissingHandleTypeKeepsTheHandButNotTheName) {
    const VEKObject& object = AddObject(L"Hand");
    m_scene.Input(OBJECT_NAME).m_strValue = L"Hand";
    m_scene.Input(HANDLE_TYPE).m_guid = MakeParamGuid(9999);
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Send(PosedSample()), 1);
    EXPECT_EQ(Matrix(object), POSED);
}

TEST_F(VRHandleNode, DisabledEvaluationReadsNothingElse) {
    const VEKObject& object = AddObject(L"Hand");
    m_scene.Input(ENABLE).m_nValue = 0;
    m_scene.Input(OBJECT_NAME).m_strValue = L"Hand";
    m_scene.Input(HANDLE_TYPE).m_nValue = RIGHT_HAND;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    m_scene.Input(ENABLE).m_nValue = 1;
    m_scene.Input(OBJECT_NAME).m_guid = MakeParamGuid(9999);
    EXPECT_EQ(m_scene.Evaluate(), 0) << "enabled, but with the name and hand of before";
    EXPECT_EQ(Send(PosedSample()), 1);
    EXPECT_EQ(Matrix(object), IDENTITY);
}

TEST_F(VRHandleNode, EvaluationWithoutGraphNodeForgetsTheGraphNode) {
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    EXPECT_EQ(Send(Sample(1)), 0);
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(Fired(), Outputs{});
    m_scene.Evaluate();
    EXPECT_EQ(FiredBy(Sample(1)), Outputs{TRIGGER_DOWN});
}

// ---- What it ignores -----------------------------------------------------------------------------------------------

TEST_F(VRHandleNode, IgnoresEverythingBeforeTheFirstEvaluation) {
    NodeScene scene(m_host, TYPE_VR_HANDLE);
    SVRPluginData sample = PosedSample();
    EXPECT_EQ(scene.Send(DEVICE, 1, &sample), 0);
    EXPECT_EQ(scene.Send(DEVICE, 1, nullptr), 0);
    EXPECT_EQ(scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(scene.Output(852).m_fValue, 0.0f);
    EXPECT_EQ(Fired(), Outputs{});
}

TEST_F(VRHandleNode, IgnoresEverythingSilentlyWithoutOwner) {
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    EXPECT_EQ(Send(Sample(1)), 0);
    EXPECT_EQ(m_scene.Send(DEVICE, 1, nullptr), 0);
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(Fired(), Outputs{});
    m_scene.m_pNode->m_pOwnerClip = &m_scene.m_clip;
    EXPECT_EQ(FiredBy(Sample(1)), Outputs{TRIGGER_DOWN}) << "the ignored sample left nothing";
}

TEST_F(VRHandleNode, IgnoresEverythingSilentlyWhileDisabled) {
    Send(PosedSample(200));
    m_scene.Input(ENABLE).m_nValue = 0;
    EXPECT_EQ(Send(PosedSample(300)), 1) << "not evaluated yet";
    m_scene.Evaluate();
    SVRPluginData sample = PosedSample(400);
    sample.m_bTriggerPressed = 1;
    EXPECT_EQ(Send(sample), 0);
    EXPECT_EQ(m_scene.Send(DEVICE, 1, nullptr), 0);
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0) << "not even an error";
    EXPECT_EQ(Fired(), Outputs{});
    EXPECT_EQ(Values(POSITION), (std::vector<float>{312, 313, 314})) << "outputs keep their values";
    m_scene.Input(ENABLE).m_nValue = 1;
    EXPECT_EQ(Send(sample), 0) << "not evaluated yet";
    m_scene.Evaluate();
    EXPECT_EQ(FiredBy(sample), Outputs{TRIGGER_DOWN});
}

TEST_F(VRHandleNode, IgnoresOtherDevices) {
    SVRPluginData sample = PosedSample();
    sample.m_bTriggerPressed = 1;
    for (const int nDevice : {0, 1, 2, 4, 5, 6, 7, -1, 259, 2147483647}) {
        EXPECT_EQ(m_scene.Send(nDevice, 1, &sample), 0) << nDevice;
        EXPECT_EQ(m_scene.Send(nDevice, 1, nullptr), 0) << nDevice;
    }
    EXPECT_EQ(Fired(), Outputs{});
    EXPECT_EQ(Values(POSITION), (std::vector<float>{0, 0, 0}));
}

TEST_F(VRHandleNode, EventIdDoesNotMatter) {
    for (const int nEvent : {0, 1, 2, 3005, -1, 2147483647}) {
        SVRPluginData pressed = Sample(1);
        SVRPluginData released = Sample(0);
        EXPECT_EQ(m_scene.Send(DEVICE, nEvent, &pressed), 1);
        EXPECT_EQ(m_scene.Send(DEVICE, nEvent, &released), 1);
        EXPECT_EQ(Fired(), (Outputs{TRIGGER_DOWN, TRIGGER_UP})) << nEvent;
    }
}

TEST_F(VRHandleNode, NullRecordIsAnError) {
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Error("[Clip.Graph.Node]DevIOEventOccurred函数数据错误")});
    EXPECT_EQ(Fired(), Outputs{});
}

TEST_F(VRHandleNode, MissingSampleIsAnError) {
    EXPECT_EQ(m_scene.Send(DEVICE, 1, nullptr), 0);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Error("没有VR手柄数据")});
    EXPECT_EQ(Fired(), Outputs{});
}

TEST_F(VRHandleNode, SamplesOfTheOtherHandAreIgnored) {
    EXPECT_EQ(FiredBy(Sample(1)), Outputs{TRIGGER_DOWN});
    SVRPluginData sample = PosedSample();
    for (const int nHand : {RIGHT_HAND, 2, -1, 256, 2147483647}) {
        sample.m_nHand = nHand;
        EXPECT_EQ(Send(sample), 0) << nHand;
    }
    EXPECT_EQ(Fired(), Outputs{});
    EXPECT_EQ(Values(POSITION), (std::vector<float>{0, 0, 0}));
    EXPECT_EQ(FiredBy(Sample(1)), Outputs{}) << "the previous sample is the left hand's: still pressed";
    EXPECT_EQ(FiredBy(Sample(0)), Outputs{TRIGGER_UP});
}

// ---- Pose and hit position -----------------------------------------------------------------------------------------

TEST_F(VRHandleNode, PositionsAreWrittenAtOnce) {
    EXPECT_EQ(FiredBy(PosedSample()), Outputs{});
    EXPECT_EQ(Values(POSITION), (std::vector<float>{112, 113, 114}));
    EXPECT_EQ(Values(HIT_POSITION), (std::vector<float>{150, 151, 152}));
    Send(PosedSample(-500));
    EXPECT_EQ(Values(POSITION), (std::vector<float>{-488, -487, -486}));
    EXPECT_EQ(Values(HIT_POSITION), (std::vector<float>{-450, -449, -448}));
    m_scene.Evaluate();
    EXPECT_EQ(Values(POSITION), (std::vector<float>{-488, -487, -486}));
}

TEST_F(VRHandleNode, PositionsPassWithTheirBits) {
    for (const std::uint32_t nBits : {0x80000000u, 0x7F800000u, 0xFF800000u, 0x7FC12345u, 0x00000001u, 0x7F7FFFFFu}) {
        SVRPluginData sample = Sample();
        for (const int i : {12, 13, 14}) {
            sample.m_fPose[i] = std::bit_cast<float>(nBits);
        }
        std::fill(std::begin(sample.m_fHitPosition), std::end(sample.m_fHitPosition), std::bit_cast<float>(nBits));
        EXPECT_EQ(Send(Sample()), 1);
        EXPECT_EQ(Send(sample), 1);
        for (const auto& ids : {POSITION, HIT_POSITION}) {
            for (int i = 0; i < 3; ++i) {
                EXPECT_EQ(std::bit_cast<std::uint32_t>(m_scene.Output(ids[i]).m_fValue), nBits) << ids[i];
            }
        }
    }
}

TEST_F(VRHandleNode, PositionsAreWrittenInTheirOwnMemberOnly) {
    for (const unsigned nId : {852u, 857u}) {
        m_scene.Output(nId).m_nValue = 77;
        m_scene.Output(nId).m_strValue = L"kept";
    }
    Send(PosedSample());
    for (const unsigned nId : {852u, 857u}) {
        EXPECT_EQ(m_scene.Output(nId).m_nValue, 77);
        EXPECT_EQ(Utf8(m_scene.Output(nId).m_strValue), "kept");
    }
}

TEST_F(VRHandleNode, MissingOutputsAreSkippedOneByOne) {
    const unsigned IDS[] = {852, 853, 854, 857, 858, 859};
    const float EXPECTED[] = {112, 113, 114, 150, 151, 152};
    for (const unsigned nMissing : IDS) {
        SCOPED_TRACE(nMissing);
        SGraphNode graphNode;
        m_scene.m_pNode->GetNodeOutput(&graphNode);
        VEKParam* pMissing = FindParam(graphNode.m_lstOutputGroup, MakeParamGuid(nMissing));
        pMissing->m_guid = MakeParamGuid(9999);
        m_scene.m_pNode->ProcessNode(&graphNode);
        EXPECT_EQ(Send(PosedSample()), 1);
        EXPECT_EQ(pMissing->m_fValue, 0.0f);
        for (int i = 0; i < 6; ++i) {
            if (IDS[i] != nMissing) {
                EXPECT_EQ(FindParam(graphNode.m_lstOutputGroup, MakeParamGuid(IDS[i]))->m_fValue, EXPECTED[i]);
            }
        }
        m_scene.m_pNode->ProcessNode(nullptr);
    }
    SGraphNode bare;
    m_scene.m_pNode->ProcessNode(&bare);
    EXPECT_EQ(FiredBy(Sample(1)), Outputs{TRIGGER_DOWN}) << "without any output";
    m_scene.m_pNode->ProcessNode(nullptr);
}

TEST_F(VRHandleNode, ObjectTakesThePoseAsItIs) {
    VEKObject& object = AddObject(L"Hand");
    const VEKObject& other = AddObject(L"Other");
    m_scene.Input(OBJECT_NAME).m_strValue = L"Hand";
    Send(PosedSample());
    EXPECT_EQ(Matrix(object), IDENTITY) << "the name counts from the next evaluation on";
    m_scene.Evaluate();
    EXPECT_EQ(FiredBy(PosedSample()), Outputs{});
    EXPECT_EQ(Matrix(object), POSED);
    EXPECT_EQ(Matrix(other), IDENTITY);
    EXPECT_EQ(Utf8(object.m_strName), "Hand");
}

TEST_F(VRHandleNode, ObjectFollowsEverySample) {
    const VEKObject& object = AddObject(L"Hand");
    m_scene.Input(OBJECT_NAME).m_strValue = L"Hand";
    m_scene.Evaluate();
    for (const float fFirst : {0.0f, 100.0f, -3.5f}) {
        Send(PosedSample(fFirst));
        EXPECT_EQ(Matrix(object)[0], fFirst);
        EXPECT_EQ(Matrix(object)[15], fFirst + 15);
    }
}

TEST_F(VRHandleNode, NameChangesTheObject) {
    const VEKObject& first = AddObject(L"First");
    const VEKObject& second = AddObject(L"Second");
    m_scene.Input(OBJECT_NAME).m_strValue = L"First";
    m_scene.Evaluate();
    Send(PosedSample(0));
    m_scene.Input(OBJECT_NAME).m_strValue = L"Second";
    m_scene.Evaluate();
    Send(PosedSample());
    EXPECT_EQ(Matrix(first)[0], 0.0f);
    EXPECT_EQ(Matrix(second), POSED);
    m_scene.Input(OBJECT_NAME).m_strValue = L"";
    m_scene.Evaluate();
    Send(PosedSample(0));
    EXPECT_EQ(Matrix(second), POSED);
}

TEST_F(VRHandleNode, UnknownNamesAreSkipped) {
    const VEKObject& object = AddObject(L"Hand");
    for (const wchar_t* pszName : {L"hand", L"Hand ", L"Han", L"Unknown"}) {
        m_scene.Input(OBJECT_NAME).m_strValue = pszName;
        m_scene.Evaluate();
        EXPECT_EQ(Send(PosedSample()), 1);
        EXPECT_EQ(Values(POSITION), (std::vector<float>{112, 113, 114}));
    }
    EXPECT_EQ(Matrix(object), IDENTITY);
    EXPECT_EQ(Fired(), Outputs{});
}

TEST_F(VRHandleNode, EmptyNameMovesNoObject) {
    const VEKObject& nameless = AddObject(L"");
    EXPECT_EQ(Send(PosedSample()), 1);
    EXPECT_EQ(Matrix(nameless), IDENTITY);
}

TEST_F(VRHandleNode, ObjectsOfOtherClipsAreNotMoved) {
    VEKClip otherClip(L"Other");
    const VEKObject& otherObject = AddObject(otherClip, L"Hand");
    m_scene.Input(OBJECT_NAME).m_strValue = L"Hand";
    m_scene.Evaluate();
    Send(PosedSample());
    EXPECT_EQ(Matrix(otherObject), IDENTITY);
    m_scene.m_pNode->m_pOwnerClip = &otherClip;
    Send(PosedSample());
    EXPECT_EQ(Matrix(otherObject), POSED);
    m_scene.m_pNode->m_pOwnerClip = &m_scene.m_clip;
}

TEST_F(VRHandleNode, SamplesAreCopied) {
    auto pSample = std::make_unique<SVRPluginData>(Sample(1));
    m_scene.Send(DEVICE, 1, pSample.get());
    pSample->m_bTriggerPressed = 0;
    pSample.reset();
    EXPECT_EQ(Fired(), Outputs{TRIGGER_DOWN});
    EXPECT_EQ(FiredBy(Sample(1)), Outputs{}) << "the previous sample is the node's own copy";
}

// ---- Trigger -------------------------------------------------------------------------------------------------------

TEST_F(VRHandleNode, TriggerFiresAtItsEdges) {
    EXPECT_EQ(FiredBy(Sample(0)), Outputs{});
    EXPECT_EQ(FiredBy(Sample(1)), Outputs{TRIGGER_DOWN});
    EXPECT_EQ(FiredBy(Sample(1)), Outputs{});
    EXPECT_EQ(FiredBy(Sample(1)), Outputs{});
    EXPECT_EQ(FiredBy(Sample(0)), Outputs{TRIGGER_UP});
    EXPECT_EQ(FiredBy(Sample(0)), Outputs{});
}

TEST_F(VRHandleNode, AnyValueButZeroIsPressed) {
    for (const int nPressed : {1, 2, -1, 256, -2147483647 - 1}) {
        EXPECT_EQ(FiredBy(Sample(nPressed, nPressed)), (Outputs{TRIGGER_DOWN, PAD_DOWN})) << nPressed;
        EXPECT_EQ(FiredBy(Sample(5, 6)), Outputs{}) << nPressed;
        EXPECT_EQ(FiredBy(Sample(0, 0)), (Outputs{TRIGGER_UP, PAD_UP, PAD_CENTER})) << nPressed;
    }
}

TEST_F(VRHandleNode, TriggerClicksWithinHalfASecond) {
    const struct {
        unsigned nPressTime;
        unsigned nReleaseTime;
        bool bClick;
    } TIMES[] = {
        {1000, 1499, true},
        {1000, 1500, false},
        {1000, 1501, false},
        {1000, 1000, true},
        {1000, 999, false}, // earlier than the press: a huge difference
        {0, 0, true},
        {0, 499, true},
        {0, 500, false},
        {500, 0, false},
        {0xFFFFFFFF, 0xFFFFFFFF, true},
        {0xFFFFFF00, 0x000000F3, true}, // 499 over the wrap
        {0xFFFFFF00, 0x000000F4, false},
        {0, 0xFFFFFFFF, false},
        {1, 0x80000001, false},
        {0x7FFFFFFF, 0x80000000, true},
    };
    for (const auto& time : TIMES) {
        SCOPED_TRACE(std::to_string(time.nPressTime) + " to " + std::to_string(time.nReleaseTime));
        SVRPluginData sample = Sample(1);
        sample.m_nPressTime = time.nPressTime;
        sample.m_nReleaseTime = time.nReleaseTime;
        EXPECT_EQ(FiredBy(sample), Outputs{TRIGGER_DOWN}) << "no click with the press";
        sample.m_bTriggerPressed = 0;
        EXPECT_EQ(FiredBy(sample), time.bClick ? (Outputs{TRIGGER_UP, TRIGGER_CLICK}) : Outputs{TRIGGER_UP});
        EXPECT_EQ(FiredBy(sample), Outputs{}) << "once";
    }
}

TEST_F(VRHandleNode, ClickIsJudgedByTheTimesOfTheRelease) {
    SVRPluginData sample = Sample(1);
    sample.m_nPressTime = 1000;
    sample.m_nReleaseTime = 1100;
    Send(sample);
    sample = Sample(0);
    sample.m_nPressTime = 1000;
    sample.m_nReleaseTime = 5000;
    EXPECT_EQ(Fired(), Outputs{TRIGGER_DOWN});
    EXPECT_EQ(FiredBy(sample), Outputs{TRIGGER_UP});
}

// ---- Touch-pad -----------------------------------------------------------------------------------------------------

TEST_F(VRHandleNode, TouchPadFiresAtItsEdges) {
    EXPECT_EQ(FiredBy(Sample(0, 0)), Outputs{});
    EXPECT_EQ(FiredBy(Sample(0, 1)), Outputs{PAD_DOWN});
    EXPECT_EQ(FiredBy(Sample(0, 1)), Outputs{});
    EXPECT_EQ(FiredBy(Sample(0, 0)), (Outputs{PAD_UP, PAD_CENTER}));
    EXPECT_EQ(FiredBy(Sample(0, 0)), Outputs{});
}

TEST_F(VRHandleNode, TouchPadClicksByWhereTheThumbWasAtTheRelease) {
    const struct {
        float fX;
        float fY;
        int nClick; ///< 0: none
    } RELEASES[] = {
        {0.8f, 0.2f, PAD_RIGHT},
        {0.2f, -0.9f, PAD_BOTTOM},
        {0.1f, 0.1f, PAD_CENTER},
        {0.7f, 0.7f, 0},
        {0.5f, 0.0f, 0},
        {-0.8f, 0.2f, PAD_LEFT},
        {0.2f, 0.9f, PAD_TOP},
        {-0.7f, 0.7f, 0},
        {-0.5f, 0.1f, 0},
        {0.0f, 0.5f, 0},
        {0.49f, -0.49f, PAD_CENTER},
        {0.51f, 0.5f, PAD_RIGHT},
        {-1.0f, -0.99f, PAD_LEFT},
        {-0.99f, -1.0f, PAD_BOTTOM},
        {0.0f, 0.0f, PAD_CENTER},
        {1e30f, 0.0f, PAD_RIGHT},
    };
    for (const auto& release : RELEASES) {
        SCOPED_TRACE(std::to_string(release.fX) + ", " + std::to_string(release.fY));
        // Where the press was doesn't matter.
        EXPECT_EQ(FiredBy(Sample(0, 1, -0.9f, 0.0f)), Outputs{PAD_DOWN});
        EXPECT_EQ(FiredBy(Sample(0, 0, release.fX, release.fY)),
                  release.nClick != 0 ? (Outputs{PAD_UP, release.nClick}) : Outputs{PAD_UP});
    }
}

TEST_F(VRHandleNode, TouchPadClickHasNoTimeLimit) {
    SVRPluginData sample = Sample(0, 1, 0.9f, 0.0f);
    sample.m_nPressTime = 0;
    sample.m_nReleaseTime = 0xFFFFFFF0;
    Send(sample);
    sample.m_bTouchPadPressed = 0;
    EXPECT_EQ(Send(sample), 1);
    EXPECT_EQ(Fired(), (Outputs{PAD_DOWN, PAD_UP, PAD_RIGHT}));
}

TEST_F(VRHandleNode, ThumbThatMovesOrRestsFiresNothing) {
    SVRPluginData sample = Sample(0, 0, 0.9f, 0.0f);
    sample.m_bTouchPadTouched = 1;
    EXPECT_EQ(FiredBy(sample), Outputs{});
    sample.m_fTouchPadX = -0.9f;
    EXPECT_EQ(FiredBy(sample), Outputs{});
    sample.m_bTouchPadTouched = 0;
    EXPECT_EQ(FiredBy(sample), Outputs{});
}

// ---- Trigger and touch-pad together --------------------------------------------------------------------------------

TEST_F(VRHandleNode, TriggerComesBeforeTouchPad) {
    SVRPluginData released = Sample(0, 0, 0.0f, 0.9f);
    released.m_nPressTime = 100;
    released.m_nReleaseTime = 200;
    EXPECT_EQ(FiredBy(Sample(1, 1)), (Outputs{TRIGGER_DOWN, PAD_DOWN}));
    EXPECT_EQ(FiredBy(released), (Outputs{TRIGGER_UP, TRIGGER_CLICK, PAD_UP, PAD_TOP}));
    EXPECT_EQ(FiredBy(Sample(1, 0)), Outputs{TRIGGER_DOWN});
    EXPECT_EQ(FiredBy(Sample(0, 1)), (Outputs{TRIGGER_UP, PAD_DOWN}));
    EXPECT_EQ(FiredBy(Sample(1, 0, -0.9f, 0)), (Outputs{TRIGGER_DOWN, PAD_UP, PAD_LEFT}));
}

TEST_F(VRHandleNode, EventsComeAfterTheOutputsAreWritten) {
    SVRPluginData sample = PosedSample();
    sample.m_bTriggerPressed = 1;
    EXPECT_EQ(Send(sample), 1);
    EXPECT_EQ(m_host.EventCount(), 0) << "posted, not delivered";
    EXPECT_EQ(Values(POSITION), (std::vector<float>{112, 113, 114}));
    EXPECT_EQ(Fired(), Outputs{TRIGGER_DOWN});
}

TEST_F(VRHandleNode, SampleCountsWhateverComesOfItsEvents) {
    const struct {
        SVRPluginData sample;
        Outputs outputs;
    } SAMPLES[] = {{Sample(1, 1), {TRIGGER_DOWN, PAD_DOWN}}, {Sample(0, 0), {TRIGGER_UP, PAD_UP, PAD_CENTER}}};
    for (const size_t nFired : {0u, 1u}) {
        for (const auto& [sample, outputs] : SAMPLES) {
            {
                const FailingText failing(TEXT_OF_EVENTS, static_cast<int>(nFired));
                Send(sample);
            }
            EXPECT_EQ(Fired(), Outputs(outputs.begin(), outputs.begin() + static_cast<std::ptrdiff_t>(nFired)));
            EXPECT_EQ(FiredBy(sample), Outputs{}) << "nothing has changed since";
            SVRPluginData moved = sample;
            moved.m_fTouchPadX = 0.8f;
            EXPECT_EQ(FiredBy(moved), Outputs{}) << "no other click comes of the same release";
        }
    }
}

TEST_F(VRHandleNode, WithoutEventWindowTheStateIsFollowedAllTheSame) {
    m_scene.m_pNode->m_hEventWnd = nullptr;
    EXPECT_EQ(FiredBy(Sample(1)), Outputs{});
    m_scene.m_pNode->m_hEventWnd = m_host.Window();
    EXPECT_EQ(FiredBy(Sample(0)), Outputs{TRIGGER_UP});
}

// ---- Changing hands ------------------------------------------------------------------------------------------------

TEST_F(VRHandleNode, ChangingHandsForgetsWhatTheOldOneHeld) {
    EXPECT_EQ(FiredBy(Sample(1, 1)), (Outputs{TRIGGER_DOWN, PAD_DOWN}));
    m_scene.Input(HANDLE_TYPE).m_nValue = RIGHT_HAND;
    EXPECT_EQ(FiredBy(Sample(1, 1)), Outputs{}) << "still the left one until the next evaluation";
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Fired(), Outputs{}) << "no release follows";
    EXPECT_EQ(Send(Sample(0, 0)), 0);
    SVRPluginData right = Sample(0, 0);
    right.m_nHand = RIGHT_HAND;
    EXPECT_EQ(FiredBy(right), Outputs{}) << "all was released";
    right = Sample(1, 1);
    right.m_nHand = RIGHT_HAND;
    EXPECT_EQ(FiredBy(right), (Outputs{TRIGGER_DOWN, PAD_DOWN}));
    m_scene.Input(HANDLE_TYPE).m_nValue = LEFT_HAND;
    m_scene.Evaluate();
    EXPECT_EQ(FiredBy(Sample(1, 1)), (Outputs{TRIGGER_DOWN, PAD_DOWN})) << "the new hand starts with all released";
}

TEST_F(VRHandleNode, UnchangedHandKeepsWhatItHolds) {
    EXPECT_EQ(FiredBy(Sample(1, 1)), (Outputs{TRIGGER_DOWN, PAD_DOWN}));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(m_scene.Evaluate(), 1);
        EXPECT_EQ(FiredBy(Sample(1, 1)), Outputs{});
    }
}

TEST_F(VRHandleNode, HandChangedBackBetweenEvaluationsIsUnchanged) {
    EXPECT_EQ(FiredBy(Sample(1)), Outputs{TRIGGER_DOWN});
    m_scene.Input(HANDLE_TYPE).m_nValue = RIGHT_HAND;
    m_scene.Input(HANDLE_TYPE).m_nValue = LEFT_HAND;
    m_scene.Evaluate();
    EXPECT_EQ(FiredBy(Sample(0)), Outputs{TRIGGER_UP});
}

TEST_F(VRHandleNode, HandMayBeAnyNumber) {
    for (const int nHand : {2, -1, 2147483647}) {
        m_scene.Input(HANDLE_TYPE).m_nValue = nHand;
        m_scene.Evaluate();
        SVRPluginData sample = Sample(1);
        sample.m_nHand = nHand;
        EXPECT_EQ(FiredBy(sample), Outputs{TRIGGER_DOWN}) << nHand;
        EXPECT_EQ(Send(Sample()), 0);
    }
}

TEST_F(VRHandleNode, NodesFollowTheirOwnHands) {
    NodeScene other(m_host, TYPE_VR_HANDLE);
    other.Input(HANDLE_TYPE).m_nValue = RIGHT_HAND;
    other.Evaluate();
    SVRPluginData right = PosedSample(0);
    right.m_nHand = RIGHT_HAND;
    right.m_bTriggerPressed = 1;
    EXPECT_EQ(other.Send(DEVICE, 1, &right), 1);
    EXPECT_EQ(Send(right), 0);
    EXPECT_EQ(Send(PosedSample()), 1);
    EXPECT_EQ(Fired(), Outputs{TRIGGER_DOWN});
    EXPECT_EQ(Values(POSITION), (std::vector<float>{112, 113, 114}));
    EXPECT_EQ(other.Output(852).m_fValue, 12.0f);
}

// ---- Memory --------------------------------------------------------------------------------------------------------

TEST_F(VRHandleNode, SamplesAllocateNothing) {
    if (!AllocationCount()) {
        GTEST_SKIP() << "allocations aren't counted here";
    }
    AddObject(L"Hand");
    m_scene.Input(OBJECT_NAME).m_strValue = L"Hand";
    m_scene.Evaluate();
    SVRPluginData sample = PosedSample();
    sample.m_bTriggerPressed = 1;
    Send(sample);
    const auto nBefore = *AllocationCount();
    for (int i = 0; i < 100; ++i) {
        sample.m_fPose[12] = static_cast<float>(i);
        m_scene.Send(DEVICE, 1, &sample);
        m_scene.Evaluate();
    }
    EXPECT_EQ(*AllocationCount(), nBefore);
}

} // namespace
