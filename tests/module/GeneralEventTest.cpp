// The general event by which a node fires an output, seen where it arrives: at the host's event window.
#include <algorithm>
#include <memory>
#include <new>
#include <set>

#include "ContractTypes.h"
#include "HeapUse.h"
#include "HostCalls.h"

namespace {

class GeneralEvent : public ModuleTest {
protected:
    GeneralEvent() { m_scene.Evaluate(); }

    /// Release a key: the keyboard node fires output 153, and nothing else changes in it.
    int Fire() { return m_scene.Send(0, 2003); }

    NodeScene m_scene{m_host, TYPE_KEYBOARD};
};

struct ExpectedEventParam {
    unsigned nId;
    const char* pszName;
    const char* pszDisplay;
    const wchar_t* pszTypeName;
};

const ExpectedEventParam EVENT_PARAMS[] = {
    {0, "OwnerClip", "<TOUCH_CONTROL_OWNER_CLIP>", L"VEKClip"},
    {1, "OwnerObject", "<TOUCH_CONTROL_OWNER_OBJECT>", L"VEKObject"},
    {2, "OwnerProperty", "<TOUCH_CONTROL_OWNER_PROPERTY>", L"VEKProperty"},
    {3, "OwnerEventID", "<QOR_EXTRADATA_EVENT_ID>", L"EventID"},
};

TEST_F(GeneralEvent, ArrivesWithFourPointersWhateverTheHostLeavesInAParameter) {
    for (const bool bCareless : {false, true}) {
        SCOPED_TRACE(bCareless);
        {
            const MarkedTexts texts;
            const auto pCareless = bCareless ? std::make_unique<CarelessHost>() : nullptr;
            EXPECT_EQ(Fire(), 1);
        }
        const std::vector<PostedEvent> events = m_host.TakeEvents();
        ASSERT_EQ(events.size(), 1u);
        EXPECT_EQ(events[0].nMessage, ModuleHost::EVENT_MESSAGE);
        EXPECT_EQ(events[0].wParam, 1u);
        EXPECT_EQ(static_cast<int>(events[0].pEvent->m_nId), 2);
        EXPECT_EQ(Utf8(events[0].pEvent->m_strName), "GeneralEvent");
        const std::vector<VEKParam*> params = Items(events[0].pEvent->m_lstParam);
        ASSERT_EQ(params.size(), 4u);
        for (size_t i = 0; i < 4; ++i) {
            SCOPED_TRACE(EVENT_PARAMS[i].pszName);
            EXPECT_EQ(GuidWords(params[i]->m_guid), (std::array<unsigned, 4>{EVENT_PARAMS[i].nId, 0, 0, 0}));
            EXPECT_EQ(Utf8(params[i]->m_strName), EVENT_PARAMS[i].pszName);
            EXPECT_EQ(Utf8(params[i]->m_strDisplay), EVENT_PARAMS[i].pszDisplay);
            EXPECT_EQ(params[i]->m_nType, 0);
            EXPECT_EQ(params[i]->m_nControl, 8);
            EXPECT_EQ(params[i]->m_bRangeSet + params[i]->m_bBoolValueSet, 0) << "neither range nor flags are set";
            EXPECT_STREQ(params[i]->m_szTypeName, EVENT_PARAMS[i].pszTypeName);
            EXPECT_EQ(Utf8(params[i]->m_strValue), "");
            EXPECT_EQ(params[i]->m_bAvailable, 1);
            EXPECT_EQ(dynamic_cast<SQORNodeOutput*>(params[i]), nullptr);
        }
        EXPECT_EQ(params[0]->m_pValue, &m_scene.m_clip);
        EXPECT_EQ(params[1]->m_pValue, nullptr);
        EXPECT_EQ(params[2]->m_pValue, static_cast<VEKProperty*>(m_scene.m_pNode.get()));
        EXPECT_EQ(*static_cast<int*>(params[3]->m_pValue), 153);
    }
    EXPECT_TRUE(m_host.TakeOtherMessages().empty());
    EXPECT_TRUE(m_host.TakeReportedEvents().empty());
}

TEST_F(GeneralEvent, EveryEventCarriesAnIdOfItsOwnAndIsDeliveredAfterTheCall) {
    Fire();
    m_scene.Send(0, 2002);
    Fire();
    EXPECT_EQ(m_host.EventCount(), 0);
    const std::vector<PostedEvent> events = m_host.TakeEvents();
    ASSERT_EQ(events.size(), 3u);
    std::set<void*> ids;
    std::vector<int> outputs;
    for (const PostedEvent& posted : events) {
        outputs.push_back(FiredOutput(posted));
        ids.insert(posted.pEvent->m_lstParam.GetTail()->m_pValue);
    }
    EXPECT_EQ(outputs, (std::vector<int>{153, 152, 153})) << "in the order in which they were fired";
    EXPECT_EQ(ids.size(), 3u);
}

/// Notes at each log line how many events came before it, by either way to the host.
class EventsBeforeLines final : public ILogSink {
public:
    explicit EventsBeforeLines(ModuleHost& host) : m_host(host) { SetLogSink(this); }
    ~EventsBeforeLines() { SetLogSink(nullptr); }

