#include "nodes/json/DeviceJsonReceiveNode.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <utility>

#include "host/HostJson.h"
#include "host/NodeTypeGuid.h"
#include "nodes/shared/SharedRows.h"

namespace {

enum { INPUT_DEVICE_ID = 1402, INPUT_CHECK_KEY_VALUE = 1403 };
enum { INPUT_KEY_1 = 1404, INPUT_KEY_2 = 1406, INPUT_KEY_3 = 1408 };
enum { INPUT_VALUE_1 = 1405, INPUT_VALUE_2 = 1407, INPUT_VALUE_3 = 1409 };
enum { OUTPUT_RECEIVE_DATA = 1452, OUTPUT_EVENT = 1453 };

/// A key or value input; its display text ends in the number of the pair.
constexpr ParamRow PairRow(unsigned nId, const wchar_t* pszName, const wchar_t* pszDisplayKey,
                           const wchar_t* pszNumber) {
    ParamRow row = StringRow(nId, pszName, pszDisplayKey);
    row.pszDisplaySuffix = pszNumber;
    return row;
}

constexpr ParamRow INPUTS[] = {
    VersionRow(1),
    IntegerRow(INPUT_DEVICE_ID, L"DevId", L"IO_PROCESS_NETSEND_DEVID", {1, 1, 10000, 1}, 1),
    {INPUT_CHECK_KEY_VALUE, L"CheckKeyValue", L"IO_PROCESS_DEV_JSON_CHECK_KEY_VALUE", PARAM_SWITCH_BOX, RANGE_SWITCH,
     FLAGS_ORDINARY, 0},
    PairRow(INPUT_KEY_1, L"Key1", L"IO_PROCESS_DEV_JSON_KEY", L"1"),
    PairRow(INPUT_VALUE_1, L"Value1", L"IO_PROCESS_DEV_JSON_VALUE", L"1"),
    PairRow(INPUT_KEY_2, L"Key2", L"IO_PROCESS_DEV_JSON_KEY", L"2"),
    PairRow(INPUT_VALUE_2, L"Value2", L"IO_PROCESS_DEV_JSON_VALUE", L"2"),
    PairRow(INPUT_KEY_3, L"Key3", L"IO_PROCESS_DEV_JSON_KEY", L"3"),
    PairRow(INPUT_VALUE_3, L"Value3", L"IO_PROCESS_DEV_JSON_VALUE", L"3"),
};

constexpr ParamRow OUTPUTS[] = {JsonTextRow(OUTPUT_RECEIVE_DATA), JsonEventRow(OUTPUT_EVENT)};

constexpr GroupRow OUTPUT_GROUPS[] = {{1451, L"Outputs", L"TOUCH_CONTROL_OUTPUTS", OUTPUTS}};

/// The value that the text says as a whole; the null value when it can't be parsed, for whatever reason.
web::json::value ParseJsonText(const CString& strText) try {
    // One buffer for all texts, which one thread delivers. Allocating and freeing long blocks slows the library down:
    // with a string for each text, those of 258 to 5385 characters took 1.25 times the bare parse instead of 1.04.
    // Texts of 54,885 need such blocks anyway and took as long either way.
    constexpr int MOST_KEPT = 65'536;
    static std::wstring s_kept;
    std::wstring own;
    std::wstring& text = strText.GetLength() > MOST_KEPT ? own : s_kept;
    text.assign(strText.GetString(), static_cast<size_t>(strText.GetLength()));
    web::json::keep_object_element_order(true); // a setting of the process
    return web::json::value::parse(text);
} catch (...) {
    EndException();
    return web::json::value();
}

/// Whether the object holds all pairs of key and value whose key isn't empty.
bool HoldsPairs(web::json::value& object, std::initializer_list<std::pair<VEKParam*, VEKParam*>> pairs) {
    CStringArray arKey;
    CStringArray arValue;
    G_ParseDataFormJsObj(object, arKey, arValue);
    for (const auto& [pKey, pValue] : pairs) {
        if (TextOf(*pKey).IsEmpty()) {
            continue;
        }
        const int nIndex = G_FindString(arKey, TextOf(*pKey));
        if (nIndex < 0 || arValue.GetAt(nIndex).Compare(TextOf(*pValue)) != 0) {
            return false;
        }
    }
    return true;
}

CControlLayout s_layout(5, L"CVEKIODevJsonReceive.XML");

} // namespace

const NodeType CDevJsonReceive::TYPE{GUID_IOPROCESS_DEVICE_JSON_RECEIVE,
                                     {1401, L"Base param", L"IO_PROCESS_DEV_JSON_RECEIVE", INPUTS},
                                     OUTPUT_GROUPS,
                                     &s_layout};

int CDevJsonReceive::DevIOEventOccurred(EventRecordPtr pRecord) try {
    SGraphNode* pGraphNode = GraphNodeOf(*this);
    if (!CheckRecord(pRecord, *this, pGraphNode, L"[%s.%s.%s]DevIOEventOccurred: pIOData == NULL") ||
        DeviceOf(*pRecord) != DEVICE_TEXT || PayloadOf(*pRecord) == nullptr) {
        return 0;
    }
    const auto& text = *static_cast<const SDeviceTextData*>(PayloadOf(*pRecord));
    const auto inputs = FindInputs(*this, *pGraphNode, INPUT_DEVICE_ID, INPUT_CHECK_KEY_VALUE, INPUT_KEY_1, INPUT_KEY_2,
                                   INPUT_KEY_3, INPUT_VALUE_1, INPUT_VALUE_2, INPUT_VALUE_3);
    if (std::ranges::find(inputs, nullptr) != inputs.end()) {
        return 0;
    }
    const auto [pDeviceId, pCheck, pKey1, pKey2, pKey3, pValue1, pValue2, pValue3] = inputs;
    if (IntegerOf(*pDeviceId) != DeviceIdOf(text)) {
        return 0;
    }
    web::json::value value = ParseJsonText(TextOf(text));
    if (value.is_null()) {
        WriteNodeLog(LEVEL_ERROR, *this, *pGraphNode, L"[%s.%s.%s]DevIOEventOccurred:JSON解析失败");
        return 0;
    }
    if (IntegerOf(*pCheck) != 0) {
        if (!value.is_object()) {
            WriteNodeLog(LEVEL_ERROR, *this, *pGraphNode, L"[%s.%s.%s]DevIOEventOccurred:不是JSON对象");
            return 0;
        }
        if (!HoldsPairs(value, {{pKey1, pValue1}, {pKey2, pValue2}, {pKey3, pValue3}})) {
            return 0;
        }
    }
    return Accept(OUTPUT_RECEIVE_DATA, TextOf(text), L"[%s.%s.%s 触发[接收设备json]事件]", OUTPUT_EVENT);
} catch (...) {
    return EndException();
}
