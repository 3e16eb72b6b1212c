// IOProcessFunc: creating and destroying nodes, releasing the module's globals, unknown operations.
#include "ContractTypes.h"

namespace {

/// GUIDs that name no type: they differ from the keyboard's in one of the four words, or in the last byte.
std::vector<GUID> ForeignGuids() {
    std::vector<GUID> guids(7, TypeGuid(0x01));
    guids[0].Data1 = 0x8164BB41;
    guids[1].Data1 = 0;
    guids[2].Data2 = 0x6B6B;
    guids[3].Data3 = 0x4708;
    guids[4].Data4[0] = 0x89;
    guids[5].Data4[3] = 0x6C;
    guids[6].Data4[4] = 0xCC;
    guids.push_back(GUID{});
    for (const unsigned char nTypeByte : {0x00, 0x09, 0x0A, 0x80, 0x81, 0xFF}) {
        guids.push_back(TypeGuid(nTypeByte));
    }
    return guids;
}

/// A node of the host's own that records its end.
class CTracedNode : public P_ExtDevIOProcess {
public:
    explicit CTracedNode(bool& bDestroyed) : m_bDestroyed(bDestroyed) { bDestroyed = false; }
    ~CTracedNode() override { m_bDestroyed = true; }

private:
    bool& m_bDestroyed;
};

class Operations : public ModuleTest {
protected:
    /// Try to create a node of a type and expect the slot to stay as it was.
    void ExpectNothingCreated(GUID guidType) {
        P_ExtDevIOProcess before;
        SIOProcessPluginData data;
        data.pNode = &before;
        EXPECT_EQ(m_host.Call(2, &guidType, &data), 1);
        EXPECT_EQ(data.pNode, &before);
        EXPECT_EQ(data.arNodeInfo.GetSize(), 0);
    }

    /// Whether destroying a node under this GUID ends it. The node is new, so the answer rests on the GUID alone.
    bool IsDestroyedAs(const GUID& guidType) {
        bool bDestroyed;
        VEKProperty* pNode = new CTracedNode(bDestroyed);
        SIOProcessNodeRef ref{guidType, pNode};
        EXPECT_EQ(m_host.Call(3, &ref, nullptr), 1);
        EXPECT_EQ(ref.pNode, nullptr) << "the reference is cleared in every case";
        EXPECT_EQ(GuidWords(ref.guidType), GuidWords(guidType));
        const bool bResult = bDestroyed;
        if (!bResult) {
            delete pNode;
        }
        return bResult;
    }
};

// ---- Creating ------------------------------------------------------------------------------------------------------

TEST_F(Operations, EachCallCreatesANodeOfItsOwn) {
    GUID guidType = TypeGuid(TYPE_KEYBOARD);
    P_ExtDevIOProcess before;
    SIOProcessPluginData data;
    data.pNode = &before;
    ASSERT_EQ(m_host.Call(2, &guidType, &data), 1);
    ASSERT_NE(data.pNode, &before) << "it replaces what the slot held";
    const NodePtr pNode(static_cast<P_ExtDevIOProcess*>(data.pNode), NodeDeleter{&m_host, TYPE_KEYBOARD});
    EXPECT_EQ(GuidWords(guidType), GuidWords(TypeGuid(TYPE_KEYBOARD)));
    EXPECT_EQ(data.arNodeInfo.GetSize(), 0);
    const NodePtr pSecond = m_host.CreateNode(TYPE_KEYBOARD);
    EXPECT_NE(pNode.get(), pSecond.get());
    EXPECT_NE(pNode->m_lstParamGroup.GetHead(), pSecond->m_lstParamGroup.GetHead());
}

TEST_F(Operations, GuidsThatNameNoTypeCreateNothing) {
    for (const GUID& guid : ForeignGuids()) {
        SCOPED_TRACE(testing::PrintToString(guid));
        ExpectNothingCreated(guid);
    }
}

// ---- Destroying ----------------------------------------------------------------------------------------------------

TEST_F(Operations, DestroysNodesButKeyChecksWhichAreOnlyUnlinked) {
    for (const ContractType& type : ContractTypes()) {
        EXPECT_EQ(IsDestroyedAs(TypeGuid(type.nTypeByte)), type.nTypeByte != TYPE_KEY_CHECK) << type;
    }
    for (const GUID& guid : ForeignGuids()) {
        EXPECT_FALSE(IsDestroyedAs(guid)) << testing::PrintToString(guid);
    }
}

// ---- Other operations, other arguments -----------------------------------------------------------------------------

TEST_F(Operations, IgnoreArgumentsThatAreNotTheirs) {
    // Known ones but creating, and unknown ones, which answer 0.
    for (const unsigned nOperation : {1u, 3u, 4u, 5u, 6u, 0x100u, 0x80000000u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(nOperation);
        const bool bKnown = nOperation <= 3;
        P_ExtDevIOProcess inSlot;
        SIOProcessPluginData data;
        data.pNode = &inSlot;
        bool bDestroyed;
        auto pNode = std::make_unique<CTracedNode>(bDestroyed);
        SIOProcessNodeRef ref{TypeGuid(TYPE_KEYBOARD), pNode.get()};
        EXPECT_EQ(m_host.Call(nOperation, &ref, &data), bKnown ? 1 : 0);
        EXPECT_EQ(m_host.Call(nOperation, nullptr, nullptr), bKnown ? 1 : 0);
        EXPECT_EQ(bDestroyed, nOperation == 3);
        EXPECT_EQ(ref.pNode, nOperation == 3 ? nullptr : pNode.get());
        EXPECT_EQ(data.pNode, &inSlot);
        EXPECT_EQ(data.arNodeInfo.GetSize(), 0);
        if (bDestroyed) {
            static_cast<void>(pNode.release());
        }
    }
}

TEST_F(Operations, MissingArgumentsDoNothing) {
    GUID guidType = TypeGuid(TYPE_KEYBOARD);
    SIOProcessPluginData data;
    EXPECT_EQ(m_host.Call(0, nullptr, nullptr), 1);
    EXPECT_EQ(m_host.Call(2, nullptr, &data), 1);
    EXPECT_EQ(m_host.Call(2, &guidType, nullptr), 1);
    EXPECT_EQ(m_host.Call(3, nullptr, &data), 1);
    SIOProcessNodeRef ref{guidType, nullptr};
    EXPECT_EQ(m_host.Call(3, &ref, nullptr), 1);
    EXPECT_EQ(data.pNode, nullptr);
}

} // namespace
