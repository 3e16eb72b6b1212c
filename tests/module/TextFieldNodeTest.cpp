// The text field node: its tables, what its triggers do to the text, what it logs and writes.
#include <clocale>
#include <cwctype>

#include "ModuleHost.h"
#include "TestMachine.h"

namespace {

const unsigned ENABLE = 2;
const unsigned INPUT_TEXT = 202;
const unsigned INPUT_EVENT = 203;
const unsigned TEXT_CLEAR = 204;
const unsigned HAS_TEXT = 252;
const unsigned OUTPUT_TEXT = 253;

const int CAPS_LOCK = 20;

const LogLine INPUT_LINE = Information("[Clip]触发输入事件[输入事件]");
const LogLine CLEAR_LINE = Information("[Clip]触发输入事件[清除]");

class TextFieldNode : public ModuleTest {
protected:
    void ExpectNothingFiredOrLogged() {
        EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
        EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
        EXPECT_TRUE(m_host.TakeOtherMessages().empty());
        EXPECT_TRUE(m_host.TakeReportedEvents().empty());
    }

    /// One evaluation in which these inputs are triggered.
    int EvaluateTriggered(bool bInput, bool bClear) {
        m_inputEvent.m_nValue = bInput ? 1 : 0;
        m_textClear.m_nValue = bClear ? 1 : 0;
        const int nResult = m_scene.Evaluate();
        m_inputEvent.m_nValue = 0;
        m_textClear.m_nValue = 0;
        return nResult;
    }

    /// A key of the on-screen keyboard.
    int Type(const CString& strKeyName) {
        m_inputText.m_strValue = strKeyName;
        return EvaluateTriggered(true, false);
    }

    std::string Text() { return Utf8(m_scene.Output(OUTPUT_TEXT).m_strValue); }
    std::wstring WideText() {
        const CString& strText = m_scene.Output(OUTPUT_TEXT).m_strValue;
        return {strText.GetString(), static_cast<size_t>(strText.GetLength())};
    }
    int HasText() { return m_scene.Output(HAS_TEXT).m_nValue; }

