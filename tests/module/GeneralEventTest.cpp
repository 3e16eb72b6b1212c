// The general event by which a node fires an output, seen where it arrives: at the host's event window.
#include <set>

#include "HeapUse.h"
#include "HostCalls.h"
#include "HostSetup.h"
#include "ModuleHost.h"
#include "host/RemoteControlRecord.h"

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
    {0, "OwnerClip", "TOUCH_CONTROL_OWNER_CLIP", L"VEKClip"},
    {1, "OwnerObject", "TOUCH_CONTROL_OWNER_OBJECT", L"VEKObject"},
    {2, "OwnerProperty", "TOUCH_CONTROL_OWNER_PROPERTY", L"VEKProperty"},
    {3, "OwnerEventID", "QOR_EXTRADATA_EVENT_ID", L"EventID"},
};

TEST_F(GeneralEvent, ArrivesWithTheNodesMessageAndOneAsFirstParameter) {
    EXPECT_EQ(Fire(), 1);
    const std::vector<PostedEvent> events = m_host.TakeEvents();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].nMessage, ModuleHost::EVENT_MESSAGE);
    EXPECT_EQ(events[0].wParam, 1u);
    EXPECT_EQ(static_cast<int>(events[0].pEvent->m_nId), 2);
    EXPECT_EQ(Utf8(events[0].pEvent->m_strName), "GeneralEvent");
    EXPECT_TRUE(m_host.TakeOtherMessages().empty());
    EXPECT_TRUE(m_host.TakeReportedEvents().empty());
}

TEST_F(GeneralEvent, CarriesFourPointerParameters) {
    Fire();
    const std::vector<PostedEvent> events = m_host.TakeEvents();
    ASSERT_EQ(events.size(), 1u);
    const std::vector<VEKParam*> params = Items(events[0].pEvent->m_lstParam);
    ASSERT_EQ(params.size(), 4u);
    for (size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(EVENT_PARAMS[i].pszName);
        EXPECT_EQ(GuidWords(params[i]->m_guid), (std::array<unsigned, 4>{EVENT_PARAMS[i].nId, 0, 0, 0}));
        EXPECT_EQ(Utf8(params[i]->m_strName), EVENT_PARAMS[i].pszName);
        EXPECT_EQ(Utf8(params[i]->m_strDisplay), EVENT_PARAMS[i].pszDisplay);
        EXPECT_EQ(params[i]->m_nType, 0);
        EXPECT_EQ(params[i]->m_nControl, 8);
        EXPECT_EQ(params[i]->m_bRangeSet, 0) << "no range is set";
        EXPECT_EQ(params[i]->m_bBoolValueSet, 0) << "no flags are set";
        EXPECT_STREQ(params[i]->m_szTypeName, EVENT_PARAMS[i].pszTypeName);
        EXPECT_EQ(Utf8(params[i]->m_strValue), "");
        EXPECT_EQ(params[i]->m_bAvailable, 1);
        EXPECT_EQ(dynamic_cast<SQORNodeOutput*>(params[i]), nullptr);
    }
    EXPECT_EQ(params[0]->m_pValue, &m_scene.m_clip);
    EXPECT_EQ(params[1]->m_pValue, nullptr);
    EXPECT_EQ(params[2]->m_pValue, static_cast<VEKProperty*>(m_scene.m_pNode.get()));
    ASSERT_NE(params[3]->m_pValue, nullptr);
    EXPECT_EQ(*static_cast<int*>(params[3]->m_pValue), 153);
}

TEST_F(GeneralEvent, OwesNothingToWhatTheHostLeavesInAParameter) {
    {
        const CarelessHost host;
        Fire();
    }
    const std::vector<PostedEvent> events = m_host.TakeEvents();
    ASSERT_EQ(events.size(), 1u);
    const std::vector<VEKParam*> params = Items(events[0].pEvent->m_lstParam);
    ASSERT_EQ(params.size(), 4u);
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_STREQ(params[i]->m_szTypeName, EVENT_PARAMS[i].pszTypeName);
    }
    EXPECT_EQ(params[1]->m_pValue, nullptr);
}

TEST_F(GeneralEvent, DisplayTextsComeFromTheTextTable) {
    m_host.WriteFile("Config/Texts/zh.json",
                     R"({"TOUCH_CONTROL_OWNER_CLIP": "剪辑", "TOUCH_CONTROL_OWNER_OBJECT": "物体",
        "TOUCH_CONTROL_OWNER_PROPERTY": "属性", "QOR_EXTRADATA_EVENT_ID": "事件"})");
    ASSERT_TRUE(SetTextTable(ETextTable::Chinese));
    Fire();
    const std::vector<PostedEvent> events = m_host.TakeEvents();
    ASSERT_EQ(events.size(), 1u);
    std::vector<std::string> texts;
    for (const VEKParam* pParam : Items(events[0].pEvent->m_lstParam)) {
        texts.push_back(Utf8(pParam->m_strDisplay));
    }
    EXPECT_EQ(texts, (std::vector<std::string>{"剪辑", "物体", "属性", "事件"}));
}

