// Devices one by one: added, changed, connected, sent texts, taken away, while the others stay as they are.
#include "NetworkPeers.h"

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

    /// Wait until the first device is in that state.
    void AwaitState(const std::string& strState) {
        Await([&] { return Device()["state"] == strState; });
    }

    std::string Read(CTestPeers::Socket& device, size_t nBytes) { return m_peers.Read(device, nBytes, Serve()); }

    CTestPeers::CListener m_second{m_peers};
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
    for (int i = 0; i < 5; ++i) { // each attempt that fails makes the pause behind it longer
        AwaitState("waiting");
        Must("connect device=3");
    }
    later.Listen();
    Talk(R"(
        connect device=3
        network => {"devices":[{"id":3,"state":"connected"},{"id":4}]}
        connect device=3
        network => {"devices":[{"id":3,"state":"connected"},{"id":4}]}
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
        device device=3 name=Wall parser=none drop_after=0 => drop_after: must be from 0.001 to 86400 seconds
        device device=3 name=Wall parser=none drop_after=86401 => drop_after: must be from 0.001 to 86400 seconds
        device device=3 name=Wall parser=none drop_after=soon => drop_after: must be a number
    )");
    const std::string strFile = Quote(m_folder.Path() / "scene.json");
    Must("save file=" + strFile);
    Must(R"(devices list=[{"id":3,"name":"Wall","parser":"none"}])");
    EXPECT_FALSE(Device().contains("drop_after")) << "lists without it mean what they always did";
    Must("load file=" + strFile);
    EXPECT_EQ(Device()["drop_after"], 0.25);
}

} // namespace