    TestKeyboard m_keyboard;
    NodeScene m_scene{m_host, TYPE_TEXT_FIELD};
    VEKParam& m_inputText = m_scene.AddGraphInput(INPUT_TEXT, 1, 6);
    VEKParam& m_inputEvent = m_scene.AddGraphInput(INPUT_EVENT, 26, 7);
    VEKParam& m_textClear = m_scene.AddGraphInput(TEXT_CLEAR, 26, 7);
};

// ---- Tables --------------------------------------------------------------------------------------------------------

TEST_F(TextFieldNode, Fresh) {
    ExpectFreshNode(*m_host.CreateNode(TYPE_TEXT_FIELD), TYPE_TEXT_FIELD, "IO_PROCESS_TEXTFIELDINPUT");
}

TEST_F(TextFieldNode, Inputs) {
    ExpectInputGroups(m_scene.m_pNode->m_lstParamGroup,
                      {{201,
                        "Base param",
                        "IO_PROCESS_TEXTFIELDINPUT",
                        {{.nId = 2,
                          .pszName = "Enable",
                          .pszDisplay = "TOUCH_CONTROL_ENABLED",
                          .nType = 5,
                          .nControl = 5,
                          .range = ExpectedRange{0, 0, 1, 1},
                          .flags = ExpectedFlags{0, 0, 1, 0},
                          .nValue = 1},
                         {.nId = 202,
                          .pszName = "InputText",
                          .pszDisplay = "IO_PROCESS_TEXTFIELDINPUT_TEXT",
                          .nType = 1,
                          .nControl = 6,
                          .flags = ExpectedFlags{0, 0, 1, 0}},
                         EventPin(203, "InputEvent", "IO_PROCESS_TEXTFIELDINPUT_EVENT"),
                         EventPin(204, "TextClear", "TOUCH_CONTROL_SYBTN_CLEAR")}}});
}

TEST_F(TextFieldNode, Outputs) {
    ExpectOutputGroups(m_scene.m_graphNode.m_lstOutputGroup, {{251,
                                                               "Output",
                                                               "IO_PROCESS_TEXTFIELDINPUT",
                                                               {{.nId = 252, // a switch without a range
                                                                 .pszName = "HasText",
                                                                 .pszDisplay = "IO_PROCESS_TEXTFIELDINPUT_HASTEXT",
                                                                 .nType = 5,
                                                                 .nControl = 5,
                                                                 .flags = ExpectedFlags{0, 0, 1, 0}},
                                                                {.nId = 253,
                                                                 .pszName = "Text",
                                                                 .pszDisplay = "IO_PROCESS_TEXTFIELDINPUT_OUTPUTTEXT",
                                                                 .nType = 1,
                                                                 .nControl = 6,
                                                                 .flags = ExpectedFlags{0, 0, 1, 0}}}}});
}

TEST_F(TextFieldNode, OutputsAreMadeOnce) {
    const auto before = Items(m_scene.m_graphNode.m_lstOutputGroup);
    ASSERT_EQ(before.size(), 1u);
    m_scene.m_pNode->GetNodeOutput(&m_scene.m_graphNode);
    EXPECT_EQ(Items(m_scene.m_graphNode.m_lstOutputGroup), before);
}

TEST_F(TextFieldNode, OutputsAreNotMadeBesideAForeignGroup) {
    SGraphNode graphNode;
    auto* pForeign = new VEKParamGroup;
    graphNode.m_lstOutputGroup.AddTail(pForeign);
    m_scene.m_pNode->GetNodeOutput(&graphNode);
    EXPECT_EQ(Items(graphNode.m_lstOutputGroup), std::vector<VEKParamGroup*>{pForeign});
    EXPECT_TRUE(pForeign->m_lstParam.IsEmpty());
}

TEST_F(TextFieldNode, OutputsOfNoGraphNodeAreNotMade) {
    m_scene.m_pNode->GetNodeOutput(nullptr);
}

TEST_F(TextFieldNode, InheritsTheOtherOperations) {
    EXPECT_EQ(m_scene.m_pNode->NeedUpdateSingleParam(MakeParamGuid(INPUT_TEXT)), FALSE);
    EXPECT_EQ(m_scene.m_pNode->UpdateSingleParamValue(MakeParamGuid(INPUT_TEXT)), 0);
    m_scene.m_pNode->InitParam();
    m_scene.m_pNode->Init();
    EXPECT_EQ(m_scene.m_pNode->m_lstParamGroup.GetCount(), 1);
    EXPECT_EQ(m_scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam.GetCount(), 4);
}

TEST_F(TextFieldNode, TakesNoEvents) {
    m_scene.Evaluate();
    SKeyEventData key;
    key.m_strText = L"a";
    for (int nDevice = 0; nDevice <= 6; ++nDevice) {
        for (const int nEvent : {0, 1, 2002, 2003, 3005, 3013}) {
            EXPECT_EQ(m_scene.Send(nDevice, nEvent, nDevice == 0 ? &key : nullptr), 0);
        }
    }
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0) << "and a missing record isn't an error";
    ExpectNothingFiredOrLogged();
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Text(), "");
}

// ---- Typing --------------------------------------------------------------------------------------------------------

TEST_F(TextFieldNode, KeysAreAppendedOneByOne) {
    EXPECT_EQ(Type(L"h"), 1);
    EXPECT_EQ(Text(), "h");
    EXPECT_EQ(HasText(), 1);
    Type(L"i");
    Type(L"Space");
    Type(L"Num 7");
    Type(L"Shift+1");
    Type(L"中文");
    Type(L"Enter");
    EXPECT_EQ(Text(), "hi 7!中文Enter");
    for (int i = 0; i < 7; ++i) {
        Type(L"Backspace");
    }
    EXPECT_EQ(Text(), "hi 7!");
}

TEST_F(TextFieldNode, EachInputEventWritesOneLogLine) {
    Type(L"a");
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{INPUT_LINE});
    Type(L"Num Enter"); // adds nothing
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{INPUT_LINE});
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
}

TEST_F(TextFieldNode, LogNamesTheClipAlone) {
    m_scene.m_clip.m_strName = L"剪辑%s";
    Type(L"a");
    EvaluateTriggered(false, true);
    EXPECT_EQ(m_host.TakeLog(), (std::vector<LogLine>{Information("[剪辑%s]触发输入事件[输入事件]"),
                                                      Information("[剪辑%s]触发输入事件[清除]")}));
}

