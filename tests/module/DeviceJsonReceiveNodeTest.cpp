// The device JSON receive node: its tables, whose texts it takes, and when the texts must hold its keys and values.
#include "HostSetup.h"
#include "JsonCalls.h"
#include "ModuleHost.h"

namespace {

enum : unsigned {
    DEVICE_ID = 1402,
    CHECK_KEY_VALUE = 1403,
    KEY_1 = 1404,
    VALUE_1 = 1405,
    KEY_2 = 1406,
    VALUE_2 = 1407,
    KEY_3 = 1408,
    VALUE_3 = 1409,
    RECEIVE_DATA = 1452,
    EVENT = 1453,
};

const unsigned ALL_INPUTS[] = {DEVICE_ID, CHECK_KEY_VALUE, KEY_1, VALUE_1, KEY_2, VALUE_2, KEY_3, VALUE_3};

const std::vector<LogLine> NOTHING_LOGGED;
const std::vector<LogLine> TAKEN = {Information("[Clip.Graph.Node 触发[接收设备json]事件]")};
const std::vector<LogLine> NOT_PARSED = {Error("[Clip.Graph.Node]DevIOEventOccurred:JSON解析失败")};
const std::vector<LogLine> NO_OBJECT = {Error("[Clip.Graph.Node]DevIOEventOccurred:不是JSON对象")};

class DeviceJsonReceiveNode : public ModuleTest {
protected:
    DeviceJsonReceiveNode() { m_scene.Evaluate(); }

    int Send(const CString& strText, int nDeviceId = 1) {
        m_text.m_nDeviceId = nDeviceId;
        m_text.m_strText = strText;
        return m_scene.Send(5, 0, &m_text);
    }

    void Check(const wchar_t* pszKey1, const wchar_t* pszValue1, const wchar_t* pszKey2 = L"",
               const wchar_t* pszValue2 = L"", const wchar_t* pszKey3 = L"", const wchar_t* pszValue3 = L"") {
        const wchar_t* texts[] = {pszKey1, pszValue1, pszKey2, pszValue2, pszKey3, pszValue3};
        m_scene.Input(CHECK_KEY_VALUE).m_nValue = 1;
        for (unsigned i = 0; i < 6; ++i) {
            m_scene.Input(KEY_1 + i).m_strValue = texts[i];
        }
    }

    std::string Received() const { return Utf8(m_scene.Output(RECEIVE_DATA).m_strValue); }

    void ExpectTaken(const CString& strText) {
        SCOPED_TRACE(Utf8(strText));
        EXPECT_EQ(Send(strText), 1);
        EXPECT_EQ(Received(), Utf8(strText));
        EXPECT_EQ(m_host.TakeLog(), TAKEN);
        const std::vector<ReportedEvent> events = m_host.TakeReportedEvents();
        ASSERT_EQ(events.size(), 1u);
        EXPECT_EQ(events[0].pNode, m_scene.m_pNode.get());
        EXPECT_EQ(events[0].pClip, &m_scene.m_clip);
        EXPECT_EQ(events[0].pObject, nullptr);
        EXPECT_EQ(events[0].nOutput, 1453);
        EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{}) << "nothing goes to the event window";
    }

    /// Refused with these log lines: nothing fired, and the output is what it was.
    void ExpectRefused(const CString& strText, const std::vector<LogLine>& log, int nDeviceId = 1) {
        SCOPED_TRACE(Utf8(strText));
        m_scene.Output(RECEIVE_DATA).m_strValue = L"before";
        EXPECT_EQ(Send(strText, nDeviceId), 0);
        ExpectUntouched(log);
    }
    void ExpectUntouched(const std::vector<LogLine>& log) {
        EXPECT_EQ(m_host.TakeLog(), log);
        EXPECT_TRUE(m_host.TakeReportedEvents().empty());
        EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
        EXPECT_EQ(Received(), "before");
        EXPECT_EQ(m_scene.Output(EVENT).m_nValue, 0);
    }

    NodeScene m_scene{m_host, TYPE_DEVICE_JSON_RECEIVE};
    SDeviceTextData m_text;
};

