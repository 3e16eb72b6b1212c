// The device JSON receive node: whose texts it takes, and when the texts must hold its keys and values.
#include "HostCalls.h"
#include "ModuleHost.h"

namespace {

enum : unsigned {
    DEVICE_ID = 1402,
    CHECK_KEY_VALUE = 1403,
    KEY_1 = 1404,
    VALUE_1 = 1405,
    KEY_3 = 1408,
    VALUE_3 = 1409,
    RECEIVE_DATA = 1452,
};

const LogLine TAKEN = Information("[Clip.Graph.Node 触发[接收设备json]事件]");
const std::vector<LogLine> NOT_PARSED = {Error("[Clip.Graph.Node]DevIOEventOccurred:JSON解析失败")};
const std::vector<LogLine> NO_OBJECT = {Error("[Clip.Graph.Node]DevIOEventOccurred:不是JSON对象")};

class DeviceJsonReceiveNode : public ModuleTest {
protected:
    DeviceJsonReceiveNode() { m_scene.Evaluate(); }

    int Send(const CString& strText, int nDeviceId = 1) {
        SDeviceTextData text;
        text.m_nDeviceId = nDeviceId;
        text.m_strText = strText;
        return m_scene.Send(5, 0, &text);
    }

    /// Ask for pairs of a key and a value.
    void Check(std::initializer_list<const wchar_t*> texts) {
        m_scene.Input(CHECK_KEY_VALUE).m_nValue = 1;
        unsigned nId = KEY_1;
        for (const wchar_t* pszText : texts) {
            m_scene.Input(nId++).m_strValue = pszText;
        }
        for (; nId <= VALUE_3; ++nId) {
            m_scene.Input(nId).m_strValue.Empty();
        }
    }

    void ExpectTaken(const CString& strText) {
        SCOPED_TRACE(Utf8(strText));
        EXPECT_EQ(Send(strText), 1);
        EXPECT_EQ(Utf8(m_scene.Output(RECEIVE_DATA).m_strValue), Utf8(strText));
        ExpectReported(m_scene, 1453, TAKEN);
    }

    /// Refused with these log lines, and the output is what it was.
    void ExpectRefused(const CString& strText, const std::vector<LogLine>& log = {}, int nDeviceId = 1) {
        SCOPED_TRACE(Utf8(strText));
        m_scene.Output(RECEIVE_DATA).m_strValue = L"before";
        EXPECT_EQ(Send(strText, nDeviceId), 0);
        ExpectSilence(log);
        EXPECT_EQ(Utf8(m_scene.Output(RECEIVE_DATA).m_strValue), "before");
    }

    void ExpectAllTaken(std::initializer_list<const wchar_t*> texts) {
        for (const wchar_t* pszText : texts) {
            ExpectTaken(pszText);
        }
    }

    void ExpectAllRefused(std::initializer_list<const wchar_t*> texts, const std::vector<LogLine>& log = {}) {
        for (const wchar_t* pszText : texts) {
            ExpectRefused(pszText, log);
        }
    }

