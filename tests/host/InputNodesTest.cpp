// The input nodes in a session: the requests that set the machine around them, their payloads, sets out of older
// projects.
#include "HostTest.h"

#include <chrono>
#include <thread>

namespace {

constexpr char CREATE_KEY_CHECK[] =
    R"({"op":"create","node":"c","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B0B}","clip":"Intro","graph":"Key 1"})";
constexpr char CREATE_TEXT_FIELD[] =
    R"({"op":"create","node":"t","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B02}","clip":"Intro","graph":"Text 1"})";
constexpr char CREATE_GESTURE[] =
    R"({"op":"create","node":"g","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B07}","clip":"Intro","graph":"Gesture 1"})";
constexpr char CREATE_HANDLE[] =
    R"({"op":"create","node":"v","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B08}","clip":"Intro","graph":"Hand 1"})";

class InputNodes : public CHostTest {
protected:
    /// The outputs that a reply tells of, in order.
    static std::vector<int> Posted(const OrderedJson& reply) {
        std::vector<int> outputs;
        for (const OrderedJson& posted : reply.value("posted", OrderedJson::array())) {
            outputs.push_back(posted["output"]);
        }
        return outputs;
    }

    static std::vector<std::string> LogTexts(const OrderedJson& reply) {
        std::vector<std::string> texts;
        for (const OrderedJson& line : reply.value("log", OrderedJson::array())) {
            texts.push_back(line["text"]);
        }
        return texts;
    }

    /// What a parameter of the node holds; pszPlace: own, inputs or outputs.
    OrderedJson Param(const char* pszNode, const char* pszPlace, unsigned nId) {
        const OrderedJson inspected = AskObject(Json{{"op", "inspect"}, {"node", pszNode}});
        for (const OrderedJson& group : inspected[pszPlace]) {
            for (const OrderedJson& param : group["params"]) {
                if (param["id"] == nId) {
                    return param;
                }
            }
        }
        return nullptr;
    }

    OrderedJson Process() { return Must(R"({"op":"process"})"); }
    OrderedJson Set(const char* pszNode, unsigned nId, const char* pszKind, const Json& value) {
        return Must(Json{{"op", "set"}, {"node", pszNode}, {"param", nId}, {pszKind, value}}.dump());
    }
    OrderedJson Trigger(const char* pszNode, unsigned nId) {
        return Must(Json{{"op", "trigger"}, {"node", pszNode}, {"param", nId}}.dump());
    }

    /// An event with a payload for all nodes.
    OrderedJson Event(int nDevice, int nEvent, const Json& payload) {
        return Must(Json{{"op", "event"}, {"device", nDevice}, {"event", nEvent}, {"payload", payload}}.dump());
    }

    std::vector<unsigned> OutputGroups(const char* pszNode) {
        std::vector<unsigned> ids;
        const OrderedJson inspected = AskObject(Json{{"op", "inspect"}, {"node", pszNode}});
        for (const OrderedJson& group : inspected["outputs"]) {
            ids.push_back(group["id"]);
        }
        return ids;
    }
};

using Outputs = std::vector<int>;

// ---- Key check -----------------------------------------------------------------------------------------------------

class KeyCheckSession : public InputNodes {
protected:
    KeyCheckSession() {
        Must(CREATE_KEY_CHECK);
        Set("c", 1102, "int", 65 | 0x100);
    }

    void Hold(const char* pszKeys) { Must(R"({"op":"keys","toggled":[],"down":)" + std::string(pszKeys) + "}"); }
};

TEST_F(KeyCheckSession, FollowsTheKeyboard) {
    EXPECT_EQ(Process()["results"]["c"], 0) << "Shift is up";
    Hold("[65]");
    EXPECT_EQ(Posted(Process()), Outputs{});
    Hold("[16,65]");
    const OrderedJson down = Process();
    EXPECT_EQ(down["results"]["c"], 1);
    EXPECT_EQ(Posted(down), Outputs{1152});
    EXPECT_EQ(down["posted"][0]["params"][2]["points"], "node:c");
    EXPECT_FALSE(down.contains("log"));
    Hold("[65]");
    const OrderedJson up = Process();
    EXPECT_EQ(up["results"]["c"], 0);
    EXPECT_EQ(Posted(up), Outputs{1154});
    EXPECT_EQ(Posted(Process()), Outputs{});
}

