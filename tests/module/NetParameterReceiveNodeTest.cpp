// The net parameter receive node: its tables, which records it takes, what they change.
#include "ModuleHost.h"
#include "host/ParamModel.h"
#include "host/RemoteControlRecord.h"

namespace {

enum : unsigned {
    VERSION = 7,
    NAME_OF_GROUP = 502,
    KEY_NAME = 503,
    KEY_NUMBER = 504,
    KEY_VALUE = 552,
    HELP_PARAMETER = 553,
    EVENT = 554,
};

class NetParameterReceiveNode : public ModuleTest {
protected:
    NetParameterReceiveNode() {
        m_scene.Input(NAME_OF_GROUP).m_strValue = L"group";
        m_scene.Input(KEY_NAME).m_strValue = L"key";
        m_scene.Input(KEY_NUMBER).m_nValue = 42;
        m_record.m_strClipName = L"Clip";
        m_record.m_strGroupName = L"group";
        m_record.m_strKeyName = L"key";
        m_record.m_nKeyNumber = 42;
        m_record.m_strKeyValue = L"value";
        m_record.m_strHelpParameter = L"help";
        m_scene.Evaluate();
    }

    int Send(int nDevice = 2, int nEvent = 0) { return Send(m_scene, nDevice, nEvent); }
    int Send(NodeScene& scene, int nDevice, int nEvent) {
        return scene.Send(nDevice, nEvent, static_cast<CQORIOAttachedData*>(&m_record));
    }

    std::string Output(unsigned nId) const { return Utf8(m_scene.Output(nId).m_strValue); }

    void ExpectUntouched() {
        EXPECT_EQ(Output(KEY_VALUE), "");
        EXPECT_EQ(Output(HELP_PARAMETER), "");
        EXPECT_TRUE(m_host.TakeReportedEvents().empty());
        EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
        EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
    }

    void Drop(unsigned nId) {
        CList<VEKParam*>& lstParam = m_scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam;
        VEKParam* pParam = &m_scene.Input(nId);
        lstParam.RemoveAt(lstParam.Find(pParam));
        delete pParam;
    }

    NodeScene m_scene{m_host, TYPE_NET_PARAMETER_RECEIVE};
    CQORPanelRemoteCtrlData m_record;
};

TEST_F(NetParameterReceiveNode, IsFresh) {
    const NodePtr pNode = m_host.CreateNode(TYPE_NET_PARAMETER_RECEIVE);
    ExpectFreshNode(*pNode, TYPE_NET_PARAMETER_RECEIVE, "IO_PROCESS_NETRECEIVE");
}

TEST_F(NetParameterReceiveNode, Inputs) {
    const NodePtr pNode = m_host.CreateNode(TYPE_NET_PARAMETER_RECEIVE);
    const ExpectedFlags ORDINARY{0, 0, 1, 0};
    ExpectInputGroups(pNode->m_lstParamGroup, {{501,
                                                "Base param",
                                                "IO_PROCESS_NETRECEIVE",
                                                {{.nId = 7,
                                                  .pszName = "Version",
                                                  .pszDisplay = "Version",
                                                  .nType = 2,
                                                  .nControl = 1,
                                                  .range = ExpectedRange{1, 1, 10000, 1},
                                                  .flags = ExpectedFlags{0, 0, 0, 0},
                                                  .nValue = 3,
                                                  .fValue = 1},
                                                 {.nId = 502,
                                                  .pszName = "GroupName",
                                                  .pszDisplay = "IO_PROCESS_NETSEND_GROUPNAME",
                                                  .nType = 1,
                                                  .nControl = 6,
                                                  .flags = ORDINARY},
                                                 {.nId = 503,
                                                  .pszName = "KeyName",
                                                  .pszDisplay = "IO_PROCESS_NETSEND_KEYNAME",
                                                  .nType = 1,
                                                  .nControl = 6,
                                                  .flags = ORDINARY},
                                                 {.nId = 504,
                                                  .pszName = "KeyNumber",
                                                  .pszDisplay = "IO_PROCESS_NETSEND_KEYNUMBER",
                                                  .nType = 2,
                                                  .nControl = 1,
                                                  .range = ExpectedRange{0, 0, 1000000000, 1},
                                                  .flags = ORDINARY}}}});
}

TEST_F(NetParameterReceiveNode, Outputs) {
    const ExpectedFlags ORDINARY{0, 0, 1, 0};
    ExpectOutputGroups(m_scene.m_graphNode.m_lstOutputGroup, {{551,
                                                               "Outputs",
                                                               "TOUCH_CONTROL_OUTPUTS",
                                                               {{.nId = 552,
                                                                 .pszName = "KeyValue",
                                                                 .pszDisplay = "IO_PROCESS_NETSEND_KEYVALUE",
                                                                 .nType = 1,
                                                                 .nControl = 6,
                                                                 .flags = ORDINARY},
                                                                {.nId = 553,
                                                                 .pszName = "HelpParameter",
                                                                 .pszDisplay = "IO_PROCESS_NETSEND_HELPPARAMETER",
                                                                 .nType = 1,
                                                                 .nControl = 6,
                                                                 .flags = ORDINARY},
                                                                {.nId = 554,
                                                                 .pszName = "Event",
                                                                 .pszDisplay = "IO_PROCESS_NETRECEIVE_NETTRIGGER",
                                                                 .nType = 26,
                                                                 .nControl = 7,
                                                                 .range = ExpectedRange{0, 0, 1, 1},
                                                                 .flags = ORDINARY}}}});
    m_scene.m_pNode->GetNodeOutput(&m_scene.m_graphNode);
    EXPECT_EQ(m_scene.m_graphNode.m_lstOutputGroup.GetCount(), 1);
    m_scene.m_pNode->GetNodeOutput(nullptr);
}

TEST_F(NetParameterReceiveNode, AMatchingRecordSetsTheOutputsAndFires) {
    EXPECT_EQ(Send(), 1);
    EXPECT_EQ(Output(KEY_VALUE), "value");
    EXPECT_EQ(Output(HELP_PARAMETER), "help");
    EXPECT_EQ(m_host.TakeLog(), std::vector{Information("[Clip.Graph.Node 触发[网络触发]事件]")});
    const std::vector<ReportedEvent> events = m_host.TakeReportedEvents();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].pNode, m_scene.m_pNode.get());
    EXPECT_EQ(events[0].pClip, &m_scene.m_clip);
    EXPECT_EQ(events[0].pObject, nullptr);
    EXPECT_EQ(events[0].nOutput, 554);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
}

