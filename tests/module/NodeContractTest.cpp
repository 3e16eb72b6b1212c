// What every node type keeps to.
#include <algorithm>
#include <climits>

#include "ContractTypes.h"
#include "HeapUse.h"
#include "HostCalls.h"
#include "ParamText.h"
#include "SocketCalls.h"
#include "TestDevices.h"
#include "TestMachine.h"

namespace {

constexpr unsigned ENABLE = 2, VERSION = 7;

using Seen = std::vector<std::string>;

class NodeContract : public ModuleTest, public testing::WithParamInterface<ContractType> {
protected:
    NodeContract() {
        WatchSocketCalls(m_host.Module());
        m_devices.Add(5, L"Five", ParserKind::Direct);
        m_devices.Publish();
    }
    ~NodeContract() override { TakeSocketCalls(); }

    /// What was logged, fired and sent since the last look.
    Seen SeeEvents() {
        Seen seen;
        for (const LogLine& line : m_host.TakeLog()) {
            EXPECT_TRUE(line == Information(line.text) || line == Error(line.text)) << line;
            seen.push_back((line.nLevel == 32 ? "error " : "log ") + line.text);
        }
        for (const int nOutput : m_host.TakeFiredOutputs()) {
            seen.push_back("fired " + std::to_string(nOutput));
        }
        for (const ReportedEvent& event : m_host.TakeReportedEvents()) {
            seen.push_back("reported " + std::to_string(event.nOutput));
        }
        for (const SentItem& item : m_devices.TakeSent()) {
            seen.push_back("sent to " + std::to_string(item.nDevice));
        }
        seen.insert(seen.end(), TakeDatagrams().size(), "datagram");
        seen.insert(seen.end(), m_host.TakeOtherMessages().size(), "message");
        return seen;
    }

    /// The outputs that have values.
    static Seen SeeOutputs(const NodeScene& scene) {
        Seen seen;
        for (const auto& group : CellsOf(scene.m_graphNode.m_lstOutputGroup)) {
            for (const auto& pin : group["params"]) {
                for (const char* pszValue : {"integer", "float", "string"}) {
                    if (pin.contains(pszValue)) {
                        seen.push_back(pin["name"].get<std::string>() + " is " + pin[pszValue].dump());
                    }
                }
            }
        }
        return seen;
    }

    /// All of it.
    Seen See(const NodeScene& scene) {
        Seen seen = SeeEvents();
        for (const std::string& output : SeeOutputs(scene)) {
            seen.push_back(output);
        }
        return seen;
    }

    Seen Act() { return Act(m_scene); }
    /// What makes a node of the type act, and two evaluations; a key is held during the first one.
    Seen Act(NodeScene& scene) {
        Trigger(scene);
        return ActTriggered(scene);
    }

    void Trigger(NodeScene& scene) {
        if (m_type.pTrigger != nullptr) {
            m_type.pTrigger(scene);
        }
    }

    Seen ActTriggered(NodeScene& scene) {
        if (m_type.pEvents != nullptr) {
            scene.Evaluate();
            SendEvents(scene);
        }
        m_keyboard.Hold('A');
        scene.Evaluate();
        m_keyboard.Release('A');
        m_nAnswer = scene.Evaluate();
        return See(scene);
    }

    std::vector<ContractEvent> Events() {
        return m_type.pEvents != nullptr ? m_type.pEvents(m_payloads) : std::vector<ContractEvent>{};
    }

    /// Its events from a device of its own; the answers.
    std::vector<int> SendEvents(NodeScene& scene) {
        std::vector<int> answers;
        for (const ContractEvent& event : Events()) {
            answers.push_back(scene.Send(m_type.devices[0], event.nEvent, event.pPayload));
        }
        return answers;
    }
    std::vector<int> AllEvents(int nAnswer) { return std::vector<int>(Events().size(), nAnswer); }

    int SendNullRecord() { return m_scene.m_pNode->DevIOEventOccurred(nullptr); }