TEST_F(TextFieldNode, KeyIsAppliedAtEveryEvaluationInWhichItIsTriggered) {
    m_inputText.m_strValue = L"a";
    m_inputEvent.m_nValue = 1;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(m_scene.Evaluate(), 1);
    }
    EXPECT_EQ(Text(), "aaa");
    EXPECT_EQ(m_host.TakeLog().size(), 3u);
}

TEST_F(TextFieldNode, AnyValueButZeroTriggers) {
    m_inputText.m_strValue = L"a";
    for (const int nValue : {2, -1, 256, -2147483647 - 1}) {
        m_inputEvent.m_nValue = nValue;
        EXPECT_EQ(m_scene.Evaluate(), 1);
        EXPECT_EQ(Text(), "a") << nValue;
        m_inputEvent.m_nValue = 0;
        m_textClear.m_nValue = nValue;
        EXPECT_EQ(m_scene.Evaluate(), 1);
        EXPECT_EQ(Text(), "") << nValue;
        m_textClear.m_nValue = 0;
    }
}

TEST_F(TextFieldNode, UntriggeredTextIsNotTaken) {
    m_inputText.m_strValue = L"a";
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(HasText(), 0);
    ExpectNothingFiredOrLogged();
}

TEST_F(TextFieldNode, BackspaceOnNothingLeavesNothing) {
    EXPECT_EQ(Type(L"Backspace"), 1);
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(HasText(), 0);
    Type(L"a");
    Type(L"Backspace");
    Type(L"Backspace");
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(HasText(), 0);
}

TEST_F(TextFieldNode, BackspaceRemovesTheLastCharacterWhole) {
    // Some of two units, D83D and DE00, which natively are no character; and the halves of such alone.
    const struct {
        const wchar_t* pszText;
        const wchar_t* pszLeft;
    } TEXTS[] = {{L"a\U0001F600", L"a"},
                 {L"a\xD83D\xDE00", L"a"},
                 {L"a\xD83D", L"a"},
                 {L"a\xDE00", L"a"},
                 {L"\xDE00\xD83D", L"\xDE00"},
                 {L"\xD83D\xD83D\xDE00", L"\xD83D"},
                 {L"\xD83D\xDE00\xDE00", L"\xD83D\xDE00"},
                 {L"\xDE00", L""}};
    for (const auto& text : TEXTS) {
        EvaluateTriggered(false, true);
        Type(text.pszText);
        EXPECT_EQ(WideText(), text.pszText);
        Type(L"Backspace");
        EXPECT_EQ(WideText(), text.pszLeft);
    }
}

TEST_F(TextFieldNode, TextsWithAZeroInsideAreTakenWhole) {
    using namespace std::string_literals;
    const struct {
        std::wstring keyName;
        std::wstring text;
    } KEYS[] = {
        {L"\0"s, L"\0"s},
        {L"Backspace"s, L""s},
        {L"a\0b"s, L"a\0b"s},
        {L"Backspace"s, L"a\0"s},
        {L"c"s, L"a\0c"s},
        {L"Backspace"s, L"a\0"s},
        {L"Backspace"s, L"a"s},
        // Names of other keys than those that they begin with.
        {L"Space\0"s, L"aSpace\0"s},
        {L"Backspace\0"s, L"aSpace\0Backspace\0"s},
        {L"Shift+a\0"s, L"aSpace\0Backspace\0"s},
        {L"Num Del\0"s, L"aSpace\0Backspace\0Del\0"s},
        {L"Num Enter\0"s, L"aSpace\0Backspace\0Del\0Enter\0"s},
        {L"Num Lock\0"s, L"aSpace\0Backspace\0Del\0Enter\0Lock\0"s},
    };
    for (const auto& [keyName, text] : KEYS) {
        Type(CString(keyName.data(), static_cast<int>(keyName.size())));
        EXPECT_EQ(WideText(), text);
        EXPECT_EQ(HasText(), text.empty() ? 0 : 1);
    }
}

