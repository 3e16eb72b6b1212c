// The catalogue of node types: its rows, their texts and icons, and which are offered.
#include <cstring>
#include <set>

#include "HostSetup.h"
#include "ModuleHost.h"
#include "SystemCalls.h"

namespace {

struct ExpectedRow {
    unsigned char nTypeByte;
    const char* pszNameKey;
    unsigned nIconId;
    int bEnable; ///< without an INI file
};

const ExpectedRow ROWS[] = {
    {0x01, "IO_PROCESS_KEYBOARD", 7000, 1},         {0x0B, "IO_PROCESS_KEY_CHECK", 7009, 1},
    {0x02, "IO_PROCESS_TEXTFIELDINPUT", 7001, 1},   {0x03, "IO_PROCESS_MOUSE", 7002, 1},
    {0x04, "IO_PROCESS_NETSEND", 7004, 0},          {0x05, "IO_PROCESS_NETRECEIVE", 7003, 0},
    {0x06, "IO_PROCESS_BROADCAST", 7005, 0},        {0x0D, "IO_PROCESS_BROADCASTREV", 7011, 1},
    {0x07, "TOUCH_CONTROL_TOUCH_GESTURE", 7006, 0}, {0x08, "IO_PROCESS_VRHANLDE", 7007, 1},
    {0x0C, "IO_PROCESS_OBJ_JSON_RECEIVE", 7010, 1}, {0x0E, "IO_PROCESS_DEV_JSON_RECEIVE", 7012, 1},
    {0x0F, "IO_PROCESS_STRING_SEND", 7013, 1},
};

const size_t ROW_COUNT = 13;

class Catalogue : public ModuleTest {
protected:
    ~Catalogue() override { DestroyIcons(); }

    /// Ask for the catalogue once more; the answers pile up.
    void Register() { EXPECT_EQ(m_host.Call(0, nullptr, &m_data), 1); }

    const SIOProcessNodeInfo& Row(size_t nIndex) { return m_data.arNodeInfo[static_cast<INT_PTR>(nIndex)]; }

    /// The bEnable column of one fresh catalogue, under this INI file.
    std::vector<int> EnabledUnder(std::string_view iniText) {
        m_host.WriteNodePluginIni(iniText);
        DestroyIcons();
        m_data.arNodeInfo.RemoveAll();
        Register();
        std::vector<int> column;
        for (INT_PTR i = 0; i < m_data.arNodeInfo.GetSize(); ++i) {
            column.push_back(m_data.arNodeInfo[i].bEnable);
        }
        return column;
    }

