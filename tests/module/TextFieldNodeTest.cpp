// The text field node: what key names and triggers do to the text, what it logs and writes.
#include <clocale>
#include <cwctype>

#include "HostSetup.h"
#include "InputNodeTest.h"
#include "TestMachine.h"

namespace {

const unsigned ENABLE = 2, INPUT_TEXT = 202, INPUT_EVENT = 203, TEXT_CLEAR = 204;
const unsigned HAS_TEXT = 252, OUTPUT_TEXT = 253;
const int CAPS_LOCK = 20;

const LogLine INPUT_LINE = Information("[Clip]触发输入事件[输入事件]");
const LogLine CLEAR_LINE = Information("[Clip]触发输入事件[清除]");

class TextFieldNode : public InputNodeTest {
protected:
    TextFieldNode() : InputNodeTest(TYPE_TEXT_FIELD) {}

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

    void SetCapsLock(bool bHeld, bool bToggled) {
        bHeld ? m_keyboard.Hold(CAPS_LOCK) : m_keyboard.Release(CAPS_LOCK);
        m_keyboard.Toggle(CAPS_LOCK, bToggled);
    }

    /// What the key name appends to a text.
    std::string Appended(const CString& strKeyName) {
        EvaluateTriggered(false, true);
        Type(L"~");
        EXPECT_EQ(Type(strKeyName), 1);
        EXPECT_EQ(Text().substr(0, 1), "~");
        return Text().substr(1);
    }

    /// The same, whatever Caps Lock is.
    void ExpectAppended(const CString& strKeyName, const std::string& appended) {
        for (const bool bHeld : {false, true}) {
            for (const bool bToggled : {false, true}) {
                SetCapsLock(bHeld, bToggled);
                EXPECT_EQ(Appended(strKeyName), appended)
                    << Utf8(strKeyName) << ", Caps Lock held " << bHeld << ", toggled " << bToggled;
            }
        }
    }

    std::string Text() const { return Utf8(m_scene.Output(OUTPUT_TEXT).m_strValue); }
    std::wstring WideText() const {
        const CString& strText = m_scene.Output(OUTPUT_TEXT).m_strValue;
        return {strText.GetString(), static_cast<size_t>(strText.GetLength())};
    }
    int HasText() const { return m_scene.Output(HAS_TEXT).m_nValue; }

