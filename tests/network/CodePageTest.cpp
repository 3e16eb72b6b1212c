// Broadcasts in the code pages that hosts are set to: every character that the page holds goes over whole.
#include "BroadcastDatagram.h"

#include <compat/testing.h>

#include "NetworkTest.h"
#include "host/EventRecord.h"
#include "host/Markup.h"

namespace {

class CodePage : public testing::TestWithParam<unsigned> {
protected:
    CodePage() : m_nFormer(GetACP()) { EXPECT_TRUE(CompatSetAnsiCodePage(GetParam())); }
    ~CodePage() override { CompatSetAnsiCodePage(m_nFormer); }

    /// Whether the page holds the character, and gives the same one back.
    static bool Holds(wchar_t c) {
        char bytes[8];
        wchar_t cBack[4] = {};
        const int nBytes = WideCharToMultiByte(CP_ACP, 0, &c, 1, bytes, sizeof(bytes), nullptr, nullptr);
        return MultiByteToWideChar(CP_ACP, 0, bytes, nBytes, cBack, 4) == 1 && cBack[0] == c;
    }

    const UINT m_nFormer;
};

std::string NameOf(const testing::TestParamInfo<unsigned>& info) {
    return "Page" + std::to_string(info.param);
}

INSTANTIATE_TEST_SUITE_P(Pages, CodePage, testing::Values(1252u, 1251u, 932u, 936u, 949u, 950u), NameOf);

TEST_P(CodePage, EveryCharacterOfABroadcastComesBack) {
    CString strAll;
    for (wchar_t c = 1; c < 0xD800; ++c) {
        if (Holds(c)) {
            strAll += c;
        }
    }
    ASSERT_GT(strAll.GetLength(), 200);
    CMarkup markup;
    markup.AddElem(L"Broadcast");
    for (const wchar_t* pszName : {L"Flag", L"ClipName", L"Name", L"Data"}) {
        markup.SetAttrib(pszName, strAll);
    }
    const CString strText = L"[.{" + markup.GetDoc() + L"}.]";
    const int nLength = WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, strText, -1, nullptr, 0, nullptr, nullptr);
    Bytes datagram(static_cast<size_t>(nLength));
    WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, strText, -1, reinterpret_cast<char*>(datagram.data()), nLength,
                        nullptr, nullptr);

    SBroadcastItem item;
    EBroadcastRefusal nRefusal{};
    ASSERT_TRUE(ReadBroadcast(datagram, item, nRefusal)) << BroadcastRefusalName(nRefusal);
    EXPECT_TRUE(item.m_strFlag == strAll && item.m_strClipName == strAll && item.m_strName == strAll &&
                item.m_strData == strAll);
}

/// Windows takes the flag that broadcasts are converted with for no code page that has all of Unicode.
TEST(WholeUnicodePage, HasNoBroadcasts) {
    const UINT nFormer = GetACP();
    for (const unsigned nPage : {65001u, 54936u}) {
        ASSERT_TRUE(CompatSetAnsiCodePage(nPage));
        EXPECT_EQ(WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, L"a", -1, nullptr, 0, nullptr, nullptr), 0);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_FLAGS));
    }
    CompatSetAnsiCodePage(nFormer);
}

} // namespace