TEST_F(KeyCheckSession, RepeatsByTheClock) {
    Must(R"({"op":"clock","ms":100000})");
    Hold("[16,65]");
    EXPECT_EQ(Posted(Process()), Outputs{1152});
    std::vector<int> holds;
    for (int nTick = 100'050; nTick <= 100'700; nTick += 50) {
        Must(Json{{"op", "clock"}, {"ms", nTick}}.dump());
        if (Posted(Process()) == Outputs{1153}) {
            holds.push_back(nTick);
        }
    }
    EXPECT_EQ(holds, (std::vector<int>{100'050, 100'250, 100'450, 100'650}));
    // Past the end of 32 bits the count starts anew.
    Must(R"({"op":"clock","ms":4294967296})");
    EXPECT_EQ(Posted(Process()), Outputs{});
}

TEST_F(KeyCheckSession, SeesAClockThatStandsUntilItIsRealAgain) {
    Must(R"({"op":"clock","ms":1})");
    Hold("[16,65]");
    EXPECT_EQ(Posted(Process()), Outputs{1152});
    Process();
    std::this_thread::sleep_for(std::chrono::milliseconds(250)); // longer than the interval
    EXPECT_EQ(Posted(Process()), Outputs{});
    EXPECT_EQ(Refusal(R"({"op":"clock","ms":-1})"), "ms: must be a whole number");
    EXPECT_EQ(Posted(Process()), Outputs{});
    Must(R"({"op":"clock","ms":null})");
    EXPECT_EQ(Posted(Process()), Outputs{1153});
}

TEST_F(KeyCheckSession, NeedsTheMainWindow) {
    Hold("[16,65]");
    Must(R"({"op":"main_window","present":false,"enabled":true})");
    EXPECT_EQ(Process().dump(), R"({"ok":true,"results":{"c":0}})");
    Must(R"({"op":"main_window","present":true,"enabled":false})");
    EXPECT_EQ(Process().dump(), R"({"ok":true,"results":{"c":0}})");
    Must(R"({"op":"main_window","present":true,"enabled":true})");
    EXPECT_EQ(Posted(Process()), Outputs{1152});
}

TEST_F(KeyCheckSession, IsOnlyUnlinkedWhenDestroyed) {
    EXPECT_EQ(Ask(R"({"op":"destroy","node":"c"})"), R"({"ok":true,"result":1,"slot_null":true,"freed":false})");
    EXPECT_EQ(Refusal(R"({"op":"inspect","node":"c"})"), R"(node: there is no node "c")");
    Hold("[16,65]");
    EXPECT_EQ(Process().dump(), R"({"ok":true,"results":{}})") << "nobody evaluates it any more";
    Must(CREATE_KEY_CHECK);
}

TEST_F(KeyCheckSession, TakesNoEventsSoThatAnyPayloadMayComeWithThem) {
    EXPECT_EQ(Event(0, 2002, {{"is", "broadcast"}, {"flag", ""}, {"clip", ""}, {"name", ""}, {"data", ""}})["results"],
              (OrderedJson{{"c", 0}}));
    EXPECT_EQ(Ask(R"({"op":"event","record":null})"), R"({"ok":true,"results":{"c":0}})");
}

// ---- Text field ----------------------------------------------------------------------------------------------------

class TextFieldSession : public InputNodes {
protected:
    TextFieldSession() { Must(CREATE_TEXT_FIELD); }

    OrderedJson Type(const char* pszKeyName) {
        Set("t", 202, "string", pszKeyName);
        Trigger("t", 203);
        return Process();
    }
    std::string Text() { return Param("t", "outputs", 253)["string"]; }
};

