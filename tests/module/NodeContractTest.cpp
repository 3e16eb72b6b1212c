// What every node type keeps to, and the table of where they differ.
#include <algorithm>
#include <climits>
#include <iterator>

#include "HostCalls.h"
#include "ModuleHost.h"
#include "ParamText.h"
#include "SocketCalls.h"
#include "TestDevices.h"
#include "TestMachine.h"

namespace {

constexpr unsigned ENABLE = 2;

/// One of each payload, as the type that takes it acts on it.
struct Payloads {
    Payloads() {
        key.m_strText = L"a";
        pressed.m_bTriggerPressed = 1;
        for (SVRPluginData* pSample : {&pressed, &released}) {
            pSample->m_fPose[12] = 1.5f;
            pSample->m_fHitPosition[2] = 2.5f;
        }
        remote.m_strClipName = L"Clip";
        remote.m_strKeyValue = L"value";
        broadcast.m_strName = L"score";
        broadcast.m_strData = L"12|7";
        deviceText.m_nDeviceId = 1;
        deviceText.m_strText = L"{}";
        objectText.m_strText = L"any";
    }

    SKeyEventData key;
    SQORMouseData pointer{1, 0.25f, 0.75f, CPoint(10, 20), 0};
    SVRPluginData pressed;
    SVRPluginData released;
    CQORPanelRemoteCtrlData remote;
    SBroadcastItem broadcast;
    SDeviceTextData deviceText;
    SObjectTextData objectText;
};

struct Event {
    int nEvent;
    void* pPayload;
};

enum class Enabling {
    None,
    EachEvaluation, ///< a disabled or missing "Enable" ends the evaluation
    Remembered,     ///< moreover, events follow what "Enable" was at the last evaluation
};

struct Type {
    unsigned char nTypeByte;
    const char* pszName;
    const char* pszNameKey;
    std::vector<std::string> acts; ///< what is seen of an enabled node that is given its events or its triggers

    std::vector<int> devices = {};                      ///< whose events it takes
    std::vector<Event> (*pEvents)(Payloads&) = nullptr; ///< the events that make it act
    void (*pTrigger)(NodeScene&) = nullptr;             ///< the inputs that make it act
    const char* pszNullRecord = nullptr;                ///< the line that a missing record is logged with
    bool bNullRecordWhileDisabled = true;               ///< logged by a disabled node, too
    int nAnswerToOtherEvents = 0;                       ///< and to missing records
    Enabling enabling = Enabling::None;
    bool bEvaluatesWithoutClip = false;
    const char* pszLayoutFile = nullptr;
    unsigned nPanelInput = 0;       ///< the input whose edit the node wants to hear of
    int nAddedToForeignOutputs = 0; ///< pins that the node adds to a group that isn't its own

