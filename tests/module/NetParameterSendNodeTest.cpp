// The net parameter send node: its upgrades, what it sends to which devices, what it logs, its panel.
#include <climits>

#include "HostCalls.h"
#include "ParamText.h"
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

const LogLine NO_DEVICE_ID = Error("[Clip.Graph.Node]找不到网络播放控制设备ID");
const LogLine NO_DEVICE = Error("[Clip.Graph.Node]找不到网络播放控制设备");
const LogLine SENT = Information("[Clip.Graph.Node]触发事件");

class NetParameterSendNode : public SendingNodeTest {
protected:
    NetParameterSendNode() : SendingNodeTest(TYPE_NET_PARAMETER_SEND) {}

    VEKParamGroupList& Groups() const { return m_scene.m_pNode->m_lstParamGroup; }

    /// Fill in a device, as it's written in the panel.
    void NameDevice(const wchar_t* pszId) {
        Input(DEV_ID).m_strValue = pszId;
        Input(DEV_NAME).m_strValue = L"Wall";
    }

    void ExpectDeviceNamed(bool bNamed) {
        for (const unsigned nId : {DEV_ID, DEV_NAME}) {
            EXPECT_EQ(Input(nId).m_bAvailable, bNamed ? 1 : 0) << nId;
            EXPECT_EQ(Input(nId).m_strValue.IsEmpty(), bNamed ? FALSE : TRUE) << nId;
        }
    }

    /// Evaluate once with "Send" set. What was sent.
    std::vector<SentItem> Sent() {
        m_send.m_nValue = 1;
        EXPECT_EQ(m_scene.Evaluate(), 1);
        m_send.m_nValue = 0;
        return m_devices.TakeSent();
    }

    VEKParam& m_send = m_scene.AddGraphInput(SEND, 26, 7);
};

// ---- Upgrades ------------------------------------------------------------------------------------------------------

using Ids = std::vector<unsigned>;

/// The ids of each group's parameters after the upgrade of a damaged or older set.
struct Upgrade {
    const char* pszName;
    int nVersion; ///< 0: "Version" is missing
    Ids missing;
    Ids firstGroup; ///< parameters that stand in a group of their own, before the others'
    std::vector<Ids> upgraded;

    friend std::ostream& operator<<(std::ostream& out, const Upgrade& upgrade) { return out << upgrade.pszName; }
};

const Upgrade UPGRADES[] = {
    {"Version1GetsLayerAndToDev", 1, {411, 412}, {}, {{7, 412, 402, 403, 404, 411, 405, 406, 407, 408, 409, 410}}},
    {"Version2GetsToDev", 2, {411, 412}, {}, {{7, 412, 402, 403, 404, 405, 406, 407, 408, 409, 410}}},
    {"Version3GetsNeither", 3, {411, 412}, {}, {{7, 402, 403, 404, 405, 406, 407, 408, 409, 410}}},
    {"WithoutVersionToDevIsNotMoved", 0, {411, 412}, {}, {{402, 403, 412, 404, 411, 405, 406, 407, 408, 409, 410}}},
    {"WithoutClipNameTheyStandAtTheEnds", 0, {404, 411, 412}, {}, {{412, 402, 403, 405, 406, 407, 408, 409, 410, 411}}},
    {"TheyStandWhereTheClipNameIs", 0, {411, 412}, {406}, {{406}, {402, 403, 412, 404, 411, 405, 407, 408, 409, 410}}},
    {"WithoutClipNameTheyStandInTheFirstGroup",
     0,
     {404, 411, 412},
     {406, 408},
     {{412, 406, 408, 411}, {402, 403, 405, 407, 409, 410}}},
    {"ToDevIsMovedWhereTheVersionIs", 4, {}, {7, 406}, {{7, 412, 406}, {402, 403, 404, 411, 405, 407, 408, 409, 410}}},
    {"WhatIsThereIsFoundInAnyGroup",
     1,
     {},
     {406, 411, 412},
     {{406, 411}, {7, 412, 402, 403, 404, 405, 407, 408, 409, 410}}},
    {"Version5LeavesToDevWhereItIs", 5, {}, {412}, {{412}, {7, 402, 403, 404, 411, 405, 406, 407, 408, 409, 410}}},
};

class NetParameterSendUpgrade : public NetParameterSendNode, public testing::WithParamInterface<Upgrade> {};

INSTANTIATE_TEST_SUITE_P(Sets, NetParameterSendUpgrade, testing::ValuesIn(UPGRADES), TestName<Upgrade>);