    EventsBeforeLines(const EventsBeforeLines&) = delete;
    EventsBeforeLines& operator=(const EventsBeforeLines&) = delete;

    void OnLogLine(const SLogLine& /*line*/) override { m_counts.push_back(Events()); }

    /// There were so many more lines, each with its event behind it.
    void Expect(int nLines) {
        std::vector<long long> counts;
        for (int i = 0; i <= nLines; ++i) {
            counts.push_back(m_nExpected++);
        }
        --m_nExpected;
        m_counts.push_back(Events());
        EXPECT_EQ(std::exchange(m_counts, {}), counts);
    }

private:
    long long Events() {
        m_host.Pump();
        m_nReported += static_cast<long long>(m_host.TakeReportedEvents().size());
        return m_host.EventCount() + m_nReported;
    }

    ModuleHost& m_host;
    long long m_nReported = 0;
    long long m_nExpected = 0;
    std::vector<long long> m_counts;
};

TEST_F(GeneralEvent, ComesBehindItsLogLine) {
    EventsBeforeLines events(m_host);
    ContractPayloads payloads;
    const std::pair<unsigned char, int> LINES[] = {{TYPE_KEYBOARD, 2},
                                                   {TYPE_MOUSE, 1},
                                                   {TYPE_GESTURE, 3},
                                                   {TYPE_NET_PARAMETER_RECEIVE, 1},
                                                   {TYPE_DEVICE_JSON_RECEIVE, 1},
                                                   {TYPE_OBJECT_JSON_RECEIVE, 1}};
    for (const auto& [nTypeByte, nLines] : LINES) {
        const ContractType& type = *std::ranges::find(ContractTypes(), nTypeByte, &ContractType::nTypeByte);
        SCOPED_TRACE(type);
        NodeScene scene(m_host, nTypeByte);
        scene.Evaluate();
        for (const ContractEvent& event : type.pEvents(payloads)) {
            scene.Send(type.devices[0], event.nEvent, event.pPayload);
        }
        events.Expect(nLines);
    }
}

TEST_F(GeneralEvent, UsesTheNodesOwnMessage) {
    m_scene.m_pNode->m_nEventMsg = WM_APP + 99;
    Fire();
    EXPECT_TRUE(m_host.TakeEvents().empty());
    const std::vector<MSG> messages = m_host.TakeOtherMessages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].message, static_cast<UINT>(WM_APP + 99));
    EXPECT_EQ(messages[0].wParam, 1u);
    const PostedEvent posted{0, 0, std::unique_ptr<SQOREvent>(reinterpret_cast<SQOREvent*>(messages[0].lParam))};
    EXPECT_EQ(FiredOutput(posted), 153);
}

TEST_F(GeneralEvent, IsNotPostedWithoutWindowOrMessage) {
    m_scene.m_pNode->m_hNotifyWnd = m_host.Window(); // not for events
    m_scene.m_pNode->m_nNotifyMsg = ModuleHost::EVENT_MESSAGE;
    for (const auto& [hWnd, nMessage] :
         {std::pair(HWND(), ModuleHost::EVENT_MESSAGE), std::pair(m_host.Window(), UINT(0))}) {
        m_scene.m_pNode->m_hEventWnd = hWnd;
        m_scene.m_pNode->m_nEventMsg = nMessage;
        EXPECT_EQ(Fire(), 1) << "the event is consumed all the same";
        EXPECT_EQ(m_host.TakeLog().size(), 1u) << "and logged";
        EXPECT_TRUE(m_host.TakeEvents().empty());
        EXPECT_TRUE(m_host.TakeOtherMessages().empty());
    }
}

