// The net parameter receive node: which records it takes, what they change.
#include "ModuleHost.h"
#include "host/RemoteControlRecord.h"

namespace {

enum : unsigned {
    VERSION = 7,
    NAME_OF_GROUP = 502,
    KEY_NAME = 503,
    KEY_NUMBER = 504,
    KEY_VALUE = 552,
    HELP_PARAMETER = 553,
};

class NetParameterReceiveNode : public ModuleTest {
protected:
    NetParameterReceiveNode() {
        m_scene.Input(NAME_OF_GROUP).m_strValue = m_record.m_strGroupName = L"group";
        m_scene.Input(KEY_NAME).m_strValue = m_record.m_strKeyName = L"key";
        m_scene.Input(KEY_NUMBER).m_nValue = m_record.m_nKeyNumber = 42;
        m_record.m_strClipName = L"Clip";
        m_record.m_strKeyValue = L"value";
        m_record.m_strHelpParameter = L"help";
        m_scene.Evaluate();
    }

    int Send(int nDevice = 2, int nEvent = 0) {
        return m_scene.Send(nDevice, nEvent, static_cast<CQORIOAttachedData*>(&m_record));
    }

    std::string Output(unsigned nId) const { return Utf8(m_scene.Output(nId).m_strValue); }

    NodeScene m_scene{m_host, TYPE_NET_PARAMETER_RECEIVE};
    CQORPanelRemoteCtrlData m_record;
};

TEST_F(NetParameterReceiveNode, AMatchingRecordSetsTheOutputsAndFires) {
    m_record.m_strDevID = L"77"; // device and layer don't matter
    m_record.m_strDevName = L"any";
    m_record.m_nLayer = 12;
    EXPECT_EQ(Send(), 1);
    EXPECT_EQ(Output(KEY_VALUE), "value");
    EXPECT_EQ(Output(HELP_PARAMETER), "help");
    ExpectReported(m_scene, 554, Information("[Clip.Graph.Node 触发[网络触发]事件]"));
}

TEST_F(NetParameterReceiveNode, EveryPartOfTheAddressMustMatch) {
    const CQORPanelRemoteCtrlData matching = m_record;
    const auto ExpectRefused = [&] {
        EXPECT_EQ(Send(), 0);
        EXPECT_EQ(Output(KEY_VALUE) + Output(HELP_PARAMETER), "");
        m_record = matching;
    };
    m_record.m_strClipName = L"clip"; // compared exactly
    ExpectRefused();
    m_record.m_strGroupName = L"Group";
    ExpectRefused();
    m_record.m_strKeyName = L"key ";
    ExpectRefused();
    m_record.m_nKeyNumber = 43;
    ExpectRefused();
    ExpectSilence();
    m_scene.Input(KEY_NUMBER).m_nValue = m_record.m_nKeyNumber = 0; // a number as any other
    EXPECT_EQ(Send(), 1);
}

TEST_F(NetParameterReceiveNode, AddressesAreComparedBeyondAZeroInside) {
    const std::pair<CString*, CString*> TEXTS[] = {{&m_record.m_strClipName, &m_scene.m_clip.m_strName},
                                                   {&m_record.m_strGroupName, &m_scene.Input(NAME_OF_GROUP).m_strValue},
                                                   {&m_record.m_strKeyName, &m_scene.Input(KEY_NAME).m_strValue}};
    for (const auto& [pSent, pOwn] : TEXTS) {
        SCOPED_TRACE(Utf8(*pOwn));
        *pSent = *pOwn + CString(L"\0", 1);
        EXPECT_EQ(Send(), 0);
        *pOwn += CString(L"\0a", 2);
        EXPECT_EQ(Send(), 0);
        *pSent = *pOwn;
        EXPECT_EQ(Send(), 1);
    }
}

TEST_F(NetParameterReceiveNode, InitParamHidesFormerInputsOfOlderSets) {
    CList<VEKParam*>& lstParam = m_scene.m_pNode->m_lstParamGroup.GetHead()->m_lstParam;
    lstParam.AddTail(new VEKParam(505, L"", L"", 1, 6));
    lstParam.AddTail(new VEKParam(506, L"", L"", 1, 6));
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(m_scene.Input(505).m_bAvailable, 1);
    m_scene.Input(VERSION).m_nValue = 2;
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(m_scene.Input(505).m_bAvailable, 0);
    EXPECT_EQ(m_scene.Input(506).m_bAvailable, 0);
    EXPECT_EQ(m_scene.Input(VERSION).m_nValue, 3);

    m_scene.Input(506).m_bAvailable = 1;
    m_scene.RemoveInput(VERSION);
    m_scene.m_pNode->InitParam();
    EXPECT_EQ(m_scene.Input(506).m_bAvailable, 0) << "without a version, too";
}

} // namespace
