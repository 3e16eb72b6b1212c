// Whom a posted text is for.
#include "fronts/page/ObjectAddress.h"

#include <gtest/gtest.h>

#include "base/TextUtf8.h"

namespace {

TEST(ObjectAddress, NamesStandInTheQuery) {
    const auto unknown = [](const char* pszPart) {
        return "\"" + std::string(pszPart) + "\": only clip=NAME and object=NAME are known";
    };
    const std::pair<std::string, std::string> cases[] = {
        {"?clip=Intro&object=Map", "Intro|Map"},
        {"?object=Map&clip=Intro", "Intro|Map"},
        {"?clip=&object=", "|"},
        {"?clip=a=b&object=c?d", "a=b|c?d"},
        {"?clip=My%20Clip&object=My+Map", "My Clip|My Map"},
        {"?clip=%E5%90%8d&object=%f0%9f%98%80", "名|😀"},
        {"?clip=%26%3D%25&object=%2B", "&=%|+"},
        {"?clip=\xE5\x90\x8D&object=a%00b", std::string("名|a\0b", 7)},
        {"", "clip: is missing"},
        {"?", "clip: is missing"},
        {"?clip=a", "object: is missing"},
        {"?object=a", "clip: is missing"},
        {"?clip=a&object=b&clip=c", "clip: stands there twice"},
        {"?&clip=a&&object=b&", unknown("")},
        {"?clip=a&object=b&text=c", unknown("text=c")},
        {"?clip&object=b", unknown("clip")},
        {"?Clip=a&object=b", unknown("Clip=a")},
    };
    const auto read = [](const std::string& strQuery) {
        std::string strProblem;
        const auto address = ParseObjectAddress("/object-text" + strQuery, strProblem);
        return address ? Utf8(address->m_strClipName + L"|" + address->m_strObjectName) : strProblem;
    };
    for (const auto& [strQuery, strExpected] : cases) {
        EXPECT_EQ(read(strQuery), strExpected) << strQuery;
    }
    for (const char* pszWrong :
         {"%", "%2", "%2g", "%g2", "%%", "% 2", "%+2", "%-2", "%0x", "%FF", "%C3", "\xFF", "%ED%A0%80"}) {
        EXPECT_EQ(read("?clip=a&object=" + std::string(pszWrong)), "object: isn't UTF-8 in percent encoding")
            << pszWrong;
    }
}

} // namespace
