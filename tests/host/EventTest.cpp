// event, process, links and triggers.
#include "HostTest.h"

namespace {

class Event : public CHostTest {};
class Graph : public CProbeTest {
protected:
    /// How often the probe found its event input triggered.
    int Seen(const char* pszNode) {
        return AskObject(Json{{"op", "inspect"}, {"node", pszNode}})["outputs"][0]["params"][1]["int"];
    }
};

constexpr char DOWN[] = R"({"op":"event","device":0,"event":2002,"payload":{"is":"key","text":"a"}})";

TEST_F(Event, ReachesAllNodesInTheOrderOfCreation) {
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    EXPECT_EQ(Ask(R"({"op":"process"})"), R"({"ok":true,"results":{"m":1,"k":1}})");
    const OrderedJson reply = Must(DOWN);
    EXPECT_EQ(reply["results"].dump(), R"({"m":0,"k":1})");
    EXPECT_EQ(reply["posted"].size(), 1u);
    EXPECT_EQ(reply["posted"][0]["output"], 152);
}

TEST_F(Event, ReachesOneNodeWhenItIsNamed) {
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    Must(R"({"op":"process"})");
    EXPECT_EQ(Ask(R"({"op":"event","node":"m","device":1,"event":3013})"), R"({"ok":true,"results":{"m":1}})");
    EXPECT_EQ(Ask(R"({"op":"event","node":"k","device":1,"event":3013})"), R"({"ok":true,"results":{"k":0}})");
}

TEST_F(Event, WithoutNodesHasNoResults) {
    EXPECT_EQ(Ask(DOWN), R"({"ok":true,"results":{}})");
    EXPECT_EQ(Ask(R"({"op":"process"})"), R"({"ok":true,"results":{}})");
}

TEST_F(Event, KeyTextArrivesWhole) {
    Must(CREATE_KEYBOARD);
    Must(R"({"op":"process"})");
    Must(R"({"op":"event","device":0,"event":2002,"payload":{"is":"key","text":"中𝄞\u0000z"}})");
    Must(R"({"op":"process"})");
    const OrderedJson outputs = Must(R"({"op":"inspect","node":"k"})")["outputs"];
    EXPECT_EQ(outputs[0]["params"][2]["string"], std::string("中𝄞\0z", 9));
}

TEST_F(Event, NullRecordIsAnsweredAndLogged) {
    Must(CREATE_KEYBOARD);
    Must(R"({"op":"process"})");
    EXPECT_EQ(Ask(R"({"op":"event","record":null})"),
              R"({"ok":true,"results":{"k":0},"log":[{"level":32,"args":[15,567,0,-1],)"
              R"("text":"[Intro.Keyboard 1.IO_PROCESS_KEYBOARD]DevIOEventOccurred"}]})");
}

TEST_F(Event, MissingPayloadIsANullPayload) {
    Must(CREATE_KEYBOARD);
    Must(R"({"op":"process"})");
    EXPECT_EQ(Must(R"({"op":"event","device":0,"event":2002,"payload":null})")["posted"].size(), 1u);
    EXPECT_EQ(Must(R"({"op":"event","device":0,"event":2002})")["posted"].size(), 1u);
}

TEST_F(Event, MalformedRequestsAreRefusedByField) {
    Must(CREATE_MOUSE);
    const struct {
        const char* pszRequest;
        const char* pszError;
    } cases[] = {
        {R"({"op":"event"})", "device: is missing"},
        {R"({"op":"event","device":1})", "event: is missing"},
        {R"({"op":"event","device":"1","event":3005})", "device: must be an integer"},
        {R"({"op":"event","device":1,"event":3005.0})", "event: must be an integer"},
        {R"({"op":"event","device":2147483648,"event":1})", "device: is outside the signed 32-bit range"},
        {R"({"op":"event","device":1,"event":-2147483649})", "event: is outside the signed 32-bit range"},
        {R"({"op":"event","device":1,"event":18446744073709551615})", "event: is outside the signed 32-bit range"},
        {R"({"op":"event","node":"x","device":1,"event":1})", R"(node: there is no node "x")"},
        {R"({"op":"event","node":null,"device":1,"event":1})", "node: must be a string"},
        {R"({"op":"event","record":1})", "record: must be null or missing"},
        {R"({"op":"event","device":1,"event":1,"payload":1})", "payload: must be an object"},
        {R"({"op":"event","device":1,"event":1,"payload":[]})", "payload: must be an object"},
        {R"({"op":"event","device":1,"event":1,"payload":{}})", "payload.is: is missing"},
        {R"({"op":"event","device":1,"event":1,"payload":{"is":"smoke"}})",
         R"(payload.is: there is no payload kind "smoke")"},
        {R"({"op":"event","device":0,"event":1,"payload":{"is":"key"}})", "payload.text: is missing"},
        {R"({"op":"event","device":0,"event":1,"payload":{"is":"key","text":5}})", "payload.text: must be a string"},
    };
    for (const auto& [pszRequest, pszError] : cases) {
        EXPECT_EQ(Refusal(pszRequest), pszError) << pszRequest;
    }
}

TEST_F(Event, PointerPayloadNeedsEachField) {
    Must(CREATE_MOUSE);
    const Json whole = {{"is", "pointer"}, {"rx", 0}, {"ry", 0}, {"x", 0}, {"y", 0}, {"pointer", 0}, {"relative", 0}};
    const auto refusal = [&](const Json& payload) {
        return Refusal(Json{{"op", "event"}, {"device", 1}, {"event", 3013}, {"payload", payload}}.dump());
    };
    for (const char* pszField : {"rx", "ry", "x", "y", "pointer", "relative"}) {
        Json payload = whole;
        payload.erase(pszField);
        EXPECT_EQ(refusal(payload), "payload." + std::string(pszField) + ": is missing");
        payload[pszField] = "0";
        EXPECT_TRUE(refusal(payload).starts_with("payload." + std::string(pszField) + ": must be "));
    }
    Json payload = whole;
    payload["relative"] = 2;
    EXPECT_EQ(refusal(payload), "payload.relative: must be 0 or 1");
    payload = whole;
    payload["rx"] = 1e39;
    EXPECT_EQ(refusal(payload), "payload.rx: is outside the range of a 32-bit float");
}

TEST_F(Event, PayloadThatANodeWouldMisreadIsRefused) {
    Must(CREATE_KEYBOARD);
    Must(R"({"op":"process"})");
    EXPECT_EQ(
        Refusal(
            R"({"op":"event","device":0,"event":2002,"payload":{"is":"pointer","rx":0,"ry":0,"x":0,"y":0,"pointer":0,"relative":0}})"),
        R"(payload.is: the node "k" would read another kind in a record of device 0)");
}

TEST_F(Event, RecordOfAForeignDeviceMayCarryAnyPayload) {
    Must(CREATE_KEYBOARD);
    Must(R"({"op":"process"})");
    EXPECT_EQ(Ask(R"({"op":"event","device":1,"event":2002,"payload":{"is":"key","text":"a"}})"),
              R"({"ok":true,"results":{"k":0}})");
    EXPECT_EQ(Ask(R"({"op":"event","device":-7,"event":2002,"payload":{"is":"key","text":"a"}})"),
              R"({"ok":true,"results":{"k":0}})");
}

TEST_F(Graph, NodeTypesThatTheHostDoesNotKnowGetOnlyTheDevicesOwnPayload) {
    Must(CREATE_PROBE);
    EXPECT_EQ(Ask(DOWN), R"({"ok":true,"results":{"p":2}})");
    EXPECT_EQ(Refusal(R"({"op":"event","device":1,"event":1,"payload":{"is":"key","text":"a"}})"),
              R"(payload.is: the node "p" would read another kind in a record of device 1)");
    EXPECT_EQ(Ask(R"({"op":"event","record":null})"), R"({"ok":true,"results":{"p":-1}})");
}

TEST_F(Graph, ProcessMayHandOverANullGraphNode) {
    Must(CREATE_PROBE);
    EXPECT_EQ(Ask(R"({"op":"process","node":"p","graph":false})"), R"({"ok":true,"results":{"p":0}})");
    EXPECT_EQ(Refusal(R"({"op":"process","graph":1})"), "graph: must be true or false");
    EXPECT_EQ(Refusal(R"({"op":"process","node":"x"})"), R"(node: there is no node "x")");
    EXPECT_EQ(Refusal(R"({"op":"process","node":7})"), "node: must be a string");
}

TEST_F(Graph, AFrameIsOfAllNodes) {
    Must(CREATE_PROBE);
    Must(CREATE_SECOND_PROBE);
    EXPECT_EQ(Must(R"({"op":"process","frame":true})")["results"].dump(), R"({"p":1,"q":1})");
    EXPECT_EQ(Refusal(R"({"op":"process","frame":true,"node":"p"})"),
              "node: doesn't go with frame, which evaluates the whole scene");
    EXPECT_EQ(Refusal(R"({"op":"process","frame":true,"graph":false})"),
              "graph: doesn't go with frame, which evaluates the whole scene");
    EXPECT_EQ(Refusal(R"({"op":"process","frame":1})"), "frame: must be true or false");
    EXPECT_EQ(Must(R"({"op":"process","frame":false,"node":"p"})")["results"].dump(), R"({"p":1})");
}

TEST_F(Graph, TriggerLastsOneEvaluation) {
    Must(CREATE_PROBE);
    EXPECT_EQ(Ask(R"({"op":"trigger","node":"p","param":14})"), R"({"ok":true})");
    EXPECT_EQ(Seen("p"), 0);
    Must(R"({"op":"process"})");
    EXPECT_EQ(Seen("p"), 1);
    Must(R"({"op":"process"})");
    EXPECT_EQ(Seen("p"), 1);
    // The input reads 0 again.
    EXPECT_EQ(Must(R"({"op":"inspect","node":"p"})")["inputs"][0]["params"][4]["int"], 0);
}

TEST_F(Graph, TriggerEndsAlsoWhenTheEvaluationRaises) {
    Must(CREATE_PROBE);
    Must(R"({"op":"set","node":"p","param":10,"int":1})");
    Must(R"({"op":"trigger","node":"p","param":14})");
    Ask(R"({"op":"process"})");
    EXPECT_EQ(Must(R"({"op":"inspect","node":"p"})")["inputs"][0]["params"][4]["int"], 0);
}

TEST_F(Graph, TriggerIsRefusedForOtherParameters) {
    Must(CREATE_PROBE);
    EXPECT_EQ(Refusal(R"({"op":"trigger","node":"p","param":10})"), "param: parameter 10 isn't an event input");
    EXPECT_EQ(Refusal(R"({"op":"trigger","node":"p","param":77})"),
              "param: there is no parameter 77 among the node's graph inputs");
    EXPECT_EQ(Refusal(R"({"op":"trigger","node":"p"})"), "param: is missing");
    EXPECT_EQ(Refusal(R"({"op":"trigger","param":14})"), "node: is missing");
    EXPECT_EQ(Refusal(R"({"op":"trigger","node":"p","param":-1})"), "param: is outside the unsigned 32-bit range");
}

TEST_F(Graph, EventLinkTriggersTheNextEvaluationOnly) {
    Must(CREATE_PROBE);
    Must(CREATE_SECOND_PROBE);
    EXPECT_EQ(Ask(R"({"op":"link","from":"p","output":101,"to":"q","input":14})"), R"({"ok":true})");
    Must(R"({"op":"set","node":"p","param":10,"int":6})");
    Must(R"({"op":"process","node":"p"})");
    EXPECT_EQ(Seen("q"), 0);
    Must(R"({"op":"set","node":"p","param":10,"int":0})");
    Must(R"({"op":"process"})");
    EXPECT_EQ(Seen("q"), 1);
    Must(R"({"op":"process"})");
    EXPECT_EQ(Seen("q"), 1);
}

TEST_F(Graph, EventPostedToTheHostFollowsLinksToo) {
    Must(CREATE_PROBE);
    Must(CREATE_SECOND_PROBE);
    Must(R"({"op":"link","from":"p","output":101,"to":"q","input":14})");
    Must(R"({"op":"set","node":"p","param":10,"int":3})");
    Must(R"({"op":"process"})"); // q comes after p and sees it in the same pass
    EXPECT_EQ(Seen("q"), 1);
}

TEST_F(Graph, EventsOfLaterNodesArriveInTheNextPass) {
    Must(CREATE_PROBE);
    Must(CREATE_SECOND_PROBE);
    Must(R"({"op":"link","from":"q","output":101,"to":"p","input":14})");
    Must(R"({"op":"link","from":"q","output":101,"to":"q","input":14})");
    Must(R"({"op":"set","node":"q","param":10,"int":6})");
    Must(R"({"op":"process"})");
    EXPECT_EQ(Seen("p"), 0);
    EXPECT_EQ(Seen("q"), 0);
    Must(R"({"op":"process"})");
    EXPECT_EQ(Seen("p"), 1);
    EXPECT_EQ(Seen("q"), 1);
}

TEST_F(Graph, ValueLinkCopiesBeforeEachEvaluation) {
    Must(CREATE_PROBE);
    Must(CREATE_SECOND_PROBE);
    Must(R"({"op":"link","from":"p","output":104,"to":"q","input":12})");
    Must(R"({"op":"link","from":"p","output":103,"to":"q","input":11})");
    Must(R"({"op":"set","node":"p","param":12,"string":"hello"})");
    Must(R"({"op":"set","node":"p","param":11,"float":0.75})");
    Must(R"({"op":"process"})");
    const OrderedJson params = Must(R"({"op":"inspect","node":"q"})")["outputs"][0]["params"];
    EXPECT_EQ(params[3]["string"], "hello");
    EXPECT_EQ(params[2]["float"], 0.75);
    Must(R"({"op":"set","node":"q","param":12,"string":"mine"})");
    Must(R"({"op":"process","node":"q"})");
    EXPECT_EQ(Must(R"({"op":"inspect","node":"q"})")["outputs"][0]["params"][3]["string"], "hello");
}

TEST_F(Graph, LinksEndWithTheirNodes) {
    Must(CREATE_PROBE);
    Must(CREATE_SECOND_PROBE);
    Must(R"({"op":"link","from":"p","output":101,"to":"q","input":14})");
    Must(R"({"op":"link","from":"q","output":104,"to":"p","input":12})");
    EXPECT_EQ(Must(R"({"op":"scene"})")["links"].size(), 2u);
    Must(R"({"op":"destroy","node":"q"})");
    EXPECT_EQ(Must(R"({"op":"scene"})")["links"], OrderedJson::array());
    Must(R"({"op":"set","node":"p","param":10,"int":6})");
    Must(R"({"op":"process"})");
}

TEST_F(Graph, TheSameLinkTwiceIsOne) {
    Must(CREATE_PROBE);
    Must(R"({"op":"link","from":"p","output":101,"to":"p","input":14})");
    Must(R"({"op":"link","from":"p","output":101,"to":"p","input":14})");
    EXPECT_EQ(Must(R"({"op":"scene"})")["links"].dump(), R"([{"from":"p","output":101,"to":"p","input":14}])");
    Must(R"({"op":"destroy","node":"p"})");
}

TEST_F(Graph, LinksSurviveDroppedPins) {
    Must(CREATE_PROBE);
    Must(CREATE_SECOND_PROBE);
    Must(R"({"op":"link","from":"p","output":104,"to":"q","input":12})");
    Must(R"({"op":"link","from":"p","output":101,"to":"q","input":14})");
    Must(R"({"op":"drop","node":"p","param":104,"from":["outputs"]})");
    Must(R"({"op":"drop","node":"q","param":14,"from":["inputs"]})");
    Must(R"({"op":"set","node":"p","param":10,"int":6})");
    EXPECT_EQ(Must(R"({"op":"process"})")["results"].dump(), R"({"p":1,"q":1})");
}

TEST_F(Graph, MalformedLinksAreRefusedByField) {
    Must(CREATE_PROBE);
    const struct {
        const char* pszRequest;
        const char* pszError;
    } cases[] = {
        {R"({"op":"link"})", "from: is missing"},
        {R"({"op":"link","from":"x","output":101,"to":"p","input":14})", R"(from: there is no node "x")"},
        {R"({"op":"link","from":"p"})", "output: is missing"},
        {R"({"op":"link","from":"p","output":"101"})", "output: must be an integer"},
        {R"({"op":"link","from":"p","output":14,"to":"p","input":14})",
         "output: there is no parameter 14 among the node's outputs"},
        {R"({"op":"link","from":"p","output":101})", "to: is missing"},
        {R"({"op":"link","from":"p","output":101,"to":"x","input":14})", R"(to: there is no node "x")"},
        {R"({"op":"link","from":"p","output":101,"to":"p"})", "input: is missing"},
        {R"({"op":"link","from":"p","output":101,"to":"p","input":101})",
         "input: there is no parameter 101 among the node's graph inputs"},
    };
    for (const auto& [pszRequest, pszError] : cases) {
        EXPECT_EQ(Refusal(pszRequest), pszError) << pszRequest;
    }
}

} // namespace
