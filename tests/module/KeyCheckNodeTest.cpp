// The key check node: what it fires for each state of keyboard, clock and main window.
#include <functional>

#include "HostCalls.h"
#include "InputNodeTest.h"
#include "TestMachine.h"

namespace {

const unsigned ENABLE = 2, KEY_VALUE = 1102, INTERVAL = 1103;
const int KEY_DOWN = 1152, HOLD_DOWN = 1153, KEY_UP = 1154;
const int SHIFT = 16, KEY_A = 65, KEY_B = 66;

struct Modifier {
    int nKey;
    int nRequiredBit;
};
const Modifier MODIFIERS[] = {{SHIFT, 0x100}, {17, 0x200}, {18, 0x400}};
const int SHIFT_A = 0x100 | KEY_A;

/// Looks at the key A, unless a test says otherwise. The node writes no log.
class KeyCheckNode : public InputNodeTest {
protected:
    KeyCheckNode() : InputNodeTest(TYPE_KEY_CHECK) { Look(KEY_A); }

    void Look(int nKeyValue) { m_scene.Input(KEY_VALUE).m_nValue = nKeyValue; }

    /// What one more evaluation fires; it must answer nResult.
    Outputs Evaluated(int nResult = 1) {
        EXPECT_EQ(Fired(), Outputs{}) << "since the last evaluation";
        EXPECT_EQ(m_scene.Evaluate(), nResult);
        return Fired();
    }
    Outputs EvaluatedAt(DWORD nTick, int nResult = 1) {
        m_clock.Set(nTick);
        return Evaluated(nResult);
    }

    TestApplication m_application;
    TestKeyboard m_keyboard;
    TestClock m_clock{0};
};

// ---- One key -------------------------------------------------------------------------------------------------------

TEST_F(KeyCheckNode, EdgesBetweenTwoEvaluationsAreMissed) {
    m_keyboard.Hold(KEY_A);
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{});
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
    m_keyboard.Release(KEY_A);
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(EvaluatedAt(100), Outputs{}) << "still down, and the interval isn't over";
}

TEST_F(KeyCheckNode, ToggledKeysAreNotDown) {
    m_keyboard.Toggle(KEY_A, true);
    EXPECT_EQ(Evaluated(), Outputs{});
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
    m_keyboard.Toggle(SHIFT, true);
    m_keyboard.Hold(KEY_A);
    Look(SHIFT_A);
    EXPECT_EQ(Evaluated(0), Outputs{});
}

TEST_F(KeyCheckNode, EveryKeyCodeStandsForItsOwnKey) {
    const int BITS[] = {0, 0x800, 0x10000, 0x40000000, -2147483647 - 1}; // above the modifiers they mean nothing
    for (int nCode = 1; nCode <= 255; ++nCode) {
        SCOPED_TRACE(nCode);
        Look(BITS[nCode % 5] | nCode);
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

TEST_F(KeyCheckNode, AnotherKeyTakesOverTheState) {
    m_keyboard.Hold(KEY_A);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
    Look(KEY_B);
    EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
    m_keyboard.Hold(KEY_B);
    EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
}

// ---- Modifiers -----------------------------------------------------------------------------------------------------

TEST_F(KeyCheckNode, EveryRequiredModifierMustBeHeldAndOthersDoNotMatter) {
    for (int nRequired = 0; nRequired < 8; ++nRequired) {
        for (int nHeld = 0; nHeld < 8; ++nHeld) {
            SCOPED_TRACE("required " + std::to_string(nRequired) + ", held " + std::to_string(nHeld));
            int nKeyValue = KEY_A;
            m_keyboard.ReleaseAll();
            for (int i = 0; i < 3; ++i) {
                nKeyValue |= (nRequired & 1 << i) != 0 ? MODIFIERS[i].nRequiredBit : 0;
                if ((nHeld & 1 << i) != 0) {
                    m_keyboard.Hold(MODIFIERS[i].nKey);
                }
            }
            Look(nKeyValue);
            const bool bEnough = (nRequired & ~nHeld) == 0;
            m_keyboard.Hold(KEY_A);
            EXPECT_EQ(Evaluated(bEnough), bEnough ? Outputs{KEY_DOWN} : Outputs{});
            m_keyboard.Release(KEY_A);
            EXPECT_EQ(Evaluated(bEnough), bEnough ? Outputs{KEY_UP} : Outputs{});
        }
    }
}

TEST_F(KeyCheckNode, ReleasedModifierFiresKeyUpOnce) {
    for (const int nOthersRequired : {0, 0x700}) {
        for (const Modifier& modifier : MODIFIERS) {
            SCOPED_TRACE(modifier.nKey);
            Look(KEY_A | modifier.nRequiredBit | nOthersRequired);
            m_keyboard.HoldAll();
            EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
            m_keyboard.Release(modifier.nKey);
            EXPECT_EQ(Evaluated(0), Outputs{KEY_UP});
            EXPECT_EQ(Evaluated(0), Outputs{}) << "the key is still held, but the state is up";
            m_keyboard.Hold(modifier.nKey);
            EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN}) << "held together again";
            m_keyboard.ReleaseAll();
            EXPECT_EQ(Evaluated(0), Outputs{KEY_UP}) << "all released at once";
            EXPECT_EQ(Evaluated(0), Outputs{});
        }
    }
}

