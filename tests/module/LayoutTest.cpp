// Where the fields of the records lie that host and module hand to each other.
#include <cstring>

#include "ModuleHost.h"

namespace {

template <typename Record, typename Field>
std::ptrdiff_t Offset(const Record& record, const Field& field) {
    return reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&record);
}

TEST(RecordLayout, StringIsOnePointerToItsCharacters) {
    ASSERT_EQ(sizeof(CString), 8u);
    const CString strText = L"text";
    const wchar_t* pszText;
    std::memcpy(&pszText, static_cast<const void*>(&strText), sizeof pszText);
    EXPECT_STREQ(pszText, L"text");
}

TEST(RecordLayout, ArrayIsStorageSizeCapacityAndStep) {
    CArray<int> array;
    array.SetSize(3, 16);
    array[0] = 41;
    array.SetSize(4);
    INT_PTR parts[5];
    ASSERT_EQ(sizeof array, sizeof parts);
    std::memcpy(parts, static_cast<const void*>(&array), sizeof parts);
    EXPECT_EQ(parts[1], reinterpret_cast<INT_PTR>(array.GetData()));
    EXPECT_EQ(parts[2], 4);
    EXPECT_GE(parts[3], 4);
    EXPECT_EQ(parts[4], 16);
}

TEST(RecordLayout, CatalogueEntry) {
    const SIOProcessNodeInfo info;
    EXPECT_EQ(Offset(info, info.nInfoKind), 0);
    EXPECT_EQ(Offset(info, info.guidType), 4);
    EXPECT_EQ(Offset(info, info.strName), 24);
    EXPECT_EQ(Offset(info, info.strAux), 32);
    EXPECT_EQ(Offset(info, info.strTip), 40);
    EXPECT_EQ(Offset(info, info.hIcon), 48);
    EXPECT_EQ(Offset(info, info.hAux), 56);
    EXPECT_EQ(Offset(info, info.bEnable), 64);
    EXPECT_EQ(Offset(info, info.arAux), 72);
    EXPECT_EQ(Offset(info, info.aReserved), 112);
    EXPECT_EQ(sizeof info, 128u);
}

TEST(RecordLayout, CatalogueEntryDefaults) {
    const SIOProcessNodeInfo info;
    EXPECT_EQ(info.nInfoKind, 1);
    EXPECT_EQ(GuidWords(info.guidType), (std::array<unsigned, 4>{0, 0, 0, 0}));
    EXPECT_EQ(Utf8(info.strName), "");
    EXPECT_EQ(Utf8(info.strAux), "");
    EXPECT_EQ(Utf8(info.strTip), "");
    EXPECT_EQ(info.hIcon, nullptr);
    EXPECT_EQ(info.hAux, nullptr);
    EXPECT_EQ(info.bEnable, 1);
    EXPECT_EQ(info.arAux.GetSize(), 0);
    for (const unsigned nReserved : info.aReserved) {
        EXPECT_EQ(nReserved, 0u);
    }
}

TEST(RecordLayout, PluginData) {
    const SIOProcessPluginData data;
    EXPECT_EQ(Offset(data, data.arNodeInfo), 0);
    EXPECT_EQ(Offset(data, data.pNode), 40);
}

TEST(RecordLayout, NodeReference) {
    const SIOProcessNodeRef ref{};
    EXPECT_EQ(Offset(ref, ref.guidType), 0);
    EXPECT_EQ(Offset(ref, ref.pNode), 16);
    EXPECT_EQ(sizeof ref, 24u);
}

TEST(RecordLayout, EventRecord) {
    const SIOEventRecord record{};
    EXPECT_EQ(Offset(record, record.m_nDevice), 0);
    EXPECT_EQ(Offset(record, record.m_nEvent), 4);
    EXPECT_EQ(Offset(record, record.m_pPayload), 8);
    EXPECT_EQ(sizeof record, 16u);
}

TEST(RecordLayout, KeyEventDataHasItsTextAsSecondMember) {
    const SKeyEventData key;
    EXPECT_EQ(Offset(key, key.m_strText), 8);
}

TEST(RecordLayout, MouseDataFieldsInOrder) {
    const SQORMouseData sample(7, 1.5f, 2.5f, CPoint(3, 4), 9);
    EXPECT_EQ(Offset(sample, sample.m_fRelativeX), 8);
    EXPECT_EQ(Offset(sample, sample.m_fRelativeY), 12);
    EXPECT_EQ(Offset(sample, sample.m_ptPixel), 16);
    EXPECT_EQ(Offset(sample, sample.m_nPointer), 24);
    EXPECT_EQ(Offset(sample, sample.m_bRelative), 28);
    EXPECT_EQ(sample.m_fRelativeX, 1.5f);
    EXPECT_EQ(sample.m_fRelativeY, 2.5f);
    EXPECT_EQ(sample.m_ptPixel.x, 3);
    EXPECT_EQ(sample.m_ptPixel.y, 4);
    EXPECT_EQ(sample.m_nPointer, 7);
    EXPECT_EQ(sample.m_bRelative, 9);
}

TEST(RecordLayout, IntegerAndPointerValueShareOneSlot) {
    VEKParam param(1, L"", L"", 0, 8);
    EXPECT_EQ(static_cast<const void*>(&param.m_nValue), static_cast<const void*>(&param.m_pValue));
    EXPECT_EQ(sizeof param.m_pValue, 8u);
    EXPECT_EQ(sizeof param.m_szTypeName, 128 * sizeof(wchar_t));
}

} // namespace
