// The keyboard node: what it fires, logs and writes.
#include "InputNodeTest.h"

namespace {

const int DEVICE = 0, PRESS = 2002, RELEASE = 2003;
const int KEY_DOWN = 152, KEY_UP = 153;
const unsigned KEY_TEXT = 154;

class KeyboardNode : public InputNodeTest {
protected:
    KeyboardNode() : InputNodeTest(TYPE_KEYBOARD) { m_scene.Evaluate(); }

    int Send(int nEvent, const CString& strText) {
        SKeyEventData key;
        key.m_strText = strText;
        return m_scene.Send(DEVICE, nEvent, &key);
    }
    int Press(const CString& strText) { return Send(PRESS, strText); }

    /// What was fired since the last call; the log names this text with each.
    Outputs FiredWith(const std::string& text) {
        m_messages = {{KEY_DOWN, "触发输出事件[按下]键盘信息为[" + text + "]"},
                      {KEY_UP, "触发输出事件[抬起]键盘信息为[" + text + "]"}};
        return Fired();
    }

    std::string Text() const { return Utf8(m_scene.Output(KEY_TEXT).m_strValue); }
    std::string EvaluatedText() {
        EXPECT_EQ(m_scene.Evaluate(), 1);
        return Text();
    }
};

// ---- Presses and releases ------------------------------------------------------------------------------------------

TEST_F(KeyboardNode, PressAndReleaseFireAndLogTheTextOfThePress) {
    EXPECT_EQ(Press(L"F5"), 1);
    EXPECT_EQ(FiredWith("F5"), Outputs{KEY_DOWN});
    EXPECT_EQ(Send(RELEASE, L"another"), 1);
    EXPECT_EQ(FiredWith("F5"), Outputs{KEY_UP});
    EXPECT_EQ(m_scene.Send(DEVICE, RELEASE), 1) << "without any text";
    EXPECT_EQ(FiredWith("F5"), Outputs{KEY_UP});
    EXPECT_EQ(EvaluatedText(), "F5");
}

TEST_F(KeyboardNode, ReleaseWithoutPressFiresWithNoText) {
    EXPECT_EQ(Send(RELEASE, L"a"), 1);
    EXPECT_EQ(FiredWith(""), Outputs{KEY_UP});
    EXPECT_EQ(EvaluatedText(), "");
}

TEST_F(KeyboardNode, PressWithoutTextFiresAndClearsTheText) {
    for (const bool bPayload : {false, true}) {
        Press(L"a");
        EXPECT_EQ(EvaluatedText(), "a");
        EXPECT_EQ(FiredWith("a"), Outputs{KEY_DOWN});
        EXPECT_EQ(bPayload ? Press(L"") : m_scene.Send(DEVICE, PRESS), 1);
        EXPECT_EQ(FiredWith(""), Outputs{KEY_DOWN});
        EXPECT_EQ(EvaluatedText(), "");
    }
}

TEST_F(KeyboardNode, TextsOfAnyKindPassUnchanged) {
    const std::wstring longText(10'000, L'x');
    for (const wchar_t* pszText : {L" ", L"%s%d%n", L"[", L"中文", L"\U0001F600", L"\r\n\t", longText.c_str()}) {
        SCOPED_TRACE(Utf8(pszText).substr(0, 20));
        EXPECT_EQ(Press(pszText), 1);
        EXPECT_EQ(FiredWith(Utf8(pszText)), Outputs{KEY_DOWN});
        EXPECT_EQ(EvaluatedText(), Utf8(pszText));
    }
}

TEST_F(KeyboardNode, OtherIdsAreConsumedWithoutEffect) {
    Press(L"a");
    EXPECT_EQ(FiredWith("a"), Outputs{KEY_DOWN});
    for (const int nEvent : {2000, 2001, 2004, 2005, 0, 1, -1, -2002, 3005, 0x10000 + 2002, 2147483647}) {
        EXPECT_EQ(Send(nEvent, L"b"), 1) << nEvent;
        EXPECT_EQ(Fired(), Outputs{}) << nEvent;
    }
    EXPECT_EQ(EvaluatedText(), "a");
}

// ---- The text's output ---------------------------------------------------------------------------------------------

TEST_F(KeyboardNode, TextIsWrittenByTheNextEvaluation) {
    Press(L"a");
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(EvaluatedText(), "a");
    Press(L"b");
    Press(L"c");
    EXPECT_EQ(Text(), "a");
    EXPECT_EQ(EvaluatedText(), "c") << "the last one";
}

TEST_F(KeyboardNode, EvaluationWritesTheTextAlone) {
    MarkOutputs();
    EXPECT_EQ(EvaluatedText(), "") << "over a foreign value";
    MarkOutputs();
    Press(L"a");
    m_scene.Evaluate();
    EXPECT_EQ(Written(), std::vector<std::string>{"154 text"});
}

TEST_F(KeyboardNode, EqualTextIsNotWrittenAgain) {
    Press(L"same");
    m_scene.Output(KEY_TEXT).m_strValue = CString(L"same", 4); // an equal text in a buffer of its own
    const wchar_t* const pBuffer = m_scene.Output(KEY_TEXT).m_strValue.GetString();
    EXPECT_EQ(EvaluatedText(), "same");
    EXPECT_EQ(m_scene.Output(KEY_TEXT).m_strValue.GetString(), pBuffer);
    Press(L"other");
    EXPECT_EQ(EvaluatedText(), "other");
}

TEST_F(KeyboardNode, WritesIntoAndNamesTheGraphNodeLastEvaluated) {
    Press(L"a");
    m_host.TakeLog();
    SGraphNode other;
    other.m_strName = L"Other";
    m_scene.m_pNode->GetNodeOutput(&other);
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(&other), 1);
    EXPECT_EQ(Utf8(FindParam(other.m_lstOutputGroup, MakeParamGuid(KEY_TEXT))->m_strValue), "a");
    EXPECT_EQ(Text(), "");
    Press(L"b");
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{Information("[Clip.Other.Node]触发输出事件[按下]键盘信息为[b]")});
    m_scene.m_pNode->ProcessNode(nullptr);
}

} // namespace
