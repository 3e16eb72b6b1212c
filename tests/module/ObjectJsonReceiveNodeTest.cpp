// The object JSON receive node: its tables, and the texts of which objects it passes on.
#include "ModuleHost.h"

namespace {

enum : unsigned { CLIP_NAME = 1202, OBJECT_NAME = 1203, FLAG = 1204, RECEIVE_DATA = 1252, EVENT = 1253 };

const std::vector<LogLine> NOTHING_LOGGED;
const std::vector<LogLine> TAKEN = {Information("[Clip.Graph.Node 触发[地图反馈]事件]")};

class ObjectJsonReceiveNode : public ModuleTest {
protected:
    ObjectJsonReceiveNode() {
        m_scene.Input(CLIP_NAME).m_strValue = L"A";
        m_scene.Input(OBJECT_NAME).m_strValue = L"B";
        m_scene.Evaluate();
    }

    int Send(const wchar_t* pszClip, const wchar_t* pszObject, const CString& strText = L"some text") {
        m_text.m_strClipName = pszClip;
        m_text.m_strObjectName = pszObject;
        m_text.m_strText = strText;
        return m_scene.Send(6, 0, &m_text);
    }

    std::string Received() const { return Utf8(m_scene.Output(RECEIVE_DATA).m_strValue); }

    void ExpectTaken(const wchar_t* pszClip, const wchar_t* pszObject, const CString& strText = L"some text") {
        SCOPED_TRACE(Utf8(CString(pszClip) + L"." + pszObject + L": " + strText));
        EXPECT_EQ(Send(pszClip, pszObject, strText), 1);
        EXPECT_EQ(Received(), Utf8(strText));
        EXPECT_EQ(m_host.TakeLog(), TAKEN);
        const std::vector<ReportedEvent> events = m_host.TakeReportedEvents();
        ASSERT_EQ(events.size(), 1u);
        EXPECT_EQ(events[0].pNode, m_scene.m_pNode.get());
        EXPECT_EQ(events[0].pClip, &m_scene.m_clip);
        EXPECT_EQ(events[0].pObject, nullptr);
        EXPECT_EQ(events[0].nOutput, 1253);
        EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{}) << "nothing goes to the event window";
    }

    void ExpectRefused(const wchar_t* pszClip, const wchar_t* pszObject) {
        SCOPED_TRACE(Utf8(CString(pszClip) + L"." + pszObject));
        m_scene.Output(RECEIVE_DATA).m_strValue = L"before";
        EXPECT_EQ(Send(pszClip, pszObject), 0);
        ExpectUntouched();
    }
    void ExpectUntouched(const std::vector<LogLine>& log = NOTHING_LOGGED) {
        EXPECT_EQ(m_host.TakeLog(), log);
        EXPECT_TRUE(m_host.TakeReportedEvents().empty());
        EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
        EXPECT_EQ(Received(), "before");
        EXPECT_EQ(m_scene.Output(EVENT).m_nValue, 0);
    }

    NodeScene m_scene{m_host, TYPE_OBJECT_JSON_RECEIVE};
    SObjectTextData m_text;
};

// ---- Tables --------------------------------------------------------------------------------------------------------

TEST_F(ObjectJsonReceiveNode, IsFresh) {
    const NodePtr pNode = m_host.CreateNode(TYPE_OBJECT_JSON_RECEIVE);
    ExpectFreshNode(*pNode, TYPE_OBJECT_JSON_RECEIVE, "IO_PROCESS_OBJ_JSON_RECEIVE");
}

ExpectedParam Text(unsigned nId, const char* pszName, const char* pszDisplay) {
    return {.nId = nId,
            .pszName = pszName,
            .pszDisplay = pszDisplay,
            .nType = 1,
            .nControl = 6,
            .flags = ExpectedFlags{0, 0, 1, 0}};
}