TEST_F(TextFieldSession, EditsByTriggers) {
    const OrderedJson typed = Type("h");
    EXPECT_EQ(typed["results"]["t"], 1);
    EXPECT_EQ(LogTexts(typed), std::vector<std::string>{"[Intro]触发输入事件[输入事件]"});
    Type("i");
    Type("Shift+1");
    EXPECT_EQ(Text(), "hi!");
    EXPECT_EQ(Param("t", "outputs", 252)["int"], 1);
    Process();
    EXPECT_EQ(Text(), "hi!") << "a trigger lasts for one evaluation";
    Trigger("t", 204);
    EXPECT_EQ(LogTexts(Process()), std::vector<std::string>{"[Intro]触发输入事件[清除]"});
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(Param("t", "outputs", 252)["int"], 0);
}

TEST_F(TextFieldSession, CapsLockIsThatOfTheSession) {
    Must(R"({"op":"keys","down":[],"toggled":[20]})");
    Type("a");
    Type("Shift+a");
    Must(R"({"op":"keys","down":[20],"toggled":[]})");
    Type("Shift+a");
    Must(R"({"op":"keys","down":[],"toggled":[]})");
    Type("a");
    EXPECT_EQ(Text(), "AAaa");
}

TEST_F(TextFieldSession, IsTypedIntoByLinks) {
    Must(CREATE_KEYBOARD);
    Must(R"({"op":"link","from":"k","output":154,"to":"t","input":202})");
    Must(R"({"op":"link","from":"k","output":152,"to":"t","input":203})");
    Process();
    for (const char* pszKey : {"a", "b", "Backspace", "中文"}) {
        Event(0, 2002, {{"is", "key"}, {"text", pszKey}});
        Must(R"({"op":"process","node":"k"})"); // the key's text is offered before it's taken
        Must(R"({"op":"process","node":"t"})");
    }
    EXPECT_EQ(Text(), "a中文");
}

TEST_F(TextFieldSession, DroppedKeyNameEndsTheEvaluation) {
    Type("a");
    Must(R"({"op":"drop","node":"t","param":202,"from":["own","inputs"]})");
    Trigger("t", 203);
    Trigger("t", 204);
    const OrderedJson reply = Process();
    EXPECT_EQ(reply["results"]["t"], 1);
    EXPECT_EQ(LogTexts(reply), std::vector<std::string>{"[Intro]触发输入事件[输入事件]"});
    EXPECT_EQ(Text(), "a");
}

TEST_F(TextFieldSession, TakesNoEventsSoThatAnyPayloadMayComeWithThem) {
    EXPECT_EQ(Event(0, 2002, {{"is", "broadcast"}, {"flag", ""}, {"clip", ""}, {"name", ""}, {"data", ""}})["results"],
              (OrderedJson{{"t", 0}}));
}

// ---- Touch gesture -------------------------------------------------------------------------------------------------

class GestureSession : public InputNodes {
protected:
    GestureSession() {
        Must(CREATE_GESTURE);
        Process();
    }

    OrderedJson Pointer(int nEvent, const Json& fields, int nPointer = 0) {
        Json payload = {{"is", "pointer"},     {"rx", 0},      {"ry", 0}, {"x", 0}, {"y", 0},
                        {"pointer", nPointer}, {"relative", 0}};
        payload.update(fields);
        return Event(1, nEvent, payload);
    }
};

TEST_F(GestureSession, SwipeInPixels) {
    EXPECT_EQ(Pointer(3005, {{"x", 10}, {"y", 400}}).dump(), R"({"ok":true,"results":{"g":1}})");
    EXPECT_EQ(Posted(Pointer(3013, {{"x", 12}, {"y", 200}})), Outputs{752});
    const OrderedJson released = Pointer(3006, {{"x", 14}, {"y", 0}});
    EXPECT_EQ(Posted(released), (Outputs{753, 756}));
    EXPECT_EQ(LogTexts(released),
              (std::vector<std::string>{"[Intro.Gesture 1.TOUCH_CONTROL_TOUCH_GESTURE]触发输出事件[结束拖动]",
                                        "[Intro.Gesture 1.TOUCH_CONTROL_TOUCH_GESTURE]触发输出事件[向上滑动]"}));
    for (const OrderedJson& posted : released["posted"]) {
        EXPECT_EQ(posted["via"], "window");
        EXPECT_EQ(posted["node"], "g");
    }
}

