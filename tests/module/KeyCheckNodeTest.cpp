// The key check node: its tables, and what it fires for each state of keyboard, clock and main window.
#include "HostCalls.h"
#include "ModuleHost.h"
#include "TestMachine.h"

namespace {

const unsigned ENABLE = 2;
const unsigned KEY_VALUE = 1102;
const unsigned INTERVAL = 1103;

const int KEY_DOWN = 1152;
const int HOLD_DOWN = 1153;
const int KEY_UP = 1154;

const int SHIFT = 16;
const int CONTROL = 17;
const int MENU = 18;
const int KEY_A = 65;

const int SHIFT_REQUIRED = 0x100;
const int CONTROL_REQUIRED = 0x200;
const int MENU_REQUIRED = 0x400;

using Outputs = std::vector<int>;

class KeyCheckNode : public ModuleTest {
protected:
    KeyCheckNode() { m_scene.Input(KEY_VALUE).m_nValue = KEY_A; }

    void ExpectNothingFiredOrLogged() {
        EXPECT_EQ(m_host.TakeFiredOutputs(), Outputs{});
        EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
        EXPECT_TRUE(m_host.TakeOtherMessages().empty());
        EXPECT_TRUE(m_host.TakeReportedEvents().empty());
    }

    /// What one more evaluation fires; it must answer nResult.
    Outputs Evaluated(int nResult = 1) {
        EXPECT_EQ(m_scene.Evaluate(), nResult);
        EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{}) << "the node writes no log";
        EXPECT_TRUE(m_host.TakeReportedEvents().empty());
        return m_host.TakeFiredOutputs();
    }

    Outputs EvaluatedAt(DWORD nTick) {
        m_clock.Set(nTick);
        return Evaluated();
    }

    TestApplication m_application;
    TestKeyboard m_keyboard;
    TestClock m_clock{0};
    NodeScene m_scene{m_host, TYPE_KEY_CHECK};
};

// ---- Tables --------------------------------------------------------------------------------------------------------

TEST_F(KeyCheckNode, Fresh) {
    ExpectFreshNode(*m_host.CreateNode(TYPE_KEY_CHECK), TYPE_KEY_CHECK, "IO_PROCESS_KEY_CHECK");
}

TEST_F(KeyCheckNode, Inputs) {
    ExpectInputGroups(m_host.CreateNode(TYPE_KEY_CHECK)->m_lstParamGroup,
                      {{1101,
                        "Base param",
                        "IO_PROCESS_KEY_CHECK",
                        {{.nId = 2,
                          .pszName = "Enable",
                          .pszDisplay = "TOUCH_CONTROL_ENABLED",
                          .nType = 5,
                          .nControl = 5,
                          .range = ExpectedRange{0, 0, 1, 1},
                          .flags = ExpectedFlags{0, 0, 1, 0},
                          .nValue = 1},
                         {.nId = 1102,
                          .pszName = "KeyValue",
                          .pszDisplay = "IO_PROCESS_KEYBOARD_KEYTEXT",
                          .nType = 38,
                          .nControl = 1,
                          .range = ExpectedRange{0, 0, 256, 1},
                          .flags = ExpectedFlags{0, 0, 0, 0},
                          .nValue = 0},
                         {.nId = 1103,
                          .pszName = "Interval",
                          .pszDisplay = "IO_PROCESS_INTERVAL_MS",
                          .nType = 2,
                          .nControl = 1,
                          .range = ExpectedRange{100, 40, 10000, 1}, // another value than the node starts with
                          .flags = ExpectedFlags{0, 0, 1, 0},
                          .nValue = 200,
                          .fValue = 100.0f}}}});
}

TEST_F(KeyCheckNode, Outputs) {
    ExpectOutputGroups(m_scene.m_graphNode.m_lstOutputGroup,
                       {{1151,
                         "Output",
                         "IO_PROCESS_KEY_CHECK",
                         {EventPin(1152, "KeyDown", "IO_PROCESS_KEYBOARD_KEYDOWN"),
                          EventPin(1153, "HoldDown", "IO_PROCESS_KEYBOARD_HOLD_DOWN"),
                          EventPin(1154, "KeyUp", "IO_PROCESS_KEYBOARD_KEYUP")}}});
}

