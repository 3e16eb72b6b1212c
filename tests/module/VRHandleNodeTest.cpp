// The VR handle node: its upgrade, what a controller's samples write, move and fire.
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "HeapUse.h"
#include "InputNodeTest.h"

namespace {

const int DEVICE = 3;

const unsigned ENABLE = 2, VERSION = 7, OBJECT_NAME = 802, HANDLE_TYPE = 803;
const unsigned COORDINATES[] = {852, 853, 854, 857, 858, 859}; // of the position, then of the hit position

const int TRIGGER_DOWN = 862, TRIGGER_UP = 863, TRIGGER_CLICK = 864, PAD_DOWN = 865, PAD_UP = 866;
const int NONE = 0, PAD_CENTER = 867, PAD_LEFT = 868, PAD_RIGHT = 869, PAD_TOP = 870, PAD_BOTTOM = 871;

const int LEFT_HAND = 0, RIGHT_HAND = 1;

using Floats = std::vector<float>;

/// A sample of the left controller in which the given is pressed.
SVRPluginData Sample(int bTrigger = 0, int bPad = 0, float fPadX = 0, float fPadY = 0) {
    SVRPluginData sample;
    sample.m_bTriggerPressed = bTrigger;
    sample.m_bTouchPadPressed = bPad;
    sample.m_fTouchPadX = fPadX;
    sample.m_fTouchPadY = fPadY;
    // Far apart: the trigger doesn't click, but the touch-pad, which has no time limit, does.
    sample.m_nPressTime = 1000;
    sample.m_nReleaseTime = 9000;
    return sample;
}

SVRPluginData OfHand(int nHand, SVRPluginData sample) {
    sample.m_nHand = nHand;
    return sample;
}

/// Each element of pose and hit position has a value of its own.
SVRPluginData Posed(float fFirst = 100.0f, int bTrigger = 0) {
    SVRPluginData sample = Sample(bTrigger);
    for (int i = 0; i < 16; ++i) {
        sample.m_fPose[i] = fFirst + static_cast<float>(i);
    }
    for (int i = 0; i < 3; ++i) {
        sample.m_fHitPosition[i] = fFirst + static_cast<float>(50 + i);
    }
    return sample;
}

const Floats POSED = {112, 113, 114, 150, 151, 152};
const Floats UNMOVED = {0, 0, 0, 0, 0, 0};
const Floats IDENTITY = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
const Floats POSED_MATRIX = {100, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112, 113, 114, 115};

class VRHandleNode : public InputNodeTest {
protected:
    VRHandleNode() : InputNodeTest(TYPE_VR_HANDLE) { m_scene.Evaluate(); }

    int Send(SVRPluginData sample) { return m_scene.Send(DEVICE, 1, &sample); }
    Outputs FiredBy(const SVRPluginData& sample) {
        EXPECT_EQ(Send(sample), 1);
        return Fired();
    }

    Floats Coordinates() const {
        Floats values;
        for (const unsigned nId : COORDINATES) {
            values.push_back(m_scene.Output(nId).m_fValue);
        }
        return values;
    }

    static VEKObject& AddObject(VEKClip& clip, const wchar_t* pszName) {
        clip.m_lstObject.AddTail(new VEKObject(pszName));
        return *clip.m_lstObject.GetTail();
    }
    VEKObject& AddObject(const wchar_t* pszName) { return AddObject(m_scene.m_clip, pszName); }
    static Floats Matrix(const VEKObject& object) { return {std::begin(object.m_fMatrix), std::end(object.m_fMatrix)}; }

