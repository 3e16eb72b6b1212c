// The broadcast receive node: its tables, and which items it takes.
#include "ModuleHost.h"
#include "host/EventRecord.h"
#include "host/ParamModel.h"

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

    int Send(int nDevice = 2, int nEvent = 1) { return m_scene.Send(nDevice, nEvent, &m_item); }
    std::string Output(unsigned nId) const { return Utf8(m_scene.Output(nId).m_strValue); }

    void ExpectUntouched() {
        EXPECT_EQ(Output(NAME), "");
        EXPECT_EQ(Output(DATA), "");
        ExpectSilent();
    }
    void ExpectSilent() {
        EXPECT_TRUE(m_host.TakeReportedEvents().empty());
        EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
        EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
    }

    NodeScene m_scene{m_host, TYPE_BROADCAST_RECEIVE};
    SBroadcastItem m_item;
};

TEST_F(BroadcastReceiveNode, IsFresh) {
    const NodePtr pNode = m_host.CreateNode(TYPE_BROADCAST_RECEIVE);
    ExpectFreshNode(*pNode, TYPE_BROADCAST_RECEIVE, "IO_PROCESS_BROADCASTREV");
}

TEST_F(BroadcastReceiveNode, Inputs) {
    const NodePtr pNode = m_host.CreateNode(TYPE_BROADCAST_RECEIVE);
    ExpectInputGroups(pNode->m_lstParamGroup, {{1301,
                                                "Base param",
                                                "IO_PROCESS_BROADCASTREV",
                                                {{.nId = 7,
                                                  .pszName = "Version",
                                                  .pszDisplay = "Version",
                                                  .nType = 2,
                                                  .nControl = 1,
                                                  .range = ExpectedRange{1, 1, 10000, 1},
                                                  .flags = ExpectedFlags{0, 0, 0, 0},
                                                  .nValue = 1,
                                                  .fValue = 1},
                                                 {.nId = 1302,
                                                  .pszName = "Flag",
                                                  .pszDisplay = "IO_PROCESS_BROADCAST_FLAG",
                                                  .nType = 1,
                                                  .nControl = 6,
                                                  .flags = ExpectedFlags{0, 0, 1, 0}}}}});
}

TEST_F(BroadcastReceiveNode, Outputs) {
    const ExpectedGroup expected{1351,
                                 "Outputs",
                                 "TOUCH_CONTROL_OUTPUTS",
                                 {{.nId = 1352,
                                   .pszName = "Name",
                                   .pszDisplay = "IO_PROCESS_BROADCAST_NAME",
                                   .nType = 1,
                                   .nControl = 6,
                                   .flags = ExpectedFlags{0, 0, 1, 0}},
                                  {.nId = 1353,
                                   .pszName = "Data",
                                   .pszDisplay = "IO_PROCESS_BROADCAST_VALUE",
                                   .nType = 1,
                                   .nControl = 6,
                                   .flags = ExpectedFlags{0, 0, 1, 0}}}};
    ExpectOutputGroups(m_scene.m_graphNode.m_lstOutputGroup, {expected});
    Send();
    m_scene.m_pNode->GetNodeOutput(&m_scene.m_graphNode);
    EXPECT_EQ(m_scene.m_graphNode.m_lstOutputGroup.GetCount(), 1);
    m_scene.m_pNode->GetNodeOutput(nullptr);

    SGraphNode another; // received texts don't seed new outputs
    m_scene.m_pNode->GetNodeOutput(&another);
    ExpectOutputGroups(another.m_lstOutputGroup, {expected});
}

TEST_F(BroadcastReceiveNode, AnItemOfItsFlagSetsTheOutputs) {
    EXPECT_EQ(Send(), 1);
    EXPECT_EQ(Output(NAME), "score");
    EXPECT_EQ(Output(DATA), "12|7");
    ExpectSilent();
    m_item.m_strName = L"";
    m_item.m_strData = L"13|7";
    EXPECT_EQ(Send(), 1);
    EXPECT_EQ(Output(NAME), "");
    EXPECT_EQ(Output(DATA), "13|7");
}

