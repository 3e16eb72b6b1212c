// What a connection holds down, and its release.
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
        Must("process");
    }

    OrderedJson Send(int nDevice, int nEvent, const Json& payload) {
        return AskObject(Event(nDevice, nEvent, payload), &m_held);
    }
    OrderedJson Key(int nEvent, const std::string& strText) { return Send(0, nEvent, KeyText(strText)); }
    OrderedJson Pointer(int nEvent, int nPointer, int nX) {
        return Send(1, nEvent, PointerSample({{"x", nX}, {"pointer", nPointer}}));
    }
    OrderedJson Hand(int nHand, int bTrigger, int bPad) {
        return Send(3, 0, HandSample({{"hand", nHand}, {"trigger", bTrigger}, {"pad", bPad}}));
    }
    OrderedJson Keys(const Json& down, const Json& toggled = Json::array()) {
        return AskObject({{"op", "keys"}, {"down", down}, {"toggled", toggled}}, &m_held);
    }
    OrderedJson Release(const Json& filter = Json::object()) {
        Json request = {{"op", "release_held"}};
        request.update(filter);
        return AskObject(request, &m_held);
    }

    /// How many things are held by anybody.
    size_t Count() { return m_pSession->Held().State().size(); }

    CHeldInput& m_held = m_pSession->Held().Open();
};

TEST_F(HeldInput, NothingHeldReleasesNothing) {
    EXPECT_EQ(Release().dump(), R"({"ok":true,"released":[]})");
    for (const int nEvent : {2002, 2003}) {
        Key(nEvent, "a");
    }
    for (const int nEvent : {3005, 3006}) {
        Pointer(nEvent, 0, 1);
    }
    Hand(1, 1, 1);
    Send(3, 0, nullptr); // says nothing of the hand
    Send(3, 0, KeyText("a"));
    EXPECT_EQ(Count(), 2u);
    Hand(1, 0, 0);
    // What is refused, for no node or of no device holds nothing.
    EXPECT_EQ(Send(0, 2002, {{"is", "key"}})["ok"], false);
    EXPECT_EQ(AskObject("event node=x device=0 event=2002", &m_held)["ok"], false);
    EXPECT_EQ(AskObject("event record=null", &m_held)["ok"], true);
    Send(7, 2002, KeyText("a"));
    EXPECT_EQ(Release().dump(), R"({"ok":true,"released":[]})");
    EXPECT_EQ(Refusal("release_held"), "op: release_held is for connections of the page");
}

TEST_F(HeldInput, KeysAndButtonsAreReleasedWithTheirLastSample) {
    Key(2002, "a");
    Key(2002, "a");
    Key(2002, "Shift");
    Key(2003, "Shift");
    Send(0, 2002, nullptr);
    Pointer(3005, 0, 1);
    Pointer(3007, 0, 1);
    Pointer(3009, 3, 5);
    Pointer(3013, 0, 9);
    Send(7, 3013, PointerSample()); // another device's, which changes nothing
    AskObject("destroy node=m", &m_held);
    Send(1, 3013, KeyText("a")); // no node would misread it any more
    const OrderedJson reply = Release();
    EXPECT_EQ(Json(reply["released"]),
              (Json::array({{{"device", 0}, {"event", 2003}, {"payload", KeyText("a")}},
                            {{"device", 0}, {"event", 2003}, {"payload", nullptr}},
                            {{"device", 1}, {"event", 3006}, {"payload", PointerSample({{"x", 9}})}},
                            {{"device", 1}, {"event", 3008}, {"payload", PointerSample({{"x", 9}})}},
                            {{"device", 1}, {"event", 3010}, {"payload", PointerSample({{"x", 5}, {"pointer", 3}})}}})))
        << reply;
    EXPECT_EQ(Posted(reply), (std::vector{153, 153}));
    EXPECT_EQ(reply["log"][0].dump(),
              R"({"level":4,"args":[0,0,0,0],"text":"synthetic release of the key \"a\": the page asks for it"})");
    EXPECT_EQ(Release()["released"], OrderedJson::array());
}

TEST_F(HeldInput, EventsOfOneNodeAreReleasedThere) {
    AskObject("event node=k device=0 event=2002", &m_held);
    Must("destroy node=k");
    EXPECT_TRUE(Matches(Release(), Json::parse(R"({"ok":true,"log":[{},{"level":32}]})"))); // its node is gone
}

TEST_F(HeldInput, ConnectionsAreKeptApart) {
    Key(2002, "a");
    CHeldInput& other = m_pSession->Held().Open();
    EXPECT_EQ(OrderedJson::parse(ReplyTo(m_pSession->CloseConnection(other, "it closed")))["released"],
              OrderedJson::array());
    EXPECT_EQ(Count(), 1u);
    const OrderedJson reply = OrderedJson::parse(ReplyTo(m_pSession->CloseConnection(m_held, "it closed")));
    EXPECT_EQ(reply["released"].size(), 1u);
    EXPECT_EQ(reply["log"][0]["text"], R"(synthetic release of the key "a": it closed)");
    EXPECT_EQ(Count(), 0u);
}