    /// Set an input and evaluate.
    void Name(const wchar_t* pszObject) {
        m_scene.Input(OBJECT_NAME).m_strValue = pszObject;
        EXPECT_EQ(m_scene.Evaluate(), 1);
    }
    void Choose(int nHand) {
        m_scene.Input(HANDLE_TYPE).m_nValue = nHand;
        EXPECT_EQ(m_scene.Evaluate(), 1);
    }
};

// ---- Older projects ------------------------------------------------------------------------------------------------

class VRHandleNodeUpgrade : public InputNodeUpgradeTest {
protected:
    VRHandleNodeUpgrade() : InputNodeUpgradeTest(TYPE_VR_HANDLE) {}
};

TEST_F(VRHandleNodeUpgrade, MissingParametersAreNoFault) {
    Own(VERSION).m_nValue = 1;
    VEKParam& handleType = Own(HANDLE_TYPE);
    handleType.m_guid = MISSING;
    handleType.m_arChoice.RemoveAll();
    m_pNode->InitParam();
    EXPECT_EQ(Own(VERSION).m_nValue, 2);
    EXPECT_EQ(handleType.m_arChoice.GetSize(), 0);
    handleType.m_guid = MakeParamGuid(HANDLE_TYPE);
    Own(VERSION).m_guid = MISSING;
    m_pNode->InitParam();
    EXPECT_EQ(CellsOf(handleType)["choices"].dump(),
              R"(["IO_PROCESS_VRHANLDE_HANDLE_LEFT","IO_PROCESS_VRHANLDE_HANDLE_RIGHT"])");
    EXPECT_EQ(m_pNode->m_lstParamGroup.GetHead()->m_lstParam.GetCount(), 4) << "none is added";
}

TEST_F(VRHandleNodeUpgrade, HitPositionIsInsertedBehindThePositionFromVersionTwoOn) {
    for (const int nVersion : {1, -1}) {
        Own(VERSION).m_nValue = nVersion;
        EXPECT_EQ(OutputsMadeOf({{851, {}}}), "851()") << nVersion;
    }
    EXPECT_EQ(OutputsMadeOf({}), "851(852 853 854) 856(857 858 859) 861(862 863 864 865 866 867 868 869 870 871)");
    m_pNode->InitParam();
    EXPECT_EQ(OutputsMadeOf({{851, {}}, {861, {}}}), "851() 856(857 858 859) 861()");
    EXPECT_EQ(OutputsMadeOf({{861, {}}, {999, {}}, {851, {}}}), "861() 999() 851() 856(857 858 859)");
    EXPECT_EQ(Utf8(m_pGraphNode->m_lstOutputGroup.GetTail()->m_strName), "HitPos");
    EXPECT_EQ(Utf8(m_pGraphNode->m_lstOutputGroup.GetTail()->m_strDisplay), "IO_PROCESS_VRHANLDE_HITPOS");
    for (const unsigned nOutput : {857u, 858u, 859u}) {
        ExpectAsNew(nOutput);
    }
    EXPECT_EQ(OutputsMadeOf({{856, {}}, {851, {}}}), "856() 851()") << "there is one";
    EXPECT_EQ(OutputsMadeOf({{861, {}}}), "861()") << "there is no position";
    Own(VERSION).m_guid = MISSING;
    EXPECT_EQ(OutputsMadeOf({{851, {}}}), "851()");
}

// ---- Evaluation ----------------------------------------------------------------------------------------------------

TEST_F(VRHandleNode, InputsOfTheGraphWinOverTheNodesOwn) {
    m_scene.AddGraphInput(HANDLE_TYPE, 4, 1).m_nValue = RIGHT_HAND;
    m_scene.AddGraphInput(OBJECT_NAME, 1, 6).m_strValue = L"graph";
    const VEKObject& ofGraph = AddObject(L"graph");
    const VEKObject& ofNode = AddObject(L"own");
    Name(L"own");
    EXPECT_EQ(Send(Posed()), 0);
    EXPECT_EQ(Send(OfHand(RIGHT_HAND, Posed())), 1);
    EXPECT_EQ(Matrix(ofGraph), POSED_MATRIX);
    EXPECT_EQ(Matrix(ofNode), IDENTITY);
}

TEST_F(VRHandleNode, MissingInputKeepsItsValueAndThoseBehindIt) {
    const VEKObject& first = AddObject(L"First");
    const VEKObject& second = AddObject(L"Second");
    Name(L"First");
    VEKParam& objectName = m_scene.Input(OBJECT_NAME);
    objectName.m_strValue = L"Second";
    objectName.m_guid = MISSING;
    m_scene.Input(HANDLE_TYPE).m_nValue = RIGHT_HAND;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Send(Posed()), 1) << "still enabled, and the left hand";
    EXPECT_EQ(Matrix(first), POSED_MATRIX);
    objectName.m_guid = MakeParamGuid(OBJECT_NAME);
    m_scene.Input(HANDLE_TYPE).m_guid = MISSING;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Send(Posed()), 1) << "still the left hand";
    EXPECT_EQ(Matrix(second), POSED_MATRIX) << "but the name has been read";
}

