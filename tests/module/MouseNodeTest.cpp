// The mouse node: its tables, what it fires, logs and writes.
#include <bit>
#include <cmath>
#include <limits>
#include <memory>

#include "ModuleHost.h"

namespace {

const int DEVICE = 1;
const unsigned ENABLE = 2;

enum : unsigned {
    BUTTON_LEFT = 366,
    BUTTON_RIGHT = 367,
    BUTTON_MIDDLE = 368,
    PIXEL_X = 370,
    PIXEL_Y = 371,
    RELATIVE_X = 372,
    RELATIVE_Y = 373,
};

const unsigned VALUE_OUTPUTS[] = {BUTTON_LEFT, BUTTON_RIGHT, BUTTON_MIDDLE, PIXEL_X, PIXEL_Y, RELATIVE_X, RELATIVE_Y};

struct Buttons {
    int bLeft;
    int bRight;
    int bMiddle;

    friend bool operator==(const Buttons&, const Buttons&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Buttons& buttons) {
        return out << "left " << buttons.bLeft << " right " << buttons.bRight << " middle " << buttons.bMiddle;
    }
};

struct Position {
    int nPixelX;
    int nPixelY;
    float fRelativeX;
    float fRelativeY;

    friend bool operator==(const Position&, const Position&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Position& position) {
        return out << "pixel " << position.nPixelX << ' ' << position.nPixelY << " relative " << position.fRelativeX
                   << ' ' << position.fRelativeY;
    }
};

class MouseNode : public ModuleTest {
protected:
    int Send(int nEvent, void* pPayload = nullptr) { return m_scene.Send(DEVICE, nEvent, pPayload); }

    int Move(const Position& position) {
        SQORMouseData sample(0, position.fRelativeX, position.fRelativeY, CPoint(position.nPixelX, position.nPixelY),
                             0);
        return Send(3013, &sample);
    }

    /// The outputs as they stand, and after one more evaluation.
    Buttons ButtonOutputs() const {
        return {m_scene.Output(BUTTON_LEFT).m_nValue, m_scene.Output(BUTTON_RIGHT).m_nValue,
                m_scene.Output(BUTTON_MIDDLE).m_nValue};
    }
    Buttons EvaluatedButtons() {
        EXPECT_EQ(m_scene.Evaluate(), 1);
        return ButtonOutputs();
    }
    Position PositionOutputs() const {
        return {m_scene.Output(PIXEL_X).m_nValue, m_scene.Output(PIXEL_Y).m_nValue, m_scene.Output(RELATIVE_X).m_fValue,
                m_scene.Output(RELATIVE_Y).m_fValue};
    }
    Position EvaluatedPosition() {
        EXPECT_EQ(m_scene.Evaluate(), 1);
        return PositionOutputs();
    }

    void ExpectNothingFiredOrLogged() {
        EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
        EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
        EXPECT_TRUE(m_host.TakeOtherMessages().empty());
        EXPECT_TRUE(m_host.TakeReportedEvents().empty());
    }

