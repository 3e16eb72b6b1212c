// CZTSocket hands what it is given to its transport; the direct parser hands on what came in; the host's device list.
#include "DeviceList.h"
#include "NetworkTest.h"
#include "SocketTransport.h"
#include "host/HostRender.h"
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
    void OnBytes(std::span<const unsigned char> bytes) override {
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    }

    Bytes m_bytes;
};

TEST(Socket, HandsItemsAndBytesToItsTransport) {
    Transport transport;
    CZTSocket socket(&transport, nullptr);
    CZTSocket unconnected(nullptr, nullptr);
    CQORNetItemPlayCtlProtocol item;
    unsigned char bytes[] = {1, 0, 3};
    for (const bool bTakes : {true, false}) {
        transport.m_bTakes = bTakes;
        EXPECT_EQ(socket.SendInfo(&item), bTakes ? 1 : 0);
        EXPECT_EQ(socket.SendInfo(bytes, 3), bTakes ? 1 : 0);
        EXPECT_EQ(unconnected.SendInfo(&item), 0);
        EXPECT_EQ(unconnected.SendInfo(bytes, 3), 0);
    }
    EXPECT_EQ(transport.m_items, (std::vector<const CZtBaseNetProtocol*>{&item, &item}));
    EXPECT_EQ(transport.m_bytes, std::vector(2, Bytes{1, 0, 3}));
    transport.m_bTakes = true;
    EXPECT_EQ(socket.SendInfo(nullptr), 0);
    EXPECT_EQ(socket.SendInfo(static_cast<unsigned char*>(nullptr), 3), 0);
    EXPECT_EQ(socket.SendInfo(bytes, 0), 0);
    EXPECT_EQ(socket.SendInfo(bytes, -1), 0);
}

TEST(Socket, HasAParserThatHandsBytesOnAsTheyAre) {
    Receiver receiver;
    CZTDirectParser parser(&receiver);
    CZTSocket socket(nullptr, &parser);
    EXPECT_EQ(DYNAMIC_DOWNCAST(CZTDirectParser, socket.GetParser()), &parser);
    const Bytes bytes{0, 1, 255};
    parser.Reset();
    EXPECT_TRUE(parser.Receive(bytes.data(), 3));
    EXPECT_TRUE(parser.Receive(bytes.data(), 0));
    EXPECT_TRUE(parser.Receive(bytes.data(), 1));
    EXPECT_EQ(receiver.m_bytes, (Bytes{0, 1, 255, 0}));
    CZTDirectParser alone(nullptr);
    EXPECT_TRUE(alone.Receive(bytes.data(), 1));
}

TEST(PlayControlItem, DeletesItsAttachedData) {
    struct SCounted : CQORIOAttachedData {
        explicit SCounted(int& nDeleted) : m_nDeleted(nDeleted) {}
        ~SCounted() override { ++m_nDeleted; }
        int& m_nDeleted;
    };
    int nDeleted = 0;
    {
        CQORNetItemPlayCtlProtocol item;
        item.m_pAttachedData = new SCounted(nDeleted);
    }
    EXPECT_EQ(nDeleted, 1);
}

TEST(DeviceList, FindsTheFirstDeviceOfANumber) {
    EXPECT_EQ(G_GetArNetPlayCtrlDev(), nullptr);
    EXPECT_EQ(G_FindNetPlayCtrlDevByID(0), nullptr);
    SQORNetPlayCtrlDev devices[3];
    const int ids[] = {7, 0, 7};
    NetPlayCtrlDevArray arDevice;
    arDevice.Add(nullptr); // passed over
    for (int i = 0; i < 3; ++i) {
        devices[i].m_nId = ids[i];
        arDevice.Add(&devices[i]);
    }
    SetNetPlayCtrlDevices(&arDevice);
    EXPECT_EQ(G_GetArNetPlayCtrlDev(), &arDevice);
    EXPECT_EQ(G_FindNetPlayCtrlDevByID(7), &devices[0]);
    EXPECT_EQ(G_FindNetPlayCtrlDevByID(0), &devices[1]);
    EXPECT_EQ(G_FindNetPlayCtrlDevByID(1), nullptr);
    SetNetPlayCtrlDevices(nullptr);
}

} // namespace
