// The string data send node: its table, the bytes that it sends to which devices, its panel.
#include "HeapUse.h"
#include "ModuleHost.h"
#include "TestDevices.h"

namespace {

enum : unsigned {
    VERSION = 7,
    TO_DEV = 1502,
    DEV_ID = 1503,
    DEV_NAME = 1504,
    STRING_DATA = 1505,
    CODE_TYPE = 1506,
    SEND = 1507,
};

constexpr UINT NOTIFY_MESSAGE = WM_APP + 18;

const char* const SENDING = "[Clip.Graph.Node]触发发送事件";
const char* const NO_DEVICE = "[Clip.Graph.Node]找不到网络播放控制设备";

/// What went to a device.
struct Sent {
    int nDevice;
    std::string bytes;

    friend bool operator==(const Sent&, const Sent&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Sent& sent) {
        return out << sent.nDevice << " \"" << sent.bytes << '"';
    }
};

class StringDataSendNode : public ModuleTest {
protected:
    StringDataSendNode() {
        m_scene.m_pNode->m_hNotifyWnd = m_host.Window();
        m_scene.m_pNode->m_nNotifyMsg = NOTIFY_MESSAGE;
        m_send.m_nValue = 1;
    }

    VEKParam& Input(unsigned nId) const { return m_scene.Input(nId); }

    std::vector<Sent> TakeSent() {
        std::vector<Sent> sent;
        for (const SentItem& item : m_devices.TakeSent()) {
            EXPECT_EQ(item.nCommandCode, -1) << "bytes are sent, no items";
            sent.push_back({item.nDevice, item.bytes});
        }
        return sent;
    }

    void Drop(unsigned nId) {
        CList<VEKParam*>& lstParam = m_scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam;
        VEKParam* pParam = &Input(nId);
        lstParam.RemoveAt(lstParam.Find(pParam));
        delete pParam;
    }

    int UpdateSingle(unsigned nId) { return m_scene.m_pNode->UpdateSingleParamValue(GUID{nId, 0, 0, {}}); }

