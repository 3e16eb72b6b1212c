// What comes of an allocation that fails. Here the program's own operator new and malloc come before those of the
// libraries, for every caller, and can be made to fail.
#include <climits>
#include <functional>
#include <new>
#include <optional>
#include <set>

#include "ContractTypes.h"
#include "HeapUse.h"
#include "ReplacedCalls.h"
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

/// Whether a failed operator new raises the framework's exception, as it does in a module that is linked with the
/// framework on Windows.
bool s_bFrameworksNew = false;

[[noreturn]] void RaiseNoMemory() {
    if (s_bFrameworksNew) {
        AfxThrowMemoryException();
    }
    throw std::bad_alloc();
}

/// An object of this size isn't had.
constexpr std::size_t NO_SIZE = SIZE_MAX;
std::size_t s_nRefusedSize = NO_SIZE;

} // namespace

void* operator new(std::size_t nBytes) {
    static const auto s_pOriginal = Original<void*(std::size_t)>(L"", "_Znwm");
    if (nBytes == s_nRefusedSize || FailingMemory::Fails()) {
        RaiseNoMemory();
    }
    return s_pOriginal(nBytes);
}

void* operator new[](std::size_t nBytes) {
    static const auto s_pOriginal = Original<void*(std::size_t)>(L"", "_Znam");
    if (FailingMemory::Fails()) {
        RaiseNoMemory();
    }
    return s_pOriginal(nBytes);
}

void* operator new(std::size_t nBytes, const std::nothrow_t& nothrow) noexcept {
    static const auto s_pOriginal = Original<void*(std::size_t, const std::nothrow_t&)>(L"", "_ZnwmRKSt9nothrow_t");
    return FailingMemory::Fails() ? nullptr : s_pOriginal(nBytes, nothrow);
}

void* operator new[](std::size_t nBytes, const std::nothrow_t& nothrow) noexcept {
    static const auto s_pOriginal = Original<void*(std::size_t, const std::nothrow_t&)>(L"", "_ZnamRKSt9nothrow_t");
    return s_bNoArrays || FailingMemory::Fails() ? nullptr : s_pOriginal(nBytes, nothrow);
}

