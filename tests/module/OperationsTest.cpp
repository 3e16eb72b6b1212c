// IOProcessFunc: creating and destroying nodes, releasing the module's globals, unknown operations.
#include <iterator>
#include <typeinfo>

#include "HeapUse.h"
#include "HostSetup.h"
#include "ModuleHost.h"

namespace {

struct NodeType {
    unsigned char nTypeByte;
    const char* pszNameKey;
};

const NodeType TYPES_AT_WORK[] = {
    {0x01, "IO_PROCESS_KEYBOARD"},    {0x0B, "IO_PROCESS_KEY_CHECK"},        {0x02, "IO_PROCESS_TEXTFIELDINPUT"},
    {0x03, "IO_PROCESS_MOUSE"},       {0x04, "IO_PROCESS_NETSEND"},          {0x05, "IO_PROCESS_NETRECEIVE"},
    {0x06, "IO_PROCESS_BROADCAST"},   {0x0D, "IO_PROCESS_BROADCASTREV"},     {0x07, "TOUCH_CONTROL_TOUCH_GESTURE"},
    {0x08, "IO_PROCESS_VRHANLDE"},    {0x0C, "IO_PROCESS_OBJ_JSON_RECEIVE"}, {0x0E, "IO_PROCESS_DEV_JSON_RECEIVE"},
    {0x0F, "IO_PROCESS_STRING_SEND"},
};

/// GUIDs that differ from the keyboard's in one of the four words.
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

TEST_F(Operations, CreatesTheThirteenTypes) {
    ASSERT_EQ(std::size(TYPES_AT_WORK), 13u);
    for (const NodeType& type : TYPES_AT_WORK) {
        SCOPED_TRACE(type.pszNameKey);
        GUID guidType = TypeGuid(type.nTypeByte);
        SIOProcessPluginData data;
        ASSERT_EQ(m_host.Call(2, &guidType, &data), 1);
        ASSERT_NE(data.pNode, nullptr);
        const NodePtr pNode(static_cast<P_ExtDevIOProcess*>(data.pNode), NodeDeleter{&m_host, type.nTypeByte});
        ExpectFreshNode(*pNode, type.nTypeByte, type.pszNameKey);
        EXPECT_EQ(data.arNodeInfo.GetSize(), 0);
        // Each type is a class of its own.
        for (const NodeType& other : TYPES_AT_WORK) {
            const NodePtr pOther = m_host.CreateNode(other.nTypeByte);
            const P_ExtDevIOProcess &node = *pNode, &otherNode = *pOther;
            EXPECT_EQ(typeid(node) == typeid(otherNode), type.nTypeByte == other.nTypeByte) << other.pszNameKey;
        }
    }
}

TEST_F(Operations, BothNamesOfANodeComeFromTheTextTable) {
    m_host.WriteFile("Config/Texts/en.json", R"({"IO_PROCESS_KEY_CHECK": "Key", "IO_PROCESS_VRHANLDE": "Hand"})");
    ASSERT_TRUE(SetTextTable(ETextTable::English));
    const NodePtr pKeyCheck = m_host.CreateNode(TYPE_KEY_CHECK);
    EXPECT_EQ(Utf8(pKeyCheck->m_strName), "Key");
    EXPECT_EQ(Utf8(pKeyCheck->m_strSecondName), "Key");
    const NodePtr pHandle = m_host.CreateNode(TYPE_VR_HANDLE);
    EXPECT_EQ(Utf8(pHandle->m_strName), "Hand");
    EXPECT_EQ(Utf8(pHandle->m_strSecondName), "Hand");
    EXPECT_EQ(Utf8(m_host.CreateNode(TYPE_GESTURE)->m_strName), "TOUCH_CONTROL_TOUCH_GESTURE");
}

TEST_F(Operations, EachCallCreatesANodeOfItsOwn) {
    const NodePtr pFirst = m_host.CreateNode(TYPE_KEYBOARD);
    const NodePtr pSecond = m_host.CreateNode(TYPE_KEYBOARD);
    EXPECT_NE(pFirst.get(), pSecond.get());
    EXPECT_NE(pFirst->m_lstParamGroup.GetHead(), pSecond->m_lstParamGroup.GetHead());
}

TEST_F(Operations, NewNodeReplacesWhatTheSlotHeld) {
    P_ExtDevIOProcess before;
    SIOProcessPluginData data;
    data.pNode = &before;
    GUID guidType = TypeGuid(TYPE_MOUSE);
    m_host.Call(2, &guidType, &data);
    EXPECT_NE(data.pNode, &before);
    SIOProcessNodeRef ref{guidType, data.pNode};
    m_host.Call(3, &ref, nullptr);
}

TEST_F(Operations, BytesThatNameNoTypeCreateNothing) {
    for (const unsigned char nTypeByte : {0x00, 0x09, 0x0A, 0x10, 0x11, 0x81, 0xFF}) {
        SCOPED_TRACE(int{nTypeByte});
        ExpectNothingCreated(TypeGuid(nTypeByte));
    }
}

TEST_F(Operations, GuidsThatDifferInAnyWordCreateNothing) {
    for (const GUID& guid : ForeignGuids()) {
        ExpectNothingCreated(guid);
    }
}

TEST_F(Operations, CreatingDoesNotTouchTheGuid) {
    GUID guidType = TypeGuid(TYPE_KEYBOARD);
    SIOProcessPluginData data;
    m_host.Call(2, &guidType, &data);
    EXPECT_EQ(GuidWords(guidType), GuidWords(TypeGuid(TYPE_KEYBOARD)));
    SIOProcessNodeRef ref{guidType, data.pNode};
    m_host.Call(3, &ref, nullptr);
}

// ---- Destroying ----------------------------------------------------------------------------------------------------

TEST_F(Operations, DestroysNodesOfTwelveTypes) {
    for (const unsigned char nTypeByte : {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x0C, 0x0E, 0x0D, 0x0F}) {
        EXPECT_TRUE(IsDestroyedAs(TypeGuid(nTypeByte))) << int{nTypeByte};
    }
}

TEST_F(Operations, KeyCheckNodesAreOnlyUnlinked) {
    EXPECT_FALSE(IsDestroyedAs(TypeGuid(0x0B)));
}

TEST_F(Operations, KeyCheckNodeLivesOnWhenItIsHandedBack) {
    NodePtr pNode = m_host.CreateNode(TYPE_KEY_CHECK);
    SIOProcessNodeRef ref{TypeGuid(TYPE_KEY_CHECK), pNode.get()};
    EXPECT_EQ(m_host.Call(3, &ref, nullptr), 1);
    EXPECT_EQ(ref.pNode, nullptr);
    // Still whole: the sanitizer would tell of a freed one. In a host it stays for good; here its NodePtr ends it.
    ExpectFreshNode(*pNode, TYPE_KEY_CHECK, "IO_PROCESS_KEY_CHECK");
    EXPECT_EQ(pNode->m_lstParamGroup.GetCount(), 1);
    SGraphNode graphNode;
    pNode->GetNodeOutput(&graphNode);
    EXPECT_EQ(graphNode.m_lstOutputGroup.GetCount(), 1);
    const size_t nBefore = HeapBytesInUse();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(m_host.Call(3, &ref, nullptr), 1);
        ref.pNode = pNode.get();
    }
    EXPECT_EQ(HeapBytesInUse(), nBefore);
}

