// The net parameter send node: its tables and upgrades, what it sends to which devices, what it logs, its panel.
#include <climits>
#include <memory>

#include "ModuleHost.h"
#include "TestDevices.h"

namespace {

enum : unsigned {
    VERSION = 7,
    DEV_ID = 402,
    DEV_NAME = 403,
    CLIP_NAME = 404,
    NAME_OF_GROUP = 405,
    KEY_NAME = 406,
    KEY_NUMBER = 407,
    KEY_VALUE = 408,
    HELP_PARAMETER = 409,
    SEND = 410,
    LAYER = 411,
    TO_DEV = 412,
};

constexpr UINT NOTIFY_MESSAGE = WM_APP + 18;

const char* const NO_DEVICE_ID = "[Clip.Graph.Node]找不到网络播放控制设备ID";
const char* const NO_DEVICE = "[Clip.Graph.Node]找不到网络播放控制设备";
const char* const SENT = "[Clip.Graph.Node]触发事件";

const std::vector<std::string> LAYER_LABELS = {
    "ZT_BASEOBJ_LAYER_BACK",          "ZT_BASEOBJ_LAYER_MIDDLE",       "ZT_BASEOBJ_LAYER_FRONT",
    "ZT_BASEOBJ_LAYER_OUTPUT_BACK",   "ZT_BASEOBJ_LAYER_OUTPUT_KEY",   "ZT_BASEOBJ_LAYER_ONLY1",
    "ZT_BASEOBJ_LAYER_ONLY2",         "ZT_BASEOBJ_LAYER_ONLY3",        "ZT_BASEOBJ_LAYER_ONLY4",
    "ZT_BASEOBJ_LAYER_ONLY5",         "ZT_BASEOBJ_LAYER_ONLY6",        "ZT_BASEOBJ_LAYER_ONLY7",
    "ZT_BASEOBJ_LAYER_ONLY8",         "ZT_BASEOBJ_LAYER_ONLY9",        "ZT_BASEOBJ_LAYER_ONLY10",
    "ZT_BASEOBJ_LAYER_OUTPUT_FIRST1", "ZT_BASEOBJ_LAYER_OUTPUT_FIRST2"};

ExpectedParam TextParam(unsigned nId, const char* pszName, const char* pszDisplay) {
    return {.nId = nId,
            .pszName = pszName,
            .pszDisplay = pszDisplay,
            .nType = 1,
            .nControl = 6,
            .flags = ExpectedFlags{0, 0, 1, 0}};
}

/// The node's parameters in order, as it is made.
std::vector<ExpectedParam> NewParams() {
    return {
        {.nId = 7,
         .pszName = "Version",
         .pszDisplay = "Version",
         .nType = 2,
         .nControl = 1,
         .range = ExpectedRange{1, 1, 10000, 1},
         .flags = ExpectedFlags{0, 0, 0, 0},
         .nValue = 5,
         .fValue = 1,
         .bAvailable = 0},
        {.nId = 412,
         .pszName = "ToDev",
         .pszDisplay = "TOUCH_NETSEND_TODEV",
         .nType = 5,
         .nControl = 5,
         .range = ExpectedRange{0, 0, 1, 1},
         .flags = ExpectedFlags{0, 0, 0, 0},
         .nValue = 1},
        TextParam(402, "DevID", "IO_PROCESS_NETSEND_DEVID"),
        TextParam(403, "DevName", "IO_PROCESS_NETSEND_DEVNAME"),
        TextParam(404, "ClipName", "IO_PROCESS_NETSEND_CLIPNAME"),
        {.nId = 411,
         .pszName = "Layer",
         .pszDisplay = "LAYER_LAYER",
         .nType = 4,
         .nControl = 1,
         .range = ExpectedRange{0, 0, 20, 1},
         .flags = ExpectedFlags{0, 0, 0, 0},
         .nValue = 1,
         .choices = LAYER_LABELS},
        TextParam(405, "GroupName", "IO_PROCESS_NETSEND_GROUPNAME"),
        TextParam(406, "KeyName", "IO_PROCESS_NETSEND_KEYNAME"),
        {.nId = 407,
         .pszName = "KeyNumber",
         .pszDisplay = "IO_PROCESS_NETSEND_KEYNUMBER",
         .nType = 2,
         .nControl = 1,
         .range = ExpectedRange{0, 0, 1000000000, 1},
         .flags = ExpectedFlags{0, 0, 1, 0}},
        TextParam(408, "KeyValue", "IO_PROCESS_NETSEND_KEYVALUE"),
        TextParam(409, "HelpParameter", "IO_PROCESS_NETSEND_HELPPARAMETER"),
        {.nId = 410,
         .pszName = "Send",
         .pszDisplay = "IO_PROCESS_NETSEND_SEND",
         .nType = 26,
         .nControl = 7,
         .range = ExpectedRange{0, 0, 1, 1},
         .flags = ExpectedFlags{0, 0, 1, 0}},
    };
}

class NetParameterSendNode : public ModuleTest {
protected:
    NetParameterSendNode() {
        m_scene.m_pNode->m_hNotifyWnd = m_host.Window();
        m_scene.m_pNode->m_nNotifyMsg = NOTIFY_MESSAGE;
    }

