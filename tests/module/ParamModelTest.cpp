// The parameter model that the host provides, as far as nodes and their tests rest on it.
#include <cwchar>
#include <memory>

#include "ModuleHost.h"
#include "ParamText.h"

namespace {

VEKParam* Add(VEKParamGroup& group, unsigned nId) {
    group.m_lstParam.AddTail(new VEKParam(nId, L"", L"", 2, 1));
    return group.m_lstParam.GetTail();
}

VEKParamGroup* Add(VEKParamGroupList& lstGroup, unsigned nId) {
    auto* pGroup = new VEKParamGroup;
    pGroup->m_guid = MakeParamGuid(nId);
    lstGroup.AddTail(pGroup);
    return pGroup;
}

TEST(ParamModel, ClonesHaveAllContentsOfTheirOriginal) {
    SGraphNode node;
    VEKParamGroup* pGroup = Add(node.m_lstOutputGroup, 1);
    pGroup->m_lstParam.AddTail(new VEKParam(7, L"Bare", L"Shown", 5, 6));
    auto* pOutput = new SQORNodeOutput(8, L"Pin", L"Shown", 26, 7);
    EXPECT_NE(pOutput->m_nExtra, 0) << "else nobody would see whether nodes clear it";
    pOutput->m_nExtra = 0x123456789ALL;
    pGroup->m_lstParam.AddTail(pOutput);
    auto* pParam = new VEKParam(9, L"Name", L"Shown", 4, 1);
    SetParamBoolValue(pParam, 4, 3, 2, 1);
    SetParamValue(pParam, 2.5f, -1.0f, 2.0f, 0.25f); // sets both values, too
    pParam->m_strValue = L"text";
    std::wcscpy(pParam->m_szTypeName, L"T");
    pParam->m_arChoice.Add(L"first");
    pParam->m_bAvailable = 0;
    pGroup->m_lstParam.AddTail(pParam);
    const std::string before = TextOf(node.m_lstOutputGroup);
    EXPECT_EQ(before, R"([
  {"id":1,"name":"","display":"", "params": [
    {"id":7,"name":"Bare","display":"Shown","type":5,"control":6},
    {"id":8,"name":"Pin","display":"Shown","type":26,"control":7,"pin":78187493530},
    {"id":9,"name":"Name","display":"Shown","type":4,"control":1,"range":[2.5,-1.0,2.0,0.25],"flags":[4,3,2,1],"integer":2,"float":2.5,"string":"text","type name":"T","choices":["first"],"available":0}]}])");
    for (int i = 0; i < 3; ++i) {
        const std::unique_ptr<VEKParam> pOriginal(pGroup->m_lstParam.RemoveHead());
        pGroup->m_lstParam.AddTail(pOriginal->Clone());
        pOriginal->m_arChoice.RemoveAll();
        pOriginal->m_nValue = 78;
    }
    EXPECT_EQ(TextOf(node.m_lstOutputGroup), before);
}

TEST(ParamModel, FindsTheFirstParameterByTheWholeGuid) {
    SGraphNode node;
    VEKParamGroup* pFirst = Add(node.m_lstInputGroup, 10);
    VEKParamGroup* pSecond = Add(node.m_lstInputGroup, 11);
    VEKParam* pOne = Add(*pFirst, 1);
    VEKParam* pTwo = Add(*pSecond, 2);
    VEKParam* pOther = Add(*pSecond, 1);
    Add(*pSecond, 2);
    EXPECT_EQ(FindParam(node.m_lstInputGroup, MakeParamGuid(1)), pOne);
    EXPECT_EQ(FindParam(node.m_lstInputGroup, MakeParamGuid(2)), pTwo);
    EXPECT_EQ(FindParam(pSecond, MakeParamGuid(1)), pOther);
    EXPECT_EQ(FindParam(node.m_lstInputGroup, MakeParamGuid(10)), nullptr) << "groups are no parameters";
    EXPECT_EQ(FindParam(node.m_lstOutputGroup, MakeParamGuid(1)), nullptr) << "empty list";
    EXPECT_EQ(FindParam(static_cast<const VEKParamGroup*>(nullptr), MakeParamGuid(1)), nullptr);
    EXPECT_EQ(FindGroup(node.m_lstInputGroup, MakeParamGuid(11)), pSecond);
    EXPECT_EQ(FindGroup(node.m_lstInputGroup, MakeParamGuid(1)), nullptr) << "parameters are no groups";
    for (const GUID& guid : {GUID{1, 1, 0, {}}, GUID{1, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}}}) {
        EXPECT_EQ(FindParam(node.m_lstInputGroup, guid), nullptr);
    }
}

} // namespace
