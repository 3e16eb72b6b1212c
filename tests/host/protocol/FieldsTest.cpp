// The readers of numbers, and GUID texts.
#include <gtest/gtest.h>

#include "base/GuidText.h"
#include "protocol/Fields.h"

namespace {

TEST(GuidText, EveryDigitHasItsPlace) {
    const auto guid = ParseGuid("{01234567-89AB-CDEF-0123-456789abcdef}");
    ASSERT_TRUE(guid);
    EXPECT_TRUE(*guid == (GUID{0x01234567, 0x89AB, 0xCDEF, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}}));
    EXPECT_EQ(GuidText(*guid), "{01234567-89AB-CDEF-0123-456789ABCDEF}");
    for (const char* pszText : {"", "{}", "01234567-89AB-CDEF-0123-456789ABCDEF",
                                "{01234567-89AB-CDEF-0123-456789ABCDE}", "{01234567-89AB-CDEF-0123-456789ABCDEFA}",
                                "{01234567089AB-CDEF-0123-456789ABCDEF}", "{0x234567-89AB-CDEF-0123-456789ABCDEF}",
                                "{ 1234567-89AB-CDEF-0123-456789ABCDEF}", "(01234567-89AB-CDEF-0123-456789ABCDEF)"}) {
        EXPECT_FALSE(ParseGuid(pszText)) << pszText;
    }
}

TEST(Fields, NumbersReachTheEndsOfTheirRange) {
    EXPECT_EQ(ReadInt(Json(-2147483648LL), "x"), -2147483647 - 1);
    EXPECT_EQ(ReadInt(Json(2147483647U), "x"), 2147483647);
    EXPECT_EQ(ReadUnsigned(Json(4294967295U), "x"), 4294967295U);
    EXPECT_THROW(ReadInt(Json(2147483648U), "x"), CRefusal);
    EXPECT_THROW(ReadInt(Json(18446744073709551615ULL), "x"), CRefusal);
    EXPECT_THROW(ReadUnsigned(Json(-1), "x"), CRefusal);
    EXPECT_THROW(ReadUnsigned(Json(4294967296ULL), "x"), CRefusal);
    EXPECT_EQ(ReadFloat(Json(3), "x"), 3.0f);
    EXPECT_EQ(ReadFloat(Json(18446744073709551615ULL), "x"), 18446744073709551616.0f);
    EXPECT_THROW(ReadFloat(Json(3.5e38), "x"), CRefusal);
}

} // namespace
