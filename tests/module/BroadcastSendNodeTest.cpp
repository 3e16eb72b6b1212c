// The broadcast send node: how it opens its socket, and the bytes of its datagrams.
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
        Fill(m_scene);
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

    /// The one datagram that an evaluation sends.
    static SentDatagram Sent(NodeScene& scene) {
        EXPECT_EQ(scene.Evaluate(), 1);
        const std::vector<SentDatagram> datagrams = TakeDatagrams();
        EXPECT_EQ(datagrams.size(), 1u);
        return datagrams.empty() ? SentDatagram() : datagrams[0];
    }
    std::string SentBytes() { return Sent(m_scene).bytes; }

    bool Sends() {
        EXPECT_EQ(m_scene.Evaluate(), 1);
        return !TakeDatagrams().empty();
    }

    /// The port that a node made now sends to.
    int Port() {
        NodeScene scene(m_host, TYPE_BROADCAST_SEND);
        Fill(scene);
        return ntohs(Sent(scene).address.sin_port);
    }

    NodeScene m_scene{m_host, TYPE_BROADCAST_SEND};
};

TEST_F(BroadcastSendNode, OpensItsSocketFirst) {
    const NodePtr pNode = m_host.CreateNode(TYPE_BROADCAST_SEND);
    EXPECT_EQ(TakeSocketCalls(),
              (std::vector<std::string>{"socket 2 2 0", "WSAStartup 0x0202", "setsockopt 0xFFFF 0x20 1"}));
}

TEST_F(BroadcastSendNode, SendsOneDatagramToEveryHost) {
    // The first node of a process, which the fixture made, opens its socket before Windows has any to give.
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    Fill(scene);
    const SentDatagram datagram = Sent(scene);
    EXPECT_EQ(datagram.bytes, Datagram("12|7"));
    EXPECT_NE(datagram.hSocket, INVALID_SOCKET);
    EXPECT_EQ(datagram.nFlags, 0);
    EXPECT_EQ(datagram.nAddressSize, 16);
    EXPECT_EQ(datagram.address.sin_family, 2);
    EXPECT_EQ(datagram.address.sin_addr.s_addr, 0xFFFFFFFFu);
    ExpectSilence();
}

TEST_F(BroadcastSendNode, ThePortIsReadWhenTheNodeIsMade) {
    EXPECT_EQ(Port(), 0); // no file
    for (const auto& [pszPort, nPort] : {std::pair("8060", 8060), {"70000", 4464}, {"65535", 65535}}) {
        Configure(pszPort);
        EXPECT_EQ(Port(), nPort);
    }
    EXPECT_EQ(ntohs(Sent(m_scene).address.sin_port), 0) << "an older node keeps its own";
    m_host.WriteFile("Config/PortConfig.ini", "[Other]\nBroadcastPort=8060\n");
    EXPECT_EQ(Port(), 0);
}

TEST_F(BroadcastSendNode, SendsNothingWithoutData) {
    m_scene.Input(DATA).m_strValue.Empty();
    EXPECT_FALSE(Sends());
    m_scene.Input(DATA).m_strValue = L"|"; // two empty pieces
    EXPECT_TRUE(Sends());
}

TEST_F(BroadcastSendNode, FollowsItsInputsAndKeepsTheTextOfAMissingOne) {
    SentBytes();
    m_scene.Input(FLAG).m_strValue = L"";
    m_scene.Input(NAME).m_strValue = L"a<b>&\"c\"\r\n";
    m_scene.AddGraphInput(DATA, 1, 6).m_strValue = L"graph's";
    const std::string expected =
        "[.{<Broadcast Flag=\"\" ClipName=\"Intro\" Name=\"a&lt;b&gt;&amp;&quot;c&quot;&#13;&#10;\" "
        "Data=\"graph's\"/>\r\n}.]";
    EXPECT_EQ(SentBytes(), expected + '\0');
    m_scene.RemoveInput(CLIP_NAME);
    m_scene.RemoveInput(NAME);
    EXPECT_EQ(SentBytes(), expected + '\0');
}

TEST_F(BroadcastSendNode, TextsOfAnyLengthGoOutWholeInTheAnsiCodePage) {
    m_scene.Input(DATA).m_strValue = L"\u00e9\u20ac\u6bd4";
    EXPECT_EQ(SentBytes(), Datagram("\xE9\x80?")); // code page 1252
    for (const int nLength : {1, 10, 1000, 60000, 5}) {
        m_scene.Input(DATA).m_strValue = CString(L'x', nLength);
        EXPECT_TRUE(SentBytes() == Datagram(std::string(static_cast<size_t>(nLength), 'x'))) << nLength;
    }
}

TEST_F(BroadcastSendNode, WhatCannotBeConvertedIsSentAsNoBytesOfABuffer) {
    FailConversions(true);
    const SentDatagram datagram = Sent(m_scene);
    FailConversions(false);
    EXPECT_FALSE(datagram.bNowhere);
    EXPECT_EQ(datagram.nSize, 0u);
}

TEST_F(BroadcastSendNode, WithoutASocketItSendsToNowhereAndSaysNothing) {
    FailSockets(true);
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    EXPECT_EQ(TakeSocketCalls(), std::vector<std::string>{"socket 2 2 0"});
    Fill(scene);
    const SentDatagram datagram = Sent(scene);
    EXPECT_EQ(datagram.hSocket, INVALID_SOCKET);
    EXPECT_EQ(datagram.address.sin_family, 0);
    EXPECT_EQ(datagram.address.sin_port, 0);
    ExpectSilence();
}

} // namespace