TEST_F(Operations, BytesThatNameNoTypeDestroyNothing) {
    for (const unsigned char nTypeByte : {0x00, 0x09, 0x0A, 0x10, 0x11, 0x81, 0xFF}) {
        EXPECT_FALSE(IsDestroyedAs(TypeGuid(nTypeByte))) << int{nTypeByte};
    }
}

TEST_F(Operations, GuidsThatDifferInAnyWordDestroyNothing) {
    for (const GUID& guid : ForeignGuids()) {
        EXPECT_FALSE(IsDestroyedAs(guid));
    }
}

TEST_F(Operations, DestroyingNoNodeDoesNothing) {
    for (const unsigned nTypeByte : {0x00, 0x01, 0x03, 0x0B, 0x0F, 0xFF}) {
        SIOProcessNodeRef ref{TypeGuid(static_cast<unsigned char>(nTypeByte)), nullptr};
        EXPECT_EQ(m_host.Call(3, &ref, nullptr), 1);
        EXPECT_EQ(ref.pNode, nullptr);
    }
}

TEST_F(Operations, DestroyingIgnoresTheHostsRecord) {
    bool bDestroyed;
    P_ExtDevIOProcess inSlot;
    SIOProcessPluginData data;
    data.pNode = &inSlot;
    SIOProcessNodeRef ref{TypeGuid(TYPE_MOUSE), new CTracedNode(bDestroyed)};
    EXPECT_EQ(m_host.Call(3, &ref, &data), 1);
    EXPECT_TRUE(bDestroyed);
    EXPECT_EQ(data.pNode, &inSlot);
}

// ---- Releasing, unknown operations, missing arguments --------------------------------------------------------------

TEST_F(Operations, ReleasingWithNothingLoadedDoesNothing) {
    EXPECT_EQ(m_host.Call(1, nullptr, nullptr), 1);
    EXPECT_EQ(m_host.Call(1, nullptr, nullptr), 1);
}

TEST_F(Operations, ReleasingIgnoresItsArguments) {
    P_ExtDevIOProcess inSlot;
    SIOProcessPluginData data;
    data.pNode = &inSlot;
    int nArgument = 5;
    EXPECT_EQ(m_host.Call(1, &nArgument, &data), 1);
    EXPECT_EQ(nArgument, 5);
    EXPECT_EQ(data.pNode, &inSlot);
    EXPECT_EQ(data.arNodeInfo.GetSize(), 0);
}

TEST_F(Operations, UnknownOperationsAnswerZeroAndDoNothing) {
    for (const unsigned nOperation : {4u, 5u, 6u, 0x100u, 0x80000000u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(nOperation);
        P_ExtDevIOProcess inSlot;
        SIOProcessPluginData data;
        data.pNode = &inSlot;
        bool bDestroyed;
        CTracedNode node(bDestroyed);
        SIOProcessNodeRef ref{TypeGuid(TYPE_KEYBOARD), &node};
        EXPECT_EQ(m_host.Call(nOperation, &ref, &data), 0);
        EXPECT_EQ(m_host.Call(nOperation, nullptr, nullptr), 0);
        EXPECT_FALSE(bDestroyed);
        EXPECT_EQ(ref.pNode, &node);
        EXPECT_EQ(data.pNode, &inSlot);
        EXPECT_EQ(data.arNodeInfo.GetSize(), 0);
    }
}

TEST_F(Operations, MissingArgumentsDoNothing) {
    GUID guidType = TypeGuid(TYPE_KEYBOARD);
    SIOProcessPluginData data;
    EXPECT_EQ(m_host.Call(0, nullptr, nullptr), 1);
    EXPECT_EQ(m_host.Call(2, nullptr, &data), 1);
    EXPECT_EQ(m_host.Call(2, &guidType, nullptr), 1);
    EXPECT_EQ(m_host.Call(3, nullptr, &data), 1);
    EXPECT_EQ(data.pNode, nullptr);
}

} // namespace
