// Texts for the JSON nodes: by request, and from devices that send them; and what the nodes made of them.
#include "HostTest.h"
#include "NetworkPeers.h"
#include "network/TextLines.h"
#include "protocol/Shapes.h"

namespace {

class JsonTextRequests : public CNetworkTest {
protected:
    JsonTextRequests() {
        Talk(R"(
            create node=j type=device_json clip=Clip graph=G
            create node=o type=object_json clip=Clip graph=G
            set node=o param=1202 string=Intro
            set node=o param=1203 string=Map
            process
        )");
    }

    OrderedJson DeviceText(int nDevice, const std::string& strText) {
        return Must(Event(5, 0, {{"is", "device_text"}, {"device", nDevice}, {"text", strText}}));
    }
    OrderedJson ObjectText(const std::string& strObject, const std::string& strText) {
        return Must(Event(6, 0, {{"is", "object_text"}, {"clip", "Intro"}, {"object", strObject}, {"text", strText}}));
    }

    OrderedJson Verdicts() { return Must("json")["nodes"]; }
    OrderedJson NewVerdicts() { return ToJson(m_pSession->JsonVerdicts().TakeNew(m_pSession->Scene())); }

    std::string Text() { return Param("j", "outputs", 1452)["string"]; }

    /// A device that sends texts, connected; the node is about device 3.
    CTestPeers::Socket ConnectDevice(int nId = 3, const char* pszParser = "json") {
        Must("set node=j param=1402 int=3");
        return CNetworkTest::ConnectDevice(pszParser, nId);
    }

