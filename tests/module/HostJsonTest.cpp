// The host's JSON services: an object split into names and texts, and the search in an array of texts.
#include <utility>
#include <vector>

#include "HostSetup.h"
#include "ModuleHost.h"
#include "host/HostJson.h"

namespace {

using Members = std::vector<std::pair<std::string, std::string>>;

web::json::value Parse(const char* pszText) {
    web::json::keep_object_element_order(true);
    return web::json::value::parse(FromUtf8(pszText).GetString());
}

Members Pairs(const CStringArray& arKey, const CStringArray& arValue) {
    EXPECT_EQ(arKey.GetSize(), arValue.GetSize());
    Members members;
    for (INT_PTR i = 0; i < arKey.GetSize(); ++i) {
        members.emplace_back(Utf8(arKey[i]), Utf8(arValue[i]));
    }
    return members;
}

Members Split(const char* pszText) {
    CStringArray arKey;
    CStringArray arValue;
    G_ParseDataFormJsObj(Parse(pszText), arKey, arValue);
    return Pairs(arKey, arValue);
}

/// The text of a value as the only member of an object.
std::string ValueText(const std::string& strValue) {
    const Members members = Split(("{\"v\":" + strValue + "}").c_str());
    return members.size() == 1 && members[0].first == "v" ? members[0].second : "not one member";
}

TEST(HostJson, MembersComeInTheirOrder) {
    EXPECT_EQ(Split(R"({"b":"1","a":"2","c":"3","B":"4"})"), (Members{{"b", "1"}, {"a", "2"}, {"c", "3"}, {"B", "4"}}));
    EXPECT_EQ(Split(R"({"a":1,"b":2,"a":3})"), (Members{{"a", "1"}, {"b", "2"}, {"a", "3"}}));
    EXPECT_EQ(Split("{}"), Members{});
}

TEST(HostJson, NamesAreWhatTheirEscapesMean) {
    EXPECT_EQ(Split(R"({"":"empty","\u540d\n\"":"escaped","名😀":"plain"})"),
              (Members{{"", "empty"}, {"名\n\"", "escaped"}, {"名😀", "plain"}}));
}

TEST(HostJson, ValuesAreTheirText) {
    // clang-format off
    const std::pair<const char*, std::string> cases[] = {
        {R"("start")", "start"}, {R"("")", ""}, {R"(" a b ")", " a b "}, {R"("{\"a\":1}")", R"({"a":1})"},
        {R"("\"\\\/\b\f\n\r\t")", "\"\\/\b\f\n\r\t"}, {R"("\u4f60\ud83d\ude00")", "你😀"},
        {R"("a\u0000b")", std::string("a\0b", 3)},
        // Escaped pairs of halves are one character.
        {R"("\ud800\udc00")", "\U00010000"}, {R"("\ud840\udc00")", "\U00020000"}, {R"("\udbff\udfff")", "\U0010FFFF"},
        {R"("😀\ud83d\ude00😀")", "😀😀😀"}, {R"("\ud83d\ude00\ud83d\ude00")", "😀😀"}, {R"(["\ud83d\ude00"])", "[\"😀\"]"},
        // What is no string is as JSON writes it.
        {"true", "true"}, {"false", "false"}, {"null", "null"},
        {"0", "0"}, {"-0", "0"}, /* the library keeps no sign of a whole zero */ {"-0.0", "-0"}, {"1", "1"}, {"-1", "-1"},
        {"1.0", "1"}, {"1.50", "1.5"}, {"0.1", "0.1"}, {"0.3", "0.3"}, {"-0.25", "-0.25"},
        {"3.14159265358979", "3.14159265358979"}, {"0.1234567890123456", "0.1234567890123456"},
        {"0.12345678901234568", "0.12345678901234568"}, {"1e2", "100"}, {"1E+5", "100000"}, {"123456.789", "123456.789"},
        {"1e15", "1e+15"}, {"1e20", "1e+20"}, {"1e23", "1e+23"}, {"1.5e-7", "1.5e-07"}, {"0.0001", "0.0001"},
        {"0.00001", "1e-05"}, {"9223372036854775807", "9223372036854775807"},
        {"-9223372036854775808", "-9223372036854775808"}, {"-9223372036854775809", "-9.223372036854776e+18"},
        {"9007199254740993", "9007199254740993"}, {"18446744073709551615", "18446744073709551615"},
        {"18446744073709551616", "1.8446744073709552e+19"}, {"1.7976931348623157e308", "1.7976931348623157e+308"},
        {"2.2250738585072014e-308", "2.2250738585072014e-308"}, {"4.9406564584124654e-324", "4.94065645841247e-324"},
        {"1e-400", "0"}, {"1e400", "null"}, {"-1e400", "null"}, // JSON has no infinity
        {R"({ "b" : 1 , "a" : [ 1 , 2.50 , "x" , null , true ] })", R"({"b":1,"a":[1,2.5,"x",null,true]})"},
        {"[ ]", "[]"}, {"{ }", "{}"}, {"[[[0.1]],{}]", "[[[0.1]],{}]"},
        {R"(["\"\\\/\b\f\n\r\t\u0001\u001f\u007f\u4f60\ud83d\ude00"])", "[\"\\\"\\\\/\\b\\f\\n\\r\\t\\u0001\\u001F\x7f你😀\"]"},
        {R"({"\n\u540d":{"a":"\u0000"}})", R"({"\n名":{"a":"\u0000"}})"},
    };
    // clang-format on
    for (const auto& [pszRead, written] : cases) {
        EXPECT_EQ(ValueText(pszRead), written) << pszRead;
    }
}

TEST(HostJson, WhatIsNoObjectHasNoMembers) {
    for (const char* pszText : {"null", "true", "1", "\"a\"", "[]", "[{\"a\":1}]"}) {
        EXPECT_EQ(Split(pszText), Members{}) << pszText;
    }
    CStringArray arKey;
    CStringArray arValue;
    G_ParseDataFormJsObj(web::json::value(), arKey, arValue);
    EXPECT_EQ(Pairs(arKey, arValue), Members{});
}

TEST(HostJson, ArraysAreAppendedTo) {
    CStringArray arKey;
    CStringArray arValue;
    arKey.Add(L"before");
    arValue.Add(L"0");
    G_ParseDataFormJsObj(Parse(R"({"a":1,"b":2})"), arKey, arValue);
    EXPECT_EQ(Pairs(arKey, arValue), (Members{{"before", "0"}, {"a", "1"}, {"b", "2"}}));
}

TEST(HostJson, FindStringFindsTheFirstExactlyEqualText) {
    CStringArray arText;
    EXPECT_LT(G_FindString(arText, L""), 0);
    for (const wchar_t* pszText : {L"a", L"B", L"", L"a", L"名"}) {
        arText.Add(pszText);
    }
    EXPECT_EQ(G_FindString(arText, L"a"), 0);
    EXPECT_EQ(G_FindString(arText, L"B"), 1);
    EXPECT_EQ(G_FindString(arText, L""), 2);
    EXPECT_EQ(G_FindString(arText, L"名"), 4);
    for (const wchar_t* pszText : {L"A", L"b", L"aa", L" a", L"名 "}) {
        EXPECT_LT(G_FindString(arText, pszText), 0);
    }
}

} // namespace
