// The general event by which a node fires an output, seen where it arrives: at the host's event window.
#include <functional>
#include <memory>
#include <new>
#include <set>

#include "HeapUse.h"
#include "HostCalls.h"
#include "ModuleHost.h"
#include "ParamText.h"

namespace {

class GeneralEvent : public ModuleTest {
protected:
    GeneralEvent() { m_scene.Evaluate(); }

    /// Release a key: the keyboard node fires output 153, and nothing else changes in it.
    int Fire() { return m_scene.Send(0, 2003); }

    /// All that an event takes is freed, whoever refuses it or whatever is raised.
    static void ExpectKeepsNothing(int nAnswer, const std::function<int()>& fire) {
        EXPECT_EQ(fire(), nAnswer); // whatever is allocated once is allocated now
        const size_t nBefore = HeapBytesInUse();
        for (int i = 0; i < 100; ++i) {
            EXPECT_EQ(fire(), nAnswer);
        }
        EXPECT_EQ(HeapBytesInUse(), nBefore);
    }

    NodeScene m_scene{m_host, TYPE_KEYBOARD};
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
        EXPECT_EQ(params[0]->m_pValue, &m_scene.m_clip);
        EXPECT_EQ(params[1]->m_pValue, nullptr);
        EXPECT_EQ(params[2]->m_pValue, static_cast<VEKProperty*>(m_scene.m_pNode.get()));
        EXPECT_EQ(*static_cast<int*>(params[3]->m_pValue), 153);
        const char* const CELLS[] = {
            R"({"id":0,"name":"OwnerClip","display":"<TOUCH_CONTROL_OWNER_CLIP>","type":0,"control":8,"type name":"VEKClip"})",
            R"({"id":1,"name":"OwnerObject","display":"<TOUCH_CONTROL_OWNER_OBJECT>","type":0,"control":8,"type name":"VEKObject"})",
            R"({"id":2,"name":"OwnerProperty","display":"<TOUCH_CONTROL_OWNER_PROPERTY>","type":0,"control":8,"type name":"VEKProperty"})",
            R"({"id":3,"name":"OwnerEventID","display":"<QOR_EXTRADATA_EVENT_ID>","type":0,"control":8,"type name":"EventID"})"};
        for (size_t i = 0; i < 4; ++i) {
            auto cells = CellsOf(*params[i]); // without range and flags
            cells.erase("integer");           // where the pointers stand
            cells.erase("float");             // what the host left
            EXPECT_EQ(cells.dump(), CELLS[i]);
        }
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

TEST_F(GeneralEvent, AllocatesNothingWithoutWindowOrMessage) {
    if (!AllocationCount()) {
        GTEST_SKIP() << "allocations aren't counted here";
    }
    SetLogSink(nullptr); // a log line is formatted on the heap
    for (const HWND hWnd : {m_host.Window(), HWND()}) {
        for (const UINT nMessage : {ModuleHost::EVENT_MESSAGE, UINT(0)}) {
            m_scene.m_pNode->m_hEventWnd = hWnd;
            m_scene.m_pNode->m_nEventMsg = nMessage;
            const auto nBefore = *AllocationCount();
            Fire();
            EXPECT_EQ(*AllocationCount() > nBefore, hWnd != nullptr && nMessage != 0);
        }
    }
}

TEST_F(GeneralEvent, RefusedByAWindowThatIsGoneIsFreed) {
    const HWND hGone = CreateWindowExW(0, L"module_tests", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                       GetModuleHandleW(nullptr), nullptr);
    ASSERT_NE(hGone, nullptr);
    DestroyWindow(hGone);
    m_scene.m_pNode->m_hEventWnd = hGone;
    SetLogSink(nullptr);
    ExpectKeepsNothing(1, [this] { return Fire(); });
}

// ---- What comes of failures ----------------------------------------------------------------------------------------

class FailingEvent : public GeneralEvent {
protected:
    /// Fire while the texts of the event can't be had. Nothing but that fails.
    int Fire(void (*pRaise)()) {
        const FailingText failing(pRaise);
        return GeneralEvent::Fire();
    }
};

TEST_F(FailingEvent, EndsInsideAndIsFreed) {
    SetLogSink(nullptr);
    ExpectKeepsNothing(0, [this] { return Fire([] { throw std::bad_alloc(); }); });
    ExpectKeepsNothing(0, [this] { return Fire([] { throw 5; }); });
    ExpectKeepsNothing(0, [this] { return Fire(AfxThrowMemoryException); });
    // The framework's exceptions belong to whoever catches them.
    ExpectKeepsNothing(0, [this] { return Fire([] { throw new CMemoryException; }); });
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