    NodeScene m_scene{m_host, TYPE_MOUSE};
};

// ---- Tables --------------------------------------------------------------------------------------------------------

TEST_F(MouseNode, Inputs) {
    ExpectInputGroups(m_scene.m_pNode->m_lstParamGroup, {{301,
                                                          "Base param",
                                                          "IO_PROCESS_MOUSE",
                                                          {{.nId = 2,
                                                            .pszName = "Enable",
                                                            .pszDisplay = "TOUCH_CONTROL_ENABLED",
                                                            .nType = 5,
                                                            .nControl = 5,
                                                            .range = ExpectedRange{0, 0, 1, 1},
                                                            .flags = ExpectedFlags{0, 0, 1, 0},
                                                            .nValue = 1}}}});
}

ExpectedParam ButtonPin(unsigned nId, const char* pszName, const char* pszDisplay) {
    return {.nId = nId,
            .pszName = pszName,
            .pszDisplay = pszDisplay,
            .nType = 5,
            .nControl = 5,
            .range = ExpectedRange{0, 0, 1, 1},
            .flags = ExpectedFlags{0, 0, 0, 0}};
}

TEST_F(MouseNode, Outputs) {
    const ExpectedRange BOUNDS{0, -1e9f, 1e9f, 1};
    ExpectOutputGroups(
        m_scene.m_graphNode.m_lstOutputGroup,
        {{351,
          "Output",
          "IO_PROCESS_MOUSE",
          {EventPin(352, "EnterWin", "IO_PROCESS_MOUSE_ENTERWIN"),
           EventPin(353, "LeaveWin", "IO_PROCESS_MOUSE_LEAVEWIN"), EventPin(354, "Hover", "IO_PROCESS_MOUSE_HOVER"),
           EventPin(355, "WheelUp", "IO_PROCESS_MOUSE_WHEELUP"),
           EventPin(356, "WheelDown", "IO_PROCESS_MOUSE_WHEELDOWN")}},
         {357,
          "Pressed",
          "IO_PROCESS_KEYBOARD_KEYDOWN",
          {EventPin(358, "PressedL", "IO_PROCESS_MOUSE_DOWN_L"), EventPin(359, "PressedR", "IO_PROCESS_MOUSE_DOWN_R"),
           EventPin(360, "PressedM", "IO_PROCESS_MOUSE_DOWN_M")}},
         {361,
          "Pressed",
          "IO_PROCESS_KEYBOARD_KEYUP",
          {EventPin(362, "PressedL", "IO_PROCESS_MOUSE_UP_L"), EventPin(363, "PressedR", "IO_PROCESS_MOUSE_UP_R"),
           EventPin(364, "PressedM", "IO_PROCESS_MOUSE_UP_M")}},
         {365,
          "Button",
          "IO_PROCESS_MOUSE_BUTTON",
          {ButtonPin(366, "ButtonL", "IO_PROCESS_MOUSE_BUTTON_L"),
           ButtonPin(367, "ButtonR", "IO_PROCESS_MOUSE_BUTTON_R"),
           ButtonPin(368, "ButtonM", "IO_PROCESS_MOUSE_BUTTON_M")}},
         {369,
          "Position",
          "IO_PROCESS_MOUSE_POSITION",
          {{.nId = 370,
            .pszName = "PixelX",
            .pszDisplay = "IO_PROCESS_MOUSE_PIXELX",
            .nType = 2,
            .nControl = 1,
            .range = BOUNDS,
            .flags = ExpectedFlags{0, 0, 1, 0}},
           {.nId = 371,
            .pszName = "PixelY",
            .pszDisplay = "IO_PROCESS_MOUSE_PIXELY",
            .nType = 2,
            .nControl = 1,
            .range = BOUNDS}, // the one pin without flags
           {.nId = 372,
            .pszName = "RelativeX",
            .pszDisplay = "IO_PROCESS_MOUSE_RELATIVEX",
            .nType = 2,
            .nControl = 2,
            .range = BOUNDS,
            .flags = ExpectedFlags{0, 0, 1, 0}},
           {.nId = 373,
            .pszName = "RelativeY",
            .pszDisplay = "IO_PROCESS_MOUSE_RELATIVEY",
            .nType = 2,
            .nControl = 2,
            .range = BOUNDS,
            .flags = ExpectedFlags{0, 0, 1, 0}}}}});
}

TEST_F(MouseNode, OutputsAreMadeOnce) {
    const auto before = Items(m_scene.m_graphNode.m_lstOutputGroup);
    ASSERT_EQ(before.size(), 5u);
    m_scene.m_pNode->GetNodeOutput(&m_scene.m_graphNode);
    EXPECT_EQ(Items(m_scene.m_graphNode.m_lstOutputGroup), before);
}

TEST_F(MouseNode, OutputsAreNotMadeBesideAForeignGroup) {
    SGraphNode graphNode;
    auto* pForeign = new VEKParamGroup;
    graphNode.m_lstOutputGroup.AddTail(pForeign);
    m_scene.m_pNode->GetNodeOutput(&graphNode);
    EXPECT_EQ(Items(graphNode.m_lstOutputGroup), std::vector<VEKParamGroup*>{pForeign});
    EXPECT_TRUE(pForeign->m_lstParam.IsEmpty());
}

TEST_F(MouseNode, OutputsOfNoGraphNodeAreNotMade) {
    m_scene.m_pNode->GetNodeOutput(nullptr);
}

TEST_F(MouseNode, InheritsTheOtherOperations) {
    EXPECT_EQ(m_scene.m_pNode->ShouldReCalHeight(), FALSE);
    EXPECT_EQ(m_scene.m_pNode->NeedUpdateSingleParam(MakeParamGuid(ENABLE)), FALSE);
    m_scene.m_pNode->InitParam();
    m_scene.m_pNode->Init();
    EXPECT_EQ(m_scene.m_pNode->m_lstParamGroup.GetCount(), 1);
}

// ---- Events --------------------------------------------------------------------------------------------------------

/// What one event id does to the three buttons: 0 or 1 is set, -1 leaves the button.
struct EventEffect {
    int nEvent;
    int nOutput; ///< 0: none is fired
    const char* pszLogText;
    int nLeft = -1;
    int nRight = -1;
    int nMiddle = -1;
};

const EventEffect EVENTS[] = {
    {3000, 0, ""},
    {3001, 0, ""},
    {3002, 352, "触发输出事件[进入窗口]"},
    {3003, 353, "触发输出事件[离开窗口]"},
    {3004, 354, "触发输出事件[停留]"},
    {3005, 358, "触发输出事件[左键按下]", 1, -1, -1},
    {3006, 362, "触发输出事件[左键抬起]", 0, -1, -1},
    {3007, 360, "触发输出事件[中键按下]", -1, -1, 1},
    {3008, 364, "触发输出事件[中键抬起]", -1, -1, 0},
    {3009, 359, "触发输出事件[右键按下]", -1, 1, -1},
    {3010, 363, "触发输出事件[右键抬起]", -1, 0, -1},
    {3011, 355, "触发输出事件[向上滚动]"},
    {3012, 356, "触发输出事件[向下滚动]"},
    {3013, 0, ""},
    {3014, 0, ""},
    {3015, 0, ""},
    {3016, 0, ""},
    {3017, 0, ""},
    {3018, 0, ""},
    {3019, 0, ""},
    {3020, 0, ""},
    {0, 0, ""},
    {-1, 0, ""},
    {-3005, 0, ""},
    {2002, 0, ""},
    {2999, 0, ""},
    {3005 + 0x10000, 0, ""},
    {2147483647, 0, ""},
    {-2147483647 - 1, 0, ""},
};

TEST_F(MouseNode, EveryEventIdHasItsOutputLogLineAndButton) {
    m_scene.Evaluate();
    const Position PLACE{10, 20, 30.5f, 40.5f};
    Move(PLACE);
    for (const EventEffect& effect : EVENTS) {
        for (const int bHeldBefore : {0, 1}) {
            SCOPED_TRACE("event " + std::to_string(effect.nEvent) + ", buttons before " + std::to_string(bHeldBefore));
            for (const int nDown : {3005, 3007, 3009}) {
                Send(bHeldBefore ? nDown : nDown + 1);
            }
            m_scene.Evaluate();
            ASSERT_EQ(ButtonOutputs(), (Buttons{bHeldBefore, bHeldBefore, bHeldBefore}));
            m_host.TakeEvents();
            m_host.TakeLog();

            EXPECT_EQ(Send(effect.nEvent), 1);

            std::vector<int> outputs;
            std::vector<LogLine> lines;
            if (effect.nOutput != 0) {
                outputs.push_back(effect.nOutput);
                lines.push_back(Information(std::string("[Clip.Graph.Node]") + effect.pszLogText));
            }
            EXPECT_EQ(m_host.TakeFiredOutputs(), outputs);
            EXPECT_EQ(m_host.TakeLog(), lines);
            EXPECT_EQ(ButtonOutputs(), (Buttons{bHeldBefore, bHeldBefore, bHeldBefore})) << "before the evaluation";
            EXPECT_EQ(EvaluatedButtons(), (Buttons{effect.nLeft >= 0 ? effect.nLeft : bHeldBefore,
                                                   effect.nRight >= 0 ? effect.nRight : bHeldBefore,
                                                   effect.nMiddle >= 0 ? effect.nMiddle : bHeldBefore}));
            EXPECT_EQ(PositionOutputs(), PLACE);
            ExpectNothingFiredOrLogged();
        }
    }
}

TEST_F(MouseNode, LeftButtonIs3005And3006) {
    m_scene.Evaluate();
    Send(3005);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{358});
    EXPECT_EQ(EvaluatedButtons(), (Buttons{1, 0, 0}));
    Send(3006);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{362});
    EXPECT_EQ(ButtonOutputs(), (Buttons{1, 0, 0})) << "until the next evaluation";
    EXPECT_EQ(EvaluatedButtons(), (Buttons{0, 0, 0}));
}

