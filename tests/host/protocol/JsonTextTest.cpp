#include "protocol/JsonText.h"

#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

namespace {

std::string ListOf(const auto&... values) {
    CJsonText json;
    json.List([&] { (json.Value(values), ...); });
    return json.Take();
}

TEST(JsonText, ValuesStandSeparated) {
    EXPECT_EQ(ListOf(), "[]");
    EXPECT_EQ(ListOf(nullptr, true, -1, std::numeric_limits<std::uint64_t>::max(), ""),
              R"([null,true,-1,18446744073709551615,""])");
}

TEST(JsonText, NumbersReadBackAsTheyWere) {
    EXPECT_EQ(ListOf(0.0, 100.0, double(0.1F), 1e30), "[0.0,100.0,0.10000000149011612,1e+30]");
    EXPECT_EQ(ListOf(std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity()),
              "[null,null]");
}

TEST(JsonText, TextsAreEscapedAndValid) {
    EXPECT_EQ(ListOf("a b~", "\"\\/", "\n\x01", "鼠标", "\x7F"), R"(["a b~","\"\\/","\n\u0001","鼠标",")"
                                                                 "\x7F\"]");
    EXPECT_EQ(ListOf(std::string_view("\0", 1), "a\xFFz", "\xE9\xBC"), R"(["\u0000","a)"
                                                                       "\xEF\xBF\xBDz\",\"\xEF\xBF\xBD\"]");
}

TEST(JsonText, MembersHaveNames) {
    for (const bool bInLines : {false, true}) {
        CJsonText json(bInLines);
        json.Object([&] {
            json.Name("empty");
            json.Object([] {});
            json.Name("\"");
            json.List([&] {
                json.Value(1);
                json.Raw("{}");
            });
            json.Name("last");
            json.Value(false);
        });
        EXPECT_EQ(json.Take(), bInLines ? "{\n \"empty\": {},\n \"\\\"\": [\n  1,\n  {}\n ],\n \"last\": false\n}"
                                        : R"({"empty":{},"\"":[1,{}],"last":false})");
    }
}

} // namespace