TEST_F(GestureSession, SwipeInRelativeUnits) {
    const auto Relative = [](double fX, double fY) { return Json{{"rx", fX}, {"ry", fY}, {"relative", 1}}; };
    Pointer(3005, Relative(0, 0));
    EXPECT_EQ(Posted(Pointer(3013, Relative(0.5, 49.999))), Outputs{});
    EXPECT_EQ(Posted(Pointer(3013, Relative(0.5, 50))), Outputs{752});
    EXPECT_EQ(Posted(Pointer(3006, Relative(0, 200.25))), (Outputs{753, 756}));
}

TEST_F(GestureSession, TapOfTheFirstOfTwoPointers) {
    Pointer(3005, Json::object(), 1);
    EXPECT_EQ(Pointer(3005, Json::object(), 2)["results"]["g"], 0);
    EXPECT_EQ(Pointer(3006, Json::object(), 2)["results"]["g"], 0);
    EXPECT_EQ(Posted(Pointer(3006, Json::object(), 1)), Outputs{758});
}

TEST_F(GestureSession, PixelsOfTheWholeRangeAreTaken) {
    Pointer(3005, {{"x", 2147483647}, {"y", -2147483648LL}});
    EXPECT_EQ(Posted(Pointer(3013, {{"x", -2147483599}, {"y", -2147483648LL}})), Outputs{752}) << "50 steps on";
    EXPECT_EQ(Posted(Pointer(3006, {{"x", -2147483549}, {"y", -2147483648LL}})), (Outputs{753, 755}));
    EXPECT_EQ(Refusal(R"({"op":"event","device":1,"event":3013,"payload":{"is":"pointer","rx":0,"ry":0,)"
                      R"("x":2147483648,"y":0,"pointer":0,"relative":0}})"),
              "payload.x: is outside the signed 32-bit range");
}

TEST_F(GestureSession, ProjectOfAnOlderVersionIsRaised) {
    Json request = Json::parse(CREATE_GESTURE);
    request["node"] = "old";
    request["saved"] = {{"values", {{"7", 1}}},
                        {"available", {{"2", 0}}},
                        {"pins", {{{"group", 751}, {"ids", {752, 753, 754, 755, 756, 757}}}}}};
    Must(request.dump());
    for (const char* pszPlace : {"own", "inputs"}) {
        EXPECT_EQ(Param("old", pszPlace, 7)["int"], 3);
        EXPECT_EQ(Param("old", pszPlace, 2)["available"], 1);
    }
    const OrderedJson outputs = Must(R"({"op":"inspect","node":"old"})")["outputs"];
    ASSERT_EQ(outputs.size(), 1u);
    ASSERT_EQ(outputs[0]["params"].size(), 7u);
    EXPECT_EQ(outputs[0]["params"][0]["id"], 752);
    EXPECT_EQ(outputs[0]["params"][6], Param("g", "outputs", 758)) << "the tap as a new node has it, at the end";
    const OrderedJson before = WholeScene();
    Must(R"({"op":"outputs","node":"old"})");
    EXPECT_EQ(WholeScene(), before);
}

TEST_F(GestureSession, ProjectOfTheCurrentVersionKeepsItsFlag) {
    Json request = Json::parse(CREATE_GESTURE);
    request["node"] = "old";
    request["saved"] = {{"values", {{"7", 3}}}, {"available", {{"2", 0}}}};
    Must(request.dump());
    EXPECT_EQ(Param("old", "own", 2)["available"], 0);
}

TEST_F(GestureSession, ProjectWithoutGroupsRaises) {
    Json request = Json::parse(CREATE_GESTURE);
    request["node"] = "old";
    request["saved"] = {{"groups", false}};
    EXPECT_EQ(AskJson(request.dump())["error"], "the module raised CInvalidArgException");
}

TEST_F(GestureSession, SampleIsNeededForItsEvents) {
    EXPECT_EQ(Ask(R"({"op":"event","device":1,"event":3005})"), R"({"ok":true,"results":{"g":0}})");
    EXPECT_EQ(Ask(R"({"op":"event","record":null})"),
              R"({"ok":true,"results":{"g":0},"log":[{"level":32,"args":[15,567,0,-1],)"
              R"("text":"[Intro.Gesture 1.TOUCH_CONTROL_TOUCH_GESTURE]DevIOEventOccurred函数数据错误"}]})");
}

