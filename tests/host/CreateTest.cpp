// create, destroy, inspect, init, outputs, and nodes out of older projects.
#include "HostTest.h"

namespace {

class Create : public CHostTest {};
class ProbeCreate : public CProbeTest {};

constexpr char IMMORTAL[] =
    R"({"op":"create","node":"i","type":"{11111111-2222-3333-4444-555555555556}","clip":"Intro","graph":"Immortal"})";

OrderedJson FindParam(const OrderedJson& groups, unsigned nId) {
    for (const OrderedJson& group : groups) {
        for (const OrderedJson& param : group["params"]) {
            if (param["id"] == nId) {
                return param;
            }
        }
    }
    return nullptr;
}

std::vector<unsigned> ParamIds(const OrderedJson& group) {
    std::vector<unsigned> ids;
    for (const OrderedJson& param : group["params"]) {
        ids.push_back(param["id"]);
    }
    return ids;
}

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

TEST_F(Create, UnknownTypeLeavesTheSlotAndMakesNoHandle) {
    for (const char* pszType : {"{8164BB40-6B6A-4707-88B7-386BCB0D1B09}", "{00000000-0000-0000-0000-000000000000}"}) {
        EXPECT_EQ(
            AskObject(Json{{"op", "create"}, {"node", "x"}, {"type", pszType}, {"clip", "C"}, {"graph", "G"}}).dump(),
            R"({"ok":true,"result":1,"created":false})");
    }
    EXPECT_EQ(Refusal(R"({"op":"inspect","node":"x"})"), R"(node: there is no node "x")");
}

TEST_F(Create, TypeIsReadInEitherCase) {
    Must(R"({"op":"create","node":"m","type":"{8164bb40-6b6a-4707-88b7-386bcb0d1b03}","clip":null,"graph":"G"})");
    EXPECT_EQ(Must(R"({"op":"inspect","node":"m"})")["kind_code"], 247);
}

TEST_F(Create, MalformedRequestsAreRefusedByField) {
    Must(CREATE_MOUSE);
    const struct {
        const char* pszField;
        Json value; ///< null: the field is taken away
        const char* pszError;
    } cases[] = {
        {"node", nullptr, "node: is missing"},
        {"node", 1, "node: must be a string"},
        {"node", "m", R"(node: there is a node "m" already)"},
        {"type", nullptr, "type: is missing"},
        {"type", 3, "type: must be a string"},
        {"type", "mouse", R"(type: "mouse" isn't a GUID)"},
        {"type", "{8164BB40-6B6A-4707-88B7-386BCB0D1B0}",
         R"(type: "{8164BB40-6B6A-4707-88B7-386BCB0D1B0}" isn't a GUID)"},
        {"type", "{8164BB40-6B6A-4707-88B7-386BCB0D1B0g}",
         R"(type: "{8164BB40-6B6A-4707-88B7-386BCB0D1B0g}" isn't a GUID)"},
        {"clip", nullptr, "clip: is missing"},
        {"clip", 1, "clip: must be a string or null"},
        {"graph", nullptr, "graph: is missing"},
        {"graph", Json::array(), "graph: must be a string"},
        {"event_window", 1, "event_window: must be true or false"},
        {"notify_window", "yes", "notify_window: must be true or false"},
        {"outputs", 0, "outputs: must be true or false"},
        {"saved", 1, "saved: must be an object"},
        {"saved", {{"values", Json::array()}}, "saved.values: must be an object"},
        {"saved", {{"values", {{"x", 1}}}}, R"(saved.values: the key "x" isn't a parameter id)"},
        {"saved", {{"values", {{"2", true}}}}, "saved.values.2: must be a number or a string"},
        {"saved", {{"values", {{"2", 4294967296}}}}, "saved.values.2: is outside the signed 32-bit range"},
        {"saved", {{"values", {{"2", 1e300}}}}, "saved.values.2: is outside the range of a 32-bit float"},
        {"saved", {{"drop", 2}}, "saved.drop: must be a list"},
        {"saved", {{"drop", {"2"}}}, "saved.drop: must be an integer"},
        {"saved", {{"drop", {77}}}, "saved.drop: the node has no parameter 77"},
        {"saved", {{"drop", {2, 2}}}, "saved.drop: names parameter 2 twice"},
        {"saved", {{"drop", {2}}, {"choices", {2}}}, "saved.choices: parameter 2 is dropped"},
        {"saved", {{"available", {{"2", "no"}}}}, "saved.available.2: must be an integer"},
        {"saved", {{"choices", {77}}}, "saved.choices: the node has no parameter 77"},
        {"saved", {{"groups", 0}}, "saved.groups: must be true or false"},
        {"saved", {{"pins", {1}}}, "saved.pins[0]: must be an object"},
        {"saved", {{"pins", {{{"ids", Json::array()}}}}}, "saved.pins[0].group: is missing"},
        {"saved", {{"pins", {{{"group", 351}}}}}, "saved.pins[0].ids: is missing"},
    };
    for (const auto& [pszField, value, pszError] : cases) {
        Json request = Json::parse(CREATE_MOUSE);
        request["node"] = "new";
        request["clip"] = "Other";
        if (value.is_null()) {
            request.erase(pszField);
        } else {
            request[pszField] = value;
        }
        EXPECT_EQ(Refusal(request.dump()), pszError);
    }
    // Refused nodes leave no clip behind.
    const auto file = m_folder.Path() / "scene.json";
    Must(R"({"op":"save","file":)" + Quote(file) + "}");
    EXPECT_EQ(Json::parse(ReadAll(file))["clips"].dump(), R"([{"name":"Intro","objects":[]}])");
    EXPECT_EQ(Must(R"({"op":"scene"})")["nodes"].size(), 1u);
}

TEST_F(Create, WhatFitsNoNodeIsRefusedBeforeOneIsMade) {
    // No node of this type is made at all.
    Json request = Json::parse(CREATE_MOUSE);
    request["type"] = "{8164BB40-6B6A-4707-88B7-386BCB0D1B09}";
    request["saved"] = {{"drop", {2}}};
    EXPECT_EQ(Must(request.dump())["created"], false);
    request["saved"]["drop"] = {2, 2};
    EXPECT_EQ(Refusal(request.dump()), "saved.drop: names parameter 2 twice");
    request["saved"] = {{"drop", {2}}, {"choices", {2}}};
    EXPECT_EQ(Refusal(request.dump()), "saved.choices: parameter 2 is dropped");
    request["saved"]["available"] = {{"2", 0}};
    Must(request.dump());
}

TEST_F(Create, WithoutOwnerClipTheNodeIgnoresEvents) {
    Must(R"({"op":"create","node":"k","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B01}","clip":null,"graph":"G"})");
    Must(R"({"op":"process"})");
    EXPECT_EQ(Ask(R"({"op":"event","device":0,"event":2002})"), R"({"ok":true,"results":{"k":0}})");
}

