// The control layouts of the parameter panels: one for each of the five classes that have one, read from its file.
#include <memory>

#include "HostSetup.h"
#include "ModuleHost.h"

namespace {

struct LayoutClass {
    const char* pszName;
    unsigned char nTypeByte;
    const char* pszFileName;
};

/// In the order in which the module releases the layouts.
const LayoutClass CLASSES[] = {
    {"Gesture", TYPE_GESTURE, "CVEKIOGesture.XML"},
    {"Mouse", TYPE_MOUSE, "CVEKIOMouse.XML"},
    {"NetParameterSend", TYPE_NET_PARAMETER_SEND, "CVEKIONetParameterSend.XML"},
    {"VRHandle", TYPE_VR_HANDLE, "CVEKIOVRHandle.XML"},
    {"DeviceJsonReceive", TYPE_DEVICE_JSON_RECEIVE, "CVEKIODevJsonReceive.XML"},
};

constexpr std::string_view LAYOUT = R"(<?xml version="1.0" encoding="UTF-8"?>
<ParamLayout class="AnyClass" version="1">
  <Group id="301" name="Base param">
    <Param id="2" x="8" y="9" width="220" height="24" labelWidth="90"/>
  </Group>
  <Group id="302" name="Empty"/>
</ParamLayout>
)";

void WriteLayout(const ModuleHost& host, const LayoutClass& layoutClass, std::string_view text) {
    host.WriteFile(std::filesystem::path("Plugins/NodePlugin/IOProcess") / layoutClass.pszFileName, text);
}

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

class ControlLayout : public ModuleTest, public testing::WithParamInterface<LayoutClass> {
protected:
    void Write(std::string_view text) const { WriteLayout(m_host, GetParam(), text); }
    void ExpectRead() const { ExpectLayoutOfTheFile(*m_pNode->GetNodeParamInfoGrpAr()); }
    NodePtr NewNode() { return m_host.CreateNode(GetParam().nTypeByte); }

    NodePtr m_pNode = NewNode();
};

INSTANTIATE_TEST_SUITE_P(EachClass, ControlLayout, testing::ValuesIn(CLASSES),
                         [](const testing::TestParamInfo<LayoutClass>& layout) { return layout.param.pszName; });

TEST_P(ControlLayout, PathLiesInTheModuleFolder) {
    const std::string folder = Utf8(G_GetModulePath());
    EXPECT_EQ(Utf8(m_pNode->GetCtrlPosXmlPath()),
              folder + "\\Plugins\\NodePlugin\\IOProcess\\" + GetParam().pszFileName);
    EXPECT_EQ(folder, m_host.AppFolder().string());
}

TEST_P(ControlLayout, IsOnePerClass) {
    const NodePtr pOther = NewNode();
    EXPECT_NE(m_pNode->GetXmlReader(), nullptr);
    EXPECT_NE(m_pNode->GetXmlLoadStatePtr(), nullptr);
    EXPECT_NE(m_pNode->GetNodeParamInfoGrpAr(), nullptr);
    EXPECT_EQ(pOther->GetXmlReader(), m_pNode->GetXmlReader());
    EXPECT_EQ(pOther->GetXmlLoadStatePtr(), m_pNode->GetXmlLoadStatePtr());
    EXPECT_EQ(pOther->GetNodeParamInfoGrpAr(), m_pNode->GetNodeParamInfoGrpAr());
}

TEST_P(ControlLayout, IsNotSharedWithAnotherClass) {
    Write(LAYOUT);
    ExpectRead();
    for (const LayoutClass& layoutClass : CLASSES) {
        if (layoutClass.nTypeByte != GetParam().nTypeByte) {
            SCOPED_TRACE(layoutClass.pszName);
            const NodePtr pOther = m_host.CreateNode(layoutClass.nTypeByte);
            EXPECT_NE(pOther->GetXmlReader(), m_pNode->GetXmlReader());
            EXPECT_NE(pOther->GetXmlLoadStatePtr(), m_pNode->GetXmlLoadStatePtr());
            EXPECT_NE(pOther->GetNodeParamInfoGrpAr(), m_pNode->GetNodeParamInfoGrpAr());
            EXPECT_EQ(pOther->GetNodeParamInfoGrpAr()->GetSize(), 0) << "its own file isn't there";
        }
    }
}