TEST_P(NetParameterSendUpgrade, ParametersAreAddedAndMoved) {
    auto* pFirst = new VEKParamGroup;
    for (const unsigned nId : GetParam().firstGroup) {
        pFirst->m_lstParam.AddTail(Input(nId).Clone());
        m_scene.RemoveInput(nId);
    }
    if (pFirst->m_lstParam.IsEmpty()) {
        delete pFirst;
    } else {
        Groups().AddHead(pFirst);
    }
    for (const unsigned nId : GetParam().missing) {
        m_scene.RemoveInput(nId);
    }
    Input(VERSION).m_nValue = GetParam().nVersion;
    if (GetParam().nVersion == 0) {
        m_scene.RemoveInput(VERSION);
    }
    m_scene.m_pNode->InitParam();
    std::vector<Ids> ids;
    for (const auto& group : CellsOf(Groups())) {
        ids.emplace_back();
        for (const auto& param : group["params"]) {
            ids.back().push_back(param["id"]);
        }
    }
    EXPECT_EQ(ids, GetParam().upgraded);
    if (GetParam().nVersion != 0) {
        EXPECT_EQ(Input(VERSION).m_nValue, 5);
    }
}

TEST_F(NetParameterSendNode, AddedParametersAreAsTheirRowsSay) {
    auto expected = CellsOf(Groups());
    auto& params = expected[0]["params"];
    params[1]["flags"] = params[5]["flags"] = {0, 0, 1, 0};
    params[1].erase("integer"); // ToDev is added off
    params[2]["available"] = params[3]["available"] = 0;
    m_scene.RemoveInput(LAYER);
    m_scene.RemoveInput(TO_DEV);
    Input(VERSION).m_nValue = 1;
    NameDevice(L"3");
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(TextOf(Groups()), TextOf(expected));
}

TEST_F(NetParameterSendNode, AnUpgradeLeavesNoValueToTheHost) {
    m_scene.RemoveInput(LAYER);
    m_scene.RemoveInput(TO_DEV);
    Input(VERSION).m_nValue = 1;
    const CarelessHost host;
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(Input(LAYER).m_nValue, 1);
    EXPECT_EQ(Input(TO_DEV).m_nValue, 0);
}

TEST_F(NetParameterSendNode, SetsBeforeVersion4OfferTheDeviceAsToDevSays) {
    for (const int nVersion : {3, 4}) {
        for (const int bToDev : {1, 0}) {
            SCOPED_TRACE(std::to_string(nVersion) + ", ToDev " + std::to_string(bToDev));
            NameDevice(L"3");
            Input(DEV_ID).m_bAvailable = Input(DEV_NAME).m_bAvailable = nVersion == 4;
            Input(VERSION).m_nValue = nVersion;
            Input(TO_DEV).m_nValue = bToDev;
            m_scene.m_pNode->InitParam();
            ExpectDeviceNamed(nVersion == 4 || bToDev == 1);
        }
    }
}

TEST_F(NetParameterSendNode, ASavedLayerBeyondTheChoicesIsTheLast) {
    for (const auto& [nSaved, nLoaded] : {std::pair{16, 16}, {17, 16}, {20, 16}, {0, 0}}) {
        Input(LAYER).m_nValue = nSaved;
        m_scene.m_pNode->InitParam();
        EXPECT_EQ(Input(LAYER).m_nValue, nLoaded) << nSaved;
    }
}

// ---- Sending -------------------------------------------------------------------------------------------------------

TEST_F(NetParameterSendNode, SendsTheRecordToTheDevice) {
    m_devices.Add(2, L"Other");
    m_devices.Add(3, L"Wall");
    m_devices.Publish();
    Input(DEV_ID).m_strValue = L" 3rd";
    Input(DEV_NAME).m_strValue = L"not the device's";
    Input(CLIP_NAME).m_strValue = L"Intro";
    Input(NAME_OF_GROUP).m_strValue = L"group";
    Input(KEY_NAME).m_strValue = L"own";
    m_scene.AddGraphInput(KEY_NAME, 1, 6).m_strValue = L"graph's";
    Input(KEY_NUMBER).m_nValue = 42;
    Input(KEY_VALUE).m_strValue = L"value";
    Input(HELP_PARAMETER).m_strValue = L"help";
    Input(LAYER).m_nValue = 7;
    const std::vector<SentItem> sent = Sent();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].nDevice, 3);
    EXPECT_EQ(sent[0].nCommandCode, 50);
    EXPECT_EQ(sent[0].pClip, &m_scene.m_clip);
    const CQORPanelRemoteCtrlData& record = sent[0].record;
    EXPECT_EQ(Utf8(record.m_strDevID), "3");
    EXPECT_EQ(Utf8(record.m_strDevName), "Wall");
    EXPECT_EQ(Utf8(record.m_strClipName), "Intro");
    EXPECT_EQ(Utf8(record.m_strGroupName), "group");
    EXPECT_EQ(Utf8(record.m_strKeyName), "graph's");
    EXPECT_EQ(record.m_nKeyNumber, 42);
    EXPECT_EQ(Utf8(record.m_strHelpParameter), "help");
    EXPECT_EQ(Utf8(record.m_strKeyValue), "value");
    EXPECT_EQ(record.m_nLayer, 3);
    ExpectSilence({SENT});
}

