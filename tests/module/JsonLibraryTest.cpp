// The JSON library as it's built here: it reads and writes wide strings, the same in every build.

#include <gtest/gtest.h>

#include <cpprest/json.h>

#include <limits>
#include <string>
#include <utility>

namespace {

using web::json::value;

std::wstring Rewritten(const wchar_t* pszText) {
    return value::parse(pszText).serialize();
}

TEST(JsonLibrary, WritesWhatItRead) {
    web::json::keep_object_element_order(true);
    EXPECT_EQ(Rewritten(L" { \"b\" : [ true, false, null, { } ], \"a\" : \"text\" } "),
              L"{\"b\":[true,false,null,{}],\"a\":\"text\"}");
    EXPECT_EQ(Rewritten(L"[]"), L"[]");
}

TEST(JsonLibrary, NumbersAreWrittenWithAllTheirDigits) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"0", L"0"},
        {L"-1", L"-1"},
        {L"-9223372036854775808", L"-9223372036854775808"},
        {L"18446744073709551615", L"18446744073709551615"},
        {L"0.5", L"0.5"},
        {L"0.1", L"0.10000000000000001"},
        {L"1e20", L"1e+20"},
        {L"1.5e-7", L"1.4999999999999999e-07"},
        {L"1.7976931348623157e308", L"1.7976931348623157e+308"},
        {L"4.9406564584124654e-324", L"4.9406564584124654e-324"},
    };
    for (const auto& [pszText, pszWritten] : cases) {
        EXPECT_EQ(Rewritten(pszText), pszWritten);
    }
    EXPECT_EQ(value::parse(L"1.7976931348623157e308").as_double(), std::numeric_limits<double>::max());
    EXPECT_EQ(value::parse(L"0.1").as_double(), 0.1);
}

TEST(JsonLibrary, EscapesAreUtf16) {
    const value text = value::parse(L"\"\\u4f60\\ud83d\\ude00\U0001F600\\n\\u0001\\\"\"");
    EXPECT_EQ(text.as_string(), L"\u4f60\xD83D\xDE00\U0001F600\n\x01\"");
    EXPECT_EQ(text.serialize(), L"\"\u4f60\xD83D\xDE00\U0001F600\\n\\u0001\\\"\"");
}

TEST(JsonLibrary, WhatIsNoJsonIsRefused) {
    for (const wchar_t* pszText :
         {L"", L"{", L"[1,", L"{\"a\"}", L"nul", L"\"a", L"1 2", L"{'a':1}", L"\"\\ud83d\\q\""}) {
        std::error_code error;
        EXPECT_TRUE(value::parse(pszText, error).is_null());
        EXPECT_TRUE(error) << "accepted";
        EXPECT_THROW(value::parse(pszText), web::json::json_exception);
    }
}

} // namespace
