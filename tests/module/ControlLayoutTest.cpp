// The control layouts of the parameter panels: one for each of the five classes that have one, read from its file.
#include "ContractTypes.h"
#include "HostSetup.h"

namespace {

bool HasLayout(const ContractType& type) {
    return type.pszLayoutFile != nullptr;
}

constexpr std::string_view LAYOUT = R"(<?xml version="1.0" encoding="UTF-8"?>
<ParamLayout class="AnyClass" version="1">
  <Group id="301" name="Base param">
    <Param id="2" x="8" y="9" width="220" height="24" labelWidth="90"/>
  </Group>
  <Group id="302" name="Empty"/>
</ParamLayout>
)";

/// What the file says.
void ExpectLayoutOfTheFile(const CArray<SNodeParamInfoGrp*>& arGroup) {
    ASSERT_EQ(arGroup.GetSize(), 2);
    EXPECT_EQ(GuidWords(arGroup[0]->m_guid), (std::array<unsigned, 4>{301, 0, 0, 0}));
    EXPECT_EQ(Utf8(arGroup[0]->m_strName), "Base param");
    ASSERT_EQ(arGroup[0]->m_arParam.GetSize(), 1);
    const SNodeParamInfo& info = arGroup[0]->m_arParam[0];
    EXPECT_EQ(GuidWords(info.m_guid), (std::array<unsigned, 4>{2, 0, 0, 0}));
    EXPECT_EQ(info.m_nX, 8);
    EXPECT_EQ(info.m_nY, 9);
    EXPECT_EQ(info.m_nWidth, 220);
    EXPECT_EQ(info.m_nHeight, 24);
    EXPECT_EQ(info.m_nLabelWidth, 90);
    EXPECT_EQ(GuidWords(arGroup[1]->m_guid), (std::array<unsigned, 4>{302, 0, 0, 0}));
    EXPECT_EQ(arGroup[1]->m_arParam.GetSize(), 0);
}

/// A layout group that tells when it's deleted.
class CTracedGroup : public SNodeParamInfoGrp {
public:
    CTracedGroup(std::string strName, std::vector<std::string>& deleted)
        : m_strTrace(std::move(strName)), m_deleted(deleted) {}
    ~CTracedGroup() override { m_deleted.push_back(m_strTrace); }

private:
    std::string m_strTrace;
    std::vector<std::string>& m_deleted;
};

class ControlLayout : public ModuleTest, public testing::WithParamInterface<ContractType> {
protected:
    void Write(std::string_view text) const {
        m_host.WriteFile(std::filesystem::path("Plugins/NodePlugin/IOProcess") / GetParam().pszLayoutFile, text);
    }
    void ExpectRead() const { ExpectLayoutOfTheFile(*m_pNode->GetNodeParamInfoGrpAr()); }

    NodePtr m_pNode = m_host.CreateNode(GetParam().nTypeByte);
};

INSTANTIATE_TEST_SUITE_P(EachClass, ControlLayout, testing::ValuesIn(TypesWith(HasLayout)), TestName<ContractType>);

TEST_P(ControlLayout, IsOnePerClassAndSharedWithNoOther) {
    Write(LAYOUT);
    ExpectRead();
    for (const ContractType& type : TypesWith(HasLayout)) {
        SCOPED_TRACE(type);
        const NodePtr pOther = m_host.CreateNode(type.nTypeByte);
        const bool bSame = type.nTypeByte == GetParam().nTypeByte;
        EXPECT_EQ(pOther->GetXmlReader() == m_pNode->GetXmlReader(), bSame);
        EXPECT_EQ(pOther->GetXmlLoadStatePtr() == m_pNode->GetXmlLoadStatePtr(), bSame);
        EXPECT_EQ(pOther->GetNodeParamInfoGrpAr() == m_pNode->GetNodeParamInfoGrpAr(), bSame);
        EXPECT_EQ(pOther->GetNodeParamInfoGrpAr()->GetSize(), bSame ? 2 : 0) << "only one file is there";
    }
    m_pNode = m_host.CreateNode(GetParam().nTypeByte); // it outlives its nodes
    ExpectRead();
}

