// The touch gesture node: its tables and their upgrade, the strokes that it follows, what it fires and logs.
#include <cmath>
#include <cstdint>
#include <limits>

#include "HeapUse.h"
#include "HostCalls.h"
#include "HostSetup.h"
#include "ModuleHost.h"

namespace {

const int DEVICE = 1;
const int PRESS = 3005;
const int RELEASE = 3006;
const int SAMPLE = 3013;

const unsigned VERSION = 7;
const unsigned ENABLE = 2;

const int START_MOVE = 752;
const int END_MOVE = 753;
const int SWIPE_LEFT = 754;
const int SWIPE_RIGHT = 755;
const int SWIPE_UP = 756;
const int SWIPE_DOWN = 757;
const int SINGLE_TAP = 758;

using Outputs = std::vector<int>;

SQORMouseData PixelSample(int nX, int nY, int nPointer = 0) {
    // The coordinates that don't count point somewhere else.
    return SQORMouseData(nPointer, -7777.0f, 8888.0f, CPoint(nX, nY), 0);
}

SQORMouseData RelativeSample(float fX, float fY, int nPointer = 0, int bRelative = 1) {
    return SQORMouseData(nPointer, fX, fY, CPoint(-7777, 8888), bRelative);
}

std::vector<LogLine> Lines(std::initializer_list<const char*> messages) {
    std::vector<LogLine> lines;
    for (const char* pszMessage : messages) {
        lines.push_back(Information(std::string("[Clip.Graph.Node]触发输出事件[") + pszMessage + "]"));
    }
    return lines;
}

/// The log lines of the events that were fired, in order.
std::vector<LogLine> LinesOf(const Outputs& outputs) {
    const struct {
        int nOutput;
        const char* pszMessage;
    } MESSAGES[] = {{758, "单击"},     {752, "开始拖动"}, {753, "结束拖动"}, {754, "向左滑动"},
                    {755, "向右滑动"}, {756, "向上滑动"}, {757, "向下滑动"}};
    std::vector<LogLine> lines;
    for (const int nOutput : outputs) {
        for (const auto& message : MESSAGES) {
            if (message.nOutput == nOutput) {
                lines.push_back(Lines({message.pszMessage}).front());
            }
        }
    }
    return lines;
}

class GestureNode : public ModuleTest {
protected:
    GestureNode() { m_scene.Evaluate(); }

    int Send(int nEvent, SQORMouseData sample) { return m_scene.Send(DEVICE, nEvent, &sample); }

    /// What was fired since the last call; each event must have its log line, in the same order.
    Outputs Fired() {
        const Outputs outputs = m_host.TakeFiredOutputs();
        EXPECT_EQ(m_host.TakeLog(), LinesOf(outputs));
        EXPECT_TRUE(m_host.TakeOtherMessages().empty());
        EXPECT_TRUE(m_host.TakeReportedEvents().empty());
        return outputs;
    }

    /// What a whole stroke of one pointer fires: the first sample presses, the last one releases.
    Outputs FiredBy(const std::vector<SQORMouseData>& samples) {
        for (size_t i = 0; i < samples.size(); ++i) {
            const int nEvent = i == 0 ? PRESS : i + 1 == samples.size() ? RELEASE : SAMPLE;
            EXPECT_EQ(Send(nEvent, samples[i]), 1) << "sample " << i;
        }
        return Fired();
    }

    Outputs FiredByPixels(std::initializer_list<CPoint> points) {
        std::vector<SQORMouseData> samples;
        for (const CPoint& point : points) {
            samples.push_back(PixelSample(point.x, point.y));
        }
        return FiredBy(samples);
    }

    Outputs FiredByUnits(std::initializer_list<std::pair<float, float>> points) {
        std::vector<SQORMouseData> samples;
        for (const auto& [fX, fY] : points) {
            samples.push_back(RelativeSample(fX, fY));
        }
        return FiredBy(samples);
    }

    /// The node follows no stroke: a new one of any pointer is taken, and forgets nothing of before.
    void ExpectIdle() { EXPECT_EQ(FiredByPixels({{0, 0}, {0, 0}}), Outputs{SINGLE_TAP}); }

    NodeScene m_scene{m_host, TYPE_GESTURE};
};

// ---- Tables --------------------------------------------------------------------------------------------------------

TEST_F(GestureNode, Fresh) {
    ExpectFreshNode(*m_host.CreateNode(TYPE_GESTURE), TYPE_GESTURE, "TOUCH_CONTROL_TOUCH_GESTURE");
}

TEST_F(GestureNode, Inputs) {
    ExpectInputGroups(m_scene.m_pNode->m_lstParamGroup, {{701,
                                                          "Base param",
                                                          "TOUCH_CONTROL_TOUCH_GESTURE",
                                                          {{.nId = 7,
                                                            .pszName = "Version",
                                                            .pszDisplay = "Version",
                                                            .nType = 2,
                                                            .nControl = 1,
                                                            .range = ExpectedRange{1, 1, 10000, 1},
                                                            .flags = ExpectedFlags{0, 0, 0, 0},
                                                            .nValue = 3,
                                                            .fValue = 1.0f},
                                                           {.nId = 2, // on by its range alone
                                                            .pszName = "Enable",
                                                            .pszDisplay = "TOUCH_CONTROL_ENABLED",
                                                            .nType = 5,
                                                            .nControl = 1,
                                                            .range = ExpectedRange{1, 0, 1, 1},
                                                            .flags = ExpectedFlags{0, 0, 1, 0},
                                                            .nValue = 1,
                                                            .fValue = 1.0f}}}});
}

TEST_F(GestureNode, DisplayTextOfVersionIsNotLookedUp) {
    m_host.WriteFile("Config/Texts/en.json", R"({"Version": "looked up", "TOUCH_CONTROL_ENABLED": "On"})");
    ASSERT_TRUE(SetTextTable(ETextTable::English));
    const NodePtr pNode = m_host.CreateNode(TYPE_GESTURE);
    EXPECT_EQ(Utf8(FindParam(pNode->m_lstParamGroup, MakeParamGuid(VERSION))->m_strDisplay), "Version");
    EXPECT_EQ(Utf8(FindParam(pNode->m_lstParamGroup, MakeParamGuid(ENABLE))->m_strDisplay), "On");
}

const ExpectedParam SINGLE_TAP_PIN = EventPin(758, "SingleTap", "TOUCH_CONTROL_EVENT_SINGLETAP");

TEST_F(GestureNode, Outputs) {
    ExpectOutputGroups(m_scene.m_graphNode.m_lstOutputGroup,
                       {{751,
                         "Outputs",
                         "TOUCH_CONTROL_OUTPUTS",
                         {SINGLE_TAP_PIN, EventPin(752, "StartMove", "TOUCH_CONTROL_EVENT_BEGIN"),
                          EventPin(753, "EndMove", "TOUCH_CONTROL_EVENT_END"),
                          EventPin(754, "SwipeLeft", "TOUCH_CONTROL_EVENT_SWIPELEFT"),
                          EventPin(755, "SwipeRight", "TOUCH_CONTROL_EVENT_SWIPERIGHT"),
                          EventPin(756, "SwipeUp", "TOUCH_CONTROL_EVENT_SWIPETOP"),
                          EventPin(757, "SwipeDown", "TOUCH_CONTROL_EVENT_SWIPEDOWN")}}});
}

TEST_F(GestureNode, OutputsAreMadeOnce) {
    const auto before = Items(m_scene.m_graphNode.m_lstOutputGroup);
    ASSERT_EQ(before.size(), 1u);
    m_scene.m_pNode->GetNodeOutput(&m_scene.m_graphNode);
    EXPECT_EQ(Items(m_scene.m_graphNode.m_lstOutputGroup), before);
    EXPECT_EQ(before[0]->m_lstParam.GetCount(), 7);
}

TEST_F(GestureNode, OutputsOfNoGraphNodeAreNotMade) {
    m_scene.m_pNode->GetNodeOutput(nullptr);
}

TEST_F(GestureNode, InheritsTheOtherOperations) {
    EXPECT_EQ(m_scene.m_pNode->NeedUpdateSingleParam(MakeParamGuid(ENABLE)), FALSE);
    EXPECT_EQ(m_scene.m_pNode->UpdateSingleParamValue(MakeParamGuid(ENABLE)), 0);
    m_scene.m_pNode->Init();
    EXPECT_EQ(m_scene.m_pNode->m_lstParamGroup.GetCount(), 1);
}

// ---- Older projects ------------------------------------------------------------------------------------------------

class GestureNodeUpgrade : public ModuleTest {
protected:
    VEKParam& Own(unsigned nId) const { return *FindParam(m_pNode->m_lstParamGroup, MakeParamGuid(nId)); }

