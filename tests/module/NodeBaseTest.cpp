// The host's own answers to the operations that a node doesn't override.
#include "HeapUse.h"
#include "ModuleHost.h"

namespace {

/// A node that only counts the calls of InitParam.
class CCountingNode : public P_ExtDevIOProcess {
public:
    void InitParam() override { ++m_nInitParams; }

    int m_nInitParams = 0;
};

class NodeBase : public testing::Test {
protected:
    /// A new group at the end of the node's own ones.
    static VEKParamGroup& AddGroup(VEKProperty& node, unsigned nId) {
        auto* pGroup = new VEKParamGroup;
        pGroup->m_guid = MakeParamGuid(nId);
        node.m_lstParamGroup.AddTail(pGroup);
        return *pGroup;
    }

    static VEKParam& AddParam(VEKParamGroup& group, unsigned nId, ParamCodes codes) {
        auto* pParam = new VEKParam(nId, L"Name", L"Shown", codes.m_nType, codes.m_nControl);
        group.m_lstParam.AddTail(pParam);
        return *pParam;
    }

    /// Two groups with a parameter of each kind of value.
    void AddParams() {
        VEKParamGroup& first = AddGroup(m_node, 100);
        m_pInteger = &AddParam(first, 1, PARAM_INTEGER);
        m_pFloat = &AddParam(first, 2, PARAM_FLOAT);
        VEKParamGroup& second = AddGroup(m_node, 200);
        m_pString = &AddParam(second, 3, PARAM_STRING);
        m_pPointer = &AddParam(second, 4, PARAM_POINTER);
        m_pInteger->m_nValue = 11;
        m_pFloat->m_fValue = 2.5f;
        m_pString->m_strValue = L"before";
        m_pPointer->m_pValue = &m_node;
    }

    void ChangeParams() {
        m_pInteger->m_nValue = 12;
        m_pFloat->m_fValue = -1.0f;
        m_pString->m_strValue = L"behind";
        m_pPointer->m_pValue = nullptr;
    }

    void ExpectValuesBefore() const {
        EXPECT_EQ(m_pInteger->m_nValue, 11);
        EXPECT_EQ(m_pFloat->m_fValue, 2.5f);
        EXPECT_EQ(Utf8(m_pString->m_strValue), "before");
        EXPECT_EQ(m_pPointer->m_pValue, &m_node);
    }