    /// Whatever its devices send is refused without a trace.
    void ExpectIgnoringEverything() {
        const Seen before = See(m_scene);
        for (const int nDevice : m_type.devices) {
            for (const ContractEvent& event : Events()) {
                for (const int nEvent : {event.nEvent, 0, 1, 2001, 2002, 2003, 3002, 3005, 3006, 3013, 3020, -1}) {
                    EXPECT_EQ(m_scene.Send(nDevice, nEvent, event.pPayload), 0) << nDevice << '/' << nEvent;
                    EXPECT_EQ(m_scene.Send(nDevice, nEvent, nullptr), 0) << nDevice << '/' << nEvent;
                }
            }
        }
        EXPECT_EQ(See(m_scene), before);
    }

    const ContractType& m_type = GetParam();
    TestApplication m_application;
    TestKeyboard m_keyboard;
    TestClock m_clock;
    TestDevices m_devices;
    ContractPayloads m_payloads;
    int m_nAnswer = -1; ///< of the last evaluation
    NodeScene m_scene{m_host, m_type.nTypeByte};
    VEKParamGroupList& m_lstInput = m_scene.m_pNode->m_lstParamGroup;
    VEKParamGroupList& m_lstOutput = m_scene.m_graphNode.m_lstOutputGroup;
};

INSTANTIATE_TEST_SUITE_P(Types, NodeContract, testing::ValuesIn(ContractTypes()), TestName<ContractType>);

// ---- A new node ----------------------------------------------------------------------------------------------------

TEST_P(NodeContract, IsFresh) {
    const NodePtr pNode = m_host.CreateNode(m_type.nTypeByte);
    EXPECT_EQ(pNode->m_pOwnerClip, nullptr);
    EXPECT_EQ(pNode->m_hEventWnd, nullptr);
    EXPECT_EQ(pNode->m_nEventMsg, 0u);
    EXPECT_EQ(pNode->m_hNotifyWnd, nullptr);
    EXPECT_EQ(pNode->m_nNotifyMsg, 0u);
}

TEST_P(NodeContract, OutputsAreMadeOnce) {
    Act();
    const auto groups = Items(m_lstOutput);
    const std::string text = TextOf(m_lstOutput);
    m_scene.m_pNode->GetNodeOutput(&m_scene.m_graphNode);
    EXPECT_EQ(Items(m_lstOutput), groups);
    EXPECT_EQ(TextOf(m_lstOutput), text);
}

TEST_P(NodeContract, OutputsAreNotMadeBesideAForeignGroup) {
    SGraphNode graphNode;
    auto* pForeign = new VEKParamGroup;
    graphNode.m_lstOutputGroup.AddTail(pForeign);
    m_scene.m_pNode->GetNodeOutput(&graphNode);
    EXPECT_EQ(Items(graphNode.m_lstOutputGroup), std::vector<VEKParamGroup*>{pForeign});
    EXPECT_EQ(pForeign->m_lstParam.GetCount(), m_type.nAddedToForeignOutputs);
}

TEST_P(NodeContract, EveryGraphNodeGetsOutputsOfItsOwn) {
    const std::string text = TextOf(m_lstOutput);
    Act();
    SGraphNode other; // what the first one's hold doesn't go on to the others
    m_scene.m_pNode->GetNodeOutput(&other);
    EXPECT_EQ(TextOf(other.m_lstOutputGroup), text);
    for (VEKParamGroup* pGroup : Items(other.m_lstOutputGroup)) {
        EXPECT_EQ(m_lstOutput.Find(pGroup), nullptr);
    }
}

TEST_P(NodeContract, ExtraWordsOfItsPinsAreClearedFirst) {
    if (m_type.pMakeOutputsOld != nullptr) {
        m_type.pMakeOutputsOld(m_scene);
    }
    const CarelessHost host;
    m_scene.m_pNode->GetNodeOutput(&m_scene.m_graphNode);
    EXPECT_EQ(host.m_extraWords.empty(), m_type.pMakeOutputsOld == nullptr);
    SGraphNode graphNode;
    m_scene.m_pNode->GetNodeOutput(&graphNode);
    EXPECT_EQ(host.m_extraWords.empty(), graphNode.m_lstOutputGroup.IsEmpty());
    EXPECT_EQ(host.m_extraWords, std::vector<long long>(host.m_extraWords.size(), 0));
}

TEST_P(NodeContract, ANewNodeNeedsNoUpgrade) {
    const std::string inputs = TextOf(m_lstInput);
    const std::string outputs = TextOf(m_lstOutput);
    P_ExtDevIOProcess& node = *m_scene.m_pNode;
    node.Init();
    node.InitParam();
    node.DoParamInit();
    node.ApplyFromParam();
    node.ApplyToParam();
    node.GetNodeOutput(&m_scene.m_graphNode);
    node.GetNodeOutput(nullptr); // nobody's outputs
    EXPECT_EQ(TextOf(m_lstInput), inputs);
    EXPECT_EQ(TextOf(m_lstOutput), outputs);
}

TEST_P(NodeContract, InitParamMakesAnyVersionTheNewestOrKeepsIt) {
    VEKParam* const pVersion = FindParam(m_lstInput, MakeParamGuid(VERSION));
    if (pVersion == nullptr) {
        return;
    }
    const int nNewest = pVersion->m_nValue;
    m_lstInput.AddHead(new VEKParamGroup); // it's found in any group
    for (const int nVersion : {nNewest - 1, nNewest + 1, 0, -1}) {
        pVersion->m_nValue = nVersion;
        m_scene.m_pNode->InitParam();
        EXPECT_EQ(pVersion->m_nValue, m_type.bUpgrades ? nNewest : nVersion) << nVersion;
    }
    m_scene.RemoveInput(VERSION);
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(FindParam(m_lstInput, MakeParamGuid(VERSION)), nullptr) << "none is added";
}

TEST_P(NodeContract, AnEmptyListOfChoicesIsFilledAndAnotherKept) {
    m_lstInput.AddHead(new VEKParamGroup); // it's found in any group
    const std::string asMade = TextOf(m_lstInput);
    std::vector<CStringArray*> lists;
    const auto groups = CellsOf(m_lstInput);
    for (const auto& param : groups.back()["params"]) {
        CStringArray& arChoice = m_scene.Input(param["id"]).m_arChoice;
        if (arChoice.GetSize() != 0) {
            lists.push_back(&arChoice);
            arChoice.RemoveAll();
        }
    }
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(TextOf(m_lstInput), asMade);
    for (CStringArray* pChoices : lists) {
        pChoices->RemoveAll();
        pChoices->Add(L"own");
        m_scene.m_pNode->InitParam();
        EXPECT_EQ(pChoices->GetSize(), 1);
    }
}

TEST_P(NodeContract, WithoutAnyParametersNoneIsMade) {
    m_scene.m_pNode->Empty();
    EXPECT_EQ(RaisesInvalidArgument([this] { m_scene.m_pNode->InitParam(); }), m_type.bNeedsGroups);
    EXPECT_TRUE(m_lstInput.IsEmpty());
}

TEST_P(NodeContract, AsksForEditsOfItsPanelInputOnly) {
    for (const auto& group : CellsOf(m_lstInput)) {
        for (const auto& param : group["params"]) {
            const GUID guid = MakeParamGuid(param["id"]);
            const unsigned nId = guid.Data1;
            const bool bAsks = nId == m_type.nPanelInput;
            EXPECT_EQ(m_scene.m_pNode->NeedUpdateSingleParam(guid), bAsks ? TRUE : FALSE) << param;
            EXPECT_EQ(m_scene.m_pNode->UpdateSingleParamValue(guid), 0) << param << ", not evaluated yet";
            for (const GUID& other : {GUID{nId, 1, 0, {}}, GUID{nId, 0, 1, {}}, GUID{nId, 0, 0, {1}},
                                      GUID{nId, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}}}) {
                EXPECT_FALSE(m_scene.m_pNode->NeedUpdateSingleParam(other));
            }
        }
    }
}

