// What comes of an allocation that fails in the module. Here the program's own operator new comes before that of the
// libraries, for every caller, and can be made to fail.
#include <new>

#include <dlfcn.h>

#include "HeapUse.h"
#include "HostSetup.h"
#include "ModuleHost.h"
#include "SocketCalls.h"
#include "TestDevices.h"

namespace {

constexpr int NEVER = -1;

/// How many allocations succeed before one fails.
int s_nUntilFailure = NEVER;

/// Whether arrays that are asked for without exceptions aren't had.
bool s_bNoArrays = false;

} // namespace

void* operator new(std::size_t nBytes) {
    static const auto s_pNext = reinterpret_cast<void* (*)(std::size_t)>(dlsym(RTLD_NEXT, "_Znwm"));
    if (s_nUntilFailure != NEVER && --s_nUntilFailure == NEVER) {
        throw std::bad_alloc();
    }
    return s_pNext(nBytes);
}

void* operator new[](std::size_t nBytes, const std::nothrow_t& nothrow) noexcept {
    static const auto s_pNext =
        reinterpret_cast<void* (*)(std::size_t, const std::nothrow_t&)>(dlsym(RTLD_NEXT, "_ZnamRKSt9nothrow_t"));
    return s_bNoArrays ? nullptr : s_pNext(nBytes, nothrow);
}

namespace {

class AllocationFailure : public ModuleTest {
protected:
    AllocationFailure() { SetLogSink(nullptr); }
    ~AllocationFailure() override {
        s_nUntilFailure = NEVER;
        s_bNoArrays = false;
    }

    /// Whether the call raises the allocator's exception when an allocation fails after so many that succeed.
    template <typename Function>
    static bool Raises(int nSucceeding, Function function) {
        s_nUntilFailure = nSucceeding;
        try {
            function();
        } catch (const std::bad_alloc&) {
            return true;
        }
        s_nUntilFailure = NEVER;
        return false;
    }
};

const unsigned char TYPES[] = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F};

TEST_F(AllocationFailure, OfTheCatalogueStaysInside) {
    SIOProcessPluginData whole;
    m_host.Call(0, nullptr, &whole); // whatever is allocated once is allocated now
    ASSERT_EQ(whole.arNodeInfo.GetSize(), 13);
    int nSucceeding = 0;
    for (bool bFailed = true; bFailed; ++nSucceeding) {
        SCOPED_TRACE(nSucceeding);
        ASSERT_LT(nSucceeding, 10000);
        SIOProcessPluginData data;
        SIOProcessNodeInfo before;
        before.strName = L"before";
        data.arNodeInfo.Add(before);
        int nResult = 0;
        s_nUntilFailure = nSucceeding;
        EXPECT_NO_THROW(nResult = m_host.Call(0, nullptr, &data));
        bFailed = s_nUntilFailure == NEVER;
        s_nUntilFailure = NEVER;
        EXPECT_EQ(nResult, 1);
        // The types up to the one that couldn't be added, each of them whole.
        const INT_PTR nAdded = data.arNodeInfo.GetSize() - 1;
        ASSERT_GE(nAdded, 0);
        ASSERT_LE(nAdded, 13);
        EXPECT_TRUE(bFailed || nAdded == 13);
        EXPECT_EQ(Utf8(data.arNodeInfo[0].strName), "before");
        for (INT_PTR i = 0; i < nAdded; ++i) {
            const SIOProcessNodeInfo& info = data.arNodeInfo[i + 1];
            EXPECT_EQ(GuidWords(info.guidType), GuidWords(whole.arNodeInfo[i].guidType));
            EXPECT_EQ(Utf8(info.strName), Utf8(whole.arNodeInfo[i].strName));
            EXPECT_EQ(Utf8(info.strTip), Utf8(whole.arNodeInfo[i].strTip));
            EXPECT_EQ(info.bEnable, whole.arNodeInfo[i].bEnable);
            EXPECT_NE(info.hIcon, nullptr);
        }
        if (HasFailure()) {
            return; // one place says enough
        }
    }
    EXPECT_GT(nSucceeding, 13);
}

TEST_F(AllocationFailure, DoesNotConcernReleasingAndDestroying) {
    for (const unsigned char nTypeByte : TYPES) {
        if (nTypeByte == TYPE_BROADCAST_SEND) {
            continue; // its socket calls are recorded by these tests, which allocates where nothing may be thrown
        }
        SCOPED_TRACE(static_cast<int>(nTypeByte));
        const NodePtr pKeyCheck = nTypeByte == TYPE_KEY_CHECK ? m_host.CreateNode(nTypeByte) : nullptr;
        SIOProcessNodeRef ref{TypeGuid(nTypeByte),
                              pKeyCheck ? pKeyCheck.get() : m_host.CreateNode(nTypeByte).release()};
        EXPECT_FALSE(Raises(0, [&] { m_host.Call(3, &ref, nullptr); }));
        EXPECT_EQ(ref.pNode, nullptr);
    }
    EXPECT_FALSE(Raises(0, [&] { m_host.Call(1, nullptr, nullptr); }));
    EXPECT_FALSE(Raises(0, [&] { m_host.Call(4, nullptr, nullptr); }));
}