// ---- Tables --------------------------------------------------------------------------------------------------------

TEST_F(DeviceJsonReceiveNode, IsFresh) {
    const NodePtr pNode = m_host.CreateNode(TYPE_DEVICE_JSON_RECEIVE);
    ExpectFreshNode(*pNode, TYPE_DEVICE_JSON_RECEIVE, "IO_PROCESS_DEV_JSON_RECEIVE");
}

ExpectedParam Text(unsigned nId, const char* pszName, const char* pszDisplay) {
    return {.nId = nId,
            .pszName = pszName,
            .pszDisplay = pszDisplay,
            .nType = 1,
            .nControl = 6,
            .flags = ExpectedFlags{0, 0, 1, 0}};
}

TEST_F(DeviceJsonReceiveNode, Inputs) {
    const NodePtr pNode = m_host.CreateNode(TYPE_DEVICE_JSON_RECEIVE);
    ExpectInputGroups(pNode->m_lstParamGroup, {{1401,
                                                "Base param",
                                                "IO_PROCESS_DEV_JSON_RECEIVE",
                                                {{.nId = 7,
                                                  .pszName = "Version",
                                                  .pszDisplay = "Version",
                                                  .nType = 2,
                                                  .nControl = 1,
                                                  .range = ExpectedRange{1, 1, 10000, 1},
                                                  .flags = ExpectedFlags{0, 0, 0, 0},
                                                  .nValue = 1,
                                                  .fValue = 1},
                                                 {.nId = 1402,
                                                  .pszName = "DevId",
                                                  .pszDisplay = "IO_PROCESS_NETSEND_DEVID",
                                                  .nType = 2,
                                                  .nControl = 1,
                                                  .range = ExpectedRange{1, 1, 10000, 1},
                                                  .flags = ExpectedFlags{0, 0, 1, 0},
                                                  .nValue = 1,
                                                  .fValue = 1},
                                                 {.nId = 1403,
                                                  .pszName = "CheckKeyValue",
                                                  .pszDisplay = "IO_PROCESS_DEV_JSON_CHECK_KEY_VALUE",
                                                  .nType = 5,
                                                  .nControl = 1,
                                                  .range = ExpectedRange{0, 0, 1, 1},
                                                  .flags = ExpectedFlags{0, 0, 1, 0}},
                                                 Text(1404, "Key1", "IO_PROCESS_DEV_JSON_KEY1"),
                                                 Text(1405, "Value1", "IO_PROCESS_DEV_JSON_VALUE1"),
                                                 Text(1406, "Key2", "IO_PROCESS_DEV_JSON_KEY2"),
                                                 Text(1407, "Value2", "IO_PROCESS_DEV_JSON_VALUE2"),
                                                 Text(1408, "Key3", "IO_PROCESS_DEV_JSON_KEY3"),
                                                 Text(1409, "Value3", "IO_PROCESS_DEV_JSON_VALUE3")}}});
}

TEST_F(DeviceJsonReceiveNode, ThePairsNumberFollowsTheLookedUpText) {
    m_host.WriteFile("Config/Texts/en.json",
                     R"({"IO_PROCESS_DEV_JSON_KEY": "Key ", "IO_PROCESS_DEV_JSON_KEY1": "wrong"})");
    ASSERT_TRUE(SetTextTable(ETextTable::English));
    const NodePtr pNode = m_host.CreateNode(TYPE_DEVICE_JSON_RECEIVE);
    EXPECT_EQ(Utf8(FindParam(pNode->m_lstParamGroup, MakeParamGuid(KEY_1))->m_strDisplay), "Key 1");
    EXPECT_EQ(Utf8(FindParam(pNode->m_lstParamGroup, MakeParamGuid(KEY_3))->m_strDisplay), "Key 3");
}