    TestKeyboard m_keyboard;
    VEKParam& m_inputText = m_scene.AddGraphInput(INPUT_TEXT, 1, 6);
    VEKParam& m_inputEvent = m_scene.AddGraphInput(INPUT_EVENT, 26, 7);
    VEKParam& m_textClear = m_scene.AddGraphInput(TEXT_CLEAR, 26, 7);
};

// ---- Key names -----------------------------------------------------------------------------------------------------

TEST_F(TextFieldNode, LettersHaveTheCaseOfShiftAndCapsLock) {
    const struct {
        bool bHeld, bToggled, bUpper, bShiftedUpper;
    } STATES[] = {{false, false, false, true},
                  {false, true, true, true}, // toggled on alone doesn't turn a shifted letter
                  {true, false, true, false},
                  {true, true, true, false}};
    for (const auto& state : STATES) {
        SetCapsLock(state.bHeld, state.bToggled);
        for (char c = 'a'; c <= 'z'; ++c) {
            const std::string lower(1, c);
            const std::string upper(1, static_cast<char>(c - 'a' + 'A'));
            for (const std::string& letter : {lower, upper}) {
                EXPECT_EQ(Appended(FromUtf8(letter)), state.bUpper ? upper : lower);
                EXPECT_EQ(Appended(FromUtf8("Shift+" + letter)), state.bShiftedUpper ? upper : lower);
            }
        }
    }
}

TEST_F(TextFieldNode, EverySymbolHasItsShiftedPartner) {
    const std::string UNSHIFTED = "`1234567890-=[]\\;',./";
    const std::string SHIFTED = "~!@#$%^&*()_+{}|:\"<>?";
    for (size_t i = 0; i < UNSHIFTED.size(); ++i) {
        const std::string unshifted(1, UNSHIFTED[i]);
        const std::string shifted(1, SHIFTED[i]);
        ExpectAppended(FromUtf8(unshifted), unshifted);
        ExpectAppended(FromUtf8(shifted), shifted);
        ExpectAppended(FromUtf8("Shift+" + unshifted), shifted);
        // A shifted symbol is nobody's partner; the plus sign makes a name of three parts.
        ExpectAppended(FromUtf8("Shift+" + shifted), shifted == "+" ? "" : shifted);
    }
}

TEST_F(TextFieldNode, KeyNamesAppendTheirText) {
    const struct {
        const wchar_t* pszName;
        const char* pszAppended;
    } NAMES[] = {{L"Space", " "},       {L"Num 0", "0"},         {L"Num 9", "9"},     {L"Num Del", "."},
                 {L"Num +", "+"},       {L"Num /", "/"},         {L"Num a", "a"},     {L"Num Z", "Z"},
                 {L"Num Home", "Home"}, {L"Num enter", "enter"}, {L"Num del", "del"}, {L"Num \u00FF", "ÿ"},
                 {L"Number 7", "7"},    {L"ShiftLeft+1", "!"},   {L"Shift+ ", " "}};
    for (const auto& name : NAMES) {
        ExpectAppended(name.pszName, name.pszAppended);
    }
    // Number-pad keys that type nothing; names with less than two parts or more, or with an empty one; and shifted what
    // isn't one character.
    for (const wchar_t* pszName :
         {L"Num Enter",  L"Num Lock", L"Num",         L"NumLock",         L"Num7",     L"Num 7 8",
          L"Num 7 ",     L"Num  7",   L"Num Page Up", L"Num   ",          L"Num ",     L"Shift",
          L"ShiftLeft",  L"Shift a",  L"Shift+",      L"Shift+a+b",       L"Shift+a+", L"Shift++a",
          L"Shift +a +", L"Shift+ab", L"Shift+Space", L"Shift+Backspace", L""}) {
        ExpectAppended(pszName, "");
    }
}

TEST_F(TextFieldNode, OtherNamesAreAppendedWhole) {
    for (const wchar_t* pszName : {L" ", L"\t", L"Enter", L"Tab", L"Esc", L"F1", L"Ctrl", L"Caps Lock", L"Left",
                                   L"Backspace2", L"Space bar", L"ab", L"aShift+b", L" Num 7", L"Nu", L"Shif", L"%s%d",
                                   L"NUM 7", L"num 7", L"shift+a", L"SHIFT+a", L"space", L"backspace",
                                   // With what no key name has.
                                   L"中", L"中文", L"a中", L"Num 中", L"Shift+中", L"Backspace中", L"Space 中",
                                   L"\U0001F600", L"Num \u0100", L"ŞShift+a"}) {
        ExpectAppended(pszName, Utf8(pszName));
    }
}

TEST_F(TextFieldNode, OnlyAsciiLettersHaveCaseWhateverTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    bool bCaseOfOthers = false;
    for (const char* pszLocale : {"C", "C.UTF-8", "French_France.1252"}) {
        if (std::setlocale(LC_ALL, pszLocale) == nullptr) {
            continue; // another system's
        }
        SCOPED_TRACE(pszLocale);
        bCaseOfOthers = bCaseOfOthers || std::towupper(L'é') == L'É';
        for (const wchar_t* pszName : {L"é", L"É", L"ß", L"ÿ", L"я", L"Я", L"İ", L"ı", L"Shift+я", L"Shift+ı"}) {
            ExpectAppended(pszName, Utf8(pszName));
        }
        ExpectAppended(L"Shift+é", "é");
        ExpectAppended(L"Shift+É", "É");
        SetCapsLock(false, true);
        EXPECT_EQ(Appended(L"a"), "A");
    }
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_TRUE(bCaseOfOthers) << "no locale in which other letters have case";
}

TEST_F(TextFieldNode, OtherKeysOfTheKeyboardDoNotMatter) {
    m_keyboard.HoldAll();
    m_keyboard.Release(CAPS_LOCK);
    EXPECT_EQ(Appended(L"a") + Appended(L"1") + Appended(L"Shift+a"), "a1A");
}

TEST_F(TextFieldNode, BackspaceRemovesTheLastCharacterWhole) {
    // Some of two units, D83D and DE00, which natively are no character; and the halves of such alone.
    const struct {
        const wchar_t* pszText;
        const wchar_t* pszLeft;
    } TEXTS[] = {{L"bc", L"b"},
                 {L"a", L""},
                 {L"a中", L"a"},
                 {L"a ", L"a"},
                 {L"a\U0001F600", L"a"},
                 {L"a\xD83D\xDE00", L"a"},
                 {L"a\xD83D", L"a"},
                 {L"a\xDE00", L"a"},
                 {L"\xDE00\xD83D", L"\xDE00"},
                 {L"\xD83D\xD83D\xDE00", L"\xD83D"},
                 {L"\xD83D\xDE00\xDE00", L"\xD83D\xDE00"},
                 {L"\xDE00", L""}};
    for (const auto& text : TEXTS) {
        EvaluateTriggered(false, true);
        Type(CString(L"b") + text.pszText); // whole
        Type(L"Backspace");
        EXPECT_EQ(WideText(), std::wstring(L"b") + text.pszLeft);
    }
}

TEST_F(TextFieldNode, TextsWithAZeroInsideAreTakenWhole) {
    using namespace std::string_literals;
    const struct {
        std::wstring keyName;
        std::wstring text;
    } KEYS[] = {{L"\0"s, L"\0"s},
                {L"Backspace"s, L""s},
                {L"a\0b"s, L"a\0b"s},
                {L"Backspace"s, L"a\0"s},
                {L"c"s, L"a\0c"s},
                {L"Backspace"s, L"a\0"s},
                {L"Backspace"s, L"a"s},
                {L"Space\0"s, L"aSpace\0"s},
                {L"Backspace\0"s, L"aSpace\0Backspace\0"s},
                {L"Shift+a\0"s, L"aSpace\0Backspace\0"s},
                {L"Num Del\0"s, L"aSpace\0Backspace\0Del\0"s},
                {L"Num Enter\0"s, L"aSpace\0Backspace\0Del\0Enter\0"s},
                {L"Num Lock\0"s, L"aSpace\0Backspace\0Del\0Enter\0Lock\0"s}};
    // Those that only begin with the names of other keys aren't those.
    for (const auto& [keyName, text] : KEYS) {
        Type(CString(keyName.data(), static_cast<int>(keyName.size())));
        EXPECT_EQ(WideText(), text);
        EXPECT_EQ(HasText(), text.empty() ? 0 : 1);
    }
}

// ---- Triggers ------------------------------------------------------------------------------------------------------

TEST_F(TextFieldNode, TriggersActAtEveryEvaluation) {
    m_inputText.m_strValue = L"a";
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Fired(), Outputs{});
    EXPECT_EQ(Text(), "") << "not triggered yet";
    for (const int nValue : {1, 2, -1, 256, -2147483647 - 1}) {
        SCOPED_TRACE(nValue);
        m_inputEvent.m_nValue = nValue;
        for (const char* pszText : {"a", "aa"}) {
            EXPECT_EQ(m_scene.Evaluate(), 1);
            EXPECT_EQ(Text(), pszText);
            EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{INPUT_LINE});
        }
        EXPECT_EQ(std::exchange(m_inputEvent.m_nValue, 0), nValue) << "the input is only read";
        m_textClear.m_nValue = nValue;
        for (int i = 0; i < 2; ++i) { // an empty text, too
            EXPECT_EQ(m_scene.Evaluate(), 1);
            EXPECT_EQ(Text(), "");
            EXPECT_EQ(HasText(), 0);
            EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{CLEAR_LINE});
        }
        EXPECT_EQ(std::exchange(m_textClear.m_nValue, 0), nValue) << "the input is only read";
    }
    EXPECT_EQ(Utf8(m_inputText.m_strValue), "a");
}

