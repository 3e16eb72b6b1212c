// Texts that come one a line: how bytes become lines wherever they are split, and which lines are refused.
#include "network/TextLines.h"

#include <vector>

#include <gtest/gtest.h>

#include "base/TextUtf8.h"

namespace {

class TextLines : public testing::Test, private ITextReceiver {
protected:
    void Feed(std::string_view bytes) {
        m_lines.OnBytes({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
    }

    std::vector<std::string> TakeTexts() { return std::exchange(m_texts, {}); }

    unsigned long long RefusedCount(ELineRefusal nRefusal) const {
        return m_lines.RefusedCounts()[static_cast<size_t>(nRefusal)];
    }

    void ExpectRefused(ELineRefusal nRefusal, unsigned long long nTimes = 1) {
        EXPECT_EQ(RefusedCount(nRefusal), nTimes);
        EXPECT_EQ(m_lines.LastRefusal(), nRefusal);
    }

    CTextLines m_lines{*this};

private:
    void OnText(const CString& strText) override { m_texts.push_back(Utf8(strText)); }

    std::vector<std::string> m_texts;
};

using Texts = std::vector<std::string>;

TEST_F(TextLines, EachLineIsAText) {
    Feed("{\"a\":1}\n[2]\n");
    EXPECT_EQ(TakeTexts(), (Texts{"{\"a\":1}", "[2]"}));
    EXPECT_EQ(m_lines.RefusedCount(), 0u);
    EXPECT_EQ(m_lines.LastRefusal(), std::nullopt);
}

TEST_F(TextLines, ALineEndsWithALineFeedOrWithBoth) {
    Feed("a\r\nb\n\rc\r\r\nd\re\r\n");
    EXPECT_EQ(TakeTexts(), (Texts{"a", "b", "\rc\r", "d\re"}));
}

TEST_F(TextLines, WhatIsNoLineEndStays) {
    const std::string strText(" \t a \0 \x7F \v\f \xC2\x85 \xE2\x80\xA8 ", 19);
    Feed(strText + "\n");
    EXPECT_EQ(TakeTexts(), Texts{strText});
}

TEST_F(TextLines, ALineMayComeInAnyPieces) {
    const std::string strLines = "{\"名\":\"é😀\"}\r\n\n[\"\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF\"]\n";
    const Texts expected = {"{\"名\":\"é😀\"}", "[\"\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF\"]"};
    for (size_t nPiece = 1; nPiece <= strLines.size(); ++nPiece) {
        for (size_t nBegin = 0; nBegin < strLines.size(); nBegin += nPiece) {
            Feed(std::string_view(strLines).substr(nBegin, nPiece));
        }
        EXPECT_EQ(TakeTexts(), expected) << nPiece;
        EXPECT_EQ(RefusedCount(ELineRefusal::Empty), nPiece);
    }
    for (size_t nFirst = 0; nFirst <= strLines.size(); ++nFirst) {
        Feed(std::string_view(strLines).substr(0, nFirst));
        Feed(std::string_view(strLines).substr(nFirst));
        EXPECT_EQ(TakeTexts(), expected) << nFirst;
    }
    EXPECT_EQ(m_lines.RefusedCount(), RefusedCount(ELineRefusal::Empty));
}

TEST_F(TextLines, EmptyLinesAreRefused) {
    Feed("\n\r\na\n\n");
    EXPECT_EQ(TakeTexts(), Texts{"a"});
    ExpectRefused(ELineRefusal::Empty, 3);
    Feed(" \n");
    EXPECT_EQ(TakeTexts(), Texts{" "}) << "white space is a text";
}

TEST_F(TextLines, WhatIsNotUtf8IsRefusedAndTheNextLineRead) {
    const char* const lines[] = {"\x80",         "a\xFFz",           "\xC0\xAF",     "\xC3",         "\xC3(",
                                 "\xE4\xBD",     "\xE4\xBD(",        "\xED\xA0\x80", "\xF0\x9F\x98", "\xF4\x90\x80\x80",
                                 "\xF8\x88\x80", "\xEF\xBB\xBF\xFF", "\xE0\x80\x80", "\xA0",         "\xFE"};
    unsigned long long nRefused = 0;
    for (const char* pszLine : lines) {
        Feed(std::string(pszLine) + "\nnext\n");
        EXPECT_EQ(TakeTexts(), Texts{"next"}) << pszLine;
        ExpectRefused(ELineRefusal::NotUtf8, ++nRefused);
    }
}

TEST_F(TextLines, AByteOrderMarkIsPartOfTheText) {
    Feed("\xEF\xBB\xBF{}\n");
    EXPECT_EQ(TakeTexts(), Texts{"\xEF\xBB\xBF{}"});
}

TEST_F(TextLines, TheLongestLineIsTaken) {
    const std::string strLongest(LONGEST_TEXT_LINE, 'x');
    for (const char* pszEnd : {"\n", "\r\n"}) {
        Feed(strLongest + pszEnd);
        EXPECT_EQ(TakeTexts(), Texts{strLongest});
    }
    EXPECT_EQ(m_lines.RefusedCount(), 0u);
}

TEST_F(TextLines, LongerLinesAreRefusedAndTheNextLineRead) {
    const std::string strLongest(LONGEST_TEXT_LINE, 'x');
    Feed(strLongest + "x\nnext\n");
    EXPECT_EQ(TakeTexts(), Texts{"next"});
    ExpectRefused(ELineRefusal::TooLong);
    Feed(strLongest + "\rx\r\nnext\n");
    EXPECT_EQ(TakeTexts(), Texts{"next"});
    ExpectRefused(ELineRefusal::TooLong, 2);
    for (int i = 0; i < 10; ++i) {
        Feed(strLongest);
    }
    EXPECT_EQ(RefusedCount(ELineRefusal::TooLong), 2u) << "once a line, at its end";
    Feed("\n\nnext\n");
    EXPECT_EQ(TakeTexts(), Texts{"next"});
    EXPECT_EQ(RefusedCount(ELineRefusal::TooLong), 3u);
    ExpectRefused(ELineRefusal::Empty);
    Feed("\xFF" + strLongest + "\nnext\n");
    EXPECT_EQ(TakeTexts(), Texts{"next"});
    ExpectRefused(ELineRefusal::TooLong, 4);
}

TEST_F(TextLines, ALineWithoutAnEndIsCutOff) {
    Feed("whole\n{\"a\":");
    m_lines.OnConnectionEnds();
    EXPECT_EQ(TakeTexts(), Texts{"whole"});
    ExpectRefused(ELineRefusal::CutOff);
    m_lines.OnConnectionEnds();
    EXPECT_EQ(m_lines.RefusedCount(), 1u);
    m_lines.OnConnectionBegins();
    Feed("1}\n");
    EXPECT_EQ(TakeTexts(), Texts{"1}"}) << "nothing of the connection before";

    Feed(std::string(LONGEST_TEXT_LINE + 2, 'x'));
    m_lines.OnConnectionEnds();
    ExpectRefused(ELineRefusal::TooLong);
    m_lines.OnConnectionBegins();
    Feed("next\n");
    EXPECT_EQ(TakeTexts(), Texts{"next"});
}

TEST_F(TextLines, AConnectionBeginsAnew) {
    Feed("{\"a\":");
    m_lines.OnConnectionBegins();
    Feed("[]\n");
    EXPECT_EQ(TakeTexts(), Texts{"[]"});
    EXPECT_EQ(m_lines.RefusedCount(), 0u);
}

TEST_F(TextLines, RefusalsAreCountedByReason) {
    Feed("\n\n\xFF\n");
    Feed(std::string(LONGEST_TEXT_LINE + 1, 'x') + "\n");
    Feed("a");
    m_lines.OnConnectionEnds();
    EXPECT_EQ(m_lines.RefusedCounts(), (LineRefusalCounts{2, 1, 1, 1}));
    EXPECT_EQ(m_lines.RefusedCount(), 5u);
}

} // namespace
