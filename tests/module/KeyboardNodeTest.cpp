// The keyboard node: its tables, what it fires, logs and writes.
#include "ModuleHost.h"

namespace {

const int DEVICE = 0;
const int KEY_DOWN = 2002;
const int KEY_UP = 2003;
const unsigned ENABLE = 2;
const unsigned KEY_TEXT = 154;

SKeyEventData Key(const CString& strText) {
    SKeyEventData key;
    key.m_strText = strText;
    return key;
}

class KeyboardNode : public ModuleTest {
protected:
    int Press(const CString& strText) {
        SKeyEventData key = Key(strText);
        return m_scene.Send(DEVICE, KEY_DOWN, &key);
    }
    int Release() { return m_scene.Send(DEVICE, KEY_UP); }

    /// "KeyText" after one more evaluation.
    std::string EvaluatedText() {
        EXPECT_EQ(m_scene.Evaluate(), 1);
        return Utf8(m_scene.Output(KEY_TEXT).m_strValue);
    }

    void ExpectNothingFiredOrLogged() {
        EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
        EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
        EXPECT_TRUE(m_host.TakeOtherMessages().empty());
        EXPECT_TRUE(m_host.TakeReportedEvents().empty());
    }

    NodeScene m_scene{m_host, TYPE_KEYBOARD};
};

// ---- Tables --------------------------------------------------------------------------------------------------------

TEST_F(KeyboardNode, Inputs) {
    ExpectInputGroups(m_scene.m_pNode->m_lstParamGroup, {{101,
                                                          "Base param",
                                                          "IO_PROCESS_KEYBOARD",
                                                          {{.nId = 2,
                                                            .pszName = "Enable",
                                                            .pszDisplay = "TOUCH_CONTROL_ENABLED",
                                                            .nType = 5,
                                                            .nControl = 5,
                                                            .range = ExpectedRange{0, 0, 1, 1},
                                                            .flags = ExpectedFlags{0, 0, 1, 0},
                                                            .nValue = 1}}}});
}

TEST_F(KeyboardNode, Outputs) {
    ExpectOutputGroups(m_scene.m_graphNode.m_lstOutputGroup, {{151,
                                                               "Output",
                                                               "IO_PROCESS_KEYBOARD",
                                                               {{.nId = 152,
                                                                 .pszName = "KeyDown",
                                                                 .pszDisplay = "IO_PROCESS_KEYBOARD_KEYDOWN",
                                                                 .nType = 26,
                                                                 .nControl = 7,
                                                                 .range = ExpectedRange{0, 0, 1, 1},
                                                                 .flags = ExpectedFlags{0, 0, 1, 0}},
                                                                {.nId = 153,
                                                                 .pszName = "KeyUp",
                                                                 .pszDisplay = "IO_PROCESS_KEYBOARD_KEYUP",
                                                                 .nType = 26,
                                                                 .nControl = 7,
                                                                 .range = ExpectedRange{0, 0, 1, 1},
                                                                 .flags = ExpectedFlags{0, 0, 1, 0}},
                                                                {.nId = 154,
                                                                 .pszName = "KeyText",
                                                                 .pszDisplay = "IO_PROCESS_KEYBOARD_KEYTEXT",
                                                                 .nType = 1,
                                                                 .nControl = 6,
                                                                 .flags = ExpectedFlags{0, 0, 1, 0}}}}});
}

TEST_F(KeyboardNode, OutputsAreMadeOnce) {
    const auto before = Items(m_scene.m_graphNode.m_lstOutputGroup);
    m_scene.m_pNode->GetNodeOutput(&m_scene.m_graphNode);
    EXPECT_EQ(Items(m_scene.m_graphNode.m_lstOutputGroup), before);
}

TEST_F(KeyboardNode, OutputsAreNotMadeBesideAForeignGroup) {
    SGraphNode graphNode;
    auto* pForeign = new VEKParamGroup;
    graphNode.m_lstOutputGroup.AddTail(pForeign);
    m_scene.m_pNode->GetNodeOutput(&graphNode);
    EXPECT_EQ(Items(graphNode.m_lstOutputGroup), std::vector<VEKParamGroup*>{pForeign});
    EXPECT_TRUE(pForeign->m_lstParam.IsEmpty());
}

TEST_F(KeyboardNode, OutputsOfNoGraphNodeAreNotMade) {
    m_scene.m_pNode->GetNodeOutput(nullptr);
}

TEST_F(KeyboardNode, EveryGraphNodeGetsOutputsOfItsOwn) {
    SGraphNode graphNode;
    m_scene.m_pNode->GetNodeOutput(&graphNode);
    ASSERT_EQ(graphNode.m_lstOutputGroup.GetCount(), 1);
    EXPECT_NE(graphNode.m_lstOutputGroup.GetHead(), m_scene.m_graphNode.m_lstOutputGroup.GetHead());
    EXPECT_EQ(graphNode.m_lstOutputGroup.GetHead()->m_lstParam.GetCount(), 3);
    EXPECT_TRUE(graphNode.m_lstInputGroup.IsEmpty());
}

TEST_F(KeyboardNode, HasNoControlLayout) {
    EXPECT_EQ(m_scene.m_pNode->GetXmlReader(), nullptr);
    EXPECT_EQ(m_scene.m_pNode->GetXmlLoadStatePtr(), nullptr);
    EXPECT_EQ(Utf8(m_scene.m_pNode->GetCtrlPosXmlPath()), "");
    EXPECT_EQ(m_scene.m_pNode->GetNodeParamInfoGrpAr(), nullptr);
}

TEST_F(KeyboardNode, InheritsTheOtherOperations) {
    EXPECT_EQ(m_scene.m_pNode->NeedUpdateSingleParam(MakeParamGuid(ENABLE)), FALSE);
    EXPECT_EQ(m_scene.m_pNode->UpdateSingleParamValue(MakeParamGuid(ENABLE)), 0);
    m_scene.m_pNode->InitParam();
    m_scene.m_pNode->Init();
    EXPECT_EQ(m_scene.m_pNode->m_lstParamGroup.GetCount(), 1);
}

// ---- Evaluation ----------------------------------------------------------------------------------------------------

TEST_F(KeyboardNode, EvaluationHandlesTheCallWhenEnabled) {
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Utf8(m_scene.Output(KEY_TEXT).m_strValue), "");
    ExpectNothingFiredOrLogged();
}

