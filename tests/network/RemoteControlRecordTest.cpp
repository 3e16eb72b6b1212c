// The remote-control record: its XML text, and its way through an archive.
#include <string>

#include "NetworkTest.h"

namespace {

const char* const SAMPLE_XML =
    "<PanelRemoteCtrl DevID=\"12\" DevName=\"Wall &quot;left&quot;\" ClipName=\"Intro\" GroupName=\"Lower third &amp; "
    "more\" KeyName=\"&lt;score&gt;\" KeyNumber=\"1000000000\" HelpParameter=\"line 1&#13;&#10;line 2&#9;end\" "
    "KeyValue=\"\u6bd4\u5206 \u00e9 2:1\" Layer=\"-1023\"/>\r\n";

std::string Replaced(std::string text, const std::string& old, const std::string& with) {
    const size_t nPlace = text.find(old);
    EXPECT_NE(nPlace, std::string::npos) << old;
    return text.replace(nPlace, old.size(), with);
}

TEST(RemoteControlRecord, StartsEmpty) {
    const CQORPanelRemoteCtrlData record;
    EXPECT_TRUE(record.m_strDevID.IsEmpty());
    EXPECT_EQ(record.m_nKeyNumber, 0);
    EXPECT_EQ(record.m_nLayer, 0);
}

TEST(RemoteControlRecord, XmlHoldsTheNineFieldsInStoredOrder) {
    EXPECT_EQ(Utf8(SampleRecord().GetXmlDoc()), SAMPLE_XML);
}

TEST(RemoteControlRecord, ReadsItsXmlBack) {
    CQORPanelRemoteCtrlData record;
    ASSERT_TRUE(record.SetXmlDoc(FromUtf8(SAMPLE_XML)));
    ExpectSameRecord(record, SampleRecord());
}

TEST(RemoteControlRecord, EveryCharacterOfTheCodePageReadsBackFromEachText) {
    CString strAll;
    for (const wchar_t c : CodePageCharacters()) {
        strAll += c;
    }
    CString CQORPanelRemoteCtrlData::*const FIELDS[] = {
        &CQORPanelRemoteCtrlData::m_strDevID,    &CQORPanelRemoteCtrlData::m_strDevName,
        &CQORPanelRemoteCtrlData::m_strClipName, &CQORPanelRemoteCtrlData::m_strGroupName,
        &CQORPanelRemoteCtrlData::m_strKeyName,  &CQORPanelRemoteCtrlData::m_strHelpParameter,
        &CQORPanelRemoteCtrlData::m_strKeyValue};
    for (const auto pField : FIELDS) {
        CQORPanelRemoteCtrlData record = SampleRecord();
        record.*pField = strAll;
        CQORPanelRemoteCtrlData read;
        ASSERT_TRUE(read.SetXmlDoc(record.GetXmlDoc()));
        ExpectSameRecord(read, record);
    }
}

TEST(RemoteControlRecord, NumbersReadBackOverTheirWholeRange) {
    for (const int nNumber : {0, 1, -1, 2147483647, -2147483647 - 1}) {
        CQORPanelRemoteCtrlData record;
        record.m_nKeyNumber = nNumber;
        record.m_nLayer = nNumber;
        CQORPanelRemoteCtrlData read;
        ASSERT_TRUE(read.SetXmlDoc(record.GetXmlDoc()));
        EXPECT_EQ(read.m_nKeyNumber, nNumber);
        EXPECT_EQ(read.m_nLayer, nNumber);
    }
}

TEST(RemoteControlRecord, RefusesOtherTextsAndStaysAsItWas) {
    const std::string texts[] = {
        "",
        "Intro",
        "<PanelRemoteCtrl/>",
        Replaced(SAMPLE_XML, "PanelRemoteCtrl", "Broadcast"),
        Replaced(SAMPLE_XML, " KeyName=", " Keyname="),
        Replaced(SAMPLE_XML, " Layer=\"-1023\"", ""),
        Replaced(SAMPLE_XML, "-1023", ""),
        Replaced(SAMPLE_XML, "-1023", "front"),
        Replaced(SAMPLE_XML, "-1023", "12x"),
        Replaced(SAMPLE_XML, "1000000000", "2147483648"),
        Replaced(SAMPLE_XML, "/>", ""),
        Replaced(SAMPLE_XML, "/>", "><More/></PanelRemoteCtrl>"),
        Replaced(SAMPLE_XML, "/>", ">text</PanelRemoteCtrl>"),
        std::string(SAMPLE_XML) + SAMPLE_XML,
        std::string("text ") + SAMPLE_XML,
        std::string(SAMPLE_XML) + "text",
        std::string("<Outer>") + SAMPLE_XML + "</Outer>",
        SAMPLE_XML + std::string(1, '\0'),
        SAMPLE_XML + std::string("\0junk", 5),
        SAMPLE_XML + std::string(1, '\0') + SAMPLE_XML,
        std::string("<?play now?>") + SAMPLE_XML,
        std::string(SAMPLE_XML) + "<?play now?>",
        std::string("<!DOCTYPE PanelRemoteCtrl>") + SAMPLE_XML,
        Replaced(SAMPLE_XML, " Layer=", " DevID=\"13\" Layer="),
        Replaced(SAMPLE_XML, " Layer=", " Extra=\"1\" Extra=\"2\" Layer="),
        Replaced(SAMPLE_XML, "Intro", "&intro;"),
        Replaced(SAMPLE_XML, "Intro", "In & tro"),
        Replaced(SAMPLE_XML, "Intro", "In&amptro"),
        Replaced(SAMPLE_XML, "Intro", "Intro&"),
        Replaced(SAMPLE_XML, "Intro", "In<tro"),
        Replaced(SAMPLE_XML, "Intro", "In&#0;tro"),
        Replaced(SAMPLE_XML, "Intro", "In&#;tro"),
        Replaced(SAMPLE_XML, "Intro", "In&#x;tro"),
        Replaced(SAMPLE_XML, "Intro", "In&#12a;tro"),
        Replaced(SAMPLE_XML, "Intro", "In&#-1;tro"),
        Replaced(SAMPLE_XML, "Intro", "In&#xD800;tro"),
        Replaced(SAMPLE_XML, "Intro", "In&#x110000;tro"),
        Replaced(SAMPLE_XML, "Intro", "In&#99999999999;tro"),
        Replaced(SAMPLE_XML, " Layer=", " Extra=\"&intro;\" Layer="),
    };
    for (const std::string& text : texts) {
        CQORPanelRemoteCtrlData record = SampleRecord();
        record.m_strDevID = L"kept";
        CQORPanelRemoteCtrlData expected = record;
        EXPECT_FALSE(record.SetXmlDoc(FromUtf8(text))) << text;
        ExpectSameRecord(record, expected);
    }
}

TEST(RemoteControlRecord, TakesADeclarationCommentsAndOtherOrder) {
    CQORPanelRemoteCtrlData record;
    EXPECT_TRUE(record.SetXmlDoc(FromUtf8("<?xml version=\"1.0\"?>\n<!-- x -->\n" + std::string(SAMPLE_XML))));
    const std::string reordered =
        Replaced(Replaced(SAMPLE_XML, " Layer=\"-1023\"", ""), " DevID", " Layer=\"-1023\" Extra=\"1\" DevID");
    EXPECT_TRUE(record.SetXmlDoc(FromUtf8(reordered)));
    ExpectSameRecord(record, SampleRecord());
}

TEST(RemoteControlRecord, TakesReferencesOfEveryForm) {
    CQORPanelRemoteCtrlData record;
    EXPECT_FALSE(record.SetXmlDoc(FromUtf8(Replaced(SAMPLE_XML, "Intro", "&#X4e2d;")))); // a capital X is none
    ASSERT_TRUE(record.SetXmlDoc(
        FromUtf8(Replaced(SAMPLE_XML, "Intro", "&apos;&#39;&#x27;&#x4E2d;&#0000065;&amp;amp;&#x1F600;&#x10FFFF;"))));
    EXPECT_EQ(Utf8(record.m_strClipName), "'''\u4e2dA&amp;\U0001F600\U0010FFFF");
    // The last and the first character of each length in bytes.
    ASSERT_TRUE(record.SetXmlDoc(
        FromUtf8(Replaced(SAMPLE_XML, "Intro", "&#x7F;&#x80;&#x7FF;&#x800;&#xD7FF;&#xE000;&#xFFFF;&#x10000;"))));
    EXPECT_EQ(Utf8(record.m_strClipName), "\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000");
}

TEST(RemoteControlRecord, LineEndsAndTabsWithinAValueAreSpaces) {
    CQORPanelRemoteCtrlData record;
    ASSERT_TRUE(record.SetXmlDoc(FromUtf8(Replaced(SAMPLE_XML, "Intro", "a\tb\nc\r\nd&#9;&#10;"))));
    EXPECT_EQ(Utf8(record.m_strClipName), "a b c d\t\n");
}

TEST(RemoteControlRecord, GoesThroughAnArchive) {
    CMemFile file;
    CQORPanelRemoteCtrlData second = SampleRecord();
    second.m_strKeyValue = CString(L'x', 100000);
    CArchive store(&file, CArchive::store);
    SampleRecord().Save(store);
    second.Save(store);
    store.Close();

    file.SeekToBegin();
    CArchive load(&file, CArchive::load);
    CQORPanelRemoteCtrlData read;
    read.Load(load);
    ExpectSameRecord(read, SampleRecord());
    read.Load(load);
    ExpectSameRecord(read, second);
}

int LoadCause(CFile& file, CQORPanelRemoteCtrlData& record) {
    file.SeekToBegin();
    CArchive load(&file, CArchive::load);
    try {
        record.Load(load);
    } catch (CArchiveException* pException) {
        const int nCause = pException->m_cause;
        pException->Delete();
        return nCause;
    }
    return CArchiveException::none;
}

TEST(RemoteControlRecord, ABrokenArchiveRaisesAndChangesNothing) {
    CQORPanelRemoteCtrlData record = SampleRecord();

    CMemFile other;
    CArchive storeOther(&other, CArchive::store);
    storeOther << CString(L"<Broadcast/>");
    EXPECT_EQ(LoadCause(other, record), CArchiveException::badClass);

    CMemFile cut;
    CArchive storeCut(&cut, CArchive::store);
    SampleRecord().Save(storeCut);
    cut.SetLength(cut.GetLength() - 1);
    EXPECT_EQ(LoadCause(cut, record), CArchiveException::endOfFile);

    ExpectSameRecord(record, SampleRecord());
}

TEST(RemoteControlRecord, TheAttachedDataIsItsSecondBase) {
    CQORPanelRemoteCtrlData record;
    CQORIOAttachedData* pAttached = &record;
    EXPECT_NE(static_cast<void*>(pAttached), static_cast<void*>(&record));
    EXPECT_EQ(static_cast<void*>(static_cast<CBaseNetData*>(&record)), static_cast<void*>(&record));
    EXPECT_EQ(static_cast<CQORPanelRemoteCtrlData*>(pAttached), &record);
}

} // namespace