TEST_F(ObjectJsonReceiveNode, Inputs) {
    const NodePtr pNode = m_host.CreateNode(TYPE_OBJECT_JSON_RECEIVE);
    ExpectInputGroups(pNode->m_lstParamGroup, {{1201,
                                                "Base param",
                                                "IO_PROCESS_OBJ_JSON_RECEIVE",
                                                {{.nId = 7,
                                                  .pszName = "Version",
                                                  .pszDisplay = "Version",
                                                  .nType = 2,
                                                  .nControl = 1,
                                                  .range = ExpectedRange{1, 1, 10000, 1},
                                                  .flags = ExpectedFlags{0, 0, 0, 0},
                                                  .nValue = 2,
                                                  .fValue = 1},
                                                 Text(1202, "ClipName", "IO_PROCESS_NETSEND_CLIPNAME"),
                                                 Text(1203, "ObjName", "IO_PROCESS_OBJ_NAME"),
                                                 Text(1204, "Flag", "IO_PROCESS_BROADCAST_FLAG")}}});
}

TEST_F(ObjectJsonReceiveNode, Outputs) {
    const ExpectedGroup expected{1251,
                                 "Outputs",
                                 "TOUCH_CONTROL_OUTPUTS",
                                 {Text(1252, "ReceiveData", "LOGIC_CAL_DATASEPARATE_DATA"),
                                  {.nId = 1253,
                                   .pszName = "Event",
                                   .pszDisplay = "IO_PROCESS_RECEIVE_JSON",
                                   .nType = 26,
                                   .nControl = 7,
                                   .range = ExpectedRange{0, 0, 1, 1},
                                   .flags = ExpectedFlags{0, 0, 1, 0}}}};
    ExpectOutputGroups(m_scene.m_graphNode.m_lstOutputGroup, {expected});
    Send(L"A", L"B");
    m_scene.m_pNode->GetNodeOutput(&m_scene.m_graphNode);
    EXPECT_EQ(m_scene.m_graphNode.m_lstOutputGroup.GetCount(), 1);
    EXPECT_EQ(Received(), "some text") << "asking for the outputs again changes nothing";
    m_scene.m_pNode->GetNodeOutput(nullptr);

    SGraphNode another; // received texts don't seed new outputs
    m_scene.m_pNode->GetNodeOutput(&another);
    ExpectOutputGroups(another.m_lstOutputGroup, {expected});
}

// ---- The other operations ------------------------------------------------------------------------------------------

TEST_F(ObjectJsonReceiveNode, InitParamChangesNothing) {
    for (const int nVersion : {0, 1, 2, 10000}) {
        m_scene.Input(7).m_nValue = nVersion;
        m_scene.m_pNode->InitParam();
        EXPECT_EQ(m_scene.Input(7).m_nValue, nVersion);
        EXPECT_EQ(Utf8(m_scene.Input(CLIP_NAME).m_strValue), "A");
    }
    delete m_scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam.RemoveHead(); // Version
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(FindParam(m_scene.m_pNode->m_lstParamGroup, MakeParamGuid(7)), nullptr);
}