TEST_F(BroadcastReceiveNode, AnotherFlagIsRefused) {
    for (const wchar_t* pszFlag : {L"", L"2", L"1 ", L"11"}) {
        m_item.m_strFlag = pszFlag;
        EXPECT_EQ(Send(), 0);
    }
    ExpectUntouched();
}

TEST_F(BroadcastReceiveNode, TextsWithAZeroInsideAreTakenWhole) {
    for (const CString& strText : {CString(L"a\0b", 3), CString(L"a\0c", 3), CString(L"a"), CString(L"\0", 1)}) {
        m_scene.Input(FLAG).m_strValue = strText;
        m_scene.Evaluate();
        EXPECT_EQ(Send(), 0) << "the flag of before";
        m_item.m_strFlag = m_item.m_strName = m_item.m_strData = strText;
        EXPECT_EQ(Send(), 1);
        EXPECT_EQ(Output(NAME), Utf8(strText));
        EXPECT_EQ(Output(DATA), Utf8(strText));
    }
}

TEST_F(BroadcastReceiveNode, AnEmptyFlagTakesItemsWithoutOne) {
    m_scene.Input(FLAG).m_strValue.Empty();
    m_scene.Evaluate();
    EXPECT_EQ(Send(), 0);
    m_item.m_strFlag.Empty();
    EXPECT_EQ(Send(), 1);
}

TEST_F(BroadcastReceiveNode, TheFlagIsReadByEvaluations) {
    m_scene.AddGraphInput(FLAG, 1, 6).m_strValue = L"graph's";
    EXPECT_EQ(Send(), 1);
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Send(), 0);
    m_item.m_strFlag = L"graph's";
    EXPECT_EQ(Send(), 1);
}

TEST_F(BroadcastReceiveNode, WithoutTheInputTheFlagStays) {
    CList<VEKParam*>& lstParam = m_scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam;
    VEKParam* const pFlag = lstParam.GetTail();
    lstParam.RemoveAt(lstParam.Find(pFlag));
    delete pFlag;
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Send(), 1);
}

TEST_F(BroadcastReceiveNode, TakesBroadcastsOnly) {
    for (const int nDevice : {0, 1, 3, 4, 5, 6}) {
        EXPECT_EQ(Send(nDevice), 0) << nDevice;
    }
    EXPECT_EQ(Send(2, 0), 0);
    EXPECT_EQ(Send(2, 2), 0);
    EXPECT_EQ(m_scene.Send(2, 1, nullptr), 0);
    ExpectUntouched();
}

TEST_F(BroadcastReceiveNode, MissingPinsAreSkipped) {
    m_scene.RemoveOutput(DATA);
    EXPECT_EQ(Send(), 1);
    EXPECT_EQ(Output(NAME), "score");
    m_scene.RemoveOutput(NAME);
    EXPECT_EQ(Send(), 1);
}

TEST_F(BroadcastReceiveNode, TwoNodesOfTheSameFlagBothTakeTheItem) {
    NodeScene second(m_host, TYPE_BROADCAST_RECEIVE);
    second.Input(FLAG).m_strValue = L"1";
    second.Evaluate();
    EXPECT_EQ(Send(), 1);
    EXPECT_EQ(second.Send(2, 1, &m_item), 1);
    EXPECT_EQ(Utf8(second.Output(DATA).m_strValue), "12|7");
}

TEST_F(BroadcastReceiveNode, NeedsClipAndGraphNode) {
    NodeScene unevaluated(m_host, TYPE_BROADCAST_RECEIVE);
    m_item.m_strFlag.Empty();
    EXPECT_EQ(unevaluated.Send(2, 1, &m_item), 0);
    m_item.m_strFlag = L"1";
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    EXPECT_EQ(Send(), 0);
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Send(), 0);
    ExpectUntouched();
}

TEST_F(BroadcastReceiveNode, ANullRecordIsLogged) {
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(m_host.TakeLog(), std::vector{Error("[Clip.Graph.Node]DevIOEventOccurred函数数据错误")});
}

} // namespace