TEST_F(KeyCheckNode, OutputsAreMadeOnce) {
    const auto before = Items(m_scene.m_graphNode.m_lstOutputGroup);
    ASSERT_EQ(before.size(), 1u);
    m_scene.m_pNode->GetNodeOutput(&m_scene.m_graphNode);
    EXPECT_EQ(Items(m_scene.m_graphNode.m_lstOutputGroup), before);
}

TEST_F(KeyCheckNode, OutputsAreNotMadeBesideAForeignGroup) {
    SGraphNode graphNode;
    auto* pForeign = new VEKParamGroup;
    graphNode.m_lstOutputGroup.AddTail(pForeign);
    m_scene.m_pNode->GetNodeOutput(&graphNode);
    EXPECT_EQ(Items(graphNode.m_lstOutputGroup), std::vector<VEKParamGroup*>{pForeign});
    EXPECT_TRUE(pForeign->m_lstParam.IsEmpty());
}

TEST_F(KeyCheckNode, OutputsOfNoGraphNodeAreNotMade) {
    m_scene.m_pNode->GetNodeOutput(nullptr);
}

TEST_F(KeyCheckNode, InheritsTheOtherOperations) {
    EXPECT_EQ(m_scene.m_pNode->NeedUpdateSingleParam(MakeParamGuid(KEY_VALUE)), FALSE);
    EXPECT_EQ(m_scene.m_pNode->UpdateSingleParamValue(MakeParamGuid(KEY_VALUE)), 0);
    m_scene.m_pNode->InitParam();
    m_scene.m_pNode->Init();
    EXPECT_EQ(m_scene.m_pNode->m_lstParamGroup.GetCount(), 1);
    EXPECT_EQ(m_scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam.GetCount(), 3);
}

TEST_F(KeyCheckNode, TakesNoEvents) {
    SKeyEventData key;
    key.m_strText = L"a";
    m_keyboard.Hold(KEY_A);
    for (const bool bEvaluated : {false, true}) {
        for (int nDevice = 0; nDevice <= 6; ++nDevice) {
            for (const int nEvent : {0, 1, 2002, 2003, 3005, 3006, 3013}) {
                EXPECT_EQ(m_scene.Send(nDevice, nEvent, nDevice == 0 ? &key : nullptr), 0);
            }
        }
        EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0) << "and a missing record isn't an error";
        ExpectNothingFiredOrLogged();
        if (!bEvaluated) {
            EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
        }
    }
}

// ---- One key -------------------------------------------------------------------------------------------------------

TEST_F(KeyCheckNode, PressAndReleaseFireAtTheNextEvaluation) {
    EXPECT_EQ(Evaluated(), Outputs{});
    m_keyboard.Hold(KEY_A);
    ExpectNothingFiredOrLogged();
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
    m_keyboard.Release(KEY_A);
    ExpectNothingFiredOrLogged();
    EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
    EXPECT_EQ(Evaluated(), Outputs{});
}

TEST_F(KeyCheckNode, KeyHeldAtTheFirstEvaluationWasJustPressed) {
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
}

TEST_F(KeyCheckNode, EdgesBetweenTwoEvaluationsAreMissed) {
    EXPECT_EQ(Evaluated(), Outputs{});
    m_keyboard.Hold(KEY_A);
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{});
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
    m_keyboard.Release(KEY_A);
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(EvaluatedAt(100), Outputs{}) << "still down, and the interval isn't over";
}

TEST_F(KeyCheckNode, ToggledKeyIsNotDown) {
    m_keyboard.Toggle(KEY_A, true);
    EXPECT_EQ(Evaluated(), Outputs{});
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
}