TEST_F(DeviceJsonReceiveNode, Outputs) {
    const ExpectedGroup expected{1451,
                                 "Outputs",
                                 "TOUCH_CONTROL_OUTPUTS",
                                 {Text(1452, "ReceiveData", "LOGIC_CAL_DATASEPARATE_DATA"),
                                  {.nId = 1453,
                                   .pszName = "Event",
                                   .pszDisplay = "IO_PROCESS_RECEIVE_JSON",
                                   .nType = 26,
                                   .nControl = 7,
                                   .range = ExpectedRange{0, 0, 1, 1},
                                   .flags = ExpectedFlags{0, 0, 1, 0}}}};
    ExpectOutputGroups(m_scene.m_graphNode.m_lstOutputGroup, {expected});
    Send(L"{}");
    m_scene.m_pNode->GetNodeOutput(&m_scene.m_graphNode);
    EXPECT_EQ(m_scene.m_graphNode.m_lstOutputGroup.GetCount(), 1);
    EXPECT_EQ(Received(), "{}") << "asking for the outputs again changes nothing";
    m_scene.m_pNode->GetNodeOutput(nullptr);

    SGraphNode another; // received texts don't seed new outputs
    m_scene.m_pNode->GetNodeOutput(&another);
    ExpectOutputGroups(another.m_lstOutputGroup, {expected});
}

// ---- The other operations ------------------------------------------------------------------------------------------

TEST_F(DeviceJsonReceiveNode, InitParamChangesNothing) {
    for (const int nVersion : {0, 1, 2, 10000}) {
        m_scene.Input(7).m_nValue = nVersion;
        m_scene.Input(KEY_2).m_strValue = L"kept";
        m_scene.m_pNode->InitParam();
        EXPECT_EQ(m_scene.Input(7).m_nValue, nVersion);
        EXPECT_EQ(Utf8(m_scene.Input(KEY_2).m_strValue), "kept");
        EXPECT_EQ(m_scene.m_pNode->m_lstParamGroup.GetCount(), 1);
    }
    delete m_scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam.RemoveHead(); // Version
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(FindParam(m_scene.m_pNode->m_lstParamGroup, MakeParamGuid(7)), nullptr);
    ExpectParam(m_scene.Input(DEVICE_ID), {.nId = 1402,
                                           .pszName = "DevId",
                                           .pszDisplay = "IO_PROCESS_NETSEND_DEVID",
                                           .nType = 2,
                                           .nControl = 1,
                                           .range = ExpectedRange{1, 1, 10000, 1},
                                           .flags = ExpectedFlags{0, 0, 1, 0},
                                           .nValue = 1,
                                           .fValue = 1});
}

TEST_F(DeviceJsonReceiveNode, InitParamWithoutAnyGroupRaisesInvalidArgument) {
    delete m_scene.m_pNode->m_lstParamGroup.RemoveHead();
    bool bRaised = false;
    try {
        m_scene.m_pNode->InitParam();
    } catch (CInvalidArgException* pException) {
        bRaised = true;
        pException->Delete();
    }
    EXPECT_TRUE(bRaised);
}

TEST_F(DeviceJsonReceiveNode, EvaluationsOnlyBindTheGraphNode) {
    m_scene.Output(RECEIVE_DATA).m_strValue = L"before";
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(m_scene.m_pNode->m_pBaseGraphNode, &m_scene.m_graphNode);
    ExpectUntouched(NOTHING_LOGGED);
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    EXPECT_EQ(m_scene.m_pNode->m_pBaseGraphNode, nullptr);
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(m_scene.m_pNode->m_pBaseGraphNode, &m_scene.m_graphNode) << "remembered all the same";
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
}

// ---- Whose texts it takes ------------------------------------------------------------------------------------------

TEST_F(DeviceJsonReceiveNode, NeedsClipAndGraphNode) {
    NodeScene unevaluated(m_host, TYPE_DEVICE_JSON_RECEIVE);
    m_text.m_nDeviceId = 1;
    m_text.m_strText = L"{}";
    EXPECT_EQ(unevaluated.Send(5, 0, &m_text), 0);
    EXPECT_EQ(unevaluated.m_pNode->DevIOEventOccurred(nullptr), 0) << "and isn't logged";
    m_scene.Output(RECEIVE_DATA).m_strValue = L"before";
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    EXPECT_EQ(Send(L"{}"), 0);
    EXPECT_EQ(Send(L"no JSON"), 0);
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    m_scene.m_pNode->m_pOwnerClip = &m_scene.m_clip;
    m_scene.m_pNode->ProcessNode(nullptr);
    EXPECT_EQ(Send(L"{}"), 0);
    EXPECT_EQ(Send(L"no JSON"), 0);
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    ExpectUntouched(NOTHING_LOGGED);
    m_scene.Evaluate();
    ExpectTaken(L"{}");
}