TEST_F(GeneralEvent, AllocatesNothingWithoutWindowOrMessage) {
    if (!AllocationCount()) {
        GTEST_SKIP() << "allocations aren't counted here";
    }
    SetLogSink(nullptr); // a log line is formatted on the heap
    const auto AllocationsOfOneEvent = [this] {
        const auto nBefore = *AllocationCount();
        Fire();
        return *AllocationCount() - nBefore;
    };
    EXPECT_GT(AllocationsOfOneEvent(), 0u) << "an event that is posted is counted";

    m_scene.m_pNode->m_nEventMsg = 0;
    EXPECT_EQ(AllocationsOfOneEvent(), 0u);
    m_scene.m_pNode->m_nEventMsg = ModuleHost::EVENT_MESSAGE;
    m_scene.m_pNode->m_hEventWnd = nullptr;
    EXPECT_EQ(AllocationsOfOneEvent(), 0u);
    m_scene.m_pNode->m_nEventMsg = 0;
    EXPECT_EQ(AllocationsOfOneEvent(), 0u);
}

TEST_F(GeneralEvent, RefusedByAWindowThatIsGoneIsFreed) {
    const HWND hGone = CreateWindowExW(0, L"module_tests", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                       GetModuleHandleW(nullptr), nullptr);
    ASSERT_NE(hGone, nullptr);
    DestroyWindow(hGone);
    m_scene.m_pNode->m_hEventWnd = hGone;
    SetLogSink(nullptr);
    Fire(); // whatever is allocated once is allocated now
    const size_t nBefore = HeapBytesInUse();
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(Fire(), 1);
    }
    EXPECT_EQ(HeapBytesInUse(), nBefore);
}

TEST_F(GeneralEvent, RefusedByAFullQueueIsFreed) {
    SetLogSink(nullptr);
    const int nEnough = 20'000; // Windows lets 10,000 messages wait
    int nPosted = 0;
    while (nPosted < nEnough && PostMessageW(m_host.Window(), WM_NULL, 0, 0)) {
        ++nPosted;
    }
    if (nPosted == nEnough) {
        GTEST_SKIP() << "the queue takes any number of messages here";
    }
    Fire();
    const size_t nBefore = HeapBytesInUse();
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(Fire(), 1);
    }
    EXPECT_EQ(HeapBytesInUse(), nBefore);
    EXPECT_TRUE(m_host.TakeEvents().empty());
    Fire();
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153}) << "the queue takes messages again";
}

// ---- What comes of failures ----------------------------------------------------------------------------------------

class FailingEvent : public GeneralEvent {
protected:
    /// Fire while the texts of the event can't be had. Nothing but that fails.
    int Fire(void (*pRaise)()) {
        const FailingText failing(TEXT_OF_EVENTS, 0, pRaise);
        return GeneralEvent::Fire();
    }
};

TEST_F(FailingEvent, EndsInsideAndIsFreed) {
    SetLogSink(nullptr);
    EXPECT_EQ(Fire([] { throw std::bad_alloc(); }), 0);
    EXPECT_EQ(Fire([] { throw 5; }), 0);
    EXPECT_EQ(Fire(AfxThrowMemoryException), 0);
    const size_t nBefore = HeapBytesInUse();
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(Fire([] { throw new CMemoryException; }), 0);
    }
    EXPECT_EQ(HeapBytesInUse(), nBefore) << "the framework's exceptions belong to whoever catches them";
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
    GeneralEvent::Fire();
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153});
}

TEST_F(FailingEvent, AnInvalidArgumentGoesOnToTheHost) {
    EXPECT_TRUE(RaisesInvalidArgument([this] { Fire(AfxThrowInvalidArgException); }));
}

TEST_F(GeneralEvent, OutlivesItsNodeAndTheModule) {
    Fire();
    const void* const pNode = static_cast<VEKProperty*>(m_scene.m_pNode.get());
    m_scene.m_pNode.reset();
    m_host.Call(1, nullptr, nullptr);
    m_host.Unload();
    const std::vector<PostedEvent> events = m_host.TakeEvents();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(FiredOutput(events[0]), 153);
    EXPECT_EQ(events[0].pEvent->m_lstParam.GetAt(events[0].pEvent->m_lstParam.FindIndex(2))->m_pValue, pNode);
}

} // namespace
