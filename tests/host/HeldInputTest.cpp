// What a connection holds down, and its release.
#include "HostTest.h"

namespace {

class HeldInput : public CHostTest {
protected:
    HeldInput() {
        Must(CREATE_MOUSE);
        Must(CREATE_KEYBOARD);
        Must(R"({"op":"process"})");
    }

    OrderedJson Send(int nDevice, int nEvent, const Json& payload) {
        return m_pSession->Handle({{"op", "event"}, {"device", nDevice}, {"event", nEvent}, {"payload", payload}},
                                  &m_held);
    }

    OrderedJson Key(int nEvent, const char* pszText) { return Send(0, nEvent, {{"is", "key"}, {"text", pszText}}); }

    OrderedJson Pointer(int nEvent, int nPointer, int nX) {
        return Send(
            1, nEvent,
            {{"is", "pointer"}, {"rx", 0}, {"ry", 0}, {"x", nX}, {"y", 2}, {"pointer", nPointer}, {"relative", 0}});
    }

    OrderedJson Release() { return m_pSession->Handle({{"op", "release_held"}}, &m_held); }

    CHeldInput m_held;
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
    EXPECT_EQ(m_pSession->Handle({{"op", "event"}, {"node", "x"}, {"device", 0}, {"event", 2002}}, &m_held)["ok"],
              false);
    EXPECT_EQ(m_pSession->Handle({{"op", "event"}, {"record", nullptr}}, &m_held)["ok"], true);
    EXPECT_EQ(Release()["released"], OrderedJson::array());
}

TEST_F(HeldInput, EventsOfOneNodeAreReleasedThere) {
    m_pSession->Handle({{"op", "event"}, {"node", "k"}, {"device", 0}, {"event", 2002}}, &m_held);
    Must(R"({"op":"destroy","node":"k"})");
    const OrderedJson reply = Release();
    EXPECT_EQ(reply["ok"], true);
    EXPECT_EQ(reply["log"][1]["level"], 32); // its node is gone
}

TEST_F(HeldInput, ConnectionsAreKeptApart) {
    Key(2002, "a");
    CHeldInput other;
    EXPECT_EQ(m_pSession->ReleaseHeld(other, "it closed")["released"], OrderedJson::array());
    const OrderedJson reply = m_pSession->ReleaseHeld(m_held, "it closed");
    EXPECT_EQ(reply["released"].size(), 1u);
    EXPECT_EQ(reply["log"][0]["text"], R"(synthetic release of the key "a": it closed)");
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