TEST_F(KeyboardNode, EvaluationWithoutGraphNodeDoesNothing) {
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    ExpectNothingFiredOrLogged();
}

TEST_F(KeyboardNode, TextIsWrittenByTheNextEvaluation) {
    m_scene.Evaluate();
    Press(L"a");
    EXPECT_EQ(Utf8(m_scene.Output(KEY_TEXT).m_strValue), "");
    EXPECT_EQ(EvaluatedText(), "a");
    Press(L"b");
    EXPECT_EQ(Utf8(m_scene.Output(KEY_TEXT).m_strValue), "a");
    EXPECT_EQ(EvaluatedText(), "b");
}

TEST_F(KeyboardNode, OnlyTheLastOfSeveralTextsIsSeen) {
    m_scene.Evaluate();
    Press(L"a");
    Press(L"b");
    Press(L"c");
    EXPECT_EQ(EvaluatedText(), "c");
}

TEST_F(KeyboardNode, TextOverwritesAForeignValue) {
    m_scene.Output(KEY_TEXT).m_strValue = L"foreign";
    EXPECT_EQ(EvaluatedText(), "");
}

TEST_F(KeyboardNode, EqualTextIsNotWrittenAgain) {
    m_scene.Evaluate();
    Press(L"same");
    m_scene.Output(KEY_TEXT).m_strValue = CString(L"same", 4); // an equal text in a buffer of its own
    const wchar_t* const pBuffer = m_scene.Output(KEY_TEXT).m_strValue.GetString();
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(m_scene.Output(KEY_TEXT).m_strValue.GetString(), pBuffer);
    Press(L"other");
    EXPECT_EQ(EvaluatedText(), "other");
    EXPECT_NE(m_scene.Output(KEY_TEXT).m_strValue.GetString(), pBuffer);
}

TEST_F(KeyboardNode, EvaluationWritesNothingButTheText) {
    m_scene.Evaluate();
    Press(L"a");
    m_scene.Evaluate();
    for (const unsigned nId : {152u, 153u}) {
        EXPECT_EQ(m_scene.Output(nId).m_nValue, 0);
        EXPECT_EQ(Utf8(m_scene.Output(nId).m_strValue), "");
    }
    EXPECT_EQ(m_scene.Output(KEY_TEXT).m_nValue, 0);
    EXPECT_EQ(m_scene.Input(ENABLE).m_nValue, 1);
}

TEST_F(KeyboardNode, DisabledEvaluationDoesNothing) {
    m_scene.Evaluate();
    Press(L"a");
    m_scene.Input(ENABLE).m_nValue = 0;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Utf8(m_scene.Output(KEY_TEXT).m_strValue), "");
    m_scene.Input(ENABLE).m_nValue = 1;
    EXPECT_EQ(EvaluatedText(), "a") << "the text was kept";
}