TEST_F(DeviceJsonReceiveNode, ANullRecordIsLogged) {
    m_scene.Output(RECEIVE_DATA).m_strValue = L"before";
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    ExpectUntouched({Error("[Clip.Graph.Node]DevIOEventOccurred: pIOData == NULL")});
}

TEST_F(DeviceJsonReceiveNode, TakesDeviceTextsOnly) {
    m_scene.Output(RECEIVE_DATA).m_strValue = L"before";
    m_text.m_nDeviceId = 1;
    m_text.m_strText = L"{}";
    for (const int nDevice : {-1, 0, 1, 2, 3, 4, 6, 7}) {
        EXPECT_EQ(m_scene.Send(nDevice, 0, &m_text), 0) << nDevice;
    }
    EXPECT_EQ(m_scene.Send(5, 0, nullptr), 0);
    ExpectUntouched(NOTHING_LOGGED);
}

TEST_F(DeviceJsonReceiveNode, TheEventIdMeansNothing) {
    m_text.m_nDeviceId = 1;
    m_text.m_strText = L"{}";
    for (const int nEvent : {-1, 0, 1, 3005}) {
        EXPECT_EQ(m_scene.Send(5, nEvent, &m_text), 1) << nEvent;
    }
}

TEST_F(DeviceJsonReceiveNode, AnotherDevicesTextIsRefusedSilently) {
    for (const int nDeviceId : {2, 0, -1, 10001, 0x10001}) {
        ExpectRefused(L"{}", NOTHING_LOGGED, nDeviceId);
        ExpectRefused(L"no JSON", NOTHING_LOGGED, nDeviceId);
    }
    m_scene.Input(DEVICE_ID).m_nValue = 2;
    ExpectRefused(L"{}", NOTHING_LOGGED, 1);
    EXPECT_EQ(Send(L"{}", 2), 1);
}

TEST_F(DeviceJsonReceiveNode, TheGraphsInputsComeFirst) {
    m_scene.AddGraphInput(DEVICE_ID, 2, 1).m_nValue = 7;
    ExpectRefused(L"{}", NOTHING_LOGGED, 1);
    EXPECT_EQ(Send(L"{}", 7), 1);
    m_scene.AddGraphInput(CHECK_KEY_VALUE, 5, 1).m_nValue = 1;
    m_scene.AddGraphInput(KEY_3, 1, 6).m_strValue = L"cmd";
    m_scene.AddGraphInput(VALUE_3, 1, 6).m_strValue = L"start";
    EXPECT_EQ(Send(LR"({"cmd":"stop"})", 7), 0);
    EXPECT_EQ(Send(LR"({"cmd":"start"})", 7), 1);
}

TEST_F(DeviceJsonReceiveNode, InputsCountWithoutAnEvaluation) {
    m_scene.Input(DEVICE_ID).m_nValue = 3;
    EXPECT_EQ(Send(L"{}", 3), 1);
}

