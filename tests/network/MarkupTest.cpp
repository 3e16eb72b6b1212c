// CMarkup: the exact text that it writes. That others read back what was put in, the tests of broadcasts and records
// show.
#include "host/Markup.h"
#include "NetworkTest.h"

namespace {

std::string Document(const CString& strValue) {
    CMarkup markup;
    markup.AddElem(L"E");
    markup.SetAttrib(L"A", strValue);
    return Utf8(markup.GetDoc());
}

TEST(Markup, WritesEmptyElementsWithTheirAttributesInOrder) {
    CMarkup markup;
    EXPECT_EQ(Utf8(markup.GetDoc()), "");
    EXPECT_TRUE(markup.AddElem(L"First"));
    EXPECT_TRUE(markup.SetAttrib(L"B", L"1"));
    EXPECT_TRUE(markup.SetAttrib(L"A", L"12|7"));
    EXPECT_TRUE(markup.AddElem(L"Second"));
    EXPECT_TRUE(markup.SetAttrib(L"A", L""));
    EXPECT_EQ(Utf8(markup.GetDoc()), "<First B=\"1\" A=\"12|7\"/>\r\n<Second A=\"\"/>\r\n");
}

TEST(Markup, AValueMayBeTheDocumentItself) {
    CMarkup markup;
    markup.AddElem(L"E");
    markup.SetAttrib(L"A", L"1");
    markup.SetAttrib(L"B", markup.GetDoc());
    EXPECT_EQ(Utf8(markup.GetDoc()), "<E A=\"1\" B=\"&lt;E A=&quot;1&quot;/&gt;&#13;&#10;\"/>\r\n");
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
    const std::pair<CString, const char*> rows[] = {
        {L"a&b<c>d\"e'f", "a&amp;b&lt;c&gt;d&quot;e'f"},
        {L"\t\r\n\x01\x1f\x7f\u0085", "&#9;&#13;&#10;&#1;&#31;&#127;&#133;"},
        {L"  \u00a0\u00e9\u6bd4 ", "  \u00a0\u00e9\u6bd4 "},
        {CString(L"a\0<b", 4), "a"}, // a value ends at a zero
    };
    for (const auto& [strValue, pszEscaped] : rows) {
        EXPECT_EQ(Document(strValue), "<E A=\"" + std::string(pszEscaped) + "\"/>\r\n");
    }
}

/// Where the code page has no such character, conversions write one that looks alike; that may mean something in XML.
TEST(Markup, NoCharacterBecomesMarkupInTheCodePage) {
    ASSERT_EQ(GetACP(), 1252u) << "another code page has others";
    EXPECT_EQ(Document(L"\u02ba|\uff02|\uff06|\u2329|\u232a|\u0100\uff21"),
              "<E A=\"&#698;|&#65282;|&#65286;|&#9001;|&#9002;|\u0100\uff21\"/>\r\n");
    for (unsigned nChar = 0xA0; nChar < 0x10000; ++nChar) {
        if (nChar >= 0xD800 && nChar < 0xE000) {
            continue;
        }
        const CString strChar(static_cast<wchar_t>(nChar));
        char bytes[8] = {};
        WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, strChar, -1, bytes, sizeof(bytes), nullptr, nullptr);
        const bool bMarkup =
            bytes[0] != 0 && bytes[1] == 0 && std::string_view("&<>\"").find(bytes[0]) != std::string_view::npos;
        const std::string expected = bMarkup ? "&#" + std::to_string(nChar) + ";" : Utf8(strChar);
        ASSERT_EQ(Document(strChar), "<E A=\"" + expected + "\"/>\r\n") << "character " << nChar;
    }
}

} // namespace