    NodeScene m_scene{m_host, TYPE_DEVICE_JSON_RECEIVE};
};

// ---- Whose texts it takes ------------------------------------------------------------------------------------------

TEST_F(DeviceJsonReceiveNode, AnotherDevicesTextIsRefusedSilently) {
    for (const int nDeviceId : {2, 0, -1, 10001, 0x10001}) {
        ExpectRefused(L"{}", {}, nDeviceId);
        ExpectRefused(L"no JSON", {}, nDeviceId);
    }
    m_scene.Input(DEVICE_ID).m_nValue = 2;
    ExpectRefused(L"{}");
    EXPECT_EQ(Send(L"{}", 2), 1) << "without another evaluation";
}

TEST_F(DeviceJsonReceiveNode, TheGraphsInputsComeFirst) {
    m_scene.AddGraphInput(DEVICE_ID, 2, 1).m_nValue = 7;
    ExpectRefused(L"{}");
    EXPECT_EQ(Send(L"{}", 7), 1);
    m_scene.AddGraphInput(CHECK_KEY_VALUE, 5, 1).m_nValue = 1;
    m_scene.AddGraphInput(KEY_3, 1, 6).m_strValue = L"cmd";
    m_scene.AddGraphInput(VALUE_3, 1, 6).m_strValue = L"start";
    EXPECT_EQ(Send(LR"({"cmd":"stop"})", 7), 0);
    EXPECT_EQ(Send(LR"({"cmd":"start"})", 7), 1);
}

// ---- Without the check ---------------------------------------------------------------------------------------------

TEST_F(DeviceJsonReceiveNode, WithoutTheCheckAnyTextOfJsonGoesOutAsItCame) {
    m_scene.Input(KEY_1).m_strValue = L"cmd"; // decides nothing while the check is off
    m_scene.Input(VALUE_1).m_strValue = L"start";
    ExpectAllTaken({L"{\"cmd\":\"stop\"}", L"[1,2]", L"0", L" { \"b\" : 1.0 ,\r\n\t\"a\" : 1e2, \"b\" : 2 } \n",
                    L"\"\\u4f60\\/\"", L"{\"名\":\"值😀\"}", L"[1]", L"[1]"}); // the same text fires again
    ExpectAllRefused({L"null", L"", L"no JSON"}, NOT_PARSED);
}

// ---- With the check ------------------------------------------------------------------------------------------------

TEST_F(DeviceJsonReceiveNode, TheCheckWantsAnObject) {
    Check({});
    ExpectAllRefused({L"[1,2]", L"[]", L"\"text\"", L"0", L"true", L"false", L"[{\"cmd\":\"start\"}]"}, NO_OBJECT);
    ExpectAllRefused({L"null", L"no JSON", L"", L"{"}, NOT_PARSED);
    ExpectRefused(L"[1,2]", {}, 2);
    for (const int nOn : {2, -1}) {
        m_scene.Input(CHECK_KEY_VALUE).m_nValue = nOn;
        ExpectRefused(L"[1,2]", NO_OBJECT);
    }
}

TEST_F(DeviceJsonReceiveNode, WithAllKeysEmptyAnyObjectIsTaken) {
    Check({});
    ExpectAllTaken({L"{}", L"{\"cmd\":\"start\"}"});
    Check({L"", L"ignored", L"", L"ignored", L"", L"ignored"});
    ExpectTaken(L"{}");
}

TEST_F(DeviceJsonReceiveNode, OnePairDecides) {
    Check({L"cmd", L"start"});
    ExpectAllTaken({L"{\"cmd\":\"start\"}", L"{\"other\":[1,{\"cmd\":\"stop\"}],\"cmd\":\"start\",\"more\":null}"});
    ExpectAllRefused({L"{\"cmd\":\"stop\"}", L"{}", L"{\"command\":\"start\"}", L"{\"cm\":\"start\"}",
                      L"{\"cmd\":\"start \"}", L"{\"cmd\":\"star\"}", L"{\"cmd\":[\"start\"]}",
                      L"{\"a\":{\"cmd\":\"start\"}}", L"{\"cmd\":null}", L"{\"start\":\"cmd\"}", L"{\"CMD\":\"start\"}",
                      L"{\"cmd\":\"START\"}", L"{\" cmd\":\"start\"}"});
    Check({L"命令", L"开始😀"});
    ExpectAllTaken({L"{\"命令\":\"开始😀\"}", L"{\"\\u547d\\u4ee4\":\"\\u5f00\\u59cb\\ud83d\\ude00\"}"});
    ExpectRefused(L"{\"命令\":\"开始\"}");
}

TEST_F(DeviceJsonReceiveNode, AnEmptyValueWantsAnEmptyText) {
    Check({L"cmd", L""});
    ExpectTaken(L"{\"cmd\":\"\"}");
    ExpectAllRefused({L"{\"cmd\":\"start\"}", L"{}", L"{\"cmd\":null}", L"{\"cmd\":[]}"});
}

TEST_F(DeviceJsonReceiveNode, AllPairsMustMatch) {
    const wchar_t* const pszText = L"{\"c\":\"3\",\"a\":\"1\",\"b\":\"2\"}";
    Check({L"a", L"1", L"b", L"2", L"c", L"3"});
    ExpectTaken(pszText);
    for (unsigned nId = KEY_1; nId <= VALUE_3; ++nId) {
        SCOPED_TRACE(nId);
        const CString strRight = std::exchange(m_scene.Input(nId).m_strValue, CString(L"x"));
        ExpectRefused(pszText);
        m_scene.Input(nId).m_strValue = strRight;
    }
    ExpectTaken(pszText);
}

TEST_F(DeviceJsonReceiveNode, APairWithoutAKeyIsSkipped) {
    Check({L"", L"ignored", L"b", L"2"});
    ExpectTaken(L"{\"b\":\"2\"}");
    ExpectRefused(L"{\"b\":\"1\"}");
    Check({L"a", L"1", L"", L"ignored", L"c", L"3"});
    ExpectAllTaken({L"{\"a\":\"1\",\"c\":\"3\"}", L"{\"\":\"anything\",\"a\":\"1\",\"c\":\"3\"}"});
    ExpectRefused(L"{\"a\":\"1\"}");
}

TEST_F(DeviceJsonReceiveNode, OfMembersOfOneNameTheFirstCounts) {
    Check({L"a", L"1"});
    ExpectTaken(L"{\"a\":\"1\",\"a\":\"2\"}");
    ExpectRefused(L"{\"a\":\"2\",\"a\":\"1\"}");
    ExpectTaken(LR"({"\u0061":"1","a":"2"})"); // names are compared by what they mean
    CString strMany = L"{\"a\":\"1\"";
    for (int i = 0; i < 100; ++i) {
        strMany += L",\"a\":\"2\"";
    }
    ExpectTaken(strMany + L"}");
    Check({L"a", L"1", L"a", L"2"});
    ExpectRefused(L"{\"a\":\"1\",\"a\":\"2\"}");
}

TEST_F(DeviceJsonReceiveNode, FewerValuesThanKeysRaiseInvalidArgument) {
    Check({L"b", L"2"});
    {
        const LostLastValue lost;
        EXPECT_TRUE(RaisesInvalidArgument([this] { Send(L"{\"a\":\"1\",\"b\":\"2\"}"); }));
    }
    ExpectSilence();
    ExpectTaken(L"{\"a\":\"1\",\"b\":\"2\"}");
}

} // namespace