// ---- VR handle -----------------------------------------------------------------------------------------------------

const Json VR_SAMPLE = {{"is", "vr"},
                        {"hand", 0},
                        {"trigger", 0},
                        {"pad", 0},
                        {"padx", 0},
                        {"pady", 0},
                        {"pose", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 10.5, -20.25, 30, 1}},
                        {"hit", {-1, 2, 1e9}},
                        {"press", 1000},
                        {"release", 1499}};

class HandleSession : public InputNodes {
protected:
    HandleSession() {
        Must(CREATE_HANDLE);
        Process();
    }

    OrderedJson Send(const Json& fields) {
        Json payload = VR_SAMPLE;
        payload.update(fields);
        return Event(3, 1, payload);
    }

    /// The error of a sample with this payload.
    std::string SampleRefusal(const Json& payload) {
        return Refusal(Json{{"op", "event"}, {"device", 3}, {"event", 1}, {"payload", payload}}.dump());
    }
    std::string SampleRefusal(const char* pszField, const Json& value) {
        Json payload = VR_SAMPLE;
        payload[pszField] = value;
        return SampleRefusal(payload);
    }
};

TEST_F(HandleSession, SampleMovesTheObjectAndTheOutputs) {
    Must(R"({"op":"object","clip":"Intro","name":"Hand"})");
    Must(R"({"op":"object","clip":"Other","name":"Hand"})");
    Set("v", 802, "string", "Hand");
    Process();
    EXPECT_EQ(Send(Json::object()).dump(), R"({"ok":true,"results":{"v":1}})");
    const OrderedJson objects = Must(R"({"op":"objects"})")["objects"];
    EXPECT_EQ(objects[0]["matrix"].dump(), "[1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0,0.0,10.5,-20.25,30.0,1.0]");
    EXPECT_EQ(objects[1]["matrix"].dump(), "[1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0]");
    const std::pair<unsigned, double> OUTPUTS[] = {{852, 10.5}, {853, -20.25}, {854, 30},
                                                   {857, -1},   {858, 2},      {859, 1e9}};
    for (const auto& [nId, fValue] : OUTPUTS) {
        EXPECT_EQ(Param("v", "outputs", nId)["float"], fValue) << nId;
    }
}

TEST_F(HandleSession, EveryFieldArrives) {
    EXPECT_EQ(Posted(Send({{"trigger", 1}, {"pad", 1}})), (Outputs{862, 865}));
    EXPECT_EQ(Posted(Send({{"padx", 0.8}, {"pady", 0.2}})), (Outputs{863, 864, 866, 869}));
    EXPECT_EQ(Posted(Send({{"trigger", 1}, {"pad", -5}})), (Outputs{862, 865}));
    EXPECT_EQ(Posted(Send({{"padx", 0.2}, {"pady", -0.9}, {"press", 4294967295u}, {"release", 498}})),
              (Outputs{863, 864, 866, 871}))
        << "499 over the end of 32 bits";
    Send({{"trigger", 1}});
    EXPECT_EQ(Posted(Send({{"release", 1500}})), Outputs{863});
}

TEST_F(HandleSession, HandsAreToldApart) {
    EXPECT_EQ(Send({{"hand", 1}, {"trigger", 1}}).dump(), R"({"ok":true,"results":{"v":0}})");
    Set("v", 803, "choice", 1);
    Process();
    EXPECT_EQ(Posted(Send({{"hand", 1}, {"trigger", 1}})), Outputs{862});
    EXPECT_EQ(Send({{"trigger", 1}})["results"]["v"], 0);
}

TEST_F(HandleSession, MissingSampleIsLogged) {
    EXPECT_EQ(Ask(R"({"op":"event","device":3,"event":1})"),
              R"({"ok":true,"results":{"v":0},"log":[{"level":32,"args":[15,567,0,-1],"text":"没有VR手柄数据"}]})");
    EXPECT_EQ(Ask(R"({"op":"event","record":null})"),
              R"({"ok":true,"results":{"v":0},"log":[{"level":32,"args":[15,567,0,-1],)"
              R"("text":"[Intro.Hand 1.IO_PROCESS_VRHANLDE]DevIOEventOccurred函数数据错误"}]})");
}

