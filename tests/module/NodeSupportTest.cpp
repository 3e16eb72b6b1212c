// What the node types share: firing no node's event, and what comes of failures.
#include <new>

#include "HeapUse.h"
#include "HostCalls.h"
#include "ModuleHost.h"
#include "nodes/shared/NodeSupport.h"

namespace {

class NodeSupport : public ModuleTest {};

TEST_F(NodeSupport, NoNodeFiresNothing) {
    FireGeneralEvent(nullptr, 153);
    EXPECT_TRUE(m_host.TakeEvents().empty());
    EXPECT_TRUE(m_host.TakeOtherMessages().empty());

    const auto AllocationsOfOneEvent = [](VEKProperty* pNode) {
        const auto nBefore = AllocationCount().value_or(0);
        FireGeneralEvent(pNode, 153);
        return AllocationCount().value_or(0) - nBefore;
    };
    EXPECT_EQ(AllocationsOfOneEvent(nullptr), 0u);

    // What the same call does otherwise.
    P_ExtDevIOProcess node;
    node.m_hEventWnd = m_host.Window();
    node.m_nEventMsg = ModuleHost::EVENT_MESSAGE;
    FireGeneralEvent(&node, 153);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153});
}

/// Release a key while the texts of its event can't be had. Nothing but that fails.
int FireWithFailure(NodeScene& keyboard, void (*pRaise)()) {
    const FailingText failing(TEXT_OF_EVENTS, 0, pRaise);
    return keyboard.Send(0, 2003);
}

TEST_F(NodeSupport, FailuresEndAndAreFreed) {
    SetLogSink(nullptr);
    NodeScene keyboard(m_host, TYPE_KEYBOARD);
    keyboard.Evaluate();
    EXPECT_EQ(FireWithFailure(keyboard, [] { throw std::bad_alloc(); }), 0);
    EXPECT_EQ(FireWithFailure(keyboard, [] { throw 5; }), 0);
    EXPECT_EQ(FireWithFailure(keyboard, AfxThrowMemoryException), 0);
    const size_t nBefore = HeapBytesInUse();
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(FireWithFailure(keyboard, [] { throw new CMemoryException; }), 0);
    }
    EXPECT_EQ(HeapBytesInUse(), nBefore) << "the framework's exceptions belong to whoever catches them";
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
    keyboard.Send(0, 2003);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153});
}

TEST_F(NodeSupport, InvalidArgumentsGoOnToTheHost) {
    NodeScene keyboard(m_host, TYPE_KEYBOARD);
    keyboard.Evaluate();
    bool bRaised = false;
    try {
        FireWithFailure(keyboard, AfxThrowInvalidArgException);
    } catch (CInvalidArgException* pException) {
        bRaised = true;
        pException->Delete();
    }
    EXPECT_TRUE(bRaised);
}

} // namespace