    /// A graph node as an older generation left it: an output group without the tap, and a second group.
    void MakeOldOutputs() {
        for (const unsigned nGroup : {751u, 999u}) {
            auto* pGroup = new VEKParamGroup;
            pGroup->m_guid = MakeParamGuid(nGroup);
            m_graphNode.m_lstOutputGroup.AddTail(pGroup);
        }
        for (unsigned nId = 752; nId <= 757; ++nId) {
            AddOutput(0, nId);
        }
    }

    void AddOutput(int nGroup, unsigned nId) {
        VEKParamGroup* pGroup = Items(m_graphNode.m_lstOutputGroup).at(static_cast<size_t>(nGroup));
        pGroup->m_lstParam.AddTail(new SQORNodeOutput(nId, L"", L"", 26, 7));
    }

    std::vector<unsigned> Ids(int nGroup) const {
        std::vector<unsigned> ids;
        for (const VEKParam* pParam :
             Items(Items(m_graphNode.m_lstOutputGroup).at(static_cast<size_t>(nGroup))->m_lstParam)) {
            ids.push_back(pParam->m_guid.Data1);
        }
        return ids;
    }

    SGraphNode m_graphNode;
    NodePtr m_pNode = m_host.CreateNode(TYPE_GESTURE);
};

using Ids = std::vector<unsigned>;

TEST_F(GestureNodeUpgrade, OlderVersionsAreRaisedAndTheirEnableMadeAvailable) {
    for (const int nVersion : {2, 1, 0, -1, -2147483647 - 1}) {
        SCOPED_TRACE(nVersion);
        Own(VERSION).m_nValue = nVersion;
        Own(ENABLE).m_bAvailable = 0;
        m_pNode->InitParam();
        EXPECT_EQ(Own(VERSION).m_nValue, 3);
        EXPECT_EQ(Own(ENABLE).m_bAvailable, 1);
    }
}

TEST_F(GestureNodeUpgrade, CurrentVersionKeepsItsFlag) {
    for (const int nFlag : {0, 1, 5}) {
        Own(VERSION).m_nValue = 3;
        Own(ENABLE).m_bAvailable = nFlag;
        m_pNode->InitParam();
        EXPECT_EQ(Own(VERSION).m_nValue, 3);
        EXPECT_EQ(Own(ENABLE).m_bAvailable, nFlag);
    }
}

TEST_F(GestureNodeUpgrade, NewerVersionsAreSetBack) {
    for (const int nVersion : {4, 10000, 2147483647}) {
        Own(VERSION).m_nValue = nVersion;
        Own(ENABLE).m_bAvailable = 0;
        m_pNode->InitParam();
        EXPECT_EQ(Own(VERSION).m_nValue, 3);
        EXPECT_EQ(Own(ENABLE).m_bAvailable, 0);
    }
}

TEST_F(GestureNodeUpgrade, OtherValuesAreKept) {
    Own(VERSION).m_nValue = 1;
    Own(ENABLE).m_nValue = 0;
    m_pNode->InitParam();
    EXPECT_EQ(Own(ENABLE).m_nValue, 0);
    EXPECT_EQ(m_pNode->m_lstParamGroup.GetCount(), 1);
    EXPECT_EQ(m_pNode->m_lstParamGroup.GetHead()->m_lstParam.GetCount(), 2);
}

TEST_F(GestureNodeUpgrade, MissingVersionCountsAsZero) {
    Own(ENABLE).m_bAvailable = 0;
    VEKParam& version = Own(VERSION);
    version.m_guid = MakeParamGuid(9999);
    m_pNode->InitParam();
    EXPECT_EQ(Own(ENABLE).m_bAvailable, 1);
    EXPECT_EQ(version.m_nValue, 3) << "as it was made";
    EXPECT_EQ(m_pNode->m_lstParamGroup.GetHead()->m_lstParam.GetCount(), 2) << "none is added";
}

TEST_F(GestureNodeUpgrade, EnableIsLookedForInTheFirstGroup) {
    Own(VERSION).m_nValue = 1;
    auto* pFirst = new VEKParamGroup;
    m_pNode->m_lstParamGroup.AddHead(pFirst);
    Own(ENABLE).m_bAvailable = 0;
    m_pNode->InitParam();
    EXPECT_EQ(Own(VERSION).m_nValue, 3) << "the version is found in any group";
    EXPECT_EQ(Own(ENABLE).m_bAvailable, 0);
}

TEST_F(GestureNodeUpgrade, MissingEnableIsNoFault) {
    Own(VERSION).m_nValue = 1;
    Own(ENABLE).m_guid = MakeParamGuid(9999);
    m_pNode->InitParam();
    EXPECT_EQ(Own(VERSION).m_nValue, 3);
}

TEST_F(GestureNodeUpgrade, WithoutAnyGroupItRaisesInvalidArgument) {
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

TEST_F(GestureNodeUpgrade, OldOutputsGainTheTapAtTheEndOfTheFirstGroup) {
    MakeOldOutputs();
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(Ids(0), (::Ids{752, 753, 754, 755, 756, 757, 758}));
    EXPECT_EQ(Ids(1), ::Ids{});
    ExpectOutput(*Items(m_graphNode.m_lstOutputGroup)[0]->m_lstParam.GetTail(), SINGLE_TAP_PIN);
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(Ids(0), (::Ids{752, 753, 754, 755, 756, 757, 758})) << "once";
    EXPECT_EQ(m_graphNode.m_lstOutputGroup.GetCount(), 2);
}

TEST_F(GestureNodeUpgrade, TapIsAddedFromVersionTwoOn) {
    MakeOldOutputs();
    for (const int nVersion : {1, 0, -1}) {
        Own(VERSION).m_nValue = nVersion;
        m_pNode->GetNodeOutput(&m_graphNode);
        EXPECT_EQ(Ids(0).size(), 6u) << nVersion;
    }
    Own(VERSION).m_nValue = 2;
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(Ids(0).size(), 7u);
}

TEST_F(GestureNodeUpgrade, TapIsAddedAfterInitParamOfAnOldProject) {
    MakeOldOutputs();
    Own(VERSION).m_nValue = 1;
    m_pNode->InitParam();
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(Ids(0).size(), 7u);
}

TEST_F(GestureNodeUpgrade, VersionIsTheNodesOwn) {
    MakeOldOutputs();
    Own(VERSION).m_guid = MakeParamGuid(9999);
    auto* pGroup = new VEKParamGroup;
    auto* pVersion = new VEKParam(VERSION, L"Version", L"", 2, 1);
    pVersion->m_nValue = 3;
    pGroup->m_lstParam.AddTail(pVersion);
    m_graphNode.m_lstInputGroup.AddTail(pGroup);
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(Ids(0).size(), 6u);
}

TEST_F(GestureNodeUpgrade, TapInAnotherGroupIsEnough) {
    MakeOldOutputs();
    AddOutput(1, 758);
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(Ids(0).size(), 6u);
    EXPECT_EQ(Ids(1), ::Ids{758});
}

TEST_F(GestureNodeUpgrade, MissingFirstGroupRaisesInvalidArgument) {
    m_graphNode.m_lstOutputGroup.AddTail(static_cast<VEKParamGroup*>(nullptr));
    bool bRaised = false;
    try {
        m_pNode->GetNodeOutput(&m_graphNode);
    } catch (CInvalidArgException* pException) {
        bRaised = true;
        pException->Delete();
    }
    EXPECT_TRUE(bRaised);
    m_graphNode.m_lstOutputGroup.RemoveAll();
}

TEST_F(GestureNodeUpgrade, ForeignFirstGroupGainsTheTap) {
    m_graphNode.m_lstOutputGroup.AddTail(new VEKParamGroup);
    m_pNode->GetNodeOutput(&m_graphNode);
    EXPECT_EQ(Ids(0), ::Ids{758});
    EXPECT_EQ(m_graphNode.m_lstOutputGroup.GetCount(), 1);
}

// ---- Evaluation ----------------------------------------------------------------------------------------------------

TEST_F(GestureNode, EvaluationAnswersWhetherItIsEnabled) {
    EXPECT_EQ(m_scene.Evaluate(), 1);
    m_scene.Input(ENABLE).m_nValue = 0;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    for (const int nValue : {2, -1, 256, -2147483647 - 1}) {
        m_scene.Input(ENABLE).m_nValue = nValue;
        EXPECT_EQ(m_scene.Evaluate(), 1) << nValue;
        EXPECT_EQ(FiredByPixels({{0, 0}, {0, 0}}), Outputs{SINGLE_TAP}) << nValue;
    }
}

TEST_F(GestureNode, EvaluationWritesNoOutput) {
    for (unsigned nId = 752; nId <= 758; ++nId) {
        m_scene.Output(nId).m_nValue = 77;
    }
    FiredByPixels({{0, 0}, {100, 0}, {200, 0}});
    EXPECT_EQ(m_scene.Evaluate(), 1);
    for (unsigned nId = 752; nId <= 758; ++nId) {
        EXPECT_EQ(m_scene.Output(nId).m_nValue, 77) << nId;
    }
}

TEST_F(GestureNode, OutputsNeedNotBeThere) {
    SGraphNode bare;
    bare.m_strName = L"Graph";
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(&bare), 1);
    EXPECT_EQ(FiredByPixels({{0, 0}, {0, 0}}), Outputs{SINGLE_TAP});
    EXPECT_TRUE(bare.m_lstOutputGroup.IsEmpty());
    m_scene.m_pNode->ProcessNode(nullptr);
}

TEST_F(GestureNode, EvaluationNeedsNoOwner) {
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    EXPECT_EQ(m_scene.Evaluate(), 1);
}

TEST_F(GestureNode, EnableOfTheGraphWinsOverTheNodesOwn) {
    VEKParam& graphEnable = m_scene.AddGraphInput(ENABLE, 5, 1);
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Send(PRESS, PixelSample(0, 0)), 0);
    graphEnable.m_nValue = 1;
    m_scene.Input(ENABLE).m_nValue = 0;
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Send(PRESS, PixelSample(0, 0)), 1);
}