    VEKParam& Input(unsigned nId) const { return m_scene.Input(nId); }

    void ExpectParams(const std::vector<ExpectedParam>& expected) const {
        ExpectInputGroups(m_scene.m_pNode->m_lstParamGroup, {{401, "Base param", "IO_PROCESS_NETSEND", expected}});
    }

    /// The ids of the node's parameters in order.
    std::vector<unsigned> Ids() const {
        std::vector<unsigned> ids;
        for (const VEKParam* pParam : Items(List())) {
            ids.push_back(static_cast<unsigned>(pParam->m_guid.Data1));
        }
        return ids;
    }

    CList<VEKParam*>& List() const { return m_scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam; }

    /// Take a parameter away, as in a damaged or old project.
    void Drop(unsigned nId) {
        VEKParam* pParam = &Input(nId);
        List().RemoveAt(List().Find(pParam));
        delete pParam;
    }

    /// Evaluate with "Send" set, and take the messages that opened the panel away.
    int EvaluateAndSend() {
        if (m_pSend == nullptr) {
            m_pSend = &m_scene.AddGraphInput(SEND, 26, 7);
        }
        m_pSend->m_nValue = 1;
        const int nResult = m_scene.Evaluate();
        m_pSend->m_nValue = 0;
        return nResult;
    }

