// Reading broadcasts: what is taken, and the reason of what isn't.
#include <string>

#include "BroadcastDatagram.h"
#include "NetworkTest.h"
#include "host/EventRecord.h"

namespace {

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

/// Of an element in its frame.
std::string RefusalOf(const std::string& element) {
    return RefusalOf(ToBytes("[.{" + element + "}.]"));
}

TEST(BroadcastDatagram, GivesTheFourTexts) {
    Bytes datagram = ToBytes("[.{<Broadcast Flag=\"}.][.{&quot;/&gt;\" ClipName=\"Intro\" Name=\"\xE9&#13;&#10;\" "
                             "Data=\"12|7}.]\"/>\r\n}.]");
    for (const bool bZero : {false, true}) { // as a broadcast send node sends it
        SBroadcastItem item;
        EBroadcastRefusal nRefusal{};
        ASSERT_TRUE(ReadBroadcast(datagram, item, nRefusal)) << bZero;
        EXPECT_EQ(Utf8(item.m_strFlag), "}.][.{\"/>");
        EXPECT_EQ(Utf8(item.m_strClipName), "Intro");
        EXPECT_EQ(Utf8(item.m_strName), "\u00e9\r\n");
        EXPECT_EQ(Utf8(item.m_strData), "12|7}.]");
        datagram.push_back(0);
    }
    EXPECT_EQ(RefusalOf(datagram), "not framed") << "one zero too many";
}

TEST(BroadcastDatagram, RefusesWhatIsNotFramed) {
    for (const std::string& text :
         {std::string(), std::string(1, '\0'), std::string("[.{"), std::string("[.{.]"), std::string("[.}.]"),
          std::string("<Broadcast Flag='' ClipName='' Name='' Data=''/>"), std::string("[.{<Broadcast/>}.")}) {
        EXPECT_EQ(RefusalOf(ToBytes(text)), "not framed") << text;
    }
}

TEST(BroadcastDatagram, RefusesWhatIsNotTheElementWithItsAttributes) {
    const std::string good = "<Broadcast Flag='1' ClipName='' Name='' Data=''/>";
    EXPECT_EQ(RefusalOf(good), "");
    EXPECT_EQ(RefusalOf(std::string("<Broadcast Data='4' Name='3' ClipName='2' Flag='1' More='5'></Broadcast>")), "");
    for (const std::string& text : {std::string(), std::string("<Other/>"), good + good, good + "}.][.{x"}) {
        EXPECT_EQ(RefusalOf(text), "not the element Broadcast") << text;
    }
    for (const char* pszAttributes :
         {"", "ClipName='' Name='' Data=''", "Flag='' Name='' Data=''", "Flag='' ClipName='' Data=''",
          "Flag='' ClipName='' Name=''", "flag='' ClipName='' Name='' Data=''"}) {
        EXPECT_EQ(RefusalOf("<Broadcast " + std::string(pszAttributes) + "/>"), "attribute missing") << pszAttributes;
    }
}

} // namespace