TEST_F(Create, WithoutEventWindowNothingIsPosted) {
    Json request = Json::parse(CREATE_KEYBOARD);
    request["event_window"] = false;
    Must(request.dump());
    Must(R"({"op":"process"})");
    const OrderedJson reply = Must(R"({"op":"event","device":0,"event":2002})");
    EXPECT_EQ(reply["results"]["k"], 1);
    EXPECT_FALSE(reply.contains("posted"));
    EXPECT_TRUE(reply.contains("log"));
}

TEST_F(ProbeCreate, WithoutNotifyWindowNothingIsNotified) {
    Json request = Json::parse(CREATE_PROBE);
    request["notify_window"] = false;
    Must(request.dump());
    Must(R"({"op":"set","node":"p","param":10,"int":4})");
    EXPECT_EQ(Ask(R"({"op":"process"})"), R"({"ok":true,"results":{"p":1}})");
}

TEST_F(Create, OutputsFalseLeavesTheOutputsOutUntilAskedFor) {
    Json request = Json::parse(CREATE_MOUSE);
    request["outputs"] = false;
    Must(request.dump());
    EXPECT_EQ(Must(R"({"op":"inspect","node":"m"})")["outputs"].size(), 0u);
    EXPECT_EQ(Ask(R"({"op":"outputs","node":"m"})"), R"({"ok":true})");
    EXPECT_EQ(Must(R"({"op":"inspect","node":"m"})")["outputs"].size(), 5u);
    EXPECT_EQ(Refusal(R"({"op":"outputs","node":"x"})"), R"(node: there is no node "x")");
}

TEST_F(ProbeCreate, InitCallsInitParam) {
    Must(CREATE_PROBE);
    EXPECT_EQ(FindParam(Must(R"({"op":"inspect","node":"p"})")["own"], 12)["string"], "");
    EXPECT_EQ(Ask(R"({"op":"init","node":"p"})"), R"({"ok":true})");
    const OrderedJson inspected = Must(R"({"op":"inspect","node":"p"})");
    EXPECT_EQ(FindParam(inspected["own"], 12)["string"], "+init");
    EXPECT_EQ(FindParam(inspected["inputs"], 12)["string"], "");
    EXPECT_EQ(Refusal(R"({"op":"init"})"), "node: is missing");
}