TEST_P(NodeContract, HasTheControlLayoutOfItsType) {
    P_ExtDevIOProcess& node = *m_scene.m_pNode;
    const bool bLayout = m_type.pszLayoutFile != nullptr;
    EXPECT_EQ(node.GetXmlReader() != nullptr, bLayout);
    EXPECT_EQ(node.GetXmlLoadStatePtr() != nullptr, bLayout);
    EXPECT_EQ(node.GetNodeParamInfoGrpAr() != nullptr, bLayout);
    EXPECT_EQ(node.ShouldReCalHeight(), FALSE);
    EXPECT_EQ(Utf8(node.GetCtrlPosXmlPath()),
              bLayout ? m_host.AppFolder().string() + "\\Plugins\\NodePlugin\\IOProcess\\" + m_type.pszLayoutFile : "");
}

// ---- A node at work ------------------------------------------------------------------------------------------------

TEST_P(NodeContract, Acts) {
    EXPECT_EQ(Act(), m_type.acts);
    EXPECT_EQ(m_nAnswer, 1);
}

TEST_P(NodeContract, EvaluationWithoutGraphNodeDoesNothing) {
    Trigger(m_scene);
    m_keyboard.Hold('A');
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    EXPECT_EQ(See(m_scene), Seen{});
    m_keyboard.Release('A');
    EXPECT_EQ(Act(), m_type.acts);
}

