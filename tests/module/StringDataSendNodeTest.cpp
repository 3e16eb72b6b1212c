// The string data send node: the bytes that it sends to which devices, its panel.
#include "TestDevices.h"

namespace {

using namespace std::string_literals;

enum : unsigned {
    TO_DEV = 1502,
    DEV_ID = 1503,
    DEV_NAME = 1504,
    STRING_DATA = 1505,
    CODE_TYPE = 1506,
    SEND = 1507,
};

const LogLine SENDING = Information("[Clip.Graph.Node]触发发送事件");

/// Devices and the bytes that went there.
using Sent = std::vector<std::pair<int, std::string>>;

class StringDataSendNode : public SendingNodeTest {
protected:
    StringDataSendNode() : SendingNodeTest(TYPE_STRING_DATA_SEND) {
        m_send.m_nValue = 1;
        m_devices.Add(0, L"Zero", ParserKind::Direct);
        m_devices.Add(1000, L"Thousand", ParserKind::Direct);
        m_devices.Add(2, L"Two", ParserKind::Other);
        m_devices.AddNull();
        m_devices.Add(3, L"Three", ParserKind::None);
        m_devices.Publish();
    }

    Sent Evaluated() {
        EXPECT_EQ(m_scene.Evaluate(), 1);
        Sent sent;
        for (const SentItem& item : m_devices.TakeSent()) {
            EXPECT_EQ(item.nCommandCode, -1) << "bytes are sent, no items";
            sent.emplace_back(item.nDevice, item.bytes);
        }
        return sent;
    }

    int UpdateSingle(unsigned nId) { return m_scene.m_pNode->UpdateSingleParamValue(GUID{nId, 0, 0, {}}); }

    VEKParam& m_send = m_scene.AddGraphInput(SEND, 26, 7);
};

TEST_F(StringDataSendNode, SendsTheTextInTheChosenCodePageWithItsZero) {
    const struct {
        int nCodeType;
        CString strText;
        std::string bytes;
    } CASES[] = {
        {0, L"a\u00e9\u20ac\u6bd4", "a\xE9\x80?\0"s}, // "unicode" is the ANSI code page: 1252
        {1, L"a\u00e9\u6bd4", "a\u00e9\u6bd4\0"s},    // "multi-byte" is UTF-8
        {0, L"", "\0"s},
        {1, L"", "\0"s},
        {0, CString(L'x', 10'000), std::string(10'000, 'x') + '\0'},
        {1, CString(L'x', 10), std::string(10, 'x') + '\0'},
        {1, CString(L'x', 30'000), std::string(30'000, 'x') + '\0'},
    };
    for (const auto& row : CASES) {
        Input(CODE_TYPE).m_nValue = row.nCodeType;
        Input(STRING_DATA).m_strValue = row.strText;
        EXPECT_TRUE(Evaluated() == (Sent{{0, row.bytes}})) << row.nCodeType << ", " << row.bytes.substr(0, 20);
        ExpectSilence({SENDING});
    }
    for (const int nCodeType : {2, 5, -1}) {
        Input(CODE_TYPE).m_nValue = nCodeType;
        EXPECT_EQ(Evaluated(), Sent{});
        ExpectSilence({SENDING});
    }
}

TEST_F(StringDataSendNode, SendsToTheDeviceOfItsNumberIfThatTakesBytes) {
    Input(DEV_ID).m_nValue = 1000;
    EXPECT_EQ(Evaluated(), (Sent{{1000, "\0"s}}));
    ExpectSilence({SENDING});
    for (const int nOther : {2, 3}) {
        Input(DEV_ID).m_nValue = nOther;
        EXPECT_EQ(Evaluated(), Sent{}) << nOther;
        ExpectSilence({SENDING});
    }
    Input(DEV_ID).m_nValue = 4;
    EXPECT_EQ(Evaluated(), Sent{});
    ExpectSilence({SENDING, Error("[Clip.Graph.Node]找不到网络播放控制设备")});
}

TEST_F(StringDataSendNode, SendsToAllDevicesThatTakeBytes) {
    Input(TO_DEV).m_nValue = 0;
    EXPECT_EQ(Evaluated(), (Sent{{0, "\0"s}, {1000, "\0"s}}));
    ExpectSilence({SENDING});
    SetNetPlayCtrlDevices(nullptr);
    EXPECT_EQ(Evaluated(), Sent{});
    ExpectSilence({SENDING});
}

TEST_F(StringDataSendNode, InputsMustBeThereEvenUntriggered) {
    m_send.m_nValue = 0;
    EXPECT_EQ(Evaluated(), Sent{});
    m_scene.RemoveInput(STRING_DATA);
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(NodeScene(m_host, TYPE_STRING_DATA_SEND).Evaluate(), 0) << "without \"Send\"";
}

// ---- The panel -----------------------------------------------------------------------------------------------------

TEST_F(StringDataSendNode, AnEditOfToDevRedrawsThePanel) {
    m_send.m_nValue = 0;
    m_scene.Evaluate();
    EXPECT_EQ(UpdateSingle(DEV_ID), 0);
    ExpectRedrawn(false, false); // evaluations leave the panel alone

    EXPECT_EQ(UpdateSingle(TO_DEV), 1);
    EXPECT_EQ(Input(DEV_ID).m_bAvailable, 1);
    ExpectRedrawn(true, true);
    EXPECT_EQ(UpdateSingle(TO_DEV), 1); // no change
    ExpectRedrawn(false, false);

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
    ExpectRedrawn(true, true);
}

} // namespace
