// Devices one by one: added, changed, connected, sent texts, taken away, while the others stay as they are.
#include "NetworkPeers.h"

#include <thread>

#include "base/TextUtf8.h"
#include "protocol/Shapes.h"

namespace {

class DeviceRequests : public CNetworkTest {
protected:
    /// A device by itself; `more` holds further fields.
    OrderedJson ChangeDevice(int nId, const Json& address, const Json& more = Json::object()) {
        Json request = {
            {"op", "device"}, {"device", nId}, {"name", "Wall"}, {"parser", "direct"}, {"address", address}};
        request.update(more);
        return Must(request);
    }

    OrderedJson Devices() { return Must("network")["devices"]; }

    std::string Read(CTestPeers::Socket& device, size_t nBytes) { return m_peers.Read(device, nBytes, Serve()); }

    CTestPeers::CListener m_second{m_peers};
};

/// Remembers what was dropped.
class CDropped final : private ISessionObserver {
public:
    explicit CDropped(CSession& session) : m_session(session) { m_session.Attach(*this); }
    ~CDropped() { m_session.Detach(*this); }

    /// As the page is told.
    std::vector<std::string> m_dropped;
    size_t m_nLines = 0; ///< of the log, about it

private:
    void OnDone(const SDone& done) override {
        for (const SLogged& line : done.activity.logged) {
            m_nLines += Utf8(line.strText).find("waited too long") != std::string::npos ? 1 : 0;
        }
    }
    void OnDropped(const SDroppedItems& dropped) override { m_dropped.push_back(JsonObject(dropped)); }