    NodeScene m_scene{m_host, TYPE_NET_PARAMETER_SEND};
    TestDevices m_devices;
    VEKParam* m_pSend = nullptr;
};

// ---- Tables
// ----------------------------------------------------------------------------------------------------------

TEST_F(NetParameterSendNode, IsFresh) {
    const NodePtr pNode = m_host.CreateNode(TYPE_NET_PARAMETER_SEND);
    ExpectFreshNode(*pNode, TYPE_NET_PARAMETER_SEND, "IO_PROCESS_NETSEND");
}

TEST_F(NetParameterSendNode, Inputs) {
    ExpectParams(NewParams());
}

TEST_F(NetParameterSendNode, HasNoOutputs) {
    EXPECT_TRUE(m_scene.m_graphNode.m_lstOutputGroup.IsEmpty());
}

// ---- Upgrades
// --------------------------------------------------------------------------------------------------------

TEST_F(NetParameterSendNode, InitParamLeavesACurrentSetAsItIs) {
    m_scene.m_pNode->InitParam();
    ExpectParams(NewParams());
}

TEST_F(NetParameterSendNode, Version1GetsLayerAndToDev) {
    Drop(LAYER);
    Drop(TO_DEV);
    Input(VERSION).m_nValue = 1;
    Input(DEV_ID).m_strValue = L"3";
    Input(DEV_NAME).m_strValue = L"Wall";
    m_scene.m_pNode->InitParam();

    std::vector<ExpectedParam> expected = NewParams();
    expected[1].nValue = 0; // ToDev, added off
    expected[1].flags = ExpectedFlags{0, 0, 1, 0};
    expected[2].bAvailable = 0;
    expected[3].bAvailable = 0;
    expected[5].flags = ExpectedFlags{0, 0, 1, 0};
    ExpectParams(expected);
}

TEST_F(NetParameterSendNode, AddedParametersStandAroundTheClipName) {
    for (const unsigned nId :
         {static_cast<unsigned>(LAYER), static_cast<unsigned>(TO_DEV), static_cast<unsigned>(VERSION)}) {
        Drop(nId);
    }
    m_scene.m_pNode->InitParam(); // without a version ToDev isn't moved up
    EXPECT_EQ(Ids(), (std::vector<unsigned>{402, 403, 412, 404, 411, 405, 406, 407, 408, 409, 410}));
}

TEST_F(NetParameterSendNode, WithoutAClipNameTheyStandAtTheEnds) {
    for (const unsigned nId : {LAYER, TO_DEV, VERSION, CLIP_NAME}) {
        Drop(nId);
    }
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(Ids(), (std::vector<unsigned>{412, 402, 403, 405, 406, 407, 408, 409, 410, 411}));
}

TEST_F(NetParameterSendNode, Version2GetsToDevOnly) {
    Drop(LAYER);
    Drop(TO_DEV);
    Input(VERSION).m_nValue = 2;
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(Ids(), (std::vector<unsigned>{7, 412, 402, 403, 404, 405, 406, 407, 408, 409, 410}));
    EXPECT_EQ(Input(VERSION).m_nValue, 5);
}

TEST_F(NetParameterSendNode, Version3GetsNeither) {
    Drop(LAYER);
    Drop(TO_DEV);
    Input(VERSION).m_nValue = 3;
    Input(DEV_ID).m_strValue = L"3";
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(Ids(), (std::vector<unsigned>{7, 402, 403, 404, 405, 406, 407, 408, 409, 410}));
    EXPECT_EQ(Utf8(Input(DEV_ID).m_strValue), "3");
}

TEST_F(NetParameterSendNode, Version3HidesTheDeviceWhenSendingToAll) {
    Input(VERSION).m_nValue = 3;
    Input(TO_DEV).m_nValue = 0;
    Input(DEV_ID).m_strValue = L"3";
    Input(DEV_NAME).m_strValue = L"Wall";
    m_scene.m_pNode->InitParam();
    for (const unsigned nId : {DEV_ID, DEV_NAME}) {
        EXPECT_EQ(Input(nId).m_bAvailable, 0);
        EXPECT_EQ(Utf8(Input(nId).m_strValue), "");
    }
}

TEST_F(NetParameterSendNode, Version3ShowsTheDeviceWhenSendingToOne) {
    Input(VERSION).m_nValue = 3;
    Input(DEV_ID).m_strValue = L"3";
    Input(DEV_ID).m_bAvailable = 0;
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(Input(DEV_ID).m_bAvailable, 1);
    EXPECT_EQ(Utf8(Input(DEV_ID).m_strValue), "3");
}

TEST_F(NetParameterSendNode, Version4LeavesTheDeviceAndMovesToDevUp) {
    VEKParam* pToDev = &Input(TO_DEV);
    List().RemoveAt(List().Find(pToDev));
    List().AddTail(pToDev);
    pToDev->m_nValue = 0;
    Input(VERSION).m_nValue = 4;
    Input(DEV_ID).m_strValue = L"3";
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(Ids(), (std::vector<unsigned>{7, 412, 402, 403, 404, 411, 405, 406, 407, 408, 409, 410}));
    EXPECT_EQ(Utf8(Input(DEV_ID).m_strValue), "3");
    EXPECT_EQ(Input(DEV_ID).m_bAvailable, 1);
}

TEST_F(NetParameterSendNode, Version5LeavesToDevWhereItIs) {
    VEKParam* pToDev = &Input(TO_DEV);
    List().RemoveAt(List().Find(pToDev));
    List().AddTail(pToDev);
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(Ids().back(), 412u);
}

TEST_F(NetParameterSendNode, AnEmptyChoiceListIsFilled) {
    Input(LAYER).m_arChoice.RemoveAll();
    m_scene.m_pNode->InitParam();
    ExpectParams(NewParams());
}

TEST_F(NetParameterSendNode, AnotherChoiceListIsKept) {
    Input(LAYER).m_arChoice.RemoveAll();
    Input(LAYER).m_arChoice.Add(L"own");
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(Input(LAYER).m_arChoice.GetSize(), 1);
}

TEST_F(NetParameterSendNode, ASavedLayerBeyondTheChoicesIsTheLast) {
    for (const auto& [nSaved, nLoaded] : {std::pair{16, 16}, {17, 16}, {20, 16}, {0, 0}}) {
        Input(LAYER).m_nValue = nSaved;
        m_scene.m_pNode->InitParam();
        EXPECT_EQ(Input(LAYER).m_nValue, nLoaded) << nSaved;
    }
}

class NetParameterSendNodeGroups : public NetParameterSendNode {
protected:
    /// Move parameters, in this order, to a group of their own before the others'.
    void MoveToFirstGroup(std::initializer_list<unsigned> ids) {
        auto* pGroup = new VEKParamGroup;
        for (const unsigned nId : ids) {
            VEKParam* pParam = &Input(nId);
            List().RemoveAt(List().Find(pParam));
            pGroup->m_lstParam.AddTail(pParam);
        }
        m_scene.m_pNode->m_lstParamGroup.AddHead(pGroup);
    }