TEST_F(NetParameterReceiveNode, TakesKinds2And4AndEvent0Only) {
    for (const int nDevice : {0, 1, 3, 5, 6, -1}) {
        EXPECT_EQ(Send(nDevice), 0) << nDevice;
    }
    EXPECT_EQ(Send(2, 1), 0);
    EXPECT_EQ(Send(4, 1), 0);
    EXPECT_EQ(m_scene.Send(2, 0, nullptr), 0);
    ExpectUntouched();
    EXPECT_EQ(Send(2), 1);
    EXPECT_EQ(Send(4), 1);
}

TEST_F(NetParameterReceiveNode, EveryPartOfTheAddressMustMatch) {
    const CQORPanelRemoteCtrlData matching = m_record;
    m_record.m_strClipName = L"clip"; // compared exactly
    EXPECT_EQ(Send(), 0);
    m_record = matching;
    m_record.m_strGroupName = L"Group";
    EXPECT_EQ(Send(), 0);
    m_record = matching;
    m_record.m_strKeyName = L"key ";
    EXPECT_EQ(Send(), 0);
    m_record = matching;
    m_record.m_nKeyNumber = 43;
    EXPECT_EQ(Send(), 0);
    ExpectUntouched();
}

TEST_F(NetParameterReceiveNode, TextsWithAZeroInsideArriveWhole) {
    for (const CString& strText : {CString(L"a\0b", 3), CString(L"a\0c", 3), CString(L"a"), CString(L"\0", 1)}) {
        m_record.m_strKeyValue = strText;
        m_record.m_strHelpParameter = strText;
        EXPECT_EQ(Send(), 1);
        EXPECT_EQ(Output(KEY_VALUE), Utf8(strText));
        EXPECT_EQ(Output(HELP_PARAMETER), Utf8(strText));
    }
}

TEST_F(NetParameterReceiveNode, AddressesAreComparedBeyondAZeroInside) {
    const struct {
        CString CQORPanelRemoteCtrlData::*pText;
        CString& strOwn;
    } TEXTS[] = {{&CQORPanelRemoteCtrlData::m_strClipName, m_scene.m_clip.m_strName},
                 {&CQORPanelRemoteCtrlData::m_strGroupName, m_scene.Input(NAME_OF_GROUP).m_strValue},
                 {&CQORPanelRemoteCtrlData::m_strKeyName, m_scene.Input(KEY_NAME).m_strValue}};
    for (const auto& text : TEXTS) {
        SCOPED_TRACE(Utf8(text.strOwn));
        CString& strSent = m_record.*text.pText;
        strSent = text.strOwn + CString(L"\0", 1);
        EXPECT_EQ(Send(), 0);
        text.strOwn += CString(L"\0a", 2);
        EXPECT_EQ(Send(), 0);
        strSent = text.strOwn;
        EXPECT_EQ(Send(), 1);
    }
}