TEST_F(DeviceJsonReceiveNode, EveryInputMustBeThere) {
    for (const unsigned nId : ALL_INPUTS) {
        SCOPED_TRACE(nId);
        NodeScene scene(m_host, TYPE_DEVICE_JSON_RECEIVE);
        scene.Evaluate();
        VEKParam* pParam = &scene.Input(nId);
        CList<VEKParam*>& lstParam = scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam;
        lstParam.RemoveAt(lstParam.Find(pParam));
        m_text.m_nDeviceId = 1;
        for (const wchar_t* pszText : {L"{}", L"null", L"no JSON"}) {
            m_text.m_strText = pszText;
            EXPECT_EQ(scene.Send(5, 0, &m_text), 0);
        }
        EXPECT_EQ(Utf8(scene.Output(RECEIVE_DATA).m_strValue), "");
        EXPECT_EQ(m_host.TakeLog(), NOTHING_LOGGED);
        EXPECT_TRUE(m_host.TakeReportedEvents().empty());
        m_text.m_strText = L"{}";
        if (nId == DEVICE_ID) {
            pParam->m_nValue = 1;
        }
        scene.AddGraphInput(nId, pParam->m_nType, pParam->m_nControl).m_nValue = pParam->m_nValue;
        EXPECT_EQ(scene.Send(5, 0, &m_text), 1) << "the graph's input will do";
        m_host.TakeLog();
        m_host.TakeReportedEvents();
        delete pParam;
    }
}

// ---- Without the check ---------------------------------------------------------------------------------------------

TEST_F(DeviceJsonReceiveNode, WithoutTheCheckAnyValueIsTaken) {
    for (const wchar_t* pszText : {L"[1,2]", L"{}", L"[]", L"{\"a\":null}", L"[null]", L"\"text\"", L"\"\"", L"0",
                                   L"-1.5e3", L"true", L"false"}) {
        ExpectTaken(pszText);
    }
    m_scene.Input(KEY_1).m_strValue = L"cmd"; // decides nothing while the check is off
    m_scene.Input(VALUE_1).m_strValue = L"start";
    ExpectTaken(L"{\"cmd\":\"stop\"}");
}

TEST_F(DeviceJsonReceiveNode, TheTextGoesOutAsItCame) {
    for (const wchar_t* pszText : {L" { \"b\" : 1.0 ,\r\n\t\"a\" : 1e2, \"b\" : 2 } \n", L"\"\\u4f60\\/\"",
                                   L"{\"名\":\"值😀\"}", L"[0.10, 100000000000000000000]"}) {
        ExpectTaken(pszText);
    }
}

TEST_F(DeviceJsonReceiveNode, NullAndWhatIsNoJsonIsRefusedAndLogged) {
    for (const wchar_t* pszText :
         {L"null", L" null\n", L"", L"  ", L"no JSON", L"{", L"{}}", L"{'a':1}", L"nul", L"[1,]"}) {
        ExpectRefused(pszText, NOT_PARSED);
    }
}

TEST_F(DeviceJsonReceiveNode, TheOutputKeepsTheLastTakenText) {
    ExpectTaken(L"[1]");
    EXPECT_EQ(Send(L"no JSON"), 0);
    EXPECT_EQ(Send(L"[2]", 2), 0);
    EXPECT_EQ(Received(), "[1]");
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(Received(), "[1]");
    m_host.TakeLog();
    m_host.TakeReportedEvents();
    ExpectTaken(L"[1]"); // the same text fires again
    ExpectTaken(L"[3]");
}

TEST_F(DeviceJsonReceiveNode, MissingPinsAreSkipped) {
    m_scene.RemoveOutput(RECEIVE_DATA);
    EXPECT_EQ(Send(L"{}"), 1);
    EXPECT_EQ(m_host.TakeReportedEvents().size(), 1u);
    m_scene.RemoveOutput(EVENT);
    EXPECT_EQ(Send(L"{}"), 1);
    EXPECT_EQ(m_host.TakeReportedEvents().size(), 1u);
    EXPECT_EQ(m_host.TakeLog().size(), 2u);
}

TEST_F(DeviceJsonReceiveNode, NeedsNoEventWindow) {
    m_scene.m_pNode->m_hEventWnd = nullptr;
    m_scene.m_pNode->m_nEventMsg = 0;
    ExpectTaken(L"{}");
}

// ---- With the check ------------------------------------------------------------------------------------------------

TEST_F(DeviceJsonReceiveNode, TheCheckWantsAnObject) {
    Check(L"", L"");
    for (const wchar_t* pszText : {L"[1,2]", L"[]", L"\"text\"", L"0", L"true", L"false", L"[{\"cmd\":\"start\"}]"}) {
        ExpectRefused(pszText, NO_OBJECT);
    }
    for (const wchar_t* pszText : {L"null", L"no JSON", L"", L"{"}) {
        ExpectRefused(pszText, NOT_PARSED);
    }
    ExpectRefused(L"[1,2]", NOTHING_LOGGED, 2);
}