TEST_P(NodeContract, WithoutClipItTakesNoEvents) {
    m_scene.Evaluate();
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    ExpectIgnoringEverything();
    EXPECT_EQ(SendNullRecord(), m_type.nAnswerToOtherEvents);
    EXPECT_EQ(Act(), m_type.bEvaluatesWithoutClip && m_type.pEvents == nullptr ? m_type.acts : Seen{});
    EXPECT_EQ(m_nAnswer, m_type.bEvaluatesWithoutClip ? 1 : 0);
    m_scene.m_pNode->m_pOwnerClip = &m_scene.m_clip;
    EXPECT_EQ(Act(), m_type.acts) << "nothing was left behind";
}

TEST_P(NodeContract, IgnoresOtherDevices) {
    m_scene.Evaluate();
    std::vector<ContractEvent> events = Events();
    events.push_back({2002, &m_payloads.key});
    events.push_back({3005, &m_payloads.stroke[0]});
    events.push_back({0, nullptr});
    for (const int nDevice : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 256, 257, 258, 259, 260, 261, 262, INT_MAX}) {
        if (std::ranges::find(m_type.devices, nDevice) == m_type.devices.end()) {
            for (const ContractEvent& event : events) {
                EXPECT_EQ(m_scene.Send(nDevice, event.nEvent, event.pPayload), m_type.nAnswerToOtherEvents)
                    << nDevice << '/' << event.nEvent;
            }
        }
    }
    EXPECT_EQ(See(m_scene), Seen{});
    EXPECT_EQ(Act(), m_type.acts);
}

TEST_P(NodeContract, AMissingRecordIsLoggedByATypeThatTakesEvents) {
    m_scene.Evaluate();
    EXPECT_EQ(SendNullRecord(), m_type.nAnswerToOtherEvents);
    EXPECT_EQ(See(m_scene),
              m_type.pszNullRecord != nullptr ? Seen{std::string("error ") + m_type.pszNullRecord} : Seen{});
    EXPECT_EQ(Act(), m_type.acts);
}

TEST_P(NodeContract, NamesInTheLogAreThoseOfTheMoment) {
    m_scene.Evaluate();
    m_scene.m_clip.m_strName = m_payloads.remote.m_strClipName = L"剪辑%s";
    m_scene.m_graphNode.m_strName = L"";
    m_scene.m_pNode->m_strName = L"节点%d";
    m_scene.m_pNode->m_strSecondName = L"not printed";
    Seen expected = m_type.acts;
    for (std::string& line : expected) {
        for (const auto& [before, now] : {std::pair("Graph.Node", ".节点%d"), std::pair("[Clip", "[剪辑%s")}) {
            if (const size_t nAt = line.find(before); nAt != std::string::npos) {
                line.replace(nAt, std::string_view(before).size(), now);
            }
        }
    }
    EXPECT_EQ(Act(), expected);
}