    CSession& m_session;
};

TEST_F(DeviceRequests, AddingOneLeavesTheOthersConnected) {
    auto first = ConnectDevice("direct");
    ChangeDevice(4, m_second.Address(), {{"name", "Floor"}});
    auto second = m_second.Accept();
    Talk(R"(
        network => {"devices":[{"id":3,"state":"connected"},{"id":4,"name":"Floor","state":"connected"}]}
        send device=3 text=one => {"sent":[{"device":3,"raw":"6f6e65"}]}
        send device=4 text=two
    )");
    EXPECT_EQ(Read(first, 3), "one");
    EXPECT_EQ(Read(second, 3), "two");
    Must("remove_device device=3");
    EXPECT_TRUE(m_peers.IsClosed(first));
    Must("send device=4 text=three");
    EXPECT_EQ(Read(second, 5), "three");
    Talk(R"(
        network => {"devices":[{"id":4,"sent":2}]}
        remove_device device=3 => device: there is no device 3
        remove_device device=4
    )");
    EXPECT_EQ(Devices(), OrderedJson::array());
}

TEST_F(DeviceRequests, TheFirstOneBeginsTheList) {
    Talk(R"(
        remove_device device=3 => device: there is no device 3
        network => {"devices":null}
        device device=3 name=Wall parser=none
        network => {"devices":[{"id":3,"address":null,"state":"unconnected"}]}
    )");
}

TEST_F(DeviceRequests, AnotherNameLeavesTheConnectionAndWhatWaits) {
    CTestPeers::CListener later(m_peers, false);
    ChangeDevice(3, later.Address(), {{"drop_after", nullptr}});
    ChangeDevice(4, nullptr);
    Must("send device=3 text=first");
    ChangeDevice(3, later.Address(), {{"name", "Stage"}, {"drop_after", 3600}});
    EXPECT_TRUE(Matches(Devices()[0], {{"id", 3}, {"name", "Stage"}, {"queued_items", 1}, {"drop_after", 3600.0}}));
    later.Listen();
    auto device = later.Accept(Serve());
    EXPECT_EQ(Read(device, 5), "first");

    // Nodes see the other name, too.
    Talk(R"(
        device device=3 name=Wall parser=framed
        device device=3 name=Stage parser=framed
        create node=s type=send clip=Clip graph=G
        set node=s param=402 string="3"
        process
        trigger node=s param=410
        process => {"sent":[{"device":3,"record":{"DevName":"Stage"}}]}
    )");
}

TEST_F(DeviceRequests, AnotherAddressIsAnotherConnectionInTheSamePlace) {
    ChangeDevice(3, m_listener.Address());
    auto before = m_listener.Accept();
    ChangeDevice(4, nullptr);
    ChangeDevice(3, m_second.Address());
    auto now = m_second.Accept();
    EXPECT_TRUE(m_peers.IsClosed(before));
    EXPECT_TRUE(
        Matches(Devices(),
                Json{{{"id", 3}, {"address", m_second.Address()}, {"sent", 0}, {"state", "connected"}}, {{"id", 4}}}));
    Must("send device=3 text=now");
    EXPECT_EQ(Read(now, 3), "now");
}

TEST_F(DeviceRequests, ConnectTriesWithoutWaitingForTheNextAttempt) {
    CTestPeers::CListener later(m_peers, false);
    ChangeDevice(3, later.Address());
    ChangeDevice(4, nullptr);
    CPeers& peers = m_pSession->Peers();
    peers.RunAlways(); // then nothing is tried but in its loop
    EXPECT_TRUE(Until([this] { return Device()["state"] == "waiting"; },
                      [&] { peers.Context().run_one_for(std::chrono::milliseconds(10)); }));
    later.Listen();
    Must("connect device=3");
    peers.Context().poll();
    EXPECT_NE(Device()["state"], "waiting");
    Talk(R"(
        connect device=3
        connect device=4 => device: device 4 "Wall" has no address
        connect device=5 => device: there is no device 5
    )");
}

TEST_F(DeviceRequests, SentTextsGoTheWayOfTheNodes) {
    auto device = ConnectDevice("json");
    Talk(R"(
        send device=3 text="ü"
        listen_only on=true
        send device=3 text=shown => {"sent":[{"device":3,"raw":"73686f776e"}]}
        listen_only on=false
        send device=3 text=behind
        network => {"devices":[{"sent":2,"shown":1,"last_sent_bytes":{"text":"behind","sent":true}}]}
        send device=3 text="" => text: is empty
        send device=4 text=x => device: there is no device 4
        device device=4 name=Stage parser=framed
        send device=4 text=x => device: device 4 "Stage" takes no texts: its parser is framed
    )");
    EXPECT_EQ(Read(device, 8), "übehind");
    EXPECT_EQ(Refusal({{"op", "send"}, {"device", 3}, {"text", std::string((4 << 20) + 1, 'x')}}),
              "text: the item is too long");
}

TEST_F(DeviceRequests, HowLongAnItemMayWaitIsKept) {
    Talk(R"(
        device device=3 name=Wall parser=none
        network => {"devices":[{"drop_after":2.0}]}
        device device=3 name=Wall parser=none drop_after=null
        network => {"devices":[{"drop_after":null}]}
        device device=3 name=Wall parser=none drop_after=0.25
    )");
    const std::string strFile = Quote(m_folder.Path() / "scene.json");
    Must("save file=" + strFile);
    Must(R"(devices list=[{"id":3,"name":"Wall","parser":"none"}])");
    EXPECT_FALSE(Device().contains("drop_after")) << "lists without it mean what they always did";
    Must("load file=" + strFile);
    EXPECT_EQ(Device()["drop_after"], 0.25);
}

TEST_F(DeviceRequests, EachIsAStepThatLeavesTheOthersConnected) {
    auto first = ConnectDevice("direct");
    ChangeDevice(4, m_second.Address(), {{"name", "Floor"}});
    auto second = m_second.Accept();
    Talk(R"(
        undo => {"step":{"name":"Add device Floor","op":"device","of":"Floor"}}
        network => {"devices":[{"id":3,"state":"connected"}]}
    )");
    EXPECT_TRUE(m_peers.IsClosed(second));
    Must("redo");
    second = m_second.Accept();
    Talk(R"(
        device device=4 name=Stage parser=none new=true => device: there is a device 4 already
        device device=4 name=Stage parser=none
        undo => {"step":{"name":"Change device Stage"}}
        remove_device device=4
        undo => {"step":{"name":"Remove device Floor"}}
        batch requests=[{"op":"remove_device","device":4},{"op":"remove_device","device":5}] => requests[1].device: there is no device 5
        network => {"devices":[{"id":3,"state":"connected"},{"id":4,"name":"Floor","parser":"direct"}]}
        send device=3 text=still
    )");
    EXPECT_EQ(Read(first, 5), "still");
}

// ---- Late items ---------------------------------------------------------------------------------------------------

TEST_F(DeviceRequests, WhatWaitsTooLongForADeviceIsDroppedAndTold) {
    CTestPeers::CListener later(m_peers, false);
    ChangeDevice(3, later.Address(), {{"drop_after", 0.05}});
    EXPECT_FALSE(Device().contains("dropped"));
    CDropped dropped(*m_pSession);
    const auto tStart = std::chrono::steady_clock::now();
    CreateStringNode("late");
    SendString();
    Await([this] { return Device()["queued_items"] == 0; });
    EXPECT_EQ(dropped.m_dropped, std::vector<std::string>{R"({"node":"s","device":3,"items":1})"});
    Talk(R"(counters => {"nodes":{"s":{"sent":1,"dropped":1}}})");
    Must("send device=3 text=late");
    Await([this] { return Device()["dropped"] == 2; });
    Talk(R"(counters => {"nodes":{"s":{"sent":1,"dropped":1}}})"); // not the request's
    EXPECT_EQ(dropped.m_dropped.back(), R"({"node":null,"device":3,"items":1})");
    EXPECT_GE(dropped.m_nLines, 1u);
    EXPECT_LE(dropped.m_nLines, 1 + (std::chrono::steady_clock::now() - tStart) / std::chrono::seconds(10));
    EXPECT_TRUE(Matches(Device(), {{"queued_bytes", 0}, {"lost", 0}, {"sent", 0}}));

    // It fires nothing when the device is there again; what is sent then arrives.
    ChangeDevice(3, later.Address(), {{"drop_after", 3600}});
    later.Listen();
    auto device = later.Accept(Serve());
    AwaitState("connected");
    Must("set node=s param=1505 string=now");
    SendString();
    EXPECT_EQ(Read(device, 4), std::string("now\0", 4));
    EXPECT_EQ(dropped.m_dropped.size(), 2u);
}

TEST_F(DeviceRequests, TheLogNamesWhoSentWhatIsDropped) {
    CTestPeers::CListener later(m_peers, false);
    ChangeDevice(3, later.Address(), {{"drop_after", 3600}});
    CreateStringNode("a");
    SendString();
    SendString();
    Must("send device=3 text=c");
    CDropped dropped(*m_pSession);
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    ChangeDevice(3, later.Address(), {{"drop_after", 0.001}}); // which is over for all of them
    Await([this] { return Device()["dropped"] == 3; });
    EXPECT_EQ(dropped.m_dropped, (std::vector<std::string>{R"({"node":"s","device":3,"items":2})",
                                                           R"({"node":null,"device":3,"items":1})"}));
    const OrderedJson lines = Must("log")["lines"];
    EXPECT_EQ(lines.back()["text"], "device 3 \"Wall\" at " + later.Address() +
                                        ": 3 items sent by \"s\", a request waited too long and are dropped");
}

TEST_F(DeviceRequests, WhatMayWaitForEverIsKept) {
    CTestPeers::CListener later(m_peers, false);
    ChangeDevice(3, later.Address(), {{"drop_after", nullptr}});
    ChangeDevice(4, later.Address(), {{"drop_after", 0.05}});
    Must("send device=3 text=kept");
    Must("send device=4 text=late");
    Await([this] { return Devices()[1]["dropped"] == 1; });
    EXPECT_EQ(Device()["queued_items"], 1);
}

TEST_F(DeviceRequests, WhatListenOnlyHoldsBackIsLateToo) {
    CTestPeers::CListener later(m_peers, false);
    ChangeDevice(3, later.Address(), {{"drop_after", 3600}});
    Must("send device=3 text=held");
    Must("listen_only on=true");
    later.Listen();
    auto device = later.Accept(Serve());
    AwaitState("connected");
    EXPECT_EQ(Device()["queued_items"], 1);
    ChangeDevice(3, later.Address(), {{"drop_after", 0.05}});
    Await([this] { return Device()["dropped"] == 1; });
    ChangeDevice(3, later.Address(), {{"drop_after", 3600}});
    Must("listen_only on=false");
    Must("send device=3 text=now");
    EXPECT_EQ(Read(device, 3), "now");
}

TEST_F(DeviceRequests, WhatADeviceThatStopsReadingDoesNotTakeIsDropped) {
    auto device = ConnectDevice("direct"); // and doesn't read at first
    ChangeDevice(3, m_listener.Address(), {{"drop_after", 3600}});
    const std::string strLong(100'000, 'x');
    size_t nItems = 0;
    while (Device()["queued_items"] < 10) { // the system's buffers take much
        ASSERT_LT(++nItems, 4000u);
        Must({{"op", "send"}, {"device", 3}, {"text", strLong}});
    }
    ChangeDevice(3, m_listener.Address(), {{"drop_after", 0.05}});
    Await([this] { return Device()["queued_items"] <= 1; }); // that was begun
    const size_t nDropped = Device()["dropped"];
    EXPECT_GE(nDropped, 1u);
    // It reads again: what was begun arrives whole, and behind it what is sent then.
    EXPECT_EQ(Read(device, (nItems - nDropped) * strLong.size()).size(), (nItems - nDropped) * strLong.size());
    ChangeDevice(3, m_listener.Address(), {{"drop_after", 3600}});
    Must("send device=3 text=now");
    EXPECT_EQ(Read(device, 3), "now");
    EXPECT_TRUE(Matches(Device(), {{"sent", nItems - nDropped + 1}, {"dropped", nDropped}, {"lost", 0}}));
}

} // namespace