TEST_F(KeyCheckNode, ModifiersAloneAreNeverDown) {
    Look(0x100);
    EXPECT_EQ(Evaluated(0), Outputs{});
    m_keyboard.Hold(SHIFT);
    EXPECT_EQ(Evaluated(), Outputs{}) << "key code 0 is no key";
}

// ---- Holding -------------------------------------------------------------------------------------------------------

/// With the key held from the first evaluation on, which fires "KeyDown" unless a test begins it otherwise.
class KeyCheckNodeHold : public KeyCheckNode {
protected:
    KeyCheckNodeHold() { m_keyboard.Hold(KEY_A); }

    /// The ticks at which evaluations fire "HoldDown"; others must fire nothing.
    std::vector<DWORD> HoldsAt(std::initializer_list<DWORD> ticks) {
        std::vector<DWORD> holds;
        for (const DWORD nTick : ticks) {
            const Outputs outputs = EvaluatedAt(nTick);
            if (outputs == Outputs{HOLD_DOWN}) {
                holds.push_back(nTick);
            } else {
                EXPECT_EQ(outputs, Outputs{}) << nTick;
            }
        }
        return holds;
    }

    void Press(DWORD nTick) { EXPECT_EQ(EvaluatedAt(nTick), Outputs{KEY_DOWN}); }
};

using Ticks = std::vector<DWORD>;

TEST_F(KeyCheckNodeHold, IntervalRunsFromTheLastHoldToTheMillisecond) {
    Press(1000);
    EXPECT_EQ(EvaluatedAt(1000), Outputs{HOLD_DOWN}) << "the last one was long ago";
    EXPECT_EQ(HoldsAt({1000, 1050, 1199, 1200, 1300, 1399}), Ticks{1200});
    EXPECT_EQ(EvaluatedAt(1500), Outputs{HOLD_DOWN}) << "an evaluation that comes late";
    EXPECT_EQ(EvaluatedAt(1600), Outputs{}) << "doesn't bring the next one forward";
    EXPECT_EQ(EvaluatedAt(1700), Outputs{HOLD_DOWN});
}

TEST_F(KeyCheckNodeHold, FirstHoldIsCountedFromTickZero) {
    Press(0);
    EXPECT_EQ(HoldsAt({199, 200}), Ticks{200});
}

TEST_F(KeyCheckNodeHold, PressDoesNotRestartTheInterval) {
    Press(1000);
    EXPECT_EQ(HoldsAt({1010}), Ticks{1010});
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(EvaluatedAt(1020), Outputs{KEY_UP});
    m_keyboard.Hold(KEY_A);
    Press(1030);
    EXPECT_EQ(HoldsAt({1209, 1210}), Ticks{1210}) << "the last hold was at 1010, the press 180 ms ago";
}

TEST_F(KeyCheckNodeHold, IntervalIsTheOneOfTheMoment) {
    Press(1000);
    EXPECT_EQ(HoldsAt({1000}), Ticks{1000});
    m_scene.Input(INTERVAL).m_nValue = 500;
    EXPECT_EQ(HoldsAt({1300}), Ticks{});
    m_scene.Input(INTERVAL).m_nValue = 40;
    EXPECT_EQ(HoldsAt({1301, 1340, 1341}), (Ticks{1301, 1341}));
    m_scene.Input(INTERVAL).m_nValue = 0;
    EXPECT_EQ(HoldsAt({1341, 1341, 1342}), (Ticks{1341, 1341, 1342}));
    m_scene.AddGraphInput(INTERVAL, 2, 1).m_nValue = 1000;
    EXPECT_EQ(HoldsAt({2341, 2342}), Ticks{2342}) << "the graph's wins";
}

TEST_F(KeyCheckNodeHold, IntervalIsAnUnsignedNumberOfMilliseconds) {
    Press(1000);
    EXPECT_EQ(HoldsAt({1000}), Ticks{1000});
    m_scene.Input(INTERVAL).m_nValue = -1;
    EXPECT_EQ(HoldsAt({998, 999}), Ticks{999}) << "1000 + 0xFFFFFFFF is 999";
    m_scene.Input(INTERVAL).m_nValue = -2147483647 - 1;
    EXPECT_EQ(HoldsAt({0x800003E6, 0x800003E7}), Ticks{0x800003E7});
}