    friend std::ostream& operator<<(std::ostream& out, const Type& type) { return out << type.pszName; }
};

const char* const NULL_RECORD = "[Clip.Graph.Node]DevIOEventOccurred函数数据错误";

const Type TYPES[] = {
    {.nTypeByte = TYPE_KEYBOARD,
     .pszName = "Keyboard",
     .pszNameKey = "IO_PROCESS_KEYBOARD",
     .acts = {"log [Clip.Graph.Node]触发输出事件[按下]键盘信息为[a]",
              "log [Clip.Graph.Node]触发输出事件[抬起]键盘信息为[a]", "fired 152", "fired 153", "KeyText is \"a\""},
     .devices = {0},
     .pEvents = [](Payloads& payloads) -> std::vector<Event> {
         return {{2002, &payloads.key}, {2003, nullptr}};
     },
     .pszNullRecord = "[Clip.Graph.Node]DevIOEventOccurred",
     .enabling = Enabling::Remembered,
     .bEvaluatesWithoutClip = true},
    {.nTypeByte = TYPE_KEY_CHECK,
     .pszName = "KeyCheck",
     .pszNameKey = "IO_PROCESS_KEY_CHECK",
     .acts = {"fired 1152", "fired 1154"},
     .pTrigger = [](NodeScene& scene) { scene.Input(1102).m_nValue = 'A'; },
     .enabling = Enabling::EachEvaluation,
     .bEvaluatesWithoutClip = true},
    {.nTypeByte = TYPE_TEXT_FIELD,
     .pszName = "TextField",
     .pszNameKey = "IO_PROCESS_TEXTFIELDINPUT",
     .acts = {"log [Clip]触发输入事件[输入事件]", "log [Clip]触发输入事件[输入事件]", "HasText is 1", "Text is \"xx\""},
     .pTrigger =
         [](NodeScene& scene) {
             scene.Input(202).m_strValue = L"x";
             scene.AddGraphInput(203, 26, 7).m_nValue = 1;
         },
     .enabling = Enabling::EachEvaluation},
    {.nTypeByte = TYPE_MOUSE,
     .pszName = "Mouse",
     .pszNameKey = "IO_PROCESS_MOUSE",
     .acts = {"log [Clip.Graph.Node]触发输出事件[左键按下]", "fired 358", "ButtonL is 1", "PixelX is 10",
              "PixelY is 20", "RelativeX is 0.25", "RelativeY is 0.75"},
     .devices = {1},
     .pEvents = [](Payloads& payloads) -> std::vector<Event> {
         return {{3013, &payloads.pointer}, {3005, &payloads.pointer}};
     },
     .pszNullRecord = NULL_RECORD,
     .enabling = Enabling::Remembered,
     .bEvaluatesWithoutClip = true,
     .pszLayoutFile = "CVEKIOMouse.XML"},
    {.nTypeByte = TYPE_NET_PARAMETER_SEND,
     .pszName = "NetParameterSend",
     .pszNameKey = "IO_PROCESS_NETSEND",
     .acts = {"log [Clip.Graph.Node]触发事件", "log [Clip.Graph.Node]触发事件", "sent to 5", "sent to 5"},
     .pTrigger =
         [](NodeScene& scene) {
             scene.Input(402).m_strValue = L"5";
             scene.AddGraphInput(410, 26, 7).m_nValue = 1;
         },
     .nAnswerToOtherEvents = 1,
     .pszLayoutFile = "CVEKIONetParameterSend.XML"},
    {.nTypeByte = TYPE_NET_PARAMETER_RECEIVE,
     .pszName = "NetParameterReceive",
     .pszNameKey = "IO_PROCESS_NETRECEIVE",
     .acts = {"log [Clip.Graph.Node 触发[网络触发]事件]", "reported 554", "KeyValue is \"value\""},
     .devices = {2, 4},
     .pEvents = [](Payloads& payloads) -> std::vector<Event> {
         return {{0, static_cast<CQORIOAttachedData*>(&payloads.remote)}};
     },
     .pszNullRecord = NULL_RECORD},
    {.nTypeByte = TYPE_BROADCAST_SEND,
     .pszName = "BroadcastSend",
     .pszNameKey = "IO_PROCESS_BROADCAST",
     .acts = {"datagram", "datagram"},
     .pTrigger =
         [](NodeScene& scene) {
             scene.Input(605).m_strValue = L"12|7";
             scene.AddGraphInput(606, 26, 7).m_nValue = 1;
         }},
    {.nTypeByte = TYPE_BROADCAST_RECEIVE,
     .pszName = "BroadcastReceive",
     .pszNameKey = "IO_PROCESS_BROADCASTREV",
     .acts = {"Name is \"score\"", "Data is \"12|7\""},
     .devices = {2},
     .pEvents = [](Payloads& payloads) -> std::vector<Event> {
         return {{1, &payloads.broadcast}};
     },
     .pszNullRecord = NULL_RECORD},
    {.nTypeByte = TYPE_GESTURE,
     .pszName = "Gesture",
     .pszNameKey = "TOUCH_CONTROL_TOUCH_GESTURE",
     .acts = {"log [Clip.Graph.Node]触发输出事件[单击]", "fired 758"},
     .devices = {1},
     .pEvents = [](Payloads& payloads) -> std::vector<Event> {
         return {{3005, &payloads.pointer}, {3013, &payloads.pointer}, {3006, &payloads.pointer}};
     },
     .pszNullRecord = NULL_RECORD,
     .enabling = Enabling::Remembered,
     .bEvaluatesWithoutClip = true,
     .pszLayoutFile = "CVEKIOGesture.XML",
     .nAddedToForeignOutputs = 1},
    {.nTypeByte = TYPE_VR_HANDLE,
     .pszName = "VRHandle",
     .pszNameKey = "IO_PROCESS_VRHANLDE",
     .acts = {"fired 862", "fired 863", "fired 864", "PosX is 1.5", "HitPosZ is 2.5"},
     .devices = {3},
     .pEvents = [](Payloads& payloads) -> std::vector<Event> {
         return {{0, &payloads.pressed}, {1, &payloads.released}};
     },
     .pszNullRecord = NULL_RECORD,
     .bNullRecordWhileDisabled = false,
     .enabling = Enabling::Remembered,
     .bEvaluatesWithoutClip = true,
     .pszLayoutFile = "CVEKIOVRHandle.XML"},
    {.nTypeByte = TYPE_OBJECT_JSON_RECEIVE,
     .pszName = "ObjectJsonReceive",
     .pszNameKey = "IO_PROCESS_OBJ_JSON_RECEIVE",
     .acts = {"log [Clip.Graph.Node 触发[地图反馈]事件]", "reported 1253", "ReceiveData is \"any\""},
     .devices = {6},
     .pEvents = [](Payloads& payloads) -> std::vector<Event> {
         return {{0, &payloads.objectText}};
     },
     .pszNullRecord = NULL_RECORD},
    {.nTypeByte = TYPE_DEVICE_JSON_RECEIVE,
     .pszName = "DeviceJsonReceive",
     .pszNameKey = "IO_PROCESS_DEV_JSON_RECEIVE",
     .acts = {"log [Clip.Graph.Node 触发[接收设备json]事件]", "reported 1453", "ReceiveData is \"{}\""},
     .devices = {5},
     .pEvents = [](Payloads& payloads) -> std::vector<Event> {
         return {{0, &payloads.deviceText}};
     },
     .pszNullRecord = "[Clip.Graph.Node]DevIOEventOccurred: pIOData == NULL",
     .pszLayoutFile = "CVEKIODevJsonReceive.XML"},
    {.nTypeByte = TYPE_STRING_DATA_SEND,
     .pszName = "StringDataSend",
     .pszNameKey = "IO_PROCESS_STRING_SEND",
     .acts = {"log [Clip.Graph.Node]触发发送事件", "log [Clip.Graph.Node]触发发送事件", "sent to 5", "sent to 5"},
     .pTrigger =
         [](NodeScene& scene) {
             scene.Input(1503).m_nValue = 5;
             scene.Input(1505).m_strValue = L"GO";
             scene.AddGraphInput(1507, 26, 7).m_nValue = 1;
         },
     .nAnswerToOtherEvents = 1,
     .nPanelInput = 1502},
};

using Seen = std::vector<std::string>;

class NodeContract : public ModuleTest, public testing::WithParamInterface<Type> {
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
        if (m_type.pEvents != nullptr) {
            scene.Evaluate();
            SendEvents(scene);
        }
        if (m_type.pTrigger != nullptr) {
            m_type.pTrigger(scene);
        }
        m_keyboard.Hold('A');
        scene.Evaluate();
        m_keyboard.Release('A');
        m_nAnswer = scene.Evaluate();
        return See(scene);
    }