    /// The ids of the parameters of each group after the upgrade.
    std::vector<std::vector<unsigned>> UpgradedIds() {
        m_scene.m_pNode->InitParam();
        std::vector<std::vector<unsigned>> ids;
        for (const VEKParamGroup* pGroup : Items(m_scene.m_pNode->m_lstParamGroup)) {
            ids.emplace_back();
            for (const VEKParam* pParam : Items(pGroup->m_lstParam)) {
                ids.back().push_back(static_cast<unsigned>(pParam->m_guid.Data1));
            }
        }
        return ids;
    }
};

using IdsOfGroups = std::vector<std::vector<unsigned>>;

TEST_F(NetParameterSendNodeGroups, ParametersAreAddedWhereTheClipNameIs) {
    Drop(LAYER);
    Drop(TO_DEV);
    Drop(VERSION);
    MoveToFirstGroup({KEY_NAME});
    EXPECT_EQ(UpgradedIds(), (IdsOfGroups{{406}, {402, 403, 412, 404, 411, 405, 407, 408, 409, 410}}));
}

TEST_F(NetParameterSendNodeGroups, WithoutAClipNameTheyStandAtTheEndsOfTheFirst) {
    for (const unsigned nId : {LAYER, TO_DEV, VERSION, CLIP_NAME}) {
        Drop(nId);
    }
    MoveToFirstGroup({KEY_NAME, KEY_VALUE});
    EXPECT_EQ(UpgradedIds(), (IdsOfGroups{{412, 406, 408, 411}, {402, 403, 405, 407, 409, 410}}));
}

TEST_F(NetParameterSendNodeGroups, ToDevIsMovedWhereTheVersionIs) {
    Input(VERSION).m_nValue = 4;
    MoveToFirstGroup({VERSION, KEY_NAME});
    EXPECT_EQ(UpgradedIds(), (IdsOfGroups{{7, 412, 406}, {402, 403, 404, 411, 405, 407, 408, 409, 410}}));
    EXPECT_EQ(Input(VERSION).m_nValue, 5);
}

TEST_F(NetParameterSendNodeGroups, EveryParameterIsFoundWhereverItIs) {
    Input(VERSION).m_nValue = 1;
    Input(TO_DEV).m_nValue = 0;
    Input(DEV_ID).m_strValue = Input(DEV_NAME).m_strValue = L"3";
    Input(LAYER).m_nValue = 20;
    Input(LAYER).m_arChoice.RemoveAll();
    MoveToFirstGroup({KEY_NAME});
    EXPECT_EQ(UpgradedIds(), (IdsOfGroups{{406}, {7, 412, 402, 403, 404, 411, 405, 407, 408, 409, 410}}))
        << "nothing is there twice";
    EXPECT_EQ(Input(VERSION).m_nValue, 5);
    EXPECT_EQ(Input(LAYER).m_nValue, 16);
    EXPECT_EQ(Input(LAYER).m_arChoice.GetSize(), 17);
    for (const unsigned nId : {DEV_ID, DEV_NAME}) {
        EXPECT_EQ(Input(nId).m_bAvailable, 0);
        EXPECT_EQ(Utf8(Input(nId).m_strValue), "");
    }
}

TEST_F(NetParameterSendNode, InitParamTakesANodeWithoutParameters) {
    m_scene.m_pNode->Empty();
    m_scene.m_pNode->InitParam();
    EXPECT_TRUE(m_scene.m_pNode->m_lstParamGroup.IsEmpty());
}

// ---- Sending
// ---------------------------------------------------------------------------------------------------------

TEST_F(NetParameterSendNode, SendsNothingUnlessTriggered) {
    m_devices.Add(3, L"Wall");
    m_devices.Publish();
    Input(DEV_ID).m_strValue = L"3";
    Input(SEND).m_nValue = 1; // the node's own doesn't count
    EXPECT_EQ(m_scene.Evaluate(), 1);
    m_scene.AddGraphInput(SEND, 26, 7).m_nValue = 0;
    EXPECT_EQ(m_scene.Evaluate(), 1);
    EXPECT_TRUE(m_devices.TakeSent().empty());
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
}

TEST_F(NetParameterSendNode, SendsTheRecordToTheDevice) {
    m_devices.Add(2, L"Other");
    m_devices.Add(3, L"Wall");
    m_devices.Publish();
    Input(DEV_ID).m_strValue = L" 3rd";
    Input(DEV_NAME).m_strValue = L"not the device's";
    Input(CLIP_NAME).m_strValue = L"Intro";
    Input(NAME_OF_GROUP).m_strValue = L"group";
    Input(KEY_NAME).m_strValue = L"key";
    Input(KEY_NUMBER).m_nValue = 42;
    Input(KEY_VALUE).m_strValue = L"value";
    Input(HELP_PARAMETER).m_strValue = L"help";
    Input(LAYER).m_nValue = 7;
    EXPECT_EQ(EvaluateAndSend(), 1);

    const std::vector<SentItem> sent = m_devices.TakeSent();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].nDevice, 3);
    EXPECT_EQ(sent[0].nCommandCode, 50);
    EXPECT_EQ(sent[0].pClip, &m_scene.m_clip);
    const CQORPanelRemoteCtrlData& record = sent[0].record;
    EXPECT_EQ(Utf8(record.m_strDevID), "3");
    EXPECT_EQ(Utf8(record.m_strDevName), "Wall");
    EXPECT_EQ(Utf8(record.m_strClipName), "Intro");
    EXPECT_EQ(Utf8(record.m_strGroupName), "group");
    EXPECT_EQ(Utf8(record.m_strKeyName), "key");
    EXPECT_EQ(record.m_nKeyNumber, 42);
    EXPECT_EQ(Utf8(record.m_strHelpParameter), "help");
    EXPECT_EQ(Utf8(record.m_strKeyValue), "value");
    EXPECT_EQ(record.m_nLayer, 3);
    EXPECT_EQ(m_host.TakeLog(), std::vector{Information(SENT)});
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{});
}