TEST_P(NodeContract, NodesKeepTheirStatesApart) {
    NodeScene other(m_host, m_type.nTypeByte);
    m_scene.Evaluate();
    other.Evaluate();
    EXPECT_EQ(Act(), m_type.acts);
    other.Evaluate();
    EXPECT_EQ(See(other), Seen{});
    EXPECT_EQ(Act(other), m_type.acts);
}

TEST_P(NodeContract, EachMissingPinIsSkipped) {
    for (const auto& group : CellsOf(m_lstOutput)) {
        for (const auto& pin : group["params"]) {
            NodeScene scene(m_host, m_type.nTypeByte);
            scene.RemoveOutput(pin["id"]);
            Seen expected = m_type.acts;
            std::erase_if(expected, [&pin](const std::string& line) {
                return line.starts_with(pin["name"].get<std::string>() + " is ");
            });
            EXPECT_EQ(Act(scene), expected) << pin;
            const bool bMissed = m_type.nTypeByte == TYPE_KEYBOARD && pin["name"] == "KeyText";
            EXPECT_EQ(m_nAnswer, bMissed ? 0 : 1) << pin;
        }
    }
}

TEST_P(NodeContract, NoPinIsNeededNorMade) {
    for (const auto& group : CellsOf(m_lstOutput)) {
        for (const auto& pin : group["params"]) {
            m_scene.RemoveOutput(pin["id"]);
        }
    }
    while (!m_lstOutput.IsEmpty()) {
        delete m_lstOutput.RemoveHead();
    }
    Seen expected = m_type.acts;
    std::erase_if(expected, [](const std::string& line) { return line.find(" is ") != line.npos; });
    EXPECT_EQ(Act(), expected);
    EXPECT_TRUE(m_lstOutput.IsEmpty());
}

TEST_P(NodeContract, WithoutEventWindowOrMessageOnlyItsEventsAreMissing) {
    Seen expected = m_type.acts;
    std::erase_if(expected, [](const std::string& line) { return line.starts_with("fired "); });
    for (const bool bWindow : {false, true}) {
        NodeScene scene(m_host, m_type.nTypeByte);
        P_ExtDevIOProcess& node = *scene.m_pNode;
        if (bWindow) {
            node.m_nEventMsg = 0;
        } else {
            node.m_hEventWnd = nullptr;
        }
        if (expected != m_type.acts) {
            node.m_hNotifyWnd = m_host.Window(); // not for events
            node.m_nNotifyMsg = ModuleHost::EVENT_MESSAGE;
        }
        EXPECT_EQ(Act(scene), expected) << bWindow;
    }
}

TEST_P(NodeContract, ActingAgainAndAgainKeepsTheHeapAsItIs) {
    m_host.KeepNothing();
    const auto HeapAfter = [this](int nTimes) {
        for (int i = 0; i < nTimes; ++i) {
            SendEvents(m_scene);
            m_scene.Evaluate();
            SeeEvents();
        }
        return HeapBytesInUse();
    };
    Trigger(m_scene);
    if (m_type.nTypeByte == TYPE_TEXT_FIELD) {
        m_scene.Input(202).m_strValue = L"Backspace"; // its text would grow
    }
    m_scene.Evaluate();
    const size_t nBefore = HeapAfter(2);
    EXPECT_EQ(HeapAfter(200), nBefore);
}