TEST_F(GestureNode, MissingEnableLeavesTheNodeAsItWas) {
    m_scene.m_pNode->Empty();
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(FiredByPixels({{0, 0}, {0, 0}}), Outputs{SINGLE_TAP}) << "still enabled";
    NodeScene other(m_host, TYPE_GESTURE);
    other.m_pNode->Empty();
    EXPECT_EQ(other.Evaluate(), 0);
    SQORMouseData sample = PixelSample(0, 0);
    EXPECT_EQ(other.Send(DEVICE, PRESS, &sample), 0) << "never was";
}

TEST_F(GestureNode, EvaluationWithoutGraphNodeForgetsTheGraphNode) {
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    EXPECT_EQ(Send(PRESS, PixelSample(0, 0)), 0);
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(Fired(), Outputs{});
    m_scene.Evaluate();
    EXPECT_EQ(Send(PRESS, PixelSample(0, 0)), 1);
}

// ---- What it ignores -----------------------------------------------------------------------------------------------

TEST_F(GestureNode, IgnoresEverythingBeforeTheFirstEvaluation) {
    NodeScene scene(m_host, TYPE_GESTURE);
    SQORMouseData sample = PixelSample(0, 0);
    for (int nEvent = 3000; nEvent <= 3020; ++nEvent) {
        EXPECT_EQ(scene.Send(DEVICE, nEvent, &sample), 0) << nEvent;
    }
    EXPECT_EQ(scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(Fired(), Outputs{});
}

TEST_F(GestureNode, IgnoresEverythingWithoutOwner) {
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    for (const int nEvent : {PRESS, SAMPLE, RELEASE, 3002}) {
        EXPECT_EQ(Send(nEvent, PixelSample(0, 0)), 0);
    }
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(Fired(), Outputs{});
    m_scene.m_pNode->m_pOwnerClip = &m_scene.m_clip;
    ExpectIdle();
}

TEST_F(GestureNode, IgnoresEverythingWhileDisabled) {
    Send(PRESS, PixelSample(0, 0));
    m_scene.Input(ENABLE).m_nValue = 0;
    EXPECT_EQ(Send(SAMPLE, PixelSample(10, 0)), 1) << "not evaluated yet";
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Send(SAMPLE, PixelSample(500, 0)), 0);
    EXPECT_EQ(Send(RELEASE, PixelSample(500, 0)), 0);
    EXPECT_EQ(Send(PRESS, PixelSample(0, 0, 1)), 0);
    EXPECT_EQ(Fired(), Outputs{});
    m_scene.Input(ENABLE).m_nValue = 1;
    EXPECT_EQ(Send(RELEASE, PixelSample(500, 0)), 0) << "not evaluated yet";
    m_scene.Evaluate();
    EXPECT_EQ(Send(PRESS, PixelSample(0, 0, 1)), 0) << "the stroke is still followed";
    EXPECT_EQ(Send(RELEASE, PixelSample(500, 0)), 1);
    EXPECT_EQ(Fired(), Outputs{SINGLE_TAP}) << "what came meanwhile isn't part of it";
}

