// The parameter model that the host provides, as far as nodes rest on it.
#include <memory>

#include "ModuleHost.h"

namespace {

std::array<unsigned, 4> Words(unsigned nFirst) {
    return {nFirst, 0, 0, 0};
}

VEKParam* Add(VEKParamGroup& group, unsigned nId) {
    auto* pParam = new VEKParam(nId, L"", L"", 2, 1);
    group.m_lstParam.AddTail(pParam);
    return pParam;
}

VEKParamGroup* Add(VEKParamGroupList& lstGroup, unsigned nId) {
    auto* pGroup = new VEKParamGroup;
    pGroup->m_guid = MakeParamGuid(nId);
    lstGroup.AddTail(pGroup);
    return pGroup;
}

TEST(ParamModel, GuidIsTheIdInTheFirstWord) {
    EXPECT_EQ(GuidWords(MakeParamGuid(0)), Words(0));
    EXPECT_EQ(GuidWords(MakeParamGuid(2)), Words(2));
    EXPECT_EQ(GuidWords(MakeParamGuid(373)), Words(373));
    EXPECT_EQ(GuidWords(MakeParamGuid(0xFFFFFFFF)), Words(0xFFFFFFFF));
}

TEST(ParamModel, NewParameterIsBare) {
    const VEKParam param(7, L"Name", L"Display", 5, 6);
    ExpectParam(param, {.nId = 7, .pszName = "Name", .pszDisplay = "Display", .nType = 5, .nControl = 6});
    EXPECT_EQ(param.m_pValue, nullptr);
}

TEST(ParamModel, NewPinCarriesAnExtraWordThatIsNotZero) {
    const SQORNodeOutput output(8, L"Pin", L"Shown", 26, 7);
    ExpectParam(output, {.nId = 8, .pszName = "Pin", .pszDisplay = "Shown", .nType = 26, .nControl = 7});
    EXPECT_NE(output.m_nExtra, 0) << "else nobody would see whether it's cleared";
}

TEST(ParamModel, SettingTheRangeSetsTheValueToo) {
    VEKParam param(1, L"", L"", 2, 2);
    SetParamValue(&param, 2.5f, -3.0f, 4.0f, 0.5f);
    ExpectParam(param, {.nId = 1,
                        .pszName = "",
                        .pszDisplay = "",
                        .nType = 2,
                        .nControl = 2,
                        .range = ExpectedRange{2.5f, -3.0f, 4.0f, 0.5f},
                        .nValue = 2,
                        .fValue = 2.5f});
}

TEST(ParamModel, SettingTheFlagsSetsNothingElse) {
    VEKParam param(1, L"", L"", 2, 1);
    SetParamBoolValue(&param, 1, 2, 3, 4);
    ExpectParam(
        param,
        {.nId = 1, .pszName = "", .pszDisplay = "", .nType = 2, .nControl = 1, .flags = ExpectedFlags{1, 2, 3, 4}});
    SetParamBoolValue(&param, 0, 0, 0, 0);
    EXPECT_NE(param.m_bBoolValueSet, 0) << "four zeros count as set";
}

TEST(ParamModel, FindsTheFirstParameterOfAList) {
    SGraphNode node;
    VEKParamGroup* pFirst = Add(node.m_lstInputGroup, 10);
    VEKParamGroup* pSecond = Add(node.m_lstInputGroup, 11);
    VEKParam* pOne = Add(*pFirst, 1);
    VEKParam* pTwo = Add(*pSecond, 2);
    Add(*pSecond, 1);
    Add(*pSecond, 2);
    EXPECT_EQ(FindParam(node.m_lstInputGroup, MakeParamGuid(1)), pOne);
    EXPECT_EQ(FindParam(node.m_lstInputGroup, MakeParamGuid(2)), pTwo);
    EXPECT_EQ(FindParam(node.m_lstInputGroup, MakeParamGuid(3)), nullptr);
    EXPECT_EQ(FindParam(node.m_lstInputGroup, MakeParamGuid(10)), nullptr) << "groups are no parameters";
    EXPECT_EQ(FindParam(node.m_lstOutputGroup, MakeParamGuid(1)), nullptr) << "empty list";
}

TEST(ParamModel, FindsByTheWholeGuid) {
    VEKParamGroup group;
    VEKParam* pParam = Add(group, 5);
    GUID guid = MakeParamGuid(5);
    guid.Data4[7] = 1;
    EXPECT_EQ(FindParam(&group, guid), nullptr);
    guid.Data4[7] = 0;
    guid.Data2 = 1;
    EXPECT_EQ(FindParam(&group, guid), nullptr);
    EXPECT_EQ(FindParam(&group, MakeParamGuid(5)), pParam);
}

TEST(ParamModel, FindsTheFirstParameterOfAGroup) {
    VEKParamGroup group;
    VEKParam* pOne = Add(group, 1);
    Add(group, 1);
    VEKParam* pTwo = Add(group, 2);
    EXPECT_EQ(FindParam(&group, MakeParamGuid(1)), pOne);
    EXPECT_EQ(FindParam(&group, MakeParamGuid(2)), pTwo);
    EXPECT_EQ(FindParam(&group, MakeParamGuid(3)), nullptr);
    EXPECT_EQ(FindParam(static_cast<const VEKParamGroup*>(nullptr), MakeParamGuid(1)), nullptr);
}

TEST(ParamModel, FindsTheFirstGroup) {
    SGraphNode node;
    VEKParamGroup* pFirst = Add(node.m_lstInputGroup, 10);
    Add(node.m_lstInputGroup, 10);
    VEKParamGroup* pOther = Add(node.m_lstInputGroup, 11);
    Add(*pFirst, 12);
    EXPECT_EQ(FindGroup(node.m_lstInputGroup, MakeParamGuid(10)), pFirst);
    EXPECT_EQ(FindGroup(node.m_lstInputGroup, MakeParamGuid(11)), pOther);
    EXPECT_EQ(FindGroup(node.m_lstInputGroup, MakeParamGuid(12)), nullptr) << "parameters are no groups";
    EXPECT_EQ(FindGroup(node.m_lstOutputGroup, MakeParamGuid(10)), nullptr) << "empty list";
}

TEST(ParamModel, InputsOfTheGraphWinOverTheNodesOwn) {
    SGraphNode graph;
    SGraphNode own; // owns the list that plays the node's own groups
    VEKParam* pOwn = Add(*Add(own.m_lstInputGroup, 1), 2);
    EXPECT_EQ(QORFindParamByGuid(MakeParamGuid(2), graph.m_lstInputGroup, own.m_lstInputGroup), pOwn);
    VEKParam* pGraph = Add(*Add(graph.m_lstInputGroup, 1), 2);
    EXPECT_EQ(QORFindParamByGuid(MakeParamGuid(2), graph.m_lstInputGroup, own.m_lstInputGroup), pGraph);
    EXPECT_EQ(QORFindParamByGuid(MakeParamGuid(3), graph.m_lstInputGroup, own.m_lstInputGroup), nullptr);
}

void FillEveryMember(VEKParam& param) {
    SetParamValue(&param, 1.5f, -1.0f, 2.0f, 0.25f);
    SetParamBoolValue(&param, 4, 3, 2, 1);
    param.m_nValue = 77;
    param.m_strValue = L"text";
    param.m_arChoice.Add(L"first");
    param.m_arChoice.Add(L"second");
    param.m_bAvailable = 0;
}

const ExpectedParam FILLED = {.nId = 9,
                              .pszName = "Name",
                              .pszDisplay = "Shown",
                              .nType = 4,
                              .nControl = 1,
                              .range = ExpectedRange{1.5f, -1.0f, 2.0f, 0.25f},
                              .flags = ExpectedFlags{4, 3, 2, 1},
                              .nValue = 77,
                              .fValue = 1.5f,
                              .pszValue = "text",
                              .choices = {"first", "second"},
                              .bAvailable = 0};

TEST(ParamModel, CloneHasAllContentsAndIsIndependent) {
    VEKParam original(9, L"Name", L"Shown", 4, 1);
    FillEveryMember(original);
    const std::unique_ptr<VEKParam> pClone(original.Clone());
    ExpectParam(*pClone, FILLED);
    EXPECT_EQ(dynamic_cast<SQORNodeOutput*>(pClone.get()), nullptr);

    pClone->m_strValue = L"other";
    pClone->m_arChoice.RemoveAll();
    pClone->m_nValue = 78;
    ExpectParam(original, FILLED);
}

TEST(ParamModel, CloneOfAPinIsAPin) {
    SQORNodeOutput original(9, L"Name", L"Shown", 4, 1);
    FillEveryMember(original);
    original.m_nExtra = 0x123456789ALL;
    const VEKParam& asParam = original;
    const std::unique_ptr<VEKParam> pClone(asParam.Clone());
    ExpectParam(*pClone, FILLED);
    const auto* pPin = dynamic_cast<const SQORNodeOutput*>(pClone.get());
    ASSERT_NE(pPin, nullptr);
    EXPECT_EQ(pPin->m_nExtra, 0x123456789ALL);
}

TEST(ParamModel, CloneKeepsPointerAndTypeName) {
    int nPointee = 0;
    VEKParam original(3, L"", L"", 0, 8);
    original.m_pValue = &nPointee;
    const wchar_t TYPE_NAME[] = L"VEKClip";
    std::copy(std::begin(TYPE_NAME), std::end(TYPE_NAME), original.m_szTypeName);
    const std::unique_ptr<VEKParam> pClone(original.Clone());
    EXPECT_EQ(pClone->m_pValue, &nPointee);
    EXPECT_STREQ(pClone->m_szTypeName, L"VEKClip");
}

} // namespace
