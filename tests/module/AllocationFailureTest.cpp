// What comes of an allocation that fails. Here the program's own operator new and malloc come before those of the
// libraries, for every caller, and can be made to fail.
#include <functional>
#include <new>
#include <set>

#include <dlfcn.h>

#include "HeapUse.h"
#include "HostSetup.h"
#include "ModuleHost.h"
#include "SocketCalls.h"
#include "SystemCalls.h"
#include "TestDevices.h"
#include "TestMachine.h"

namespace {

/// While an object lives, an allocation fails after so many that succeed, and perhaps all behind it.
class FailingMemory {
public:
    enum EHowOften { ONCE, FOR_GOOD };

    explicit FailingMemory(int nSucceeding, EHowOften nHowOften = ONCE) {
        s_nSucceeding = nSucceeding;
        s_nHowOften = nHowOften;
        s_bFailed = false;
        s_bAtWork = true;
        LetMallocFail(Fails);
    }
    ~FailingMemory() {
        LetMallocFail(nullptr);
        s_bAtWork = false;
    }

    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;

    /// Whether there were that many allocations.
    bool HasFailed() const { return s_bFailed; }

    /// Whether the allocation that is being made fails.
    static bool Fails() {
        if (!s_bAtWork || (s_bFailed && s_nHowOften == ONCE)) {
            return false;
        }
        s_bFailed = s_bFailed || s_nSucceeding-- == 0;
        return s_bFailed;
    }

private:
    static inline bool s_bAtWork = false;
    static inline bool s_bFailed = false;
    static inline int s_nSucceeding = 0;
    static inline EHowOften s_nHowOften = ONCE;
};

/// Whether arrays that are asked for without exceptions aren't had.
bool s_bNoArrays = false;

/// An object of this size isn't had.
constexpr std::size_t NO_SIZE = SIZE_MAX;
std::size_t s_nRefusedSize = NO_SIZE;

template <typename Function>
Function* Next(const char* pszName) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, pszName));
}

} // namespace

void* operator new(std::size_t nBytes) {
    static const auto s_pNext = Next<void*(std::size_t)>("_Znwm");
    if (nBytes == s_nRefusedSize || FailingMemory::Fails()) {
        throw std::bad_alloc();
    }
    return s_pNext(nBytes);
}

void* operator new[](std::size_t nBytes) {
    static const auto s_pNext = Next<void*(std::size_t)>("_Znam");
    if (FailingMemory::Fails()) {
        throw std::bad_alloc();
    }
    return s_pNext(nBytes);
}

void* operator new(std::size_t nBytes, const std::nothrow_t& nothrow) noexcept {
    static const auto s_pNext = Next<void*(std::size_t, const std::nothrow_t&)>("_ZnwmRKSt9nothrow_t");
    return FailingMemory::Fails() ? nullptr : s_pNext(nBytes, nothrow);
}

void* operator new[](std::size_t nBytes, const std::nothrow_t& nothrow) noexcept {
    static const auto s_pNext = Next<void*(std::size_t, const std::nothrow_t&)>("_ZnamRKSt9nothrow_t");
    return s_bNoArrays || FailingMemory::Fails() ? nullptr : s_pNext(nBytes, nothrow);
}

namespace {

class AllocationFailure : public ModuleTest {
protected:
    AllocationFailure() { SetLogSink(nullptr); }
    ~AllocationFailure() override {
        s_bNoArrays = false;
        TakeImageCalls();
    }

    /// Whether the call raises what a failed allocation raises when one fails after so many that succeed.
    template <typename Function>
    static bool Raises(int nSucceeding, Function function) {
        const FailingMemory memory(nSucceeding);
        try {
            function();
        } catch (const std::bad_alloc&) {
            return true;
        } catch (CMemoryException* pException) {
            pException->Delete();
            return true;
        }
        return false;
    }
};

const unsigned char TYPES[] = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F};

// ---- The exported function -----------------------------------------------------------------------------------------

/// Destroy the icons that were loaded: those of the entries are the host's, all others must be gone already.
void DestroyIcons(const CArray<SIOProcessNodeInfo>& arNodeInfo) {
    std::set<HANDLE> owned;
    for (INT_PTR i = 0; i < arNodeInfo.GetSize(); ++i) {
        owned.insert(arNodeInfo[i].hIcon);
    }
    for (const ImageCall& call : TakeImageCalls()) {
        const bool bDestroyed = DestroyIcon(static_cast<HICON>(call.hResult)) != FALSE;
        EXPECT_EQ(bDestroyed, call.hResult != nullptr && owned.contains(call.hResult));
    }
}

