#include "CompatTest.h"

#include <winsock2.h>
#if defined(_WIN32)
#include <ws2tcpip.h> // socklen_t
#endif

TEST(SocketsTest, DatagramsTravelOverLoopback) {
    WSADATA data;
    ASSERT_EQ(WSAStartup(0x0202, &data), 0);
    EXPECT_EQ(data.wVersion, 0x0202);
    EXPECT_EQ(data.wHighVersion, 0x0202);
    const SOCKET hReceiver = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    const SOCKET hSender = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    ASSERT_NE(hReceiver, INVALID_SOCKET);
    ASSERT_NE(hSender, INVALID_SOCKET);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    sockaddr* const pAddress = reinterpret_cast<sockaddr*>(&address);
    ASSERT_EQ(bind(hReceiver, pAddress, sizeof(address)), 0);
    socklen_t nLength = sizeof(address);
    ASSERT_EQ(getsockname(hReceiver, pAddress, &nLength), 0);

    const int bBroadcast = 1;
    EXPECT_EQ(
        setsockopt(hSender, SOL_SOCKET, SO_BROADCAST, reinterpret_cast<const char*>(&bBroadcast), sizeof(bBroadcast)),
        0);
    EXPECT_EQ(sendto(hSender, "data", 4, 0, pAddress, sizeof(address)), 4);
    char bytes[10];
    EXPECT_EQ(recv(hReceiver, bytes, sizeof(bytes), 0), 4);
    EXPECT_EQ(closesocket(hSender), 0);
    EXPECT_EQ(closesocket(hReceiver), 0);
}
