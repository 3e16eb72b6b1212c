// Which texts the device JSON receive node takes for JSON: every part of the grammar, kept and broken, and what is too
// long or too deep. The verdicts are the same in every build; docs/json.md tells where they aren't the standard's.
#include "ModuleHost.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <random>

namespace {

using namespace std::string_view_literals;

enum : unsigned { CHECK_KEY_VALUE = 1403, KEY_1 = 1404, VALUE_1 = 1405, RECEIVE_DATA = 1452 };

enum Verdict { TAKEN, REFUSED };

class JsonTexts : public ModuleTest {
protected:
    JsonTexts() { m_scene.Evaluate(); }

    int Send(std::wstring_view text) {
        SDeviceTextData data;
        data.m_nDeviceId = 1;
        data.m_strText = CString(text.data(), static_cast<int>(text.size()));
        return m_scene.Send(5, 0, &data);
    }

    void Expect(std::wstring_view text, Verdict verdict) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(text.substr(0, 60))) + " of " + std::to_string(text.size()) +
                     " characters");
        const bool bTaken = verdict == TAKEN;
        const CString strBefore(L"before");
        CString& strReceived = m_scene.Output(RECEIVE_DATA).m_strValue = strBefore;
        EXPECT_EQ(Send(text), bTaken ? 1 : 0);
        EXPECT_EQ(m_host.TakeLog(), std::vector{bTaken ? Information("[Clip.Graph.Node 触发[接收设备json]事件]")
                                                       : Error("[Clip.Graph.Node]DevIOEventOccurred:JSON解析失败")});
        EXPECT_EQ(m_host.TakeReportedEvents().size(), bTaken ? 1u : 0u);
        EXPECT_TRUE(strReceived == (bTaken ? CString(text.data(), static_cast<int>(text.size())) : strBefore));
    }

    /// The same of texts that stand behind each other, separated by bars.
    void ExpectAll(Verdict verdict, std::wstring_view texts) {
        for (size_t nAt = 0, nEnd = 0; nEnd != texts.npos; nAt = nEnd + 1) {
            nEnd = texts.find(L'|', nAt);
            Expect(texts.substr(nAt, nEnd - nAt), verdict);
        }
    }
    void ExpectAll(Verdict verdict, std::initializer_list<std::wstring_view> texts) {
        std::ranges::for_each(texts, [&](std::wstring_view text) { Expect(text, verdict); });
    }

    /// Whether the text, an object, holds this value under the key "v".
    bool Holds(std::wstring_view text, const wchar_t* pszValue) {
        m_scene.Input(CHECK_KEY_VALUE).m_nValue = 1;
        m_scene.Input(KEY_1).m_strValue = L"v";
        m_scene.Input(VALUE_1).m_strValue = pszValue;
        const int nResult = Send(text);
        m_scene.Input(CHECK_KEY_VALUE).m_nValue = 0;
        m_host.TakeLog();
        m_host.TakeReportedEvents();
        return nResult == 1;
    }

    NodeScene m_scene{m_host, TYPE_DEVICE_JSON_RECEIVE};
};

std::wstring Repeat(std::wstring_view part, size_t nTimes) {
    std::wstring text;
    text.reserve(part.size() * nTimes);
    for (size_t i = 0; i < nTimes; ++i) {
        text += part;
    }
    return text;
}

// ---- Values and structure ------------------------------------------------------------------------------------------