TEST_F(MouseNode, MiddleButtonIs3007) {
    m_scene.Evaluate();
    Send(3007);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{360});
    EXPECT_EQ(EvaluatedButtons(), (Buttons{0, 0, 1}));
    Send(3008);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{364});
    EXPECT_EQ(EvaluatedButtons(), (Buttons{0, 0, 0}));
}

TEST_F(MouseNode, RightButtonIs3009) {
    m_scene.Evaluate();
    Send(3009);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{359});
    EXPECT_EQ(EvaluatedButtons(), (Buttons{0, 1, 0}));
    Send(3010);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{363});
    EXPECT_EQ(EvaluatedButtons(), (Buttons{0, 0, 0}));
}

TEST_F(MouseNode, ClickBetweenTwoEvaluationsFiresTwiceAndLeavesNoLevel) {
    m_scene.Evaluate();
    Send(3005);
    Send(3006);
    EXPECT_EQ(m_host.TakeFiredOutputs(), (std::vector<int>{358, 362}));
    EXPECT_EQ(EvaluatedButtons(), (Buttons{0, 0, 0}));
}

TEST_F(MouseNode, RepeatedPressFiresAgain) {
    m_scene.Evaluate();
    Send(3005);
    Send(3005);
    EXPECT_EQ(m_host.TakeFiredOutputs(), (std::vector<int>{358, 358}));
    Send(3006);
    EXPECT_EQ(EvaluatedButtons(), (Buttons{0, 0, 0}));
}