    std::vector<Event> Events() {
        return m_type.pEvents != nullptr ? m_type.pEvents(m_payloads) : std::vector<Event>{};
    }

    /// Its events from a device of its own; the answers.
    std::vector<int> SendEvents(NodeScene& scene) {
        std::vector<int> answers;
        for (const Event& event : Events()) {
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
            for (const Event& event : Events()) {
                for (const int nEvent : {event.nEvent, 0, 1, 2001, 2002, 2003, 3002, 3005, 3006, 3013, 3020, -1}) {
                    EXPECT_EQ(m_scene.Send(nDevice, nEvent, event.pPayload), 0) << nDevice << '/' << nEvent;
                    EXPECT_EQ(m_scene.Send(nDevice, nEvent, nullptr), 0) << nDevice << '/' << nEvent;
                }
            }
        }
        EXPECT_EQ(See(m_scene), before);
    }

    const Type& m_type = GetParam();
    TestApplication m_application;
    TestKeyboard m_keyboard;
    TestClock m_clock;
    TestDevices m_devices;
    Payloads m_payloads;
    int m_nAnswer = -1; ///< of the last evaluation
    NodeScene m_scene{m_host, m_type.nTypeByte};
    VEKParamGroupList& m_lstInput = m_scene.m_pNode->m_lstParamGroup;
    VEKParamGroupList& m_lstOutput = m_scene.m_graphNode.m_lstOutputGroup;
};