TEST_P(ControlLayout, HeightIsNotComputedAnew) {
    EXPECT_EQ(m_pNode->ShouldReCalHeight(), FALSE);
}

TEST_P(ControlLayout, IsReadFromTheFile) {
    Write(LAYOUT);
    EXPECT_EQ(*m_pNode->GetXmlLoadStatePtr(), 0) << "nothing is read before it's asked for";
    ExpectRead();
    EXPECT_EQ(*m_pNode->GetXmlLoadStatePtr(), 1);
}

TEST_P(ControlLayout, IsFilledOnce) {
    Write(LAYOUT);
    CArray<SNodeParamInfoGrp*>* pArray = m_pNode->GetNodeParamInfoGrpAr();
    SNodeParamInfoGrp* const pFirst = pArray->GetAt(0);
    Write("<ParamLayout/>");
    const NodePtr pOther = NewNode();
    EXPECT_EQ(pOther->GetNodeParamInfoGrpAr(), pArray);
    ASSERT_EQ(pArray->GetSize(), 2);
    EXPECT_EQ(pArray->GetAt(0), pFirst);
}

TEST_P(ControlLayout, OutlivesItsNodes) {
    Write(LAYOUT);
    {
        const NodePtr pOther = NewNode();
        pOther->GetNodeParamInfoGrpAr();
    }
    ExpectRead();
}

TEST_P(ControlLayout, IsReleasedWithItsStorageAndFilledAgain) {
    Write(LAYOUT);
    CArray<SNodeParamInfoGrp*>* pArray = m_pNode->GetNodeParamInfoGrpAr();
    ASSERT_EQ(pArray->GetSize(), 2);
    EXPECT_EQ(m_host.Call(1, nullptr, nullptr), 1);
    EXPECT_EQ(pArray->GetSize(), 0);
    EXPECT_EQ(pArray->GetData(), nullptr);
    EXPECT_EQ(m_host.Call(1, nullptr, nullptr), 1) << "an empty one is released too";
    EXPECT_EQ(m_pNode->GetNodeParamInfoGrpAr(), pArray);
    ExpectRead();
}

TEST_P(ControlLayout, IsReleasedFromTheLastToTheFirst) {
    Write(LAYOUT);
    CArray<SNodeParamInfoGrp*>* pArray = m_pNode->GetNodeParamInfoGrpAr();
    std::vector<std::string> deleted;
    for (const char* pszName : {"1", "2", "3"}) {
        pArray->Add(new CTracedGroup(pszName, deleted));
        pArray->Add(nullptr); // elements may be missing
    }
    m_host.Call(1, nullptr, nullptr);
    EXPECT_EQ(deleted, (std::vector<std::string>{"3", "2", "1"}));
    EXPECT_EQ(pArray->GetSize(), 0);
}

TEST_P(ControlLayout, MissingFileLeavesItEmpty) {
    CArray<SNodeParamInfoGrp*>* pArray = m_pNode->GetNodeParamInfoGrpAr();
    ASSERT_NE(pArray, nullptr);
    EXPECT_EQ(pArray->GetSize(), 0);
    EXPECT_EQ(*m_pNode->GetXmlLoadStatePtr(), 2);
    EXPECT_EQ(m_host.Call(1, nullptr, nullptr), 1);
}

TEST_P(ControlLayout, BrokenFilesLeaveItEmpty) {
    for (const std::string_view text :
         {std::string_view(""), std::string_view("no XML"),
          std::string_view("<ParamLayout><Group id=\"301\"></ParamLayout>"),
          std::string_view("<ParamLayout><Group id=\"30"), std::string_view("\x00\xFF\xFE<\x01", 5)}) {
        SCOPED_TRACE(text);
        Write(text);
        EXPECT_EQ(m_pNode->GetNodeParamInfoGrpAr()->GetSize(), 0);
    }
}

TEST_P(ControlLayout, ForeignXmlLeavesItEmpty) {
    Write("<Other><Group id=\"301\" name=\"Base param\"/></Other>");
    EXPECT_EQ(m_pNode->GetNodeParamInfoGrpAr()->GetSize(), 0);
}