TEST_F(MouseNode, NothingIsClearedWhenThePointerLeaves) {
    m_scene.Evaluate();
    const Position PLACE{1, 2, 3.0f, 4.0f};
    Move(PLACE);
    Send(3005);
    Send(3003);
    EXPECT_EQ(EvaluatedButtons(), (Buttons{1, 0, 0}));
    EXPECT_EQ(PositionOutputs(), PLACE);
    Send(3002);
    EXPECT_EQ(EvaluatedButtons(), (Buttons{1, 0, 0}));
    EXPECT_EQ(PositionOutputs(), PLACE);
}

TEST_F(MouseNode, SampleMovesThePositionSilently) {
    m_scene.Evaluate();
    EXPECT_EQ(PositionOutputs(), (Position{0, 0, 0.0f, 0.0f}));
    EXPECT_EQ(Move({640, -480, 0.25f, 999.75f}), 1);
    ExpectNothingFiredOrLogged();
    EXPECT_EQ(PositionOutputs(), (Position{0, 0, 0.0f, 0.0f})) << "before the evaluation";
    EXPECT_EQ(EvaluatedPosition(), (Position{640, -480, 0.25f, 999.75f}));
    EXPECT_EQ(ButtonOutputs(), (Buttons{0, 0, 0}));
}

TEST_F(MouseNode, SampleIsCopied) {
    m_scene.Evaluate();
    auto pSample = std::make_unique<SQORMouseData>(3, 1.0f, 2.0f, CPoint(5, 6), 1);
    Send(3013, pSample.get());
    pSample->m_ptPixel = CPoint(7, 8);
    pSample.reset();
    EXPECT_EQ(EvaluatedPosition(), (Position{5, 6, 1.0f, 2.0f}));
}