    NodeScene m_scene{m_host, TYPE_STRING_DATA_SEND};
    VEKParam& m_send = m_scene.AddGraphInput(SEND, 26, 7);
    TestDevices m_devices;
};

TEST_F(StringDataSendNode, IsFresh) {
    const NodePtr pNode = m_host.CreateNode(TYPE_STRING_DATA_SEND);
    ExpectFreshNode(*pNode, TYPE_STRING_DATA_SEND, "IO_PROCESS_STRING_SEND");
}

TEST_F(StringDataSendNode, Inputs) {
    const ExpectedFlags NONE{0, 0, 0, 0};
    const ExpectedFlags ORDINARY{0, 0, 1, 0};
    const std::vector<ExpectedGroup> expected = {{1501,
                                                  "Base param",
                                                  "IO_PROCESS_STRING_SEND",
                                                  {{.nId = 7,
                                                    .pszName = "Version",
                                                    .pszDisplay = "Version",
                                                    .nType = 2,
                                                    .nControl = 1,
                                                    .range = ExpectedRange{1, 1, 10000, 1},
                                                    .flags = NONE,
                                                    .nValue = 1,
                                                    .fValue = 1},
                                                   {.nId = 1502,
                                                    .pszName = "ToDev",
                                                    .pszDisplay = "TOUCH_NETSEND_TODEV",
                                                    .nType = 5,
                                                    .nControl = 5,
                                                    .range = ExpectedRange{0, 0, 1, 1},
                                                    .flags = NONE,
                                                    .nValue = 1},
                                                   {.nId = 1503,
                                                    .pszName = "DevID",
                                                    .pszDisplay = "IO_PROCESS_NETSEND_DEVID",
                                                    .nType = 2,
                                                    .nControl = 1,
                                                    .range = ExpectedRange{0, 0, 1000, 1},
                                                    .flags = ORDINARY},
                                                   {.nId = 1504,
                                                    .pszName = "DevName",
                                                    .pszDisplay = "IO_PROCESS_NETSEND_DEVNAME",
                                                    .nType = 1,
                                                    .nControl = 6,
                                                    .flags = ORDINARY},
                                                   {.nId = 1505,
                                                    .pszName = "StringData",
                                                    .pszDisplay = "IO_PROCESS_STRING_DATA",
                                                    .nType = 1,
                                                    .nControl = 6,
                                                    .flags = ORDINARY},
                                                   {.nId = 1506,
                                                    .pszName = "CodeType",
                                                    .pszDisplay = "IO_PROCESS_STRING_CODE_TYPE",
                                                    .nType = 4,
                                                    .nControl = 1,
                                                    .range = ExpectedRange{0, 0, 5, 1},
                                                    .flags = NONE,
                                                    .choices = {"unicode", "multi-byte"}},
                                                   {.nId = 1507,
                                                    .pszName = "Send",
                                                    .pszDisplay = "IO_PROCESS_NETSEND_SEND",
                                                    .nType = 26,
                                                    .nControl = 7,
                                                    .range = ExpectedRange{0, 0, 1, 1},
                                                    .flags = ORDINARY}}}};
    ExpectInputGroups(m_scene.m_pNode->m_lstParamGroup, expected);
    m_scene.m_pNode->InitParam();
    Input(CODE_TYPE).m_arChoice.RemoveAll();
    m_scene.m_pNode->InitParam();
    ExpectInputGroups(m_scene.m_pNode->m_lstParamGroup, expected);
    EXPECT_TRUE(m_scene.m_graphNode.m_lstOutputGroup.IsEmpty());
}

TEST_F(StringDataSendNode, InitParamTakesASetWithoutCodeTypeOrGroup) {
    Drop(CODE_TYPE);
    m_scene.m_pNode->InitParam();
    m_scene.m_pNode->Empty();
    m_scene.m_pNode->InitParam();
}

TEST_F(StringDataSendNode, UnicodeSendsTheAnsiCodePage) {
    m_devices.Add(0, L"Zero", ParserKind::Direct);
    m_devices.Publish();
    Input(STRING_DATA).m_strValue = L"a\u00e9\u20ac\u6bd4";
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(TakeSent(), (std::vector<Sent>{{0, std::string("a\xE9\x80?\0", 5)}})); // code page 1252
    EXPECT_EQ(m_host.TakeLog(), std::vector{Information(SENDING)});
}

TEST_F(StringDataSendNode, MultiByteSendsUtf8) {
    m_devices.Add(0, L"Zero", ParserKind::Direct);
    m_devices.Publish();
    Input(STRING_DATA).m_strValue = L"a\u00e9\u6bd4";
    Input(CODE_TYPE).m_nValue = 1;
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(TakeSent(), (std::vector<Sent>{{0, std::string("a\u00e9\u6bd4\0", 7)}}));
}

TEST_F(StringDataSendNode, OtherCodeTypesSendNothing) {
    m_devices.Add(0, L"Zero", ParserKind::Direct);
    m_devices.Publish();
    Input(STRING_DATA).m_strValue = L"a";
    for (const int nCodeType : {2, 5, -1}) {
        Input(CODE_TYPE).m_nValue = nCodeType;
        EXPECT_EQ(m_scene.Evaluate(), 1);
    }
    EXPECT_EQ(TakeSent(), std::vector<Sent>{});
    EXPECT_EQ(m_host.TakeLog().size(), 3u);
}

TEST_F(StringDataSendNode, AnEmptyTextSendsTheZero) {
    m_devices.Add(0, L"Zero", ParserKind::Direct);
    m_devices.Publish();
    for (const int nCodeType : {0, 1}) {
        Input(CODE_TYPE).m_nValue = nCodeType;
        EXPECT_EQ(m_scene.Evaluate(), 1);
        EXPECT_EQ(TakeSent(), (std::vector<Sent>{{0, std::string(1, '\0')}}));
    }
}

TEST_F(StringDataSendNode, LongTextsGoOutWhole) {
    m_devices.Add(0, L"Zero", ParserKind::Direct);
    m_devices.Publish();
    for (const int nLength : {10000, 10, 30000}) {
        Input(STRING_DATA).m_strValue = CString(L'x', nLength);
        m_scene.Evaluate();
        const std::vector<Sent> expected{{0, std::string(static_cast<size_t>(nLength), 'x') + '\0'}};
        EXPECT_TRUE(TakeSent() == expected) << nLength; // too long to print
    }
}

TEST_F(StringDataSendNode, SendsToTheDeviceOfItsNumber) {
    m_devices.Add(1, L"One", ParserKind::Direct);
    m_devices.Add(1000, L"Thousand", ParserKind::Direct);
    m_devices.Publish();
    Input(STRING_DATA).m_strValue = L"a";
    Input(DEV_ID).m_nValue = 1000;
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(TakeSent(), (std::vector<Sent>{{1000, std::string("a\0", 2)}}));
    Input(DEV_ID).m_nValue = 2;
    m_host.TakeLog();
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(TakeSent(), std::vector<Sent>{});
    EXPECT_EQ(m_host.TakeLog(), (std::vector{Information(SENDING), Error(NO_DEVICE)}));
}

TEST_F(StringDataSendNode, SendsToAllDevicesThatTakeBytes) {
    m_devices.Add(3, L"", ParserKind::Direct);
    m_devices.Add(2, L"", ParserKind::Other);
    m_devices.AddNull();
    m_devices.Add(4, L"", ParserKind::None);
    m_devices.Add(1, L"", ParserKind::Direct);
    m_devices.Publish();
    Input(TO_DEV).m_nValue = 0;
    EXPECT_EQ(m_scene.Evaluate(), 1);
    const std::string zero(1, '\0');
    EXPECT_EQ(TakeSent(), (std::vector<Sent>{{3, zero}, {1, zero}}));
    EXPECT_EQ(m_host.TakeLog(), std::vector{Information(SENDING)});
}

TEST_F(StringDataSendNode, AnotherParserGetsNothing) {
    m_devices.Add(0, L"Zero", ParserKind::Other);
    m_devices.Publish();
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(TakeSent(), std::vector<Sent>{});
    EXPECT_EQ(m_host.TakeLog(), std::vector{Information(SENDING)});
}

TEST_F(StringDataSendNode, SendingToAllWithoutDevicesIsSilent) {
    Input(TO_DEV).m_nValue = 0;
    EXPECT_EQ(m_scene.Evaluate(), 1);
    m_devices.Publish();
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(m_host.TakeLog(), (std::vector{Information(SENDING), Information(SENDING)}));
}

TEST_F(StringDataSendNode, SendsNothingUnlessTriggered) {
    m_devices.Add(0, L"Zero", ParserKind::Direct);
    m_devices.Publish();
    m_send.m_nValue = 0;
    Input(SEND).m_nValue = 1; // the node's own doesn't count
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_EQ(TakeSent(), std::vector<Sent>{});
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
}

TEST_F(StringDataSendNode, MissingInputsAreNotHandled) {
    m_devices.Add(0, L"Zero", ParserKind::Direct);
    m_devices.Publish();
    for (const unsigned nId : {TO_DEV, DEV_ID, STRING_DATA, CODE_TYPE}) {
        NodeScene scene(m_host, TYPE_STRING_DATA_SEND);
        VEKParam& send = scene.AddGraphInput(SEND, 26, 7);
        EXPECT_EQ(scene.Evaluate(), 1);
        CList<VEKParam*>& lstParam = scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam;
        VEKParam* pParam = &scene.Input(nId);
        lstParam.RemoveAt(lstParam.Find(pParam));
        delete pParam;
        EXPECT_EQ(scene.Evaluate(), 0) << nId;
        send.m_nValue = 1;
        EXPECT_EQ(scene.Evaluate(), 0) << nId;
    }
    NodeScene withoutSend(m_host, TYPE_STRING_DATA_SEND);
    EXPECT_EQ(withoutSend.Evaluate(), 0);
    EXPECT_EQ(TakeSent(), std::vector<Sent>{});
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
}

TEST_F(StringDataSendNode, NeedsGraphNodeAndClip) {
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
}

TEST_F(StringDataSendNode, TakesEveryEventAndDoesNothing) {
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 1);
    EXPECT_EQ(m_scene.Send(2, 0), 1);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
}