TEST_F(ProbeCreate, SavedSetIsAppliedBeforeInitParamAndReachesTheInputs) {
    Json request = Json::parse(CREATE_PROBE);
    request["saved"] = {{"values", {{"10", 5}, {"11", 0.25}, {"12", "old"}}},
                        {"drop", {14}},
                        {"available", {{"13", 0}}},
                        {"choices", {13}}};
    Must(request.dump());
    const OrderedJson inspected = Must(R"({"op":"inspect","node":"p"})");
    for (const char* pszPlace : {"own", "inputs"}) {
        const OrderedJson& groups = inspected[pszPlace];
        EXPECT_EQ(FindParam(groups, 10)["int"], 5) << pszPlace;
        EXPECT_EQ(FindParam(groups, 11)["float"], 0.25) << pszPlace;
        EXPECT_EQ(FindParam(groups, 12)["string"], "old+init") << pszPlace;
        EXPECT_EQ(FindParam(groups, 13)["choices"], OrderedJson::array()) << pszPlace;
        EXPECT_EQ(FindParam(groups, 13)["available"], 0) << pszPlace;
        EXPECT_EQ(FindParam(groups, 14), nullptr) << pszPlace;
    }
}

TEST_F(ProbeCreate, EmptySavedSetStillCallsInitParam) {
    Json request = Json::parse(CREATE_PROBE);
    request["saved"] = Json::object();
    Must(request.dump());
    EXPECT_EQ(FindParam(Must(R"({"op":"inspect","node":"p"})")["own"], 12)["string"], "+init");
}

TEST_F(ProbeCreate, SavedSetMayHoldParametersThatTheNodeDoesNotMake) {
    Json request = Json::parse(CREATE_PROBE);
    request["saved"] = {{"values", {{"505", 3}, {"506", "x"}}}, {"available", {{"507", 0}}}};
    Must(request.dump());
    const OrderedJson own = Must(R"({"op":"inspect","node":"p"})")["own"];
    EXPECT_EQ(FindParam(own, 505)["int"], 3);
    EXPECT_EQ(FindParam(own, 506)["string"], "x");
    EXPECT_EQ(FindParam(own, 507)["available"], 0);
}

TEST_F(ProbeCreate, WholeNumberIsTakenForAFloatParameter) {
    Json request = Json::parse(CREATE_PROBE);
    request["saved"] = {{"values", {{"11", 1}}}};
    Must(request.dump());
    EXPECT_EQ(FindParam(Must(R"({"op":"inspect","node":"p"})")["own"], 11)["float"], 1.0);
}

TEST_F(ProbeCreate, SavedWithoutGroupsHasNone) {
    Json request = Json::parse(CREATE_PROBE);
    request["saved"] = {{"groups", false}};
    Must(request.dump());
    const OrderedJson inspected = Must(R"({"op":"inspect","node":"p"})");
    EXPECT_EQ(inspected["own"], OrderedJson::array());
    EXPECT_EQ(inspected["inputs"], OrderedJson::array());
}

TEST_F(ProbeCreate, PinsAreTheNodesOwnAndOnlyThoseNamed) {
    Json request = Json::parse(CREATE_PROBE);
    request["saved"] = {{"pins", {{{"group", 100}, {"ids", {104, 102}}}, {{"group", 999}, {"ids", {998}}}}}};
    Must(request.dump());
    const OrderedJson outputs = Must(R"({"op":"inspect","node":"p"})")["outputs"];
    ASSERT_EQ(outputs.size(), 2u);
    EXPECT_EQ(outputs[0]["id"], 100);
    EXPECT_EQ(outputs[0]["display"], "PROBE");
    EXPECT_EQ(ParamIds(outputs[0]), (std::vector<unsigned>{104, 102}));
    EXPECT_EQ(outputs[0]["params"][0]["name"], "Text");
    EXPECT_EQ(outputs[0]["params"][0]["type"], 1);
    EXPECT_EQ(outputs[0]["params"][0]["extra"], 0);
    EXPECT_EQ(outputs[1]["id"], 999);
    EXPECT_EQ(ParamIds(outputs[1]), (std::vector<unsigned>{998}));
}

TEST_F(ProbeCreate, EmptyPinsLetTheNodeMakeItsOutputs) {
    Json request = Json::parse(CREATE_PROBE);
    request["saved"] = {{"pins", Json::array()}};
    Must(request.dump());
    EXPECT_EQ(Must(R"({"op":"inspect","node":"p"})")["outputs"].size(), 2u);
}