TEST_F(MouseNode, SampleCountsWhateverItsPointerAndFlag) {
    m_scene.Evaluate();
    SQORMouseData sample(-7, 1.0f, 2.0f, CPoint(5, 6), 0);
    Send(3013, &sample);
    EXPECT_EQ(EvaluatedPosition(), (Position{5, 6, 1.0f, 2.0f}));
    sample = SQORMouseData(99, 3.0f, 4.0f, CPoint(7, 8), -1);
    Send(3013, &sample);
    EXPECT_EQ(EvaluatedPosition(), (Position{7, 8, 3.0f, 4.0f}));
}

TEST_F(MouseNode, MissingSampleLeavesThePosition) {
    m_scene.Evaluate();
    Move({1, 2, 3.0f, 4.0f});
    EXPECT_EQ(Send(3013, nullptr), 1);
    ExpectNothingFiredOrLogged();
    EXPECT_EQ(EvaluatedPosition(), (Position{1, 2, 3.0f, 4.0f}));
}

TEST_F(MouseNode, SamplesOfOtherEventsAreNotTaken) {
    m_scene.Evaluate();
    Move({1, 2, 3.0f, 4.0f});
    SQORMouseData sample(0, 50.0f, 60.0f, CPoint(70, 80), 1);
    for (int nEvent = 3000; nEvent <= 3020; ++nEvent) {
        if (nEvent != 3013) {
            EXPECT_EQ(Send(nEvent, &sample), 1);
            EXPECT_EQ(EvaluatedPosition(), (Position{1, 2, 3.0f, 4.0f})) << nEvent;
        }
    }
}

TEST_F(MouseNode, ExtremePositionsPassUnchanged) {
    m_scene.Evaluate();
    const int nMost = std::numeric_limits<int>::max();
    const int nLeast = std::numeric_limits<int>::min();
    const float fMost = std::numeric_limits<float>::max();
    const float fInfinity = std::numeric_limits<float>::infinity();
    for (const Position& position :
         {Position{nMost, nLeast, fMost, -fMost}, Position{nLeast, nMost, fInfinity, -fInfinity},
          Position{1'000'000'001, -1'000'000'001, 1.5e9f, -1.5e9f}, Position{-1, -1, 1e-45f, -1e-45f}}) {
        Move(position);
        EXPECT_EQ(EvaluatedPosition(), position);
    }
}

TEST_F(MouseNode, NotANumberPassesWithItsBits) {
    m_scene.Evaluate();
    const auto nBits = std::uint32_t{0x7FC12345};
    Move({0, 0, std::bit_cast<float>(nBits), 5.0f});
    for (int i = 0; i < 2; ++i) {
        m_scene.Evaluate();
        EXPECT_EQ(std::bit_cast<std::uint32_t>(m_scene.Output(RELATIVE_X).m_fValue), nBits);
        EXPECT_EQ(m_scene.Output(RELATIVE_Y).m_fValue, 5.0f);
    }
    Move({0, 0, 1.0f, 5.0f});
    EXPECT_EQ(EvaluatedPosition(), (Position{0, 0, 1.0f, 5.0f}));
}

TEST_F(MouseNode, NamesInTheLogAreThoseOfTheMoment) {
    m_scene.Evaluate();
    m_scene.m_clip.m_strName = L"剪辑%s";
    m_scene.m_graphNode.m_strName = L"";
    m_scene.m_pNode->m_strName = L"鼠标";
    m_scene.m_pNode->m_strSecondName = L"not printed";
    Send(3005);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Information("[剪辑%s..鼠标]触发输出事件[左键按下]")});
}