/// Each input is read from the graph if that has it, and from the node itself otherwise.
TEST_P(NodeContract, EachNeededInputMustBeThere) {
    for (const unsigned nId : m_type.neededInputs) {
        NodeScene scene(m_host, m_type.nTypeByte);
        Trigger(scene);
        VEKParam& own = scene.Input(nId);
        VEKParam* const pOfTheGraph = own.Clone();
        own.m_guid = MakeParamGuid(9999);
        EXPECT_EQ(ActTriggered(scene), Seen{}) << nId;
        EXPECT_EQ(SendEvents(scene), AllEvents(0)) << nId;
        EXPECT_EQ(m_nAnswer, m_type.pEvents != nullptr ? 1 : 0) << nId;
        scene.AddGraphInput(0, 0, 0);
        scene.m_graphNode.m_lstInputGroup.GetHead()->m_lstParam.AddTail(pOfTheGraph);
        EXPECT_EQ(ActTriggered(scene), m_type.acts) << nId << ", the graph's will do";
        own.m_guid = MakeParamGuid(nId);
        own.m_nValue = own.m_nValue == 0 ? 1 : 0;
        own.m_strValue += L"own";
        EXPECT_EQ(ActTriggered(scene), m_type.acts) << nId << ", the graph's wins";
    }
}

// ---- Types that take events ----------------------------------------------------------------------------------------

class EventTakingNode : public NodeContract {};

INSTANTIATE_TEST_SUITE_P(Types, EventTakingNode,
                         testing::ValuesIn(TypesWith([](const ContractType& type) { return type.pEvents != nullptr; })),
                         TestName<ContractType>);

TEST_P(EventTakingNode, IgnoresEverythingBeforeTheFirstEvaluation) {
    ExpectIgnoringEverything();
    EXPECT_EQ(SendNullRecord(), 0);
    EXPECT_EQ(See(m_scene), Seen{});
    EXPECT_EQ(Act(), m_type.acts) << "nothing was left behind";
}

TEST_P(EventTakingNode, EvaluationWithoutGraphNodeForgetsTheGraphNode) {
    m_scene.Evaluate();
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    ExpectIgnoringEverything();
    EXPECT_EQ(SendNullRecord(), 0);
    EXPECT_EQ(See(m_scene), Seen{});
    EXPECT_EQ(Act(), m_type.acts);
}

TEST_P(EventTakingNode, TakesTheEventsOfAllItsDevices) {
    m_scene.Evaluate();
    for (const int nDevice : m_type.devices) {
        for (const ContractEvent& event : Events()) {
            EXPECT_EQ(m_scene.Send(nDevice, event.nEvent, event.pPayload), 1) << nDevice << '/' << event.nEvent;
        }
    }
}

TEST_P(EventTakingNode, TheEventIdDecidesOrMeansNothing) {
    m_scene.Evaluate();
    SendEvents(m_scene);
    const Seen seen = SeeEvents();
    for (const int nEvent : {-1, 4, 3333, INT_MAX}) {
        for (const ContractEvent& event : Events()) {
            m_scene.Send(m_type.devices[0], nEvent, event.pPayload);
        }
        EXPECT_EQ(SeeEvents(), m_type.bAnyEventId ? seen : Seen{}) << nEvent;
    }
}

TEST_P(EventTakingNode, TextsWithAZeroInsideArriveWhole) {
    if (m_type.nTypeByte == TYPE_DEVICE_JSON_RECEIVE) {
        return; // they aren't JSON
    }
    for (const CString& strText : {CString(L"a\0b", 3), CString(L"a\0c", 3), CString(L"a"), CString(L"\0", 1)}) {
        m_payloads.SetTexts(strText);
        m_scene.Evaluate();
        SendEvents(m_scene);
        m_scene.Evaluate();
        for (const auto& group : CellsOf(m_lstOutput)) {
            for (const auto& pin : group["params"]) {
                if (pin["type"] == PARAM_STRING.m_nType) {
                    EXPECT_EQ(pin.value("string", ""), Utf8(strText)) << pin;
                }
            }
        }
    }
}