TEST_F(KeyboardNode, AnyValueButZeroEnables) {
    for (const int nValue : {1, 2, -1, 256, -2147483647 - 1}) {
        m_scene.Input(ENABLE).m_nValue = nValue;
        EXPECT_EQ(m_scene.Evaluate(), 1) << nValue;
        EXPECT_EQ(Release(), 1) << nValue;
        EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153}) << nValue;
    }
}

TEST_F(KeyboardNode, EnableOfTheGraphWinsOverTheNodesOwn) {
    VEKParam& graphEnable = m_scene.AddGraphInput(ENABLE, 5, 5);
    graphEnable.m_nValue = 0;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    graphEnable.m_nValue = 1;
    m_scene.Input(ENABLE).m_nValue = 0;
    EXPECT_EQ(m_scene.Evaluate(), 1);
}

TEST_F(KeyboardNode, MissingEnableLeavesTheNodeAsItWas) {
    m_scene.Evaluate();
    Press(L"a");
    m_host.TakeEvents();
    m_host.TakeLog();
    m_scene.m_pNode->Empty();
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Utf8(m_scene.Output(KEY_TEXT).m_strValue), "");
    ExpectNothingFiredOrLogged();
    EXPECT_EQ(Release(), 1) << "still enabled";
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153});
}

TEST_F(KeyboardNode, MissingEnableDoesNotEnableANewNode) {
    m_scene.m_pNode->Empty();
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Release(), 0);
    ExpectNothingFiredOrLogged();
}

TEST_F(KeyboardNode, MissingTextOutputStillEnables) {
    m_scene.RemoveOutput(KEY_TEXT);
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Release(), 1);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153});
}

TEST_F(KeyboardNode, MissingEventOutputsDoNotMatter) {
    m_scene.RemoveOutput(152);
    m_scene.RemoveOutput(153);
    m_scene.Evaluate();
    EXPECT_EQ(Press(L"a"), 1);
    EXPECT_EQ(Release(), 1);
    EXPECT_EQ(m_host.TakeFiredOutputs(), (std::vector<int>{152, 153}));
    EXPECT_EQ(EvaluatedText(), "a");
}

TEST_F(KeyboardNode, WritesIntoTheGraphNodeAtHand) {
    m_scene.Evaluate();
    Press(L"a");
    SGraphNode other;
    m_scene.m_pNode->GetNodeOutput(&other);
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(&other), 1);
    EXPECT_EQ(Utf8(FindParam(other.m_lstOutputGroup, MakeParamGuid(KEY_TEXT))->m_strValue), "a");
    EXPECT_EQ(Utf8(m_scene.Output(KEY_TEXT).m_strValue), "");
    m_scene.m_pNode->ProcessNode(nullptr);
}

// ---- Events --------------------------------------------------------------------------------------------------------

TEST_F(KeyboardNode, PressFiresKeyDown) {
    m_scene.Evaluate();
    EXPECT_EQ(Press(L"a"), 1);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{152});
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Information("[Clip.Graph.Node]触发输出事件[按下]键盘信息为[a]")});
}

TEST_F(KeyboardNode, ReleaseFiresKeyUpAndLogsTheTextOfThePress) {
    m_scene.Evaluate();
    Press(L"F5");
    m_host.TakeEvents();
    m_host.TakeLog();
    EXPECT_EQ(Release(), 1);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153});
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Information("[Clip.Graph.Node]触发输出事件[抬起]键盘信息为[F5]")});
    EXPECT_EQ(EvaluatedText(), "F5");
}

TEST_F(KeyboardNode, ReleaseWithAnotherTextKeepsTheTextOfThePress) {
    m_scene.Evaluate();
    Press(L"a");
    m_host.TakeLog();
    SKeyEventData key = Key(L"b");
    EXPECT_EQ(m_scene.Send(DEVICE, KEY_UP, &key), 1);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Information("[Clip.Graph.Node]触发输出事件[抬起]键盘信息为[a]")});
    EXPECT_EQ(EvaluatedText(), "a");
}

TEST_F(KeyboardNode, ReleaseWithoutPressFiresWithNoText) {
    m_scene.Evaluate();
    EXPECT_EQ(Release(), 1);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153});
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Information("[Clip.Graph.Node]触发输出事件[抬起]键盘信息为[]")});
}

