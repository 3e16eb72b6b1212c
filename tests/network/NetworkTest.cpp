#include "NetworkTest.h"

CQORPanelRemoteCtrlData SampleRecord() {
    CQORPanelRemoteCtrlData record;
    record.m_strDevID = L"12";
    record.m_strDevName = L"Wall \"left\"";
    record.m_strClipName = L"Intro";
    record.m_strGroupName = L"Lower third & more";
    record.m_strKeyName = L"<score>";
    record.m_nKeyNumber = 1000000000;
    record.m_strHelpParameter = L"line 1\r\nline 2\tend";
    record.m_strKeyValue = L"\u6bd4\u5206 \u00e9 2:1";
    record.m_nLayer = -1023;
    return record;
}

void ExpectSameRecord(const CQORPanelRemoteCtrlData& record, const CQORPanelRemoteCtrlData& expected) {
    EXPECT_EQ(Utf8(record.m_strDevID), Utf8(expected.m_strDevID));
    EXPECT_EQ(Utf8(record.m_strDevName), Utf8(expected.m_strDevName));
    EXPECT_EQ(Utf8(record.m_strClipName), Utf8(expected.m_strClipName));
    EXPECT_EQ(Utf8(record.m_strGroupName), Utf8(expected.m_strGroupName));
    EXPECT_EQ(Utf8(record.m_strKeyName), Utf8(expected.m_strKeyName));
    EXPECT_EQ(record.m_nKeyNumber, expected.m_nKeyNumber);
    EXPECT_EQ(Utf8(record.m_strHelpParameter), Utf8(expected.m_strHelpParameter));
    EXPECT_EQ(Utf8(record.m_strKeyValue), Utf8(expected.m_strKeyValue));
    EXPECT_EQ(record.m_nLayer, expected.m_nLayer);
}