TEST_P(ControlLayout, IsReadOnceTheFileIsThere) {
    EXPECT_EQ(m_pNode->GetNodeParamInfoGrpAr()->GetSize(), 0);
    Write(LAYOUT);
    ExpectRead();
}

TEST_P(ControlLayout, IsFreedWhenTheModuleIsUnloadedUnreleased) {
    Write(LAYOUT);
    ASSERT_EQ(m_pNode->GetNodeParamInfoGrpAr()->GetSize(), 2);
    m_pNode.reset();
    m_host.Unload();
    m_host.Load();
    const NodePtr pNode = NewNode();
    EXPECT_EQ(*pNode->GetXmlLoadStatePtr(), 0) << "a module loaded anew knows nothing";
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

// ---- All five together ---------------------------------------------------------------------------------------------

class ControlLayouts : public ModuleTest {
protected:
    ControlLayouts() {
        for (const LayoutClass& layoutClass : CLASSES) {
            WriteLayout(m_host, layoutClass, LAYOUT);
            m_nodes.push_back(m_host.CreateNode(layoutClass.nTypeByte));
        }
    }

    std::vector<NodePtr> m_nodes;
};

TEST_F(ControlLayouts, AreEmptiedTogetherAndFillAgain) {
    for (const NodePtr& pNode : m_nodes) {
        ExpectLayoutOfTheFile(*pNode->GetNodeParamInfoGrpAr());
    }
    EXPECT_EQ(m_host.Call(1, nullptr, nullptr), 1);
    std::vector<CArray<SNodeParamInfoGrp*>*> arrays;
    for (const NodePtr& pNode : m_nodes) {
        arrays.push_back(pNode->GetNodeParamInfoGrpAr()); // reads the layout again
        ExpectLayoutOfTheFile(*arrays.back());
    }
    EXPECT_EQ(m_host.Call(1, nullptr, nullptr), 1);
    for (const CArray<SNodeParamInfoGrp*>* pArray : arrays) {
        EXPECT_EQ(pArray->GetSize(), 0);
        EXPECT_EQ(pArray->GetData(), nullptr);
    }
}

TEST_F(ControlLayouts, AreReleasedInTheOrderOfTheirClasses) {
    std::vector<std::string> deleted;
    // Filled in another order than they are released in.
    for (size_t i = m_nodes.size(); i-- > 0;) {
        CArray<SNodeParamInfoGrp*>* pArray = m_nodes[i]->GetNodeParamInfoGrpAr();
        pArray->Add(new CTracedGroup(std::string(CLASSES[i].pszName) + " 1", deleted));
        pArray->Add(new CTracedGroup(std::string(CLASSES[i].pszName) + " 2", deleted));
    }
    EXPECT_EQ(m_host.Call(1, nullptr, nullptr), 1);
    EXPECT_EQ(deleted, (std::vector<std::string>{"Gesture 2", "Gesture 1", "Mouse 2", "Mouse 1", "NetParameterSend 2",
                                                 "NetParameterSend 1", "VRHandle 2", "VRHandle 1",
                                                 "DeviceJsonReceive 2", "DeviceJsonReceive 1"}));
}

TEST_F(ControlLayouts, OtherTypesHaveNone) {
    for (const unsigned char nTypeByte :
         {TYPE_KEYBOARD, TYPE_KEY_CHECK, TYPE_TEXT_FIELD, TYPE_NET_PARAMETER_RECEIVE, TYPE_BROADCAST_SEND,
          TYPE_BROADCAST_RECEIVE, TYPE_OBJECT_JSON_RECEIVE, TYPE_STRING_DATA_SEND}) {
        SCOPED_TRACE(int{nTypeByte});
        const NodePtr pNode = m_host.CreateNode(nTypeByte);
        EXPECT_EQ(pNode->GetXmlReader(), nullptr);
        EXPECT_EQ(pNode->GetXmlLoadStatePtr(), nullptr);
        EXPECT_EQ(Utf8(pNode->GetCtrlPosXmlPath()), "");
        EXPECT_EQ(pNode->GetNodeParamInfoGrpAr(), nullptr);
        EXPECT_EQ(pNode->ShouldReCalHeight(), FALSE);
    }
}

} // namespace
