// Texts for the JSON nodes: by request, and from devices that send them; and what the nodes made of them.
#include "NetworkPeers.h"

#include "HostTest.h"
#include "network/TextLines.h"
#include "protocol/Shapes.h"

namespace {

const char* const DEVICE_TYPE = "{8164BB40-6B6A-4707-88B7-386BCB0D1B0E}";
const char* const OBJECT_TYPE = "{8164BB40-6B6A-4707-88B7-386BCB0D1B0C}";
const char* const STRING_SEND_TYPE = "{8164BB40-6B6A-4707-88B7-386BCB0D1B0F}";

class JsonTextRequests : public CHostTest {
protected:
    OrderedJson Do(const Json& request) {
        OrderedJson reply = AskObject(request);
        EXPECT_EQ(reply["ok"], true) << request << '\n' << reply;
        return reply;
    }

    void Create(const char* pszNode, const char* pszType) {
        EXPECT_EQ(
            Do({{"op", "create"}, {"node", pszNode}, {"type", pszType}, {"clip", "Clip"}, {"graph", "G"}})["created"],
            true);
        Do({{"op", "process"}});
    }

    void Set(const char* pszNode, unsigned nParam, const char* pszKind, const Json& value) {
        Do({{"op", "set"}, {"node", pszNode}, {"param", nParam}, {pszKind, value}});
    }

    OrderedJson DeviceText(int nDevice, const std::string& strText) {
        return Do({{"op", "event"},
                   {"device", 5},
                   {"event", 0},
                   {"payload", {{"is", "device_text"}, {"device", nDevice}, {"text", strText}}}});
    }

    OrderedJson ObjectText(const std::string& strClip, const std::string& strObject, const std::string& strText) {
        return Do({{"op", "event"},
                   {"device", 6},
                   {"event", 0},
                   {"payload", {{"is", "object_text"}, {"clip", strClip}, {"object", strObject}, {"text", strText}}}});
    }

    OrderedJson Verdicts() { return Do({{"op", "json"}})["nodes"]; }

    std::string Output(const char* pszNode, unsigned nOutput) {
        const OrderedJson node = Do({{"op", "inspect"}, {"node", pszNode}});
        for (const OrderedJson& output : node["outputs"][0]["params"]) {
            if (output["id"] == nOutput) {
                return output["string"];
            }
        }
        return "no such output";
    }

    /// A device that sends texts, connected.
    CTestPeers::Socket ConnectDevice(int nId = 3) {
        Do({{"op", "devices"},
            {"list",
             Json::array({{{"id", nId}, {"name", "Wall"}, {"parser", "json"}, {"address", m_listener.Address()}}})}});
        return m_listener.Accept();
    }

    OrderedJson Device() { return Do({{"op", "network"}})["devices"][0]; }

    /// Read the network until so many texts were handed to the nodes; what the replies tell of them.
    OrderedJson AwaitTexts(size_t nTexts) {
        OrderedJson dispatched = OrderedJson::array();
        for (int i = 0; i < 100 && dispatched.size() < nTexts; ++i) {
            const OrderedJson reply = Do({{"op", "wait"}, {"ms", 100}});
            for (const OrderedJson& item : reply["dispatched"]) {
                dispatched.push_back(item);
            }
        }
        EXPECT_EQ(dispatched.size(), nTexts);
        return dispatched;
    }

    CTestPeers m_peers;
    CTestPeers::CListener m_listener{m_peers};
};

// ---- By request ----------------------------------------------------------------------------------------------------

TEST_F(JsonTextRequests, ADevicesTextReachesTheNode) {
    Create("j", DEVICE_TYPE);
    const OrderedJson reply = DeviceText(1, "[1,2]");
    EXPECT_EQ(reply["results"], (OrderedJson{{"j", 1}}));
    EXPECT_EQ(reply["posted"],
              OrderedJson::array(
                  {{{"node", "j"}, {"output", 1453}, {"via", "host"}, {"clip", "Clip"}, {"object", nullptr}}}));
    EXPECT_EQ(reply["log"][0]["level"], 4);
    EXPECT_EQ(Output("j", 1452), "[1,2]");
    EXPECT_EQ(DeviceText(2, "[3]")["results"], (OrderedJson{{"j", 0}}));
    EXPECT_EQ(Output("j", 1452), "[1,2]");
}

TEST_F(JsonTextRequests, AnObjectsTextReachesTheNode) {
    Create("o", OBJECT_TYPE);
    Set("o", 1202, "string", "Intro");
    Set("o", 1203, "string", "Map");
    const OrderedJson reply = ObjectText("Intro", "Map", "no JSON");
    EXPECT_EQ(reply["results"], (OrderedJson{{"o", 1}}));
    EXPECT_EQ(reply["posted"][0]["output"], 1253);
    EXPECT_EQ(Output("o", 1252), "no JSON");
    EXPECT_EQ(ObjectText("Intro", "Other", "text")["results"], (OrderedJson{{"o", 0}}));
}

TEST_F(JsonTextRequests, ReplyKeysAreWhatTheModuleDidAlone) {
    Create("j", DEVICE_TYPE);
    std::vector<std::string> keys;
    const OrderedJson reply = DeviceText(1, "{}");
    for (const auto& [key, value] : reply.items()) {
        keys.push_back(key);
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"ok", "results", "posted", "log"}));
}