TEST_F(NetParameterReceiveNode, DeviceAndLayerDoNotMatter) {
    m_record.m_strDevID = L"77";
    m_record.m_strDevName = L"any";
    m_record.m_nLayer = 12;
    EXPECT_EQ(Send(), 1);
}

TEST_F(NetParameterReceiveNode, KeyNumberZeroMatchesItself) {
    m_scene.Input(KEY_NUMBER).m_nValue = 0;
    m_record.m_nKeyNumber = 0;
    EXPECT_EQ(Send(), 1);
}

TEST_F(NetParameterReceiveNode, TheGraphsInputsComeFirst) {
    m_scene.AddGraphInput(KEY_NAME, 1, 6).m_strValue = L"graph's";
    EXPECT_EQ(Send(), 0);
    m_record.m_strKeyName = L"graph's";
    EXPECT_EQ(Send(), 1);
}

TEST_F(NetParameterReceiveNode, TwoNodesOfTheSameKeyBothFire) {
    NodeScene second(m_host, TYPE_NET_PARAMETER_RECEIVE);
    second.Input(NAME_OF_GROUP).m_strValue = L"group";
    second.Input(KEY_NAME).m_strValue = L"key";
    second.Input(KEY_NUMBER).m_nValue = 42;
    second.Evaluate();
    EXPECT_EQ(Send(), 1);
    EXPECT_EQ(Send(second, 2, 0), 1);
    EXPECT_EQ(m_host.TakeReportedEvents().size(), 2u);
}

TEST_F(NetParameterReceiveNode, MissingInputsRefuseTheRecord) {
    for (const unsigned nId : {NAME_OF_GROUP, KEY_NAME, KEY_NUMBER}) {
        NodeScene scene(m_host, TYPE_NET_PARAMETER_RECEIVE);
        scene.Evaluate();
        CQORPanelRemoteCtrlData record;
        record.m_strClipName = L"Clip";
        EXPECT_EQ(scene.Send(2, 0, static_cast<CQORIOAttachedData*>(&record)), 1);
        CList<VEKParam*>& lstParam = scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam;
        VEKParam* pParam = &scene.Input(nId);
        lstParam.RemoveAt(lstParam.Find(pParam));
        delete pParam;
        EXPECT_EQ(scene.Send(2, 0, static_cast<CQORIOAttachedData*>(&record)), 0);
    }
}

TEST_F(NetParameterReceiveNode, MissingPinsAreSkipped) {
    m_scene.RemoveOutput(KEY_VALUE);
    EXPECT_EQ(Send(), 1);
    EXPECT_EQ(Output(HELP_PARAMETER), "help");
    m_scene.RemoveOutput(HELP_PARAMETER);
    EXPECT_EQ(Send(), 1);
    EXPECT_EQ(m_host.TakeReportedEvents().size(), 2u);
}

TEST_F(NetParameterReceiveNode, NeedsClipAndGraphNode) {
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    EXPECT_EQ(Send(), 0); // the graph node is forgotten
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(m_scene.Evaluate(), 1);
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    EXPECT_EQ(Send(), 0);
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(m_scene.Evaluate(), 0);
    ExpectUntouched();
}

TEST_F(NetParameterReceiveNode, ANullRecordIsLogged) {
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(m_host.TakeLog(), std::vector{Error("[Clip.Graph.Node]DevIOEventOccurred函数数据错误")});
}

TEST_F(NetParameterReceiveNode, InitParamHidesFormerInputsOfOlderSets) {
    CList<VEKParam*>& lstParam = m_scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam;
    lstParam.AddTail(new VEKParam(505, L"", L"", 1, 6));
    lstParam.AddTail(new VEKParam(506, L"", L"", 1, 6));
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(m_scene.Input(505).m_bAvailable, 1);
    m_scene.Input(VERSION).m_nValue = 2;
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(m_scene.Input(505).m_bAvailable, 0);
    EXPECT_EQ(m_scene.Input(506).m_bAvailable, 0);
    EXPECT_EQ(m_scene.Input(VERSION).m_nValue, 3);
}

TEST_F(NetParameterReceiveNode, InitParamTakesASetWithoutVersionOrGroup) {
    CList<VEKParam*>& lstParam = m_scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam;
    lstParam.AddTail(new VEKParam(506, L"", L"", 1, 6));
    Drop(VERSION);
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(m_scene.Input(506).m_bAvailable, 0);
    m_scene.m_pNode->Empty();
    m_scene.m_pNode->InitParam();
}

} // namespace