TEST_F(KeyCheckNode, EveryKeyCodeStandsForItsOwnKey) {
    for (int nCode = 1; nCode <= 255; ++nCode) {
        SCOPED_TRACE(nCode);
        m_scene.Input(KEY_VALUE).m_nValue = nCode;
        m_keyboard.HoldAll();
        m_keyboard.Release(nCode);
        EXPECT_EQ(Evaluated(), Outputs{}) << "all others are down";
        m_keyboard.ReleaseAll();
        m_keyboard.Hold(nCode);
        EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
        m_keyboard.ReleaseAll();
        EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
    }
}

TEST_F(KeyCheckNode, BitsAboveTheModifiersMeanNothing) {
    for (const int nBits : {0x800, 0x10000, 0x40000000, -2147483647 - 1}) {
        SCOPED_TRACE(nBits);
        m_scene.Input(KEY_VALUE).m_nValue = nBits | KEY_A;
        m_keyboard.Hold(KEY_A);
        EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
        m_keyboard.Release(KEY_A);
        EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
    }
}

TEST_F(KeyCheckNode, WithoutAKeyNothingHappens) {
    m_scene.Input(KEY_VALUE).m_nValue = 0;
    m_keyboard.HoldAll();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Evaluated(0), Outputs{});
    }
    m_keyboard.ReleaseAll();
    EXPECT_EQ(Evaluated(0), Outputs{});
}

TEST_F(KeyCheckNode, KeyTakenAwayWhileDownIsReleasedWhenThereIsOneAgain) {
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
    m_scene.Input(KEY_VALUE).m_nValue = 0;
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(Evaluated(0), Outputs{});
    m_scene.Input(KEY_VALUE).m_nValue = KEY_A;
    EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
}

TEST_F(KeyCheckNode, AnotherKeyTakesOverTheState) {
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
    m_scene.Input(KEY_VALUE).m_nValue = 66;
    EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
    m_keyboard.Hold(66);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
}

TEST_F(KeyCheckNode, EvaluationWritesNoOutput) {
    for (const int nId : {KEY_DOWN, HOLD_DOWN, KEY_UP}) {
        m_scene.Output(static_cast<unsigned>(nId)).m_nValue = 77;
    }
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(EvaluatedAt(1000), Outputs{KEY_DOWN});
    EXPECT_EQ(EvaluatedAt(1001), Outputs{HOLD_DOWN});
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(EvaluatedAt(1002), Outputs{KEY_UP});
    for (const int nId : {KEY_DOWN, HOLD_DOWN, KEY_UP}) {
        EXPECT_EQ(m_scene.Output(static_cast<unsigned>(nId)).m_nValue, 77);
    }
}

TEST_F(KeyCheckNode, OutputsNeedNotBeThere) {
    SGraphNode bare;
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(&bare), 1);
    EXPECT_EQ(m_host.TakeFiredOutputs(), Outputs{KEY_DOWN});
    EXPECT_TRUE(bare.m_lstOutputGroup.IsEmpty());
    m_scene.m_pNode->ProcessNode(nullptr);
}

TEST_F(KeyCheckNode, OwnerIsNotNeeded) {
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
}

TEST_F(KeyCheckNode, WithoutEventWindowTheStateIsFollowedAllTheSame) {
    m_scene.m_pNode->m_hEventWnd = nullptr;
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{});
    m_scene.m_pNode->m_hEventWnd = m_host.Window();
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
}

TEST_F(KeyCheckNode, NodesKeepTheirStatesApart) {
    NodeScene other(m_host, TYPE_KEY_CHECK);
    other.Input(KEY_VALUE).m_nValue = KEY_A;
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(other.Evaluate(), 1);
    EXPECT_EQ(m_host.TakeFiredOutputs(), Outputs{});
    EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
}

// ---- Modifiers -----------------------------------------------------------------------------------------------------

struct Modifier {
    int nKey;
    int nRequiredBit;
};
const Modifier MODIFIERS[] = {{SHIFT, SHIFT_REQUIRED}, {CONTROL, CONTROL_REQUIRED}, {MENU, MENU_REQUIRED}};

