// The broadcast receive node: which items it takes.
#include "ModuleHost.h"

namespace {

enum : unsigned { FLAG = 1302, NAME = 1352, DATA = 1353 };

class BroadcastReceiveNode : public ModuleTest {
protected:
    BroadcastReceiveNode() {
        m_scene.Input(FLAG).m_strValue = L"1";
        m_item.m_strFlag = L"1";
        m_item.m_strClipName = L"any clip";
        m_item.m_strName = L"score";
        m_item.m_strData = L"12|7";
        m_scene.Evaluate();
    }

    int Send(int nEvent = 1) { return m_scene.Send(2, nEvent, &m_item); }
    std::string Output(unsigned nId) const { return Utf8(m_scene.Output(nId).m_strValue); }

    NodeScene m_scene{m_host, TYPE_BROADCAST_RECEIVE};
    SBroadcastItem m_item;
};

TEST_F(BroadcastReceiveNode, AnItemOfItsFlagSetsTheOutputs) {
    EXPECT_EQ(Send(), 1);
    EXPECT_EQ(Output(NAME), "score");
    EXPECT_EQ(Output(DATA), "12|7");
    m_item.m_strName = L"";
    m_item.m_strData = L"13|7";
    EXPECT_EQ(Send(), 1);
    EXPECT_EQ(Output(NAME), "");
    EXPECT_EQ(Output(DATA), "13|7");
    ExpectSilence();
}

TEST_F(BroadcastReceiveNode, AnotherFlagOrEventIsRefused) {
    EXPECT_EQ(Send(0), 0);
    EXPECT_EQ(Send(2), 0);
    for (const CString& strFlag : {CString(L""), CString(L"2"), CString(L"1 "), CString(L"11"), CString(L"1\0", 2)}) {
        m_item.m_strFlag = strFlag;
        EXPECT_EQ(Send(), 0);
    }
    EXPECT_EQ(Output(NAME) + Output(DATA), "");
    ExpectSilence();
}

TEST_F(BroadcastReceiveNode, AnEmptyFlagTakesItemsWithoutOne) {
    m_scene.Input(FLAG).m_strValue.Empty();
    m_scene.Evaluate();
    EXPECT_EQ(Send(), 0);
    m_item.m_strFlag.Empty();
    EXPECT_EQ(Send(), 1);
}

TEST_F(BroadcastReceiveNode, TheFlagIsReadByEvaluationsTheGraphsFirst) {
    m_scene.AddGraphInput(FLAG, 1, 6).m_strValue = L"graph's";
    EXPECT_EQ(Send(), 1);
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Send(), 0);
    m_item.m_strFlag = L"graph's";
    EXPECT_EQ(Send(), 1);
}

TEST_F(BroadcastReceiveNode, WithoutTheInputTheFlagStays) {
    m_scene.RemoveInput(FLAG);
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Send(), 1);
}

} // namespace