TEST_F(StringDataSendNode, SteadySendsAllocateNothing) {
    m_devices.Add(7, L"", ParserKind::Other);
    m_devices.Add(0, L"Zero", ParserKind::Direct);
    m_devices.Publish();
    Input(STRING_DATA).m_strValue = CString(L'x', 500);
    m_host.KeepNothing();
    m_scene.Evaluate();
    TakeSent();
    const size_t nBefore = HeapBytesInUse();
    for (int i = 0; i < 200; ++i) {
        m_scene.Evaluate();
        TakeSent();
    }
    EXPECT_EQ(HeapBytesInUse(), nBefore);
}

// ---- The panel
// -------------------------------------------------------------------------------------------------------

TEST_F(StringDataSendNode, AsksForEditsOfToDevOnly) {
    P_ExtDevIOProcess& node = *m_scene.m_pNode;
    EXPECT_TRUE(node.NeedUpdateSingleParam(GUID{1502, 0, 0, {}}));
    for (const unsigned nId : {0u, 7u, 2u, 1501u, 1503u, 1504u, 1505u, 1506u, 1507u}) {
        EXPECT_FALSE(node.NeedUpdateSingleParam(GUID{nId, 0, 0, {}})) << nId;
    }
    EXPECT_FALSE(node.NeedUpdateSingleParam(GUID{1502, 1, 0, {}}));
    EXPECT_FALSE(node.NeedUpdateSingleParam(GUID{1502, 0, 1, {}}));
    EXPECT_FALSE(node.NeedUpdateSingleParam(GUID{1502, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}}));
}