TEST_F(GestureNode, IgnoresOtherDevices) {
    for (const int nDevice : {0, 2, 3, 4, 5, 6, 7, -1, 257, 2147483647}) {
        SQORMouseData sample = PixelSample(0, 0);
        for (const int nEvent : {PRESS, SAMPLE, RELEASE, 3002}) {
            EXPECT_EQ(m_scene.Send(nDevice, nEvent, &sample), 0);
        }
    }
    EXPECT_EQ(Fired(), Outputs{});
    ExpectIdle();
}

TEST_F(GestureNode, IgnoresRecordsWithoutSample) {
    for (int nEvent = 3000; nEvent <= 3020; ++nEvent) {
        EXPECT_EQ(m_scene.Send(DEVICE, nEvent, nullptr), 0) << nEvent;
    }
    Send(PRESS, PixelSample(0, 0));
    EXPECT_EQ(m_scene.Send(DEVICE, RELEASE, nullptr), 0);
    EXPECT_EQ(Fired(), Outputs{});
    EXPECT_EQ(Send(PRESS, PixelSample(0, 0, 1)), 0) << "the stroke is still followed";
}

TEST_F(GestureNode, OtherIdsAreConsumedWithoutEffect) {
    Send(PRESS, PixelSample(0, 0));
    Send(SAMPLE, PixelSample(100, 0));
    EXPECT_EQ(Fired(), Outputs{START_MOVE});
    for (int nEvent = 2990; nEvent <= 3030; ++nEvent) {
        if (nEvent != PRESS && nEvent != SAMPLE && nEvent != RELEASE) {
            EXPECT_EQ(Send(nEvent, PixelSample(0, 500)), 1) << nEvent;
            EXPECT_EQ(Send(nEvent, PixelSample(0, 500, 1)), 1) << nEvent << ", another pointer";
        }
    }
    for (const int nEvent : {0, 1, -1, -3005, 0x10000 + 3005, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(Send(nEvent, PixelSample(0, 500)), 1) << nEvent;
    }
    EXPECT_EQ(Fired(), Outputs{});
    EXPECT_EQ(Send(RELEASE, PixelSample(200, 0)), 1);
    EXPECT_EQ(Fired(), (Outputs{END_MOVE, SWIPE_RIGHT}));
}

TEST_F(GestureNode, NullRecordIsAnError) {
    Send(PRESS, PixelSample(0, 0));
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Error("[Clip.Graph.Node]DevIOEventOccurred函数数据错误")});
    EXPECT_EQ(Send(RELEASE, PixelSample(0, 0)), 1);
    EXPECT_EQ(Fired(), Outputs{SINGLE_TAP});
}

TEST_F(GestureNode, NullRecordIsAnErrorWhileDisabledToo) {
    m_scene.Input(ENABLE).m_nValue = 0;
    m_scene.Evaluate();
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Error("[Clip.Graph.Node]DevIOEventOccurred函数数据错误")});
}

// ---- Strokes -------------------------------------------------------------------------------------------------------

TEST_F(GestureNode, PressAndReleaseIsATap) {
    EXPECT_EQ(FiredByPixels({{100, 200}, {100, 200}}), Outputs{SINGLE_TAP});
    EXPECT_EQ(FiredByUnits({{100, 200}, {100, 200}}), Outputs{SINGLE_TAP});
}

TEST_F(GestureNode, NothingIsFiredBeforeTheRelease) {
    EXPECT_EQ(Send(PRESS, PixelSample(0, 0)), 1);
    EXPECT_EQ(Fired(), Outputs{});
    EXPECT_EQ(Send(SAMPLE, PixelSample(49, 49)), 1);
    EXPECT_EQ(Fired(), Outputs{});
}

TEST_F(GestureNode, SmallMovementsStayATap) {
    Send(PRESS, PixelSample(1000, 1000));
    for (int i = 0; i < 500; ++i) {
        Send(SAMPLE, PixelSample(1000 + i % 99 - 49, 1000 - i % 99 + 49));
    }
    EXPECT_EQ(Fired(), Outputs{});
    Send(RELEASE, PixelSample(1049, 951));
    EXPECT_EQ(Fired(), Outputs{SINGLE_TAP});
}

TEST_F(GestureNode, ReleaseFarAwayIsATapToo) {
    // A drag begins with a sample, not with the release.
    EXPECT_EQ(FiredByPixels({{0, 0}, {500, 0}}), Outputs{SINGLE_TAP});
    EXPECT_EQ(FiredByPixels({{0, 0}, {10, 0}, {500, 0}}), Outputs{SINGLE_TAP});
    EXPECT_EQ(FiredByUnits({{0, 0}, {10, 0}, {500, 0}}), Outputs{SINGLE_TAP});
}

TEST_F(GestureNode, DragStartsOnceWhenASampleIsFarEnough) {
    Send(PRESS, PixelSample(0, 0));
    Send(SAMPLE, PixelSample(49, 49));
    EXPECT_EQ(Fired(), Outputs{});
    Send(SAMPLE, PixelSample(49, 50));
    EXPECT_EQ(m_host.TakeLog(), Lines({"开始拖动"}));
    EXPECT_EQ(m_host.TakeFiredOutputs(), Outputs{START_MOVE});
    Send(SAMPLE, PixelSample(300, 0));
    Send(SAMPLE, PixelSample(0, 0));
    Send(SAMPLE, PixelSample(0, 300));
    EXPECT_EQ(Fired(), Outputs{}) << "once a stroke";
}

