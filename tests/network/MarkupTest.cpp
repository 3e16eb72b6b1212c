// CMarkup: the exact text that it writes, and that another parser reads back what was put in.
#include <pugixml.hpp>

#include "NetworkTest.h"
#include "host/Markup.h"

namespace {

/// The value of the attribute Data, as a parser of another make reads it.
std::string ReadBack(const CMarkup& markup) {
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_string(Utf8(markup.GetDoc()).c_str());
    EXPECT_TRUE(result) << result.description();
    return document.child("Broadcast").attribute("Data").value();
}

std::string Document(const CString& strValue) {
    CMarkup markup;
    markup.AddElem(L"E");
    markup.SetAttrib(L"A", strValue);
    return Utf8(markup.GetDoc());
}

TEST(Markup, StartsEmpty) {
    EXPECT_EQ(Utf8(CMarkup().GetDoc()), "");
}

TEST(Markup, WritesOneEmptyElementWithItsAttributesInOrder) {
    CMarkup markup;
    EXPECT_TRUE(markup.AddElem(L"Broadcast"));
    EXPECT_TRUE(markup.SetAttrib(L"Flag", L"1"));
    EXPECT_TRUE(markup.SetAttrib(L"ClipName", L"Intro"));
    EXPECT_TRUE(markup.SetAttrib(L"Name", L"score"));
    EXPECT_TRUE(markup.SetAttrib(L"Data", L"12|7"));
    EXPECT_EQ(Utf8(markup.GetDoc()), "<Broadcast Flag=\"1\" ClipName=\"Intro\" Name=\"score\" Data=\"12|7\"/>\r\n");
}

TEST(Markup, ElementsStandOneAfterAnother) {
    CMarkup markup;
    markup.AddElem(L"First");
    markup.SetAttrib(L"A", L"1");
    markup.AddElem(L"Second");
    markup.SetAttrib(L"A", L"2");
    EXPECT_EQ(Utf8(markup.GetDoc()), "<First A=\"1\"/>\r\n<Second A=\"2\"/>\r\n");
}

TEST(Markup, AnAttributeSetAgainKeepsItsPlace) {
    CMarkup markup;
    markup.AddElem(L"E");
    markup.SetAttrib(L"Name", L"one");
    markup.SetAttrib(L"ClipName", L" Name=\"x\"");
    markup.SetAttrib(L"Name", L"three");
    EXPECT_EQ(Utf8(markup.GetDoc()), "<E Name=\"three\" ClipName=\" Name=&quot;x&quot;\"/>\r\n");
    markup.SetAttrib(L"ClipName", L"");
    EXPECT_EQ(Utf8(markup.GetDoc()), "<E Name=\"three\" ClipName=\"\"/>\r\n");
}

TEST(Markup, AValueThatEndsLikeTheNextAttributeStaysAValue) {
    CMarkup markup;
    markup.AddElem(L"E");
    markup.SetAttrib(L"A", L"x Name=");
    markup.SetAttrib(L"Name", L" B=");
    markup.SetAttrib(L"B", L"2");
    markup.SetAttrib(L"Name", L"again A=");
    EXPECT_EQ(Utf8(markup.GetDoc()), "<E A=\"x Name=\" Name=\"again A=\" B=\"2\"/>\r\n");
    markup.SetAttrib(L"A", L"");
    EXPECT_EQ(Utf8(markup.GetDoc()), "<E A=\"\" Name=\"again A=\" B=\"2\"/>\r\n");
    markup.AddElem(L"F");
    markup.SetAttrib(L"A", L"of another element");
    EXPECT_EQ(Utf8(markup.GetDoc()), "<E A=\"\" Name=\"again A=\" B=\"2\"/>\r\n<F A=\"of another element\"/>\r\n");
}

TEST(Markup, RefusesAttributesWithoutElementAndEmptyNames) {
    CMarkup markup;
    EXPECT_FALSE(markup.SetAttrib(L"A", L"1"));
    EXPECT_FALSE(markup.AddElem(L""));
    EXPECT_FALSE(markup.AddElem(nullptr));
    EXPECT_EQ(Utf8(markup.GetDoc()), "");
    markup.AddElem(L"E");
    EXPECT_FALSE(markup.SetAttrib(L"", L"1"));
    EXPECT_EQ(Utf8(markup.GetDoc()), "<E/>\r\n");
}

TEST(Markup, EscapesWhatMeansSomethingInXml) {
    EXPECT_EQ(Document(L"a&b<c>d\"e'f"), "<E A=\"a&amp;b&lt;c&gt;d&quot;e'f\"/>\r\n");
    EXPECT_EQ(Document(L"\t\r\n\x01\x1f\x7f\u0085"), "<E A=\"&#9;&#13;&#10;&#1;&#31;&#127;&#133;\"/>\r\n");
    EXPECT_EQ(Document(L"  \u00a0\u00e9\u6bd4 "), "<E A=\"  \u00a0\u00e9\u6bd4 \"/>\r\n");
}

TEST(Markup, TakesItsOwnDocumentAsAValue) {
    CMarkup markup;
    markup.AddElem(L"E");
    markup.SetAttrib(L"A", L"1");
    markup.SetAttrib(L"B", markup.GetDoc());
    EXPECT_EQ(Utf8(markup.GetDoc()), "<E A=\"1\" B=\"&lt;E A=&quot;1&quot;/&gt;&#13;&#10;\"/>\r\n");
    markup.SetAttrib(L"A", markup.GetDoc());
    EXPECT_EQ(Utf8(markup.GetDoc()).find("<E A=\"&lt;E A=&quot;1&quot; B=&quot;&amp;lt;E"), 0u);
}

TEST(Markup, AValueEndsAtAZero) {
    EXPECT_EQ(Document(CString(L"a\0<b", 4)), "<E A=\"a\"/>\r\n");
}

/// The code page's bytes for a text, converted as a broadcast is.
std::string BroadcastBytes(const CString& strText) {
    char bytes[65536];
    const int nBytes =
        WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, strText, -1, bytes, sizeof(bytes), nullptr, nullptr);
    return nBytes > 0 ? std::string(bytes, static_cast<size_t>(nBytes) - 1) : std::string();
}