TEST_F(StringDataSendNode, AnEditOfToDevRedrawsThePanel) {
    EXPECT_EQ(UpdateSingle(TO_DEV), 0); // not evaluated yet
    m_send.m_nValue = 0;
    m_scene.Evaluate();
    EXPECT_TRUE(m_host.TakeRedraws().empty()); // evaluations leave the panel alone
    EXPECT_EQ(UpdateSingle(DEV_ID), 0);

    EXPECT_EQ(UpdateSingle(TO_DEV), 1);
    EXPECT_EQ(Input(DEV_ID).m_bAvailable, 1);
    EXPECT_EQ(m_host.TakeRedraws(), std::vector<SGraphNode*>{&m_scene.m_graphNode});
    EXPECT_EQ(m_host.TakeOtherMessages().size(), 1u);
    EXPECT_EQ(UpdateSingle(TO_DEV), 1); // no change
    EXPECT_TRUE(m_host.TakeRedraws().empty());
    EXPECT_TRUE(m_host.TakeOtherMessages().empty());

    Input(DEV_ID).m_strValue = L"3";
    Input(DEV_ID).m_nValue = 3;
    Input(DEV_NAME).m_strValue = L"Wall";
    Input(TO_DEV).m_nValue = 0;
    EXPECT_EQ(UpdateSingle(TO_DEV), 1);
    for (const unsigned nId : {DEV_ID, DEV_NAME}) {
        EXPECT_EQ(Input(nId).m_bAvailable, 0);
        EXPECT_EQ(Utf8(Input(nId).m_strValue), "");
    }
    EXPECT_EQ(Input(DEV_ID).m_nValue, 3);
    EXPECT_EQ(m_host.TakeRedraws().size(), 1u);
    const std::vector<MSG> messages = m_host.TakeOtherMessages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].message, NOTIFY_MESSAGE);
    EXPECT_EQ(messages[0].wParam, 0u);
    EXPECT_EQ(messages[0].lParam, 1);
}

} // namespace
