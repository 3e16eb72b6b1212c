// create, destroy, inspect, init, outputs, and nodes out of older projects.
#include "HostTest.h"

namespace {

class Create : public CHostTest {};
class ProbeCreate : public CProbeTest {
protected:
    /// A probe out of an older project.
    void CreateSaved(const Json& saved) {
        Json request = Request(CREATE_PROBE);
        request["saved"] = saved;
        Must(request);
    }
};

TEST_F(Create, InspectShowsTheNodeInTheDocumentedOrder) {
    Must(CREATE_KEYBOARD);
    const std::string strGroup =
        R"([{"id":101,"name":"Base param","display":"IO_PROCESS_KEYBOARD","params":[)"
        R"({"id":2,"name":"Enable","display":"TOUCH_CONTROL_ENABLED","type":5,"control":5,)"
        R"("range":[0.0,0.0,1.0,1.0],"flags":[0,0,1,0],"int":1,"float":0.0,"string":"","choices":[],"available":1}]}])";
    const std::string strOutputs =
        R"([{"id":151,"name":"Output","display":"IO_PROCESS_KEYBOARD","params":[)"
        R"({"id":152,"name":"KeyDown","display":"IO_PROCESS_KEYBOARD_KEYDOWN","type":26,"control":7,)"
        R"("range":[0.0,0.0,1.0,1.0],"flags":[0,0,1,0],"int":0,"float":0.0,"string":"","choices":[],"available":1,"extra":0},)"
        R"({"id":153,"name":"KeyUp","display":"IO_PROCESS_KEYBOARD_KEYUP","type":26,"control":7,)"
        R"("range":[0.0,0.0,1.0,1.0],"flags":[0,0,1,0],"int":0,"float":0.0,"string":"","choices":[],"available":1,"extra":0},)"
        R"({"id":154,"name":"KeyText","display":"IO_PROCESS_KEYBOARD_KEYTEXT","type":1,"control":6,)"
        R"("range":null,"flags":[0,0,1,0],"int":0,"float":0.0,"string":"","choices":[],"available":1,"extra":0}]}])";
    EXPECT_EQ(Ask(R"({"op":"inspect","node":"k"})"),
              R"({"ok":true,"type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B01}","kind_code":247,)"
              R"("name":"IO_PROCESS_KEYBOARD","second_name":"IO_PROCESS_KEYBOARD","own":)" +
                  strGroup + R"(,"inputs":)" + strGroup + R"(,"outputs":)" + strOutputs + "}");
}

TEST_F(Create, SeveralNodesAreInspectedAtOnceEachOnceAndThoseThatAreGonePassedOver) {
    Talk(R"(
        create node=k type=keyboard clip=C graph=K
        create node=m type=mouse clip=C graph=M
    )");
    OrderedJson mouse = Must("inspect node=m");
    OrderedJson keyboard = Must("inspect node=k");
    mouse.erase("ok");
    keyboard.erase("ok");
    EXPECT_EQ(Must(R"(inspect_nodes nodes=["m","gone","k","m","k"])")["nodes"],
              (OrderedJson{{"m", mouse}, {"k", keyboard}}));
    EXPECT_EQ(Must("inspect_nodes nodes=[]")["nodes"], OrderedJson::object());
}

TEST_F(Create, TypesAreReadInEitherCaseAndUnknownOnesMakeNoHandle) {
    Talk(R"(
        create node=x type=nobodys clip=C graph=G => {"result":1,"created":false}
        create node=x type={00000000-0000-0000-0000-000000000000} clip=C graph=G => {"result":1,"created":false}
        inspect node=x => node: there is no node "x"
        create node=m type={8164bb40-6b6a-4707-88b7-386bcb0d1b03} clip=null graph=G => {"created":true}
        inspect node=m => {"kind_code":247,"type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}"}
        create node=y type=nobodys clip=C graph=G saved={"drop":[2]} => {"created":false}
    )");
}

TEST_F(Create, WhatCannotBeMadeIsRefusedAndLeavesNoClipBehind) {
    Must(CREATE_MOUSE);
    Talk(R"(
        create node=m type=mouse clip=Other graph=G => node: there is a node "m" already
        create node=n type=mouse clip=Other graph=G saved={"drop":[77]} => saved.drop: the node has no parameter 77
        create node=n type=mouse clip=Other graph=G saved={"choices":[77]} => saved.choices: the node has no parameter 77
    )");
    const auto file = m_folder.Path() / "scene.json";
    Must("save file=" + Quote(file));
    EXPECT_EQ(Json::parse(ReadAll(file))["clips"].dump(), R"([{"name":"Intro","objects":[]}])");
}

