#include "protocol/RecordJson.h"

#include "base/TextUtf8.h"

namespace {

/// One field of the record: a text or a number.
struct RecordField {
    const char* pszName;
    CString CQORPanelRemoteCtrlData::*pText = nullptr;
    int CQORPanelRemoteCtrlData::*pNumber = nullptr;
};

constexpr RecordField RECORD_FIELDS[] = {
    {.pszName = "DevID", .pText = &CQORPanelRemoteCtrlData::m_strDevID},
    {.pszName = "DevName", .pText = &CQORPanelRemoteCtrlData::m_strDevName},
    {.pszName = "ClipName", .pText = &CQORPanelRemoteCtrlData::m_strClipName},
    {.pszName = "GroupName", .pText = &CQORPanelRemoteCtrlData::m_strGroupName},
    {.pszName = "KeyName", .pText = &CQORPanelRemoteCtrlData::m_strKeyName},
    {.pszName = "KeyNumber", .pNumber = &CQORPanelRemoteCtrlData::m_nKeyNumber},
    {.pszName = "HelpParameter", .pText = &CQORPanelRemoteCtrlData::m_strHelpParameter},
    {.pszName = "KeyValue", .pText = &CQORPanelRemoteCtrlData::m_strKeyValue},
    {.pszName = "Layer", .pNumber = &CQORPanelRemoteCtrlData::m_nLayer},
};

} // namespace

OrderedJson RecordToJson(const CQORPanelRemoteCtrlData& record) {
    OrderedJson fields = OrderedJson::object();
    for (const RecordField& field : RECORD_FIELDS) {
        if (field.pText != nullptr) {
            fields[field.pszName] = Utf8(record.*field.pText);
        } else {
            fields[field.pszName] = record.*field.pNumber;
        }
    }
    return fields;
}

CQORPanelRemoteCtrlData ReadRecord(const CFields& fields) {
    CQORPanelRemoteCtrlData record;
    for (const RecordField& field : RECORD_FIELDS) {
        if (field.pText != nullptr) {
            record.*field.pText = FromUtf8(fields.Text(field.pszName));
        } else {
            record.*field.pNumber = fields.Int(field.pszName);
        }
    }
    return record;
}

std::string HexText(std::span<const unsigned char> bytes) {
    constexpr char DIGITS[] = "0123456789abcdef";
    std::string strText;
    strText.reserve(2 * bytes.size());
    for (const unsigned char nByte : bytes) {
        strText += DIGITS[nByte >> 4];
        strText += DIGITS[nByte & 0x0F];
    }
    return strText;
}

std::string DottedText(std::span<const unsigned char> bytes) {
    std::string strText;
    strText.reserve(bytes.size());
    for (const unsigned char nByte : bytes) {
        strText += nByte >= 0x20 && nByte < 0x7F ? static_cast<char>(nByte) : '.';
    }
    return strText;
}
