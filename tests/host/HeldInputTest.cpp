// What a connection holds down, and its release.
#include <array>
#include <map>
#include <random>
#include <set>
#include <thread>
#include <utility>
#include <vector>

#include <afxwin.h>

#include "HostTest.h"
#include "protocol/Shapes.h"

namespace {

class HeldInput : public CHostTest {
protected:
    HeldInput() {
        Must(CREATE_MOUSE);
        Must(CREATE_KEYBOARD);
        Must(R"({"op":"process"})");
    }

    OrderedJson Send(int nDevice, int nEvent, const Json& payload) {
        return AskObject({{"op", "event"}, {"device", nDevice}, {"event", nEvent}, {"payload", payload}}, &m_held);
    }

    OrderedJson Key(int nEvent, const char* pszText) { return Send(0, nEvent, {{"is", "key"}, {"text", pszText}}); }

    OrderedJson Pointer(int nEvent, int nPointer, int nX) {
        return Send(
            1, nEvent,
            {{"is", "pointer"}, {"rx", 0}, {"ry", 0}, {"x", nX}, {"y", 2}, {"pointer", nPointer}, {"relative", 0}});
    }

    static std::vector<int> OutputsPosted(const OrderedJson& reply) {
        std::vector<int> outputs;
        for (const OrderedJson& posted : reply.value("posted", OrderedJson::array())) {
            outputs.push_back(posted["output"]);
        }
        return outputs;
    }

    OrderedJson Release() { return AskObject({{"op", "release_held"}}, &m_held); }

    /// The list of what is held, without the ages.
    OrderedJson State() {
        OrderedJson state = ToJson(m_pSession->Held().State());
        for (OrderedJson& entry : state) {
            EXPECT_GE(entry["ms"].get<int>(), 0);
            entry.erase("ms");
        }
        return state;
    }

    OrderedJson Keys(const Json& down, const Json& toggled = Json::array()) {
        return AskObject({{"op", "keys"}, {"down", down}, {"toggled", toggled}}, &m_held);
    }

    /// A hand's sample; the trigger was pressed at 1000.
    OrderedJson Hand(int nHand, int bTrigger, int bPad) {
        return Send(3, 0,
                    {{"is", "vr"},
                     {"hand", nHand},
                     {"trigger", bTrigger},
                     {"pad", bPad},
                     {"padx", 0.75},
                     {"pady", 0.25},
                     {"pose", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1}},
                     {"hit", {4, 5, 6}},
                     {"press", 1000},
                     {"release", 0}});
    }

    CHeldInput& m_held = m_pSession->Held().Open();
};

TEST_F(HeldInput, NothingHeldReleasesNothing) {
    EXPECT_EQ(Release().dump(), R"({"ok":true,"released":[]})");
    Key(2002, "a");
    Key(2003, "a");
    Pointer(3005, 0, 1);
    Pointer(3006, 0, 1);
    EXPECT_EQ(Release().dump(), R"({"ok":true,"released":[]})");
}

TEST_F(HeldInput, KeysAreReleasedWithTheirText) {
    Key(2002, "a");
    Key(2002, "Shift");
    Key(2003, "a");
    const OrderedJson reply = Release();
    EXPECT_EQ(reply["released"].dump(), R"([{"device":0,"event":2003,"payload":{"is":"key","text":"Shift"}}])");
    EXPECT_EQ(reply["posted"][0]["output"], 153);
    EXPECT_EQ(reply["log"][0].dump(),
              R"({"level":4,"args":[0,0,0,0],"text":"synthetic release of the key \"Shift\": the page asks for it"})");
    EXPECT_EQ(Release()["released"], OrderedJson::array());
}

TEST_F(HeldInput, RepeatedKeyIsHeldOnce) {
    Key(2002, "a");
    Key(2002, "a");
    EXPECT_EQ(Release()["released"].size(), 1u);
}

TEST_F(HeldInput, ButtonsAreReleasedPerPointerWithItsLastSample) {
    Pointer(3005, 0, 1);
    Pointer(3007, 0, 1);
    Pointer(3009, 3, 5);
    Pointer(3013, 0, 9);
    const OrderedJson released = Release()["released"];
    ASSERT_EQ(released.size(), 3u);
    EXPECT_EQ(released[0]["event"], 3006);
    EXPECT_EQ(released[0]["payload"]["x"], 9);
    EXPECT_EQ(released[1]["event"], 3008);
    EXPECT_EQ(released[1]["payload"]["x"], 9);
    EXPECT_EQ(released[2]["event"], 3010);
    EXPECT_EQ(released[2]["payload"]["pointer"], 3);
    EXPECT_EQ(released[2]["payload"]["x"], 5);
}