TEST_F(KeyCheckNode, EveryRequiredModifierMustBeHeldAndOthersDoNotMatter) {
    for (int nRequired = 0; nRequired < 8; ++nRequired) {
        for (int nHeld = 0; nHeld < 8; ++nHeld) {
            SCOPED_TRACE("required " + std::to_string(nRequired) + ", held " + std::to_string(nHeld));
            NodeScene scene(m_host, TYPE_KEY_CHECK);
            int nKeyValue = KEY_A;
            m_keyboard.ReleaseAll();
            m_keyboard.Hold(KEY_A);
            for (int i = 0; i < 3; ++i) {
                nKeyValue |= (nRequired & 1 << i) != 0 ? MODIFIERS[i].nRequiredBit : 0;
                if ((nHeld & 1 << i) != 0) {
                    m_keyboard.Hold(MODIFIERS[i].nKey);
                }
            }
            scene.Input(KEY_VALUE).m_nValue = nKeyValue;
            const bool bDown = (nRequired & ~nHeld) == 0;
            EXPECT_EQ(scene.Evaluate(), bDown ? 1 : 0);
            EXPECT_EQ(m_host.TakeFiredOutputs(), bDown ? Outputs{KEY_DOWN} : Outputs{});
            m_keyboard.Release(KEY_A);
            EXPECT_EQ(scene.Evaluate(), bDown ? 1 : 0);
            EXPECT_EQ(m_host.TakeFiredOutputs(), bDown ? Outputs{KEY_UP} : Outputs{});
        }
    }
}

TEST_F(KeyCheckNode, ReleasedModifierFiresKeyUpOnce) {
    for (const Modifier& modifier : MODIFIERS) {
        SCOPED_TRACE(modifier.nKey);
        m_scene.Input(KEY_VALUE).m_nValue = KEY_A | modifier.nRequiredBit;
        m_keyboard.Hold(modifier.nKey);
        m_keyboard.Hold(KEY_A);
        EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
        m_keyboard.Release(modifier.nKey);
        EXPECT_EQ(Evaluated(0), Outputs{KEY_UP});
        EXPECT_EQ(Evaluated(0), Outputs{}) << "the key is still held, but the state is up";
        m_keyboard.Hold(modifier.nKey);
        EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN}) << "held together again";
        m_keyboard.Release(modifier.nKey);
        m_keyboard.Release(KEY_A);
        EXPECT_EQ(Evaluated(0), Outputs{KEY_UP}) << "both released at once";
        EXPECT_EQ(Evaluated(0), Outputs{});
    }
}

TEST_F(KeyCheckNode, OneOfSeveralModifiersReleasedFiresKeyUpOnce) {
    m_scene.Input(KEY_VALUE).m_nValue = KEY_A | SHIFT_REQUIRED | CONTROL_REQUIRED | MENU_REQUIRED;
    for (const Modifier& released : MODIFIERS) {
        SCOPED_TRACE(released.nKey);
        m_keyboard.HoldAll();
        EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
        m_keyboard.Release(released.nKey);
        EXPECT_EQ(Evaluated(0), Outputs{KEY_UP});
        m_keyboard.ReleaseAll();
        EXPECT_EQ(Evaluated(0), Outputs{});
    }
}

TEST_F(KeyCheckNode, ModifierReleasedWhileUpFiresNothing) {
    m_scene.Input(KEY_VALUE).m_nValue = KEY_A | SHIFT_REQUIRED;
    m_keyboard.Hold(SHIFT);
    EXPECT_EQ(Evaluated(), Outputs{});
    m_keyboard.Release(SHIFT);
    EXPECT_EQ(Evaluated(0), Outputs{});
}

TEST_F(KeyCheckNode, ToggledModifierIsNotHeld) {
    m_scene.Input(KEY_VALUE).m_nValue = KEY_A | SHIFT_REQUIRED;
    m_keyboard.Toggle(SHIFT, true);
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(0), Outputs{});
}

