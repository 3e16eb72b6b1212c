// The broadcast send node: how it opens its socket, and the bytes of its datagrams.
#include "HeapUse.h"
#include "ModuleHost.h"
#include "SocketCalls.h"
#include "SystemCalls.h"

namespace {

enum : unsigned {
    FLAG = 602,
    CLIP_NAME = 603,
    NAME = 604,
    DATA = 605,
    SEND = 606,
};

class BroadcastSendNode : public ModuleTest {
protected:
    BroadcastSendNode() {
        WatchSocketCalls(m_host.Module());
        TakeSocketCalls();
        TakeDatagrams();
    }
    ~BroadcastSendNode() override {
        FailSockets(false);
        TakeSocketCalls();
    }

    void Configure(std::string_view port) const {
        m_host.WriteFile("Config/PortConfig.ini", "[iFable]\nBroadcastPort=" + std::string(port) + "\n");
    }

    static void Fill(NodeScene& scene) {
        scene.Input(FLAG).m_strValue = L"1";
        scene.Input(CLIP_NAME).m_strValue = L"Intro";
        scene.Input(NAME).m_strValue = L"score";
        scene.Input(DATA).m_strValue = L"12|7";
        scene.AddGraphInput(SEND, 26, 7).m_nValue = 1;
    }

    /// The datagram with this data, the other texts as Fill says.
    static std::string Datagram(const std::string& data) {
        return "[.{<Broadcast Flag=\"1\" ClipName=\"Intro\" Name=\"score\" Data=\"" + data + "\"/>\r\n}.]" + '\0';
    }

    /// The port that a node made now sends to.
    int Port() {
        NodeScene scene(m_host, TYPE_BROADCAST_SEND);
        Fill(scene);
        scene.Evaluate();
        const std::vector<SentDatagram> datagrams = TakeDatagrams();
        return datagrams.size() == 1 ? ntohs(datagrams[0].address.sin_port) : -1;
    }