TEST_F(GestureNode, DragStartsAtFiftyRelativeUnits) {
    Send(PRESS, RelativeSample(0, 0));
    Send(SAMPLE, RelativeSample(std::nextafter(50.0f, 0.0f), -std::nextafter(50.0f, 0.0f)));
    EXPECT_EQ(Fired(), Outputs{});
    Send(SAMPLE, RelativeSample(0, -50.0f));
    EXPECT_EQ(Fired(), Outputs{START_MOVE});
}

TEST_F(GestureNode, SwipesInPixels) {
    EXPECT_EQ(FiredByPixels({{0, 0}, {100, 0}, {200, 0}}), (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
    EXPECT_EQ(FiredByPixels({{0, 0}, {-100, 0}, {-200, 0}}), (Outputs{START_MOVE, END_MOVE, SWIPE_LEFT}));
    EXPECT_EQ(FiredByPixels({{0, 0}, {0, -100}, {0, -200}}), (Outputs{START_MOVE, END_MOVE, SWIPE_UP}));
    EXPECT_EQ(FiredByPixels({{0, 0}, {0, 100}, {0, 200}}), (Outputs{START_MOVE, END_MOVE, SWIPE_DOWN}));
}

TEST_F(GestureNode, SwipesInRelativeUnits) {
    EXPECT_EQ(FiredByUnits({{0, 0}, {100, 0}, {200, 0}}), (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
    EXPECT_EQ(FiredByUnits({{0, 0}, {-100, 0}, {-200, 0}}), (Outputs{START_MOVE, END_MOVE, SWIPE_LEFT}));
    EXPECT_EQ(FiredByUnits({{0, 0}, {0, 100}, {0, 200}}), (Outputs{START_MOVE, END_MOVE, SWIPE_UP}));
    EXPECT_EQ(FiredByUnits({{0, 0}, {0, -100}, {0, -200}}), (Outputs{START_MOVE, END_MOVE, SWIPE_DOWN}));
}

TEST_F(GestureNode, EventsAndLogLinesOfASwipeComeInOrder) {
    Send(PRESS, PixelSample(0, 0));
    Send(SAMPLE, PixelSample(100, 0));
    Send(RELEASE, PixelSample(200, 0));
    EXPECT_EQ(m_host.TakeLog(), Lines({"开始拖动", "结束拖动", "向右滑动"}));
    EXPECT_EQ(m_host.TakeFiredOutputs(), (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
    Send(PRESS, PixelSample(0, 0));
    Send(RELEASE, PixelSample(0, 0));
    EXPECT_EQ(m_host.TakeLog(), Lines({"单击"}));
}

TEST_F(GestureNode, DragsWithoutDirectionEndWithoutSwipe) {
    EXPECT_EQ(FiredByPixels({{0, 0}, {100, 100}, {200, 200}}), (Outputs{START_MOVE, END_MOVE})) << "too steep";
    EXPECT_EQ(FiredByPixels({{0, 0}, {100, 0}, {100, 100}}), (Outputs{START_MOVE, END_MOVE})) << "bent";
    EXPECT_EQ(FiredByPixels({{0, 0}, {100, 0}, {0, 0}}), (Outputs{START_MOVE, END_MOVE})) << "there and back";
    EXPECT_EQ(FiredByUnits({{0, 0}, {100, 100}, {200, 200}}), (Outputs{START_MOVE, END_MOVE}));
    EXPECT_EQ(FiredByUnits({{0, 0}, {100, 0}, {0, 0}}), (Outputs{START_MOVE, END_MOVE}));
}

TEST_F(GestureNode, SwipeMayZigzagWithinItsDirection) {
    EXPECT_EQ(FiredByPixels({{0, 0}, {100, -60}, {200, 0}}), (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
}

TEST_F(GestureNode, KeyPointsAreFirstMiddleAndLast) {
    // n counts the release: of 4 samples the third is the middle, of 5 the third, of 6 the fourth, of 7 the fourth.
    const CPoint AWAY(0, 300);
    EXPECT_EQ(FiredByPixels({{0, 0}, AWAY, {100, 0}, {200, 0}}), (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
    EXPECT_EQ(FiredByPixels({{0, 0}, {100, 0}, AWAY, {200, 0}}), (Outputs{START_MOVE, END_MOVE}));
    EXPECT_EQ(FiredByPixels({{0, 0}, AWAY, {100, 0}, AWAY, {200, 0}}), (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
    EXPECT_EQ(FiredByPixels({{0, 0}, AWAY, AWAY, {100, 0}, AWAY, {200, 0}}),
              (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
    EXPECT_EQ(FiredByPixels({{0, 0}, AWAY, {100, 0}, AWAY, AWAY, {200, 0}}), (Outputs{START_MOVE, END_MOVE}));
    EXPECT_EQ(FiredByPixels({{0, 0}, AWAY, AWAY, {100, 0}, AWAY, AWAY, {200, 0}}),
              (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
    EXPECT_EQ(FiredByUnits({{0, 0}, {0, 300}, {100, 0}, {0, 300}, {200, 0}}),
              (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
}

TEST_F(GestureNode, EqualMiddleAndLastPointsStillSwipe) {
    EXPECT_EQ(FiredByPixels({{0, 0}, {200, 0}, {200, 0}}), (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
    EXPECT_EQ(FiredByUnits({{0, 0}, {0, 200}, {0, 200}}), (Outputs{START_MOVE, END_MOVE, SWIPE_UP}));
    EXPECT_EQ(FiredByUnits({{0, 0}, {100, 0}, {0.0f, 0.0f}, {-0.0f, 0.0f}}), (Outputs{START_MOVE, END_MOVE}))
        << "the middle and the last point are the first one";
}

// Where a stroke at 30 degrees ends is a matter of roundings: units are reckoned in float all through, pixels in double
// until the angle is rounded to a float. In the other kind's arithmetic all of these but one would be told otherwise.
TEST_F(GestureNode, BorderOfTheConeIsThatOfEachKindsArithmetic) {
    const auto Ended = [](bool bInside, int nSwipe) {
        return bInside ? Outputs{START_MOVE, END_MOVE, nSwipe} : Outputs{START_MOVE, END_MOVE};
    };
    const struct {
        float fAlong;
        float fAcross;
        bool bInside;
    } UNITS[] = {{100, 57.7350349f, true},  {100, 57.735043f, false}, // outside in any arithmetic
                 {52, 30.0222206f, true},   {53, 30.5995693f, true},
                 {999, 576.772888f, false}, {1998, 1153.54578f, false}};
    for (const auto& [fAlong, fAcross, bInside] : UNITS) {
        SCOPED_TRACE(fAcross);
        EXPECT_EQ(FiredByUnits({{0, 0}, {fAlong, fAcross}, {fAlong, fAcross}}), Ended(bInside, SWIPE_RIGHT));
        EXPECT_EQ(FiredByUnits({{0, 0}, {-fAlong, fAcross}, {-fAlong, fAcross}}), Ended(bInside, SWIPE_LEFT));
        EXPECT_EQ(FiredByUnits({{0, 0}, {fAcross, fAlong}, {fAcross, fAlong}}), Ended(bInside, SWIPE_UP));
        EXPECT_EQ(FiredByUnits({{0, 0}, {fAcross, -fAlong}, {fAcross, -fAlong}}), Ended(bInside, SWIPE_DOWN));
    }
    const struct {
        int nAlong;
        int nAcross;
        bool bInside;
    } PIXELS[] = {{3691, 2131, true}, {30879, 17828, true}, {6031, 3482, false}, {7020, 4053, false}};
    for (const auto& [nAlong, nAcross, bInside] : PIXELS) {
        SCOPED_TRACE(nAcross);
        EXPECT_EQ(FiredByPixels({{0, 0}, {nAlong, nAcross}, {nAlong, nAcross}}), Ended(bInside, SWIPE_RIGHT));
        EXPECT_EQ(FiredByPixels({{0, 0}, {-nAlong, nAcross}, {-nAlong, nAcross}}), Ended(bInside, SWIPE_LEFT));
        EXPECT_EQ(FiredByPixels({{0, 0}, {nAcross, -nAlong}, {nAcross, -nAlong}}), Ended(bInside, SWIPE_UP));
        EXPECT_EQ(FiredByPixels({{0, 0}, {nAcross, nAlong}, {nAcross, nAlong}}), Ended(bInside, SWIPE_DOWN));
    }
}

TEST_F(GestureNode, EveryStrokeStartsAnew) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(FiredByPixels({{0, 0}, {100, 0}, {200, 0}}), (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
        EXPECT_EQ(FiredByPixels({{500, 500}, {500, 500}}), Outputs{SINGLE_TAP});
        EXPECT_EQ(FiredByUnits({{0, 0}, {100, 0}, {200, 0}}), (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
        EXPECT_EQ(FiredByUnits({{500, 500}, {520, 500}, {540, 500}}), Outputs{SINGLE_TAP});
    }
}

TEST_F(GestureNode, DragStartsOnceWhateverComesOfItsEvent) {
    Send(PRESS, PixelSample(0, 0));
    {
        const FailingText failing(TEXT_OF_EVENTS);
        Send(SAMPLE, PixelSample(100, 0));
    }
    EXPECT_EQ(m_host.TakeFiredOutputs(), Outputs{});
    EXPECT_EQ(m_host.TakeLog(), Lines({"开始拖动"}));
    EXPECT_EQ(Send(SAMPLE, PixelSample(110, 0)), 1);
    EXPECT_EQ(Fired(), Outputs{});
    EXPECT_EQ(Send(RELEASE, PixelSample(200, 0)), 1);
    EXPECT_EQ(Fired(), (Outputs{END_MOVE, SWIPE_RIGHT}));
}

TEST_F(GestureNode, ReleaseEndsTheStrokeWhateverComesOfItsEvents) {
    for (const int nFired : {0, 1}) {
        Send(PRESS, PixelSample(0, 0));
        Send(SAMPLE, PixelSample(100, 0));
        EXPECT_EQ(Fired(), Outputs{START_MOVE});
        {
            const FailingText failing(TEXT_OF_EVENTS, nFired);
            Send(RELEASE, PixelSample(200, 0));
        }
        EXPECT_EQ(m_host.TakeFiredOutputs(), nFired == 0 ? Outputs{} : Outputs{END_MOVE});
        m_host.TakeLog();
        ExpectIdle();
    }
}

TEST_F(GestureNode, RelativeFlagMayBeAnyNumberButZero) {
    for (const int bRelative : {1, 2, -1, 256, -2147483647 - 1}) {
        EXPECT_EQ(FiredBy({RelativeSample(0, 0, 0, bRelative), RelativeSample(0, 100, 0, bRelative),
                           RelativeSample(0, 200, 0, bRelative)}),
                  (Outputs{START_MOVE, END_MOVE, SWIPE_UP}))
            << bRelative;
    }
}

TEST_F(GestureNode, SamplesAreCopied) {
    SQORMouseData sample = PixelSample(0, 0);
    m_scene.Send(DEVICE, PRESS, &sample);
    sample.m_ptPixel = CPoint(100, 0);
    m_scene.Send(DEVICE, SAMPLE, &sample);
    sample.m_ptPixel = CPoint(200, 0);
    m_scene.Send(DEVICE, RELEASE, &sample);
    EXPECT_EQ(sample.m_ptPixel.x, 200);
    EXPECT_EQ(Fired(), (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
}

TEST_F(GestureNode, NamesInTheLogAreThoseOfTheMoment) {
    m_scene.m_clip.m_strName = L"剪辑%s";
    m_scene.m_graphNode.m_strName = L"";
    m_scene.m_pNode->m_strName = L"手势";
    Send(PRESS, PixelSample(0, 0));
    Send(RELEASE, PixelSample(0, 0));
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Information("[剪辑%s..手势]触发输出事件[单击]")});
}

TEST_F(GestureNode, StrokeIsFollowedAcrossEvaluations) {
    Send(PRESS, PixelSample(0, 0));
    m_scene.Evaluate();
    Send(SAMPLE, PixelSample(100, 0));
    m_scene.Evaluate();
    Send(RELEASE, PixelSample(200, 0));
    EXPECT_EQ(Fired(), (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
}

// ---- Several pointers ----------------------------------------------------------------------------------------------

TEST_F(GestureNode, SecondPointerIsRefusedInEveryState) {
    EXPECT_EQ(Send(SAMPLE, PixelSample(0, 0, 5)), 0) << "idle";
    EXPECT_EQ(Send(RELEASE, PixelSample(0, 0, 5)), 0);
    EXPECT_EQ(Send(PRESS, PixelSample(0, 0, 3)), 1);
    for (const int nPointer : {0, 1, 4, -1, -3, 3 + 0x10000}) {
        EXPECT_EQ(Send(PRESS, PixelSample(900, 900, nPointer)), 0) << nPointer;
        EXPECT_EQ(Send(SAMPLE, PixelSample(900, 900, nPointer)), 0) << nPointer;
        EXPECT_EQ(Send(RELEASE, PixelSample(900, 900, nPointer)), 0) << nPointer;
    }
    EXPECT_EQ(Send(PRESS, PixelSample(900, 900, 3)), 0) << "pressed again without a release";
    EXPECT_EQ(Fired(), Outputs{});
    EXPECT_EQ(Send(SAMPLE, PixelSample(100, 0, 3)), 1);
    EXPECT_EQ(Send(SAMPLE, PixelSample(900, 900, 1)), 0) << "dragging";
    EXPECT_EQ(Send(RELEASE, PixelSample(900, 900, 1)), 0);
    EXPECT_EQ(Send(RELEASE, PixelSample(200, 0, 3)), 1);
    EXPECT_EQ(Fired(), (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
    EXPECT_EQ(Send(RELEASE, PixelSample(200, 0, 3)), 0) << "released already";
    EXPECT_EQ(Send(PRESS, PixelSample(0, 0, 1)), 1) << "now another one";
}

TEST_F(GestureNode, AnyPointerIdCanBeFollowed) {
    for (const int nPointer : {0, 1, -2, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(FiredBy({PixelSample(0, 0, nPointer), PixelSample(0, 100, nPointer), PixelSample(0, 200, nPointer)}),
                  (Outputs{START_MOVE, END_MOVE, SWIPE_DOWN}))
            << nPointer;
    }
}

TEST_F(GestureNode, SampleWithoutStrokeOfThePointerThatStandsForNoneDoesNothing) {
    EXPECT_EQ(Send(SAMPLE, PixelSample(0, 0, -1)), 1);
    EXPECT_EQ(Send(SAMPLE, PixelSample(500, 0, -1)), 1);
    EXPECT_EQ(Fired(), Outputs{}) << "nothing was begun";
    EXPECT_EQ(Send(RELEASE, PixelSample(900, 0, -1)), 1);
    EXPECT_EQ(Fired(), Outputs{SINGLE_TAP}) << "but a release fires whatever there is";
    ExpectIdle();
}

TEST_F(GestureNode, PointerThatStandsForNoneIsFollowedButNotGuarded) {
    EXPECT_EQ(Send(PRESS, PixelSample(0, 0, -1)), 1);
    EXPECT_EQ(Send(SAMPLE, PixelSample(100, 0, -1)), 1);
    EXPECT_EQ(Fired(), Outputs{START_MOVE});
    EXPECT_EQ(Send(PRESS, PixelSample(0, 0, 4)), 1) << "the node takes itself for idle";
    EXPECT_EQ(Send(SAMPLE, PixelSample(200, 0, -1)), 0);
    EXPECT_EQ(Send(RELEASE, PixelSample(0, 0, 4)), 1);
    EXPECT_EQ(Fired(), Outputs{SINGLE_TAP}) << "the press began a stroke of its own";
}

TEST_F(GestureNode, PressEmptiesTheSamplesOfItsOwnKindOnly) {
    // The pointer -1 is followed without being guarded, so its pixel sample is still there at the next press.
    Send(PRESS, PixelSample(0, 0, -1));
    Send(PRESS, RelativeSample(0, 0, 4));
    Send(SAMPLE, RelativeSample(100, 0, 4)); // the drag begins
    Send(SAMPLE, PixelSample(0, 100, 4));
    EXPECT_EQ(Fired(), Outputs{START_MOVE});
    Send(RELEASE, PixelSample(0, 200, 4));
    EXPECT_EQ(Fired(), (Outputs{END_MOVE, SWIPE_DOWN})) << "three pixel samples, the first one from before";

    Send(PRESS, PixelSample(0, 0, -1));
    Send(PRESS, PixelSample(0, 0, 4));
    Send(SAMPLE, PixelSample(0, 100, 4));
    Send(RELEASE, RelativeSample(0, 0, 4));
    EXPECT_EQ(Fired(), Outputs{START_MOVE}) << "one relative sample";
    Send(PRESS, PixelSample(0, 900, -1));
    Send(PRESS, PixelSample(0, 0, 4));
    Send(SAMPLE, PixelSample(0, 100, 4));
    Send(RELEASE, PixelSample(0, 200, 4));
    EXPECT_EQ(Fired(), (Outputs{START_MOVE, END_MOVE, SWIPE_DOWN})) << "the pixel sample from before is gone";
}

TEST_F(GestureNode, NodesFollowTheirOwnPointers) {
    NodeScene other(m_host, TYPE_GESTURE);
    other.Evaluate();
    Send(PRESS, PixelSample(0, 0, 1));
    SQORMouseData sample = PixelSample(0, 0, 2);
    EXPECT_EQ(other.Send(DEVICE, PRESS, &sample), 1);
    EXPECT_EQ(Send(RELEASE, PixelSample(0, 0, 1)), 1);
    EXPECT_EQ(other.Send(DEVICE, RELEASE, &sample), 1);
    EXPECT_EQ(Fired(), (Outputs{SINGLE_TAP, SINGLE_TAP}));
}

// ---- Strokes of both kinds -----------------------------------------------------------------------------------------

TEST_F(GestureNode, KindsOfSamplesAreKeptApart) {
    Send(PRESS, PixelSample(0, 0));
    Send(SAMPLE, RelativeSample(500, 500));
    EXPECT_EQ(Fired(), Outputs{}) << "the first one of its kind";
    Send(SAMPLE, PixelSample(49, 0));
    Send(SAMPLE, RelativeSample(540, 500));
    EXPECT_EQ(Fired(), Outputs{});
    Send(SAMPLE, RelativeSample(500, 550));
    EXPECT_EQ(Fired(), Outputs{START_MOVE}) << "50 units from the first relative sample";
    Send(SAMPLE, PixelSample(100, 0));
    Send(RELEASE, PixelSample(200, 0));
    EXPECT_EQ(Fired(), (Outputs{END_MOVE, SWIPE_RIGHT})) << "by the pixels (0,0) (100,0) (200,0)";
}

TEST_F(GestureNode, KindOfTheReleaseDecides) {
    const auto DrawBoth = [this] {
        Send(PRESS, PixelSample(0, 0));
        Send(SAMPLE, RelativeSample(0, 0));
        Send(SAMPLE, PixelSample(100, 0));
        Send(SAMPLE, RelativeSample(0, 100));
    };
    DrawBoth();
    Send(RELEASE, PixelSample(200, 0));
    EXPECT_EQ(Fired(), (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
    DrawBoth();
    Send(RELEASE, RelativeSample(0, 200));
    EXPECT_EQ(Fired(), (Outputs{START_MOVE, END_MOVE, SWIPE_UP}));
}

TEST_F(GestureNode, DragWithTooFewSamplesOfTheReleasesKindFiresNothing) {
    Send(PRESS, PixelSample(0, 0));
    Send(SAMPLE, PixelSample(100, 0));
    EXPECT_EQ(Fired(), Outputs{START_MOVE});
    EXPECT_EQ(Send(RELEASE, RelativeSample(200, 0)), 1);
    EXPECT_EQ(Fired(), Outputs{}) << "one relative sample";
    ExpectIdle();

    Send(PRESS, PixelSample(0, 0));
    Send(SAMPLE, PixelSample(100, 0));
    Send(SAMPLE, RelativeSample(100, 0));
    EXPECT_EQ(Send(RELEASE, RelativeSample(200, 0)), 1);
    EXPECT_EQ(Fired(), Outputs{START_MOVE}) << "two relative samples";
    ExpectIdle();
}

TEST_F(GestureNode, ReleaseOfATapMayBeOfTheOtherKind) {
    Send(PRESS, PixelSample(0, 0));
    EXPECT_EQ(Send(RELEASE, RelativeSample(500, 500)), 1);
    EXPECT_EQ(Fired(), Outputs{SINGLE_TAP});
    Send(PRESS, RelativeSample(0, 0));
    EXPECT_EQ(Send(RELEASE, PixelSample(500, 500)), 1);
    EXPECT_EQ(Fired(), Outputs{SINGLE_TAP});
}

TEST_F(GestureNode, ReleaseForgetsBothKinds) {
    Send(PRESS, PixelSample(0, 0));
    Send(SAMPLE, RelativeSample(0, 0));
    Send(SAMPLE, RelativeSample(10, 0));
    Send(RELEASE, PixelSample(0, 0));
    EXPECT_EQ(Fired(), Outputs{SINGLE_TAP});
    Send(PRESS, PixelSample(0, 0));
    Send(SAMPLE, RelativeSample(500, 0));
    EXPECT_EQ(Fired(), Outputs{}) << "the first relative sample of this stroke";
    Send(RELEASE, PixelSample(0, 0));
    EXPECT_EQ(Fired(), Outputs{SINGLE_TAP});
}

// ---- Extremes ------------------------------------------------------------------------------------------------------

TEST_F(GestureNode, PixelsOfTheWholeRangeWrap) {
    const int nMost = 2147483647;
    const int nLeast = -2147483647 - 1;
    EXPECT_EQ(FiredByPixels({{nMost, 0}, {nLeast + 49, 0}, {nLeast + 99, 0}}),
              (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}))
        << "50 and 100 steps beyond the end";
    EXPECT_EQ(FiredByPixels({{nMost, 0}, {nLeast, 0}, {nLeast + 99, 0}}), Outputs{SINGLE_TAP}) << "one step";
    EXPECT_EQ(FiredByPixels({{0, 0}, {nLeast, nLeast}, {nLeast, nLeast}}), Outputs{SINGLE_TAP})
        << "the lowest integer's magnitude is below 50";
    EXPECT_EQ(FiredByPixels({{0, 0}, {nMost, 0}, {nMost, 0}}), (Outputs{START_MOVE, END_MOVE}))
        << "its square wraps to 1";
    EXPECT_EQ(FiredByPixels({{0, 0}, {46340, 0}, {46340, 0}}), (Outputs{START_MOVE, END_MOVE, SWIPE_RIGHT}));
    EXPECT_EQ(FiredByPixels({{0, 0}, {46341, 0}, {46341, 0}}), (Outputs{START_MOVE, END_MOVE}));
}

TEST_F(GestureNode, RelativeUnitsMayBeAnyFloat) {
    const float fInfinity = std::numeric_limits<float>::infinity();
    const float fNone = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(FiredByUnits({{0, 0}, {fInfinity, 0}, {fInfinity, 0}}), (Outputs{START_MOVE, END_MOVE}));
    EXPECT_EQ(FiredByUnits({{0, 0}, {fNone, fNone}, {fNone, fNone}}), Outputs{SINGLE_TAP});
    EXPECT_EQ(FiredByUnits({{fNone, 0}, {0, 100}, {0, 200}}), (Outputs{START_MOVE, END_MOVE}));
}

// ---- Memory --------------------------------------------------------------------------------------------------------

TEST_F(GestureNode, StrokeWithoutReleaseTakesNoMoreThanItsSamples) {
    m_host.KeepNothing();
    const int nSamples = 100'000;
    const auto ExpectBounded = [&](const char* pszKind, size_t nSampleBytes, const auto& MakeSample) {
        SCOPED_TRACE(pszKind);
        FiredByPixels({{0, 0}, {0, 0}});
        const size_t nBefore = HeapBytesInUse();
        EXPECT_EQ(Send(PRESS, MakeSample(0)), 1);
        for (int i = 1; i < nSamples; ++i) {
            ASSERT_EQ(Send(SAMPLE, MakeSample(i)), 1);
            EXPECT_EQ(Send(PRESS, PixelSample(0, 0, 1)), 0);
        }
        m_host.Pump();
        // The storage grows by half at most.
        EXPECT_LE(HeapBytesInUse() - nBefore, nSamples * nSampleBytes * 3 / 2 + 1024);
        EXPECT_EQ(Send(RELEASE, MakeSample(nSamples)), 1);
        m_host.Pump();
        EXPECT_EQ(HeapBytesInUse(), nBefore);
    };
    ExpectBounded("pixels", 8, [](int i) { return PixelSample(i % 40, 0); });
    ExpectBounded("units", 8, [](int i) { return RelativeSample(static_cast<float>(i % 40), 0); });
}

TEST_F(GestureNode, SamplesOfNoStrokeTakeNoMemory) {
    Send(SAMPLE, PixelSample(0, 0));
    const size_t nBefore = HeapBytesInUse();
    for (int i = 0; i < 10'000; ++i) {
        Send(SAMPLE, PixelSample(i, 0));
        Send(SAMPLE, PixelSample(i, 0, -1));
        Send(RELEASE, PixelSample(i, 0));
    }
    EXPECT_EQ(HeapBytesInUse(), nBefore);
}

TEST_F(GestureNode, SamplesAllocateOnlyWhereTheStrokeGrows) {
    if (!AllocationCount()) {
        GTEST_SKIP() << "allocations aren't counted here";
    }
    // Sizes at which the storage grows, 0 before the press; each growth is one allocation.
    std::vector<int> growths;
    int nSamples = 0;
    SQORMouseData sample = PixelSample(0, 0);
    const auto Count = [&](int nEvent) {
        const auto nBefore = *AllocationCount();
        m_scene.Send(DEVICE, nEvent, &sample);
        const auto nAllocations = *AllocationCount() - nBefore;
        if (nAllocations != 0) {
            growths.push_back(nSamples);
            EXPECT_EQ(nAllocations, 1u);
        }
        ++nSamples;
    };
    Count(PRESS);
    for (int i = 0; i < 20; ++i) {
        Count(SAMPLE);
    }
    EXPECT_EQ(growths, (std::vector<int>{0, 1, 5, 9, 13, 17}));
    m_scene.Evaluate();
    const auto nBefore = *AllocationCount();
    for (int i = 0; i < 100; ++i) {
        m_scene.Evaluate();
        sample.m_nPointer = 9;
        m_scene.Send(DEVICE, SAMPLE, &sample);
    }
    EXPECT_EQ(*AllocationCount(), nBefore);
}

} // namespace