TEST_F(DeviceJsonReceiveNode, AnySwitchValueButZeroIsOn) {
    for (const int nOn : {1, 2, -1}) {
        m_scene.Input(CHECK_KEY_VALUE).m_nValue = nOn;
        ExpectRefused(L"[1,2]", NO_OBJECT);
    }
    m_scene.Input(CHECK_KEY_VALUE).m_nValue = 0;
    ExpectTaken(L"[1,2]");
}

TEST_F(DeviceJsonReceiveNode, WithAllKeysEmptyAnyObjectIsTaken) {
    Check(L"", L"");
    ExpectTaken(L"{}");
    ExpectTaken(L"{\"cmd\":\"start\"}");
    Check(L"", L"ignored", L"", L"ignored", L"", L"ignored");
    ExpectTaken(L"{}");
}

TEST_F(DeviceJsonReceiveNode, OnePairDecides) {
    Check(L"cmd", L"start");
    ExpectTaken(L"{\"cmd\":\"start\"}");
    ExpectTaken(L"{\"other\":[1,{\"cmd\":\"stop\"}],\"cmd\":\"start\",\"more\":null}");
    for (const wchar_t* pszText : {L"{\"cmd\":\"stop\"}", L"{}", L"{\"command\":\"start\"}", L"{\"cm\":\"start\"}",
                                   L"{\"cmd\":\"start \"}", L"{\"cmd\":\"star\"}", L"{\"cmd\":[\"start\"]}",
                                   L"{\"a\":{\"cmd\":\"start\"}}", L"{\"cmd\":null}", L"{\"start\":\"cmd\"}"}) {
        ExpectRefused(pszText, NOTHING_LOGGED);
    }
}

TEST_F(DeviceJsonReceiveNode, KeysAndValuesAreComparedExactly) {
    Check(L"cmd", L"start");
    for (const wchar_t* pszText : {L"{\"CMD\":\"start\"}", L"{\"cmd\":\"START\"}", L"{\" cmd\":\"start\"}"}) {
        ExpectRefused(pszText, NOTHING_LOGGED);
    }
    Check(L"命令", L"开始😀");
    ExpectTaken(L"{\"命令\":\"开始😀\"}");
    ExpectTaken(L"{\"\\u547d\\u4ee4\":\"\\u5f00\\u59cb\\ud83d\\ude00\"}");
    ExpectRefused(L"{\"命令\":\"开始\"}", NOTHING_LOGGED);
}

TEST_F(DeviceJsonReceiveNode, AnEmptyValueWantsAnEmptyText) {
    Check(L"cmd", L"");
    ExpectTaken(L"{\"cmd\":\"\"}");
    for (const wchar_t* pszText : {L"{\"cmd\":\"start\"}", L"{}", L"{\"cmd\":null}", L"{\"cmd\":[]}"}) {
        ExpectRefused(pszText, NOTHING_LOGGED);
    }
}

TEST_F(DeviceJsonReceiveNode, ValuesThatAreNoStringsAreComparedAsText) {
    struct Case {
        const wchar_t* pszValue;
        const wchar_t* pszText;
    };
    const Case cases[] = {
        {L"1", L"{\"v\":1}"},
        {L"1", L"{\"v\":\"1\"}"},
        {L"-1.5", L"{\"v\":-1.50}"},
        {L"0.1", L"{\"v\":0.1}"},
        {L"true", L"{\"v\":true}"},
        {L"false", L"{\"v\": false }"},
        {L"null", L"{\"v\":null}"},
        {L"null", L"{\"v\":\"null\"}"},
        {L"[1,2]", L"{\"v\":[ 1, 2 ]}"},
        {L"{\"a\":\"b\"}", L"{\"v\": {\"a\" : \"b\"} }"},
        {L"[]", L"{\"v\":[]}"},
    };
    for (const Case& row : cases) {
        Check(L"v", row.pszValue);
        ExpectTaken(row.pszText);
        Check(L"v", CString(row.pszValue) + L" ");
        ExpectRefused(row.pszText, NOTHING_LOGGED);
    }
}