// ---- Verdicts ------------------------------------------------------------------------------------------------------

/// How a verdict on this text looks.
OrderedJson Verdict(const char* pszText, OrderedJson verdict) {
    verdict["text"] = pszText;
    verdict["length"] = std::string_view(pszText).size();
    return verdict;
}

TEST_F(JsonTextRequests, ThereAreNoVerdictsWithoutATextForAJsonNode) {
    EXPECT_EQ(Verdicts(), OrderedJson::object());
    Create("j", DEVICE_TYPE);
    Create("o", OBJECT_TYPE);
    EXPECT_EQ(Verdicts(), OrderedJson::object());
    Do({{"op", "event"}, {"device", 0}, {"event", 2002}, {"payload", {{"is", "key"}, {"text", "a"}}}});
    Do({{"op", "event"}, {"node", "j"}, {"device", 5}, {"event", 0}, {"payload", nullptr}});
    Do({{"op", "event"}, {"record", nullptr}});
    EXPECT_EQ(Verdicts(), OrderedJson::object());
}

TEST_F(JsonTextRequests, DeviceNodesSayWhatBecameOfTheText) {
    Create("j", DEVICE_TYPE);
    const auto expect = [&](const char* pszText, const OrderedJson& verdict) {
        DeviceText(1, pszText);
        EXPECT_EQ(Verdicts(), (OrderedJson{{"j", Verdict(pszText, verdict)}}));
    };
    expect("[1]", {{"verdict", "taken"}});
    expect("null", {{"verdict", "not_json"}});
    expect("{", {{"verdict", "not_json"}});
    expect("", {{"verdict", "not_json"}});
    DeviceText(2, "{}");
    EXPECT_EQ(Verdicts()["j"], Verdict("{}", {{"verdict", "other_device"}, {"device", 2}, {"expected", 1}}));

    Set("j", 1403, "int", 1);
    expect("[1]", {{"verdict", "not_object"}});
    expect("{", {{"verdict", "not_json"}});
    expect("{}", {{"verdict", "taken"}});
    Set("j", 1406, "string", "cmd");
    Set("j", 1407, "string", "start");
    Set("j", 1408, "string", "n");
    Set("j", 1409, "string", "0.1");
    expect("{}", {{"verdict", "key_missing"}, {"key", "cmd"}});
    expect(R"({"cmd":"stop"})",
           {{"verdict", "value_differs"}, {"key", "cmd"}, {"value", "stop"}, {"expected", "start"}});
    expect(R"({"cmd":"start"})", {{"verdict", "key_missing"}, {"key", "n"}});
    expect(R"({"cmd":"start","n":0.2})",
           {{"verdict", "value_differs"}, {"key", "n"}, {"value", "0.2"}, {"expected", "0.1"}});
    expect(R"({"n":0.1,"cmd":"start"})", {{"verdict", "taken"}});
    expect("[", {{"verdict", "not_json"}}); // not the pair of a text before
}

TEST_F(JsonTextRequests, ObjectNodesSayWhatBecameOfTheText) {
    Create("o", OBJECT_TYPE);
    Set("o", 1202, "string", "Intro");
    Set("o", 1203, "string", "Map");
    ObjectText("Intro", "Map", "no JSON");
    EXPECT_EQ(Verdicts(), (OrderedJson{{"o", Verdict("no JSON", {{"verdict", "taken"}})}}));
    ObjectText("Intro", "Road", "text");
    EXPECT_EQ(Verdicts()["o"], Verdict("text", {{"verdict", "other_object"},
                                                {"clip", "Intro"},
                                                {"object", "Road"},
                                                {"expected_clip", "Intro"},
                                                {"expected_object", "Map"}}));
}