TEST_F(VRHandleNode, DisabledEvaluationReadsNothingElse) {
    const VEKObject& object = AddObject(L"Hand");
    m_scene.Input(ENABLE).m_nValue = 0;
    m_scene.Input(OBJECT_NAME).m_strValue = L"Hand";
    m_scene.Input(HANDLE_TYPE).m_nValue = RIGHT_HAND;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    m_scene.Input(ENABLE).m_nValue = 1;
    m_scene.Input(OBJECT_NAME).m_guid = MISSING;
    EXPECT_EQ(m_scene.Evaluate(), 0) << "enabled, but with the name and hand of before";
    EXPECT_EQ(Send(Posed()), 1);
    EXPECT_EQ(Matrix(object), IDENTITY);
}

// ---- What it ignores -----------------------------------------------------------------------------------------------

TEST_F(VRHandleNode, SamplesOfTheOtherHandAreIgnored) {
    EXPECT_EQ(FiredBy(Sample(1)), Outputs{TRIGGER_DOWN});
    for (const int nHand : {RIGHT_HAND, 2, -1, 256, 2147483647}) {
        EXPECT_EQ(Send(OfHand(nHand, Posed())), 0) << nHand;
    }
    EXPECT_EQ(Fired(), Outputs{});
    EXPECT_EQ(Coordinates(), UNMOVED);
    EXPECT_EQ(FiredBy(Sample(1)), Outputs{}) << "the previous sample is the left hand's: still pressed";
    EXPECT_EQ(FiredBy(Sample(0)), Outputs{TRIGGER_UP});
}

TEST_F(VRHandleNode, MissingSampleIsAnError) {
    EXPECT_EQ(m_scene.Send(DEVICE, 1, nullptr), 0);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Error("没有VR手柄数据")});
    EXPECT_EQ(Fired(), Outputs{});
}

// ---- Pose and hit position -----------------------------------------------------------------------------------------

TEST_F(VRHandleNode, PositionsAreWrittenAtOnceInTheirOwnMembers) {
    MarkOutputs();
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Written(), std::vector<std::string>{}) << "by the sample, not by the evaluation";
    EXPECT_EQ(Send(Posed(100, 1)), 1);
    EXPECT_EQ(Coordinates(), POSED);
    EXPECT_EQ(Written(),
              (std::vector<std::string>{"852 float", "853 float", "854 float", "857 float", "858 float", "859 float"}));
    EXPECT_EQ(m_host.EventCount(), 0) << "before the event arrives";
    EXPECT_EQ(Fired(), Outputs{TRIGGER_DOWN});
    Send(Posed(-500, 1));
    EXPECT_EQ(Coordinates(), (Floats{-488, -487, -486, -450, -449, -448}));
}

TEST_F(VRHandleNode, PositionsPassWithTheirBits) {
    for (const std::uint32_t nBits : {0x80000000u, 0x7F800000u, 0xFF800000u, 0x7FC12345u, 0x00000001u, 0x7F7FFFFFu}) {
        SVRPluginData sample = Sample();
        for (int i = 0; i < 3; ++i) {
            sample.m_fPose[12 + i] = std::bit_cast<float>(nBits);
            sample.m_fHitPosition[i] = std::bit_cast<float>(nBits);
        }
        EXPECT_EQ(Send(Sample()), 1); // zero, which equals minus zero
        EXPECT_EQ(Send(sample), 1);
        for (const float fValue : Coordinates()) {
            EXPECT_EQ(std::bit_cast<std::uint32_t>(fValue), nBits);
        }
    }
}

