// The session's network, with real peers on this machine: devices, broadcasts, records of other hosts.
#include "NetworkPeers.h"

#include <algorithm>

#include "HostTest.h"
#include "host/HostCommon.h"
#include "network/Peers.h"
#include "protocol/Shapes.h"

namespace {

const char* const SEND_TYPE = "{8164BB40-6B6A-4707-88B7-386BCB0D1B04}";
const char* const RECEIVE_TYPE = "{8164BB40-6B6A-4707-88B7-386BCB0D1B05}";
const char* const BROADCAST_RECEIVE_TYPE = "{8164BB40-6B6A-4707-88B7-386BCB0D1B0D}";
const char* const STRING_SEND_TYPE = "{8164BB40-6B6A-4707-88B7-386BCB0D1B0F}";

const char* const NOBODYS_ADDRESS = "192.0.2.1"; // kept free for documents

class NetworkRequests : public CHostTest {
protected:
    OrderedJson Do(const Json& request) {
        OrderedJson reply = AskObject(request);
        EXPECT_EQ(reply["ok"], true) << request << '\n' << reply;
        return reply;
    }

    std::string RefusalOf(const Json& request) { return Refusal(request.dump()); }

    void Create(const char* pszNode, const char* pszType) {
        EXPECT_EQ(
            Do({{"op", "create"}, {"node", pszNode}, {"type", pszType}, {"clip", "Clip"}, {"graph", "G"}})["created"],
            true);
    }

    void Set(const char* pszNode, unsigned nParam, const char* pszKind, const Json& value) {
        Do({{"op", "set"}, {"node", pszNode}, {"param", nParam}, {pszKind, value}});
    }

    /// Trigger "Send" of a node and evaluate it.
    OrderedJson Send(const char* pszNode, unsigned nSend) {
        Do({{"op", "trigger"}, {"node", pszNode}, {"param", nSend}});
        return Do({{"op", "process"}, {"node", pszNode}});
    }

    void SetDevice(int nId, const char* pszParser, const Json& address) {
        Do({{"op", "devices"},
            {"list", Json::array({{{"id", nId}, {"name", "Wall"}, {"parser", pszParser}, {"address", address}}})}});
    }

    OrderedJson Device() { return Do({{"op", "network"}})["devices"][0]; }

    /// Wait until the device is in that state; its state then.
    OrderedJson AwaitState(const std::string& strState) {
        for (int i = 0; i < 200 && Device()["state"] != strState; ++i) {
            Do({{"op", "wait"}, {"ms", 20}});
        }
        EXPECT_EQ(Device()["state"], strState);
        return Device();
    }

    /// Device 3 has just lost its connection and isn't tried again for 0.8 s: it was lost a few times in a row.
    void LoseConnection() {
        SetDevice(3, "framed", m_listener.Address());
        for (int i = 0; i < 4; ++i) {
            AwaitState("connected");
            m_listener.Accept().close();
            AwaitState("waiting");
        }
    }

    /// A send node for device 3 and a receive node of the same key.
    void CreateRecordNodes() {
        Create("send", SEND_TYPE);
        Set("send", 402, "string", "3");
        Set("send", 404, "string", "Clip");
        Set("send", 406, "string", "key");
        Set("send", 408, "string", "value");
        Create("receive", RECEIVE_TYPE);
        Set("receive", 503, "string", "key");
        Do({{"op", "process"}});
    }

    void CreateStringNode() {
        Create("string", STRING_SEND_TYPE);
        Set("string", 1503, "int", 3);
        Set("string", 1505, "string", "12|7");
        Do({{"op", "process"}});
    }

    std::string Output(const char* pszNode, unsigned nOutput) {
        const OrderedJson node = Do({{"op", "inspect"}, {"node", pszNode}});
        for (const OrderedJson& group : node["outputs"]) {
            for (const OrderedJson& output : group["params"]) {
                if (output["id"] == nOutput) {
                    return output["string"];
                }
            }
        }
        return "no such output";
    }

    /// Send until the queue is full, and as often again.
    void FillQueue(const char* pszNode, unsigned nSend) {
        const auto refused = [this] { return Device()["refused"].get<size_t>(); };
        for (size_t nBefore = refused(), nInARow = 0, nTries = 0; nInARow < 20 && nTries < 2000; ++nTries) {
            Send(pszNode, nSend);
            nInARow = refused() > nBefore ? nInARow + 1 : 0;
            nBefore = refused();
        }
        ASSERT_GT(refused(), 0u);
    }

    /// The log lines of a reply that hold the text.
    static size_t CountLines(const OrderedJson& reply, const std::string& strText) {
        return !reply.contains("log")
                   ? 0
                   : static_cast<size_t>(std::ranges::count_if(reply["log"], [&](const auto& line) {
                         return line["text"].template get<std::string>().find(strText) != std::string::npos;
                     }));
    }

    unsigned short ListenBroadcast() {
        return Do({{"op", "listen"}, {"address", "127.0.0.1"}, {"broadcast", 0}})["broadcast"];
    }
    unsigned short ListenControl() { return Do({{"op", "listen"}, {"broadcast", nullptr}, {"control", 0}})["control"]; }

    OrderedJson Wait(unsigned nMilliseconds = 5000) { return Do({{"op", "wait"}, {"ms", nMilliseconds}}); }

