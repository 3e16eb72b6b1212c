// The parts of the page's server that need no connection.

#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "base/FrameTimer.h"
#include "fronts/page/QueuedTexts.h"
#include "fronts/page/RequestOrigin.h"

using std::chrono::duration_cast;
using std::chrono::milliseconds;

namespace {

constexpr double FPS = 50; // one frame in 20 ms
const FrameTime START{std::chrono::hours(1)};

} // namespace

TEST(FrameTimer, FramesAreDueInARasterAndMissedOnesAreLeftOut) {
    const std::pair<long long, long long> rows[] = {{0, 20},  {3, 20},  {19, 20},     {20, 40},
                                                    {39, 40}, {47, 60}, {1000, 1020}, {100'000'007, 100'000'020}};
    for (const auto& [nNowMs, nDueMs] : rows) {
        const FrameTime tNext = NextFrameTime(START, FPS, START + milliseconds(nNowMs));
        EXPECT_EQ(duration_cast<milliseconds>(tNext - START).count(), nDueMs) << nNowMs;
    }
}

TEST(FrameTimer, TheNextFrameIsAlwaysLaterThanNow) {
    for (const double fFps : {1000.0, 60.0, 59.94, 29.97, 0.3}) {
        FrameTime tNow = START;
        for (int nFrame = 0; nFrame < 1000; ++nFrame) {
            const FrameTime tNext = NextFrameTime(START, fFps, tNow);
            ASSERT_GT(tNext, tNow) << fFps << " frames a second, frame " << nFrame;
            ASSERT_LE(tNext - tNow, std::chrono::duration<double>(1.001 / fFps)) << fFps;
            tNow = tNext;
        }
    }
}

TEST(RequestOrigin, TheBoundAndTheLocalAddressAreOwn) {
    const CRequestOrigin origin("0.0.0.0", "192.168.7.5", 8040);
    for (const char* pszHost : {"0.0.0.0:8040", "192.168.7.5:8040"}) {
        EXPECT_TRUE(origin.IsOwnHost(pszHost)) << pszHost;
        EXPECT_TRUE(origin.IsOwnOrigin("http://" + std::string(pszHost))) << pszHost;
    }
    // The connection came in by none of these.
    for (const char* pszHost : {"127.0.0.1:8040", "localhost:8040", "[::1]:8040"}) {
        EXPECT_FALSE(origin.IsOwnHost(pszHost)) << pszHost;
        EXPECT_FALSE(origin.IsOwnOrigin("http://" + std::string(pszHost))) << pszHost;
    }
}

TEST(RequestOrigin, LocalhostIsOwnWhereItIsTheAddress) {
    for (const char* pszAddress : {"127.0.0.1", "::1"}) {
        const CRequestOrigin origin(pszAddress, pszAddress, 8040);
        EXPECT_TRUE(origin.IsOwnHost("localhost:8040")) << pszAddress;
        EXPECT_TRUE(origin.IsOwnHost("LocalHost:8040")) << pszAddress;
    }
    EXPECT_FALSE(CRequestOrigin("127.0.0.1", "127.0.0.1", 8040).IsOwnOrigin("http://[::1]:8040"));
    EXPECT_FALSE(CRequestOrigin("::1", "::1", 8040).IsOwnOrigin("http://127.0.0.1:8040"));
    EXPECT_FALSE(CRequestOrigin("127.0.0.2", "127.0.0.2", 8040).IsOwnHost("localhost:8040"));
}

TEST(RequestOrigin, WhatOnlyLooksLikeAnOwnNameIsForeign) {
    const CRequestOrigin origin("127.0.0.1", "127.0.0.1", 8040);
    for (const char* pszHost :
         {"evil.example", "evil.example:8040", "127.0.0.1", "127.0.0.1:1", "127.0.0.1:80400", "192.168.7.5:8040",
          "127.0.0.1.evil.example:8040", "localhost.evil.example:8040", "127.0.0.1:8040.evil.example",
          "127.0.0.1:8040/", "127.0.0.1:8040@evil.example", "::1:8040", ""}) {
        EXPECT_FALSE(origin.IsOwnHost(pszHost)) << pszHost;
        EXPECT_FALSE(origin.IsOwnOrigin("http://" + std::string(pszHost))) << pszHost;
    }
    for (const char* pszOrigin :
         {"https://127.0.0.1:8040", "HTTP://127.0.0.1:8040", "127.0.0.1:8040", "null", "file://", ""}) {
        EXPECT_FALSE(origin.IsOwnOrigin(pszOrigin)) << pszOrigin;
    }
}

TEST(RequestOrigin, OnPort80TheHostMayLeaveThePortOut) {
    const CRequestOrigin origin("::", "fd00::5", 80);
    EXPECT_TRUE(CRequestOrigin("::1", "::1", 80).IsOwnHost("localhost"));
    EXPECT_TRUE(origin.IsOwnHost("[fd00::5]"));
    EXPECT_TRUE(origin.IsOwnHost("[FD00::5]:80"));
    EXPECT_FALSE(origin.IsOwnHost("fd00::5"));
    EXPECT_FALSE(origin.IsOwnHost("localhost:8080"));
}

TEST(QueuedTexts, ATextCountsOnceForAllItsClients) {
    CQueuedTexts texts;
    auto pText = texts.Make(std::string(1000, 'x'));
    auto pSame = pText;
    const size_t nOne = texts.Bytes();
    EXPECT_GE(nOne, 1000u);
    EXPECT_LT(nOne, 2000u);
    const auto pSmall = texts.Make("{}");
    EXPECT_GT(texts.Bytes(), nOne + 100); // what a small one costs beside its characters
    pText = nullptr;
    EXPECT_GT(texts.Bytes(), nOne);
    pSame = nullptr;
    EXPECT_LT(texts.Bytes(), nOne);
}