TEST_F(VRHandleNode, NamedObjectFollowsEverySample) {
    const VEKObject& hand = AddObject(L"Hand");
    const VEKObject& other = AddObject(L"Other");
    m_scene.Input(OBJECT_NAME).m_strValue = L"Hand";
    Send(Posed());
    EXPECT_EQ(Matrix(hand), IDENTITY) << "the name counts from the next evaluation on";
    m_scene.Evaluate();
    for (const float fFirst : {0.0f, -3.5f, 100.0f}) {
        EXPECT_EQ(FiredBy(Posed(fFirst)), Outputs{});
        EXPECT_EQ(Matrix(hand)[0], fFirst);
    }
    EXPECT_EQ(Matrix(hand), POSED_MATRIX);
    EXPECT_EQ(Matrix(other), IDENTITY);
    Name(L"Other");
    Send(Posed(0));
    EXPECT_EQ(Matrix(hand), POSED_MATRIX);
    EXPECT_EQ(Matrix(other)[15], 15.0f);
    Name(L"");
    Send(Posed());
    EXPECT_EQ(Matrix(other)[15], 15.0f);
    EXPECT_EQ(Utf8(hand.m_strName), "Hand");
}

TEST_F(VRHandleNode, UnknownAndEmptyNamesMoveNoObject) {
    const VEKObject& object = AddObject(L"Hand");
    const VEKObject& nameless = AddObject(L"");
    for (const wchar_t* pszName : {L"hand", L"Hand ", L"Han", L"Unknown", L""}) {
        Name(pszName);
        EXPECT_EQ(FiredBy(Posed()), Outputs{});
        EXPECT_EQ(Coordinates(), POSED);
    }
    EXPECT_EQ(Matrix(object), IDENTITY);
    EXPECT_EQ(Matrix(nameless), IDENTITY);
}

TEST_F(VRHandleNode, ObjectsOfOtherClipsAreNotMoved) {
    VEKClip otherClip(L"Other");
    const VEKObject& otherObject = AddObject(otherClip, L"Hand");
    Name(L"Hand");
    Send(Posed());
    EXPECT_EQ(Matrix(otherObject), IDENTITY);
    m_scene.m_pNode->m_pOwnerClip = &otherClip;
    Send(Posed());
    EXPECT_EQ(Matrix(otherObject), POSED_MATRIX);
    m_scene.m_pNode->m_pOwnerClip = &m_scene.m_clip;
}

// ---- Trigger -------------------------------------------------------------------------------------------------------

TEST_F(VRHandleNode, AnyValueButZeroIsPressedAndFiresAtItsEdges) {
    EXPECT_EQ(FiredBy(Sample(0, 0)), Outputs{});
    for (const int nPressed : {1, 2, -1, 256, -2147483647 - 1}) {
        SCOPED_TRACE(nPressed);
        EXPECT_EQ(FiredBy(Sample(nPressed)), Outputs{TRIGGER_DOWN});
        EXPECT_EQ(FiredBy(Sample(5)), Outputs{});
        EXPECT_EQ(FiredBy(Sample(0)), Outputs{TRIGGER_UP});
        EXPECT_EQ(FiredBy(Sample(0)), Outputs{});
        EXPECT_EQ(FiredBy(Sample(0, nPressed)), Outputs{PAD_DOWN});
        EXPECT_EQ(FiredBy(Sample(0, 6)), Outputs{});
        EXPECT_EQ(FiredBy(Sample(0, 0)), (Outputs{PAD_UP, PAD_CENTER}));
        EXPECT_EQ(FiredBy(Sample(0, 0)), Outputs{});
    }
}