TEST_F(AllocationFailure, OfANodeGoesOutOfTheFunction) {
    for (const unsigned char nTypeByte : TYPES) {
        SCOPED_TRACE(static_cast<int>(nTypeByte));
        P_ExtDevIOProcess before;
        GUID guidType = TypeGuid(nTypeByte);
        SIOProcessPluginData data;
        data.pNode = &before;
        EXPECT_TRUE(Raises(0, [&] { m_host.Call(2, &guidType, &data); }));
        EXPECT_EQ(data.pNode, &before) << "the slot stays as it was";
    }
}

TEST_F(AllocationFailure, LeavesNothingOfAnUnfinishedNode) {
    for (const unsigned char nTypeByte : TYPES) {
        if (nTypeByte == TYPE_BROADCAST_SEND) {
            continue; // its socket calls are recorded by these tests, which allocates where nothing may be thrown
        }
        SCOPED_TRACE(static_cast<int>(nTypeByte));
        GUID guidType = TypeGuid(nTypeByte);
        SIOProcessPluginData data;
        const auto create = [&] { m_host.Call(2, &guidType, &data); };
        create(); // whatever is allocated once is allocated now
        delete std::exchange(data.pNode, nullptr);
        TakeSocketCalls();
        const size_t nBefore = HeapBytesInUse();
        int nSucceeding = 0;
        for (; Raises(nSucceeding, create); ++nSucceeding) {
            TakeSocketCalls();
            ASSERT_EQ(HeapBytesInUse(), nBefore) << "after " << nSucceeding << " allocations";
            ASSERT_EQ(data.pNode, nullptr);
        }
        EXPECT_GT(nSucceeding, 1);
        ASSERT_NE(data.pNode, nullptr);
        delete data.pNode;
    }
}

TEST_F(AllocationFailure, LeavesNothingOfAnUnfinishedEvent) {
    NodeScene scene(m_host, TYPE_KEYBOARD);
    scene.Evaluate();
    const auto fire = [&] { scene.Send(0, 2003); };
    fire();
    ASSERT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153});
    const size_t nBefore = HeapBytesInUse();
    int nSucceeding = 0;
    for (; Raises(nSucceeding, fire); ++nSucceeding) {
        ASSERT_EQ(HeapBytesInUse(), nBefore) << "after " << nSucceeding << " allocations";
    }
    EXPECT_GT(nSucceeding, 8) << "the event, its four parameters and their places in the list";
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153});
}

TEST_F(AllocationFailure, OfABroadcastsBufferSendsTheLengthFromNowhere) {
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    scene.Input(605).m_strValue = L"12|7";
    scene.AddGraphInput(606, 26, 7).m_nValue = 1;
    TakeDatagrams();
    s_bNoArrays = true;
    EXPECT_EQ(scene.Evaluate(), 1);
    s_bNoArrays = false;
    EXPECT_EQ(scene.Evaluate(), 1);
    const std::vector<SentDatagram> datagrams = TakeDatagrams();
    ASSERT_EQ(datagrams.size(), 2u);
    const std::string whole =
        std::string("[.{<Broadcast Flag=\"\" ClipName=\"\" Name=\"\" Data=\"12|7\"/>\r\n}.]") + '\0';
    EXPECT_TRUE(datagrams[0].bNowhere);
    EXPECT_EQ(datagrams[0].nSize, whole.size());
    EXPECT_EQ(datagrams[1].bytes, whole);
}

TEST_F(AllocationFailure, OfAStringsBufferSendsNothing) {
    NodeScene scene(m_host, TYPE_STRING_DATA_SEND);
    TestDevices devices;
    devices.Add(0, L"Zero", ParserKind::Direct);
    devices.Publish();
    scene.Input(1505).m_strValue = L"GO";
    scene.AddGraphInput(1507, 26, 7).m_nValue = 1;
    s_bNoArrays = true;
    EXPECT_EQ(scene.Evaluate(), 1);
    EXPECT_TRUE(devices.TakeSent().empty());
    s_bNoArrays = false;
    EXPECT_EQ(scene.Evaluate(), 1);
    const std::vector<SentItem> sent = devices.TakeSent();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].bytes, std::string("GO\0", 3));
}

} // namespace