TEST_P(ControlLayout, IsReadOnceWhenAskedForAndThereUntilReleased) {
    EXPECT_EQ(*m_pNode->GetXmlLoadStatePtr(), 0) << "nothing is read before it's asked for";
    CArray<SNodeParamInfoGrp*>* pArray = m_pNode->GetNodeParamInfoGrpAr();
    EXPECT_EQ(pArray->GetSize(), 0);
    EXPECT_EQ(*m_pNode->GetXmlLoadStatePtr(), 2);
    EXPECT_EQ(m_host.Call(1, nullptr, nullptr), 1) << "an empty one is released too";
    Write(LAYOUT);
    ExpectRead();
    EXPECT_EQ(*m_pNode->GetXmlLoadStatePtr(), 1);
    SNodeParamInfoGrp* const pFirst = pArray->GetAt(0);
    Write("<ParamLayout/>");
    ExpectRead();
    EXPECT_EQ(m_pNode->GetNodeParamInfoGrpAr(), pArray);
    EXPECT_EQ(pArray->GetAt(0), pFirst);
    EXPECT_EQ(m_host.Call(1, nullptr, nullptr), 1);
    EXPECT_EQ(pArray->GetSize(), 0);
    EXPECT_EQ(pArray->GetData(), nullptr) << "its storage is freed";
    Write(LAYOUT);
    ExpectRead();
    EXPECT_EQ(m_pNode->GetNodeParamInfoGrpAr(), pArray);
}

TEST_P(ControlLayout, BrokenAndForeignFilesLeaveItEmpty) {
    using namespace std::string_view_literals;
    for (const std::string_view text :
         {""sv, "no XML"sv, "<ParamLayout><Group id=\"301\"></ParamLayout>"sv, "<ParamLayout><Group id=\"30"sv,
          "\x00\xFF\xFE<\x01"sv, "<Other><Group id=\"301\" name=\"Base param\"/></Other>"sv}) {
        SCOPED_TRACE(text);
        Write(text);
        EXPECT_EQ(m_pNode->GetNodeParamInfoGrpAr()->GetSize(), 0);
    }
}

TEST_P(ControlLayout, IsFreedWhenTheModuleIsUnloadedUnreleased) {
    Write(LAYOUT);
    ExpectRead();
    m_pNode.reset();
    m_host.Unload();
    m_host.Load();
    m_pNode = m_host.CreateNode(GetParam().nTypeByte);
    EXPECT_EQ(*m_pNode->GetXmlLoadStatePtr(), 0) << "a module loaded anew knows nothing";
}

TEST_P(ControlLayout, ShippedFileNamesParametersThatTheNodeHas) {
    SetAppPath(APP_FOLDER);
    const CArray<SNodeParamInfoGrp*>& arGroup = *m_pNode->GetNodeParamInfoGrpAr();
    ASSERT_GT(arGroup.GetSize(), 0);
    for (INT_PTR i = 0; i < arGroup.GetSize(); ++i) {
        const VEKParamGroup* pGroup = FindGroup(m_pNode->m_lstParamGroup, arGroup[i]->m_guid);
        ASSERT_NE(pGroup, nullptr) << arGroup[i]->m_guid.Data1;
        EXPECT_EQ(Utf8(pGroup->m_strName), Utf8(arGroup[i]->m_strName));
        const CArray<SNodeParamInfo>& arParam = arGroup[i]->m_arParam;
        EXPECT_GT(arParam.GetSize(), 0);
        for (INT_PTR j = 0; j < arParam.GetSize(); ++j) {
            EXPECT_NE(FindParam(pGroup, arParam[j].m_guid), nullptr) << arParam[j].m_guid.Data1;
            EXPECT_GT(arParam[j].m_nWidth, arParam[j].m_nLabelWidth);
            EXPECT_GT(arParam[j].m_nHeight, 0);
        }
    }
}

using ControlLayouts = ModuleTest;

TEST_F(ControlLayouts, AreReleasedTogetherInTheOrderOfTheirClasses) {
    std::vector<std::string> deleted;
    std::vector<CArray<SNodeParamInfoGrp*>*> arrays;
    // Filled in another order than they are released in.
    for (const ContractType& type : TypesWith(HasLayout)) {
        arrays.push_back(m_host.CreateNode(type.nTypeByte)->GetNodeParamInfoGrpAr());
        for (const char* pszNumber : {" 1", " 2"}) {
            arrays.back()->Add(new CTracedGroup(type.pszName + std::string(pszNumber), deleted));
            arrays.back()->Add(nullptr); // elements may be missing
        }
    }
    EXPECT_EQ(m_host.Call(1, nullptr, nullptr), 1);
    EXPECT_EQ(deleted, (std::vector<std::string>{"Gesture 2", "Gesture 1", "Mouse 2", "Mouse 1", "NetParameterSend 2",
                                                 "NetParameterSend 1", "VRHandle 2", "VRHandle 1",
                                                 "DeviceJsonReceive 2", "DeviceJsonReceive 1"}));
    for (const CArray<SNodeParamInfoGrp*>* pArray : arrays) {
        EXPECT_EQ(pArray->GetSize(), 0);
    }
}

} // namespace