/// The library's own grammar: a few texts of each kind, since the random ones below hold all of it.
TEST_F(JsonTexts, WhatTheStandardSays) {
    ExpectAll(TAKEN, L"true|false|[null]|{\"a\":null}| true |-0|-0.5|1.5E-05|0e0|-9223372036854775809|1e400|-1e-400|"
                     L"\"\"|\"'/\"|\"名😀\"|\"\x7F\x85\xA0\x2028\x3000\xFEFF\xFFFE\"|[]|[ ]|[ 1 , \"a\",[],{}]|{}|{ }");
    ExpectAll(TAKEN, LR"("\"\\\/\b\f\n\r\t\u00e9\u00E9\u0000\uFFFF"|"\\uD800"| { "a" : 1 , "b" : { } } |)"
                     LR"({"":1}|{"\u0061\n":1}|{"v":1,"v":2})");
    ExpectAll(REFUSED,
              L"null| null |True|nul|nulls|true1|true false|NaN|-Infinity|a|-|+1|.5|1.|1.e5|1e|1e+|1a|0x10|1,5|"
              L"1 2|00|-00|\xFF11|\"|\"a|'a'|\"\"\"|[|]|[1|[1,]|[,1]|[1,,2]|[1 2]|[1:2]|[1}|[]]|[][]|[],|(1)");
    ExpectAll(REFUSED, LR"("\"|"\a"|"\x41"|"\U0041"|"\u123"|"\u123g"|"\u+123"|\u0031|{|{"a"}|{"a":}|{"a":1,}|{"a" 1}|)"
                       LR"({"a":1 "b":2}|{"a"::1}|{a:1}|{'a':1}|{1:2}|{[]:1}|{"a":1]|{"a":1}}|"a":1|{}x|{}{}|{};)");
    ExpectAll(REFUSED,
              {L"", L" ", L"\t\r\n", L",", L":", L"\"\\\n\"", L"\"\\\0\""sv, L"\"\\u\xFF11\xFF11\xFF11\xFF11\""});
    ExpectAll(REFUSED, L"\xFEFF{}|{}\xFEFF| \xFEFF[1]|[\xFEFF]|\xFFFE{}|\xEF\xBB\xBF{}"); // byte order marks
    ExpectAll(TAKEN, {L"01", L"-01", L"[01.5]"});                                         // not in the standard
}

TEST_F(JsonTexts, SurrogateEscapes) {
    ExpectAll(TAKEN, {LR"("\uD83D\uDE00")", LR"("\ud83d\ude00")", LR"("a\uD800\uDC00\uDBFF\uDFFFz")"});
    ExpectAll(REFUSED, LR"("\uD83D"|"\uD83Dx"|"\uD83D "|"\uD83D\n"|"\uD83D\\"|"\uD83D\u"|"\uD83D\uDE0"|"\uDE00\uD83D"|)"
                       LR"("\uD83D\uD83D\uD83D")");
    ExpectAll(TAKEN, {LR"("\uDE00")", LR"("x\uDFFFx")", LR"("\uD83D\uDE00\uDE00")"}); // second halves alone
    EXPECT_TRUE(Holds(LR"({"v":"\uD83D\uDE00"})", L"😀"));
    EXPECT_TRUE(Holds(LR"({"v":"\uDE00"})", L"\xDE00"));
}

TEST_F(JsonTexts, AnyEscapedUnitMayFollowAFirstHalf) { // not in the standard
    ExpectAll(TAKEN, LR"("\uD83D\u0041"|"\uD83D\u0000"|"\uD83D\uD83D"|"\uD83D\uD83D\uDE00"|)"
                     LR"("\uD83D\ud83d\uD83D\uD83Dx"|"\uDBFF\uE000"|"\uD800\uDBFF"|"\uD800\uFFFF"|)"
                     LR"(["\uD83D\uDE00","\uD83D\u0041"]|{"\uD83D\u0041":1})");
    EXPECT_TRUE(Holds(LR"({"v":"a\uD83D\u0041z"})", L"a\xD83D\x41z"));
    EXPECT_TRUE(Holds(LR"({"v":"\uD83D\u0022\\"})", L"\xD83D\"\\"));
    EXPECT_TRUE(Holds(LR"({"v":"\uD83D\uD83D\uDE00"})", L"\xD83D😀")) << "the last two are one";
    EXPECT_TRUE(Holds(LR"({"v":["\uD83D\u000A",0]})", L"[\"\xD83D\\n\",0]"));
    EXPECT_TRUE(Holds(LR"({"\uD83D\u0076":1,"v":"b"})", L"b"));
}

TEST_F(JsonTexts, SurrogatesThatAreNoEscapes) {
    ExpectAll(TAKEN, L"\"\xD83D\"|\"\xDE00\"|\"\xD83Dx\xDE00\"|\"\xDE00\xD83D\"");
    ExpectAll(REFUSED, L"\xD83D|[\xDE00]|1\xD83D|\"\\\xD83D\"");
    EXPECT_TRUE(Holds(L"{\"v\":\"\xD83Dx\xDE00\"}", L"\xD83Dx\xDE00"));
    EXPECT_FALSE(Holds(L"{\"v\":\"\xD83D\"}", L"\xFFFD"));
}