namespace {

class AllocationFailure : public ModuleTest {
protected:
    AllocationFailure() {
        SetLogSink(nullptr);
        TakeSocketCalls();
    }
    ~AllocationFailure() override {
        s_bNoArrays = false;
        TakeImageCalls();
        TakeSocketCalls();
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
    SIOProcessPluginData whole; // whatever is allocated once is allocated now
    m_host.Call(0, nullptr, &whole);
    DestroyIcons(whole.arNodeInfo);
    { SCOPED_TRACE("the first trace takes memory, too"); }
    const size_t nBefore = HeapBytesInUse();
    for (const auto nHowOften : {FailingMemory::ONCE, FailingMemory::FOR_GOOD}) {
        int nSucceeding = 0;
        for (bool bFailed = true; bFailed && !HasFailure(); ++nSucceeding) { // one failure says enough
            SCOPED_TRACE(nSucceeding);
            {
                SIOProcessPluginData data;
                data.arNodeInfo.SetSize(1);
                {
                    const FailingMemory memory(nSucceeding, nHowOften);
                    EXPECT_NO_THROW(EXPECT_EQ(m_host.Call(0, nullptr, &data), 1));
                    bFailed = memory.HasFailed();
                }
                // The types up to the one that couldn't be added, each of them whole.
                const INT_PTR nAdded = data.arNodeInfo.GetSize() - 1;
                EXPECT_TRUE(bFailed || nAdded == std::ssize(ContractTypes())) << nAdded;
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
        }
        EXPECT_GT(nSucceeding, std::ssize(ContractTypes()));
    }
}

TEST_F(AllocationFailure, DoesNotConcernReleasingAndDestroying) {
    for (const ContractType& type : ContractTypes()) {
        if (type.nTypeByte == TYPE_BROADCAST_SEND) {
            continue; // its socket calls are recorded by these tests, which allocates where nothing may be thrown
        }
        SCOPED_TRACE(type);
        NodePtr pNode = m_host.CreateNode(type.nTypeByte);
        SIOProcessNodeRef ref{TypeGuid(type.nTypeByte), pNode.get()};
        EXPECT_FALSE(Raises(0, [&] { m_host.Call(3, &ref, nullptr); }));
        if (type.nTypeByte != TYPE_KEY_CHECK) {
            static_cast<void>(pNode.release());
        }
    }
    EXPECT_FALSE(Raises(0, [&] { m_host.Call(1, nullptr, nullptr); }));
    EXPECT_FALSE(Raises(0, [&] { m_host.Call(4, nullptr, nullptr); }));
}

TEST_F(AllocationFailure, OfANodeGoesOutOfTheFunctionAndLeavesNothing) {
    for (const ContractType& type : ContractTypes()) {
        if (type.nTypeByte == TYPE_BROADCAST_SEND) {
            continue; // its socket calls are recorded by these tests, which allocates where nothing may be thrown
        }
        SCOPED_TRACE(type);
        P_ExtDevIOProcess before;
        GUID guidType = TypeGuid(type.nTypeByte);
        SIOProcessPluginData data;
        const auto create = [&] { m_host.Call(2, &guidType, &data); };
        create(); // whatever is allocated once is allocated now
        delete std::exchange(data.pNode, &before);
        const size_t nBefore = HeapBytesInUse();
        int nSucceeding = 0;
        for (; Raises(nSucceeding, create); ++nSucceeding) {
            ASSERT_EQ(HeapBytesInUse(), nBefore) << "after " << nSucceeding << " allocations";
            ASSERT_EQ(data.pNode, &before) << "the slot stays as it was";
        }
        EXPECT_GT(nSucceeding, 1);
        ASSERT_NE(data.pNode, &before);
        delete data.pNode;
    }
}

// ---- The nodes' operations -----------------------------------------------------------------------------------------

/// An operation of a node of that type.
struct Operation {
    unsigned char nTypeByte;
    std::function<void(NodeScene&)> prepare; ///< makes work for it
    std::function<void(NodeScene&)> call;
};

/// Operations that run out of memory raise nothing and keep nothing; the node is still good for use and destruction.
class OperationWithoutMemory : public ModuleTest {
protected:
    ~OperationWithoutMemory() override {
        s_nRefusedSize = NO_SIZE;
        Forget();
    }

    /// Let each allocation of the operation fail in turn, of a new node each time. How many there were.
    int Exhaust(const Operation& operation) {
        SCOPED_TRACE("type " + std::to_string(operation.nTypeByte));
        for (int i = 0; i < 3; ++i) { // whatever is allocated once is allocated now
            CallAndFail(operation, INT_MAX, FailingMemory::ONCE);
        }
        const size_t nBefore = HeapBytesInUse();
        int nAllocations = 0;
        for (const auto nHowOften : {FailingMemory::ONCE, FailingMemory::FOR_GOOD}) {
            for (nAllocations = 0; CallAndFail(operation, nAllocations, nHowOften); ++nAllocations) {
                EXPECT_EQ(HeapBytesInUse(), nBefore) << "after " << nAllocations << " allocations";
                if (HasFailure()) {
                    return 0; // one place says enough
                }
            }
        }
        return nAllocations;
    }

    int Exhaust(const std::vector<Operation>& operations) {
        int nAllocations = 0;
        for (const Operation& operation : operations) {
            nAllocations += Exhaust(operation);
        }
        return nAllocations;
    }

    /// One call that may fail, and the node's use after it. Whether it failed.
    bool CallAndFail(const Operation& operation, int nSucceeding, FailingMemory::EHowOften nHowOften) {
        bool bFailed = false;
        bool bRaised = false;
        {
            NodeScene scene(m_host, operation.nTypeByte);
            operation.prepare(scene);
            {
                const FailingMemory memory(nSucceeding, nHowOften);
                try {
                    operation.call(scene);
                } catch (...) {
                    bRaised = true;
                }
                bFailed = memory.HasFailed();
            }
            EXPECT_FALSE(bRaised) << "after " << nSucceeding << " allocations";
            operation.call(scene);
            scene.Evaluate();
        }
        m_host.Call(1, nullptr, nullptr);
        Forget();
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
        TakeSocketCalls();
    }

    TestDevices m_devices;
};

void Evaluate(NodeScene& scene) {
    scene.Evaluate();
}

void InitParam(NodeScene& scene) {
    scene.m_pNode->InitParam();
}

void GetNodeOutput(NodeScene& scene) {
    scene.m_pNode->GetNodeOutput(&scene.m_graphNode);
}

TEST_F(OperationWithoutMemory, OfEveryType) {
    m_devices.Add(5, L"Five", ParserKind::Direct);
    m_devices.Publish();
    ContractPayloads payloads;
    int nAllocations = 0;
    for (const ContractType& type : ContractTypes()) {
        const auto Add = [&](const auto& prepare, const auto& call) {
            nAllocations += Exhaust({type.nTypeByte, prepare, call});
        };
        const auto Clear = [](NodeScene& scene) {
            while (!scene.m_graphNode.m_lstOutputGroup.IsEmpty()) {
                delete scene.m_graphNode.m_lstOutputGroup.RemoveHead();
            }
        };
        Add(Clear, GetNodeOutput);
        if (type.pMakeOutputsOld != nullptr) {
            Add(type.pMakeOutputsOld, GetNodeOutput);
        }
        Add(Evaluate, [](NodeScene& scene) { scene.m_pNode->DevIOEventOccurred(nullptr); });
        const auto events = type.pEvents != nullptr ? type.pEvents(payloads) : std::vector<ContractEvent>{};
        const auto Send = [&](NodeScene& scene, size_t nFirst, size_t nEnd) {
            for (size_t i = nFirst; i < nEnd; ++i) {
                scene.Send(type.devices[0], events[i].nEvent, events[i].pPayload);
            }
        };
        for (const int bRelative : {0, 1}) {
            for (SQORMouseData& sample : payloads.stroke) {
                sample.m_bRelative = bRelative;
            }
            // Each event may be the one that fails; a call sends the rest, too.
            for (size_t i = 0; i < events.size(); ++i) {
                const auto Begin = [&](NodeScene& scene) {
                    scene.Evaluate();
                    Send(scene, 0, i);
                };
                Add(Begin, [&](NodeScene& scene) { Send(scene, i, events.size()); });
            }
        }
        const auto Trigger = [&](NodeScene& scene) {
            scene.Evaluate();
            Send(scene, 0, events.size());
            if (type.pTrigger != nullptr) {
                type.pTrigger(scene);
            }
        };
        Add(Trigger, Evaluate);
        if (type.pszLayoutFile != nullptr) {
            m_host.WriteFile(std::filesystem::path("Plugins/NodePlugin/IOProcess") / type.pszLayoutFile,
                             R"(<ParamLayout><Group id="1" name="One"><Param id="2" x="8"/><Param id="3"/></Group>
                                <Group id="4" name="Two"/></ParamLayout>)");
            Add([](NodeScene& scene) { *scene.m_pNode->GetXmlLoadStatePtr() = XML_NOT_LOADED; },
                [](NodeScene& scene) {
                    scene.m_pNode->GetCtrlPosXmlPath();
                    scene.m_pNode->GetNodeParamInfoGrpAr();
                });
        }
    }
    EXPECT_GT(nAllocations, 400);
}

TEST_F(OperationWithoutMemory, OfSomeTypesBeyondThat) {
    m_devices.Add(5, L"Five", ParserKind::Direct);
    m_devices.Publish();
    TestApplication application;
    TestKeyboard keyboard;
    TestClock clock;
    const auto Set = [](unsigned nId, int nValue) {
        return [=](NodeScene& scene) { scene.Input(nId).m_nValue = nValue; };
    };
    const auto EmptyChoices = [](unsigned nId) {
        return [=](NodeScene& scene) { scene.Input(nId).m_arChoice.RemoveAll(); };
    };
    const auto Hold = [&](NodeScene& scene) {
        clock.Set(0);
        keyboard.Hold(VK_SHIFT);
        keyboard.Hold(0x65);
        scene.Input(1102).m_nValue = 0x165;
    };
    const auto HoldOn = [&](int nReleased) {
        return [&, nReleased](NodeScene& scene) {
            Hold(scene);
            scene.Evaluate();
            clock.Set(1000);
            keyboard.Release(nReleased);
        };
    };
    const auto TypeKey = [](const wchar_t* pszKey, int bClear) {
        return [=](NodeScene& scene) {
            scene.AddGraphInput(202, 1, 6).m_strValue = pszKey;
            scene.AddGraphInput(203, 26, 7).m_nValue = 1;
            scene.AddGraphInput(204, 26, 7).m_nValue = bClear;
        };
    };
    const auto SendToAll = [this](unsigned nToDev, unsigned nText, unsigned nSend) {
        return [=, this](NodeScene& scene) {
            scene.m_pNode->m_hNotifyWnd = m_host.Window();
            scene.m_pNode->m_nNotifyMsg = WM_APP + 18;
            scene.Input(nToDev).m_nValue = 0;
            scene.Input(nText).m_strValue = L"5";
            scene.AddGraphInput(nSend, 26, 7).m_nValue = 1;
        };
    };
    SDeviceTextData text;
    text.m_nDeviceId = 1;
    text.m_strText = L"{\"n\":[1,2.5],\"cmd\":\"start\",\"o\":{\"a\":null}}";
    EXPECT_GT(
        Exhaust({{TYPE_GESTURE, Set(7, 1), InitParam},
                 {TYPE_NET_PARAMETER_RECEIVE, Set(7, 1), InitParam},
                 {TYPE_DEVICE_JSON_RECEIVE, Set(7, 1), InitParam},
                 {TYPE_OBJECT_JSON_RECEIVE, Set(7, 1), InitParam},
                 {TYPE_VR_HANDLE, EmptyChoices(803), InitParam},
                 {TYPE_STRING_DATA_SEND, EmptyChoices(1506), InitParam},
                 {TYPE_NET_PARAMETER_SEND,
                  [](NodeScene& scene) {
                      scene.Input(7).m_nValue = 1;
                      scene.Input(411).m_guid = scene.Input(412).m_guid = MakeParamGuid(9999);
                      scene.Input(402).m_strValue = L"5";
                  },
                  InitParam},
                 {TYPE_KEY_CHECK, Hold, Evaluate},
                 {TYPE_KEY_CHECK, HoldOn(0), Evaluate},
                 {TYPE_KEY_CHECK, HoldOn(0x65), Evaluate},
                 {TYPE_KEY_CHECK, HoldOn(VK_SHIFT), Evaluate},
                 {TYPE_TEXT_FIELD, TypeKey(L"Num 7", 0), Evaluate},
                 {TYPE_TEXT_FIELD, TypeKey(L"Shift+a", 1), Evaluate},
                 {TYPE_VR_HANDLE, [](NodeScene& scene) { scene.Input(802).m_strValue = L"Hand"; }, Evaluate},
                 {TYPE_BROADCAST_RECEIVE, [](NodeScene& scene) { scene.Input(1302).m_strValue = L"flag"; }, Evaluate},
                 {TYPE_NET_PARAMETER_SEND, SendToAll(412, 402, 410), Evaluate},
                 {TYPE_STRING_DATA_SEND, SendToAll(1502, 1505, 1507), Evaluate},
                 {TYPE_STRING_DATA_SEND, Evaluate,
                  [](NodeScene& scene) { scene.m_pNode->UpdateSingleParamValue(MakeParamGuid(1502)); }},
                 {TYPE_DEVICE_JSON_RECEIVE,
                  [](NodeScene& scene) {
                      scene.Evaluate();
                      scene.Input(1403).m_nValue = 1;
                      scene.Input(1404).m_strValue = L"cmd";
                      scene.Input(1405).m_strValue = L"start";
                  },
                  [&text](NodeScene& scene) { scene.Send(5, 0, &text); }}}),
        100);
}

TEST_F(OperationWithoutMemory, ATextThatCannotBeParsedForItIsLogged) {
    NodeScene device(m_host, TYPE_DEVICE_JSON_RECEIVE);
    device.Evaluate();
    SDeviceTextData text;
    text.m_nDeviceId = 1;
    for (const int nLength : {10, 100'000}) {
        text.m_strText = L"[\"" + CString(L'a', nLength) + L"\",[1,2,3,4,5,6,7,8,9]]";
        EXPECT_EQ(device.Send(5, 0, &text), 1);
        Forget();
        std::optional<size_t> before; // whatever is allocated once is allocated in the first round
        for (const bool bFrameworksNew : {false, true, false, true}) {
            for (const int nSucceeding : {0, 1, 2, 3, 10}) {
                SCOPED_TRACE(nSucceeding);
                {
                    const FailingMemory memory(nSucceeding);
                    s_bFrameworksNew = bFrameworksNew;
                    EXPECT_EQ(device.Send(5, 0, &text), 0);
                    s_bFrameworksNew = false;
                }
                EXPECT_EQ(m_host.TakeLog(), std::vector{Error("[Clip.Graph.Node]DevIOEventOccurred:JSON解析失败")});
                EXPECT_EQ(HeapBytesInUse(), before.value_or(HeapBytesInUse()));
            }
            if (bFrameworksNew) {
                before = HeapBytesInUse();
            }
        }
    }
}

TEST_F(OperationWithoutMemory, ARecordThatCannotBeHadEndsTheEvaluation) {
    m_devices.Add(5, L"Five", ParserKind::Direct);
    m_devices.Publish();
    NodeScene netSend(m_host, TYPE_NET_PARAMETER_SEND);
    netSend.AddGraphInput(410, 26, 7).m_nValue = 1;
    netSend.Input(402).m_strValue = L"5";
    netSend.Evaluate();
    m_devices.TakeSent();
    s_nRefusedSize = sizeof(CQORPanelRemoteCtrlData);
    EXPECT_EQ(netSend.Evaluate(), 0);
    s_nRefusedSize = NO_SIZE;
    EXPECT_TRUE(m_devices.TakeSent().empty());
    EXPECT_EQ(netSend.Evaluate(), 1);
    EXPECT_EQ(m_devices.TakeSent().size(), 1u);
}

TEST_F(AllocationFailure, OfABroadcastsBufferSendsTheLengthFromNowhere) {
    NodeScene scene(m_host, TYPE_BROADCAST_SEND);
    scene.Input(605).m_strValue = L"12|7";
    scene.AddGraphInput(606, 26, 7).m_nValue = 1;
    TakeDatagrams();
    for (const bool bNoArrays : {true, false, true}) {
        s_bNoArrays = bNoArrays;
        EXPECT_EQ(scene.Evaluate(), 1);
    }
    s_bNoArrays = false;
    const std::vector<SentDatagram> datagrams = TakeDatagrams();
    ASSERT_EQ(datagrams.size(), 3u);
    const std::string whole =
        std::string("[.{<Broadcast Flag=\"\" ClipName=\"\" Name=\"\" Data=\"12|7\"/>\r\n}.]") + '\0';
    EXPECT_TRUE(datagrams[0].bNowhere);
    EXPECT_EQ(datagrams[0].nSize, whole.size());
    EXPECT_EQ(datagrams[1].bytes, whole);
    EXPECT_EQ(datagrams[2].bytes, whole) << "in the buffer of the one before";
}

} // namespace