TEST_F(HandleSession, SampleNeedsEachField) {
    for (const char* pszField : {"hand", "trigger", "pad", "padx", "pady", "pose", "hit", "press", "release"}) {
        Json payload = VR_SAMPLE;
        payload.erase(pszField);
        EXPECT_EQ(SampleRefusal(payload), "payload." + std::string(pszField) + ": is missing");
        payload[pszField] = nullptr;
        EXPECT_TRUE(SampleRefusal(payload).starts_with("payload." + std::string(pszField) + ": must be ")) << pszField;
    }
}

TEST_F(HandleSession, SampleOfWrongValuesIsRefusedByField) {
    for (const char* pszField : {"hand", "trigger", "pad"}) {
        const std::string strField = "payload." + std::string(pszField);
        EXPECT_EQ(SampleRefusal(pszField, "1"), strField + ": must be an integer");
        EXPECT_EQ(SampleRefusal(pszField, 1.0), strField + ": must be an integer");
        EXPECT_EQ(SampleRefusal(pszField, true), strField + ": must be an integer");
        EXPECT_EQ(SampleRefusal(pszField, 2147483648u), strField + ": is outside the signed 32-bit range");
        EXPECT_EQ(SampleRefusal(pszField, -2147483649LL), strField + ": is outside the signed 32-bit range");
    }
    for (const char* pszField : {"padx", "pady"}) {
        const std::string strField = "payload." + std::string(pszField);
        EXPECT_EQ(SampleRefusal(pszField, "0"), strField + ": must be a number");
        EXPECT_EQ(SampleRefusal(pszField, Json::array()), strField + ": must be a number");
        EXPECT_EQ(SampleRefusal(pszField, -1e39), strField + ": is outside the range of a 32-bit float");
    }
    for (const char* pszField : {"press", "release"}) {
        const std::string strField = "payload." + std::string(pszField);
        EXPECT_EQ(SampleRefusal(pszField, "0"), strField + ": must be an integer");
        EXPECT_EQ(SampleRefusal(pszField, 0.5), strField + ": must be an integer");
        EXPECT_EQ(SampleRefusal(pszField, -1), strField + ": is outside the unsigned 32-bit range");
        EXPECT_EQ(SampleRefusal(pszField, 4294967296LL), strField + ": is outside the unsigned 32-bit range");
    }
}

TEST_F(HandleSession, PoseAndHitPositionHoldAsManyNumbersAsTheyMust) {
    const std::pair<const char*, size_t> LISTS[] = {{"pose", 16}, {"hit", 3}};
    for (const auto& [pszField, nNumbers] : LISTS) {
        const std::string strField = "payload." + std::string(pszField);
        const std::string strCount = strField + ": must be an array of " + std::to_string(nNumbers) + " numbers";
        const Json whole = VR_SAMPLE[pszField];
        for (const Json& value : {Json(0), Json("x"), Json::object(), Json::array()}) {
            EXPECT_EQ(SampleRefusal(pszField, value), strCount);
        }
        Json list = whole;
        list.erase(0);
        EXPECT_EQ(SampleRefusal(pszField, list), strCount);
        list = whole;
        list.push_back(0);
        EXPECT_EQ(SampleRefusal(pszField, list), strCount);
        for (size_t i = 0; i < nNumbers; ++i) {
            const std::string strElement = strField + "[" + std::to_string(i) + "]";
            list = whole;
            list[i] = "0";
            EXPECT_EQ(SampleRefusal(pszField, list), strElement + ": must be a number");
            list[i] = 3.5e38;
            EXPECT_EQ(SampleRefusal(pszField, list), strElement + ": is outside the range of a 32-bit float");
        }
    }
}

TEST_F(HandleSession, RefusedSampleLeavesTheNodeAsItWas) {
    SampleRefusal("hit", Json::array());
    Json pressed = VR_SAMPLE;
    pressed["trigger"] = 1;
    pressed["release"] = -1;
    SampleRefusal(pressed);
    EXPECT_EQ(Posted(Send(Json::object())), Outputs{}) << "no trigger was pressed";
}