TEST_F(NetParameterSendNode, TheGraphsInputsComeFirst) {
    m_devices.Add(3, L"Wall");
    m_devices.Publish();
    Input(DEV_ID).m_strValue = L"2";
    Input(KEY_NAME).m_strValue = L"own";
    m_scene.AddGraphInput(DEV_ID, 1, 6).m_strValue = L"3";
    m_scene.AddGraphInput(KEY_NAME, 1, 6).m_strValue = L"graph's";
    EXPECT_EQ(EvaluateAndSend(), 1);
    const std::vector<SentItem> sent = m_devices.TakeSent();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(Utf8(sent[0].record.m_strKeyName), "graph's");
}

TEST_F(NetParameterSendNode, LayerChoicesAreSentAsLayerNumbers) {
    m_devices.Add(0, L"");
    m_devices.Publish();
    Input(DEV_ID).m_strValue = L"0";
    const struct {
        int nChoice;
        int nLayer;
    } LAYERS[] = {{0, -1},
                  {1, 0},
                  {2, 2147483446},
                  {3, -1023},
                  {4, -1022},
                  {5, 1},
                  {6, 2},
                  {7, 3},
                  {8, 4},
                  {9, 5},
                  {10, 6},
                  {11, 7},
                  {12, 8},
                  {13, 9},
                  {14, 10},
                  {15, 2147483447},
                  {16, 2147483448},
                  // The graph may supply what is no choice.
                  {17, 2147483449},
                  {215, INT_MAX},
                  {216, INT_MIN},
                  {INT_MAX, -217},
                  {-1, -1},
                  {INT_MIN, -1}};
    for (const auto& [nChoice, nLayer] : LAYERS) {
        Input(LAYER).m_nValue = nChoice;
        EvaluateAndSend();
        const std::vector<SentItem> sent = m_devices.TakeSent();
        ASSERT_EQ(sent.size(), 1u);
        EXPECT_EQ(sent[0].record.m_nLayer, nLayer) << nChoice;
    }
}