TEST_F(TextFieldNode, OnlyAsciiLettersHaveCaseWhateverTheLocale) {
    const struct {
        const wchar_t* pszCharacter;
        const char* pszTyped;
        const char* pszTypedWithCapsLock;
        const char* pszShifted; ///< with what key names can't hold, they are appended whole
    } CHARACTERS[] = {{L"a", "a", "A", "A"},       {L"A", "a", "A", "A"},       {L"é", "é", "é", "é"},
                      {L"É", "É", "É", "É"},       {L"ß", "ß", "ß", "ß"},       {L"ÿ", "ÿ", "ÿ", "ÿ"},
                      {L"я", "я", "я", "Shift+я"}, {L"Я", "Я", "Я", "Shift+Я"}, {L"İ", "İ", "İ", "Shift+İ"},
                      {L"ı", "ı", "ı", "Shift+ı"}};
    const std::string before = std::setlocale(LC_ALL, nullptr);
    bool bCaseOfOthers = false;
    for (const char* pszLocale : {"C", "C.UTF-8", "French_France.1252"}) {
        if (std::setlocale(LC_ALL, pszLocale) == nullptr) {
            continue; // another system's
        }
        SCOPED_TRACE(pszLocale);
        bCaseOfOthers = bCaseOfOthers || std::towupper(L'é') == L'É';
        for (const auto& character : CHARACTERS) {
            const CString strShifted = CString(L"Shift+") + character.pszCharacter;
            const struct {
                CString strKeyName;
                bool bCapsLock;
                const char* pszText;
            } KEYS[] = {{character.pszCharacter, false, character.pszTyped},
                        {character.pszCharacter, true, character.pszTypedWithCapsLock},
                        {strShifted, false, character.pszShifted},
                        {strShifted, true, character.pszShifted}};
            for (const auto& key : KEYS) {
                EvaluateTriggered(false, true);
                m_keyboard.Toggle(CAPS_LOCK, key.bCapsLock);
                Type(key.strKeyName);
                EXPECT_EQ(Text(), key.pszText);
            }
        }
    }
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_TRUE(bCaseOfOthers) << "no locale in which other letters have case";
}

TEST_F(TextFieldNode, CapsLockIsReadFromTheKeyboard) {
    Type(L"a");
    m_keyboard.Toggle(CAPS_LOCK, true);
    Type(L"a");
    Type(L"Shift+a");
    m_keyboard.Hold(CAPS_LOCK);
    Type(L"a");
    Type(L"Shift+a");
    m_keyboard.Toggle(CAPS_LOCK, false);
    Type(L"a");
    Type(L"Shift+a");
    m_keyboard.Release(CAPS_LOCK);
    Type(L"Shift+a");
    Type(L"a");
    EXPECT_EQ(Text(), "aAAAaAaAa");
}

TEST_F(TextFieldNode, OtherKeysOfTheKeyboardDoNotMatter) {
    m_keyboard.HoldAll();
    m_keyboard.Release(CAPS_LOCK);
    Type(L"a");
    Type(L"1");
    Type(L"Shift+a");
    EXPECT_EQ(Text(), "a1A");
}

TEST_F(TextFieldNode, LongTextsGrow) {
    const std::wstring part(1'000, L'長');
    for (int i = 0; i < 10; ++i) {
        Type(part.c_str());
    }
    EXPECT_EQ(m_scene.Output(OUTPUT_TEXT).m_strValue.GetLength(), 10'000);
    EXPECT_EQ(HasText(), 1);
}

// ---- Clearing ------------------------------------------------------------------------------------------------------

TEST_F(TextFieldNode, ClearEmptiesTheText) {
    Type(L"abc");
    m_host.TakeLog();
    EXPECT_EQ(EvaluateTriggered(false, true), 1);
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(HasText(), 0);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{CLEAR_LINE});
    EXPECT_EQ(EvaluateTriggered(false, true), 1) << "an empty text, too";
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{CLEAR_LINE});
    Type(L"d");
    EXPECT_EQ(Text(), "d");
}

TEST_F(TextFieldNode, KeyIsAppliedBeforeTheTextIsCleared) {
    Type(L"abc");
    m_host.TakeLog();
    m_inputText.m_strValue = L"d";
    EXPECT_EQ(EvaluateTriggered(true, true), 1);
    EXPECT_EQ(m_host.TakeLog(), (std::vector<LogLine>{INPUT_LINE, CLEAR_LINE}));
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(HasText(), 0);
}