TEST_F(HandleSession, PayloadsOfOtherKindsAreRefused) {
    for (const Json& payload :
         {Json{{"is", "key"}, {"text", "a"}},
          Json{{"is", "pointer"}, {"rx", 0}, {"ry", 0}, {"x", 0}, {"y", 0}, {"pointer", 0}, {"relative", 0}}}) {
        EXPECT_EQ(SampleRefusal(payload),
                  R"(payload.is: the node "v" would read another kind in a record of device 3)");
    }
    Must(CREATE_GESTURE);
    Must(CREATE_KEYBOARD);
    EXPECT_EQ(Refusal(Json{{"op", "event"}, {"device", 1}, {"event", 3005}, {"payload", VR_SAMPLE}}.dump()),
              R"(payload.is: the node "g" would read another kind in a record of device 1)");
    EXPECT_EQ(Refusal(Json{{"op", "event"}, {"device", 0}, {"event", 2002}, {"payload", VR_SAMPLE}}.dump()),
              R"(payload.is: the node "k" would read another kind in a record of device 0)");
    EXPECT_EQ(Event(7, 1, VR_SAMPLE)["results"].dump(), R"({"v":0,"g":0,"k":0})") << "nobody reads device 7";
}

TEST_F(HandleSession, ProjectOfAnOlderVersionIsRaised) {
    Json request = Json::parse(CREATE_HANDLE);
    request["node"] = "old";
    request["saved"] = {{"values", {{"7", 1}, {"802", "Hand"}, {"803", 1}}},
                        {"choices", {803}},
                        {"pins", {{{"group", 851}, {"ids", {852, 853, 854}}}, {{"group", 861}, {"ids", {862, 863}}}}}};
    Must(request.dump());
    EXPECT_EQ(Param("old", "own", 7)["int"], 2);
    EXPECT_EQ(Param("old", "own", 803)["choices"].dump(),
              R"(["IO_PROCESS_VRHANLDE_HANDLE_LEFT","IO_PROCESS_VRHANLDE_HANDLE_RIGHT"])");
    EXPECT_EQ(Param("old", "own", 803)["int"], 1);
    EXPECT_EQ(Param("old", "inputs", 802)["string"], "Hand");
    EXPECT_EQ(OutputGroups("old"), (std::vector<unsigned>{851, 856, 861}));
    EXPECT_EQ(Param("old", "outputs", 858), Param("v", "outputs", 858));
    EXPECT_EQ(Param("old", "outputs", 864), nullptr) << "the other groups stay as they are";
    const OrderedJson before = WholeScene();
    Must(R"({"op":"outputs","node":"old"})");
    EXPECT_EQ(WholeScene(), before);
}

TEST_F(HandleSession, ProjectWithoutGroupsRaises) {
    Json request = Json::parse(CREATE_HANDLE);
    request["node"] = "old";
    request["saved"] = {{"groups", false}};
    EXPECT_EQ(AskJson(request.dump())["error"], "the module raised CInvalidArgException");
    EXPECT_EQ(Refusal(R"({"op":"inspect","node":"old"})"), R"(node: there is no node "old")");
}

TEST_F(HandleSession, MovedObjectIsSavedAndLoaded) {
    Must(R"({"op":"object","clip":"Intro","name":"Hand"})");
    Set("v", 802, "string", "Hand");
    Process();
    Send(Json::object());
    const OrderedJson objects = Must(R"({"op":"objects"})");
    const OrderedJson before = WholeScene();
    const std::string strFile = Quote(m_folder.Path() / "saved.json");
    Must(R"({"op":"save","file":)" + strFile + "}");
    Must(R"({"op":"destroy","node":"v"})");
    Must(R"({"op":"load","file":)" + strFile + "}");
    EXPECT_EQ(Must(R"({"op":"objects"})"), objects);
    EXPECT_EQ(WholeScene(), before);
    Process();
    Send({{"pose", Json(std::vector<int>(16, 7))}});
    EXPECT_EQ(Must(R"({"op":"objects"})")["objects"][0]["matrix"], OrderedJson(std::vector<double>(16, 7.0)));
}