TEST_F(GeneralEvent, EveryEventCarriesAnIdOfItsOwn) {
    Fire();
    m_scene.Send(0, 2002);
    Fire();
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

TEST_F(GeneralEvent, IsNotDeliveredDuringTheCall) {
    Fire();
    EXPECT_EQ(m_host.EventCount(), 0);
    m_host.Pump();
    EXPECT_EQ(m_host.EventCount(), 1);
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
    SKeyEventData key;
    m_scene.Send(0, 2002, &key);
    m_scene.Send(0, 2003, &key);
    events.Expect(2);

    NodeScene mouse(m_host, TYPE_MOUSE);
    mouse.Evaluate();
    for (int nEvent = 3002; nEvent <= 3012; ++nEvent) {
        mouse.Send(1, nEvent);
    }
    events.Expect(11);

    NodeScene gesture(m_host, TYPE_GESTURE);
    gesture.Evaluate();
    for (const CPoint& step : {CPoint(100, 0), CPoint(-100, 0), CPoint(0, 100), CPoint(0, -100), CPoint(0, 0)}) {
        SQORMouseData sample(0, 0.0f, 0.0f, CPoint(0, 0), 0);
        for (const int nEvent : {3005, 3013, 3006}) {
            gesture.Send(1, nEvent, &sample);
            sample.m_ptPixel = CPoint(sample.m_ptPixel.x + step.x, sample.m_ptPixel.y + step.y);
        }
        events.Expect(step == CPoint(0, 0) ? 1 : 3); // a tap, or a drag from its start to its swipe
    }

    NodeScene netReceive(m_host, TYPE_NET_PARAMETER_RECEIVE);
    netReceive.Evaluate();
    CQORPanelRemoteCtrlData record;
    record.m_strClipName = L"Clip";
    netReceive.Send(2, 0, static_cast<CQORIOAttachedData*>(&record));
    events.Expect(1);

    NodeScene device(m_host, TYPE_DEVICE_JSON_RECEIVE);
    device.Evaluate();
    SDeviceTextData deviceText;
    deviceText.m_nDeviceId = 1;
    deviceText.m_strText = L"1";
    device.Send(5, 0, &deviceText);
    events.Expect(1);

    NodeScene object(m_host, TYPE_OBJECT_JSON_RECEIVE);
    object.Evaluate();
    SObjectTextData objectText;
    object.Send(6, 0, &objectText);
    events.Expect(1);
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

TEST_F(GeneralEvent, DoesNotGoToTheNotificationWindow) {
    m_scene.m_pNode->m_hEventWnd = nullptr;
    m_scene.m_pNode->m_hNotifyWnd = m_host.Window();
    m_scene.m_pNode->m_nNotifyMsg = ModuleHost::EVENT_MESSAGE;
    EXPECT_EQ(Fire(), 1);
    EXPECT_TRUE(m_host.TakeEvents().empty());
}

TEST_F(GeneralEvent, IsNotPostedWithoutWindow) {
    m_scene.m_pNode->m_hEventWnd = nullptr;
    EXPECT_EQ(Fire(), 1) << "the event is consumed all the same";
    EXPECT_EQ(m_host.TakeLog().size(), 1u) << "and logged";
    EXPECT_TRUE(m_host.TakeEvents().empty());
}

TEST_F(GeneralEvent, IsNotPostedWithoutMessage) {
    m_scene.m_pNode->m_nEventMsg = 0;
    EXPECT_EQ(Fire(), 1);
    EXPECT_EQ(m_host.TakeLog().size(), 1u);
    EXPECT_TRUE(m_host.TakeEvents().empty());
    EXPECT_TRUE(m_host.TakeOtherMessages().empty());
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

TEST_F(GeneralEvent, OutlivesItsNode) {
    Fire();
    Fire();
    const void* const pNode = static_cast<VEKProperty*>(m_scene.m_pNode.get());
    m_scene.m_pNode.reset();
    const std::vector<PostedEvent> events = m_host.TakeEvents();
    ASSERT_EQ(events.size(), 2u);
    for (const PostedEvent& posted : events) {
        EXPECT_EQ(FiredOutput(posted), 153);
        EXPECT_EQ(posted.pEvent->m_lstParam.GetAt(posted.pEvent->m_lstParam.FindIndex(2))->m_pValue, pNode);
    }
}

TEST_F(GeneralEvent, OutlivesTheModule) {
    Fire();
    m_scene.m_pNode.reset();
    m_host.Call(1, nullptr, nullptr);
    m_host.Unload();
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153});
}

} // namespace