// ---- What stands between the tokens --------------------------------------------------------------------------------

TEST_F(JsonTexts, WhiteSpace) {
    ExpectAll(TAKEN, {L" \t\r\n[ \t\r\n1 \t\r\n, \t\r\n2 \t\r\n] \t\r\n"});
    ExpectAll(TAKEN, {L"\v{}\f", L"[1,\v2\f]"}); // not in the standard
    for (const wchar_t c : L"\x80\x9F\x180E\x200B\x2060"sv) {
        const std::wstring strNoSpace(1, c);
        ExpectAll(REFUSED, {strNoSpace, strNoSpace + L"{}", L"{}" + strNoSpace, L"[1" + strNoSpace + L"]"});
        ExpectAll(TAKEN, {L"\"" + strNoSpace + L"\"", L"{\"a" + strNoSpace + L"\":1}"});
    }
}

TEST_F(JsonTexts, UnicodeSpaces) { // not in the standard
    for (
        const wchar_t c :
        L"\x85\xA0\x1680\x2000\x2001\x2002\x2003\x2004\x2005\x2006\x2007\x2008\x2009\x200A\x2028\x2029\x202F\x205F\x3000"sv) {
        const std::wstring strSpace(1, c);
        ExpectAll(TAKEN, {strSpace + L"{}", L"{}" + strSpace + L"\n", L"[1" + strSpace + L"]", L"[" + strSpace + L"1]",
                          L"{" + strSpace + L"\"a\":1}", L"{\"a\"" + strSpace + L":1}", L"/*\"*/" + strSpace + L"1",
                          L"1//\"\n" + strSpace, L"1//" + strSpace + L"\""});
        ExpectAll(REFUSED, {strSpace, L"1" + strSpace + L"1", L"tr" + strSpace + L"ue", L"//" + strSpace + L"1",
                            L"/" + strSpace + L"/\n1", L"\"\\" + strSpace + L"\""});
        EXPECT_TRUE(Holds(L"{\"v\":\"\\\"" + strSpace + L"/*\\\\\"}", (L"\"" + strSpace + L"/*\\").c_str()));
    }
}

TEST_F(JsonTexts, TheLastCharacterOfThePlaneEndsTheText) { // not in the standard
    ExpectAll(TAKEN, L"{}\xFFFF|{}\xFFFFx|[1]\xFFFF[\"\\|1\xFFFF|1.5\xFFFF\x35|1 // \xFFFF\xFFFF|"
                     L"// ends here\xFFFF{}");
    ExpectAll(REFUSED, L"\xFFFF{}|[1,\xFFFF|[1\xFFFF]|-\xFFFF|1.\xFFFF|tru\xFFFF|/\xFFFF|//\xFFFF|1//\xFFFFx|"
                       L"/*\xFFFF*/1|1/**\xFFFF/|\"\xFFFF\"|\"a\xFFFFz\"|\"a\xFFFF|{\"\xFFFF\":1}");
    EXPECT_TRUE(Holds(L"{\"v\":\"\\uFFFF\"}", L"\xFFFF"));
}

TEST_F(JsonTexts, ControlCharacters) {
    for (wchar_t c = 0; c < 0x20; ++c) {
        const std::wstring strControl(1, c);
        ExpectAll(REFUSED, {L"\"" + strControl + L"\"", L"\"a" + strControl + L"z\"", L"{\"" + strControl + L"\":1}"});
        const bool bSpace = c >= 9 && c <= 13;
        ExpectAll(bSpace ? TAKEN : REFUSED, {strControl + L"{}", L"{}" + strControl, L"[1" + strControl + L",2]"});
        Expect(L"1" + strControl + L"2", REFUSED);
    }
    ExpectAll(REFUSED, {L"\0"sv, L"{}\0"sv, L"{\0}"sv, L"\0{}"sv, L"tru\0"sv, L"1\0"sv, L"{}\x7F"});
}