TEST_F(KeyCheckNode, ModifiersAloneAreNeverDown) {
    m_scene.Input(KEY_VALUE).m_nValue = SHIFT_REQUIRED;
    EXPECT_EQ(Evaluated(0), Outputs{});
    m_keyboard.Hold(SHIFT);
    EXPECT_EQ(Evaluated(), Outputs{}) << "key code 0 is no key";
}

TEST_F(KeyCheckNode, ModifierMayBeTheKeyItself) {
    m_scene.Input(KEY_VALUE).m_nValue = SHIFT;
    m_keyboard.Hold(SHIFT);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
    m_keyboard.Release(SHIFT);
    EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
}

// ---- Holding -------------------------------------------------------------------------------------------------------

TEST_F(KeyCheckNode, HeldKeyRepeatsOncePerInterval) {
    m_keyboard.Hold(KEY_A);
    std::vector<DWORD> holds;
    EXPECT_EQ(EvaluatedAt(10'000), Outputs{KEY_DOWN});
    for (DWORD nTick = 10'050; nTick <= 11'000; nTick += 50) {
        const Outputs outputs = EvaluatedAt(nTick);
        if (outputs == Outputs{HOLD_DOWN}) {
            holds.push_back(nTick);
        } else {
            EXPECT_EQ(outputs, Outputs{}) << nTick;
        }
    }
    EXPECT_EQ(holds, (std::vector<DWORD>{10'050, 10'250, 10'450, 10'650, 10'850}));
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(EvaluatedAt(11'050), Outputs{KEY_UP});
    EXPECT_EQ(EvaluatedAt(12'000), Outputs{});
}

TEST_F(KeyCheckNode, IntervalRunsFromTheLastHoldToTheMillisecond) {
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(EvaluatedAt(1000), Outputs{KEY_DOWN});
    EXPECT_EQ(EvaluatedAt(1000), Outputs{HOLD_DOWN}) << "the last one was long ago";
    EXPECT_EQ(EvaluatedAt(1000), Outputs{});
    EXPECT_EQ(EvaluatedAt(1199), Outputs{});
    EXPECT_EQ(EvaluatedAt(1200), Outputs{HOLD_DOWN});
    EXPECT_EQ(EvaluatedAt(1399), Outputs{});
    EXPECT_EQ(EvaluatedAt(1500), Outputs{HOLD_DOWN}) << "an evaluation that comes late";
    EXPECT_EQ(EvaluatedAt(1600), Outputs{}) << "doesn't bring the next one forward";
    EXPECT_EQ(EvaluatedAt(1700), Outputs{HOLD_DOWN});
}

TEST_F(KeyCheckNode, PressDoesNotRestartTheInterval) {
    m_keyboard.Hold(KEY_A);
    EvaluatedAt(1000);
    EXPECT_EQ(EvaluatedAt(1010), Outputs{HOLD_DOWN});
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(EvaluatedAt(1020), Outputs{KEY_UP});
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(EvaluatedAt(1030), Outputs{KEY_DOWN});
    EXPECT_EQ(EvaluatedAt(1209), Outputs{}) << "the last hold was at 1010";
    EXPECT_EQ(EvaluatedAt(1210), Outputs{HOLD_DOWN}) << "180 ms after the press";
}

TEST_F(KeyCheckNode, FirstHoldIsCountedFromTickZero) {
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(EvaluatedAt(0), Outputs{KEY_DOWN});
    EXPECT_EQ(EvaluatedAt(199), Outputs{});
    EXPECT_EQ(EvaluatedAt(200), Outputs{HOLD_DOWN});
}

TEST_F(KeyCheckNode, IntervalIsTheOneOfTheMoment) {
    m_keyboard.Hold(KEY_A);
    EvaluatedAt(1000);
    EXPECT_EQ(EvaluatedAt(1000), Outputs{HOLD_DOWN});
    m_scene.Input(INTERVAL).m_nValue = 500;
    EXPECT_EQ(EvaluatedAt(1300), Outputs{});
    m_scene.Input(INTERVAL).m_nValue = 40;
    EXPECT_EQ(EvaluatedAt(1301), Outputs{HOLD_DOWN});
    EXPECT_EQ(EvaluatedAt(1340), Outputs{});
    EXPECT_EQ(EvaluatedAt(1341), Outputs{HOLD_DOWN});
}

TEST_F(KeyCheckNode, IntervalOfTheGraphWins) {
    m_scene.AddGraphInput(INTERVAL, 2, 1).m_nValue = 1000;
    m_keyboard.Hold(KEY_A);
    EvaluatedAt(5000);
    EXPECT_EQ(EvaluatedAt(5000), Outputs{HOLD_DOWN});
    EXPECT_EQ(EvaluatedAt(5999), Outputs{});
    EXPECT_EQ(EvaluatedAt(6000), Outputs{HOLD_DOWN});
}

TEST_F(KeyCheckNode, IntervalZeroRepeatsAtEveryEvaluation) {
    m_scene.Input(INTERVAL).m_nValue = 0;
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(EvaluatedAt(1000), Outputs{KEY_DOWN});
    EXPECT_EQ(EvaluatedAt(1000), Outputs{HOLD_DOWN});
    EXPECT_EQ(EvaluatedAt(1000), Outputs{HOLD_DOWN});
    EXPECT_EQ(EvaluatedAt(1001), Outputs{HOLD_DOWN});
}

TEST_F(KeyCheckNode, IntervalIsAnUnsignedNumberOfMilliseconds) {
    m_keyboard.Hold(KEY_A);
    EvaluatedAt(1000);
    EXPECT_EQ(EvaluatedAt(1000), Outputs{HOLD_DOWN});
    m_scene.Input(INTERVAL).m_nValue = -1;
    EXPECT_EQ(EvaluatedAt(998), Outputs{}) << "1000 + 0xFFFFFFFF is 999";
    EXPECT_EQ(EvaluatedAt(999), Outputs{HOLD_DOWN});
    m_scene.Input(INTERVAL).m_nValue = -2147483647 - 1;
    EXPECT_EQ(EvaluatedAt(0x800003E6), Outputs{});
    EXPECT_EQ(EvaluatedAt(0x800003E7), Outputs{HOLD_DOWN});
}

TEST_F(KeyCheckNode, TickCountThatWrapsBetweenTwoHolds) {
    m_keyboard.Hold(KEY_A);
    EvaluatedAt(0xFFFFFF9C);
    EXPECT_EQ(EvaluatedAt(0xFFFFFF9C), Outputs{HOLD_DOWN});
    // 0xFFFFFF9C + 200 is 100: until the tick count wraps, it is above that.
    EXPECT_EQ(EvaluatedAt(0xFFFFFF9D), Outputs{HOLD_DOWN});
    EXPECT_EQ(EvaluatedAt(0xFFFFFFFF), Outputs{HOLD_DOWN});
    EXPECT_EQ(EvaluatedAt(0), Outputs{}) << "the sum has become 199";
    EXPECT_EQ(EvaluatedAt(198), Outputs{});
    EXPECT_EQ(EvaluatedAt(199), Outputs{HOLD_DOWN});
    EXPECT_EQ(EvaluatedAt(398), Outputs{});
    EXPECT_EQ(EvaluatedAt(399), Outputs{HOLD_DOWN});
}

TEST_F(KeyCheckNode, TickCountThatWrapsPastAHoldThatIsDueBefore) {
    m_keyboard.Hold(KEY_A);
    EvaluatedAt(0xFFFFFF00);
    EXPECT_EQ(EvaluatedAt(0xFFFFFF00), Outputs{HOLD_DOWN});
    // Due from 0xFFFFFFC8 on, which no tick of the next round reaches soon.
    for (const DWORD nTick : {0xFFFFFFC7u, 5u, 1000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFC7u}) {
        EXPECT_EQ(EvaluatedAt(nTick), Outputs{}) << nTick;
    }
    EXPECT_EQ(EvaluatedAt(0xFFFFFFC8), Outputs{HOLD_DOWN});
}

TEST_F(KeyCheckNode, WhatCannotBeFiredIsFiredAgainOnlyWhereTheStateIsKeptAtLast) {
    m_scene.Input(KEY_VALUE).m_nValue = KEY_A | SHIFT_REQUIRED;
    const auto FailedThenEvaluated = [this](DWORD nTick, int nResult) {
        m_clock.Set(nTick);
        {
            const FailingText failing(TEXT_OF_EVENTS);
            m_scene.Evaluate();
        }
        EXPECT_EQ(m_host.TakeFiredOutputs(), Outputs{});
        return Evaluated(nResult);
    };
    m_keyboard.Hold(SHIFT);
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(FailedThenEvaluated(1000, 1), Outputs{KEY_DOWN});
    EXPECT_EQ(FailedThenEvaluated(1000, 1), Outputs{}) << "the hold has its tick already";
    EXPECT_EQ(EvaluatedAt(1199), Outputs{});
    EXPECT_EQ(EvaluatedAt(1200), Outputs{HOLD_DOWN});
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(FailedThenEvaluated(1200, 1), Outputs{KEY_UP});
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(EvaluatedAt(1200), Outputs{KEY_DOWN});
    m_keyboard.Release(SHIFT);
    EXPECT_EQ(FailedThenEvaluated(1200, 0), Outputs{}) << "the key counts as up already";
}

TEST_F(KeyCheckNode, ReleasedModifierEndsTheHold) {
    m_scene.Input(KEY_VALUE).m_nValue = KEY_A | SHIFT_REQUIRED;
    m_keyboard.Hold(SHIFT);
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(EvaluatedAt(1000), Outputs{KEY_DOWN});
    EXPECT_EQ(EvaluatedAt(1001), Outputs{HOLD_DOWN});
    m_keyboard.Release(SHIFT);
    m_clock.Set(2000);
    EXPECT_EQ(Evaluated(0), Outputs{KEY_UP});
    m_clock.Set(3000);
    EXPECT_EQ(Evaluated(0), Outputs{});
}

// ---- What stops an evaluation --------------------------------------------------------------------------------------

TEST_F(KeyCheckNode, EvaluationWithoutGraphNodeDoesNothing) {
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    ExpectNothingFiredOrLogged();
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN}) << "the state wasn't touched";
}

TEST_F(KeyCheckNode, DisabledEvaluationDoesNothing) {
    m_scene.Input(ENABLE).m_nValue = 0;
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(0), Outputs{});
    m_scene.Input(ENABLE).m_nValue = 1;
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
    m_scene.Input(ENABLE).m_nValue = 0;
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(Evaluated(0), Outputs{});
    m_scene.Input(ENABLE).m_nValue = 1;
    EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
}

TEST_F(KeyCheckNode, AnyValueButZeroEnables) {
    for (const int nValue : {1, 2, -1, 256, -2147483647 - 1}) {
        m_scene.Input(ENABLE).m_nValue = nValue;
        m_keyboard.Hold(KEY_A);
        EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN}) << nValue;
        m_keyboard.Release(KEY_A);
        EXPECT_EQ(Evaluated(), Outputs{KEY_UP}) << nValue;
    }
}

TEST_F(KeyCheckNode, InputsOfTheGraphWinOverTheNodesOwn) {
    VEKParam& graphEnable = m_scene.AddGraphInput(ENABLE, 5, 5);
    VEKParam& graphKeyValue = m_scene.AddGraphInput(KEY_VALUE, 38, 1);
    graphKeyValue.m_nValue = 66;
    m_keyboard.Hold(66);
    EXPECT_EQ(Evaluated(0), Outputs{}) << "disabled by the graph";
    graphEnable.m_nValue = 1;
    m_scene.Input(ENABLE).m_nValue = 0;
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
    graphKeyValue.m_nValue = 0;
    EXPECT_EQ(Evaluated(0), Outputs{});
}

TEST_F(KeyCheckNode, EachMissingInputStopsTheEvaluation) {
    for (const unsigned nMissing : {ENABLE, KEY_VALUE, INTERVAL}) {
        SCOPED_TRACE(nMissing);
        NodeScene scene(m_host, TYPE_KEY_CHECK);
        scene.Input(KEY_VALUE).m_nValue = KEY_A;
        m_keyboard.Hold(KEY_A);
        EXPECT_EQ(scene.Evaluate(), 1);
        EXPECT_EQ(m_host.TakeFiredOutputs(), Outputs{KEY_DOWN});
        VEKParam& missing = scene.Input(nMissing);
        missing.m_guid = MakeParamGuid(9999);
        m_keyboard.Release(KEY_A);
        EXPECT_EQ(scene.Evaluate(), 0);
        ExpectNothingFiredOrLogged();
        missing.m_guid = MakeParamGuid(nMissing);
        EXPECT_EQ(scene.Evaluate(), 1);
        EXPECT_EQ(m_host.TakeFiredOutputs(), Outputs{KEY_UP}) << "the state was kept";
    }
}

TEST_F(KeyCheckNode, WithoutMainWindowNothingHappens) {
    m_keyboard.Hold(KEY_A);
    m_application.ShowMainWindow(false);
    EXPECT_EQ(Evaluated(0), Outputs{});
    m_application.ShowMainWindow(true);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
    m_application.ShowMainWindow(false);
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(Evaluated(0), Outputs{});
    m_application.ShowMainWindow(true);
    EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
}

TEST_F(KeyCheckNode, DisabledMainWindowStopsTheEvaluation) {
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
    m_application.EnableMainWindow(false);
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(Evaluated(0), Outputs{});
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(0), Outputs{});
    m_application.EnableMainWindow(true);
    EXPECT_EQ(EvaluatedAt(100), Outputs{}) << "down before and after";
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
}

/// An application that says itself which window is its main window.
class CChoosingApplication : public CWinApp {
public:
    explicit CChoosingApplication(CWnd* pMainWindow) : m_pChosen(pMainWindow) {}
    CWnd* GetMainWnd() override { return m_pChosen; }

    CWnd* m_pChosen;
};

TEST(KeyCheckNodeApplication, MainWindowIsAskedForVirtually) {
    ModuleHost host;
    TestKeyboard keyboard;
    keyboard.Hold(KEY_A);
    CWnd window;
    window.Attach(host.Window());
    CChoosingApplication application(&window);
    ASSERT_EQ(application.m_pMainWnd, nullptr);
    NodeScene scene(host, TYPE_KEY_CHECK);
    scene.Input(KEY_VALUE).m_nValue = KEY_A;
    EXPECT_EQ(scene.Evaluate(), 1);
    EXPECT_EQ(host.TakeFiredOutputs(), Outputs{KEY_DOWN});
    application.m_pMainWnd = &window;
    application.m_pChosen = nullptr;
    EXPECT_EQ(scene.Evaluate(), 0);
    window.Detach();
}

TEST(KeyCheckNodeApplication, WithoutApplicationNothingHappens) {
    ASSERT_EQ(AfxGetApp(), nullptr);
    ModuleHost host;
    TestKeyboard keyboard;
    keyboard.Hold(KEY_A);
    NodeScene scene(host, TYPE_KEY_CHECK);
    scene.Input(KEY_VALUE).m_nValue = KEY_A;
    EXPECT_EQ(scene.Evaluate(), 0);
    EXPECT_EQ(host.TakeFiredOutputs(), Outputs{});
    const TestApplication application;
    EXPECT_EQ(scene.Evaluate(), 1);
    EXPECT_EQ(host.TakeFiredOutputs(), Outputs{KEY_DOWN});
}

} // namespace