    P_ExtDevIOProcess m_node;
    VEKParam* m_pInteger = nullptr;
    VEKParam* m_pFloat = nullptr;
    VEKParam* m_pString = nullptr;
    VEKParam* m_pPointer = nullptr;
};

TEST_F(NodeBase, IsNewWithoutAnything) {
    EXPECT_EQ(Utf8(m_node.m_strName), "");
    EXPECT_EQ(Utf8(m_node.m_strSecondName), "");
    EXPECT_EQ(m_node.m_nKindCode, 0);
    EXPECT_EQ(GuidWords(m_node.m_guidType), (std::array<unsigned, 4>{}));
    EXPECT_TRUE(m_node.m_lstParamGroup.IsEmpty());
    EXPECT_EQ(m_node.m_hEventWnd, nullptr);
    EXPECT_EQ(m_node.m_nEventMsg, 0u);
    EXPECT_EQ(m_node.m_hNotifyWnd, nullptr);
    EXPECT_EQ(m_node.m_nNotifyMsg, 0u);
    EXPECT_EQ(m_node.m_pOwnerClip, nullptr);
    EXPECT_EQ(m_node.m_pBaseGraphNode, nullptr);
}

TEST_F(NodeBase, KeepsItsVersions) {
    EXPECT_EQ(m_node.GetLowVersion(), 0);
    EXPECT_EQ(m_node.GetReleaseVersion(), 0);
    m_node.SetLowVersion(40);
    m_node.SetReleaseVersion(47);
    EXPECT_EQ(m_node.GetLowVersion(), 40);
    EXPECT_EQ(m_node.GetReleaseVersion(), 47);
    m_node.SetLowVersion(-1);
    EXPECT_EQ(m_node.GetLowVersion(), -1);
    EXPECT_EQ(m_node.GetReleaseVersion(), 47);
}

TEST_F(NodeBase, HandlesNothing) {
    AddParams();
    SGraphNode graphNode;
    const SIOEventRecord record{0, 2002, nullptr};
    EXPECT_EQ(m_node.ProcessNode(&graphNode), 0);
    EXPECT_EQ(m_node.ProcessNode(nullptr), 0);
    EXPECT_EQ(m_node.DevIOEventOccurred(&record), 0);
    EXPECT_EQ(m_node.DevIOEventOccurred(nullptr), 0);
    EXPECT_EQ(m_node.NeedUpdateSingleParam(MakeParamGuid(1)), FALSE);
    EXPECT_EQ(m_node.UpdateSingleParamValue(MakeParamGuid(1)), 0);
    EXPECT_EQ(m_node.IsParamTypeChangeable(MakeParamGuid(1)), FALSE);
    m_node.Init();
    m_node.InitParam();
    m_node.ApplyFromParam();
    m_node.ApplyToParam();
    m_node.ClearOutPutData();
    m_node.PreRender();
    m_node.StopPiThread();
    ExpectValuesBefore();
    EXPECT_EQ(m_node.m_pBaseGraphNode, nullptr);
}

TEST_F(NodeBase, LeavesTheGraphNodeAlone) {
    SGraphNode graphNode;
    EXPECT_EQ(m_node.NeedPIGetNodeInput(), FALSE);
    m_node.GetNodeInput(&graphNode);
    m_node.GetNodeOutput(&graphNode);
    m_node.GetNodeInput(nullptr);
    m_node.GetNodeOutput(nullptr);
    m_node.ChangeNodeVectorParam(&graphNode, 3);
    m_node.DealWithChangeVectorParam(&graphNode);
    EXPECT_TRUE(graphNode.m_lstInputGroup.IsEmpty());
    EXPECT_TRUE(graphNode.m_lstOutputGroup.IsEmpty());
}

TEST_F(NodeBase, HasNoSubTypes) {
    CStringArray arSubType;
    arSubType.Add(L"of another node");
    m_node.GetSubTypes(arSubType);
    EXPECT_EQ(arSubType.GetSize(), 0);
    m_node.SetSubType(3);
    m_node.SetSubType(L"any");
    EXPECT_EQ(m_node.GetSubType(), 0);
}

TEST_F(NodeBase, PlaysNothing) {
    EXPECT_EQ(m_node.GetNodeRefClip(), nullptr);
    VEKClip clip(L"Clip");
    m_node.m_pOwnerClip = &clip;
    EXPECT_EQ(m_node.GetNodeRefClip(), nullptr) << "the owner is no reference";
    EXPECT_EQ(m_node.GetEventDuration(1), 0.0f);
    EXPECT_EQ(m_node.SeekEventBegin(1), 0);
    EXPECT_EQ(m_node.PlayIn(), 0);
    EXPECT_EQ(m_node.PlayNext(), 0);
    EXPECT_EQ(m_node.PlayByIndex(2), 0);
    EXPECT_EQ(m_node.PlayOut(), 0);
    int nIndex = 5;
    int nTotal = 6;
    m_node.GetPlayIndexAndTotalCount(nIndex, nTotal);
    EXPECT_EQ(nIndex, 0);
    EXPECT_EQ(nTotal, 0);
}

TEST_F(NodeBase, IsShownByItsName) {
    EXPECT_EQ(Utf8(m_node.GetTypeName()), "");
    m_node.m_strName = L"Node";
    m_node.m_strSecondName = L"Other";
    EXPECT_EQ(Utf8(m_node.GetTypeName()), "Node");
    EXPECT_EQ(Utf8(m_node.GetOutputEventName(152)), "");
}

TEST_F(NodeBase, HasFixedParametersThatAreNoVectors) {
    AddParams();
    EXPECT_EQ(m_node.IsInputMulParams(), FALSE);
    EXPECT_EQ(m_node.IsOutputMulParams(), FALSE);
    EXPECT_EQ(m_node.GetFixedMulParams(), 0);
    EXPECT_EQ(m_node.GetSave40ParamGrp(), nullptr);
    const GUID guid = TypeGuid(0x01);
    EXPECT_EQ(GuidWords(m_node.CalVectorParamGuid(guid, 0)), GuidWords(guid));
    EXPECT_EQ(GuidWords(m_node.CalVectorParamGuid(guid, 4)), GuidWords(guid));
    EXPECT_EQ(m_node.CalVectorParamIndex(guid), 0);
    m_node.ChangeVectorParam(5);
    EXPECT_EQ(m_node.m_lstParamGroup.GetCount(), 2);
    EXPECT_EQ(m_node.m_lstParamGroup.GetHead()->m_lstParam.GetCount(), 2);
}

TEST_F(NodeBase, KnowsItsGroups) {
    AddParams();
    EXPECT_EQ(m_node.GetIDFromGrp(m_node.m_lstParamGroup.GetHead()), 100);
    EXPECT_EQ(m_node.GetIDFromGrp(m_node.m_lstParamGroup.GetTail()), 200);
    EXPECT_EQ(m_node.GetIDFromGrp(nullptr), 0);
    EXPECT_TRUE(m_node.IsParamGroupByGUID(MakeParamGuid(100)));
    EXPECT_TRUE(m_node.IsParamGroupByGUID(MakeParamGuid(200)));
    EXPECT_FALSE(m_node.IsParamGroupByGUID(MakeParamGuid(300)));
    EXPECT_FALSE(m_node.IsParamGroupByGUID(MakeParamGuid(1))) << "a parameter is no group";
    GUID guid = MakeParamGuid(100);
    guid.Data4[7] = 1;
    EXPECT_FALSE(m_node.IsParamGroupByGUID(guid));
}

TEST_F(NodeBase, EmptyDeletesItsGroups) {
    const size_t nBefore = HeapBytesInUse();
    AddParams();
    m_node.StoreParameters();
    m_node.Empty();
    EXPECT_TRUE(m_node.m_lstParamGroup.IsEmpty());
    EXPECT_EQ(HeapBytesInUse(), nBefore);
    m_node.Empty();
}

TEST_F(NodeBase, ResettingParametersInitialisesThem) {
    CCountingNode node;
    node.DoParamInit();
    EXPECT_EQ(node.m_nInitParams, 1);
    node.Init();
    EXPECT_EQ(node.m_nInitParams, 1);
}

TEST_F(NodeBase, HasNoControlLayout) {
    EXPECT_EQ(m_node.GetXmlReader(), nullptr);
    EXPECT_EQ(m_node.GetXmlLoadStatePtr(), nullptr);
    EXPECT_EQ(m_node.ShouldReCalHeight(), FALSE);
    EXPECT_EQ(Utf8(m_node.GetCtrlPosXmlPath()), "");
    EXPECT_EQ(m_node.GetNodeParamInfoGrpAr(), nullptr);
    CArray<SNodeParamInfoGrp*> arGroup;
    m_node.FillNodeParamInfoGrpAr(arGroup);
    EXPECT_EQ(arGroup.GetSize(), 0);
}

// ---- Values that are kept ------------------------------------------------------------------------------------------

TEST_F(NodeBase, StoredValuesComeBack) {
    AddParams();
    m_node.StoreParameters();
    ExpectValuesBefore();
    ChangeParams();
    m_node.RestoreParameters();
    ExpectValuesBefore();
    ChangeParams();
    m_node.RestoreParameters();
    ExpectValuesBefore(); // what is kept stays kept
}

TEST_F(NodeBase, NothingStoredChangesNothing) {
    AddParams();
    m_node.RestoreParameters();
    ExpectValuesBefore();
    m_node.StoreParameters();
    m_node.Empty();
    AddParams();
    ChangeParams();
    m_node.RestoreParameters();
    EXPECT_EQ(m_pInteger->m_nValue, 12) << "the values went with their parameters";
}

TEST_F(NodeBase, StoringAgainReplacesWhatWasKept) {
    AddParams();
    ChangeParams();
    m_node.StoreParameters();
    const size_t nBefore = HeapBytesInUse();
    m_pInteger->m_nValue = 11;
    m_pFloat->m_fValue = 2.5f;
    m_pPointer->m_pValue = &m_node;
    m_pString->m_strValue = L"before"; // as long as the text that it replaces
    m_node.StoreParameters();
    EXPECT_EQ(HeapBytesInUse(), nBefore);
    ChangeParams();
    m_node.RestoreParameters();
    ExpectValuesBefore();
}

TEST_F(NodeBase, OnlyParametersThatWereStoredGetValues) {
    AddParams();
    m_node.StoreParameters();
    ChangeParams();
    VEKParam& late = AddParam(*m_node.m_lstParamGroup.GetTail(), 5, PARAM_INTEGER);
    late.m_nValue = 77;
    VEKParamGroup& first = *m_node.m_lstParamGroup.GetHead();
    delete first.m_lstParam.RemoveHead(); // the integer
    m_node.RestoreParameters();
    EXPECT_EQ(late.m_nValue, 77);
    EXPECT_EQ(first.m_lstParam.GetCount(), 1) << "what is gone stays gone";
    EXPECT_EQ(m_pFloat->m_fValue, 2.5f);
    EXPECT_EQ(Utf8(m_pString->m_strValue), "before");
}

TEST_F(NodeBase, OnlyValuesAreKept) {
    AddParams();
    m_node.StoreParameters();
    m_pInteger->m_bAvailable = 0;
    m_pString->m_strDisplay = L"Otherwise";
    m_pInteger->m_arChoice.Add(L"label");
    m_node.RestoreParameters();
    EXPECT_EQ(m_pInteger->m_bAvailable, 0);
    EXPECT_EQ(Utf8(m_pString->m_strDisplay), "Otherwise");
    EXPECT_EQ(m_pInteger->m_arChoice.GetSize(), 1);
}

TEST_F(NodeBase, NodesOfTheModuleKeepTheirValuesToo) {
    ModuleHost host;
    NodeScene scene(host, TYPE_KEY_CHECK);
    scene.m_pNode->StoreParameters();
    scene.Input(1103).m_nValue = 5000;
    scene.m_pNode->RestoreParameters();
    EXPECT_EQ(scene.Input(1103).m_nValue, 200);
}

} // namespace