/// Each of the events in turn.
TEST_P(EventTakingNode, AnEventThatCannotBeFiredCountsAllTheSame) {
    std::vector<Seen> seen;
    m_scene.Evaluate();
    const auto Send = [this](NodeScene& scene, const ContractEvent& event) {
        scene.Send(m_type.devices[0], event.nEvent, event.pPayload);
        return SeeEvents();
    };
    for (const ContractEvent& event : Events()) {
        seen.push_back(Send(m_scene, event));
    }
    for (size_t nFailing = 0; nFailing < seen.size(); ++nFailing) {
        NodeScene scene(m_host, m_type.nTypeByte);
        scene.Evaluate();
        for (size_t i = 0; i < seen.size(); ++i) {
            if (i == nFailing) {
                const FailingText failing;
                Send(scene, Events()[i]);
            } else {
                EXPECT_EQ(Send(scene, Events()[i]), seen[i]) << nFailing;
            }
        }
        EXPECT_EQ(Act(scene), m_type.acts) << nFailing;
    }
}

/// Notes lines ("l") and events ("e"), which come by either way to the host, in their order.
class OrderOfLinesAndEvents final : public ILogSink {
public:
    explicit OrderOfLinesAndEvents(ModuleHost& host) : m_host(host) { SetLogSink(this); }
    ~OrderOfLinesAndEvents() { SetLogSink(nullptr); }

    OrderOfLinesAndEvents(const OrderOfLinesAndEvents&) = delete;
    OrderOfLinesAndEvents& operator=(const OrderOfLinesAndEvents&) = delete;

    void OnLogLine(const SLogLine& /*line*/) override {
        NoteEvents();
        m_order += 'l';
    }

    std::string Take() {
        NoteEvents();
        return std::exchange(m_order, {});
    }

private:
    void NoteEvents() { m_order.append(m_host.TakeEvents().size() + m_host.TakeReportedEvents().size(), 'e'); }

    ModuleHost& m_host;
    std::string m_order;
};

TEST_P(EventTakingNode, AnEventComesBehindItsLogLine) {
    OrderOfLinesAndEvents order(m_host);
    m_scene.Evaluate();
    SendEvents(m_scene);
    std::string expected;
    for (const std::string& act : m_type.acts) {
        expected += act.starts_with("log ") ? "le" : "";
    }
    if (!expected.empty()) { // else it writes no line
        EXPECT_EQ(order.Take(), expected);
    }
}

// ---- Types that a trigger makes act ---------------------------------------------------------------------------------

class TriggeredNode : public NodeContract {};

INSTANTIATE_TEST_SUITE_P(Types, TriggeredNode,
                         testing::ValuesIn(TypesWith([](const ContractType& type) { return type.nTrigger != 0; })),
                         TestName<ContractType>);

TEST_P(TriggeredNode, LooksForTheTriggerOnTheGraphNodeAlone) {
    Trigger(m_scene);
    m_scene.Input(m_type.nTrigger).m_nValue = 1;
    VEKParam& trigger = *FindParam(m_scene.m_graphNode.m_lstInputGroup, MakeParamGuid(m_type.nTrigger));
    trigger.m_nValue = 0;
    EXPECT_EQ(ActTriggered(m_scene), Seen{});
    trigger.m_guid = MakeParamGuid(9999);
    EXPECT_EQ(ActTriggered(m_scene), Seen{});
    EXPECT_EQ(m_nAnswer, m_type.nTypeByte == TYPE_STRING_DATA_SEND ? 0 : 1);
}

// ---- Types with a switch "Enable" ----------------------------------------------------------------------------------

class SwitchedNode : public NodeContract {
protected:
    VEKParam& m_enable = m_scene.Input(ENABLE);
};

INSTANTIATE_TEST_SUITE_P(Types, SwitchedNode,
                         testing::ValuesIn(TypesWith([](const ContractType& type) { return type.bSwitched; })),
                         TestName<ContractType>);

TEST_P(SwitchedNode, AnyValueButZeroEnables) {
    for (const int nValue : {1, 2, -1, 256, INT_MIN}) {
        NodeScene scene(m_host, m_type.nTypeByte);
        scene.Input(ENABLE).m_nValue = nValue;
        EXPECT_EQ(Act(scene), m_type.acts) << nValue;
        EXPECT_EQ(m_nAnswer, 1) << nValue;
    }
}