// ---- All together --------------------------------------------------------------------------------------------------

TEST_F(InputNodes, LayoutsAreThoseOfTheirClasses) {
    m_folder.Write("Plugins/NodePlugin/IOProcess/CVEKIOGesture.XML",
                   R"(<ParamLayout><Group id="701" name="Base param"><Param id="2"/></Group></ParamLayout>)");
    m_folder.Write("Plugins/NodePlugin/IOProcess/CVEKIOVRHandle.XML",
                   R"(<ParamLayout><Group id="801" name="Base param"/><Group id="802" name="More"/></ParamLayout>)");
    for (const char* pszCreate : {CREATE_GESTURE, CREATE_HANDLE, CREATE_KEY_CHECK, CREATE_TEXT_FIELD}) {
        Must(pszCreate);
    }
    const OrderedJson gesture = Must(R"({"op":"layout","node":"g"})");
    const OrderedJson handle = Must(R"({"op":"layout","node":"v"})");
    EXPECT_EQ(gesture["groups"], 1);
    EXPECT_EQ(handle["groups"], 2);
    EXPECT_TRUE(std::string(gesture["path"]).ends_with(R"(\Plugins\NodePlugin\IOProcess\CVEKIOGesture.XML)"));
    EXPECT_TRUE(std::string(handle["path"]).ends_with(R"(\Plugins\NodePlugin\IOProcess\CVEKIOVRHandle.XML)"));
    for (const char* pszAddress : {"reader", "state", "array"}) {
        EXPECT_NE(gesture[pszAddress], handle[pszAddress]) << "one per class";
    }
    Must(R"({"op":"call","code":1})");
    EXPECT_EQ(Must(R"({"op":"layout","node":"g"})"), gesture);
    EXPECT_EQ(Must(R"({"op":"layout","node":"v"})"), handle);
    for (const char* pszNode : {"c", "t"}) {
        EXPECT_EQ(AskObject(Json{{"op", "layout"}, {"node", pszNode}}).dump(),
                  R"({"ok":true,"path":"","reader":null,"state":null,"array":null,"groups":0})");
    }
}

TEST_F(InputNodes, NodeTypesAreCreatedUnderTheirNames) {
    const std::pair<const char*, const char*> NODES[] = {{CREATE_KEY_CHECK, "IO_PROCESS_KEY_CHECK"},
                                                         {CREATE_TEXT_FIELD, "IO_PROCESS_TEXTFIELDINPUT"},
                                                         {CREATE_GESTURE, "TOUCH_CONTROL_TOUCH_GESTURE"},
                                                         {CREATE_HANDLE, "IO_PROCESS_VRHANLDE"}};
    for (const auto& [pszCreate, pszName] : NODES) {
        EXPECT_EQ(Ask(pszCreate), R"({"ok":true,"result":1,"created":true})");
        const OrderedJson inspected = AskObject(Json{{"op", "inspect"}, {"node", Json::parse(pszCreate)["node"]}});
        EXPECT_EQ(inspected["name"], pszName);
        EXPECT_EQ(inspected["second_name"], pszName);
        EXPECT_EQ(inspected["kind_code"], 247);
        EXPECT_EQ(inspected["type"], Json::parse(pszCreate)["type"].get<std::string>());
    }
}

TEST_F(InputNodes, PointerRecordsReachMouseAndGestureAlike) {
    Must(CREATE_MOUSE);
    Must(CREATE_GESTURE);
    Process();
    const Json sample = {{"is", "pointer"}, {"rx", 0}, {"ry", 0}, {"x", 1}, {"y", 2}, {"pointer", 0}, {"relative", 0}};
    const OrderedJson pressed = Event(1, 3005, sample);
    EXPECT_EQ(pressed["results"].dump(), R"({"m":1,"g":1})");
    EXPECT_EQ(Posted(pressed), Outputs{358});
    const OrderedJson released = Event(1, 3006, sample);
    EXPECT_EQ(Posted(released), (Outputs{362, 758}));
    EXPECT_EQ(released["posted"][0]["node"], "m");
    EXPECT_EQ(released["posted"][1]["node"], "g");
}

} // namespace