TEST_F(HeldInput, EventsWithoutPayloadAreHeldToo) {
    Send(0, 2002, nullptr);
    Send(1, 3005, nullptr);
    EXPECT_EQ(Release()["released"].dump(),
              R"([{"device":0,"event":2003,"payload":null},{"device":1,"event":3006,"payload":null}])");
}

TEST_F(HeldInput, RefusedEventsHoldNothing) {
    EXPECT_EQ(Send(0, 2002, {{"is", "key"}})["ok"], false);
    EXPECT_EQ(AskObject({{"op", "event"}, {"node", "x"}, {"device", 0}, {"event", 2002}}, &m_held)["ok"], false);
    EXPECT_EQ(AskObject({{"op", "event"}, {"record", nullptr}}, &m_held)["ok"], true);
    EXPECT_EQ(Release()["released"], OrderedJson::array());
}

TEST_F(HeldInput, EventsOfOneNodeAreReleasedThere) {
    AskObject({{"op", "event"}, {"node", "k"}, {"device", 0}, {"event", 2002}}, &m_held);
    Must(R"({"op":"destroy","node":"k"})");
    const OrderedJson reply = Release();
    EXPECT_EQ(reply["ok"], true);
    EXPECT_EQ(reply["log"][1]["level"], 32); // its node is gone
}

TEST_F(HeldInput, ConnectionsAreKeptApart) {
    Key(2002, "a");
    CHeldInput& other = m_pSession->Held().Open();
    EXPECT_EQ(ReplyTo(m_pSession->CloseConnection(other, "it closed"))["released"], OrderedJson::array());
    EXPECT_EQ(State().size(), 1u);
    const OrderedJson reply = ReplyTo(m_pSession->CloseConnection(m_held, "it closed"));
    EXPECT_EQ(reply["released"].size(), 1u);
    EXPECT_EQ(reply["log"][0]["text"], R"(synthetic release of the key "a": it closed)");
    EXPECT_EQ(State(), OrderedJson::array());
}

TEST_F(HeldInput, StateNamesWhatIsHeldByWhomInOrder) {
    CHeldInput& other = m_pSession->Held().Open();
    Pointer(3009, 2, 1);
    Key(2002, "a");
    Keys({65, 16});
    Pointer(3013, 2, 9);
    AskObject({{"op", "event"}, {"device", 0}, {"event", 2002}}, &other);
    const int nOwn = m_held.Connection();
    EXPECT_NE(nOwn, other.Connection());
    EXPECT_EQ(State(), OrderedJson::array(
                           {{{"connection", nOwn}, {"device", 1}, {"what", "right button of pointer"}, {"identity", 2}},
                            {{"connection", nOwn}, {"device", 0}, {"what", "key"}, {"identity", "a"}},
                            {{"connection", nOwn}, {"device", 0}, {"what", "virtual key"}, {"identity", 16}},
                            {{"connection", nOwn}, {"device", 0}, {"what", "virtual key"}, {"identity", 65}},
                            {{"connection", other.Connection()}, {"device", 0}, {"what", "key"}, {"identity", ""}}}));
}

TEST_F(HeldInput, AgeCountsFromTheFirstPress) {
    Must(R"({"op":"clock","ms":1000})");
    Key(2002, "a");
    Must(R"({"op":"clock","ms":1020})");
    Key(2002, "a");
    EXPECT_EQ(m_pSession->Held().State()[0].nAgeMs, 20);
    Must(R"({"op":"clock","ms":10})"); // back
    EXPECT_EQ(m_pSession->Held().State()[0].nAgeMs, 0);
}

TEST_F(HeldInput, VersionGrowsOnlyWhenSomethingGoesDownOrUp) {
    const CHeldInputs& all = m_pSession->Held();
    unsigned long long nVersion = all.Version();
    const auto hasGrown = [&] { return std::exchange(nVersion, all.Version()) < all.Version(); };
    Key(2002, "a");
    EXPECT_TRUE(hasGrown());
    Key(2002, "a");
    Pointer(3013, 0, 1);
    Key(2003, "b");
    EXPECT_FALSE(hasGrown());
    Keys({65});
    EXPECT_TRUE(hasGrown());
    Keys({65}, {20});
    EXPECT_FALSE(hasGrown());
    Release();
    EXPECT_TRUE(hasGrown());
    Release();
    EXPECT_FALSE(hasGrown());
}

TEST_F(HeldInput, VirtualKeysAreDownAsLongAsAnybodyHoldsThem) {
    CHeldInput& other = m_pSession->Held().Open();
    Keys({16, 65}, {20});
    AskObject({{"op", "keys"}, {"down", {65}}, {"toggled", {20}}}, &other);
    EXPECT_LT(GetKeyState(16), 0);
    Keys(Json::array(), {20});
    EXPECT_EQ(GetKeyState(16), 0);
    EXPECT_LT(GetKeyState(65), 0);
    ReplyTo(m_pSession->CloseConnection(other, "it closed"));
    EXPECT_EQ(GetKeyState(65), 0);
    EXPECT_EQ(GetKeyState(20), 1);
}