TEST_F(KeyboardNode, PressWithoutPayloadFiresAndClearsTheText) {
    m_scene.Evaluate();
    Press(L"a");
    EXPECT_EQ(EvaluatedText(), "a");
    m_host.TakeEvents();
    m_host.TakeLog();
    EXPECT_EQ(m_scene.Send(DEVICE, KEY_DOWN, nullptr), 1);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{152});
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Information("[Clip.Graph.Node]触发输出事件[按下]键盘信息为[]")});
    EXPECT_EQ(EvaluatedText(), "");
}

TEST_F(KeyboardNode, PressWithEmptyTextFiresAndClearsTheText) {
    m_scene.Evaluate();
    Press(L"a");
    EXPECT_EQ(EvaluatedText(), "a");
    m_host.TakeEvents();
    EXPECT_EQ(Press(L""), 1);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{152});
    EXPECT_EQ(EvaluatedText(), "");
}

TEST_F(KeyboardNode, EveryRepeatedPressFires) {
    m_scene.Evaluate();
    Press(L"a");
    Press(L"a");
    Press(L"a");
    EXPECT_EQ(m_host.TakeFiredOutputs(), (std::vector<int>{152, 152, 152}));
    EXPECT_EQ(m_host.TakeLog().size(), 3u);
}

TEST_F(KeyboardNode, ThePayloadIsOnlyRead) {
    m_scene.Evaluate();
    int nReserved = 5;
    SKeyEventData key = Key(L"a");
    key.m_pReserved = &nReserved;
    m_scene.Send(DEVICE, KEY_DOWN, &key);
    EXPECT_EQ(key.m_pReserved, &nReserved);
    EXPECT_EQ(nReserved, 5);
    EXPECT_EQ(Utf8(key.m_strText), "a");
}

TEST_F(KeyboardNode, TextsOfAnyKindPassUnchanged) {
    m_scene.Evaluate();
    const std::wstring longText(10'000, L'x');
    for (const wchar_t* pszText : {L" ", L"%s%d%n", L"[", L"中文", L"\U0001F600", L"\r\n\t", longText.c_str()}) {
        SCOPED_TRACE(Utf8(pszText).substr(0, 20));
        m_host.TakeLog();
        EXPECT_EQ(Press(pszText), 1);
        EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Information("[Clip.Graph.Node]触发输出事件[按下]键盘信息为[" +
                                                                     Utf8(pszText) + "]")});
        EXPECT_EQ(EvaluatedText(), Utf8(pszText));
    }
}

TEST_F(KeyboardNode, TextsWithAZeroInsideArriveWhole) {
    m_scene.Evaluate();
    for (const CString& strText : {CString(L"a\0b", 3), CString(L"a\0c", 3), CString(L"a"), CString(L"\0", 1)}) {
        Press(strText);
        EXPECT_EQ(EvaluatedText(), Utf8(strText));
    }
}

TEST_F(KeyboardNode, NamesInTheLogAreThoseOfTheMoment) {
    m_scene.Evaluate();
    m_scene.m_clip.m_strName = L"剪辑%s";
    m_scene.m_graphNode.m_strName = L"";
    m_scene.m_pNode->m_strName = L"键盘";
    m_scene.m_pNode->m_strSecondName = L"not printed";
    Press(L"a");
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Information("[剪辑%s..键盘]触发输出事件[按下]键盘信息为[a]")});
}

TEST_F(KeyboardNode, LogNamesTheGraphNodeLastEvaluated) {
    SGraphNode other;
    other.m_strName = L"Other";
    m_scene.m_pNode->GetNodeOutput(&other);
    m_scene.Evaluate();
    m_scene.m_pNode->ProcessNode(&other);
    Press(L"a");
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Information("[Clip.Other.Node]触发输出事件[按下]键盘信息为[a]")});
    m_scene.m_pNode->ProcessNode(nullptr);
}

TEST_F(KeyboardNode, OtherIdsAreConsumedWithoutEffect) {
    m_scene.Evaluate();
    Press(L"a");
    m_host.TakeEvents();
    m_host.TakeLog();
    SKeyEventData key = Key(L"b");
    for (const int nEvent : {2000, 2001, 2004, 2005, 0, 1, -1, -2002, 3005, 0x10000 + 2002, 2147483647}) {
        SCOPED_TRACE(nEvent);
        EXPECT_EQ(m_scene.Send(DEVICE, nEvent, &key), 1);
        ExpectNothingFiredOrLogged();
    }
    EXPECT_EQ(EvaluatedText(), "a");
}

