// CZTSocket hands what it is given to its transport; the direct parser hands on what came in.
#include "NetworkTest.h"
#include "SocketTransport.h"
#include "host/PlayControlDevice.h"

namespace {

class Transport final : public ISocketTransport {
public:
    bool SendItem(const CZtBaseNetProtocol& item) override {
        m_items.push_back(&item);
        return m_bTakes;
    }
    bool SendBytes(std::span<const unsigned char> bytes) override {
        m_bytes.emplace_back(bytes.begin(), bytes.end());
        return m_bTakes;
    }

    bool m_bTakes = true;
    std::vector<const CZtBaseNetProtocol*> m_items;
    std::vector<Bytes> m_bytes;
};

class Receiver final : public IReceivedBytes {
public:
    void OnConnectionBegins() override { ++m_nConnections; }
    void OnBytes(std::span<const unsigned char> bytes) override {
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    }

    int m_nConnections = 0;
    Bytes m_bytes;
};

TEST(Socket, HandsItemsToItsTransport) {
    Transport transport;
    CZTSocket socket(&transport, nullptr);
    CQORNetItemPlayCtlProtocol item;
    EXPECT_EQ(socket.SendInfo(&item), 1);
    EXPECT_EQ(transport.m_items, std::vector<const CZtBaseNetProtocol*>{&item});
    transport.m_bTakes = false;
    EXPECT_EQ(socket.SendInfo(&item), 0);
    EXPECT_EQ(socket.SendInfo(nullptr), 0);
    EXPECT_EQ(transport.m_items.size(), 2u);
}

TEST(Socket, HandsBytesToItsTransport) {
    Transport transport;
    CZTSocket socket(&transport, nullptr);
    unsigned char bytes[] = {1, 0, 3};
    EXPECT_EQ(socket.SendInfo(bytes, 3), 1);
    EXPECT_EQ(transport.m_bytes, std::vector<Bytes>{(Bytes{1, 0, 3})});
    transport.m_bTakes = false;
    EXPECT_EQ(socket.SendInfo(bytes, 1), 0);
    EXPECT_EQ(socket.SendInfo(bytes, 0), 0);
    EXPECT_EQ(socket.SendInfo(bytes, -1), 0);
    EXPECT_EQ(socket.SendInfo(static_cast<unsigned char*>(nullptr), 3), 0);
    EXPECT_EQ(transport.m_bytes.size(), 2u);
}

TEST(Socket, RefusesEverythingWithoutATransport) {
    CZTSocket socket(nullptr, nullptr);
    CQORNetItemPlayCtlProtocol item;
    unsigned char nByte = 1;
    EXPECT_EQ(socket.SendInfo(&item), 0);
    EXPECT_EQ(socket.SendInfo(&nByte, 1), 0);
    EXPECT_EQ(socket.GetParser(), nullptr);
}

TEST(Socket, TellsItsParsersClass) {
    CZTDirectParser direct(nullptr);
    CZTSocket socket(nullptr, &direct);
    EXPECT_EQ(DYNAMIC_DOWNCAST(CZTDirectParser, socket.GetParser()), &direct);
    EXPECT_TRUE(direct.IsKindOf(RUNTIME_CLASS(CZtSocketParser)));
}

TEST(DirectParser, HandsBytesOnAsTheyAre) {
    Receiver receiver;
    CZTDirectParser parser(&receiver);
    const Bytes bytes{0, 1, 255};
    parser.Reset();
    EXPECT_TRUE(parser.Receive(bytes.data(), 3));
    EXPECT_TRUE(parser.Receive(bytes.data(), 0));
    EXPECT_TRUE(parser.Receive(bytes.data(), 1));
    EXPECT_EQ(receiver.m_nConnections, 1);
    EXPECT_EQ(receiver.m_bytes, (Bytes{0, 1, 255, 0}));
}

TEST(DirectParser, DropsBytesWithoutAReceiver) {
    CZTDirectParser parser(nullptr);
    const Bytes bytes{1};
    parser.Reset();
    EXPECT_TRUE(parser.Receive(bytes.data(), 1));
}

/// Attached data whose destructor can be seen.
class CountedData : public CQORIOAttachedData {
public:
    explicit CountedData(int& nDeleted) : m_nDeleted(nDeleted) {}
    ~CountedData() override { ++m_nDeleted; }

private:
    int& m_nDeleted;
};

TEST(PlayControlItem, DeletesItsAttachedData) {
    int nDeleted = 0;
    {
        CQORNetItemPlayCtlProtocol item;
        item.m_pAttachedData = new CountedData(nDeleted);
    }
    EXPECT_EQ(nDeleted, 1);
}

} // namespace