/// Where the code page has no such character, conversions write one that looks alike; that may mean something in XML.
TEST(Markup, NoCharacterBecomesMarkupInTheCodePage) {
    for (unsigned nChar = 0xA0; nChar < 0x10000; ++nChar) {
        const auto c = static_cast<wchar_t>(nChar);
        if (nChar >= 0xD800 && nChar < 0xE000) {
            continue;
        }
        const std::string bytes = BroadcastBytes(CString(c));
        const bool bMarkup = bytes == "&" || bytes == "<" || bytes == ">" || bytes == "\"";
        const std::string expected = bMarkup ? "&#" + std::to_string(nChar) + ";" : Utf8(CString(c));
        ASSERT_EQ(Document(CString(c)), "<E A=\"" + expected + "\"/>\r\n") << "character " << nChar;
    }
}

TEST(Markup, LookAlikesOfMarkupAreReferences) {
    if (GetACP() != 1252) {
        GTEST_SKIP() << "another code page has others";
    }
    EXPECT_EQ(Document(L"\u02ba|\u030e|\uff02|\uff06"), "<E A=\"&#698;|&#782;|&#65282;|&#65286;\"/>\r\n");
    EXPECT_EQ(Document(L"\u2329\u3008\uff1c|\u232a\u3009\uff1e"),
              "<E A=\"&#9001;&#12296;&#65308;|&#9002;&#12297;&#65310;\"/>\r\n");
    EXPECT_EQ(Document(L"\u0100\uff21\u2019"), "<E A=\"\u0100\uff21\u2019\"/>\r\n");
}

TEST(Markup, EveryCharacterOfTheCodePageReadsBack) {
    const std::vector<wchar_t> characters = CodePageCharacters();
    EXPECT_GE(characters.size(), 250u);
    CString strAll;
    for (const wchar_t c : characters) {
        CMarkup markup;
        markup.AddElem(L"Broadcast");
        const CString strValue = CString(L"<") + CString(c, 3) + L"\"";
        markup.SetAttrib(L"Data", strValue);
        EXPECT_EQ(ReadBack(markup), Utf8(strValue)) << "character " << static_cast<int>(c);
        strAll += c;
    }
    CMarkup markup;
    markup.AddElem(L"Broadcast");
    for (const wchar_t* pszName : {L"Flag", L"ClipName", L"Name", L"Data"}) {
        markup.SetAttrib(pszName, strAll);
    }
    EXPECT_EQ(ReadBack(markup), Utf8(strAll));
}

} // namespace