TEST_F(Create, ClipWindowsAndOutputsMayBeMissing) {
    Talk(R"(
        create node=free type=keyboard clip=null graph=G
        create node=mute type=keyboard clip=Intro graph=G event_window=false
        process
        event device=0 event=2002 => {"results":{"free":0,"mute":1},"posted":null,"log":[{}]}
        create node=m type=mouse clip=Intro graph=G outputs=false
        inspect node=m => {"outputs":[]}
        outputs node=m
        inspect node=m => {"outputs":[{},{},{},{},{}]}
        outputs node=x => node: there is no node "x"
    )");
}

TEST_F(ProbeCreate, WithoutNotifyWindowNothingIsNotified) {
    Talk(R"(
        create node=p type=probe clip=Intro graph=G notify_window=false
        set node=p param=10 int=4
        process => {"results":{"p":1},"notified":null}
    )");
}

TEST_F(ProbeCreate, InitCallsInitParam) {
    Must(CREATE_PROBE);
    Talk(R"(
        inspect node=p => {"own":{"12":{"string":""}}}
        init node=p
        inspect node=p => {"own":{"12":{"string":"+init"}},"inputs":{"12":{"string":""}}}
    )");
}

TEST_F(ProbeCreate, SavedSetIsAppliedBeforeInitParamAndReachesTheInputs) {
    CreateSaved({{"values", {{"10", 5}, {"11", 1}, {"12", "old"}, {"505", 3}, {"506", "x"}}},
                 {"drop", {14}},
                 {"available", {{"13", 0}, {"507", 0}}},
                 {"choices", {13}},
                 {"pins", Json::array()}});
    const Json expected = Json::parse(R"({"10":{"int":5},"11":{"float":1},"12":{"string":"old+init"},
        "13":{"choices":[],"available":0},"14":null,"505":{"int":3},"506":{"string":"x"},"507":{"available":0}})");
    const OrderedJson node = Must("inspect node=p");
    EXPECT_TRUE(Matches(node, {{"own", expected}, {"inputs", expected}})) << node;
    EXPECT_EQ(node["outputs"].size(), 2u) << "without pins it makes its own";
}

TEST_F(ProbeCreate, SavedSetsMayBeEmptyOrWithoutGroups) {
    CreateSaved(Json::object());
    EXPECT_EQ(Param("p", "own", 12)["string"], "+init");
    Must("destroy node=p");
    CreateSaved({{"groups", false}});
    Talk(R"(inspect node=p => {"own":[],"inputs":[]})");
}

TEST_F(ProbeCreate, PinsAreTheNodesOwnAndOnlyThoseNamed) {
    CreateSaved({{"pins", {{{"group", 100}, {"ids", {104, 102}}}, {{"group", 999}, {"ids", {998}}}}}});
    Talk(R"(inspect node=p => {"outputs":[{"id":100,"display":"PROBE","params":[)"
         R"({"id":104,"name":"Text","type":1,"extra":0},{"id":102}]},{"id":999,"params":[{"id":998}]}]})");
}

TEST_F(ProbeCreate, NodeThatRaisesIsNotMade) {
    Json request = Request(CREATE_PROBE);
    for (const int nRaising : {8, 11, 9}) { // in InitParam, there and when it is destroyed, in GetNodeOutput
        request["saved"] = {{"values", {{"10", nRaising}}}};
        EXPECT_EQ(AskObject(request)["error"], "the module raised CInvalidArgException");
        Talk(R"(inspect node=p => node: there is no node "p")");
    }
    request["outputs"] = false;
    Must(request);
    EXPECT_EQ(AskObject("outputs node=p")["error"], "the module raised CInvalidArgException");
}

TEST_F(Create, DestroyFreesTheNodeAndItsHandle) {
    Must(CREATE_MOUSE);
    Talk(R"(
        # Another type, or none of the node, keeps it; any type that the module frees will do.
        destroy node=m type=nobodys => {"result":1,"slot_null":true,"freed":false}
        destroy node=m pointer=false => {"result":1,"slot_null":true,"freed":false}
        process node=m
        destroy node=m type=keyboard => {"result":1,"slot_null":true,"freed":true}
        destroy node=m => node: there is no node "m"
    )");
    Must(CREATE_MOUSE);
}

TEST_F(ProbeCreate, NodeThatTheModuleOnlyUnlinksLeavesTheScene) {
    for (int i = 0; i < 2; ++i) {
        Talk(R"(
            create node=i type=immortal clip=Intro graph=Immortal
            destroy node=i => {"result":1,"slot_null":true,"freed":false}
            inspect node=i => node: there is no node "i"
        )");
    }
    Must("create node=i type=immortal clip=Intro graph=Immortal");
    Must("quit");
}

TEST_F(ProbeCreate, EventPostedByADestructorIsStillTheNodes) {
    for (const char* pszEnd :
         {R"(destroy node=p => {"freed":true,"posted":[{"node":"p","params":[{},{},{"points":"node:p"},{}]}]})",
          R"(quit => {"posted":[{"node":"p"}]})"}) {
        Must(CREATE_PROBE);
        Must("set node=p param=10 int=7");
        Must("process");
        Talk(pszEnd);
    }
}

} // namespace