TEST_F(HeldInput, VirtualKeysAreReleasedAndLogged) {
    Keys({65, 16}, {20});
    const OrderedJson reply = Release();
    EXPECT_EQ(reply["released"].dump(), R"([{"virtual_key":16},{"virtual_key":65}])");
    EXPECT_EQ(reply["log"][1]["text"], "synthetic release of the virtual key 65: the page asks for it");
    EXPECT_EQ(GetKeyState(16), 0);
    EXPECT_EQ(GetKeyState(65), 0);
    EXPECT_EQ(GetKeyState(20), 1);
    EXPECT_EQ(State(), OrderedJson::array());
    // What stays down in fact is told anew by the next request.
    Keys({65});
    EXPECT_EQ(State().size(), 1u);
}

TEST_F(HeldInput, PartsOfAHandAreReleasedOneAfterTheOther) {
    Must(R"({"op":"create","node":"v","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B08}","clip":"Clip","graph":"Hand"})");
    Must(R"({"op":"process"})");
    Hand(0, 1, 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    Hand(0, 1, 1);
    Hand(1, 1, 0);
    EXPECT_EQ(State().size(), 3u);
    const OrderedJson reply = Release();
    ASSERT_EQ(reply["released"].size(), 3u);
    EXPECT_EQ(reply["log"][0]["text"], "synthetic release of the trigger of hand 0: the page asks for it");
    const OrderedJson trigger = reply["released"][0]["payload"];
    EXPECT_EQ(trigger["trigger"], 0);
    EXPECT_EQ(trigger["pad"], 1);
    EXPECT_GE(trigger["release"].get<unsigned>(), 1010u);
    const OrderedJson pad = reply["released"][1]["payload"];
    EXPECT_EQ(pad["trigger"], 0);
    EXPECT_EQ(pad["pad"], 0);
    EXPECT_EQ(pad["padx"], 0.75);
    EXPECT_EQ(reply["released"][2]["payload"]["hand"], 1);
    // TriggerUp with its click, then TouchPadUp with its own.
    EXPECT_EQ(OutputsPosted(reply), (std::vector<int>{863, 864, 866, 869}));
}

TEST_F(HeldInput, HandThatLetsGoHoldsNothing) {
    Hand(1, 1, 1);
    Hand(1, 0, 1);
    EXPECT_EQ(State().size(), 1u);
    // A record without a sample says nothing of the hand.
    Send(3, 0, nullptr);
    Send(3, 0, {{"is", "key"}, {"text", "a"}});
    EXPECT_EQ(State().size(), 1u);
    Hand(1, 0, 0);
    EXPECT_EQ(State(), OrderedJson::array());
}

TEST_F(HeldInput, ReleaseCanBeAboutOneDeviceOrOneOfItsKeysPointersAndHands) {
    Key(2002, "a");
    Keys({65});
    Pointer(3005, 1, 1);
    Pointer(3005, 2, 1);
    const auto release = [&](const Json& filter) {
        Json request = {{"op", "release_held"}};
        request.update(filter);
        return AskObject(request, &m_held)["released"].size();
    };
    EXPECT_EQ(release({{"device", 1}, {"identity", 2}}), 1u);
    EXPECT_EQ(State().size(), 3u);
    EXPECT_EQ(release({{"device", 0}}), 2u);
    EXPECT_EQ(State().size(), 1u);
    EXPECT_EQ(release(Json::object()), 1u);
    EXPECT_EQ(AskObject({{"op", "release_held"}, {"identity", Json::array()}}, &m_held)["error"],
              "identity: must be the text of a key or the number of a pointer, hand or virtual key");
}

TEST_F(HeldInput, ReleaseOfEveryoneReachesAllConnectionsAndSaysWhose) {
    CHeldInput& other = m_pSession->Held().Open();
    Key(2002, "a");
    AskObject({{"op", "event"}, {"device", 1}, {"event", 3005}}, &other);
    const OrderedJson reply = AskObject({{"op", "release_held"}, {"everyone", true}}, &m_held);
    EXPECT_EQ(reply["released"].size(), 2u);
    EXPECT_EQ(State(), OrderedJson::array());
    EXPECT_EQ(m_pSession->Held().TakeReleasedByOthers(), std::vector{other.Connection()});
    EXPECT_TRUE(m_pSession->Held().TakeReleasedByOthers().empty());
}

