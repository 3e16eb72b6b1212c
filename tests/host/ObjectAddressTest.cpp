// Whom a posted text is for.
#include "fronts/page/ObjectAddress.h"

#include <gtest/gtest.h>

namespace {

std::string Address(std::string_view target) {
    std::string strProblem;
    const auto address = ParseObjectAddress(target, strProblem);
    return address ? address->strClip + "|" + address->strObject : strProblem;
}

TEST(ObjectAddress, NamesStandInTheQuery) {
    EXPECT_EQ(Address("/object-text?clip=Intro&object=Map"), "Intro|Map");
    EXPECT_EQ(Address("/object-text?object=Map&clip=Intro"), "Intro|Map");
    EXPECT_EQ(Address("/object-text?clip=&object="), "|");
    EXPECT_EQ(Address("/object-text?clip=a=b&object=c?d"), "a=b|c?d");
    EXPECT_EQ(Address("/object-text?&clip=a&&object=b&"), R"("": only clip=NAME and object=NAME are known)");
}

TEST(ObjectAddress, NamesAreDecoded) {
    EXPECT_EQ(Address("/object-text?clip=My%20Clip&object=My+Map"), "My Clip|My Map");
    EXPECT_EQ(Address("/object-text?clip=%E5%90%8d&object=%f0%9f%98%80"), "名|😀");
    EXPECT_EQ(Address("/object-text?clip=%26%3D%25&object=%2B"), "&=%|+");
    EXPECT_EQ(Address("/object-text?clip=\xE5\x90\x8D&object=a%00b"), std::string("名|a\0b", 7));
}

TEST(ObjectAddress, WrongOnesAreNamed) {
    EXPECT_EQ(Address("/object-text"), "clip: is missing");
    EXPECT_EQ(Address("/object-text?"), "clip: is missing");
    EXPECT_EQ(Address("/object-text?clip=a"), "object: is missing");
    EXPECT_EQ(Address("/object-text?object=a"), "clip: is missing");
    EXPECT_EQ(Address("/object-text?clip=a&object=b&clip=c"), "clip: stands there twice");
    EXPECT_EQ(Address("/object-text?clip=a&object=b&text=c"), R"("text=c": only clip=NAME and object=NAME are known)");
    EXPECT_EQ(Address("/object-text?clip&object=b"), R"("clip": only clip=NAME and object=NAME are known)");
    EXPECT_EQ(Address("/object-text?Clip=a&object=b"), R"("Clip=a": only clip=NAME and object=NAME are known)");
    for (const char* pszWrong :
         {"%", "%2", "%2g", "%g2", "%%", "% 2", "%+2", "%-2", "%0x", "%FF", "%C3", "\xFF", "%ED%A0%80"}) {
        EXPECT_EQ(Address("/object-text?clip=a&object=" + std::string(pszWrong)),
                  "object: isn't UTF-8 in percent encoding")
            << pszWrong;
    }
}

TEST(ObjectAddress, OnlyThePathCounts) {
    for (const char* pszTarget : {"/object-text", "/object-text?", "/object-text?a/b"}) {
        EXPECT_TRUE(IsObjectTextTarget(pszTarget)) << pszTarget;
    }
    for (const char* pszTarget :
         {"", "/", "/object-text/", "/object-texts", "/Object-text", "/a?/object-text", "object-text"}) {
        EXPECT_FALSE(IsObjectTextTarget(pszTarget)) << pszTarget;
    }
}

} // namespace
