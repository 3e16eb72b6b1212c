// Texts that come one a line, and which lines are refused. That lines may come in any pieces, the properties show.
#include "network/TextLines.h"

#include <vector>

#include <gtest/gtest.h>

#include "base/TextUtf8.h"

namespace {

using Texts = std::vector<std::string>;

class TextLines : public testing::Test {
protected:
    /// The texts of these bytes.
    Texts Feed(std::string_view bytes) {
        m_lines.OnBytes({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
        return std::exchange(m_texts, {});
    }

    void ExpectRefused(const LineRefusalCounts& counts, ELineRefusal nLast) {
        EXPECT_EQ(m_lines.RefusedCounts(), counts);
        EXPECT_EQ(m_lines.LastRefusal(), nLast);
    }

    const std::string m_strLongest = std::string(LONGEST_TEXT_LINE, 'x');
    CTextLines m_lines{[this](const CString& strText) { m_texts.push_back(Utf8(strText)); }};

private:
    Texts m_texts;
};

TEST_F(TextLines, ALineEndsWithALineFeedOrWithBothAndAllElseStays) {
    EXPECT_EQ(Feed("{\"a\":1}\nb\n\rc\r\r\nd\re\r\n"), (Texts{"{\"a\":1}", "b", "\rc\r", "d\re"}));
    const std::string strText(" \t a \0 \x7F \v\f \xC2\x85 \xE2\x80\xA8 ", 19);
    EXPECT_EQ(Feed(strText + "\n \n\xEF\xBB\xBF{}\n"), (Texts{strText, " ", "\xEF\xBB\xBF{}"}));
    EXPECT_EQ(Feed("{\"名\":\"é😀\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF\"}\n"),
              Texts{"{\"名\":\"é😀\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF\"}"});
    EXPECT_EQ(Feed(m_strLongest + "\r\n" + m_strLongest + "\n"), (Texts{m_strLongest, m_strLongest}));
    EXPECT_EQ(m_lines.RefusedCount(), 0u);
    EXPECT_EQ(m_lines.LastRefusal(), std::nullopt);
}

TEST_F(TextLines, WhatIsNotUtf8IsRefusedAndTheNextLineRead) {
    unsigned long long nRefused = 0;
    for (const char* pszLine :
         {"\x80", "a\xFFz", "\xC0\xAF", "\xC3", "\xC3(", "\xE4\xBD", "\xE4\xBD(", "\xED\xA0\x80", "\xF0\x9F\x98",
          "\xF4\x90\x80\x80", "\xF8\x88\x80", "\xEF\xBB\xBF\xFF", "\xE0\x80\x80", "\xA0", "\xFE"}) {
        EXPECT_EQ(Feed(std::string(pszLine) + "\nnext\n"), Texts{"next"}) << pszLine;
        ExpectRefused({0, 0, ++nRefused, 0}, ELineRefusal::NotUtf8);
    }
}

TEST_F(TextLines, EmptyAndTooLongLinesAreRefusedAndTheNextLineRead) {
    EXPECT_EQ(Feed("\n\r\na\n\n"), Texts{"a"});
    ExpectRefused({3, 0, 0, 0}, ELineRefusal::Empty);
    EXPECT_EQ(Feed(m_strLongest + "x\nnext\n"), Texts{"next"});
    EXPECT_EQ(Feed(m_strLongest + "\rx\r\nnext\n"), Texts{"next"});
    ExpectRefused({3, 2, 0, 0}, ELineRefusal::TooLong);
    for (int i = 0; i < 10; ++i) {
        Feed(m_strLongest);
    }
    ExpectRefused({3, 2, 0, 0}, ELineRefusal::TooLong); // once a line, at its end
    EXPECT_EQ(Feed("\nnext\n\xFF" + m_strLongest + "\nlast\n"), (Texts{"next", "last"}));
    ExpectRefused({3, 4, 0, 0}, ELineRefusal::TooLong);
    EXPECT_EQ(m_lines.RefusedCount(), 7u);
}

} // namespace