    SIOProcessPluginData m_data;

private:
    void DestroyIcons() {
        for (INT_PTR i = 0; i < m_data.arNodeInfo.GetSize(); ++i) {
            if (m_data.arNodeInfo[i].hIcon != nullptr) {
                DestroyIcon(m_data.arNodeInfo[i].hIcon);
            }
        }
    }
};

TEST_F(Catalogue, HasThirteenRowsInOrder) {
    Register();
    ASSERT_EQ(m_data.arNodeInfo.GetSize(), 13);
    for (size_t i = 0; i < ROW_COUNT; ++i) {
        SCOPED_TRACE(ROWS[i].pszNameKey);
        const unsigned char bytes[16] = {0x40, 0xBB, 0x64, 0x81, 0x6A, 0x6B, 0x07, 0x47,
                                         0x88, 0xB7, 0x38, 0x6B, 0xCB, 0x0D, 0x1B, ROWS[i].nTypeByte};
        EXPECT_EQ(std::memcmp(&Row(i).guidType, bytes, 16), 0);
        const std::array<unsigned, 4> words = {0x8164BB40, 0x47076B6A, 0x6B38B788,
                                               0x001B0DCB | unsigned{ROWS[i].nTypeByte} << 24};
        EXPECT_EQ(GuidWords(Row(i).guidType), words);
        EXPECT_EQ(Utf8(Row(i).strName), ROWS[i].pszNameKey);
        EXPECT_EQ(Utf8(Row(i).strTip), ROWS[i].pszNameKey);
        EXPECT_EQ(Row(i).bEnable, ROWS[i].bEnable);
    }
}

TEST_F(Catalogue, LeavesTheHostsFieldsAtTheirDefaults) {
    Register();
    ASSERT_EQ(m_data.arNodeInfo.GetSize(), 13);
    for (size_t i = 0; i < ROW_COUNT; ++i) {
        SCOPED_TRACE(ROWS[i].pszNameKey);
        EXPECT_EQ(Row(i).nInfoKind, 1);
        EXPECT_EQ(Utf8(Row(i).strAux), "");
        EXPECT_EQ(Row(i).hAux, nullptr);
        EXPECT_EQ(Row(i).arAux.GetSize(), 0);
        for (const unsigned nReserved : Row(i).aReserved) {
            EXPECT_EQ(nReserved, 0u);
        }
    }
}

TEST_F(Catalogue, NamesComeFromTheTextTable) {
    m_host.WriteFile("Config/Texts/en.json", R"({"IO_PROCESS_KEYBOARD": "Keyboard", "IO_PROCESS_VRHANLDE": "Hand"})");
    ASSERT_TRUE(SetTextTable(ETextTable::English));
    Register();
    EXPECT_EQ(Utf8(Row(0).strName), "Keyboard");
    EXPECT_EQ(Utf8(Row(0).strTip), "Keyboard");
    EXPECT_EQ(Utf8(Row(3).strName), "IO_PROCESS_MOUSE") << "a key without a text is its own text";
    EXPECT_EQ(Utf8(Row(9).strName), "Hand");
    EXPECT_EQ(Utf8(Row(9).strTip), "Hand");
}

TEST_F(Catalogue, NamesFollowTheTableInForceWhenAskedFor) {
    m_host.WriteFile("Config/Texts/en.json", R"({"IO_PROCESS_MOUSE": "Mouse"})");
    m_host.WriteFile("Config/Texts/zh.json", R"({"IO_PROCESS_MOUSE": "鼠标"})");
    ASSERT_TRUE(SetTextTable(ETextTable::English));
    Register();
    ASSERT_TRUE(SetTextTable(ETextTable::Chinese));
    Register();
    EXPECT_EQ(Utf8(Row(3).strName), "Mouse");
    EXPECT_EQ(Utf8(Row(13 + 3).strName), "鼠标");
}

TEST_F(Catalogue, LoadsEachIconFromTheModuleInItsOwnSize) {
    TakeImageCalls();
    Register();
    const std::vector<ImageCall> calls = TakeImageCalls();
    ASSERT_EQ(calls.size(), ROW_COUNT);
    for (size_t i = 0; i < ROW_COUNT; ++i) {
        SCOPED_TRACE(ROWS[i].pszNameKey);
        EXPECT_EQ(calls[i].hInstance, m_host.Module());
        EXPECT_EQ(calls[i].nName, ROWS[i].nIconId);
        EXPECT_EQ(calls[i].nType, 1u);
        EXPECT_EQ(calls[i].nWidth, 0);
        EXPECT_EQ(calls[i].nHeight, 0);
        EXPECT_EQ(calls[i].nFlags, 0u);
        EXPECT_EQ(Row(i).hIcon, calls[i].hResult);
    }
}

TEST_F(Catalogue, EveryRowHasAnIconOfItsOwn) {
    Register();
    std::set<HICON> icons;
    for (size_t i = 0; i < ROW_COUNT; ++i) {
        EXPECT_NE(Row(i).hIcon, nullptr) << ROWS[i].pszNameKey;
        icons.insert(Row(i).hIcon);
    }
    EXPECT_EQ(icons.size(), ROW_COUNT);
}

TEST_F(Catalogue, ModuleHoldsExactlyTheIconsOfItsRows) {
    std::vector<unsigned> ids;
    for (unsigned nId = 6990; nId <= 7030; ++nId) {
        const HANDLE hIcon = LoadImageW(m_host.Module(), MAKEINTRESOURCEW(nId), IMAGE_ICON, 0, 0, 0);
        if (hIcon != nullptr) {
            ids.push_back(nId);
            DestroyIcon(static_cast<HICON>(hIcon));
        }
    }
    EXPECT_EQ(ids,
              (std::vector<unsigned>{7000, 7001, 7002, 7003, 7004, 7005, 7006, 7007, 7009, 7010, 7011, 7012, 7013}));
}

TEST_F(Catalogue, IsAppendedBehindWhatTheArrayHolds) {
    SIOProcessNodeInfo foreign;
    foreign.nInfoKind = 42;
    foreign.strName = L"foreign";
    foreign.bEnable = 7;
    foreign.aReserved[2] = 5;
    foreign.arAux.Add(L"kept");
    m_data.arNodeInfo.Add(foreign);
    Register();
    ASSERT_EQ(m_data.arNodeInfo.GetSize(), 14);
    EXPECT_EQ(Row(0).nInfoKind, 42);
    EXPECT_EQ(Utf8(Row(0).strName), "foreign");
    EXPECT_EQ(Row(0).bEnable, 7);
    EXPECT_EQ(Row(0).aReserved[2], 5u);
    EXPECT_EQ(Row(0).arAux.GetSize(), 1);
    EXPECT_EQ(Utf8(Row(1).strName), "IO_PROCESS_KEYBOARD");
    EXPECT_EQ(Row(1).nInfoKind, 1);
    EXPECT_EQ(Row(1).arAux.GetSize(), 0);
    EXPECT_EQ(Utf8(Row(13).strName), "IO_PROCESS_STRING_SEND");
}

TEST_F(Catalogue, RegisteringTwiceGivesEveryRowTwice) {
    Register();
    Register();
    ASSERT_EQ(m_data.arNodeInfo.GetSize(), 26);
    for (size_t i = 0; i < ROW_COUNT; ++i) {
        EXPECT_EQ(GuidWords(Row(i).guidType), GuidWords(Row(ROW_COUNT + i).guidType));
    }
}

TEST_F(Catalogue, LeavesTheNodeSlotAlone) {
    P_ExtDevIOProcess node;
    m_data.pNode = &node;
    Register();
    EXPECT_EQ(m_data.pNode, &node);
}

TEST_F(Catalogue, ArrayOfImpossibleSizeRaisesInvalidArgument) {
    // Behind its virtual table an array consists of storage, size, capacity and step of growth.
    INT_PTR parts[sizeof(CArray<SIOProcessNodeInfo>) / sizeof(INT_PTR)];
    void* const pArray = &m_data.arNodeInfo;
    std::memcpy(parts, pArray, sizeof parts);
    parts[2] = std::numeric_limits<INT_PTR>::max();
    std::memcpy(pArray, parts, sizeof parts);
    ASSERT_EQ(m_data.arNodeInfo.GetSize(), std::numeric_limits<INT_PTR>::max());
    TakeImageCalls();
    bool bRaised = false;
    try {
        m_host.Call(0, nullptr, &m_data);
    } catch (CInvalidArgException* pException) {
        bRaised = true;
        pException->Delete();
    }
    EXPECT_TRUE(bRaised);
    parts[2] = 0;
    std::memcpy(pArray, parts, sizeof parts);
    const std::vector<ImageCall> images = TakeImageCalls();
    ASSERT_EQ(images.size(), 1u);
    ASSERT_NE(images[0].hResult, nullptr);
    EXPECT_FALSE(DestroyIcon(static_cast<HICON>(images[0].hResult))) << "nobody's icon is destroyed already";
}

TEST_F(Catalogue, IgnoresItsArgument) {
    GUID guidArgument = TypeGuid(TYPE_MOUSE);
    EXPECT_EQ(m_host.Call(0, &guidArgument, &m_data), 1);
    EXPECT_EQ(GuidWords(guidArgument), GuidWords(TypeGuid(TYPE_MOUSE)));
    ASSERT_EQ(m_data.arNodeInfo.GetSize(), static_cast<INT_PTR>(ROW_COUNT));
    for (size_t i = 0; i < ROW_COUNT; ++i) {
        EXPECT_EQ(GuidWords(Row(i).guidType), GuidWords(TypeGuid(ROWS[i].nTypeByte)));
        EXPECT_EQ(Utf8(Row(i).strName), ROWS[i].pszNameKey);
    }
}

// ---- Which rows are offered ----------------------------------------------------------------------------------------

std::vector<int> WithoutIni() {
    return {1, 1, 1, 1, 0, 0, 0, 1, 0, 1, 1, 1, 1};
}

TEST_F(Catalogue, IniKeysRuleTheirOwnRowsOnly) {
    struct Key {
        const char* pszKey;
        size_t nRow;
    };
    const Key KEYS[] = {
        {"NetParameterSend", 4}, {"NetParameterReceive", 5}, {"BroadcastSend", 6}, {"Gesture", 8}, {"VRHandle", 9}};
    for (const Key& key : KEYS) {
        for (const int nValue : {0, 1, 2, -1, -2147483647, 2147483647}) {
            SCOPED_TRACE(std::string(key.pszKey) + "=" + std::to_string(nValue));
            std::vector<int> expected = WithoutIni();
            expected[key.nRow] = nValue;
            EXPECT_EQ(EnabledUnder("[IOProcess]\r\n" + std::string(key.pszKey) + "=" + std::to_string(nValue) + "\r\n"),
                      expected);
        }
    }
}

TEST_F(Catalogue, AllIniKeysTogether) {
    EXPECT_EQ(EnabledUnder("[IOProcess]\r\nNetParameterSend=1\r\nNetParameterReceive=1\r\nBroadcastSend=1\r\n"
                           "Gesture=1\r\nVRHandle=1\r\n"),
              (std::vector<int>{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(EnabledUnder("[IOProcess]\r\nNetParameterSend=2\r\nNetParameterReceive=3\r\nBroadcastSend=4\r\n"
                           "Gesture=5\r\nVRHandle=6\r\n"),
              (std::vector<int>{1, 1, 1, 1, 2, 3, 4, 1, 5, 6, 1, 1, 1}));
}

TEST_F(Catalogue, HiddenRowsDoNotHideTheFixedRowsBehindThem) {
    EXPECT_EQ(EnabledUnder("[IOProcess]\r\nNetParameterSend=0\r\nNetParameterReceive=0\r\nBroadcastSend=0\r\n"
                           "Gesture=0\r\nVRHandle=0\r\n"),
              (std::vector<int>{1, 1, 1, 1, 0, 0, 0, 1, 0, 0, 1, 1, 1}));
}

TEST_F(Catalogue, NextCatalogueStartsFromTheDefaultsAgain) {
    EXPECT_EQ(EnabledUnder("[IOProcess]\r\nVRHandle=0\r\n")[9], 0);
    EXPECT_EQ(EnabledUnder(""), WithoutIni());
}

TEST_F(Catalogue, IniKeysOfFixedRowsMeanNothing) {
    EXPECT_EQ(EnabledUnder("[IOProcess]\r\nKeyboard=0\r\nKeyCheck=0\r\nMouse=0\r\nBroadcastReceive=0\r\n"
                           "BroadcastRev=0\r\nObjJsonReceive=0\r\nDevJsonReceive=0\r\nStringSend=0\r\n"),
              WithoutIni());
}

TEST_F(Catalogue, IniKeysCountInTheirSectionOnly) {
    EXPECT_EQ(EnabledUnder("Gesture=1\r\n[Other]\r\nNetParameterSend=1\r\nVRHandle=0\r\n"), WithoutIni());
    EXPECT_EQ(EnabledUnder("[Other]\r\nGesture=0\r\n[ioprocess]\r\ngesture=1\r\n")[8], 1) << "names are without case";
}

TEST_F(Catalogue, BrokenIniFilesCountAsEmpty) {
    EXPECT_EQ(EnabledUnder(""), WithoutIni());
    EXPECT_EQ(EnabledUnder("[IOProcess\r\nGesture=1\r\n"), WithoutIni());
    EXPECT_EQ(EnabledUnder(std::string("\x00\x01\x02[[[=\xFF\xFE", 10)), WithoutIni());
    EXPECT_EQ(EnabledUnder("[IOProcess]\r\nVRHandle=off\r\n")[9], 0) << "a text without digits is 0";
}

TEST_F(Catalogue, IniFileOfAnotherFolderIsNotRead) {
    m_host.WriteFile("NodePlugin.ini", "[IOProcess]\r\nGesture=1\r\n");
    m_host.WriteFile("Plugins/NodePlugin.ini", "[IOProcess]\r\nGesture=1\r\n");
    Register();
    EXPECT_EQ(Row(8).bEnable, 0);
}

} // namespace