TEST_F(ObjectJsonReceiveNode, InitParamWithoutAnyGroupRaisesInvalidArgument) {
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

TEST_F(ObjectJsonReceiveNode, EvaluationsOnlyBindTheGraphNode) {
    m_scene.Output(RECEIVE_DATA).m_strValue = L"before";
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(m_scene.m_pNode->m_pBaseGraphNode, &m_scene.m_graphNode);
    ExpectUntouched();
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    EXPECT_EQ(m_scene.m_pNode->m_pBaseGraphNode, nullptr);
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    EXPECT_EQ(m_scene.Evaluate(), 0);
}

TEST_F(ObjectJsonReceiveNode, HasNoControlLayoutOfItsOwn) {
    P_ExtDevIOProcess plain; // the host's own operations
    P_ExtDevIOProcess& node = *m_scene.m_pNode;
    EXPECT_EQ(node.GetXmlReader(), plain.GetXmlReader());
    EXPECT_EQ(node.GetXmlLoadStatePtr(), plain.GetXmlLoadStatePtr());
    EXPECT_EQ(Utf8(node.GetCtrlPosXmlPath()), Utf8(plain.GetCtrlPosXmlPath()));
    EXPECT_EQ(node.GetNodeParamInfoGrpAr(), plain.GetNodeParamInfoGrpAr());
}

// ---- Which texts it takes ------------------------------------------------------------------------------------------

TEST_F(ObjectJsonReceiveNode, TheTextOfItsObjectIsTaken) {
    ExpectTaken(L"A", L"B");
    ExpectTaken(L"A", L"B"); // the same text fires again
    ExpectTaken(L"A", L"B", L"{\"zoom\":3}");
    ExpectTaken(L"A", L"B", L"");
}

TEST_F(ObjectJsonReceiveNode, AnotherObjectOrClipIsRefusedSilently) {
    const wchar_t* const pairs[][2] = {{L"A", L"C"}, {L"C", L"B"},  {L"B", L"A"}, {L"", L""},   {L"A", L""},
                                       {L"", L"B"},  {L"A ", L"B"}, {L"a", L"B"}, {L"A", L"b"}, {L"A", L"BB"}};
    for (const auto& [pszClip, pszObject] : pairs) {
        ExpectRefused(pszClip, pszObject);
    }
}

TEST_F(ObjectJsonReceiveNode, NoTextIsParsed) {
    for (const wchar_t* pszText : {L"no JSON", L"null", L"{", L" \r\n", L"\xFEFF{}", L"名😀"}) {
        ExpectTaken(L"A", L"B", pszText);
    }
    ExpectTaken(L"A", L"B", CString(L"zero \0 inside", 13));
    CString strLong;
    for (int i = 0; i < 100'000; ++i) {
        strLong += L'[';
    }
    ExpectTaken(L"A", L"B", strLong);
}

TEST_F(ObjectJsonReceiveNode, EmptyParametersMatchEmptyNamesOnly) {
    m_scene.Input(CLIP_NAME).m_strValue.Empty();
    m_scene.Input(OBJECT_NAME).m_strValue.Empty();
    ExpectTaken(L"", L"");
    ExpectRefused(L"A", L"");
    ExpectRefused(L"", L"B");
    ExpectRefused(L"A", L"B");
}

TEST_F(ObjectJsonReceiveNode, TheFlagDecidesNothing) {
    for (const wchar_t* pszFlag : {L"1", L"0", L"some text", L"A"}) {
        m_scene.Input(FLAG).m_strValue = pszFlag;
        ExpectTaken(L"A", L"B");
        ExpectRefused(L"A", L"C");
        EXPECT_EQ(Utf8(m_scene.Input(FLAG).m_strValue), Utf8(pszFlag));
    }
}

TEST_F(ObjectJsonReceiveNode, TheNodesOwnClipDecidesNothing) {
    ExpectRefused(L"Clip", L"B");
}

TEST_F(ObjectJsonReceiveNode, EveryInputMustBeThere) {
    for (const unsigned nId : {CLIP_NAME, OBJECT_NAME, FLAG}) {
        SCOPED_TRACE(nId);
        NodeScene scene(m_host, TYPE_OBJECT_JSON_RECEIVE);
        scene.Evaluate();
        CList<VEKParam*>& lstParam = scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam;
        VEKParam* pParam = &scene.Input(nId);
        lstParam.RemoveAt(lstParam.Find(pParam));
        m_text.m_strText = L"some text";
        EXPECT_EQ(scene.Send(6, 0, &m_text), 0);
        EXPECT_EQ(Utf8(scene.Output(RECEIVE_DATA).m_strValue), "");
        EXPECT_EQ(m_host.TakeLog(), NOTHING_LOGGED);
        EXPECT_TRUE(m_host.TakeReportedEvents().empty());
        scene.AddGraphInput(nId, 1, 6);
        EXPECT_EQ(scene.Send(6, 0, &m_text), 1) << "the graph's input will do";
        m_host.TakeLog();
        m_host.TakeReportedEvents();
        delete pParam;
    }
}

TEST_F(ObjectJsonReceiveNode, TheGraphsInputsComeFirst) {
    m_scene.AddGraphInput(OBJECT_NAME, 1, 6).m_strValue = L"C";
    ExpectRefused(L"A", L"B");
    ExpectTaken(L"A", L"C");
    m_scene.AddGraphInput(CLIP_NAME, 1, 6).m_strValue = L"D";
    ExpectRefused(L"A", L"C");
    ExpectTaken(L"D", L"C");
}

TEST_F(ObjectJsonReceiveNode, TakesObjectTextsOnly) {
    m_scene.Output(RECEIVE_DATA).m_strValue = L"before";
    m_text.m_strClipName = L"A";
    m_text.m_strObjectName = L"B";
    for (const int nDevice : {-1, 0, 1, 2, 3, 4, 5, 7}) {
        EXPECT_EQ(m_scene.Send(nDevice, 0, &m_text), 0) << nDevice;
    }
    EXPECT_EQ(m_scene.Send(6, 0, nullptr), 0);
    ExpectUntouched();
    for (const int nEvent : {-1, 0, 1, 3005}) {
        EXPECT_EQ(m_scene.Send(6, nEvent, &m_text), 1) << "the event id means nothing";
    }
}

TEST_F(ObjectJsonReceiveNode, NeedsClipAndGraphNode) {
    NodeScene unevaluated(m_host, TYPE_OBJECT_JSON_RECEIVE);
    EXPECT_EQ(unevaluated.Send(6, 0, &m_text), 0);
    EXPECT_EQ(unevaluated.m_pNode->DevIOEventOccurred(nullptr), 0) << "and isn't logged";
    m_scene.Output(RECEIVE_DATA).m_strValue = L"before";
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    EXPECT_EQ(Send(L"A", L"B"), 0);
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    m_scene.m_pNode->m_pOwnerClip = &m_scene.m_clip;
    m_scene.m_pNode->ProcessNode(nullptr);
    EXPECT_EQ(Send(L"A", L"B"), 0);
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    ExpectUntouched();
    m_scene.Evaluate();
    ExpectTaken(L"A", L"B");
}

TEST_F(ObjectJsonReceiveNode, ANullRecordIsLogged) {
    m_scene.Output(RECEIVE_DATA).m_strValue = L"before";
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 0);
    ExpectUntouched({Error("[Clip.Graph.Node]DevIOEventOccurred函数数据错误")});
}

TEST_F(ObjectJsonReceiveNode, MissingPinsAreSkipped) {
    m_scene.RemoveOutput(RECEIVE_DATA);
    EXPECT_EQ(Send(L"A", L"B"), 1);
    m_scene.RemoveOutput(EVENT);
    EXPECT_EQ(Send(L"A", L"B"), 1);
    EXPECT_EQ(m_host.TakeReportedEvents().size(), 2u);
    EXPECT_EQ(m_host.TakeLog().size(), 2u);
}

TEST_F(ObjectJsonReceiveNode, TwoNodesOfTheSameObjectBothTakeTheText) {
    NodeScene second(m_host, TYPE_OBJECT_JSON_RECEIVE);
    second.Input(CLIP_NAME).m_strValue = L"A";
    second.Input(OBJECT_NAME).m_strValue = L"B";
    second.Evaluate();
    EXPECT_EQ(Send(L"A", L"B"), 1);
    EXPECT_EQ(second.Send(6, 0, &m_text), 1);
    EXPECT_EQ(Utf8(second.Output(RECEIVE_DATA).m_strValue), "some text");
}

} // namespace