    /// The bytes of the one datagram that an evaluation sends; "none" when it sends none.
    static std::string Evaluated(NodeScene& scene) {
        EXPECT_EQ(scene.Evaluate(), 1);
        const std::vector<SentDatagram> datagrams = TakeDatagrams();
        EXPECT_LE(datagrams.size(), 1u);
        return datagrams.empty() ? "none" : datagrams[0].bytes;
    }
};

TEST_F(BroadcastSendNode, OpensItsSocketFirst) {
    const NodePtr pNode = m_host.CreateNode(TYPE_BROADCAST_SEND);
    EXPECT_EQ(TakeSocketCalls(),
              (std::vector<std::string>{"socket 2 2 0", "WSAStartup 0x0202", "setsockopt 0xFFFF 0x20 1"}));
}

TEST_F(BroadcastSendNode, SendsOneDatagramToEveryHost) {
    Configure("8060");
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    Fill(scene);
    EXPECT_EQ(scene.Evaluate(), 1);
    const std::vector<SentDatagram> datagrams = TakeDatagrams();
    ASSERT_EQ(datagrams.size(), 1u);
    EXPECT_EQ(datagrams[0].bytes, Datagram("12|7"));
    EXPECT_NE(datagrams[0].hSocket, INVALID_SOCKET);
    EXPECT_EQ(datagrams[0].nFlags, 0);
    EXPECT_EQ(datagrams[0].nAddressSize, 16);
    EXPECT_EQ(datagrams[0].address.sin_family, 2);
    EXPECT_EQ(datagrams[0].address.sin_addr.s_addr, 0xFFFFFFFFu);
    EXPECT_EQ(ntohs(datagrams[0].address.sin_port), 8060);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
}

TEST_F(BroadcastSendNode, ThePortIsReadWhenTheNodeIsMade) {
    EXPECT_EQ(Port(), 0); // no file
    Configure("70000");
    EXPECT_EQ(Port(), 4464);
    Configure("65535");
    EXPECT_EQ(Port(), 65535);
    m_host.WriteFile("Config/PortConfig.ini", "[Other]\nBroadcastPort=8060\n");
    EXPECT_EQ(Port(), 0);

    Configure("8061");
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    Fill(scene);
    Configure("8062");
    scene.Evaluate();
    const std::vector<SentDatagram> datagrams = TakeDatagrams();
    ASSERT_EQ(datagrams.size(), 1u);
    EXPECT_EQ(ntohs(datagrams[0].address.sin_port), 8061);
}

TEST_F(BroadcastSendNode, SendsNothingUnlessTriggered) {
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    scene.Input(DATA).m_strValue = L"x";
    scene.Input(SEND).m_nValue = 1; // the node's own doesn't count
    EXPECT_EQ(Evaluated(scene), "none");
    VEKParam& send = scene.AddGraphInput(SEND, 26, 7);
    send.m_nValue = 0;
    EXPECT_EQ(Evaluated(scene), "none");
    send.m_nValue = 1;
    EXPECT_NE(Evaluated(scene), "none");
    EXPECT_NE(Evaluated(scene), "none");
}

TEST_F(BroadcastSendNode, SendsNothingWithoutData) {
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    Fill(scene);
    scene.Input(DATA).m_strValue.Empty();
    EXPECT_EQ(Evaluated(scene), "none");
    scene.Input(DATA).m_strValue = L"|"; // two empty pieces
    EXPECT_NE(Evaluated(scene), "none");
}

TEST_F(BroadcastSendNode, FollowsItsInputs) {
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    Fill(scene);
    Evaluated(scene);
    scene.Input(FLAG).m_strValue = L"";
    scene.Input(NAME).m_strValue = L"a<b>&\"c\"\r\n";
    scene.AddGraphInput(DATA, 1, 6).m_strValue = L"graph's";
    const std::string expected =
        "[.{<Broadcast Flag=\"\" ClipName=\"Intro\" Name=\"a&lt;b&gt;&amp;&quot;c&quot;&#13;&#10;\" "
        "Data=\"graph's\"/>\r\n}.]";
    EXPECT_EQ(Evaluated(scene), expected + '\0');
}

TEST_F(BroadcastSendNode, AMissingInputKeepsItsLastText) {
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    Fill(scene);
    const std::string before = Evaluated(scene);
    scene.RemoveInput(FLAG);
    scene.RemoveInput(DATA);
    EXPECT_EQ(Evaluated(scene), before);
}

TEST_F(BroadcastSendNode, IsInTheAnsiCodePage) {
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    Fill(scene);
    scene.Input(DATA).m_strValue = L"\u00e9\u20ac\u6bd4";
    EXPECT_EQ(Evaluated(scene), Datagram("\xE9\x80?")); // code page 1252
}

TEST_F(BroadcastSendNode, TextsOfAnyLengthGoOutWhole) {
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    Fill(scene);
    for (const int nLength : {1, 10, 1000, 60000, 5}) {
        scene.Input(DATA).m_strValue = CString(L'x', nLength);
        const std::string expected = Datagram(std::string(static_cast<size_t>(nLength), 'x'));
        EXPECT_TRUE(Evaluated(scene) == expected) << nLength; // too long to print
    }
}

TEST_F(BroadcastSendNode, WhatCannotBeConvertedIsSentAsNoBytesOfABuffer) {
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    Fill(scene);
    FailConversions(true);
    EXPECT_EQ(scene.Evaluate(), 1);
    FailConversions(false);
    const std::vector<SentDatagram> datagrams = TakeDatagrams();
    ASSERT_EQ(datagrams.size(), 1u);
    EXPECT_FALSE(datagrams[0].bNowhere);
    EXPECT_EQ(datagrams[0].nSize, 0u);
}

TEST_F(BroadcastSendNode, WithoutASocketItSendsToNowhereAndSaysNothing) {
    FailSockets(true);
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    EXPECT_EQ(TakeSocketCalls(), std::vector<std::string>{"socket 2 2 0"});
    Fill(scene);
    EXPECT_EQ(scene.Evaluate(), 1);
    const std::vector<SentDatagram> datagrams = TakeDatagrams();
    ASSERT_EQ(datagrams.size(), 1u);
    EXPECT_EQ(datagrams[0].hSocket, INVALID_SOCKET);
    EXPECT_EQ(datagrams[0].address.sin_family, 0);
    EXPECT_EQ(datagrams[0].address.sin_port, 0);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
}

TEST_F(BroadcastSendNode, SteadySendsKeepTheHeapAsItIs) {
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    Fill(scene);
    scene.Input(DATA).m_strValue = CString(L'x', 500);
    Evaluated(scene);
    const size_t nBefore = HeapBytesInUse();
    for (int i = 0; i < 200; ++i) {
        scene.Evaluate();
        TakeDatagrams();
    }
    EXPECT_EQ(HeapBytesInUse(), nBefore);
}

} // namespace