TEST_F(HeldInput, ARefusedReleaseReleasesNothing) {
    Key(2002, "a");
    Keys({65});
    const struct {
        const char* pszField;
        Json value;
        const char* pszError;
    } cases[] = {
        {"reason", 1, "reason: must be a string"},
        {"device", "0", "device: must be an integer"},
        {"identity", 0.5, "identity: must be the text of a key or the number of a pointer, hand or virtual key"},
        {"everyone", 1, "everyone: must be true or false"},
    };
    for (const auto& [pszField, value, pszError] : cases) {
        const OrderedJson reply = AskObject({{"op", "release_held"}, {pszField, value}}, &m_held);
        EXPECT_EQ(reply["error"], pszError);
        EXPECT_FALSE(reply.contains("log")) << pszField;
        EXPECT_EQ(State().size(), 2u) << pszField;
    }
}

TEST_F(HeldInput, AnEventOfAnotherDeviceWithTheSamePayloadChangesNothing) {
    const Json pointer = {{"is", "pointer"}, {"rx", 0}, {"ry", 0}, {"x", 1}, {"y", 1}, {"pointer", 0}, {"relative", 0}};
    Key(2002, "a");
    Send(1, 3005, pointer);
    Send(7, 3013, {{"is", "key"}, {"text", "a"}});
    Send(7, 2003, pointer);
    AskObject({{"op", "destroy"}, {"node", "m"}});
    Send(1, 3013, {{"is", "key"}, {"text", "a"}}); // no node would misread it any more
    const OrderedJson reply = Release();
    EXPECT_EQ(reply["ok"], true) << reply;
    EXPECT_EQ(OutputsPosted(reply), std::vector<int>{153});
    EXPECT_EQ(reply["released"].size(), 2u);
    EXPECT_EQ(Json(reply["released"][1]["payload"]), pointer);
}

TEST_F(HeldInput, WhateverComesBetweenEverythingThatWentDownComesUp) {
    // The nodes' own account: each press fires an output, and so does each release.
    const auto nSeed = static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed());
    std::mt19937 random(nSeed);
    const auto choose = [&](auto... values) {
        const std::array list{values...};
        return list[random() % list.size()];
    };
    for (int nRound = 0; nRound < 200; ++nRound) {
        std::map<int, int> fired;
        const auto count = [&](const OrderedJson& reply) {
            ASSERT_EQ(reply["ok"], true) << reply << " with seed " << nSeed;
            for (const int nOutput : OutputsPosted(reply)) {
                ++fired[nOutput];
            }
        };
        std::set<std::string> keysDown;
        std::set<int> buttonsDown;
        for (int nStep = 0; nStep < 30; ++nStep) {
            const std::string strKey = choose("a", "b", "");
            switch (random() % 5) {
            case 0:
                count(Key(2002, strKey.c_str()));
                keysDown.insert(strKey);
                break;
            case 1:
                count(Key(2003, strKey.c_str()));
                keysDown.erase(strKey);
                break;
            case 2: {
                const int nPointer = choose(0, 1);
                const bool bDown = choose(0, 1) == 1;
                count(Pointer(bDown ? 3005 : 3006, nPointer, nStep));
                bDown ? void(buttonsDown.insert(nPointer)) : void(buttonsDown.erase(nPointer));
                break;
            }
            case 3: // of no device that has keys or buttons
                count(Send(choose(4, 7, -1), choose(2002, 2003, 3005, 3006), {{"is", "key"}, {"text", strKey}}));
                break;
            default:
                count(Hand(choose(0, 1), choose(0, 1), choose(0, 1)));
            }
        }
        fired.clear();
        count(Release());
        EXPECT_EQ(fired[153], static_cast<int>(keysDown.size())) << "seed " << nSeed;
        EXPECT_EQ(fired[362], static_cast<int>(buttonsDown.size())) << "seed " << nSeed;
        EXPECT_EQ(State(), OrderedJson::array());
    }
}

TEST_F(HeldInput, AccountIsBounded) {
    for (size_t i = 0; i < CHeldInput::MOST_HELD; ++i) {
        EXPECT_EQ(Key(2002, std::to_string(i).c_str())["ok"], true);
    }
    const OrderedJson reply = Key(2002, "one more");
    EXPECT_EQ(reply["error"], "event: this connection holds 256 keys and buttons");
    EXPECT_FALSE(reply.contains("posted"));
    // What goes up, or is held already, is taken.
    EXPECT_EQ(Key(2002, "7")["ok"], true);
    EXPECT_EQ(Key(2003, "7")["ok"], true);
    EXPECT_EQ(Pointer(3013, 0, 1)["ok"], true);
    EXPECT_EQ(Release()["released"].size(), CHeldInput::MOST_HELD - 1);
}

TEST_F(HeldInput, FrontsWithoutConnectionsRefuseTheRequest) {
    EXPECT_EQ(Refusal(R"({"op":"release_held"})"), "op: release_held is for connections of the page");
    EXPECT_EQ(Refusal(R"({"op":"release_held","reason":1})"), "reason: must be a string");
}

} // namespace
