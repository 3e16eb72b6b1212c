#include "CompatTest.h"

#include <winsock2.h>
#include <ws2tcpip.h>

TEST(SocketsTest, StartUpsAreCounted) {
    EXPECT_EQ(WSACleanup(), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSANOTINITIALISED);
    WSADATA data;
    EXPECT_EQ(WSAStartup(MAKEWORD(0, 0), &data), WSAVERNOTSUPPORTED);
    EXPECT_EQ(WSAStartup(MAKEWORD(2, 2), &data), 0);
    EXPECT_EQ(data.wVersion, MAKEWORD(2, 2));
    EXPECT_EQ(WSAStartup(MAKEWORD(1, 1), &data), 0);
    EXPECT_EQ(data.wVersion, MAKEWORD(1, 1));
    EXPECT_EQ(WSACleanup(), 0);
    EXPECT_EQ(WSACleanup(), 0);
    EXPECT_EQ(WSACleanup(), SOCKET_ERROR);
}

TEST(SocketsTest, DatagramsTravelOverLoopback) {
    WSADATA data;
    ASSERT_EQ(WSAStartup(MAKEWORD(2, 2), &data), 0);
    const SOCKET hReceiver = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    const SOCKET hSender = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    ASSERT_NE(hReceiver, INVALID_SOCKET);
    ASSERT_NE(hSender, INVALID_SOCKET);
    SOCKADDR_IN address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(bind(hReceiver, reinterpret_cast<SOCKADDR*>(&address), sizeof(address)), 0);
    socklen_t nLength = sizeof(address);
    ASSERT_EQ(getsockname(hReceiver, reinterpret_cast<SOCKADDR*>(&address), &nLength), 0);

    unsigned long nNonBlocking = 1;
    EXPECT_EQ(ioctlsocket(hReceiver, FIONBIO, &nNonBlocking), 0);
    char bytes[10];
    EXPECT_EQ(recv(hReceiver, bytes, sizeof(bytes), 0), SOCKET_ERROR);
    EXPECT_EQ(WSAGetLastError(), WSAEWOULDBLOCK);

    const BOOL bBroadcast = TRUE;
    EXPECT_EQ(
        setsockopt(hSender, SOL_SOCKET, SO_BROADCAST, reinterpret_cast<const char*>(&bBroadcast), sizeof(bBroadcast)),
        0);
    EXPECT_EQ(sendto(hSender, "data", 4, 0, reinterpret_cast<SOCKADDR*>(&address), sizeof(address)), 4);
    nNonBlocking = 0;
    EXPECT_EQ(ioctlsocket(hReceiver, FIONBIO, &nNonBlocking), 0);
    EXPECT_EQ(recv(hReceiver, bytes, sizeof(bytes), 0), 4);
    EXPECT_EQ(closesocket(hSender), 0);
    EXPECT_EQ(closesocket(hReceiver), 0);
    EXPECT_EQ(WSACleanup(), 0);
}