TEST_F(AllocationFailure, OfTheCatalogueStaysInside) {
    SIOProcessPluginData whole;
    {
        SCOPED_TRACE("whatever is allocated once is allocated now");
        m_host.Call(0, nullptr, &whole);
        ASSERT_EQ(whole.arNodeInfo.GetSize(), 13);
        DestroyIcons(whole.arNodeInfo);
    }
    const size_t nBefore = HeapBytesInUse();
    for (const auto nHowOften : {FailingMemory::ONCE, FailingMemory::FOR_GOOD}) {
        int nSucceeding = 0;
        for (bool bFailed = true; bFailed; ++nSucceeding) {
            SCOPED_TRACE(nSucceeding);
            ASSERT_LT(nSucceeding, 10000);
            {
                SIOProcessPluginData data;
                SIOProcessNodeInfo before;
                before.strName = L"before";
                data.arNodeInfo.Add(before);
                int nResult = 0;
                bool bRaised = false;
                {
                    const FailingMemory memory(nSucceeding, nHowOften);
                    try {
                        nResult = m_host.Call(0, nullptr, &data);
                    } catch (...) {
                        bRaised = true;
                    }
                    bFailed = memory.HasFailed();
                }
                EXPECT_FALSE(bRaised);
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
                DestroyIcons(data.arNodeInfo);
            }
            EXPECT_EQ(HeapBytesInUse(), nBefore);
            if (HasFailure()) {
                return; // one place says enough
            }
        }
        EXPECT_GT(nSucceeding, 13);
    }
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

// ---- The nodes' operations -----------------------------------------------------------------------------------------

/// The groups as text: of each its id, and of its parameters id, values, availability and number of choices.
std::string Describe(const VEKParamGroupList& lstGroup) {
    std::string text;
    for (const VEKParamGroup* pGroup : Items(lstGroup)) {
        text += std::to_string(pGroup->m_guid.Data1) + ':';
        for (const VEKParam* pParam : Items(pGroup->m_lstParam)) {
            text += ' ' + std::to_string(pParam->m_guid.Data1) + '=' + std::to_string(pParam->m_nValue) + '"' +
                    Utf8(pParam->m_strValue) + '"' + (pParam->m_bAvailable != 0 ? "" : "hidden") +
                    std::to_string(pParam->m_arChoice.GetSize());
        }
        text += '\n';
    }
    return text;
}

/// One call of an operation with all of its work before it.
struct Work {
    const char* pszName;
    std::function<void()> prepare;            ///< takes back what a call did, and makes work for the next one
    std::function<int()> call;                ///< operations without result answer 0
    std::function<std::string()> seen;        ///< what a call did
    std::function<int()> callAgain = nullptr; ///< once there is memory again; as the call itself unless it's given
    int nRaising = 0;                         ///< how many of its allocations are raised out of it when they fail
};

/// Operations that run out of memory raise nothing, unless their work says so, answer 0, keep nothing, and do their
/// work when they are called again.
class OperationWithoutMemory : public ModuleTest {
protected:
    OperationWithoutMemory() { TakeSocketCalls(); }
    ~OperationWithoutMemory() override {
        TakeSocketCalls();
        Forget();
    }

    /// Let each allocation of the call fail in turn. How many there were.
    int Exhaust(const Work& work) {
        SCOPED_TRACE(work.pszName);
        int nDone = 0;
        std::string expected;
        for (int i = 0; i < 3; ++i) { // whatever is allocated once is allocated now
            SCOPED_TRACE(i);
            work.prepare();
            nDone = work.call();
            expected = work.seen();
        }
        work.prepare();
        EXPECT_NE(expected, work.seen()) << "there has to be something to see";
        Forget();
        const size_t nBefore = HeapBytesInUse();
        int nAllocations = 0;
        for (const auto nHowOften : {FailingMemory::ONCE, FailingMemory::FOR_GOOD}) {
            nAllocations = 0;
            int nRaised = 0;
            for (bool bFailed = true; bFailed; ++nAllocations) {
                bFailed = CallAndFail(work, nAllocations, nHowOften, nDone, expected, nRaised);
                work.prepare();
                Forget();
                EXPECT_EQ(HeapBytesInUse(), nBefore) << "after " << nAllocations << " allocations";
                if (HasFailure() || nAllocations == ENOUGH) {
                    ADD_FAILURE() << "one place says enough";
                    return ENOUGH;
                }
            }
            EXPECT_EQ(nRaised, work.nRaising);
        }
        return nAllocations - 1;
    }

    /// One call that may fail, and if it does another one. Whether it failed; one is added to nRaised where it raised.
    static bool CallAndFail(const Work& work, int nSucceeding, FailingMemory::EHowOften nHowOften, int nDone,
                            const std::string& expected, int& nRaised) {
        SCOPED_TRACE(nSucceeding);
        int nResult = -1;
        bool bRaised = false;
        bool bFailed = false;
        {
            const FailingMemory memory(nSucceeding, nHowOften);
            try {
                nResult = work.call();
            } catch (const std::bad_alloc&) {
                bRaised = true;
                ++nRaised;
            }
            bFailed = memory.HasFailed();
        }
        if (bFailed) {
            EXPECT_EQ(nResult, bRaised ? -1 : 0);
            nResult = work.callAgain ? work.callAgain() : work.call();
        }
        EXPECT_EQ(nResult, nDone);
        EXPECT_EQ(work.seen(), expected);
        return bFailed;
    }

    /// Drop what has arrived anywhere.
    void Forget() {
        m_host.TakeEvents();
        m_host.TakeOtherMessages();
        m_host.TakeLog();
        m_host.TakeReportedEvents();
        m_host.TakeRedraws();
        m_devices.TakeSent();
        TakeDatagrams();
    }

    /// What was fired, once each: of two outputs the first is fired again when the second one couldn't be.
    std::string Fired() {
        std::set<int> outputs;
        for (const int nOutput : m_host.TakeFiredOutputs()) {
            outputs.insert(nOutput);
        }
        for (const ReportedEvent& event : m_host.TakeReportedEvents()) {
            outputs.insert(event.nOutput);
        }
        std::string text;
        for (const int nOutput : outputs) {
            text += std::to_string(nOutput) + ' ';
        }
        return text;
    }

    /// The last line of the log.
    std::string Logged() {
        const std::vector<LogLine> log = m_host.TakeLog();
        return log.empty() ? "" : log.back().text;
    }

    /// Calls that post or write nothing have the pins to show.
    static std::string Pins(const NodeScene& scene) { return Describe(scene.m_graphNode.m_lstOutputGroup); }

    static constexpr int ENOUGH = 10'000;

    TestDevices m_devices;
};

TEST_F(OperationWithoutMemory, InitParam) {
    const auto exhaust = [this](const char* pszName, NodeScene& scene, std::function<void()> prepare) {
        return Exhaust({.pszName = pszName,
                        .prepare = std::move(prepare),
                        .call =
                            [&scene] {
                                scene.m_pNode->InitParam();
                                return 0;
                            },
                        .seen = [&scene] { return Describe(scene.m_pNode->m_lstParamGroup); }});
    };
    NodeScene gesture(m_host, TYPE_GESTURE);
    exhaust("touch gesture", gesture, [&] {
        gesture.Input(7).m_nValue = 1;
        gesture.Input(2).m_bAvailable = 0;
    });
    NodeScene handle(m_host, TYPE_VR_HANDLE);
    EXPECT_GT(exhaust("VR handle", handle,
                      [&] {
                          handle.Input(7).m_nValue = 1;
                          handle.Input(803).m_arChoice.RemoveAll();
                      }),
              1);
    NodeScene netReceive(m_host, TYPE_NET_PARAMETER_RECEIVE);
    exhaust("net parameter receive", netReceive, [&] { netReceive.Input(7).m_nValue = 1; });
    NodeScene stringSend(m_host, TYPE_STRING_DATA_SEND);
    EXPECT_GT(exhaust("string data send", stringSend, [&] { stringSend.Input(1506).m_arChoice.RemoveAll(); }), 1);
    NodeScene netSend(m_host, TYPE_NET_PARAMETER_SEND);
    EXPECT_GT(exhaust("net parameter send", netSend,
                      [&] {
                          CList<VEKParam*>& lstParam = netSend.m_pNode->m_lstParamGroup.GetHead()->m_lstParam;
                          for (const unsigned nId : {411u, 412u}) {
                              VEKParam* pParam = &netSend.Input(nId);
                              lstParam.RemoveAt(lstParam.Find(pParam));
                              delete pParam;
                          }
                          netSend.Input(7).m_nValue = 1;
                          for (const unsigned nId : {402u, 403u}) {
                              netSend.Input(nId).m_bAvailable = 1;
                              netSend.Input(nId).m_strValue = L"5";
                          }
                      }),
              20);
    for (const unsigned char nTypeByte : {TYPE_DEVICE_JSON_RECEIVE, TYPE_OBJECT_JSON_RECEIVE}) {
        const NodePtr pNode = m_host.CreateNode(nTypeByte);
        const FailingMemory memory(0);
        pNode->InitParam(); // looks whether there are parameters
        EXPECT_FALSE(memory.HasFailed());
    }
}

TEST_F(OperationWithoutMemory, GetNodeOutput) {
    for (const unsigned char nTypeByte : TYPES) {
        SCOPED_TRACE(static_cast<int>(nTypeByte));
        NodeScene scene(m_host, nTypeByte);
        if (scene.m_graphNode.m_lstOutputGroup.IsEmpty()) {
            continue;
        }
        VEKParamGroupList& lstGroup = scene.m_graphNode.m_lstOutputGroup;
        const Work work = {.pszName = "new outputs",
                           .prepare =
                               [&lstGroup] {
                                   while (!lstGroup.IsEmpty()) {
                                       delete lstGroup.RemoveHead();
                                   }
                               },
                           .call =
                               [&scene] {
                                   scene.m_pNode->GetNodeOutput(&scene.m_graphNode);
                                   return 0;
                               },
                           .seen = [&lstGroup] { return Describe(lstGroup); }};
        EXPECT_GT(Exhaust(work), 10);
        Work upgrade = work;
        upgrade.pszName = "outputs of an older version";
        if (nTypeByte == TYPE_GESTURE) {
            upgrade.prepare = [&scene] { scene.RemoveOutput(758); };
        } else if (nTypeByte == TYPE_VR_HANDLE) {
            upgrade.prepare = [&lstGroup] {
                const POSITION posHit = lstGroup.FindIndex(1);
                delete lstGroup.GetAt(posHit);
                lstGroup.RemoveAt(posHit);
            };
        } else {
            continue;
        }
        scene.m_pNode->GetNodeOutput(&scene.m_graphNode);
        EXPECT_GT(Exhaust(upgrade), 2);
    }
}

TEST_F(OperationWithoutMemory, ProcessNodeOfInputNodes) {
    TestApplication application;
    TestKeyboard keyboardState;
    TestClock clock;

    NodeScene keyboard(m_host, TYPE_KEYBOARD);
    keyboard.Evaluate();
    const auto press = [&keyboard](const wchar_t* pszText) {
        SKeyEventData key;
        key.m_strText = pszText;
        return keyboard.Send(0, 2002, &key);
    };
    Exhaust({.pszName = "keyboard",
             .prepare =
                 [&] {
                     press(L"");
                     keyboard.Evaluate();
                     press(L"x");
                 },
             .call = [&] { return keyboard.Evaluate(); },
             .seen = [&] { return Pins(keyboard); }});

    NodeScene keyCheck(m_host, TYPE_KEY_CHECK);
    keyCheck.Input(1102).m_nValue = 0x165;
    const auto holdAll = [&] {
        keyboardState.Hold(VK_SHIFT);
        keyboardState.Hold(0x65);
    };
    const Work firing = {.pszName = "key check, pressed",
                         .prepare =
                             [&] {
                                 keyboardState.ReleaseAll();
                                 keyCheck.Evaluate();
                                 Forget();
                                 holdAll();
                             },
                         .call = [&] { return keyCheck.Evaluate(); },
                         .seen = [&] { return Fired(); }};
    EXPECT_GT(Exhaust(firing), 10);
    Work again = firing;
    DWORD nTick = 0;
    again.pszName = "key check, held";
    again.prepare = [&] {
        holdAll();
        keyCheck.Evaluate();
        Forget();
        clock.Set(nTick += 1000);
    };
    EXPECT_GT(Exhaust(again), 10);
    again.pszName = "key check, released";
    again.prepare = [&] {
        holdAll();
        keyCheck.Evaluate();
        Forget();
        keyboardState.Release(0x65);
    };
    EXPECT_GT(Exhaust(again), 10);
    again.pszName = "key check, modifier released";
    again.prepare = [&] {
        holdAll();
        keyCheck.Evaluate();
        Forget();
        keyboardState.Release(VK_SHIFT);
    };
    EXPECT_GT(Exhaust(again), 10);

    NodeScene textField(m_host, TYPE_TEXT_FIELD);
    VEKParam& inputText = textField.AddGraphInput(202, 1, 6);
    VEKParam& inputEvent = textField.AddGraphInput(203, 26, 7);
    VEKParam& textClear = textField.AddGraphInput(204, 26, 7);
    EXPECT_GT(Exhaust({.pszName = "text field",
                       .prepare =
                           [&] {
                               inputEvent.m_nValue = 0;
                               textClear.m_nValue = 1;
                               textField.Evaluate();
                               inputText.m_strValue = L"Num 7";
                               inputEvent.m_nValue = 1;
                               textClear.m_nValue = 0;
                           },
                       .call = [&] { return textField.Evaluate(); },
                       .seen = [&] { return Pins(textField); }}),
              1);

    NodeScene mouse(m_host, TYPE_MOUSE);
    mouse.Evaluate();
    Exhaust({.pszName = "mouse",
             .prepare =
                 [&] {
                     mouse.Send(1, 3006);
                     mouse.Evaluate();
                     mouse.Send(1, 3005);
                 },
             .call = [&] { return mouse.Evaluate(); },
             .seen = [&] { return Pins(mouse); }});

    NodeScene handle(m_host, TYPE_VR_HANDLE);
    NodeScene gesture(m_host, TYPE_GESTURE);
    handle.Input(802).m_strValue = L"Hand";
    handle.Input(803).m_nValue = 1;
    for (NodeScene* pScene : {&handle, &gesture}) {
        const FailingMemory memory(0);
        EXPECT_EQ(pScene->Evaluate(), 1);
        EXPECT_FALSE(memory.HasFailed()) << "what these read needs no memory";
    }
}

TEST_F(OperationWithoutMemory, ProcessNodeOfNetworkNodes) {
    NodeScene broadcast(m_host, TYPE_BROADCAST_SEND);
    VEKParam& sendBroadcast = broadcast.AddGraphInput(606, 26, 7);
    EXPECT_GT(Exhaust({.pszName = "broadcast send",
                       .prepare =
                           [&] {
                               sendBroadcast.m_nValue = 0;
                               broadcast.Input(604).m_strValue = L"name & more";
                               broadcast.Input(605).m_strValue = L"";
                               broadcast.Evaluate();
                               broadcast.Input(605).m_strValue = L"12|7";
                               sendBroadcast.m_nValue = 1;
                           },
                       .call = [&] { return broadcast.Evaluate(); },
                       .seen =
                           [] {
                               const std::vector<SentDatagram> datagrams = TakeDatagrams();
                               return datagrams.empty() ? "" : datagrams.back().bytes;
                           }}),
              2);

    m_devices.Add(5, L"Five", ParserKind::Direct);
    m_devices.Publish();
    const auto sent = [this] {
        const std::vector<SentItem> items = m_devices.TakeSent();
        return items.empty() ? "" : Utf8(items.back().record.GetXmlDoc()) + items.back().bytes;
    };
    NodeScene netSend(m_host, TYPE_NET_PARAMETER_SEND);
    VEKParam& sendRecord = netSend.AddGraphInput(410, 26, 7);
    netSend.Input(402).m_strValue = L"5";
    netSend.Evaluate();
    for (const int bToDev : {1, 0}) {
        EXPECT_GT(Exhaust({.pszName = "net parameter send",
                           .prepare =
                               [&netSend, &sendRecord, bToDev] {
                                   netSend.Input(412).m_nValue = bToDev;
                                   sendRecord.m_nValue = 0;
                                   netSend.Evaluate();
                                   sendRecord.m_nValue = 1;
                               },
                           .call = [&netSend] { return netSend.Evaluate(); },
                           .seen = sent,
                           .nRaising = 1}), // the record's
                  2);
    }
    sendRecord.m_nValue = 0;

    NodeScene stringSend(m_host, TYPE_STRING_DATA_SEND);
    VEKParam& sendText = stringSend.AddGraphInput(1507, 26, 7);
    stringSend.Input(1503).m_nValue = 5;
    stringSend.Input(1505).m_strValue = L"GO";
    for (const int bToDev : {1, 0}) {
        stringSend.Input(1502).m_nValue = bToDev;
        EXPECT_GT(Exhaust({.pszName = "string data send",
                           .prepare = [&sendText] { sendText.m_nValue = 1; },
                           .call = [&stringSend] { return stringSend.Evaluate(); },
                           .seen = sent}),
                  1);
    }
    sendText.m_nValue = 0;

    NodeScene broadcastReceive(m_host, TYPE_BROADCAST_RECEIVE);
    broadcastReceive.Input(1302).m_strValue = L"flag";
    NodeScene netReceive(m_host, TYPE_NET_PARAMETER_RECEIVE);
    NodeScene deviceJson(m_host, TYPE_DEVICE_JSON_RECEIVE);
    NodeScene objectJson(m_host, TYPE_OBJECT_JSON_RECEIVE);
    for (NodeScene* pScene : {&broadcastReceive, &netReceive, &deviceJson, &objectJson}) {
        const FailingMemory memory(0);
        EXPECT_EQ(pScene->Evaluate(), 1);
        EXPECT_FALSE(memory.HasFailed()) << "what these read needs no memory";
    }
}

TEST_F(OperationWithoutMemory, ARecordToSendThatCannotBeHadIsRaised) {
    m_devices.Add(5, L"Five", ParserKind::Direct);
    m_devices.Publish();
    NodeScene netSend(m_host, TYPE_NET_PARAMETER_SEND);
    netSend.AddGraphInput(410, 26, 7).m_nValue = 1;
    netSend.Input(402).m_strValue = L"5";
    s_nRefusedSize = sizeof(CQORPanelRemoteCtrlData);
    EXPECT_THROW(netSend.Evaluate(), std::bad_alloc);
    s_nRefusedSize = NO_SIZE;
    EXPECT_NE(Logged().find("触发事件"), std::string::npos);
    EXPECT_TRUE(m_devices.TakeSent().empty());
    EXPECT_EQ(netSend.Evaluate(), 1);
    EXPECT_EQ(m_devices.TakeSent().size(), 1u);
}

TEST_F(OperationWithoutMemory, RedrawOfAPanel) {
    const auto redrawn = [this] {
        const bool bRedrawn = !m_host.TakeRedraws().empty();
        return std::string(bRedrawn ? "redrawn" : "") + (m_host.TakeOtherMessages().empty() ? "" : " and told");
    };
    const auto watch = [this](const NodeScene& scene) {
        scene.m_pNode->m_hNotifyWnd = m_host.Window();
        scene.m_pNode->m_nNotifyMsg = WM_APP + 18;
    };
    NodeScene netSend(m_host, TYPE_NET_PARAMETER_SEND);
    watch(netSend);
    EXPECT_GT(Exhaust({.pszName = "net parameter send",
                       .prepare =
                           [&] {
                               netSend.Input(412).m_nValue = 0;
                               netSend.Evaluate();
                               Forget();
                               netSend.Input(412).m_nValue = 1;
                           },
                       .call = [&] { return netSend.Evaluate(); },
                       .seen = redrawn}),
              0);
    NodeScene stringSend(m_host, TYPE_STRING_DATA_SEND);
    watch(stringSend);
    stringSend.Evaluate();
    const auto update = [&stringSend] { return stringSend.m_pNode->UpdateSingleParamValue(GUID{1502, 0, 0, {}}); };
    EXPECT_GT(Exhaust({.pszName = "string data send",
                       .prepare =
                           [&] {
                               stringSend.Input(1502).m_nValue = 0;
                               update();
                               Forget();
                               stringSend.Input(1502).m_nValue = 1;
                           },
                       .call = update,
                       .seen = redrawn}),
              0);
    const FailingMemory memory(0);
    EXPECT_EQ(stringSend.m_pNode->NeedUpdateSingleParam(GUID{1502, 0, 0, {}}), TRUE);
    EXPECT_FALSE(memory.HasFailed());
}

TEST_F(OperationWithoutMemory, DevIOEventOccurredOfInputNodes) {
    NodeScene keyboard(m_host, TYPE_KEYBOARD);
    keyboard.Evaluate();
    SKeyEventData key;
    key.m_strText = L"x";
    EXPECT_GT(Exhaust({.pszName = "keyboard",
                       .prepare = [&] { Forget(); },
                       .call = [&] { return keyboard.Send(0, 2002, &key); },
                       .seen = [&] { return Fired(); }}),
              10);

    NodeScene mouse(m_host, TYPE_MOUSE);
    mouse.Evaluate();
    EXPECT_GT(Exhaust({.pszName = "mouse",
                       .prepare = [&] { Forget(); },
                       .call = [&] { return mouse.Send(1, 3005); },
                       .seen = [&] { return Fired(); }}),
              10);

    NodeScene handle(m_host, TYPE_VR_HANDLE);
    handle.Evaluate();
    SVRPluginData pressed;
    pressed.m_bTriggerPressed = 1;
    pressed.m_bTouchPadPressed = 1;
    EXPECT_GT(Exhaust({.pszName = "VR handle",
                       .prepare =
                           [&] {
                               SVRPluginData released;
                               handle.Send(3, 0, &released);
                               Forget();
                           },
                       .call = [&] { return handle.Send(3, 0, &pressed); },
                       .seen = [&] { return Fired(); }}),
              20);
}

TEST_F(OperationWithoutMemory, DevIOEventOccurredOfTheGestureNode) {
    NodeScene gesture(m_host, TYPE_GESTURE);
    gesture.Evaluate();
    for (const int bRelative : {0, 1}) {
        const auto send = [&gesture, bRelative](int nEvent, int nX) {
            SQORMouseData sample(1, static_cast<float>(nX), 0.0f, CPoint(nX, 0), bRelative);
            return gesture.Send(1, nEvent, &sample);
        };
        // A stroke that begins is seen by what ends it.
        EXPECT_GT(Exhaust({.pszName = "press",
                           .prepare =
                               [&] {
                                   send(3006, 0);
                                   Forget();
                               },
                           .call = [&] { return send(3005, 0); },
                           .seen =
                               [&] {
                                   send(3006, 0);
                                   return Fired();
                               }}),
                  0);
        EXPECT_GT(Exhaust({.pszName = "begin of a drag",
                           .prepare =
                               [&] {
                                   send(3006, 0);
                                   send(3005, 0);
                                   Forget();
                               },
                           .call = [&] { return send(3013, 100); },
                           .seen = [&] { return Fired(); }}),
                  10);
        // A release ends the stroke, whatever comes of its outputs: a second one would be nobody's.
        const auto drag = [&] {
            send(3005, 0);
            send(3013, 100);
            send(3013, 200);
            Forget();
        };
        EXPECT_GT(Exhaust({.pszName = "release",
                           .prepare =
                               [&] {
                                   send(3006, 0);
                                   drag();
                               },
                           .call = [&] { return send(3006, 300); },
                           .seen = [&] { return Fired(); },
                           .callAgain =
                               [&] {
                                   EXPECT_EQ(send(3006, 300), 0);
                                   EXPECT_EQ(send(3013, 300), 0);
                                   drag();
                                   return send(3006, 300);
                               }}),
                  20);
    }
}

TEST_F(OperationWithoutMemory, DevIOEventOccurredOfNetworkNodes) {
    NodeScene netReceive(m_host, TYPE_NET_PARAMETER_RECEIVE);
    netReceive.Evaluate();
    CQORPanelRemoteCtrlData record;
    record.m_strClipName = L"Clip";
    EXPECT_GT(Exhaust({.pszName = "net parameter receive",
                       .prepare = [&] { Forget(); },
                       .call = [&] { return netReceive.Send(2, 0, static_cast<CQORIOAttachedData*>(&record)); },
                       .seen = [&] { return Fired(); }}),
              1);

    NodeScene broadcast(m_host, TYPE_BROADCAST_RECEIVE);
    broadcast.Evaluate();
    SBroadcastItem item;
    item.m_strName = L"name";
    Exhaust({.pszName = "broadcast receive",
             .prepare =
                 [&] {
                     for (const unsigned nId : {1352u, 1353u}) {
                         broadcast.Output(nId).m_strValue.Empty();
                     }
                 },
             .call = [&] { return broadcast.Send(2, 1, &item); },
             .seen = [&] { return Pins(broadcast); }});

    for (const unsigned char nTypeByte : {TYPE_KEY_CHECK, TYPE_NET_PARAMETER_SEND, TYPE_STRING_DATA_SEND}) {
        NodeScene scene(m_host, nTypeByte);
        scene.Evaluate();
        const FailingMemory memory(0);
        EXPECT_EQ(scene.Send(0, 2002), nTypeByte == TYPE_KEY_CHECK ? 0 : 1);
        EXPECT_FALSE(memory.HasFailed()) << "these do nothing with events";
    }
}

TEST_F(OperationWithoutMemory, DevIOEventOccurredOfJsonNodes) {
    NodeScene device(m_host, TYPE_DEVICE_JSON_RECEIVE);
    device.Evaluate();
    device.Input(1403).m_nValue = 1;
    device.Input(1404).m_strValue = L"cmd";
    device.Input(1405).m_strValue = L"start";
    SDeviceTextData deviceText;
    deviceText.m_nDeviceId = 1;
    deviceText.m_strText = L"{\"n\":[1,2.5],\"cmd\":\"start\",\"o\":{\"a\":null}}";
    EXPECT_GT(Exhaust({.pszName = "device JSON receive",
                       .prepare =
                           [&] {
                               device.Output(1452).m_strValue.Empty();
                               Forget();
                           },
                       .call = [&] { return device.Send(5, 0, &deviceText); },
                       .seen = [&] { return Fired() + Pins(device); }}),
              10);

    NodeScene object(m_host, TYPE_OBJECT_JSON_RECEIVE);
    object.Evaluate();
    SObjectTextData objectText;
    objectText.m_strText = L"{}";
    EXPECT_GT(Exhaust({.pszName = "object JSON receive",
                       .prepare =
                           [&] {
                               object.Output(1252).m_strValue.Empty();
                               Forget();
                           },
                       .call = [&] { return object.Send(6, 0, &objectText); },
                       .seen = [&] { return Fired() + Pins(object); }}),
              1);
}

TEST_F(OperationWithoutMemory, DevIOEventOccurredWithoutARecord) {
    for (const unsigned char nTypeByte :
         {TYPE_KEYBOARD, TYPE_MOUSE, TYPE_GESTURE, TYPE_VR_HANDLE, TYPE_NET_PARAMETER_RECEIVE, TYPE_BROADCAST_RECEIVE,
          TYPE_DEVICE_JSON_RECEIVE, TYPE_OBJECT_JSON_RECEIVE}) {
        SCOPED_TRACE(static_cast<int>(nTypeByte));
        NodeScene scene(m_host, nTypeByte);
        scene.Evaluate();
        EXPECT_GT(Exhaust({.pszName = "no record",
                           .prepare = [&] { Forget(); },
                           .call = [&] { return scene.m_pNode->DevIOEventOccurred(nullptr); },
                           .seen = [&] { return Logged(); }}),
                  1);
    }
}

TEST_F(OperationWithoutMemory, ControlLayout) {
    const std::pair<unsigned char, const char*> classes[] = {{TYPE_GESTURE, "CVEKIOGesture.XML"},
                                                             {TYPE_MOUSE, "CVEKIOMouse.XML"},
                                                             {TYPE_NET_PARAMETER_SEND, "CVEKIONetParameterSend.XML"},
                                                             {TYPE_VR_HANDLE, "CVEKIOVRHandle.XML"},
                                                             {TYPE_DEVICE_JSON_RECEIVE, "CVEKIODevJsonReceive.XML"}};
    for (const auto& [nTypeByte, pszFileName] : classes) {
        SCOPED_TRACE(pszFileName);
        m_host.WriteFile(std::filesystem::path("Plugins/NodePlugin/IOProcess") / pszFileName,
                         R"(<ParamLayout><Group id="1" name="One"><Param id="2" x="8"/><Param id="3"/></Group>
                            <Group id="4" name="Two"/></ParamLayout>)");
        const NodePtr pNode = m_host.CreateNode(nTypeByte);
        CString strPath;
        EXPECT_GT(Exhaust({.pszName = "path",
                           .prepare = [&] { strPath.Empty(); },
                           .call =
                               [&] {
                                   strPath = pNode->GetCtrlPosXmlPath();
                                   return strPath.IsEmpty() ? 0 : 1;
                               },
                           .seen = [&] { return Utf8(strPath); }}),
                  0);
        const NodeParamInfoGrpArray* pGroups = nullptr;
        EXPECT_GT(Exhaust({.pszName = "groups",
                           .prepare =
                               [&] {
                                   m_host.Call(1, nullptr, nullptr);
                                   *pNode->GetXmlLoadStatePtr() = XML_NOT_LOADED;
                                   pGroups = nullptr;
                               },
                           .call =
                               [&] {
                                   pGroups = pNode->GetNodeParamInfoGrpAr();
                                   return static_cast<int>(pGroups->GetSize());
                               },
                           .seen =
                               [&] {
                                   std::string text;
                                   for (INT_PTR i = 0; pGroups != nullptr && i < pGroups->GetSize(); ++i) {
                                       text += Utf8(pGroups->GetAt(i)->m_strName) + ' ' +
                                               std::to_string(pGroups->GetAt(i)->m_arParam.GetSize()) + ' ';
                                   }
                                   return text;
                               }}),
                  5);
        const FailingMemory memory(0);
        EXPECT_NE(pNode->GetXmlReader(), nullptr);
        EXPECT_NE(pNode->GetXmlLoadStatePtr(), nullptr);
        EXPECT_FALSE(memory.HasFailed());
    }
}

TEST_F(OperationWithoutMemory, EventIsFreedWhereItStands) {
    SetLogSink(nullptr);
    NodeScene scene(m_host, TYPE_KEYBOARD);
    scene.Evaluate();
    scene.Send(0, 2003);
    ASSERT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153});
    const size_t nBefore = HeapBytesInUse();
    int nSucceeding = 0;
    for (bool bFailed = true; bFailed; ++nSucceeding) {
        {
            const FailingMemory memory(nSucceeding);
            scene.Send(0, 2003);
            bFailed = memory.HasFailed();
        }
        ASSERT_TRUE(!bFailed || HeapBytesInUse() == nBefore) << "after " << nSucceeding << " allocations";
    }
    EXPECT_GT(nSucceeding, 6) << "the event, its four parameters and the room in its list";
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153});
}

// ---- Buffers that are asked for without exceptions -----------------------------------------------------------------

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
