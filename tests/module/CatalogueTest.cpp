// The catalogue of node types: its rows' icons and visibility. What each row says, and its place, stands in types/.
#include <cstring>
#include <limits>
#include <set>

#include "ContractTypes.h"
#include "HostSetup.h"
#include "SystemCalls.h"

namespace {

INT_PTR RowCount() {
    return std::ssize(ContractTypes());
}

class Catalogue : public ModuleTest {
protected:
    ~Catalogue() override { DestroyIcons(); }

    /// Ask for the catalogue once more; the answers pile up.
    void Register() { EXPECT_EQ(m_host.Call(0, nullptr, &m_data), 1); }

    const SIOProcessNodeInfo& Row(INT_PTR nIndex) { return m_data.arNodeInfo[nIndex]; }

    /// The bEnable column of one fresh catalogue, under this INI file.
    std::vector<int> EnabledUnder(std::string_view iniText) {
        m_host.WriteNodePluginIni(iniText);
        DestroyIcons();
        m_data.arNodeInfo.RemoveAll();
        Register();
        std::vector<int> column;
        for (INT_PTR i = 0; i < m_data.arNodeInfo.GetSize(); ++i) {
            column.push_back(Row(i).bEnable);
        }
        return column;
    }

    SIOProcessPluginData m_data;

private:
    void DestroyIcons() {
        for (INT_PTR i = 0; i < m_data.arNodeInfo.GetSize(); ++i) {
            if (Row(i).hIcon != nullptr) {
                DestroyIcon(Row(i).hIcon);
            }
        }
    }
};

TEST_F(Catalogue, HasTheTypesOfContractTypesInTheirOrder) {
    Register();
    std::vector<std::string> names;
    for (INT_PTR i = 0; i < m_data.arNodeInfo.GetSize(); ++i) {
        names.push_back("a type without a row in ContractTypes.cpp");
        for (const ContractType& type : ContractTypes()) {
            if (IsEqualGUID(TypeGuid(type.nTypeByte), Row(i).guidType)) {
                names.back() = type.pszName;
            }
        }
    }
    std::vector<std::string> expected;
    for (const ContractType& type : ContractTypes()) {
        expected.push_back(type.pszName);
    }
    EXPECT_EQ(names, expected);
}

TEST_F(Catalogue, LoadsEachIconFromTheModuleInItsOwnSize) {
    TakeImageCalls();
    Register();
    const std::vector<ImageCall> calls = TakeImageCalls();
    ASSERT_EQ(std::ssize(calls), RowCount());
    std::set<HICON> icons;
    for (INT_PTR i = 0; i < RowCount(); ++i) {
        SCOPED_TRACE(i);
        const ImageCall& call = calls[static_cast<size_t>(i)];
        EXPECT_EQ(call.hInstance, m_host.Module());
        EXPECT_EQ(call.nType, 1u);
        EXPECT_EQ(call.nWidth, 0);
        EXPECT_EQ(call.nHeight, 0);
        EXPECT_EQ(call.nFlags, 0u);
        EXPECT_EQ(Row(i).hIcon, call.hResult);
        EXPECT_NE(call.hResult, nullptr) << "icon " << call.nName;
        icons.insert(Row(i).hIcon);
    }
    EXPECT_EQ(icons.size(), calls.size()) << "each row has one of its own";
}

TEST_F(Catalogue, IsAppendedBehindWhatTheArrayHoldsInTheTextsOfTheMoment) {
    SIOProcessNodeInfo foreign;
    foreign.nInfoKind = 42;
    foreign.strName = L"foreign";
    foreign.bEnable = 7;
    m_data.arNodeInfo.Add(foreign);
    P_ExtDevIOProcess node;
    m_data.pNode = &node;
    m_host.WriteFile("Config/Texts/en.json", R"({"IO_PROCESS_MOUSE": "Mouse"})");
    m_host.WriteFile("Config/Texts/zh.json", R"({"IO_PROCESS_MOUSE": "鼠标"})");
    ASSERT_TRUE(SetTextTable(ETextTable::English));
    Register();
    ASSERT_TRUE(SetTextTable(ETextTable::Chinese));
    Register();
    ASSERT_EQ(m_data.arNodeInfo.GetSize(), 1 + 2 * RowCount());
    EXPECT_EQ(Row(0).nInfoKind, 42);
    EXPECT_EQ(Utf8(Row(0).strName), "foreign");
    EXPECT_EQ(Row(0).bEnable, 7);
    EXPECT_EQ(m_data.pNode, &node) << "the slot isn't the catalogue's";
    EXPECT_EQ(Utf8(Row(1 + 3).strName), "Mouse");
    EXPECT_EQ(Utf8(Row(1 + RowCount() + 3).strName), "鼠标");
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
    EXPECT_TRUE(RaisesInvalidArgument([this] { m_host.Call(0, nullptr, &m_data); }));
    parts[2] = 0;
    std::memcpy(pArray, parts, sizeof parts);
    const std::vector<ImageCall> images = TakeImageCalls();
    ASSERT_EQ(images.size(), 1u);
    ASSERT_NE(images[0].hResult, nullptr);
    EXPECT_FALSE(DestroyIcon(static_cast<HICON>(images[0].hResult))) << "nobody's icon is destroyed already";
}

// ---- Which rows are offered ----------------------------------------------------------------------------------------

const std::vector<int> WITHOUT_INI = {1, 1, 1, 1, 0, 0, 0, 1, 0, 1, 1, 1, 1};

TEST_F(Catalogue, IniKeysRuleTheirOwnRowsOnly) {
    ASSERT_EQ(EnabledUnder("").size(), WITHOUT_INI.size());
    const std::pair<const char*, size_t> KEYS[] = {
        {"NetParameterSend", 4}, {"NetParameterReceive", 5}, {"BroadcastSend", 6}, {"Gesture", 8}, {"VRHandle", 9}};
    for (const auto& [pszKey, nRow] : KEYS) {
        for (const int nValue : {0, 1, 2, -1, -2147483647, 2147483647}) {
            const std::string line = std::string(pszKey) + "=" + std::to_string(nValue);
            SCOPED_TRACE(line);
            std::vector<int> expected = WITHOUT_INI;
            expected[nRow] = nValue;
            EXPECT_EQ(EnabledUnder("[IOProcess]\r\n" + line + "\r\n"), expected);
        }
    }
}

TEST_F(Catalogue, IniKeysOfFixedRowsAreIgnored) {
    EXPECT_EQ(
        EnabledUnder("[IOProcess]\r\nKeyboard=0\r\nKeyCheck=0\r\nMouse=0\r\nBroadcastReceive=0\r\nBroadcastRev=0\r\n"
                     "ObjJsonReceive=0\r\nDevJsonReceive=0\r\nStringSend=0\r\n"),
        WITHOUT_INI);
}

} // namespace