TEST_F(NetParameterSendNode, SendsToAllDevicesInOrderAndLogsOnce) {
    m_devices.Add(9, L"Nine");
    m_devices.Add(1, L"One");
    m_devices.AddNull();
    m_devices.Add(5, L"Five");
    m_devices.Publish();
    Input(TO_DEV).m_nValue = 0;
    EXPECT_EQ(EvaluateAndSend(), 1);
    const std::vector<SentItem> sent = m_devices.TakeSent();
    ASSERT_EQ(sent.size(), 3u);
    EXPECT_EQ(Utf8(sent[0].record.m_strDevID), "9");
    EXPECT_EQ(Utf8(sent[1].record.m_strDevName), "One");
    EXPECT_EQ(Utf8(sent[2].record.m_strDevID), "5");
    EXPECT_EQ(m_host.TakeLog(), std::vector{Information(SENT)});
}

TEST_F(NetParameterSendNode, SendingToAllNeedsDevices) {
    Input(TO_DEV).m_nValue = 0;
    EXPECT_EQ(EvaluateAndSend(), 1); // no list
    EXPECT_EQ(m_host.TakeLog(), std::vector{Error(NO_DEVICE)});
    m_devices.Publish();
    EXPECT_EQ(EvaluateAndSend(), 1); // an empty one
    EXPECT_EQ(m_host.TakeLog(), std::vector{Error(NO_DEVICE)});
}

TEST_F(NetParameterSendNode, SendingToOneNeedsItsId) {
    m_devices.Add(0, L"Zero");
    m_devices.Publish();
    EXPECT_EQ(EvaluateAndSend(), 1);
    EXPECT_EQ(m_host.TakeLog(), std::vector{Error(NO_DEVICE_ID)});
    Drop(DEV_ID);
    EXPECT_EQ(EvaluateAndSend(), 1);
    EXPECT_EQ(m_host.TakeLog(), std::vector{Error(NO_DEVICE_ID)});
    Input(TO_DEV).m_nValue = 0; // also to all, though it isn't read then
    EXPECT_EQ(EvaluateAndSend(), 1);
    EXPECT_EQ(m_host.TakeLog(), std::vector{Error(NO_DEVICE_ID)});
    EXPECT_TRUE(m_devices.TakeSent().empty());
}

TEST_F(NetParameterSendNode, AnUnknownDeviceIsLogged) {
    m_devices.Add(3, L"Wall");
    m_devices.Publish();
    Input(DEV_ID).m_strValue = L"4";
    EXPECT_EQ(EvaluateAndSend(), 1);
    EXPECT_EQ(m_host.TakeLog(), std::vector{Error(NO_DEVICE)});
    EXPECT_TRUE(m_devices.TakeSent().empty());
}

TEST_F(NetParameterSendNode, ATextIdIsDeviceZero) {
    m_devices.Add(0, L"Zero");
    m_devices.Publish();
    Input(DEV_ID).m_strValue = L"abc";
    EXPECT_EQ(EvaluateAndSend(), 1);
    ASSERT_EQ(m_devices.TakeSent().size(), 1u);
    EXPECT_EQ(m_host.TakeLog(), std::vector{Information(SENT)});
}

TEST_F(NetParameterSendNode, ARefusedItemChangesNothing) {
    m_devices.Add(3, L"Wall");
    m_devices.Publish();
    m_devices.RefuseAll();
    Input(DEV_ID).m_strValue = L"3";
    EXPECT_EQ(EvaluateAndSend(), 1);
    EXPECT_EQ(m_host.TakeLog(), std::vector{Information(SENT)});
}

TEST_F(NetParameterSendNode, NeedsGraphNodeClipAndToDev) {
    m_devices.Add(3, L"Wall");
    m_devices.Publish();
    Input(DEV_ID).m_strValue = L"3";
    m_scene.AddGraphInput(SEND, 26, 7).m_nValue = 1;
    EXPECT_EQ(m_scene.m_pNode->ProcessNode(nullptr), 0);
    m_scene.m_pNode->m_pOwnerClip = nullptr;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    m_scene.m_pNode->m_pOwnerClip = &m_scene.m_clip;
    Drop(TO_DEV);
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_TRUE(m_devices.TakeSent().empty());
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
}

TEST_F(NetParameterSendNode, TakesEveryEventAndDoesNothing) {
    EXPECT_EQ(m_scene.m_pNode->DevIOEventOccurred(nullptr), 1);
    EXPECT_EQ(m_scene.Send(2, 0), 1);
    EXPECT_EQ(m_host.TakeLog(), std::vector<LogLine>{});
}