TEST_F(KeyboardNode, OtherDevicesAreIgnored) {
    m_scene.Evaluate();
    Press(L"a");
    m_host.TakeEvents();
    m_host.TakeLog();
    SKeyEventData key = Key(L"b");
    for (const int nDevice : {1, 2, 3, 4, 5, 6, 7, -1, 256, 2147483647}) {
        for (const int nEvent : {KEY_DOWN, KEY_UP, 2001}) {
            SCOPED_TRACE(std::to_string(nDevice) + "/" + std::to_string(nEvent));
            EXPECT_EQ(m_scene.Send(nDevice, nEvent, &key), 0);
            ExpectNothingFiredOrLogged();
        }
    }
    EXPECT_EQ(EvaluatedText(), "a");
}

TEST_F(KeyboardNode, IgnoresEverythingBeforeTheFirstEvaluation) {
    EXPECT_EQ(Press(L"a"), 0);
    EXPECT_EQ(Release(), 0);
    EXPECT_EQ(m_scene.Send(DEVICE, 2001), 0);
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    ExpectNothingFiredOrLogged();
    EXPECT_EQ(EvaluatedText(), "") << "the early press left no text";
}

TEST_F(KeyboardNode, IgnoresEverythingWhileDisabled) {
    m_scene.Input(ENABLE).m_nValue = 0;
    m_scene.Evaluate();
    EXPECT_EQ(Press(L"a"), 0);
    EXPECT_EQ(Release(), 0);
    EXPECT_EQ(m_scene.Send(DEVICE, 2001), 0);
    ExpectNothingFiredOrLogged();
    m_scene.Input(ENABLE).m_nValue = 1;
    EXPECT_EQ(EvaluatedText(), "");
}

TEST_F(KeyboardNode, SwitchingTakesEffectAtTheNextEvaluation) {
    m_scene.Evaluate();
    m_scene.Input(ENABLE).m_nValue = 0;
    EXPECT_EQ(Press(L"a"), 1) << "not evaluated yet";
    m_scene.Evaluate();
    EXPECT_EQ(Press(L"b"), 0);
    m_scene.Input(ENABLE).m_nValue = 1;
    EXPECT_EQ(Press(L"c"), 0) << "not evaluated yet";
    m_scene.Evaluate();
    EXPECT_EQ(Press(L"d"), 1);
    EXPECT_EQ(m_host.TakeFiredOutputs(), (std::vector<int>{152, 152}));
}

TEST_F(KeyboardNode, IgnoresEverythingWithoutOwner) {
    m_scene.Evaluate();
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    EXPECT_EQ(Press(L"a"), 0);
    EXPECT_EQ(Release(), 0);
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    ExpectNothingFiredOrLogged();
    m_scene.m_pNode->m_pOwnerClip = &m_scene.m_clip;
    EXPECT_EQ(EvaluatedText(), "");
}

TEST_F(KeyboardNode, EvaluationWithoutGraphNodeForgetsTheGraphNode) {
    m_scene.Evaluate();
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    EXPECT_EQ(Press(L"a"), 0);
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    ExpectNothingFiredOrLogged();
    m_scene.Evaluate();
    EXPECT_EQ(Press(L"a"), 1);
}

TEST_F(KeyboardNode, NullRecordIsAnError) {
    m_scene.Evaluate();
    Press(L"a");
    m_host.TakeEvents();
    m_host.TakeLog();
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Error("[Clip.Graph.Node]DevIOEventOccurred")});
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
    EXPECT_EQ(EvaluatedText(), "a");
}

TEST_F(KeyboardNode, NullRecordIsAnErrorWhileDisabledToo) {
    m_scene.Input(ENABLE).m_nValue = 0;
    m_scene.Evaluate();
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Error("[Clip.Graph.Node]DevIOEventOccurred")});
}

TEST_F(KeyboardNode, NodesKeepTheirTextsApart) {
    NodeScene other(m_host, TYPE_KEYBOARD);
    m_scene.Evaluate();
    other.Evaluate();
    Press(L"a");
    other.Evaluate();
    EXPECT_EQ(Utf8(other.Output(KEY_TEXT).m_strValue), "");
    EXPECT_EQ(EvaluatedText(), "a");
}

TEST_F(KeyboardNode, NodesKeepTheirSwitchesApart) {
    NodeScene other(m_host, TYPE_KEYBOARD);
    other.Input(ENABLE).m_nValue = 0;
    m_scene.Evaluate();
    other.Evaluate();
    EXPECT_EQ(Press(L"a"), 1);
    EXPECT_EQ(other.Send(DEVICE, KEY_UP), 0);
}

} // namespace
