// What the node types share, called by itself.
#include <new>

#include "HeapUse.h"
#include "ModuleHost.h"
#include "host/NodeSupport.h"

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

/// What comes of something that is raised in an operation.
template <typename Raise>
int AnswerTo(Raise raise) {
    try {
        raise();
        return -1;
    } catch (...) {
        return RejectFailure();
    }
}

TEST_F(NodeSupport, FailuresEndAndAreFreed) {
    EXPECT_EQ(AnswerTo([] { throw std::bad_alloc(); }), 0);
    EXPECT_EQ(AnswerTo([] { throw 5; }), 0);
    EXPECT_EQ(AnswerTo([] { AfxThrowMemoryException(); }), 0);
    const size_t nBefore = HeapBytesInUse();
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(AnswerTo([] { throw new CMemoryException; }), 0);
    }
    EXPECT_EQ(HeapBytesInUse(), nBefore) << "the framework's exceptions belong to whoever catches them";
}

TEST_F(NodeSupport, InvalidArgumentsGoOnToTheHost) {
    bool bRaised = false;
    try {
        AnswerTo([] { AfxThrowInvalidArgException(); });
    } catch (CInvalidArgException* pException) {
        bRaised = true;
        pException->Delete();
    }
    EXPECT_TRUE(bRaised);
}

} // namespace