// ---- The panel
// -------------------------------------------------------------------------------------------------------

TEST_F(NetParameterSendNode, TheFirstEvaluationSetsUpThePanel) {
    Input(DEV_ID).m_bAvailable = 0;
    m_scene.Evaluate();
    EXPECT_EQ(Input(DEV_ID).m_bAvailable, 1); // ToDev starts on, the node's idea of it off
    EXPECT_EQ(m_host.TakeRedraws(), std::vector<SGraphNode*>{&m_scene.m_graphNode});
    const std::vector<MSG> messages = m_host.TakeOtherMessages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].message, NOTIFY_MESSAGE);
    EXPECT_EQ(messages[0].wParam, 0u);
    EXPECT_EQ(messages[0].lParam, 1);

    m_scene.Evaluate();
    EXPECT_TRUE(m_host.TakeRedraws().empty());
    EXPECT_TRUE(m_host.TakeOtherMessages().empty());
}

TEST_F(NetParameterSendNode, SwitchingToAllHidesAndEmptiesTheDevice) {
    Input(DEV_ID).m_strValue = L"3";
    Input(DEV_NAME).m_strValue = L"Wall";
    m_scene.Evaluate();
    EXPECT_EQ(Utf8(Input(DEV_ID).m_strValue), "3");
    m_host.TakeRedraws();
    m_host.TakeOtherMessages();

    m_scene.AddGraphInput(TO_DEV, 5, 5).m_nValue = 0;
    m_scene.Evaluate();
    for (const unsigned nId : {DEV_ID, DEV_NAME}) {
        EXPECT_EQ(Input(nId).m_bAvailable, 0);
        EXPECT_EQ(Utf8(Input(nId).m_strValue), "");
    }
    EXPECT_EQ(m_host.TakeRedraws().size(), 1u);
    const std::vector<MSG> messages = m_host.TakeOtherMessages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].lParam, 1);
}

TEST_F(NetParameterSendNode, PostsOnlyWithNotificationWindowAndMessage) {
    m_scene.m_pNode->m_nNotifyMsg = 0;
    m_scene.Evaluate();
    EXPECT_EQ(m_host.TakeRedraws().size(), 1u);
    EXPECT_TRUE(m_host.TakeOtherMessages().empty());
    m_scene.m_pNode->m_nNotifyMsg = NOTIFY_MESSAGE;
    m_scene.m_pNode->m_hNotifyWnd = nullptr;
    Input(TO_DEV).m_nValue = 0;
    m_scene.Evaluate();
    EXPECT_EQ(m_host.TakeRedraws().size(), 1u);
    EXPECT_TRUE(m_host.TakeOtherMessages().empty());
}

TEST_F(NetParameterSendNode, ItsLayoutFileIsItsOwn) {
    m_host.WriteFile("Plugins/NodePlugin/IOProcess/CVEKIONetParameterSend.XML",
                     "<ParamLayout><Group id=\"401\"><Param id=\"412\" x=\"8\"/></Group></ParamLayout>");
    P_ExtDevIOProcess& node = *m_scene.m_pNode;
    const std::string path = Utf8(node.GetCtrlPosXmlPath());
    const std::string ending = "\\Plugins\\NodePlugin\\IOProcess\\CVEKIONetParameterSend.XML";
    ASSERT_GE(path.size(), ending.size());
    EXPECT_EQ(path.substr(path.size() - ending.size()), ending);
    CArray<SNodeParamInfoGrp*>* pGroups = node.GetNodeParamInfoGrpAr();
    ASSERT_NE(pGroups, nullptr);
    ASSERT_EQ(pGroups->GetSize(), 1);
    EXPECT_EQ((*pGroups)[0]->m_guid.Data1, 401u);

    const NodePtr pSecond = m_host.CreateNode(TYPE_NET_PARAMETER_SEND);
    EXPECT_EQ(pSecond->GetNodeParamInfoGrpAr(), pGroups);
    EXPECT_EQ(pSecond->GetXmlReader(), node.GetXmlReader());
    EXPECT_EQ(pSecond->GetXmlLoadStatePtr(), node.GetXmlLoadStatePtr());
    m_host.Call(1, nullptr, nullptr);
    EXPECT_EQ(pGroups->GetSize(), 0);
    EXPECT_EQ(node.GetNodeParamInfoGrpAr()->GetSize(), 1);
}

} // namespace