TEST_F(MouseNode, OtherDevicesAreIgnored) {
    m_scene.Evaluate();
    Move({1, 2, 3.0f, 4.0f});
    SQORMouseData sample(0, 50.0f, 60.0f, CPoint(70, 80), 1);
    for (const int nDevice : {0, 2, 3, 4, 5, 6, 7, -1, 257, 2147483647}) {
        for (int nEvent = 3000; nEvent <= 3020; ++nEvent) {
            SCOPED_TRACE(std::to_string(nDevice) + "/" + std::to_string(nEvent));
            EXPECT_EQ(m_scene.Send(nDevice, nEvent, &sample), 0);
        }
    }
    ExpectNothingFiredOrLogged();
    EXPECT_EQ(EvaluatedButtons(), (Buttons{0, 0, 0}));
    EXPECT_EQ(PositionOutputs(), (Position{1, 2, 3.0f, 4.0f}));
}

TEST_F(MouseNode, IgnoresEverythingBeforeTheFirstEvaluation) {
    SQORMouseData sample(0, 50.0f, 60.0f, CPoint(70, 80), 1);
    for (int nEvent = 3000; nEvent <= 3020; ++nEvent) {
        EXPECT_EQ(Send(nEvent, &sample), 0) << nEvent;
    }
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    ExpectNothingFiredOrLogged();
    EXPECT_EQ(EvaluatedButtons(), (Buttons{0, 0, 0}));
    EXPECT_EQ(PositionOutputs(), (Position{0, 0, 0.0f, 0.0f}));
}

TEST_F(MouseNode, IgnoresEverythingWhileDisabled) {
    m_scene.Evaluate();
    Move({1, 2, 3.0f, 4.0f});
    Send(3009);
    m_scene.Evaluate();
    m_host.TakeEvents();
    m_host.TakeLog();
    m_scene.Input(ENABLE).m_nValue = 0;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    SQORMouseData sample(0, 50.0f, 60.0f, CPoint(70, 80), 1);
    for (int nEvent = 3000; nEvent <= 3020; ++nEvent) {
        EXPECT_EQ(Send(nEvent, &sample), 0) << nEvent;
    }
    ExpectNothingFiredOrLogged();
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(ButtonOutputs(), (Buttons{0, 1, 0})) << "outputs keep their values";
    EXPECT_EQ(PositionOutputs(), (Position{1, 2, 3.0f, 4.0f}));
    m_scene.Input(ENABLE).m_nValue = 1;
    EXPECT_EQ(EvaluatedButtons(), (Buttons{0, 1, 0})) << "and so does the node";
    EXPECT_EQ(PositionOutputs(), (Position{1, 2, 3.0f, 4.0f}));
}

TEST_F(MouseNode, IgnoresEverythingWithoutOwner) {
    m_scene.Evaluate();
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    SQORMouseData sample(0, 50.0f, 60.0f, CPoint(70, 80), 1);
    for (int nEvent = 3000; nEvent <= 3020; ++nEvent) {
        EXPECT_EQ(Send(nEvent, &sample), 0) << nEvent;
    }
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    ExpectNothingFiredOrLogged();
    EXPECT_EQ(EvaluatedButtons(), (Buttons{0, 0, 0})) << "evaluation needs no owner";
    EXPECT_EQ(PositionOutputs(), (Position{0, 0, 0.0f, 0.0f}));
}

TEST_F(MouseNode, EvaluationWithoutGraphNodeForgetsTheGraphNode) {
    m_scene.Evaluate();
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    EXPECT_EQ(Send(3005), 0);
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    ExpectNothingFiredOrLogged();
    EXPECT_EQ(EvaluatedButtons(), (Buttons{0, 0, 0}));
    EXPECT_EQ(Send(3005), 1);
}

TEST_F(MouseNode, NullRecordIsAnError) {
    m_scene.Evaluate();
    Send(3005);
    m_host.TakeEvents();
    m_host.TakeLog();
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Error("[Clip.Graph.Node]DevIOEventOccurred函数数据错误")});
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
    EXPECT_EQ(EvaluatedButtons(), (Buttons{1, 0, 0}));
}

TEST_F(MouseNode, NullRecordIsAnErrorWhileDisabledToo) {
    m_scene.Input(ENABLE).m_nValue = 0;
    m_scene.Evaluate();
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Error("[Clip.Graph.Node]DevIOEventOccurred函数数据错误")});
}