    /// Read the network until so many texts were handed to the nodes; what the replies tell of them.
    OrderedJson AwaitTexts(size_t nTexts) {
        OrderedJson dispatched = OrderedJson::array();
        Until([&] { return dispatched.size() >= nTexts; },
              [&] {
                  const OrderedJson items = Must("wait ms=100")["dispatched"];
                  dispatched.insert(dispatched.end(), items.begin(), items.end());
              });
        EXPECT_EQ(dispatched.size(), nTexts);
        return dispatched;
    }
};

// ---- By request ----------------------------------------------------------------------------------------------------

TEST_F(JsonTextRequests, TextsReachTheirNodes) {
    EXPECT_EQ(Verdicts(), OrderedJson::object());
    OrderedJson reply = DeviceText(1, "[1,2]");
    EXPECT_EQ(reply["results"].dump(), R"({"j":1,"o":0})");
    EXPECT_EQ(reply["posted"].dump(), R"([{"node":"j","output":1453,"via":"host","clip":"Clip","object":null}])");
    EXPECT_EQ(reply["log"][0]["level"], 4);
    EXPECT_EQ(reply.size(), 4u) << "what the module did alone";
    EXPECT_EQ(DeviceText(2, "[3]")["results"]["j"], 0);
    EXPECT_EQ(Text(), "[1,2]");
    reply = ObjectText("Map", "no JSON");
    EXPECT_EQ(reply["results"].dump(), R"({"j":0,"o":1})");
    EXPECT_EQ(Posted(reply), std::vector{1253});
    EXPECT_EQ(Param("o", "outputs", 1252)["string"], "no JSON");
    EXPECT_EQ(ObjectText("Other", "text")["results"]["o"], 0);
}

// ---- Verdicts ------------------------------------------------------------------------------------------------------

TEST_F(JsonTextRequests, DeviceNodesSayWhatBecameOfTheText) {
    Must(Event(0, 2002, KeyText("a")));
    Must("event node=j device=5 event=0 payload=null");
    EXPECT_EQ(Verdicts(), OrderedJson::object()) << "no text";
    const auto expect = [&](const std::string& strText, const char* pszVerdict) {
        DeviceText(1, strText);
        OrderedJson verdict = OrderedJson::parse(pszVerdict);
        verdict["text"] = strText;
        verdict["length"] = strText.size();
        EXPECT_EQ(Verdicts()["j"], verdict) << strText;
    };
    constexpr char TAKEN[] = R"({"verdict":"taken"})";
    constexpr char NOT_JSON[] = R"({"verdict":"not_json"})";
    expect("[1]", TAKEN);
    for (const char* pszText : {"null", "{", ""}) {
        expect(pszText, NOT_JSON);
    }
    Must("set node=j param=1403 int=1");
    expect("[1]", R"({"verdict":"not_object"})");
    expect("{", NOT_JSON);
    expect("{}", TAKEN);
    Talk(R"(
        set node=j param=1406 string=cmd
        set node=j param=1407 string=start
        set node=j param=1408 string=n
        set node=j param=1409 string="0.1"
    )");
    expect("{}", R"({"verdict":"key_missing","key":"cmd"})");
    expect(R"({"cmd":"stop"})", R"({"verdict":"value_differs","key":"cmd","value":"stop","expected":"start"})");
    expect(R"({"cmd":"start"})", R"({"verdict":"key_missing","key":"n"})");
    expect(R"({"cmd":"start","n":0.2})", R"({"verdict":"value_differs","key":"n","value":"0.2","expected":"0.1"})");
    expect(R"({"n":0.1,"cmd":"start"})", TAKEN);
    expect("[", NOT_JSON); // not the pair of a text before
    DeviceText(2, std::string(1000, ' ') + "1");
    EXPECT_EQ(Verdicts()["j"], (OrderedJson{{"verdict", "other_device"},
                                            {"device", 2},
                                            {"expected", 1},
                                            {"text", std::string(500, ' ')},
                                            {"length", 1001}}))
        << "long texts are cut";
}

TEST_F(JsonTextRequests, TextsInVerdictsAreCut) {
    const std::string strLong(1000, 'x');
    const std::string strCut(500, 'x');
    const auto set = [&](const char* pszNode, unsigned nParam) {
        Must({{"op", "set"}, {"node", pszNode}, {"param", nParam}, {"string", strLong}});
    };
    Must("set node=j param=1403 int=1");
    set("j", 1404);
    DeviceText(1, "{}");
    EXPECT_EQ(Verdicts()["j"]["key"], strCut);
    set("j", 1405);
    DeviceText(1, "{\"" + strLong + "\":\"" + std::string(1000, 'y') + "\"}");
    EXPECT_EQ(Verdicts()["j"]["value"], std::string(500, 'y'));
    EXPECT_EQ(Verdicts()["j"]["expected"], strCut);
    set("o", 1202);
    set("o", 1203);
    Must(Event(6, 0, {{"is", "object_text"}, {"clip", strLong + "1"}, {"object", strLong}, {"text", ""}}));
    EXPECT_EQ(Verdicts()["o"]["verdict"], "other_object");
    for (const char* pszName : {"clip", "object", "expected_clip", "expected_object"}) {
        EXPECT_EQ(Verdicts()["o"][pszName], strCut) << pszName;
    }
}

TEST_F(JsonTextRequests, VerdictsAreAboutTheNodesThatAreThereAndReady) {
    ObjectText("Map", "no JSON");
    Talk(R"(json => {"nodes":{"o":{"verdict":"taken","text":"no JSON","length":7},"j":null}})");
    ObjectText("Road", "text");
    Talk(R"(json => {"nodes":{"o":{"verdict":"other_object","clip":"Intro","object":"Road","expected_clip":"Intro",)"
         R"("expected_object":"Map","text":"text"}}})");
    Must("process node=j graph=false");
    Must(R"(drop node=o param=1204 from=["own","inputs"])");
    DeviceText(1, "{}");
    ObjectText("Map", "text");
    Talk(R"(
        json => {"nodes":{"j":{"verdict":"not_ready"},"o":{"verdict":"not_ready"}}}
        destroy node=j
        json => {"nodes":{"j":null,"o":{}}}
        create node=j type=device_json clip=Clip graph=G
        json => {"nodes":{"j":null}}
    )");
}

TEST_F(JsonTextRequests, NewVerdictsAreToldOnce) {
    EXPECT_EQ(NewVerdicts(), OrderedJson::object());
    DeviceText(1, "{}");
    DeviceText(1, "[]");
    EXPECT_EQ(NewVerdicts()["j"]["text"], "[]");
    EXPECT_EQ(NewVerdicts(), OrderedJson::object());
    m_pSession->JsonVerdicts().ForgetTaken();
    EXPECT_EQ(NewVerdicts()["j"]["text"], "[]");
}

// ---- From devices --------------------------------------------------------------------------------------------------

TEST_F(JsonTextRequests, ADevicesLinesAreTextsInWhateverPiecesTheyCome) {
    auto device = ConnectDevice();
    CTestPeers::Write(device, "{\"a\":1}\n{\"名\":\"");
    EXPECT_EQ(AwaitTexts(1).dump(), R"([{"from":"device","device":5,"event":0,"results":{"j":1,"o":0}}])");
    for (const char c : std::string("😀\"}\r\n")) {
        CTestPeers::Write(device, std::string(1, c));
        Must("wait ms=5");
    }
    Await([this] { return Device()["received"] == 2; });
    EXPECT_EQ(Text(), "{\"名\":\"😀\"}");
    EXPECT_TRUE(Matches(Device(), Json::parse(R"({"parser":"json","matched":2,"rejected":0,"last_rejected":null})")));
}

TEST_F(JsonTextRequests, RefusedLinesAreCountedAndTheNextOneIsRead) {
    auto device = ConnectDevice();
    m_peers.Write(device, "\n\xFF\n" + std::string(LONGEST_TEXT_LINE + 1, 'x'), Serve());
    CTestPeers::Write(device, "\n[1]\nno JSON\n");
    EXPECT_EQ(AwaitTexts(2)[1]["results"]["j"], 0);
    EXPECT_EQ(Text(), "[1]");
    EXPECT_TRUE(Matches(Device(), Json::parse(R"({"received":2,"matched":1,"rejected":3,"last_rejected":"too long",
        "rejected_lines":{"empty":1,"too long":1,"not UTF-8":1,"cut off":0},"state":"connected"})")));
    CTestPeers::Write(device, "[2]\n[3");
    AwaitTexts(1);
    device.close();
    Await([this] { return Device()["rejected"] == 4; });
    EXPECT_EQ(Device()["last_rejected"], "cut off");
    auto again = m_listener.Accept(Serve());
    CTestPeers::Write(again, "]\n[4]\n");
    AwaitTexts(2);
    EXPECT_EQ(Text(), "[4]");
}

TEST_F(JsonTextRequests, EachDeviceSendsUnderItsOwnNumberAndOtherParsersTakeNoTexts) {
    auto device = ConnectDevice(7);
    CTestPeers::Write(device, "[7]\n");
    EXPECT_EQ(AwaitTexts(1)[0]["results"]["j"], 0);
    EXPECT_EQ(Verdicts()["j"]["device"], 7);
    device = ConnectDevice(3, "direct");
    CTestPeers::Write(device, "[1]\n");
    Await([this] { return Device()["received_bytes"] == 4; });
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(Device()["received"], 1);
    EXPECT_FALSE(Device().contains("rejected_lines"));
}

} // namespace