// ---- Inputs --------------------------------------------------------------------------------------------------------

TEST_F(TextFieldNode, TriggersAreReadFromTheGraphAlone) {
    m_scene.Input(INPUT_TEXT).m_strValue = L"own";
    m_scene.Input(INPUT_EVENT).m_nValue = 1;
    m_scene.Input(TEXT_CLEAR).m_nValue = 1;
    Type(L"graph");
    EXPECT_EQ(Text(), "graph");
    m_host.TakeLog();
    m_inputEvent.m_guid = MakeParamGuid(9998);
    m_textClear.m_guid = MakeParamGuid(9999);
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Text(), "graph");
    ExpectNothingFiredOrLogged();
}

TEST_F(TextFieldNode, KeyNameOfTheGraphWinsOverTheNodesOwn) {
    m_scene.Input(INPUT_TEXT).m_strValue = L"o";
    Type(L"g");
    EXPECT_EQ(Text(), "g");
    m_inputText.m_guid = MakeParamGuid(9999);
    EXPECT_EQ(EvaluateTriggered(true, false), 1);
    EXPECT_EQ(Text(), "go");
}

TEST_F(TextFieldNode, MissingKeyNameEndsTheEvaluationAtOnce) {
    Type(L"abc");
    m_host.TakeLog();
    m_scene.Output(HAS_TEXT).m_nValue = 77;
    m_scene.Output(OUTPUT_TEXT).m_strValue = L"foreign";
    m_inputText.m_guid = MakeParamGuid(9998);
    m_scene.Input(INPUT_TEXT).m_guid = MakeParamGuid(9999);
    EXPECT_EQ(EvaluateTriggered(true, true), 1);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{INPUT_LINE}) << "nothing is cleared";
    EXPECT_EQ(Text(), "foreign") << "and nothing written";
    EXPECT_EQ(HasText(), 77);
    EXPECT_EQ(m_scene.Evaluate(), 1) << "untriggered it isn't looked for";
    EXPECT_EQ(Text(), "abc");
    EXPECT_EQ(HasText(), 1);
}

TEST_F(TextFieldNode, EvaluationWithoutGraphNodeDoesNothing) {
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    ExpectNothingFiredOrLogged();
}

TEST_F(TextFieldNode, EvaluationWithoutOwnerDoesNothing) {
    Type(L"abc");
    m_host.TakeLog();
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    m_scene.Output(OUTPUT_TEXT).m_strValue = L"foreign";
    m_inputText.m_strValue = L"d";
    EXPECT_EQ(EvaluateTriggered(true, true), 0);
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    EXPECT_EQ(Text(), "foreign");
    ExpectNothingFiredOrLogged();
    m_scene.m_pNode->m_pOwnerClip = &m_scene.m_clip;
    m_scene.Evaluate();
    EXPECT_EQ(Text(), "abc");
}

TEST_F(TextFieldNode, DisabledEvaluationDoesNothingAndTheTextIsKept) {
    Type(L"abc");
    m_host.TakeLog();
    m_scene.Input(ENABLE).m_nValue = 0;
    m_scene.Output(OUTPUT_TEXT).m_strValue = L"foreign";
    m_inputText.m_strValue = L"d";
    EXPECT_EQ(EvaluateTriggered(true, true), 0);
    EXPECT_EQ(Text(), "foreign");
    ExpectNothingFiredOrLogged();
    m_scene.Input(ENABLE).m_nValue = 1;
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Text(), "abc");
}

TEST_F(TextFieldNode, AnyValueButZeroEnables) {
    for (const int nValue : {1, 2, -1, 256, -2147483647 - 1}) {
        m_scene.Input(ENABLE).m_nValue = nValue;
        EXPECT_EQ(m_scene.Evaluate(), 1) << nValue;
    }
}

TEST_F(TextFieldNode, EnableOfTheGraphWinsOverTheNodesOwn) {
    VEKParam& graphEnable = m_scene.AddGraphInput(ENABLE, 5, 5);
    EXPECT_EQ(Type(L"a"), 0);
    graphEnable.m_nValue = 1;
    m_scene.Input(ENABLE).m_nValue = 0;
    EXPECT_EQ(Type(L"a"), 1);
    EXPECT_EQ(Text(), "a");
}