TEST_P(SwitchedNode, DoesNothingWhileDisabled) {
    m_enable.m_nValue = 0;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    ExpectIgnoringEverything();
    EXPECT_EQ(Act(), Seen{});
    EXPECT_EQ(m_nAnswer, 0);
    m_enable.m_nValue = 1;
    EXPECT_EQ(Act(), m_type.acts) << "nothing was left behind";
}

TEST_P(SwitchedNode, ADisabledEvaluationLeavesTheOutputs) {
    m_scene.Evaluate();
    SendEvents(m_scene);
    const Seen outputs = SeeOutputs(m_scene);
    m_enable.m_nValue = 0;
    m_scene.Evaluate();
    EXPECT_EQ(SeeOutputs(m_scene), outputs);
    m_enable.m_nValue = 1;
    m_keyboard.Hold('A');
    if (m_type.pEvents != nullptr) {
        m_scene.Evaluate();
        EXPECT_EQ(See(m_scene), m_type.acts) << "and the node keeps what it knew";
    }
}

TEST_P(SwitchedNode, AMissingRecordIsLoggedWhileDisabledToo) {
    m_enable.m_nValue = 0;
    m_scene.Evaluate();
    EXPECT_EQ(SendNullRecord(), 0);
    const bool bLogged = m_type.pszNullRecord != nullptr && m_type.bNullRecordWhileDisabled;
    EXPECT_EQ(See(m_scene), bLogged ? Seen{std::string("error ") + m_type.pszNullRecord} : Seen{});
}

TEST_P(SwitchedNode, EnableOfTheGraphWinsOverTheNodesOwn) {
    VEKParam& graphEnable = m_scene.AddGraphInput(ENABLE, 5, 5);
    EXPECT_EQ(Act(), Seen{});
    EXPECT_EQ(m_nAnswer, 0);
    graphEnable.m_nValue = 1;
    m_enable.m_nValue = 0;
    EXPECT_EQ(Act(), m_type.acts);
    EXPECT_EQ(m_nAnswer, 1);
}

TEST_P(SwitchedNode, AMissingEnableLeavesTheNodeAsItWas) {
    m_scene.Evaluate();
    SendEvents(m_scene);
    SeeEvents();
    const Seen outputs = SeeOutputs(m_scene);
    m_enable.m_guid = MakeParamGuid(9999);
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(See(m_scene), outputs);
    if (m_type.pEvents != nullptr) {
        EXPECT_EQ(SendEvents(m_scene), AllEvents(1)) << "still enabled";
        EXPECT_NE(SeeEvents(), Seen{});
    } else {
        EXPECT_EQ(Act(), Seen{});
    }
}

TEST_P(SwitchedNode, AMissingEnableDoesNotEnableANewNode) {
    m_enable.m_guid = MakeParamGuid(9999);
    EXPECT_EQ(Act(), Seen{});
    EXPECT_EQ(m_nAnswer, 0);
    EXPECT_EQ(SendEvents(m_scene), AllEvents(0));
}

TEST_P(SwitchedNode, SwitchingTakesEffectAtTheNextEvaluation) {
    m_scene.Evaluate();
    m_enable.m_nValue = 0;
    EXPECT_EQ(SendEvents(m_scene), AllEvents(1));
    m_scene.Evaluate();
    m_enable.m_nValue = 1;
    EXPECT_EQ(SendEvents(m_scene), AllEvents(0));
    m_scene.Evaluate();
    EXPECT_EQ(SendEvents(m_scene), AllEvents(1));
}

TEST_P(SwitchedNode, NodesKeepTheirSwitchesApart) {
    NodeScene other(m_host, m_type.nTypeByte);
    other.Input(ENABLE).m_nValue = 0;
    m_scene.Evaluate();
    other.Evaluate();
    EXPECT_EQ(Act(), m_type.acts);
    EXPECT_EQ(Act(other), Seen{});
}

} // namespace
