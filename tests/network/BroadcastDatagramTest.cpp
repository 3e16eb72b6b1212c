// Reading broadcasts: what is taken, and the reason of what isn't.
#include <string>

#include "BroadcastDatagram.h"
#include "NetworkTest.h"
#include "host/EventRecord.h"
#include "host/Markup.h"

namespace {

/// The datagram of four texts, as a broadcast send node makes it.
Bytes Datagram(const CString& strFlag, const CString& strClipName, const CString& strName, const CString& strData) {
    CMarkup markup;
    markup.AddElem(L"Broadcast");
    markup.SetAttrib(L"Flag", strFlag);
    markup.SetAttrib(L"ClipName", strClipName);
    markup.SetAttrib(L"Name", strName);
    markup.SetAttrib(L"Data", strData);
    Bytes bytes = AnsiBytes(L"[.{" + markup.GetDoc() + L"}.]");
    bytes.push_back(0);
    return bytes;
}

/// The reason of a refusal; empty for a datagram that is taken.
std::string RefusalOf(const Bytes& datagram) {
    SBroadcastItem item;
    item.m_strFlag = L"kept";
    EBroadcastRefusal nRefusal{};
    if (ReadBroadcast(datagram, item, nRefusal)) {
        return "";
    }
    EXPECT_EQ(Utf8(item.m_strFlag), "kept");
    return BroadcastRefusalName(nRefusal);
}

std::string RefusalOf(std::string_view text) {
    return RefusalOf(ToBytes(text));
}

TEST(BroadcastDatagram, GivesTheFourTexts) {
    SBroadcastItem item;
    EBroadcastRefusal nRefusal{};
    ASSERT_TRUE(ReadBroadcast(
        ToBytes("[.{<Broadcast Flag=\"1\" ClipName=\"Intro\" Name=\"score\" Data=\"12|7\"/>\r\n}.]"), item, nRefusal));
    EXPECT_EQ(Utf8(item.m_strFlag), "1");
    EXPECT_EQ(Utf8(item.m_strClipName), "Intro");
    EXPECT_EQ(Utf8(item.m_strName), "score");
    EXPECT_EQ(Utf8(item.m_strData), "12|7");
}

TEST(BroadcastDatagram, EveryCharacterOfTheCodePageComesBack) {
    CString strAll;
    for (const wchar_t c : CodePageCharacters()) {
        strAll += c;
    }
    SBroadcastItem item;
    EBroadcastRefusal nRefusal{};
    ASSERT_TRUE(ReadBroadcast(Datagram(strAll, strAll + L"2", strAll + L"3", strAll + L"4"), item, nRefusal));
    EXPECT_EQ(Utf8(item.m_strFlag), Utf8(strAll));
    EXPECT_EQ(Utf8(item.m_strClipName), Utf8(strAll + L"2"));
    EXPECT_EQ(Utf8(item.m_strName), Utf8(strAll + L"3"));
    EXPECT_EQ(Utf8(item.m_strData), Utf8(strAll + L"4"));
}

TEST(BroadcastDatagram, TextsMayHoldTheFramesMarks) {
    SBroadcastItem item;
    EBroadcastRefusal nRefusal{};
    ASSERT_TRUE(ReadBroadcast(Datagram(L"}.]", L"[.{", L"\"/>}.]", L"}.]}.]"), item, nRefusal));
    EXPECT_EQ(Utf8(item.m_strName), "\"/>}.]");
    EXPECT_EQ(Utf8(item.m_strData), "}.]}.]");
}

TEST(BroadcastDatagram, TheOrderOfAttributesDoesNotMatter) {
    EXPECT_EQ(RefusalOf("[.{<Broadcast Data='4' Name='3' ClipName='2' Flag='1' More='5'></Broadcast>}.]"), "");
}

TEST(BroadcastDatagram, RefusesWhatIsNotFramed) {
    const Bytes good = Datagram(L"1", L"", L"", L"x");
    EXPECT_EQ(RefusalOf(good), "");
    EXPECT_EQ(RefusalOf(Bytes{}), "not framed");
    EXPECT_EQ(RefusalOf(Bytes{0}), "not framed");
    EXPECT_EQ(RefusalOf("[.{"), "not framed");
    EXPECT_EQ(RefusalOf("[.{.]"), "not framed");
    EXPECT_EQ(RefusalOf("[.}.]"), "not framed");
    EXPECT_EQ(RefusalOf("<Broadcast Flag='' ClipName='' Name='' Data=''/>"), "not framed");
    EXPECT_EQ(RefusalOf(Bytes(good.begin() + 1, good.end())), "not framed");
    EXPECT_EQ(RefusalOf(Bytes(good.begin(), good.end() - 2)), "not framed");
    Bytes twoZeros = good;
    twoZeros.push_back(0);
    EXPECT_EQ(RefusalOf(twoZeros), "not framed");
}

TEST(BroadcastDatagram, RefusesWhatIsNotTheElement) {
    for (const char* pszText :
         {"[.{}.]", "[.{text}.]", "[.{<Broadcast}.]", "[.{<Other/>}.]", "[.{<Broadcast/><Broadcast/>}.]",
          "[.{<Broadcast Flag='' ClipName='' Name='' Data=''>x</Broadcast>}.]",
          "[.{<Broadcast Flag='' ClipName='' Name='' Data=''/>}.][.{x}.]"}) {
        EXPECT_EQ(RefusalOf(pszText), "not the element Broadcast") << pszText;
    }
}

TEST(BroadcastDatagram, RefusesWhatIsNoXml) {
    const std::string good = "<Broadcast Flag='1' ClipName='' Name='' Data=''/>";
    const auto frame = [](const std::string& text) { return ToBytes("[.{" + text + "}.]"); };
    EXPECT_EQ(RefusalOf(frame(good)), "");
    for (const std::string& text :
         {good + std::string("\0junk", 5), good + std::string(1, '\0') + good, "<?x?>" + good, "<!DOCTYPE x>" + good,
          std::string("<Broadcast Flag='1' Flag='2' ClipName='' Name='' Data=''/>"),
          std::string("<Broadcast Flag='&x;' ClipName='' Name='' Data=''/>"),
          std::string("<Broadcast Flag='<' ClipName='' Name='' Data=''/>")}) {
        EXPECT_EQ(RefusalOf(frame(text)), "not the element Broadcast") << text;
    }
}

TEST(BroadcastDatagram, RefusesAMissingAttribute) {
    EXPECT_EQ(RefusalOf("[.{<Broadcast/>}.]"), "attribute missing");
    EXPECT_EQ(RefusalOf("[.{<Broadcast ClipName='' Name='' Data=''/>}.]"), "attribute missing");
    EXPECT_EQ(RefusalOf("[.{<Broadcast Flag='' Name='' Data=''/>}.]"), "attribute missing");
    EXPECT_EQ(RefusalOf("[.{<Broadcast Flag='' ClipName='' Data=''/>}.]"), "attribute missing");
    EXPECT_EQ(RefusalOf("[.{<Broadcast Flag='' ClipName='' Name=''/>}.]"), "attribute missing");
    EXPECT_EQ(RefusalOf("[.{<Broadcast flag='' ClipName='' Name='' Data=''/>}.]"), "attribute missing");
}

} // namespace