INSTANTIATE_TEST_SUITE_P(Types, NodeContract, testing::ValuesIn(TYPES), TestName<Type>);

// ---- A new node ----------------------------------------------------------------------------------------------------

TEST_P(NodeContract, IsFresh) {
    ExpectFreshNode(*m_host.CreateNode(m_type.nTypeByte), m_type.nTypeByte, m_type.pszNameKey);
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

TEST_P(NodeContract, OutputsOfNoGraphNodeAreNotMade) {
    const std::string inputs = TextOf(m_lstInput);
    const std::string outputs = TextOf(m_lstOutput);
    m_scene.m_pNode->GetNodeOutput(nullptr);
    EXPECT_EQ(TextOf(m_lstInput), inputs);
    EXPECT_EQ(TextOf(m_lstOutput), outputs);
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
    const CarelessHost host;
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
    EXPECT_EQ(TextOf(m_lstInput), inputs);
    EXPECT_EQ(TextOf(m_lstOutput), outputs);
}

TEST_P(NodeContract, AsksForEditsOfItsPanelInputOnly) {
    for (const auto& group : CellsOf(m_lstInput)) {
        for (const auto& param : group["params"]) {
            const GUID guid = MakeParamGuid(param["id"]);
            const bool bAsks = guid.Data1 == m_type.nPanelInput;
            EXPECT_EQ(m_scene.m_pNode->NeedUpdateSingleParam(guid), bAsks ? TRUE : FALSE) << param;
            EXPECT_EQ(m_scene.m_pNode->UpdateSingleParamValue(guid), 0) << param << ", not evaluated yet";
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
    const bool bTriggered = m_type.pTrigger != nullptr;
    if (bTriggered) {
        m_type.pTrigger(m_scene);
    }
    m_keyboard.Hold('A');
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    EXPECT_EQ(See(m_scene), Seen{});
    m_keyboard.Release('A');
    EXPECT_EQ(Act(), m_type.acts);
}

TEST_P(NodeContract, WithoutClipOnlyEvaluationsAreHandledIfAny) {
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
    std::vector<Event> events = Events();
    events.push_back({2002, &m_payloads.key});
    events.push_back({3005, &m_payloads.pointer});
    events.push_back({0, nullptr});
    for (const int nDevice : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 256, 257, 258, 259, 260, 261, 262, INT_MAX}) {
        if (std::ranges::find(m_type.devices, nDevice) == m_type.devices.end()) {
            for (const Event& event : events) {
                EXPECT_EQ(m_scene.Send(nDevice, event.nEvent, event.pPayload), m_type.nAnswerToOtherEvents)
                    << nDevice << '/' << event.nEvent;
            }
        }
    }
    EXPECT_EQ(See(m_scene), Seen{});
    EXPECT_EQ(Act(), m_type.acts);
}

TEST_P(NodeContract, AMissingRecordIsLoggedByTypesThatTakeEvents) {
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

// ---- Types that take events ----------------------------------------------------------------------------------------

std::vector<Type> TypesWith(bool (*pHas)(const Type&)) {
    std::vector<Type> types;
    std::ranges::copy_if(TYPES, std::back_inserter(types), pHas);
    return types;
}

class EventTakingNode : public NodeContract {};

INSTANTIATE_TEST_SUITE_P(Types, EventTakingNode,
                         testing::ValuesIn(TypesWith([](const Type& type) { return type.pEvents != nullptr; })),
                         TestName<Type>);

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
        for (const Event& event : Events()) {
            EXPECT_EQ(m_scene.Send(nDevice, event.nEvent, event.pPayload), 1) << nDevice << '/' << event.nEvent;
        }
    }
}

// ---- Types with a switch "Enable" ----------------------------------------------------------------------------------

class SwitchedNode : public NodeContract {
protected:
    VEKParam& m_enable = m_scene.Input(ENABLE);
};

INSTANTIATE_TEST_SUITE_P(Types, SwitchedNode,
                         testing::ValuesIn(TypesWith([](const Type& type) { return type.enabling != Enabling::None; })),
                         TestName<Type>);

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
