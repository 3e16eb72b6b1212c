// The host's own answers to the operations that a node doesn't override.
#include "HeapUse.h"
#include "ModuleHost.h"
#include "ParamText.h"

namespace {

class NodeBase : public testing::Test {
protected:
    /// Two groups with a parameter of each kind of value.
    void AddParams() {
        for (const auto& [nGroup, nParam, codes] : {std::tuple(100, 1, PARAM_INTEGER),
                                                    {100, 2, PARAM_FLOAT},
                                                    {200, 3, PARAM_STRING},
                                                    {200, 4, PARAM_POINTER}}) {
            VEKParamGroup* pGroup = FindGroup(m_node.m_lstParamGroup, MakeParamGuid(static_cast<unsigned>(nGroup)));
            if (pGroup == nullptr) {
                pGroup = new VEKParamGroup;
                pGroup->m_guid = MakeParamGuid(static_cast<unsigned>(nGroup));
                m_node.m_lstParamGroup.AddTail(pGroup);
            }
            pGroup->m_lstParam.AddTail(
                new VEKParam(static_cast<unsigned>(nParam), L"Name", L"Shown", codes.m_nType, codes.m_nControl));
        }
        SetValues(11, 2.5f, L"before", &m_node);
    }

    VEKParam& Param(unsigned nId) { return *FindParam(m_node.m_lstParamGroup, MakeParamGuid(nId)); }

    void SetValues(int nValue, float fValue, const wchar_t* pszValue, void* pValue) {
        Param(1).m_nValue = nValue;
        Param(2).m_fValue = fValue;
        Param(3).m_strValue = pszValue;
        Param(4).m_pValue = pValue;
    }
    void ChangeValues() { SetValues(12, -1.0f, L"behind", nullptr); }

    void ExpectValuesBefore() {
        EXPECT_EQ(Param(1).m_nValue, 11);
        EXPECT_EQ(Param(2).m_fValue, 2.5f);
        EXPECT_EQ(Utf8(Param(3).m_strValue), "before");
        EXPECT_EQ(Param(4).m_pValue, &m_node);
    }

    P_ExtDevIOProcess m_node;
};

TEST_F(NodeBase, HandlesNothingAndChangesNothing) {
    AddParams();
    const std::string before = TextOf(m_node.m_lstParamGroup);
    SGraphNode graphNode;
    const SIOEventRecord record{0, 2002, nullptr};
    EXPECT_EQ(m_node.ProcessNode(&graphNode), 0);
    EXPECT_EQ(m_node.DevIOEventOccurred(&record), 0);
    EXPECT_EQ(m_node.DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(m_node.NeedUpdateSingleParam(MakeParamGuid(1)), FALSE);
    EXPECT_EQ(m_node.UpdateSingleParamValue(MakeParamGuid(1)), 0);
    EXPECT_EQ(m_node.IsParamTypeChangeable(MakeParamGuid(1)), FALSE);
    EXPECT_EQ(m_node.NeedPIGetNodeInput(), FALSE);
    for (SGraphNode* pGraphNode : {&graphNode, static_cast<SGraphNode*>(nullptr)}) {
        m_node.GetNodeInput(pGraphNode);
        m_node.GetNodeOutput(pGraphNode);
        m_node.ChangeNodeVectorParam(pGraphNode, 3);
        m_node.DealWithChangeVectorParam(pGraphNode);
    }
    m_node.Init();
    m_node.InitParam();
    m_node.DoParamInit();
    m_node.ApplyFromParam();
    m_node.ApplyToParam();
    m_node.ClearOutPutData();
    m_node.PreRender();
    m_node.StopPiThread();
    m_node.ChangeVectorParam(5);
    EXPECT_EQ(TextOf(m_node.m_lstParamGroup), before);
    EXPECT_TRUE(graphNode.m_lstInputGroup.IsEmpty());
    EXPECT_TRUE(graphNode.m_lstOutputGroup.IsEmpty());
    EXPECT_EQ(m_node.m_pBaseGraphNode, nullptr);
}

TEST_F(NodeBase, KnowsItsGroups) {
    AddParams();
    EXPECT_EQ(m_node.GetIDFromGrp(m_node.m_lstParamGroup.GetHead()), 100);
    EXPECT_EQ(m_node.GetIDFromGrp(m_node.m_lstParamGroup.GetTail()), 200);
    EXPECT_EQ(m_node.GetIDFromGrp(nullptr), 0);
    EXPECT_TRUE(m_node.IsParamGroupByGUID(MakeParamGuid(200)));
    EXPECT_FALSE(m_node.IsParamGroupByGUID(MakeParamGuid(1))) << "a parameter is no group";
    GUID guid = MakeParamGuid(100);
    guid.Data4[7] = 1;
    EXPECT_FALSE(m_node.IsParamGroupByGUID(guid));
}

TEST_F(NodeBase, EmptyDeletesItsGroupsAndWhatIsStored) {
    const size_t nBefore = HeapBytesInUse();
    AddParams();
    m_node.StoreParameters();
    m_node.Empty();
    EXPECT_TRUE(m_node.m_lstParamGroup.IsEmpty());
    EXPECT_EQ(HeapBytesInUse(), nBefore);
}

// ---- Values that are kept ------------------------------------------------------------------------------------------

TEST_F(NodeBase, StoredValuesComeBack) {
    AddParams();
    m_node.RestoreParameters(); // nothing is stored yet
    ExpectValuesBefore();
    m_node.StoreParameters();
    for (int i = 0; i < 2; ++i) { // what is kept stays kept
        ChangeValues();
        m_node.RestoreParameters();
        ExpectValuesBefore();
    }
    ChangeValues();
    m_node.StoreParameters();
    SetValues(1, 2.0f, L"other", nullptr);
    m_node.RestoreParameters();
    EXPECT_EQ(Param(1).m_nValue, 12) << "stored anew";
    m_node.Empty();
    AddParams();
    m_node.RestoreParameters();
    ExpectValuesBefore(); // what was kept went with its parameters
}

TEST_F(NodeBase, OnlyValuesOfParametersThatWereStoredComeBack) {
    AddParams();
    m_node.StoreParameters();
    ChangeValues();
    Param(3).m_bAvailable = 0;
    VEKParamGroup& first = *m_node.m_lstParamGroup.GetHead();
    delete first.m_lstParam.RemoveHead(); // the integer
    first.m_lstParam.AddTail(new VEKParam(5, L"", L"", 2, 1));
    Param(5).m_nValue = 77;
    m_node.RestoreParameters();
    EXPECT_EQ(Param(5).m_nValue, 77);
    EXPECT_EQ(first.m_lstParam.GetCount(), 2) << "what is gone stays gone";
    EXPECT_EQ(Param(2).m_fValue, 2.5f);
    EXPECT_EQ(Utf8(Param(3).m_strValue), "before");
    EXPECT_EQ(Param(3).m_bAvailable, 0);
}

} // namespace