TEST_F(TextFieldNode, MissingEnableStopsTheEvaluation) {
    Type(L"abc");
    m_host.TakeLog();
    m_scene.Output(OUTPUT_TEXT).m_strValue = L"foreign";
    m_scene.Input(ENABLE).m_guid = MakeParamGuid(9999);
    EXPECT_EQ(EvaluateTriggered(true, true), 0);
    EXPECT_EQ(Text(), "foreign");
    ExpectNothingFiredOrLogged();
}

// ---- Outputs -------------------------------------------------------------------------------------------------------

TEST_F(TextFieldNode, OutputsMirrorTheTextAfterEveryEvaluation) {
    m_scene.Output(HAS_TEXT).m_nValue = 77;
    m_scene.Output(OUTPUT_TEXT).m_strValue = L"foreign";
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(HasText(), 0);
    EXPECT_EQ(Text(), "");
    Type(L"abc");
    m_scene.Output(HAS_TEXT).m_nValue = 0;
    m_scene.Output(OUTPUT_TEXT).m_strValue = L"foreign";
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(HasText(), 1);
    EXPECT_EQ(Text(), "abc");
}

TEST_F(TextFieldNode, EqualTextIsNotWrittenAgain) {
    Type(L"same");
    m_scene.Output(OUTPUT_TEXT).m_strValue = CString(L"same", 4); // an equal text in a buffer of its own
    const wchar_t* const pBuffer = m_scene.Output(OUTPUT_TEXT).m_strValue.GetString();
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(m_scene.Output(OUTPUT_TEXT).m_strValue.GetString(), pBuffer);
    Type(L"2");
    EXPECT_EQ(Text(), "same2");
}

TEST_F(TextFieldNode, MissingOutputsAreSkippedOneByOne) {
    Type(L"abc");
    m_scene.RemoveOutput(HAS_TEXT);
    EXPECT_EQ(Type(L"d"), 1);
    EXPECT_EQ(Text(), "abcd");
    NodeScene other(m_host, TYPE_TEXT_FIELD);
    other.RemoveOutput(OUTPUT_TEXT);
    other.AddGraphInput(INPUT_TEXT, 1, 6).m_strValue = L"a";
    other.AddGraphInput(INPUT_EVENT, 26, 7).m_nValue = 1;
    EXPECT_EQ(other.Evaluate(), 1);
    EXPECT_EQ(other.Output(HAS_TEXT).m_nValue, 1);
    SGraphNode bare;
    EXPECT_EQ(other.m_pNode->ProcessNode(&bare), 1);
    EXPECT_TRUE(bare.m_lstOutputGroup.IsEmpty());
}

TEST_F(TextFieldNode, EachOutputIsWrittenInTheMemberOfItsKindOnly) {
    m_scene.Output(HAS_TEXT).m_strValue = L"kept";
    m_scene.Output(OUTPUT_TEXT).m_nValue = 77;
    Type(L"a");
    EXPECT_EQ(Utf8(m_scene.Output(HAS_TEXT).m_strValue), "kept");
    EXPECT_EQ(m_scene.Output(OUTPUT_TEXT).m_nValue, 77);
}

TEST_F(TextFieldNode, InputsAreOnlyRead) {
    m_inputText.m_strValue = L"a";
    m_inputEvent.m_nValue = 1;
    m_textClear.m_nValue = 1;
    m_scene.Evaluate();
    EXPECT_EQ(Utf8(m_inputText.m_strValue), "a");
    EXPECT_EQ(m_inputEvent.m_nValue, 1);
    EXPECT_EQ(m_textClear.m_nValue, 1);
}

TEST_F(TextFieldNode, NodesKeepTheirTextsApart) {
    NodeScene other(m_host, TYPE_TEXT_FIELD);
    Type(L"abc");
    EXPECT_EQ(other.Evaluate(), 1);
    EXPECT_EQ(Utf8(other.Output(OUTPUT_TEXT).m_strValue), "");
    EXPECT_EQ(other.Output(HAS_TEXT).m_nValue, 0);
}

} // namespace