TEST_F(VRHandleNode, TriggerClicksWithinHalfASecond) {
    const struct {
        unsigned nPress, nRelease;
        bool bClick;
    } TIMES[] = {{1000, 1000, true},
                 {1000, 1499, true},
                 {1000, 1500, false},
                 {0, 0xFFFFFFFF, false},
                 // 499 and 500 over the wrap.
                 {0xFFFFFF00, 0x000000F3, true},
                 {0xFFFFFF00, 0x000000F4, false},
                 {0x7FFFFFFF, 0x80000000, true},
                 // A release before the press is a huge time behind it.
                 {1000, 999, false},
                 {500, 0, false}};
    for (const auto& [nPress, nRelease, bClick] : TIMES) {
        SCOPED_TRACE(std::to_string(nPress) + " to " + std::to_string(nRelease));
        // The times of the release count, not those of the press.
        SVRPluginData pressed = Sample(1);
        pressed.m_nReleaseTime = nPress;
        pressed.m_nPressTime = nRelease;
        EXPECT_EQ(FiredBy(pressed), Outputs{TRIGGER_DOWN});
        SVRPluginData released = Sample(0);
        released.m_nPressTime = nPress;
        released.m_nReleaseTime = nRelease;
        EXPECT_EQ(FiredBy(released), bClick ? (Outputs{TRIGGER_UP, TRIGGER_CLICK}) : Outputs{TRIGGER_UP});
        EXPECT_EQ(FiredBy(released), Outputs{}) << "once";
    }
}

// ---- Touch-pad -----------------------------------------------------------------------------------------------------

const float ENDLESS = std::numeric_limits<float>::infinity();
const float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

float Above(float fValue) {
    return std::nextafter(fValue, ENDLESS);
}

float Below(float fValue) {
    return std::nextafter(fValue, -ENDLESS);
}

TEST_F(VRHandleNode, TouchPadClicksByWhereTheThumbWasAtTheRelease) {
    // Places at the right and above the centre; their mirror images are tried, too.
    const struct {
        int nClick;
        std::vector<std::pair<float, float>> places;
    } ZONES[] = {{PAD_CENTER, {{0, 0}, {0.1f, 0.1f}, {0.4f, 0.4f}, {1e-45f, 1e-45f}}},
                 {PAD_CENTER, {{Below(0.5f), 0}, {Below(0.5f), 0.3f}, {Below(0.5f), Below(0.5f)}}},
                 {PAD_RIGHT, {{0.8f, 0.2f}, {1, 0}, {1, 0.99f}, {1e30f, 0}, {ENDLESS, 0}, {ENDLESS, 1e30f}}},
                 {PAD_RIGHT, {{Above(0.5f), 0}, {Above(0.5f), 0.3f}, {Above(0.5f), Below(0.5f)}, {Above(0.5f), 0.5f}}},
                 {PAD_RIGHT, {{0.7f, Below(0.7f)}, {Above(0.7f), 0.7f}, {1, Below(1)}, {Above(5), 5}}},
                 // Borders belong to no zone, nor do diagonals and what is no number.
                 {NONE, {{0.5f, 0}, {0.5f, 0.3f}, {0.5f, Below(0.5f)}, {0.5f, 0.5f}}},
                 {NONE, {{Above(0.5f), Above(0.5f)}, {0.7f, 0.7f}, {1, 1}, {5, 5}, {ENDLESS, ENDLESS}}},
                 {NONE, {{NOT_A_NUMBER, 0}, {NOT_A_NUMBER, 0.8f}, {NOT_A_NUMBER, NOT_A_NUMBER}}}};
    const auto ExpectClick = [this](float fX, float fY, int nClick) {
        SCOPED_TRACE(std::to_string(fX) + ", " + std::to_string(fY));
        // Where the press was doesn't matter.
        EXPECT_EQ(FiredBy(Sample(0, 1, -0.9f, 0)), Outputs{PAD_DOWN});
        EXPECT_EQ(FiredBy(Sample(0, 0, fX, fY)), nClick != NONE ? (Outputs{PAD_UP, nClick}) : Outputs{PAD_UP});
    };
    for (const auto& [nClick, places] : ZONES) {
        const bool bSide = nClick == PAD_RIGHT;
        for (const auto& [fX, fY] : places) {
            for (const float fSign : {-1.0f, 1.0f}) {
                ExpectClick(fX, fSign * fY, bSide ? PAD_RIGHT : nClick);
                ExpectClick(-fX, fSign * fY, bSide ? PAD_LEFT : nClick);
                ExpectClick(fSign * fY, fX, bSide ? PAD_TOP : nClick);
                ExpectClick(fSign * fY, -fX, bSide ? PAD_BOTTOM : nClick);
            }
        }
    }
}