TEST_F(HeldInput, StateNamesWhatIsHeldByWhomInOrderAndHowLong) {
    CHeldInput& other = m_pSession->Held().Open();
    Must("clock ms=1000");
    Pointer(3009, 2, 1);
    Key(2002, "a");
    Must("clock ms=1020");
    Key(2002, "a");
    Keys({65, 16});
    Pointer(3013, 2, 9);
    AskObject("event device=0 event=2002", &other);
    const int nOwn = m_held.Connection();
    EXPECT_NE(nOwn, other.Connection());
    const auto entry = [](int nConnection, int nDevice, const char* pszWhat, const Json& identity, int nAge) {
        return Json{
            {"connection", nConnection}, {"device", nDevice}, {"what", pszWhat}, {"identity", identity}, {"ms", nAge}};
    };
    EXPECT_EQ(Json(ToJson(m_pSession->Held().State())),
              Json::array({entry(nOwn, 1, "right button of pointer", 2, 20), entry(nOwn, 0, "key", "a", 20),
                           entry(nOwn, 0, "virtual key", 16, 0), entry(nOwn, 0, "virtual key", 65, 0),
                           entry(other.Connection(), 0, "key", "", 0)}));
    Must("clock ms=10"); // back
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
    AskObject("keys down=[65] toggled=[20]", &other);
    EXPECT_LT(GetKeyState(16), 0);
    Keys({65, 66}, {20});
    EXPECT_EQ(GetKeyState(16), 0);
    const OrderedJson reply = Release();
    EXPECT_EQ(reply["released"].dump(), R"([{"virtual_key":65},{"virtual_key":66}])");
    EXPECT_EQ(reply["log"][1]["text"], "synthetic release of the virtual key 66: the page asks for it");
    EXPECT_LT(GetKeyState(65), 0);
    m_pSession->CloseConnection(other, "it closed");
    EXPECT_EQ(GetKeyState(65), 0);
    EXPECT_EQ(GetKeyState(20), 1);
    EXPECT_EQ(Count(), 0u);
    // What stays down in fact is told anew by the next request.
    Keys({65});
    EXPECT_EQ(Count(), 1u);
}

TEST_F(HeldInput, PartsOfAHandAreReleasedOneAfterTheOther) {
    Must("create node=v type=handle clip=Clip graph=Hand");
    Must("process");
    Must("clock ms=5000");
    Hand(0, 1, 0);
    Must("clock ms=5010");
    Hand(0, 1, 1);
    Hand(1, 1, 0);
    EXPECT_EQ(Count(), 3u);
    const OrderedJson reply = Release();
    EXPECT_EQ(reply["log"][0]["text"], "synthetic release of the trigger of hand 0: the page asks for it");
    EXPECT_TRUE(Matches(reply, Json::parse(R"({"released":[{"payload":{"trigger":0,"pad":1,"release":1010}},
        {"payload":{"trigger":0,"pad":0,"padx":0.75}},{"payload":{"hand":1,"trigger":0}}]})")))
        << reply;
    // TriggerUp with its click, then TouchPadUp with its own.
    EXPECT_EQ(Posted(reply), (std::vector{863, 864, 866, 869}));
}

TEST_F(HeldInput, ReleaseCanBeAboutADeviceOneOfItsPartsOrEveryone) {
    CHeldInput& other = m_pSession->Held().Open();
    Key(2002, "a");
    Keys({65});
    Pointer(3005, 1, 1);
    Pointer(3005, 2, 1);
    AskObject("event device=1 event=3005", &other);
    const OrderedJson refused = Release({{"device", "0"}});
    EXPECT_EQ(refused["error"], "device: must be an integer");
    EXPECT_FALSE(refused.contains("log"));
    EXPECT_EQ(Count(), 5u);
    EXPECT_EQ(Release({{"device", 1}, {"identity", 2}})["released"].size(), 1u);
    EXPECT_EQ(Release({{"device", 0}})["released"].size(), 2u);
    EXPECT_EQ(Count(), 2u);
    EXPECT_EQ(Release({{"everyone", true}})["released"].size(), 2u);
    EXPECT_EQ(Count(), 0u);
    EXPECT_EQ(m_pSession->Held().TakeReleasedByOthers(), std::vector{other.Connection()});
    EXPECT_TRUE(m_pSession->Held().TakeReleasedByOthers().empty());
}

TEST_F(HeldInput, AccountIsBounded) {
    for (size_t i = 0; i < CHeldInput::MOST_HELD; ++i) {
        EXPECT_EQ(Key(2002, std::to_string(i))["ok"], true);
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

} // namespace