TEST_F(NetParameterSendNode, LayerChoicesAreSentAsLayerNumbers) {
    m_devices.Add(0, L"");
    m_devices.Publish();
    NameDevice(L"0");
    // The graph may supply what is no choice, from 17 on and below 0.
    const std::pair<int, int> LAYERS[] = {{0, -1},          {1, 0},           {2, 2147483446},  {3, -1023},
                                          {4, -1022},       {5, 1},           {6, 2},           {14, 10},
                                          {15, 2147483447}, {16, 2147483448}, {17, 2147483449}, {215, INT_MAX},
                                          {216, INT_MIN},   {INT_MAX, -217},  {-1, -1},         {INT_MIN, -1}};
    for (const auto& [nChoice, nLayer] : LAYERS) {
        Input(LAYER).m_nValue = nChoice;
        const std::vector<SentItem> sent = Sent();
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
    const std::vector<SentItem> sent = Sent();
    ASSERT_EQ(sent.size(), 3u);
    EXPECT_EQ(Utf8(sent[0].record.m_strDevID), "9");
    EXPECT_EQ(Utf8(sent[1].record.m_strDevName), "One");
    EXPECT_EQ(Utf8(sent[2].record.m_strDevID), "5");
    ExpectSilence({SENT});
}

TEST_F(NetParameterSendNode, SendingToAllNeedsDevices) {
    Input(TO_DEV).m_nValue = 0;
    Sent(); // no list
    ExpectSilence({NO_DEVICE});
    m_devices.Publish();
    Sent(); // an empty one
    ExpectSilence({NO_DEVICE});
}

TEST_F(NetParameterSendNode, SendingToOneNeedsItsId) {
    m_devices.Add(0, L"Zero");
    m_devices.Publish();
    EXPECT_TRUE(Sent().empty());
    ExpectSilence({NO_DEVICE_ID});
    NameDevice(L"4");
    EXPECT_TRUE(Sent().empty());
    ExpectSilence({NO_DEVICE});
    NameDevice(L"abc"); // reads as 0
    EXPECT_EQ(Sent().size(), 1u);
    ExpectSilence({SENT});
    m_scene.RemoveInput(DEV_ID);
    for (const int bToDev : {1, 0}) { // also to all, though it isn't read then
        Input(TO_DEV).m_nValue = bToDev;
        EXPECT_TRUE(Sent().empty());
        ExpectSilence({NO_DEVICE_ID});
    }
}

TEST_F(NetParameterSendNode, ARefusedItemChangesNothing) {
    m_devices.Add(3, L"Wall");
    m_devices.Publish();
    m_devices.RefuseAll();
    NameDevice(L"3");
    Sent();
    ExpectSilence({SENT});
}

// ---- The panel -----------------------------------------------------------------------------------------------------

TEST_F(NetParameterSendNode, AnEvaluationShowsOrHidesTheDeviceWhenToDevChanges) {
    NameDevice(L"3");
    Input(DEV_ID).m_bAvailable = 0;
    ExpectRedrawn(false, false);
    m_scene.Evaluate(); // ToDev starts on, the node's idea of it off
    ExpectDeviceNamed(true);
    ExpectRedrawn(true, true);
    m_scene.Evaluate();
    ExpectRedrawn(false, false);
    m_scene.AddGraphInput(TO_DEV, 5, 5).m_nValue = 0;
    m_scene.Evaluate();
    ExpectDeviceNamed(false);
    ExpectRedrawn(true, true);
}

TEST_F(NetParameterSendNode, PostsOnlyWithNotificationWindowAndMessage) {
    m_scene.m_pNode->m_nNotifyMsg = 0;
    m_scene.Evaluate();
    ExpectRedrawn(true, false);
    m_scene.m_pNode->m_nNotifyMsg = NOTIFY_MESSAGE;
    m_scene.m_pNode->m_hNotifyWnd = nullptr;
    Input(TO_DEV).m_nValue = 0;
    m_scene.Evaluate();
    ExpectRedrawn(true, false);
}

} // namespace