TEST_F(JsonTextRequests, NodesThatCantTakeTextsSaySo) {
    Create("j", DEVICE_TYPE);
    Create("o", OBJECT_TYPE);
    Do({{"op", "process"}, {"node", "j"}, {"graph", false}});
    Do({{"op", "drop"}, {"node", "o"}, {"param", 1204}, {"from", {"own", "inputs"}}});
    DeviceText(1, "{}");
    ObjectText("", "", "text");
    EXPECT_EQ(Verdicts()["j"]["verdict"], "not_ready");
    EXPECT_EQ(Verdicts()["o"]["verdict"], "not_ready");
}

TEST_F(JsonTextRequests, VerdictsAreAboutTheNodesThatAreThere) {
    Create("j", DEVICE_TYPE);
    Create("k", DEVICE_TYPE);
    Set("k", 1402, "int", 2);
    DeviceText(2, "{}");
    EXPECT_EQ(Verdicts()["j"]["verdict"], "other_device");
    EXPECT_EQ(Verdicts()["k"]["verdict"], "taken");
    Do({{"op", "destroy"}, {"node", "j"}});
    EXPECT_FALSE(Verdicts().contains("j"));
    Create("j", DEVICE_TYPE);
    EXPECT_FALSE(Verdicts().contains("j"));
}

TEST_F(JsonTextRequests, LongTextsAreCutInVerdicts) {
    Create("j", DEVICE_TYPE);
    DeviceText(1, std::string(1000, ' ') + "1");
    EXPECT_EQ(Verdicts()["j"]["text"], std::string(500, ' '));
    EXPECT_EQ(Verdicts()["j"]["length"], 1001);
}

TEST_F(JsonTextRequests, NewVerdictsAreToldOnce) {
    Create("j", DEVICE_TYPE);
    EXPECT_EQ(ToJson(m_pSession->JsonVerdicts().TakeNew(m_pSession->Scene())), OrderedJson::object());
    DeviceText(1, "{}");
    DeviceText(1, "[]");
    EXPECT_EQ(ToJson(m_pSession->JsonVerdicts().TakeNew(m_pSession->Scene()))["j"]["text"], "[]");
    EXPECT_EQ(ToJson(m_pSession->JsonVerdicts().TakeNew(m_pSession->Scene())), OrderedJson::object());
    DeviceText(1, "[]");
    EXPECT_EQ(ToJson(m_pSession->JsonVerdicts().TakeNew(m_pSession->Scene()))["j"]["text"], "[]");
    m_pSession->JsonVerdicts().ForgetTaken();
    EXPECT_EQ(ToJson(m_pSession->JsonVerdicts().TakeNew(m_pSession->Scene()))["j"]["text"], "[]");
}

// ---- From devices --------------------------------------------------------------------------------------------------

TEST_F(JsonTextRequests, ADevicesLinesAreTexts) {
    Create("j", DEVICE_TYPE);
    Set("j", 1402, "int", 3);
    auto device = ConnectDevice();
    CTestPeers::Write(device, "{\"a\":1}\n{\"名\":\"😀\"}\r\n");
    const OrderedJson item = {{"from", "device"}, {"device", 5}, {"event", 0}, {"results", {{"j", 1}}}};
    EXPECT_EQ(AwaitTexts(2), OrderedJson::array({item, item}));
    EXPECT_EQ(Output("j", 1452), "{\"名\":\"😀\"}");
    const OrderedJson state = Device();
    EXPECT_EQ(state["parser"], "json");
    EXPECT_EQ(state["received"], 2);
    EXPECT_EQ(state["matched"], 2);
    EXPECT_EQ(state["rejected"], 0);
    EXPECT_EQ(state["last_rejected"], nullptr);
}

TEST_F(JsonTextRequests, ATextMayComeInPieces) {
    Create("j", DEVICE_TYPE);
    Set("j", 1402, "int", 3);
    auto device = ConnectDevice();
    const std::string strLine = "{\"名\":\"😀\"}\n";
    for (const char c : strLine) {
        CTestPeers::Write(device, std::string(1, c));
        Do({{"op", "wait"}, {"ms", 5}});
    }
    for (int i = 0; i < 100 && Device()["received"] == 0; ++i) {
        Do({{"op", "wait"}, {"ms", 50}});
    }
    EXPECT_EQ(Output("j", 1452), "{\"名\":\"😀\"}");
    EXPECT_EQ(Device()["rejected"], 0);
}