TEST_F(MouseNode, NodesKeepTheirStatesApart) {
    NodeScene other(m_host, TYPE_MOUSE);
    m_scene.Evaluate();
    other.Evaluate();
    Send(3005);
    Move({1, 2, 3.0f, 4.0f});
    EXPECT_EQ(other.Evaluate(), 1);
    for (const unsigned nId : VALUE_OUTPUTS) {
        EXPECT_EQ(other.Output(nId).m_nValue, 0) << nId;
        EXPECT_EQ(other.Output(nId).m_fValue, 0.0f) << nId;
    }
}

// ---- Evaluation ----------------------------------------------------------------------------------------------------

TEST_F(MouseNode, EvaluationHandlesTheCallWhenEnabled) {
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(ButtonOutputs(), (Buttons{0, 0, 0}));
    EXPECT_EQ(PositionOutputs(), (Position{0, 0, 0.0f, 0.0f}));
    ExpectNothingFiredOrLogged();
}

TEST_F(MouseNode, EvaluationWithoutGraphNodeDoesNothing) {
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    ExpectNothingFiredOrLogged();
}

TEST_F(MouseNode, AnyValueButZeroEnables) {
    for (const int nValue : {1, 2, -1, 256, -2147483647 - 1}) {
        m_scene.Input(ENABLE).m_nValue = nValue;
        EXPECT_EQ(m_scene.Evaluate(), 1) << nValue;
        EXPECT_EQ(Send(3004), 1) << nValue;
        EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{354}) << nValue;
    }
}

TEST_F(MouseNode, EnableOfTheGraphWinsOverTheNodesOwn) {
    VEKParam& graphEnable = m_scene.AddGraphInput(ENABLE, 5, 5);
    graphEnable.m_nValue = 0;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Send(3004), 0);
    graphEnable.m_nValue = 1;
    m_scene.Input(ENABLE).m_nValue = 0;
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Send(3004), 1);
}

TEST_F(MouseNode, MissingEnableLeavesTheNodeAsItWas) {
    m_scene.Evaluate();
    Send(3005);
    m_host.TakeEvents();
    m_host.TakeLog();
    m_scene.m_pNode->Empty();
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(ButtonOutputs(), (Buttons{0, 0, 0}));
    ExpectNothingFiredOrLogged();
    EXPECT_EQ(Send(3004), 1) << "still enabled";
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{354});
}

TEST_F(MouseNode, MissingEnableDoesNotEnableANewNode) {
    m_scene.m_pNode->Empty();
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Send(3004), 0);
    ExpectNothingFiredOrLogged();
}

TEST_F(MouseNode, MissingOutputsAreSkippedOneByOne) {
    int nRound = 0;
    for (const unsigned nMissing : VALUE_OUTPUTS) {
        SCOPED_TRACE(nMissing);
        ++nRound;
        m_scene.Evaluate();
        for (const int nDown : {3005, 3007, 3009}) {
            Send(nRound % 2 != 0 ? nDown : nDown + 1);
        }
        Move({nRound, 10 + nRound, 20.0f + static_cast<float>(nRound), 30.0f + static_cast<float>(nRound)});
        SGraphNode graphNode;
        m_scene.m_pNode->GetNodeOutput(&graphNode);
        VEKParam* pMissing = FindParam(graphNode.m_lstOutputGroup, MakeParamGuid(nMissing));
        pMissing->m_guid = MakeParamGuid(9999);

        EXPECT_EQ(m_scene.m_pNode->ProcessNode(&graphNode), 1);

        EXPECT_EQ(pMissing->m_nValue, 0);
        EXPECT_EQ(pMissing->m_fValue, 0.0f);
        for (const unsigned nId : VALUE_OUTPUTS) {
            const VEKParam* pOutput = FindParam(graphNode.m_lstOutputGroup, MakeParamGuid(nId));
            if (nId == nMissing) {
                EXPECT_EQ(pOutput, nullptr);
            } else if (nId <= BUTTON_MIDDLE) {
                EXPECT_EQ(pOutput->m_nValue, nRound % 2) << nId;
            } else if (nId <= PIXEL_Y) {
                EXPECT_EQ(pOutput->m_nValue, nRound + (nId == PIXEL_Y ? 10 : 0)) << nId;
            } else {
                EXPECT_EQ(pOutput->m_fValue, static_cast<float>(nRound + (nId == RELATIVE_Y ? 30 : 20))) << nId;
            }
        }
        m_scene.m_pNode->ProcessNode(nullptr);
    }
}