TEST_F(JsonTexts, Comments) { // not in the standard
    ExpectAll(TAKEN, {L"/**/1", L"1/**/", L"/***/1", L"/* * / \" { */1", L"// a\n1", L"1// a", L"1//", L"1//\n",
                      L"{/*a*/\"a\"/*b*/:/*c*/1/*d*/}", L"[1,// a\n2]", L"//\x3000\x2028\n1", L"// \" \\\n1",
                      L"/*/**/1", L"/*\n\0*/1"sv});
    ExpectAll(REFUSED, L"/|1/|/1|/*|1/*|/*/|1/*/|1/*a*|//1|/ /1|#1|1 # a|<!--a-->1|/**//|1 */");
}

// ---- Too deep, too long --------------------------------------------------------------------------------------------

std::wstring Nested(std::wstring_view open, std::wstring_view inner, std::wstring_view close, size_t nLevels) {
    return Repeat(open, nLevels) + std::wstring(inner) + Repeat(close, nLevels);
}

TEST_F(JsonTexts, HundredAndTwentyEightLevelsAreTheDeepest) {
    for (const size_t nLevels : {1, 2, 64, 127, 128}) {
        Expect(Nested(L"[", L"", L"]", nLevels), TAKEN);
        Expect(Nested(L"{\"a\":", L"1", L"}", nLevels), TAKEN);
    }
    for (const size_t nLevels : {129, 130, 1000, 100'000}) {
        Expect(Nested(L"[", L"", L"]", nLevels), REFUSED);
        Expect(Nested(L"{\"a\":", L"1", L"}", nLevels), REFUSED);
        Expect(Nested(L"[{\"a\":", L"[]", L"}]", nLevels / 2 + 1), REFUSED);
    }
    Expect(L"[" + Repeat(L"[[]],", 1000) + L"[]]", TAKEN); // levels that end don't count
}

TEST_F(JsonTexts, LevelsWithoutAnEnd) {
    for (const std::wstring_view part : {L"["sv, L"{\"a\":"sv, L"]"sv, L"}"sv, L"[1,"sv, L"{"sv, L"[]"sv, L"[]],"sv}) {
        Expect(Repeat(part, 100'000), REFUSED);
    }
    Expect(Nested(L"[", L"1", L"}", 100), REFUSED);
}

TEST_F(JsonTexts, TheDeepestObjectIsCompared) {
    const std::wstring strValue = Nested(L"[", L"", L"]", 127);
    EXPECT_TRUE(Holds(L"{\"v\":" + strValue + L"}", strValue.c_str()));
}

constexpr size_t TEN_MEGABYTES = 10'000'000;

TEST_F(JsonTexts, TenMegabytes) {
    Expect(L"\"" + Repeat(L"a", TEN_MEGABYTES) + L"\"", TAKEN);
    Expect(L"[" + Repeat(L"123456789,", TEN_MEGABYTES / 10) + L"1]", TAKEN);
    Expect(Repeat(L" ", TEN_MEGABYTES) + L"1", TAKEN);
    Expect(Repeat(L"1", TEN_MEGABYTES), TAKEN);

    Expect(L"\"" + Repeat(L"a", TEN_MEGABYTES), REFUSED);
    Expect(Repeat(L"[", TEN_MEGABYTES), REFUSED);
    Expect(Repeat(L"\\", TEN_MEGABYTES), REFUSED);
}

TEST_F(JsonTexts, AMegabyteOfWhatCostsMost) {
    constexpr size_t MEGABYTE = TEN_MEGABYTES / 10;
    Expect(L"\"" + Repeat(L"\\uD83D\\uDE00", MEGABYTE / 12) + L"\"", TAKEN);
    Expect(L"\"" + Repeat(L"\\uD83D\\uD83D", MEGABYTE / 12) + L"\"", TAKEN);
    Expect(L"\"" + Repeat(L"\xA0", MEGABYTE) + L"\"", TAKEN);
    Expect(Repeat(L"\x3000", MEGABYTE) + L"1", TAKEN);
    Expect(L"1e" + Repeat(L"1", MEGABYTE), TAKEN);
    Expect(L"0." + Repeat(L"1", MEGABYTE), TAKEN);
    Expect(L"[" + Repeat(L"[],", MEGABYTE / 3) + L"{}]", TAKEN);
    Expect(L"/*" + Repeat(L"*", MEGABYTE) + L"*/1", TAKEN);
    Expect(Repeat(L"//\n", MEGABYTE / 3) + L"1", TAKEN);

    Expect(L"[" + Repeat(L"[],", MEGABYTE / 3), REFUSED);
    Expect(L"/*" + Repeat(L"*", MEGABYTE), REFUSED);
    Expect(Repeat(L"\xFFFF", MEGABYTE), REFUSED);
    Expect(Repeat(L"\0"sv, MEGABYTE), REFUSED);
}

TEST_F(JsonTexts, ManyMembers) {
    std::wstring strText = L"{";
    for (int i = 0; i < 100'000; ++i) {
        strText += L"\"key" + std::to_wstring(i) + L"\":" + std::to_wstring(i) + L",";
    }
    EXPECT_TRUE(Holds(strText + L"\"v\":\"last\"}", L"last"));
    EXPECT_FALSE(Holds(strText + L"\"v\":\"last\"}", L"first"));
}

// ---- Whatever comes ------------------------------------------------------------------------------------------------

/// Objects, arrays and strings, the same in every run, with pieces of all kinds put in.
class CRandomTexts {
public:
    std::wstring Next() {
        static constexpr const wchar_t* FRAMES[] = {
            L"{\"v\":\"~\"~}~", L"~{~\"~\"~:~\"~\"~}~", L"[~\"~\"~,~1~]~",  L"\"~\"~", L"~~~~~",
            L"~\"~~~\"",        L"//~\n[\"~\"]",        L"/*~*/[\"~~~\"]~", L"//~[]"};
        std::wstring strText;
        for (const wchar_t c : std::wstring_view(FRAMES[Below(std::size(FRAMES))])) {
            if (c != L'~') {
                strText += c;
                continue;
            }
            for (size_t nPieces = Below(3); nPieces > 0; --nPieces) {
                strText += PIECES[Below(std::size(PIECES))];
            }
        }
        return strText;
    }

private:
    static constexpr std::wstring_view PIECES[] = {
        L"{",       L"}",       L"[",       L"]",       L":",       L",",       L"\"",      L"\"",      L"\"a\"",
        L"\"v\":",  L"1",       L"0",       L"-",       L".",       L"e5",      L"true",    L"null",    L"a",
        L" ",       L"\n",      L"\xA0",    L"\x85",    L"\x1680",  L"\x2003",  L"\x200B",  L"\x2028",  L"\x3000",
        L"\xFEFF",  L"\xFFFF",  L"\xFFFE",  L"\xD83D",  L"\xDE00",  L"😀",       L"\\",      L"\\\\",    L"\\\"",
        L"\\n",     L"\\u",     L"\\u0041", L"\\u0022", L"\\u005C", L"\\u000A", L"\\uD83D", L"\\uD83D", L"\\uDE00",
        L"\\uFFFF", L"\\u00A0", L"D83D",    L"\\ud800", L"//",      L"/*",      L"*/",      L"/",       L"*",
        L"\xE9",    L"你",      L"\0"sv,    L"\x1F",    L"\xFF",    L"\x7F"};

    size_t Below(size_t nLimit) { return m_engine() % nLimit; }

    std::mt19937 m_engine{20};
};

TEST_F(JsonTexts, RandomTextsGetTheVerdictsOfTheWideLibrary) {
    constexpr int TEXTS = 20'000;
    CRandomTexts texts;
    int nTaken = 0;
    std::uint32_t nDigest = 2166136261; // of all verdicts: FNV-1a
    for (int i = 0; i < TEXTS; ++i) {
        const int nResult = Send(texts.Next());
        nTaken += nResult;
        nDigest = (nDigest ^ static_cast<std::uint32_t>(nResult)) * 16777619;
        m_host.TakeLog();
        m_host.TakeReportedEvents();
    }
    // Counted with the build for Windows.
    EXPECT_EQ(nTaken, 3734);
    EXPECT_EQ(nDigest, 2151069591);
}

} // namespace
