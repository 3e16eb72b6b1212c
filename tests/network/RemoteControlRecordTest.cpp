// The remote-control record: its XML text, and its way through an archive.
#include <string>
#include <vector>

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

TEST(RemoteControlRecord, XmlHoldsTheNineFieldsInStoredOrder) {
    EXPECT_EQ(Utf8(SampleRecord().GetXmlDoc()), SAMPLE_XML);
    CQORPanelRemoteCtrlData record;
    EXPECT_EQ(record.m_nKeyNumber, 0);
    EXPECT_EQ(record.m_nLayer, 0);
    ASSERT_TRUE(record.SetXmlDoc(FromUtf8(SAMPLE_XML)));
    ExpectSameRecord(record, SampleRecord());
}

TEST(RemoteControlRecord, EveryTextAndNumberReadsBack) {
    CQORPanelRemoteCtrlData record = SampleRecord();
    for (wchar_t c = 1; c < 0xD800; ++c) {
        record.m_strKeyValue += c;
    }
    for (const int nNumber : {0, -1, 2147483647, -2147483647 - 1}) {
        record.m_nKeyNumber = nNumber;
        record.m_nLayer = nNumber;
        CQORPanelRemoteCtrlData read;
        ASSERT_TRUE(read.SetXmlDoc(record.GetXmlDoc()));
        ExpectSameRecord(read, record);
    }
}

TEST(RemoteControlRecord, RefusesOtherTextsAndStaysAsItWas) {
    const std::string sample = SAMPLE_XML;
    std::vector<std::string> texts = {"",
                                      "Intro",
                                      "<PanelRemoteCtrl/>",
                                      sample + sample,
                                      "text " + sample,
                                      sample + "text",
                                      "<Outer>" + sample + "</Outer>",
                                      sample + '\0',
                                      sample + std::string("\0junk", 5),
                                      sample + '\0' + sample,
                                      "<?play now?>" + sample,
                                      sample + "<?play now?>",
                                      "<!DOCTYPE PanelRemoteCtrl>" + sample};
    const std::pair<const char*, std::vector<const char*>> changes[] = {
        {"PanelRemoteCtrl", {"Broadcast"}},
        {" KeyName=", {" Keyname="}},
        {" Layer=\"-1023\"", {""}},
        {"-1023", {"", "front", "12x"}},
        {"1000000000", {"2147483648"}},
        {"/>", {"", "><More/></PanelRemoteCtrl>", ">text</PanelRemoteCtrl>"}},
        {" Layer=", {" DevID=\"13\" Layer=", " Extra=\"1\" Extra=\"2\" Layer=", " Extra=\"&intro;\" Layer="}},
        {"Intro",
         {"&intro;", "In & tro", "In&amptro", "Intro&", "In<tro", "In&#0;tro", "In&#;tro", "In&#x;tro", "In&#12a;tro",
          "In&#-1;tro", "In&#xD800;tro", "In&#x110000;tro", "In&#99999999999;tro", "&#X4e2d;"}}, // a capital X is none
    };
    for (const auto& [pszOld, replacements] : changes) {
        for (const char* pszNew : replacements) {
            texts.push_back(Replaced(sample, pszOld, pszNew));
        }
    }
    for (const std::string& text : texts) {
        CQORPanelRemoteCtrlData record = SampleRecord();
        record.m_strDevID = L"kept";
        const CQORPanelRemoteCtrlData expected = record;
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
    const std::pair<const char*, std::string> rows[] = {
        {"&apos;&#39;&#x27;&#x4E2d;&#0000065;&amp;amp;&#x1F600;&#x10FFFF;", "\'\'\'\u4e2dA&amp;\U0001F600\U0010FFFF"},
        // The last and the first character of each length in bytes.
        {"&#x7F;&#x80;&#x7FF;&#x800;&#xD7FF;&#xE000;&#xFFFF;&#x10000;",
         "\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000"},
        {"a\tb\nc\r\nd&#9;&#10;", "a b c d\t\n"}, // line ends and tabs within a value are spaces
    };
    for (const auto& [pszXml, expected] : rows) {
        CQORPanelRemoteCtrlData record;
        ASSERT_TRUE(record.SetXmlDoc(FromUtf8(Replaced(SAMPLE_XML, "Intro", pszXml)))) << pszXml;
        EXPECT_EQ(Utf8(record.m_strClipName), expected);
    }
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

} // namespace