TEST_F(ProbeCreate, NodeWhoseInitParamRaisesIsNotMade) {
    Json request = Json::parse(CREATE_PROBE);
    request["saved"] = {{"values", {{"10", 8}}}};
    EXPECT_EQ(AskJson(request.dump())["error"], "the module raised CInvalidArgException");
    EXPECT_EQ(Refusal(R"({"op":"inspect","node":"p"})"), R"(node: there is no node "p")");
    EXPECT_EQ(Ask(R"({"op":"objects"})"), R"({"ok":true,"objects":[]})");
    Must(CREATE_PROBE);
}

TEST_F(ProbeCreate, NodeWhoseOutputsRaiseCanBeMadeWithoutThem) {
    Json request = Json::parse(CREATE_PROBE);
    request["saved"] = {{"values", {{"10", 9}}}};
    EXPECT_EQ(AskJson(request.dump())["error"], "the module raised CInvalidArgException");
    request["outputs"] = false;
    Must(request.dump());
    EXPECT_EQ(Ask(R"({"op":"outputs","node":"p"})"),
              R"({"ok":false,"error":"the module raised CInvalidArgException"})");
}

TEST_F(Create, DestroyFreesTheNodeAndItsHandle) {
    Must(CREATE_MOUSE);
    EXPECT_EQ(Ask(R"({"op":"destroy","node":"m"})"), R"({"ok":true,"result":1,"slot_null":true,"freed":true})");
    EXPECT_EQ(Refusal(R"({"op":"destroy","node":"m"})"), R"(node: there is no node "m")");
    Must(CREATE_MOUSE);
}

TEST_F(Create, DestroyWithAnotherTypeOrNoPointerKeepsTheNode) {
    Must(CREATE_MOUSE);
    EXPECT_EQ(Ask(R"({"op":"destroy","node":"m","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B09}"})"),
              R"({"ok":true,"result":1,"slot_null":true,"freed":false})");
    EXPECT_EQ(Ask(R"({"op":"destroy","node":"m","pointer":false})"),
              R"({"ok":true,"result":1,"slot_null":true,"freed":false})");
    Must(R"({"op":"process","node":"m"})");
    // Any type that the module frees will do.
    EXPECT_EQ(Ask(R"({"op":"destroy","node":"m","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B01}"})"),
              R"({"ok":true,"result":1,"slot_null":true,"freed":true})");
    EXPECT_EQ(Refusal(R"({"op":"destroy","node":"m"})"), R"(node: there is no node "m")");
}

TEST_F(Create, DestroyRefusesWrongFields) {
    Must(CREATE_MOUSE);
    EXPECT_EQ(Refusal(R"({"op":"destroy"})"), "node: is missing");
    EXPECT_EQ(Refusal(R"({"op":"destroy","node":"m","type":"x"})"), R"(type: "x" isn't a GUID)");
    EXPECT_EQ(Refusal(R"({"op":"destroy","node":"m","pointer":0})"), "pointer: must be true or false");
}

TEST_F(ProbeCreate, NodeThatTheModuleOnlyUnlinksLeavesTheScene) {
    Must(IMMORTAL);
    EXPECT_EQ(Ask(R"({"op":"destroy","node":"i"})"), R"({"ok":true,"result":1,"slot_null":true,"freed":false})");
    EXPECT_EQ(Refusal(R"({"op":"inspect","node":"i"})"), R"(node: there is no node "i")");
    Must(IMMORTAL);
    Must(R"({"op":"quit"})");
}

TEST_F(ProbeCreate, EventPostedByADestructorIsStillTheNodes) {
    Must(CREATE_PROBE);
    Must(R"({"op":"set","node":"p","param":10,"int":7})");
    Must(R"({"op":"process"})");
    const OrderedJson reply = Must(R"({"op":"destroy","node":"p"})");
    EXPECT_EQ(reply["freed"], true);
    EXPECT_EQ(reply["posted"][0]["node"], "p");
    EXPECT_EQ(reply["posted"][0]["params"][2]["points"], "node:p");
}

TEST_F(ProbeCreate, QuitShowsWhatTheLastNodesPosted) {
    Must(CREATE_PROBE);
    Must(R"({"op":"set","node":"p","param":10,"int":7})");
    Must(R"({"op":"process"})");
    EXPECT_EQ(Must(R"({"op":"quit"})")["posted"].size(), 1u);
}

} // namespace