TEST_F(TextFieldNode, KeyIsAppliedBeforeTheTextIsCleared) {
    m_inputText.m_strValue = L"d";
    EXPECT_EQ(EvaluateTriggered(true, true), 1);
    EXPECT_EQ(m_host.TakeLog(), (std::vector<LogLine>{INPUT_LINE, CLEAR_LINE}));
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(HasText(), 0);
}

TEST_F(TextFieldNode, TriggersAreReadFromTheGraphAlone) {
    m_scene.Input(INPUT_EVENT).m_nValue = 1;
    m_scene.Input(TEXT_CLEAR).m_nValue = 1;
    Type(L"graph");
    m_host.TakeLog();
    m_inputEvent.m_guid = MISSING;
    m_textClear.m_guid = MISSING;
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Text(), "graph");
    EXPECT_EQ(Fired(), Outputs{});
}

TEST_F(TextFieldNode, KeyNameOfTheGraphWinsOverTheNodesOwn) {
    m_scene.Input(INPUT_TEXT).m_strValue = L"o";
    Type(L"g");
    EXPECT_EQ(Text(), "g");
    m_inputText.m_guid = MISSING;
    EXPECT_EQ(EvaluateTriggered(true, false), 1);
    EXPECT_EQ(Text(), "go");
}

// ---- What stops an evaluation --------------------------------------------------------------------------------------

TEST_F(TextFieldNode, MissingKeyNameEndsTheEvaluationAtOnce) {
    Type(L"abc");
    m_host.TakeLog();
    MarkOutputs();
    m_inputText.m_guid = MISSING;
    m_scene.Input(INPUT_TEXT).m_guid = MISSING;
    EXPECT_EQ(EvaluateTriggered(true, true), 1);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{INPUT_LINE}) << "nothing is cleared";
    EXPECT_EQ(Written(), std::vector<std::string>{});
    EXPECT_EQ(m_scene.Evaluate(), 1) << "untriggered it isn't looked for";
    EXPECT_EQ(Text(), "abc");
    EXPECT_EQ(HasText(), 1);
}

TEST_F(TextFieldNode, TextIsKeptWhileDisabled) {
    Type(L"abc");
    m_scene.Input(ENABLE).m_nValue = 0;
    EXPECT_EQ(EvaluateTriggered(true, true), 0);
    m_scene.Input(ENABLE).m_nValue = 1;
    m_scene.Evaluate();
    EXPECT_EQ(Text(), "abc");
}

// ---- Outputs -------------------------------------------------------------------------------------------------------

TEST_F(TextFieldNode, OutputsMirrorTheTextAfterEveryEvaluation) {
    for (const wchar_t* pszKeyName : {L"", L"abc"}) {
        Type(pszKeyName);
        MarkOutputs();
        EXPECT_EQ(m_scene.Evaluate(), 1);
        EXPECT_EQ(Written(), (std::vector<std::string>{"252 integer", "253 text"}));
        EXPECT_EQ(Text(), Utf8(pszKeyName));
        EXPECT_EQ(HasText(), *pszKeyName != 0 ? 1 : 0);
    }
}

} // namespace