TEST_F(DeviceJsonReceiveNode, AllPairsMustMatch) {
    const wchar_t* const pszText = L"{\"c\":\"3\",\"a\":\"1\",\"b\":\"2\"}";
    Check(L"a", L"1", L"b", L"2", L"c", L"3");
    ExpectTaken(pszText);
    const struct {
        unsigned nId;
        const wchar_t* pszRight;
    } CELLS[] = {{KEY_1, L"a"}, {VALUE_1, L"1"}, {KEY_2, L"b"}, {VALUE_2, L"2"}, {KEY_3, L"c"}, {VALUE_3, L"3"}};
    for (const auto& cell : CELLS) {
        SCOPED_TRACE(cell.nId);
        m_scene.Input(cell.nId).m_strValue = L"x";
        ExpectRefused(pszText, NOTHING_LOGGED);
        m_scene.Input(cell.nId).m_strValue = cell.pszRight;
        ExpectTaken(pszText);
    }
}

TEST_F(DeviceJsonReceiveNode, APairWithoutAKeyIsSkipped) {
    Check(L"", L"ignored", L"b", L"2");
    ExpectTaken(L"{\"b\":\"2\"}");
    ExpectRefused(L"{\"b\":\"1\"}", NOTHING_LOGGED);
    Check(L"", L"ignored", L"", L"ignored", L"c", L"3");
    ExpectTaken(L"{\"c\":\"3\"}");
    ExpectRefused(L"{\"a\":\"3\"}", NOTHING_LOGGED);
    Check(L"a", L"1", L"", L"ignored", L"c", L"3");
    ExpectTaken(L"{\"a\":\"1\",\"c\":\"3\"}");
    ExpectTaken(L"{\"\":\"anything\",\"a\":\"1\",\"c\":\"3\"}");
    ExpectRefused(L"{\"a\":\"1\"}", NOTHING_LOGGED);
}

TEST_F(DeviceJsonReceiveNode, TheSameKeyTwiceMustHoldBothValues) {
    Check(L"a", L"1", L"a", L"2");
    ExpectRefused(L"{\"a\":\"1\"}", NOTHING_LOGGED);
    ExpectRefused(L"{\"a\":\"1\",\"a\":\"2\"}", NOTHING_LOGGED);
    Check(L"a", L"1", L"a", L"1");
    ExpectTaken(L"{\"a\":\"1\"}");
}

TEST_F(DeviceJsonReceiveNode, OfMembersOfOneNameTheFirstCounts) {
    Check(L"a", L"1");
    ExpectTaken(L"{\"a\":\"1\",\"a\":\"2\"}");
    ExpectRefused(L"{\"a\":\"2\",\"a\":\"1\"}", NOTHING_LOGGED);
}

TEST_F(DeviceJsonReceiveNode, FewerValuesThanKeysRaiseInvalidArgument) {
    Check(L"b", L"2");
    m_scene.Output(RECEIVE_DATA).m_strValue = L"before";
    bool bRaised = false;
    {
        const LostLastValue lost;
        try {
            Send(L"{\"a\":\"1\",\"b\":\"2\"}");
        } catch (CInvalidArgException* pException) {
            bRaised = true;
            pException->Delete();
        }
    }
    EXPECT_TRUE(bRaised);
    ExpectUntouched(NOTHING_LOGGED);
    ExpectTaken(L"{\"a\":\"1\",\"b\":\"2\"}");
}

TEST_F(DeviceJsonReceiveNode, NothingIsKeptBetweenTexts) {
    Check(L"a", L"1");
    ExpectTaken(L"{\"a\":\"1\"}");
    ExpectRefused(L"{\"b\":\"1\"}", NOTHING_LOGGED);
    ExpectRefused(L"{}", NOTHING_LOGGED);
}

} // namespace