TEST_F(MouseNode, EvaluationWithoutAnyOutputIsHandled) {
    SGraphNode bare;
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(&bare), 1);
    EXPECT_TRUE(bare.m_lstOutputGroup.IsEmpty());
    EXPECT_EQ(Send(3005), 1);
    m_scene.m_pNode->ProcessNode(nullptr);
}

TEST_F(MouseNode, ForeignValuesOfTheOutputsAreOverwritten) {
    for (const unsigned nId : VALUE_OUTPUTS) {
        m_scene.Output(nId).m_nValue = 77;
        m_scene.Output(nId).m_fValue = 77.0f;
    }
    EXPECT_EQ(EvaluatedButtons(), (Buttons{0, 0, 0}));
    EXPECT_EQ(PositionOutputs(), (Position{0, 0, 0.0f, 0.0f}));
}

TEST_F(MouseNode, EachOutputIsWrittenInTheMemberOfItsKindOnly) {
    m_scene.Evaluate();
    Send(3005);
    Move({5, 6, 7.0f, 8.0f});
    for (const unsigned nId : {BUTTON_LEFT, PIXEL_X, PIXEL_Y}) {
        m_scene.Output(nId).m_fValue = 77.0f;
    }
    for (const unsigned nId : {RELATIVE_X, RELATIVE_Y}) {
        m_scene.Output(nId).m_nValue = 77;
    }
    m_scene.Evaluate();
    for (const unsigned nId : {BUTTON_LEFT, PIXEL_X, PIXEL_Y}) {
        EXPECT_EQ(m_scene.Output(nId).m_fValue, 77.0f) << nId;
    }
    for (const unsigned nId : {RELATIVE_X, RELATIVE_Y}) {
        EXPECT_EQ(m_scene.Output(nId).m_nValue, 77) << nId;
    }
    EXPECT_EQ(m_scene.Output(PIXEL_X).m_nValue, 5);
    EXPECT_EQ(m_scene.Output(RELATIVE_Y).m_fValue, 8.0f);
}

TEST_F(MouseNode, EqualPositionIsNotWrittenAgain) {
    // The two zeros are equal, but tell who wrote last.
    m_scene.Output(RELATIVE_X).m_fValue = -0.0f;
    m_scene.Output(RELATIVE_Y).m_fValue = -0.0f;
    m_scene.Evaluate();
    EXPECT_TRUE(std::signbit(m_scene.Output(RELATIVE_X).m_fValue));
    EXPECT_TRUE(std::signbit(m_scene.Output(RELATIVE_Y).m_fValue));
    Move({0, 0, 1.0f, 0.0f});
    m_scene.Evaluate();
    EXPECT_EQ(m_scene.Output(RELATIVE_X).m_fValue, 1.0f);
    EXPECT_TRUE(std::signbit(m_scene.Output(RELATIVE_Y).m_fValue));
}

TEST_F(MouseNode, EvaluationNeverWritesTheEventOutputs) {
    for (unsigned nId = 352; nId <= 364; ++nId) {
        if (nId != 357 && nId != 361) {
            m_scene.Output(nId).m_nValue = 77;
        }
    }
    m_scene.Evaluate();
    for (int nEvent = 3002; nEvent <= 3012; ++nEvent) {
        Send(nEvent);
        m_scene.Evaluate();
    }
    for (unsigned nId = 352; nId <= 364; ++nId) {
        if (nId != 357 && nId != 361) {
            EXPECT_EQ(m_scene.Output(nId).m_nValue, 77) << nId;
        }
    }
}

} // namespace