TEST_F(VRHandleNode, ThumbThatMovesOrRestsFiresNothing) {
    for (const int bTouched : {1, 0}) {
        for (const float fX : {0.9f, -0.9f}) {
            SVRPluginData sample = Sample(0, 0, fX, 0);
            sample.m_bTouchPadTouched = bTouched;
            EXPECT_EQ(FiredBy(sample), Outputs{});
        }
    }
}

// ---- Trigger and touch-pad together --------------------------------------------------------------------------------

TEST_F(VRHandleNode, TriggerComesBeforeTouchPad) {
    SVRPluginData released = Sample(0, 0, 0, 0.9f);
    released.m_nPressTime = 100;
    released.m_nReleaseTime = 200;
    EXPECT_EQ(FiredBy(Sample(1, 1)), (Outputs{TRIGGER_DOWN, PAD_DOWN}));
    EXPECT_EQ(FiredBy(released), (Outputs{TRIGGER_UP, TRIGGER_CLICK, PAD_UP, PAD_TOP}));
    EXPECT_EQ(FiredBy(Sample(1, 0)), Outputs{TRIGGER_DOWN});
    EXPECT_EQ(FiredBy(Sample(0, 1)), (Outputs{TRIGGER_UP, PAD_DOWN}));
    EXPECT_EQ(FiredBy(Sample(1, 0, -0.9f, 0)), (Outputs{TRIGGER_DOWN, PAD_UP, PAD_LEFT}));
}

// ---- Changing hands ------------------------------------------------------------------------------------------------

TEST_F(VRHandleNode, ChangingHandsForgetsWhatTheOldOneHeld) {
    EXPECT_EQ(FiredBy(Sample(1, 1)), (Outputs{TRIGGER_DOWN, PAD_DOWN}));
    m_scene.Input(HANDLE_TYPE).m_nValue = RIGHT_HAND;
    EXPECT_EQ(FiredBy(Sample(1, 1)), Outputs{}) << "still the left one until the next evaluation";
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Fired(), Outputs{}) << "no release follows";
    EXPECT_EQ(Send(Sample(0, 0)), 0);
    EXPECT_EQ(FiredBy(OfHand(RIGHT_HAND, Sample(0, 0))), Outputs{}) << "all was released";
    EXPECT_EQ(FiredBy(OfHand(RIGHT_HAND, Sample(1, 1))), (Outputs{TRIGGER_DOWN, PAD_DOWN}));
    Choose(LEFT_HAND);
    EXPECT_EQ(FiredBy(Sample(1, 1)), (Outputs{TRIGGER_DOWN, PAD_DOWN})) << "the new hand starts with all released";
}

TEST_F(VRHandleNode, UnchangedHandKeepsWhatItHolds) {
    EXPECT_EQ(FiredBy(Sample(1, 1)), (Outputs{TRIGGER_DOWN, PAD_DOWN}));
    m_scene.Input(HANDLE_TYPE).m_nValue = RIGHT_HAND; // not evaluated
    for (int i = 0; i < 3; ++i) {
        Choose(LEFT_HAND);
        EXPECT_EQ(FiredBy(Sample(1, 1)), Outputs{});
    }
}

TEST_F(VRHandleNode, HandMayBeAnyNumber) {
    for (const int nHand : {2, -1, 2147483647}) {
        Choose(nHand);
        EXPECT_EQ(FiredBy(OfHand(nHand, Sample(1))), Outputs{TRIGGER_DOWN}) << nHand;
        EXPECT_EQ(Send(Sample()), 0);
        EXPECT_EQ(Send(OfHand(RIGHT_HAND, Sample())), 0);
    }
}

// ---- Memory --------------------------------------------------------------------------------------------------------

TEST_F(VRHandleNode, SamplesAllocateNothing) {
    if (!AllocationCount()) {
        GTEST_SKIP() << "allocations aren't counted here";
    }
    AddObject(L"Hand");
    Name(L"Hand");
    SVRPluginData sample = Posed(100, 1);
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