TEST_F(KeyCheckNodeHold, TickCountThatWrapsBetweenTwoHolds) {
    Press(0xFFFFFF9C);
    // 0xFFFFFF9C + 200 is 100: until the tick count wraps, it is above that. Then 0xFFFFFFFF + 200 is 199.
    EXPECT_EQ(HoldsAt({0xFFFFFF9C, 0xFFFFFF9D, 0xFFFFFFFF, 0, 198, 199, 398, 399}),
              (Ticks{0xFFFFFF9C, 0xFFFFFF9D, 0xFFFFFFFF, 199, 399}));
}

TEST_F(KeyCheckNodeHold, TickCountThatWrapsPastAHoldThatIsDueBefore) {
    Press(0xFFFFFF00);
    // Due again from 0xFFFFFFC8 on, which no tick of the next round reaches soon.
    EXPECT_EQ(HoldsAt({0xFFFFFF00, 0xFFFFFFC7, 5, 1000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFC7, 0xFFFFFFC8}),
              (Ticks{0xFFFFFF00, 0xFFFFFFC8}));
}

TEST_F(KeyCheckNodeHold, WhatCannotBeFiredIsFiredAgainOnlyWhereTheStateIsKeptAtLast) {
    Look(SHIFT_A);
    m_keyboard.Hold(SHIFT);
    const auto FailedThenEvaluated = [this](DWORD nTick, int nResult) {
        m_clock.Set(nTick);
        {
            const FailingText failing;
            m_scene.Evaluate();
        }
        return Evaluated(nResult);
    };
    EXPECT_EQ(FailedThenEvaluated(1000, 1), Outputs{KEY_DOWN});
    EXPECT_EQ(FailedThenEvaluated(1000, 1), Outputs{}) << "the hold has its tick already";
    EXPECT_EQ(HoldsAt({1199, 1200}), Ticks{1200});
    m_keyboard.Release(KEY_A);
    EXPECT_EQ(FailedThenEvaluated(1200, 1), Outputs{KEY_UP});
    m_keyboard.Hold(KEY_A);
    Press(1200);
    m_keyboard.Release(SHIFT);
    EXPECT_EQ(FailedThenEvaluated(1200, 0), Outputs{}) << "the key counts as up already";
}

// ---- What stops an evaluation --------------------------------------------------------------------------------------

TEST_F(KeyCheckNode, StoppedEvaluationKeepsTheState) {
    VEKParam& enable = m_scene.Input(ENABLE);
    VEKParam& keyValue = m_scene.Input(KEY_VALUE);
    VEKParam& interval = m_scene.Input(INTERVAL);
    const struct {
        const char* pszStop;
        std::function<void(bool bStop)> stop;
    } STOPS[] = {
        {"disabled", [&](bool bStop) { enable.m_nValue = bStop ? 0 : 1; }},
        {"no key", [&](bool bStop) { keyValue.m_nValue = bStop ? 0 : KEY_A; }},
        {"Enable is missing", [&](bool bStop) { enable.m_guid = bStop ? MISSING : MakeParamGuid(ENABLE); }},
        {"KeyValue is missing", [&](bool bStop) { keyValue.m_guid = bStop ? MISSING : MakeParamGuid(KEY_VALUE); }},
        {"Interval is missing", [&](bool bStop) { interval.m_guid = bStop ? MISSING : MakeParamGuid(INTERVAL); }},
        {"no main window", [&](bool bStop) { m_application.ShowMainWindow(!bStop); }},
        {"the main window takes no input", [&](bool bStop) { m_application.EnableMainWindow(!bStop); }}};
    for (const auto& [pszStop, stop] : STOPS) {
        SCOPED_TRACE(pszStop);
        m_keyboard.HoldAll();
        stop(true);
        EXPECT_EQ(Evaluated(0), Outputs{});
        stop(false);
        EXPECT_EQ(Evaluated(), Outputs{KEY_DOWN});
        stop(true);
        m_keyboard.ReleaseAll();
        EXPECT_EQ(Evaluated(0), Outputs{});
        m_keyboard.HoldAll();
        EXPECT_EQ(Evaluated(0), Outputs{});
        stop(false);
        EXPECT_EQ(EvaluatedAt(100), Outputs{}) << "down before and after";
        stop(true);
        m_keyboard.ReleaseAll();
        EXPECT_EQ(Evaluated(0), Outputs{});
        stop(false);
        EXPECT_EQ(Evaluated(), Outputs{KEY_UP});
    }
}

TEST(KeyCheckNodeApplication, WithoutOneNoKeyIsSeen) {
    ModuleHost host;
    NodeScene scene(host, TYPE_KEY_CHECK);
    scene.Input(KEY_VALUE).m_nValue = KEY_A;
    ASSERT_EQ(AfxGetApp(), nullptr);
    EXPECT_EQ(scene.Evaluate(), 0);
}

} // namespace
