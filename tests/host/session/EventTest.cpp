// event, process, links and triggers.
#include "HostTest.h"

namespace {

class Events : public CHostTest {};

class Graph : public CProbeTest {
protected:
    Graph() {
        Must(CREATE_PROBE);
        Must(CREATE_SECOND_PROBE);
    }
};

TEST_F(Events, ReachAllNodesInTheOrderOfCreationOrTheOneThatIsNamed) {
    Talk(R"(
        process => {"results":{}}
        event device=0 event=2002 => {"results":{}}
    )");
    Must(CREATE_MOUSE);
    Must(CREATE_KEYBOARD);
    EXPECT_EQ(Must("process")["results"].dump(), R"({"m":1,"k":1})");
    EXPECT_EQ(Must(Event(0, 2002, KeyText("a")))["results"].dump(), R"({"m":0,"k":1})");
    Talk(R"(
        event device=0 event=2002 payload={"is":"key","text":"中𝄞\u0000z"} => {"posted":[{"node":"k","output":152}]}
        process
        inspect node=k => {"outputs":{"154":{"string":"中𝄞\u0000z"}}}
        event device=0 event=2002 payload=null => {"posted":[{"output":152}]}
        event device=0 event=2002 => {"posted":[{"output":152}]}
        event node=m device=1 event=3013 => {"results":{"m":1,"k":null}}
        event node=k device=1 event=3013 => {"results":{"k":0}}
        event node=x device=1 event=1 => node: there is no node "x"
        event node=k record=null => {"results":{"k":0},"log":[{"level":32,"args":[15,567,0,-1],"text":"[Intro.Keyboard 1.IO_PROCESS_KEYBOARD]DevIOEventOccurred"}]}
    )");
}

TEST_F(Events, EveryFieldOfASampleArrives) {
    Must(CREATE_MOUSE);
    Must("create node=v type=handle clip=Intro graph=Hand");
    Must("process");
    Must(Event(1, 3013, PointerSample({{"rx", 1}, {"ry", 2}, {"x", 3}, {"y", 4}})));
    EXPECT_EQ(Posted(Must(Event(3, 1, HandSample({{"trigger", 1}, {"pad", -5}})))), (std::vector{862, 865}));
    EXPECT_EQ(Posted(Must(Event(3, 1, HandSample()))), (std::vector{863, 864, 866, 869}));
    EXPECT_EQ(Posted(Must(Event(3, 1, HandSample({{"hand", 1}, {"trigger", 1}})))), std::vector<int>{});
    Must(Event(3, 1, HandSample({{"trigger", 1}, {"pad", 1}})));
    EXPECT_EQ(Posted(Must(Event(3, 1, HandSample({{"padx", 0.2}, {"pady", -0.9}, {"release", 1500}})))),
              (std::vector{863, 866, 871}))
        << "no click after 500";
    Must("process");
    Talk(R"(
        inspect node=m => {"outputs":{"370":{"int":3},"371":{"int":4},"372":{"float":1},"373":{"float":2}}}
        inspect node=v => {"outputs":{"852":{"float":10.5},"853":{"float":-20.25},"854":{"float":30}}}
        inspect node=v => {"outputs":{"857":{"float":-1},"858":{"float":2},"859":{"float":1e9}}}
    )");
}

TEST_F(Events, PayloadThatANodeWouldMisreadIsRefused) {
    Must(CREATE_KEYBOARD);
    Must(R"(create node=g type=gesture clip=Intro graph=G)");
    Must(R"(create node=v type=handle clip=Intro graph=H)");
    Must(R"(create node=c type=key_check clip=Intro graph=K)");
    Must("process");
    const std::pair<int, const char*> readers[] = {{0, "k"}, {1, "g"}, {3, "v"}};
    const Json payloads[] = {KeyText("a"), PointerSample(), HandSample()};
    for (size_t nReader = 0; nReader < 3; ++nReader) {
        const auto& [nDevice, pszNode] = readers[nReader];
        for (size_t nPayload = 0; nPayload < 3; ++nPayload) {
            const Json request = Event(nDevice, nDevice == 0 ? 2002 : 3005, payloads[nPayload]);
            if (nPayload == nReader) {
                EXPECT_EQ(Must(request)["results"][pszNode], 1);
            } else {
                EXPECT_EQ(Refusal(request), "payload.is: the node \"" + std::string(pszNode) +
                                                "\" would read another kind in a record of device " +
                                                std::to_string(nDevice));
            }
        }
    }
    for (const int nDevice : {7, -7}) { // which nobody reads
        EXPECT_EQ(Must(Event(nDevice, 2002, KeyText("a")))["results"].dump(), R"({"k":0,"g":0,"v":0,"c":0})");
    }
}

TEST_F(Graph, NodeTypesThatTheHostDoesNotKnowGetOnlyTheDevicesOwnPayload) {
    Talk(R"(
        event device=0 event=2002 payload={"is":"key","text":"a"} => {"results":{"p":2}}
        event device=1 event=1 payload={"is":"key","text":"a"} => payload.is: the node "p" would read another kind in a record of device 1
        event record=null => {"results":{"p":-1}}
    )");
}

TEST_F(Graph, ProcessIsOfANodeOrOfAllOrAFrame) {
    Talk(R"(
        process node=p graph=false => {"results":{"p":0,"q":null}}
        process frame=true => {"results":{"p":1,"q":1}}
        process frame=false node=p => {"results":{"p":1,"q":null}}
        process node=x => node: there is no node "x"
    )");
}

TEST_F(Graph, TriggerLastsOneEvaluation) {
    Talk(R"(
        trigger node=p param=14 => {"ok":true}
        inspect node=p => {"outputs":{"102":{"int":0}}}
        process
        process
        inspect node=p => {"inputs":{"14":{"int":0}},"outputs":{"102":{"int":1}}}
        trigger node=p param=10 => param: parameter 10 isn't an event input
        trigger node=p param=77 => param: there is no parameter 77 among the node's graph inputs
        # Also when the evaluation raises.
        set node=p param=10 int=1
        trigger node=p param=14
    )");
    EXPECT_EQ(AskObject("process")["ok"], false);
    EXPECT_EQ(Param("p", "inputs", 14)["int"], 0);
}

TEST_F(Graph, EventLinkTriggersTheNextEvaluationOnly) {
    Talk(R"(
        link from=p output=101 to=q input=14
        link from=q output=101 to=p input=14
        set node=p param=10 int=6
        process node=p
        set node=p param=10 int=0
        inspect node=q => {"outputs":{"102":{"int":0}}}
        process
        process
        inspect node=q => {"outputs":{"102":{"int":1}}}
        # Posted to the host, it's the same, and q comes after p in the same pass.
        set node=p param=10 int=3
        process
        set node=p param=10 int=0
        inspect node=q => {"outputs":{"102":{"int":2}}}
        # Events of later nodes arrive in the next pass.
        set node=q param=10 int=6
        process
        inspect node=p => {"outputs":{"102":{"int":0}}}
        process
        inspect node=p => {"outputs":{"102":{"int":1}}}
    )");
}

TEST_F(Graph, ValueLinkCopiesBeforeEachEvaluation) {
    Talk(R"(
        link from=p output=104 to=q input=12
        link from=p output=103 to=q input=11
        set node=p param=12 string=hello
        set node=p param=11 float=0.75
        process
        inspect node=q => {"outputs":{"104":{"string":"hello"},"103":{"float":0.75}}}
        set node=q param=12 string=mine
        process node=q
        inspect node=q => {"outputs":{"104":{"string":"hello"}}}
        # A dropped pin ends nothing.
        drop node=p param=104 from=["outputs"]
        drop node=q param=11 from=["inputs"]
        process => {"results":{"p":1,"q":1}}
    )");
}

TEST_F(Graph, LinksEndWithTheirNodesAndTheSameTwiceIsOne) {
    Talk(R"(
        link from=p output=101 to=q input=14
        link from=q output=104 to=p input=12
        link from=p output=101 to=p input=14
        link from=p output=101 to=p input=14
        scene => {"links":[{},{},{}]}
        destroy node=q
        scene => {"links":[{"from":"p","output":101,"to":"p","input":14}]}
        set node=p param=10 int=6
        process
        destroy node=p
        scene => {"links":[]}
    )");
}

TEST_F(Graph, ALinkThatIsTakenAwayCarriesNothingAnyMore) {
    Talk(R"(
        link from=p output=104 to=q input=12
        link from=p output=101 to=q input=14
        link from=p output=101 to=p input=14
        set node=p param=12 string=kept
        process
        unlink from=p output=104 to=q input=12
        unlink from=p output=101 to=q input=14
        scene => {"links":[{"from":"p","output":101,"to":"p","input":14}]}
        set node=p param=12 string=later
        set node=p param=10 int=6
        process
        process
        inspect node=p => {"outputs":{"104":{"string":"later"},"102":{"int":1}}}
        inspect node=q => {"outputs":{"104":{"string":"kept"},"102":{"int":0}}}
        # It can be made again.
        link from=p output=104 to=q input=12
        process
        inspect node=q => {"outputs":{"104":{"string":"later"}}}
    )");
}

TEST_F(Graph, LinksAreBetweenPinsThatAreThere) {
    Talk(R"(
        link from=x output=101 to=p input=14 => from: there is no node "x"
        link from=p output=14 to=p input=14 => output: there is no parameter 14 among the node's outputs
        link from=p output=101 to=x input=14 => to: there is no node "x"
        link from=p output=101 to=p input=101 => input: there is no parameter 101 among the node's graph inputs
        link from=p output=101 to=p input=14
        unlink from=x output=101 to=p input=14 => from: there is no node "x"
        unlink from=p output=101 to=x input=14 => to: there is no node "x"
        unlink from=p output=104 to=p input=14 => op: there is no such link
        unlink from=p output=101 to=p input=12 => op: there is no such link
        unlink from=p output=101 to=p input=14
        unlink from=p output=101 to=p input=14 => op: there is no such link
    )");
}

} // namespace