    CTestPeers m_peers;
    CTestPeers::CListener m_listener{m_peers};
};

// ---- Devices ------------------------------------------------------------------------------------------------------

TEST_F(NetworkRequests, ThereIsNoNetworkAtFirst) {
    EXPECT_EQ(
        Do({{"op", "network"}}),
        (OrderedJson{
            {"ok", true}, {"devices", nullptr}, {"broadcast", nullptr}, {"control", nullptr}, {"listen_only", false}}));
}

TEST_F(NetworkRequests, DevicesAreConnectedWhenTheReplyComes) {
    SetDevice(3, "framed", m_listener.Address());
    const auto connection = m_listener.Accept();
    const OrderedJson device = Device();
    EXPECT_EQ(device["id"], 3);
    EXPECT_EQ(device["name"], "Wall");
    EXPECT_EQ(device["parser"], "framed");
    EXPECT_EQ(device["address"], m_listener.Address());
    EXPECT_EQ(device["state"], "connected");
    EXPECT_EQ(device["last_problem"], nullptr);
}

TEST_F(NetworkRequests, ARecordReachesTheDeviceAsAFrame) {
    SetDevice(3, "framed", m_listener.Address());
    auto device = m_listener.Accept();
    CreateRecordNodes();
    const OrderedJson reply = Send("send", 410);
    const OrderedJson record = {{"DevID", "3"},        {"DevName", "Wall"},   {"ClipName", "Clip"},
                                {"GroupName", ""},     {"KeyName", "key"},    {"KeyNumber", 0},
                                {"HelpParameter", ""}, {"KeyValue", "value"}, {"Layer", 0}};
    EXPECT_EQ(reply["sent"],
              OrderedJson::array({{{"device", 3}, {"command", 50}, {"clip", "Clip"}, {"record", record}}}));
    EXPECT_EQ(m_peers.Read(device, RecordFrame().size()), RecordFrame());
    EXPECT_EQ(Device()["sent"], 1);
}

TEST_F(NetworkRequests, AStringReachesADirectDeviceByteForByte) {
    SetDevice(3, "direct", m_listener.Address());
    auto device = m_listener.Accept();
    CreateStringNode();
    EXPECT_EQ(Send("string", 1507)["sent"], OrderedJson::array({{{"device", 3}, {"raw", "31327c3700"}}}));
    EXPECT_EQ(m_peers.Read(device, 5), std::string("12|7\0", 5));
}

TEST_F(NetworkRequests, ADeviceWithoutAddressShowsInSentOnly) {
    SetDevice(3, "framed", nullptr);
    CreateRecordNodes();
    EXPECT_EQ(Send("send", 410)["sent"].size(), 1u);
    const OrderedJson device = Device();
    EXPECT_EQ(device["state"], "unconnected");
    EXPECT_EQ(device["queued_items"], 0);
    EXPECT_EQ(device["refused"], 0);
}

TEST_F(NetworkRequests, ListenOnlyKeepsItemsFromTheDevice) {
    SetDevice(3, "framed", m_listener.Address());
    auto device = m_listener.Accept();
    CreateRecordNodes();
    Do({{"op", "listen_only"}, {"on", true}});
    EXPECT_EQ(Send("send", 410)["sent"].size(), 1u);
    EXPECT_EQ(Device()["shown"], 1);
    EXPECT_EQ(Device()["last_sent_bytes"]["size"], RecordFrame().size());
    EXPECT_EQ(Device()["last_sent_bytes"]["sent"], false);
    Do({{"op", "listen_only"}, {"on", false}});
    Set("send", 408, "string", "second");
    Send("send", 410);
    EXPECT_EQ(Device()["shown"], 1);
    EXPECT_EQ(Device()["last_sent_bytes"]["sent"], true);
    EXPECT_EQ(m_peers.Read(device, RecordFrame("second").size()), RecordFrame("second"));
}

TEST_F(NetworkRequests, ListenOnlyAlsoHoldsWhatWaits) {
    CreateRecordNodes();
    LoseConnection();
    Send("send", 410);
    Do({{"op", "listen_only"}, {"on", true}});
    AwaitState("connected");
    auto device = m_listener.Accept();
    Wait(100);
    EXPECT_EQ(Device()["queued_items"], 1);
    EXPECT_EQ(device.available(), 0u);
    Do({{"op", "listen_only"}, {"on", false}});
    EXPECT_EQ(m_peers.Read(device, RecordFrame().size()), RecordFrame());
    EXPECT_EQ(Device()["queued_items"], 0);
}

TEST_F(NetworkRequests, AnAnswerFromADeviceFiresTheReceiveNode) {
    SetDevice(3, "framed", m_listener.Address());
    auto device = m_listener.Accept();
    CreateRecordNodes();
    CTestPeers::Write(device, RecordFrame("back"));
    const OrderedJson reply = Wait();
    EXPECT_EQ(reply["dispatched"],
              OrderedJson::array(
                  {{{"from", "device"}, {"device", 2}, {"event", 0}, {"results", {{"send", 1}, {"receive", 1}}}}}));
    EXPECT_EQ(reply["posted"][0]["output"], 554);
    EXPECT_EQ(Output("receive", 552), "back");
    EXPECT_EQ(Device()["received"], 1);
    EXPECT_EQ(Device()["matched"], 1);
}

TEST_F(NetworkRequests, ItemsThatNoNodeTakesDontCountAsMatched) {
    SetDevice(3, "framed", m_listener.Address());
    auto device = m_listener.Accept();
    Create("send", SEND_TYPE); // answers every record with 1
    CTestPeers::Write(device, RecordFrame());
    EXPECT_EQ(Wait()["dispatched"].size(), 1u);
    EXPECT_EQ(Device()["received"], 1);
    EXPECT_EQ(Device()["matched"], 0);
}

TEST_F(NetworkRequests, ADeviceThatIsOutOfStepIsConnectedAnew) {
    SetDevice(3, "framed", m_listener.Address());
    auto device = m_listener.Accept();
    CTestPeers::Write(device, "HTTP/1.1 400 Bad Request\r\n\r\n");
    const OrderedJson state = AwaitState("waiting");
    EXPECT_EQ(state["rejected"], 1);
    EXPECT_EQ(state["last_rejected"], "bad magic");
    EXPECT_EQ(state["last_problem"], "out of step: bad magic");
    EXPECT_TRUE(m_peers.IsClosed(device));
    AwaitState("connected");
}

TEST_F(NetworkRequests, ALostConnectionComesBackAndWhatWasQueuedGoesOut) {
    CreateRecordNodes();
    LoseConnection();
    Send("send", 410);
    EXPECT_EQ(Device()["queued_items"], 1);
    AwaitState("connected");
    auto device = m_listener.Accept();
    EXPECT_EQ(m_peers.Read(device, RecordFrame().size()), RecordFrame());
    EXPECT_EQ(Device()["lost"], 0);
}

TEST_F(NetworkRequests, ADeviceThatIsNotThereIsTriedAgain) {
    std::string strAddress;
    {
        const CTestPeers::CListener gone(m_peers);
        strAddress = gone.Address();
    }
    SetDevice(3, "framed", strAddress);
    EXPECT_EQ(Device()["state"], "waiting");
    EXPECT_TRUE(Device()["last_problem"].is_string());
    // The attempts that fail alike are logged once.
    size_t nLines = 0;
    for (int i = 0; i < 10; ++i) {
        const OrderedJson reply = Wait(100);
        nLines += reply.contains("log") ? reply["log"].size() : 0;
    }
    EXPECT_EQ(nLines, 0u);
}

TEST_F(NetworkRequests, ADeviceThatClosesEachConnectionIsTriedEverMoreSeldom) {
    using std::chrono::steady_clock;
    const auto pause = [this] {
        m_listener.Accept().close();
        AwaitState("waiting");
        const auto tBegin = steady_clock::now();
        AwaitState("connected");
        return steady_clock::now() - tBegin;
    };
    SetDevice(3, "framed", m_listener.Address());
    for (std::chrono::milliseconds expected{100}; expected.count() <= 800; expected *= 2) {
        EXPECT_GT(pause(), expected / 2); // its beginning is seen late
    }
    Wait(1100); // a connection that lasts a second was a good one
    EXPECT_LT(pause(), std::chrono::milliseconds(800));
}

TEST_F(NetworkRequests, ADeviceThatStopsReadingCostsNoMoreThanItsQueue) {
    SetDevice(3, "direct", m_listener.Address());
    auto device = m_listener.Accept(); // and doesn't read at first
    CreateStringNode();
    const std::string strText(100'000, 'x');
    Set("string", 1505, "string", strText);
    // Until the system's buffers, which grow for a while, and the queue are full.
    size_t nSent = 0;
    size_t nRefusedInARow = 0;
    size_t nLines = 0;
    const auto tStart = std::chrono::steady_clock::now();
    for (size_t nRefused = 0; nSent < 2000 && nRefusedInARow < 50; ++nSent) {
        const OrderedJson reply = Send("string", 1507);
        const bool bRefused = Device()["refused"] > nRefused;
        nRefused += bRefused ? 1 : 0;
        nRefusedInARow = bRefused ? nRefusedInARow + 1 : 0;
        nLines += reply["log"].dump().find("the queue is full") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(nRefusedInARow, 50u);
    const auto nTenSeconds = (std::chrono::steady_clock::now() - tStart) / std::chrono::seconds(10);
    EXPECT_GE(nLines, 1u);
    EXPECT_LE(nLines, 1u + static_cast<size_t>(nTenSeconds)) << "one line in ten seconds tells of it";
    const OrderedJson state = Device();
    EXPECT_LE(state["queued_bytes"], 4 << 20);
    EXPECT_GT(state["queued_bytes"], 3 << 20);

    // However long that takes: it's there and says so, though it doesn't read.
    Wait(12'000);
    EXPECT_EQ(Device()["state"], "connected");
    EXPECT_EQ(Device()["lost"], 0);

    // It reads again: everything that was taken arrives, whole and in order, and new items are taken.
    const size_t nTaken = nSent - state["refused"].get<size_t>();
    std::string strRead;
    device.non_blocking(true);
    std::vector<char> buffer(1 << 20);
    for (int nIdle = 0; strRead.size() < nTaken * (strText.size() + 1) && nIdle < 500;) {
        boost::system::error_code error;
        const size_t nRead = device.read_some(boost::asio::buffer(buffer), error);
        strRead.append(buffer.data(), nRead);
        nIdle = nRead > 0 ? 0 : nIdle + 1;
        Wait(nRead > 0 ? 0 : 10);
    }
    std::string strExpected;
    for (size_t i = 0; i < nTaken; ++i) {
        strExpected += strText + '\0';
    }
    EXPECT_EQ(strRead.size(), strExpected.size());
    EXPECT_TRUE(strRead == strExpected) << "not what was sent";
    EXPECT_EQ(Device()["queued_items"], 0);
    Send("string", 1507);
    EXPECT_EQ(Device()["refused"], state["refused"]);
}

TEST_F(NetworkRequests, AnItemThatWasBegunIsNotContinuedOnTheNextConnection) {
    SetDevice(3, "framed", m_listener.Address());
    auto device = m_listener.Accept(); // and doesn't read at first
    CreateRecordNodes();
    Set("send", 408, "string", std::string(70'000, 'x'));
    FillQueue("send", 410);
    const size_t nQueued = Device()["queued_items"];
    const size_t nSent = Device()["sent"];

    // It closes its side while the rest is still going out, and reads on for a while.
    device.shutdown(boost::asio::socket_base::shutdown_send);
    m_peers.Read(device, 1 << 20);
    const OrderedJson state = AwaitState("waiting");
    EXPECT_EQ(state["last_problem"], "closed by the device");
    EXPECT_EQ(state["lost"], 1);
    EXPECT_EQ(state["queued_items"].get<size_t>() + state["sent"].get<size_t>() + 1, nQueued + nSent);
    AwaitState("connected");
    auto next = m_listener.Accept();
    const std::string strFrame = RecordFrame(std::string(70'000, 'x'));
    EXPECT_EQ(m_peers.Read(next, 4), strFrame.substr(0, 4)) << "not the beginning of an item";
}

TEST_F(NetworkRequests, AConnectionThatIsOverIsLetGoThoughNobodyTakesWhatCameIn) {
    SetDevice(3, "direct", m_listener.Address());
    auto device = m_listener.Accept();
    CreateStringNode();
    CTestPeers::Write(device, "nobody waits for this");
    for (int i = 0; i < 10; ++i) {
        Device();
    }
    device.set_option(boost::asio::socket_base::linger(true, 0));
    device.close(); // a reset, which only writing meets
    bool bLost = false;
    for (int i = 0; i < 100 && !bLost; ++i) {
        Send("string", 1507);
        bLost = Device()["state"] != "connected";
    }
    EXPECT_TRUE(bLost);
    EXPECT_NE(Device()["last_problem"], nullptr);
}

TEST_F(NetworkRequests, ASlowDeviceDoesNotFillTheLog) {
    SetDevice(3, "direct", m_listener.Address());
    auto device = m_listener.Accept();
    CreateStringNode();
    Set("string", 1505, "string", std::string(100'000, 'x'));
    FillQueue("string", 1507);
    // It makes room for a few items at a time, which more of them are sent for.
    size_t nLines = 0;
    const size_t nRefusedBefore = Device()["refused"];
    const auto tStart = std::chrono::steady_clock::now();
    for (int i = 0; i < 20; ++i) {
        m_peers.Read(device, 400'000);
        for (int nSends = 0; nSends < 10; ++nSends) {
            const OrderedJson reply = Send("string", 1507);
            nLines += CountLines(reply, "refused");
        }
    }
    EXPECT_GT(Device()["refused"].get<size_t>(), nRefusedBefore + 50);
    // In ten seconds one tells of refused items, and one that items were taken again.
    const auto nTenSeconds = (std::chrono::steady_clock::now() - tStart) / std::chrono::seconds(10);
    EXPECT_LE(nLines, 2 * (1 + static_cast<size_t>(nTenSeconds)));
}

TEST_F(NetworkRequests, ItemsThatGoWithTheirDeviceAreLogged) {
    CreateRecordNodes();
    LoseConnection();
    Send("send", 410);
    Send("send", 410);
    const OrderedJson reply = Do({{"op", "devices"}, {"list", nullptr}});
    EXPECT_EQ(CountLines(reply, "2 items that waited are dropped"), 1u) << reply;
    SetDevice(3, "framed", nullptr);
    EXPECT_FALSE(Do({{"op", "devices"}, {"list", nullptr}}).contains("log"));
}

TEST_F(NetworkRequests, ARunningHostShowsTheBeginningOfLongBytes) {
    constexpr size_t MOST_SHOWN = 65536;
    SetDevice(3, "direct", nullptr);
    CreateStringNode();
    const std::string strText(100'000, 'a');
    Set("string", 1505, "string", strText);
    OrderedJson sent = Send("string", 1507)["sent"][0];
    EXPECT_EQ(sent["raw"].get<std::string>().size(), 2 * (strText.size() + 1));
    EXPECT_FALSE(sent.contains("size"));

    SActivity activity;
    activity.sent = {SSentBytes{3, std::vector<unsigned char>(MOST_SHOWN + 1), {}}, SSentBytes{3, {1}, {}}};
    CutForViewers(activity);
    const OrderedJson shown = ToJson(activity);
    EXPECT_EQ(shown["sent"][0]["raw"].get<std::string>().size(), 2 * MOST_SHOWN);
    EXPECT_EQ(shown["sent"][0]["size"], MOST_SHOWN + 1);
    EXPECT_EQ(shown["sent"][1], (OrderedJson{{"device", 3}, {"raw", "01"}}));
}

TEST_F(NetworkRequests, ManyItemsAtOnceLeaveTheFramesTheirTime) {
    constexpr int ITEMS_IN_A_PIECE = 4096;
    SetDevice(3, "json", m_listener.Address());
    auto device = m_listener.Accept();
    for (const char* pszNode : {"a", "b", "c"}) {
        Create(pszNode, SEND_TYPE);
    }
    // A frame would come whenever this timer does.
    auto& context = m_pSession->Peers().Context();
    m_pSession->Peers().RunAlways();
    int nMostInARow = 0;
    size_t nReceived = 0;
    boost::asio::steady_timer frame(context);
    std::function<void()> awaitFrame = [&] {
        frame.expires_after(std::chrono::milliseconds(1));
        frame.async_wait([&](const auto& error) {
            const size_t nNow = Device()["received"];
            nMostInARow = std::max(nMostInARow, static_cast<int>(nNow - nReceived));
            nReceived = nNow;
            if (!error) {
                awaitFrame();
            }
        });
    };
    awaitFrame();
    std::string strLines;
    for (int i = 0; i < ITEMS_IN_A_PIECE; ++i) {
        strLines += "1\n";
    }
    CTestPeers::Write(device, strLines);
    for (int i = 0; i < 1000 && nReceived < ITEMS_IN_A_PIECE; ++i) {
        context.run_for(std::chrono::milliseconds(20));
    }
    EXPECT_EQ(nReceived, static_cast<size_t>(ITEMS_IN_A_PIECE));
    EXPECT_LT(nMostInARow, ITEMS_IN_A_PIECE / 2);
    frame.cancel();
    context.run_for(std::chrono::milliseconds(1));
}

TEST_F(NetworkRequests, ARecordTooLongForAFrameIsRefused) {
    SetDevice(3, "framed", m_listener.Address());
    auto device = m_listener.Accept();
    CreateRecordNodes();
    Set("send", 408, "string", std::string(1 << 20, 'x'));
    const OrderedJson reply = Send("send", 410);
    EXPECT_NE(reply["log"].dump().find("too long"), std::string::npos);
    EXPECT_EQ(Device()["refused"], 1);
    EXPECT_EQ(Device()["queued_bytes"], 0);
}

TEST_F(NetworkRequests, BytesTooLongForTheQueueAreRefused) {
    SetDevice(3, "direct", m_listener.Address());
    auto device = m_listener.Accept();
    CreateStringNode();
    Set("string", 1505, "string", std::string(4 << 20, 'x')); // and the zero
    const OrderedJson reply = Send("string", 1507);
    EXPECT_NE(reply["log"].dump().find("too long"), std::string::npos);
    EXPECT_EQ(Device()["refused"], 1);
    EXPECT_EQ(Device()["queued_bytes"], 0);
}

TEST_F(NetworkRequests, DevicesAreReplacedAndTakenAway) {
    SetDevice(3, "framed", m_listener.Address());
    auto first = m_listener.Accept();
    SetDevice(4, "framed", m_listener.Address());
    auto second = m_listener.Accept();
    EXPECT_TRUE(m_peers.IsClosed(first));
    EXPECT_EQ(Device()["id"], 4);
    Do({{"op", "devices"}, {"list", nullptr}});
    EXPECT_TRUE(m_peers.IsClosed(second));
    EXPECT_EQ(Do({{"op", "network"}})["devices"], nullptr);
}

TEST_F(NetworkRequests, NodesSeeTheDifferenceOfNoListAndAnEmptyOne) {
    CreateRecordNodes();
    Set("send", 412, "int", 0); // to all
    EXPECT_NE(Send("send", 410)["log"].dump().find("找不到网络播放控制设备"), std::string::npos);
    Do({{"op", "devices"}, {"list", Json::array()}});
    EXPECT_NE(Send("send", 410)["log"].dump().find("找不到网络播放控制设备"), std::string::npos);
    SetDevice(7, "none", nullptr);
    EXPECT_NE(Send("send", 410)["log"].dump().find("触发事件"), std::string::npos);
}

TEST_F(NetworkRequests, WrongDeviceListsAreRefusedAndChangeNothing) {
    SetDevice(3, "framed", m_listener.Address());
    const Json good = {{"id", 1}, {"name", "n"}, {"parser", "none"}};
    const struct {
        const char* pszField;
        Json value;
        const char* pszNamed;
    } cases[] = {{"id", "1", "list[1].id"},
                 {"id", nullptr, "list[1].id"},
                 {"name", 1, "list[1].name"},
                 {"parser", "other", "list[1].parser"},
                 {"address", 9000, "list[1].address"},
                 {"address", "127.0.0.1", "list[1].address"},
                 {"address", "127.0.0.1:", "list[1].address"},
                 {"address", "127.0.0.1:0", "list[1].address"},
                 {"address", "127.0.0.1:65536", "list[1].address"},
                 {"address", "127.0.0.1:90x", "list[1].address"},
                 {"address", "localhost:9000", "list[1].address"}};
    for (const auto& wrong : cases) {
        Json bad = good;
        bad[wrong.pszField] = wrong.value;
        const std::string strError = RefusalOf({{"op", "devices"}, {"list", {good, bad}}});
        EXPECT_NE(strError.find(wrong.pszNamed), std::string::npos) << strError;
    }
    EXPECT_NE(RefusalOf({{"op", "devices"}}).find("list"), std::string::npos);
    EXPECT_NE(RefusalOf({{"op", "devices"}, {"list", "none"}}).find("list"), std::string::npos);
    EXPECT_NE(RefusalOf({{"op", "devices"}, {"list", {1}}}).find("list[0]"), std::string::npos);
    EXPECT_EQ(Device()["id"], 3);
    EXPECT_EQ(Device()["state"], "connected");
}

TEST_F(NetworkRequests, ASceneKeepsItsDevices) {
    SetDevice(3, "direct", m_listener.Address());
    m_listener.Accept();
    const auto file = m_folder.Path() / "scene.json";
    Must("{\"op\":\"save\",\"file\":" + Quote(file) + "}");
    Do({{"op", "devices"}, {"list", nullptr}});
    Must("{\"op\":\"load\",\"file\":" + Quote(file) + "}");
    const auto connection = m_listener.Accept();
    EXPECT_EQ(Device()["id"], 3);
    EXPECT_EQ(Device()["parser"], "direct");
    EXPECT_EQ(Device()["state"], "connected");

    const auto bad = m_folder.Write(
        "bad.json", R"({"format":"iohost scene","version":1,"devices":[{"id":1,"name":"n","parser":"p"}]})");
    EXPECT_NE(Refusal("{\"op\":\"load\",\"file\":" + Quote(bad) + "}").find("file.devices[0].parser"),
              std::string::npos);
    EXPECT_EQ(Device()["id"], 3);

    const auto none = m_folder.Write("none.json", R"({"format":"iohost scene","version":1})");
    Must("{\"op\":\"load\",\"file\":" + Quote(none) + "}");
    EXPECT_EQ(Do({{"op", "network"}})["devices"], nullptr);
}

// ---- Broadcasts ---------------------------------------------------------------------------------------------------

TEST_F(NetworkRequests, ABroadcastChangesTheOutputs) {
    Create("receive", BROADCAST_RECEIVE_TYPE);
    Set("receive", 1302, "string", "1");
    Do({{"op", "process"}});
    m_peers.SendDatagram(ListenBroadcast(), std::string(BROADCAST) + '\0');
    EXPECT_EQ(
        Wait()["dispatched"],
        OrderedJson::array({{{"from", "broadcast"}, {"device", 2}, {"event", 1}, {"results", {{"receive", 1}}}}}));
    EXPECT_EQ(Output("receive", 1352), "score");
    EXPECT_EQ(Output("receive", 1353), "12|7");
    EXPECT_EQ(Do({{"op", "network"}})["broadcast"]["matched"], 1);
}

TEST_F(NetworkRequests, EachDatagramIsOneMessageAndBrokenOnesAreCounted) {
    const unsigned short nPort = ListenBroadcast();
    m_peers.SendDatagram(nPort, "");
    m_peers.SendDatagram(nPort, "junk");
    m_peers.SendDatagram(nPort, std::string(60'000, 'x'));
    m_peers.SendDatagram(nPort, BROADCAST);
    EXPECT_EQ(Wait()["dispatched"].size(), 1u);
    m_peers.SendDatagram(nPort, std::string(BROADCAST) + BROADCAST);
    m_peers.SendDatagram(nPort, "[.{<Broadcast/>}.]");
    m_peers.SendDatagram(nPort, BROADCAST);
    EXPECT_EQ(Wait()["dispatched"].size(), 1u);
    const OrderedJson state = Do({{"op", "network"}})["broadcast"];
    EXPECT_EQ(state["received"], 2);
    EXPECT_EQ(state["matched"], 0);
    EXPECT_EQ(state["rejected"], 5);
    EXPECT_EQ(state["last_rejected"], "attribute missing");
    EXPECT_EQ(state["problem"], nullptr);
}

TEST_F(NetworkRequests, NothingIsTakenWithoutWaiting) {
    Create("receive", BROADCAST_RECEIVE_TYPE);
    Set("receive", 1302, "string", "1");
    Do({{"op", "process"}});
    m_peers.SendDatagram(ListenBroadcast(), BROADCAST);
    for (int i = 0; i < 20; ++i) {
        Do({{"op", "process"}});
    }
    EXPECT_EQ(Output("receive", 1353), "");
    EXPECT_EQ(Wait()["dispatched"].size(), 1u);
    EXPECT_EQ(Output("receive", 1353), "12|7");
}

TEST_F(NetworkRequests, WaitingEndsByItself) {
    ListenBroadcast();
    const auto tStart = std::chrono::steady_clock::now();
    EXPECT_EQ(Wait(50)["dispatched"], OrderedJson::array());
    EXPECT_GE(std::chrono::steady_clock::now() - tStart, std::chrono::milliseconds(50));
    EXPECT_EQ(Wait(0)["dispatched"], OrderedJson::array());
    EXPECT_NE(RefusalOf({{"op", "wait"}}).find("ms"), std::string::npos);
    EXPECT_NE(RefusalOf({{"op", "wait"}, {"ms", -1}}).find("ms"), std::string::npos);
    EXPECT_NE(RefusalOf({{"op", "wait"}, {"ms", 600'001}}).find("ms"), std::string::npos);
}

TEST_F(NetworkRequests, ThePortOfTheConfigurationIsListenedOn) {
    EXPECT_EQ(Do({{"op", "listen"}}), (OrderedJson{{"ok", true}, {"broadcast", nullptr}, {"control", nullptr}}));
    boost::asio::ip::udp::socket free(m_peers.Context(), {boost::asio::ip::address_v4::loopback(), 0});
    const unsigned short nPort = free.local_endpoint().port();
    free.close();
    m_folder.Write("Config/PortConfig.ini", "[iFable]\nBroadcastPort=" + std::to_string(nPort) + "\n");
    EXPECT_EQ(Do({{"op", "listen"}, {"address", "127.0.0.1"}})["broadcast"], nPort);
    EXPECT_EQ(Do({{"op", "listen"}, {"address", "127.0.0.1"}})["broadcast"], nPort); // its own port isn't taken
    EXPECT_EQ(Do({{"op", "listen"}, {"broadcast", nullptr}})["broadcast"], nullptr);
}

TEST_F(NetworkRequests, AConfiguredNumberThatIsNoPortIsNone) {
    for (const char* pszNoPort : {"70000", "65536", "-1"}) {
        m_folder.Write("Config/PortConfig.ini", std::string("[iFable]\nBroadcastPort=") + pszNoPort + "\n");
        EXPECT_EQ(ConfiguredBroadcastPort(), 0) << pszNoPort;
    }
}

TEST_F(NetworkRequests, AHiddenConfigurationNamesNoPort) {
    m_folder.Write("Config/PortConfig.ini", "[iFable]\nBroadcastPort=8060\n");
    EXPECT_EQ(ConfiguredBroadcastPort(), 8060);
    HideConfiguration();
    EXPECT_EQ(ConfiguredBroadcastPort(), 0);
    EXPECT_FALSE(PXGetPath(PATH_CONFIG).IsEmpty()) << "files would be looked for in the root folder";
}

TEST_F(NetworkRequests, ATakenPortIsRefusedAndTheOthersStay) {
    const unsigned short nBroadcast = ListenBroadcast();
    boost::asio::ip::udp::socket taken(m_peers.Context(), {boost::asio::ip::address_v4::loopback(), 0});
    const std::string strError =
        RefusalOf({{"op", "listen"}, {"address", "127.0.0.1"}, {"broadcast", taken.local_endpoint().port()}});
    EXPECT_NE(strError.find("broadcast"), std::string::npos);
    EXPECT_NE(RefusalOf({{"op", "listen"}, {"address", "127.0.0.1"}, {"broadcast", 0}, {"control", m_listener.Port()}})
                  .find("control"),
              std::string::npos);
    m_peers.SendDatagram(nBroadcast, BROADCAST);
    EXPECT_EQ(Wait()["dispatched"].size(), 1u);
}

TEST_F(NetworkRequests, AReceiverThatIsKeptUpTriesATakenPortAgain) {
    boost::asio::ip::udp::socket taken(m_peers.Context(), {boost::asio::ip::address_v4::loopback(), 0});
    const unsigned short nPort = taken.local_endpoint().port();
    m_pSession->Peers().KeepReceivingBroadcasts(nPort);
    EXPECT_NE(Wait(50)["log"].dump().find("trying again"), std::string::npos);
    const OrderedJson state = Do({{"op", "network"}})["broadcast"];
    EXPECT_EQ(state["port"], nPort);
    EXPECT_TRUE(state["problem"].is_string());
    EXPECT_EQ(state["errors"], 1);

    Wait(1100);
    EXPECT_EQ(Do({{"op", "network"}})["broadcast"]["errors"], 2);
    taken.close();
    for (int i = 0; i < 30 && !Do({{"op", "network"}})["broadcast"]["problem"].is_null(); ++i) {
        Wait(100);
    }
    EXPECT_EQ(Do({{"op", "network"}})["broadcast"]["problem"], nullptr);
    m_peers.SendDatagram(nPort, BROADCAST);
    EXPECT_EQ(Wait()["dispatched"].size(), 1u);
}

TEST_F(NetworkRequests, AReceiverThatWaitsForItsPortIsNotListening) {
    boost::asio::ip::udp::socket taken(m_peers.Context(), {boost::asio::ip::address_v4::any(), 0});
    const unsigned short nPort = taken.local_endpoint().port();
    m_pSession->Peers().KeepReceivingBroadcasts(nPort);
    Wait(50);
    const Json request = {{"op", "listen"}, {"broadcast", nPort}};
    EXPECT_NE(RefusalOf(request).find("broadcast"), std::string::npos);
    taken.close();
    EXPECT_EQ(Do(request)["broadcast"], nPort);
    m_peers.SendDatagram(nPort, BROADCAST);
    EXPECT_EQ(Wait(500)["dispatched"].size(), 1u);
    EXPECT_EQ(Do({{"op", "network"}})["broadcast"]["problem"], nullptr);
}

TEST_F(NetworkRequests, ListeningMovesToAnotherAddressOfTheSamePort) {
    const OrderedJson first = Do({{"op", "listen"}, {"address", "127.0.0.1"}, {"broadcast", 0}, {"control", 0}});
    const Json same = {{"op", "listen"}, {"broadcast", first["broadcast"]}, {"control", first["control"]}};
    Json there = same;
    there["address"] = "0.0.0.0";
    EXPECT_EQ(Do(there)["broadcast"], first["broadcast"]);
    EXPECT_EQ(Do(there)["control"], first["control"]);

    // An address that this machine doesn't have is refused, and the one that there is stays.
    Json nowhere = same;
    nowhere["address"] = NOBODYS_ADDRESS;
    nowhere["broadcast"] = nullptr;
    EXPECT_NE(RefusalOf(nowhere).find("control"), std::string::npos);
    m_peers.SendDatagram(first["broadcast"], BROADCAST);
    EXPECT_EQ(Wait()["dispatched"].size(), 1u);
    auto other = m_peers.Connect(first["control"]);
    CTestPeers::Write(other, RecordFrame());
    EXPECT_EQ(Wait()["dispatched"].size(), 1u);
    const OrderedJson state = Do({{"op", "network"}});
    EXPECT_EQ(state["broadcast"]["errors"], 0);
    EXPECT_EQ(state["control"]["errors"], 0);
}

TEST_F(NetworkRequests, BroadcastsOnAnAddressOfAnotherMachineAreRefused) {
    boost::asio::ip::udp::socket socket(m_peers.Context(), boost::asio::ip::udp::v4());
    boost::system::error_code error;
    if (!socket.bind({boost::asio::ip::make_address(NOBODYS_ADDRESS), 0}, error)) {
        GTEST_SKIP() << "this system gives datagram sockets any address";
    }
    const OrderedJson first = Do({{"op", "listen"}, {"address", "127.0.0.1"}, {"broadcast", 0}});
    const std::string strError =
        RefusalOf({{"op", "listen"}, {"address", NOBODYS_ADDRESS}, {"broadcast", first["broadcast"]}});
    EXPECT_NE(strError.find("broadcast"), std::string::npos);
    m_peers.SendDatagram(first["broadcast"], BROADCAST);
    EXPECT_EQ(Wait()["dispatched"].size(), 1u);
}

TEST_F(NetworkRequests, WrongPortsAndAddressesAreRefused) {
    EXPECT_NE(RefusalOf({{"op", "listen"}, {"broadcast", 65536}}).find("broadcast"), std::string::npos);
    EXPECT_NE(RefusalOf({{"op", "listen"}, {"broadcast", "8060"}}).find("broadcast"), std::string::npos);
    EXPECT_NE(RefusalOf({{"op", "listen"}, {"broadcast", nullptr}, {"control", -1}}).find("control"),
              std::string::npos);
    EXPECT_NE(RefusalOf({{"op", "listen"}, {"broadcast", 0}, {"address", "here"}}).find("address"), std::string::npos);
}

// ---- Records of other hosts ---------------------------------------------------------------------------------------

TEST_F(NetworkRequests, ARecordOfAnotherHostFiresTheReceiveNode) {
    CreateRecordNodes();
    auto other = m_peers.Connect(ListenControl());
    CTestPeers::Write(other, RecordFrame("from afar"));
    const OrderedJson reply = Wait();
    EXPECT_EQ(reply["dispatched"],
              OrderedJson::array(
                  {{{"from", "control"}, {"device", 4}, {"event", 0}, {"results", {{"send", 1}, {"receive", 1}}}}}));
    EXPECT_EQ(reply["posted"][0]["output"], 554);
    EXPECT_EQ(Output("receive", 552), "from afar");
}

TEST_F(NetworkRequests, FramesMayComeInPiecesAndTogether) {
    CreateRecordNodes();
    auto other = m_peers.Connect(ListenControl());
    other.set_option(boost::asio::ip::tcp::no_delay(true));
    const std::string strFrames = RecordFrame("first") + RecordFrame("second");
    size_t nDispatched = 0;
    for (const char cByte : strFrames.substr(0, strFrames.size() - 1)) {
        CTestPeers::Write(other, {&cByte, 1});
        nDispatched += Wait(0)["dispatched"].size();
    }
    nDispatched += Wait(200)["dispatched"].size();
    EXPECT_EQ(nDispatched, 1u);
    EXPECT_EQ(Output("receive", 552), "first");
    CTestPeers::Write(other, strFrames.substr(strFrames.size() - 1) + RecordFrame("third"));
    for (size_t nTries = 0; nTries < 100 && nDispatched < 3; ++nTries) {
        nDispatched += Wait(100)["dispatched"].size();
    }
    EXPECT_EQ(nDispatched, 3u);
    EXPECT_EQ(Output("receive", 552), "third");
}

TEST_F(NetworkRequests, AConnectionOutOfStepIsClosedAndTheOthersGoOn) {
    CreateRecordNodes();
    const unsigned short nPort = ListenControl();
    auto good = m_peers.Connect(nPort);
    auto bad = m_peers.Connect(nPort);
    CTestPeers::Write(bad, "GET / HTTP/1.1\r\n\r\n");
    CTestPeers::Write(good, RecordFrame());
    EXPECT_EQ(Wait()["dispatched"].size(), 1u);
    Wait(100);
    EXPECT_TRUE(m_peers.IsClosed(bad));
    CTestPeers::Write(good, RecordFrame());
    EXPECT_EQ(Wait()["dispatched"].size(), 1u);
    const OrderedJson state = Do({{"op", "network"}})["control"];
    EXPECT_EQ(state["connections"], 1);
    EXPECT_EQ(state["received"], 2);
    EXPECT_EQ(state["matched"], 2);
    EXPECT_EQ(state["rejected"], 1);
    EXPECT_EQ(state["last_rejected"], "bad magic");
}

TEST_F(NetworkRequests, AConnectionThatEndsWithinAFrameIsCounted) {
    auto other = m_peers.Connect(ListenControl());
    CTestPeers::Write(other, RecordFrame().substr(0, 40));
    other.close();
    for (int i = 0; i < 100 && Do({{"op", "network"}})["control"]["rejected"] == 0; ++i) {
        Wait(20);
    }
    EXPECT_EQ(Do({{"op", "network"}})["control"]["last_rejected"], "truncated");
    EXPECT_EQ(Do({{"op", "network"}})["control"]["connections"], 0);
}

TEST_F(NetworkRequests, TooManyConnectionsAreTurnedAway) {
    const unsigned short nPort = ListenControl();
    std::vector<CTestPeers::Socket> others;
    for (int i = 0; i < 65; ++i) {
        others.push_back(m_peers.Connect(nPort));
    }
    for (int i = 0; i < 100 && Do({{"op", "network"}})["control"]["turned_away"] == 0; ++i) {
        Wait(20);
    }
    const OrderedJson state = Do({{"op", "network"}})["control"];
    EXPECT_EQ(state["connections"], 64);
    EXPECT_EQ(state["turned_away"], 1);
}

// ---- Records and broadcasts by request ------------------------------------------------------------------------------

TEST_F(NetworkRequests, EventsCarryRecordsAndBroadcasts) {
    CreateRecordNodes();
    Create("broadcast", BROADCAST_RECEIVE_TYPE);
    Do({{"op", "process"}});
    const Json record = {{"is", "record"},           {"DevID", ""},      {"DevName", ""},  {"ClipName", "Clip"},
                         {"GroupName", ""},          {"KeyName", "key"}, {"KeyNumber", 0}, {"HelpParameter", "h"},
                         {"KeyValue", "by request"}, {"Layer", 1}};
    const Json broadcast = {{"is", "broadcast"}, {"flag", ""}, {"clip", "c"}, {"name", "n"}, {"data", "d"}};
    for (const int nDevice : {2, 4}) {
        const OrderedJson reply = Do({{"op", "event"}, {"device", nDevice}, {"event", 0}, {"payload", record}});
        EXPECT_EQ(reply["results"], (OrderedJson{{"send", 1}, {"receive", 1}, {"broadcast", 0}}));
    }
    EXPECT_EQ(Output("receive", 552), "by request");
    EXPECT_EQ(Output("receive", 553), "h");
    EXPECT_EQ(Do({{"op", "event"}, {"device", 2}, {"event", 1}, {"payload", broadcast}})["results"],
              (OrderedJson{{"send", 1}, {"receive", 0}, {"broadcast", 1}}));
    EXPECT_EQ(Output("broadcast", 1352), "n");
    EXPECT_EQ(Output("broadcast", 1353), "d");
    // Events that a node doesn't look at may carry anything.
    EXPECT_EQ(Do({{"op", "event"}, {"node", "receive"}, {"device", 3}, {"event", 0}, {"payload", record}})["results"],
              (OrderedJson{{"receive", 0}}));
    EXPECT_EQ(Do({{"op", "event"}, {"node", "receive"}, {"device", 2}, {"event", 1}, {"payload", record}})["results"],
              (OrderedJson{{"receive", 0}}));
    // Those that it does look at must carry what they should.
    EXPECT_NE(RefusalOf({{"op", "event"}, {"device", 2}, {"event", 1}, {"payload", record}}).find("payload.is"),
              std::string::npos);
    EXPECT_NE(RefusalOf({{"op", "event"}, {"device", 4}, {"event", 0}, {"payload", broadcast}}).find("payload.is"),
              std::string::npos);
    Json incomplete = record;
    incomplete.erase("Layer");
    EXPECT_NE(RefusalOf({{"op", "event"}, {"device", 2}, {"event", 0}, {"payload", incomplete}}).find("payload.Layer"),
              std::string::npos);
}

TEST_F(NetworkRequests, QuittingEndsTheConnections) {
    SetDevice(3, "framed", m_listener.Address());
    auto device = m_listener.Accept();
    auto other = m_peers.Connect(ListenControl());
    Wait(20);
    Do({{"op", "quit"}});
    EXPECT_TRUE(m_peers.IsClosed(device));
    EXPECT_TRUE(m_peers.IsClosed(other));
}

} // namespace