TEST_F(JsonTextRequests, RefusedLinesAreCountedAndTheNextOneIsRead) {
    Create("j", DEVICE_TYPE);
    Set("j", 1402, "int", 3);
    auto device = ConnectDevice();
    CTestPeers::Write(device, "\n\xFF\n" + std::string(LONGEST_TEXT_LINE + 1, 'x') + "\n[1]\nno JSON\n");
    EXPECT_EQ(AwaitTexts(2)[1]["results"], (OrderedJson{{"j", 0}}));
    OrderedJson state = Device();
    EXPECT_EQ(state["received"], 2);
    EXPECT_EQ(state["matched"], 1);
    EXPECT_EQ(state["rejected"], 3);
    EXPECT_EQ(state["last_rejected"], "too long");
    EXPECT_EQ(state["rejected_lines"], (OrderedJson{{"empty", 1}, {"too long", 1}, {"not UTF-8", 1}, {"cut off", 0}}));
    EXPECT_EQ(state["state"], "connected");
    EXPECT_EQ(Output("j", 1452), "[1]");

    CTestPeers::Write(device, "[2]\n[3");
    AwaitTexts(1);
    device.close();
    for (int i = 0; i < 100 && Device()["rejected"] == 3; ++i) {
        Do({{"op", "wait"}, {"ms", 50}});
    }
    EXPECT_EQ(Device()["last_rejected"], "cut off");
    EXPECT_EQ(Output("j", 1452), "[2]");
    for (int i = 0; i < 100 && Device()["state"] != "connected"; ++i) {
        Do({{"op", "wait"}, {"ms", 50}});
    }
    auto again = m_listener.Accept();
    CTestPeers::Write(again, "]\n[4]\n");
    AwaitTexts(2);
    EXPECT_EQ(Output("j", 1452), "[4]");
}

TEST_F(JsonTextRequests, EachDeviceSendsUnderItsOwnNumber) {
    Create("j", DEVICE_TYPE);
    auto device = ConnectDevice(1);
    CTestPeers::Write(device, "[1]\n");
    AwaitTexts(1);
    auto other = ConnectDevice(7);
    CTestPeers::Write(other, "[7]\n");
    EXPECT_EQ(AwaitTexts(1)[0]["results"], (OrderedJson{{"j", 0}}));
    EXPECT_EQ(Output("j", 1452), "[1]");
    EXPECT_EQ(Verdicts()["j"]["device"], 7);
}

TEST_F(JsonTextRequests, OtherParsersTakeNoTexts) {
    Create("j", DEVICE_TYPE);
    Do({{"op", "devices"},
        {"list", Json::array({{{"id", 1}, {"name", "n"}, {"parser", "direct"}, {"address", m_listener.Address()}}})}});
    auto device = m_listener.Accept();
    CTestPeers::Write(device, "[1]\n");
    EXPECT_EQ(Do({{"op", "wait"}, {"ms", 200}})["dispatched"], OrderedJson::array());
    EXPECT_FALSE(Device().contains("rejected_lines"));
}

TEST_F(JsonTextRequests, ADeviceThatSendsTextsIsSentThemToo) {
    auto device = ConnectDevice();
    Create("string", STRING_SEND_TYPE);
    Set("string", 1503, "int", 3);
    Set("string", 1505, "string", "{}");
    Do({{"op", "process"}});
    Do({{"op", "trigger"}, {"node", "string"}, {"param", 1507}});
    Do({{"op", "process"}});
    EXPECT_EQ(m_peers.Read(device, 3), std::string("{}\0", 3));
}

TEST_F(JsonTextRequests, ASceneKeepsTheParser) {
    ConnectDevice();
    const auto file = m_folder.Path() / "scene.json";
    Must("{\"op\":\"save\",\"file\":" + Quote(file) + "}");
    Do({{"op", "devices"}, {"list", nullptr}});
    Must("{\"op\":\"load\",\"file\":" + Quote(file) + "}");
    EXPECT_EQ(Device()["parser"], "json");
}

} // namespace
