#include "nodes/json/DeviceJsonReceiveNode.h"

#include <exception>
#include <string>
#include <type_traits>

#include "host/HostJson.h"
#include "host/NodeTables.h"
#include "host/NodeTypeGuid.h"
#include "nodes/json/JsonNodes.h"

namespace {

enum : unsigned {
    INPUT_GROUP = 1401,
    INPUT_DEVICE_ID = 1402,
    INPUT_CHECK_KEY_VALUE = 1403,
    INPUT_KEY_1 = 1404,
    INPUT_VALUE_1 = 1405,
    INPUT_KEY_2 = 1406,
    INPUT_VALUE_2 = 1407,
    INPUT_KEY_3 = 1408,
    INPUT_VALUE_3 = 1409,

    OUTPUT_GROUP = 1451,
    OUTPUT_RECEIVE_DATA = 1452,
    OUTPUT_EVENT = 1453,
};

/// A key or value input; its display text ends in the number of the pair.
constexpr ParamRow PairRow(unsigned nId, const wchar_t* pszName, const wchar_t* pszDisplayKey,
                           const wchar_t* pszNumber) {
    ParamRow row = StringRow(nId, pszName, pszDisplayKey);
    row.pszDisplaySuffix = pszNumber;
    return row;
}

constexpr ParamRow INPUTS[] = {
    VersionRow(1),
    {.nId = INPUT_DEVICE_ID,
     .pszName = L"DevId",
     .pszDisplayKey = L"IO_PROCESS_NETSEND_DEVID",
     .codes = PARAM_INTEGER,
     .range = ParamRange{1, 1, 10000, 1},
     .flags = FLAGS_ORDINARY,
     .nValue = 1},
    {.nId = INPUT_CHECK_KEY_VALUE,
     .pszName = L"CheckKeyValue",
     .pszDisplayKey = L"IO_PROCESS_DEV_JSON_CHECK_KEY_VALUE",
     .codes = PARAM_SWITCH_BOX,
     .range = RANGE_SWITCH,
     .flags = FLAGS_ORDINARY,
     .nValue = 0},
    PairRow(INPUT_KEY_1, L"Key1", L"IO_PROCESS_DEV_JSON_KEY", L"1"),
    PairRow(INPUT_VALUE_1, L"Value1", L"IO_PROCESS_DEV_JSON_VALUE", L"1"),
    PairRow(INPUT_KEY_2, L"Key2", L"IO_PROCESS_DEV_JSON_KEY", L"2"),
    PairRow(INPUT_VALUE_2, L"Value2", L"IO_PROCESS_DEV_JSON_VALUE", L"2"),
    PairRow(INPUT_KEY_3, L"Key3", L"IO_PROCESS_DEV_JSON_KEY", L"3"),
    PairRow(INPUT_VALUE_3, L"Value3", L"IO_PROCESS_DEV_JSON_VALUE", L"3"),
};

constexpr GroupRow INPUT_GROUP_ROW{
    .nId = INPUT_GROUP, .pszName = L"Base param", .pszDisplayKey = L"IO_PROCESS_DEV_JSON_RECEIVE", .params = INPUTS};

constexpr ParamRow OUTPUTS[] = {
    StringRow(OUTPUT_RECEIVE_DATA, L"ReceiveData", L"LOGIC_CAL_DATASEPARATE_DATA"),
    EventRow(OUTPUT_EVENT, L"Event", L"IO_PROCESS_RECEIVE_JSON"),
};

constexpr GroupRow OUTPUT_GROUPS[] = {
    {.nId = OUTPUT_GROUP, .pszName = L"Outputs", .pszDisplayKey = L"TOUCH_CONTROL_OUTPUTS", .params = OUTPUTS},
};

struct PairIds {
    unsigned nKey;
    unsigned nValue;
};

constexpr PairIds PAIRS[] = {{INPUT_KEY_1, INPUT_VALUE_1}, {INPUT_KEY_2, INPUT_VALUE_2}, {INPUT_KEY_3, INPUT_VALUE_3}};

/// The text as the JSON library takes it, whose strings are wide or UTF-8 depending on how it was built.
utility::string_t ToJsonText(const CString& strText) {
    utility::string_t text;
    if constexpr (std::is_same_v<utility::char_t, wchar_t>) {
        text.assign(strText.GetString(), strText.GetString() + strText.GetLength());
    } else {
        const int nBytes = WideCharToMultiByte(CP_UTF8, 0, strText, strText.GetLength(), nullptr, 0, nullptr, nullptr);
        text.resize(static_cast<size_t>(nBytes));
        WideCharToMultiByte(CP_UTF8, 0, strText, strText.GetLength(), reinterpret_cast<char*>(text.data()), nBytes,
                            nullptr, nullptr);
    }
    return text;
}

/// The parsed text; the null value when it isn't JSON.
web::json::value ParseJson(const CString& strText) {
    web::json::keep_object_element_order(true); // a setting of the process
    web::json::value value;
    try {
        value = web::json::value::parse(ToJsonText(strText));
    } catch (const std::exception&) {
        return web::json::value();
    }
    return value;
}

/// Whether the object holds all pairs of the node whose key isn't empty.
bool HoldsPairs(const CDevJsonReceive& node, const SGraphNode& graphNode, const web::json::value& object) {
    CStringArray arKey;
    CStringArray arValue;
    G_ParseDataFormJsObj(object, arKey, arValue);
    for (const PairIds& pair : PAIRS) {
        const CString& strKey = FindInput(node, graphNode, pair.nKey)->m_strValue;
        if (strKey.IsEmpty()) {
            continue;
        }
        const int nIndex = G_FindString(arKey, strKey);
        if (nIndex < 0 || arValue.GetAt(nIndex).Compare(FindInput(node, graphNode, pair.nValue)->m_strValue) != 0) {
            return false;
        }
    }
    return true;
}

CParamLayout s_layout;

} // namespace

CDevJsonReceive::CDevJsonReceive() {
    m_nKindCode = KIND_IO_PROCESS;
    m_guidType = GUID_IOPROCESS_DEVICE_JSON_RECEIVE;
    AppendInputGroup(m_lstParamGroup, INPUT_GROUP_ROW);
}

CDevJsonReceive::~CDevJsonReceive() = default;

void CDevJsonReceive::InitParam() {
    CheckJsonParams(*this);
}

void CDevJsonReceive::GetNodeOutput(SGraphNode* pGraphNode) {
    AppendOutputGroupsOnce(pGraphNode, OUTPUT_GROUPS);
}

int CDevJsonReceive::ProcessNode(SGraphNode* pGraphNode) {
    return ProcessJsonNode(*this, pGraphNode);
}

int CDevJsonReceive::DevIOEventOccurred(const SIOEventRecord* pRecord) {
    if (m_pOwnerClip == nullptr || m_pBaseGraphNode == nullptr) {
        return 0;
    }
    const SGraphNode& graphNode = *m_pBaseGraphNode;
    if (pRecord == nullptr) {
        WriteNodeLog(LOG_ERROR, *this, graphNode, L"[%s.%s.%s]DevIOEventOccurred: pIOData == NULL");
        return 0;
    }
    if (pRecord->m_nDevice != DEVICE_TEXT || pRecord->m_pPayload == nullptr) {
        return 0;
    }
    const auto& text = *static_cast<const SDeviceTextData*>(pRecord->m_pPayload);
    for (unsigned nId = INPUT_DEVICE_ID; nId <= INPUT_VALUE_3; ++nId) {
        if (FindInput(*this, graphNode, nId) == nullptr) {
            return 0;
        }
    }
    if (FindInput(*this, graphNode, INPUT_DEVICE_ID)->m_nValue != text.m_nDeviceId) {
        return 0;
    }
    const web::json::value value = ParseJson(text.m_strText);
    if (value.is_null()) {
        WriteNodeLog(LOG_ERROR, *this, graphNode, L"[%s.%s.%s]DevIOEventOccurred:JSON解析失败");
        return 0;
    }
    if (FindInput(*this, graphNode, INPUT_CHECK_KEY_VALUE)->m_nValue != 0) {
        if (!value.is_object()) {
            WriteNodeLog(LOG_ERROR, *this, graphNode, L"[%s.%s.%s]DevIOEventOccurred:不是JSON对象");
            return 0;
        }
        if (!HoldsPairs(*this, graphNode, value)) {
            return 0;
        }
    }
    return AcceptJsonText(*this, {OUTPUT_RECEIVE_DATA, OUTPUT_EVENT}, text.m_strText,
                          L"[%s.%s.%s 触发[接收设备json]事件]");
}

CVEKXml* CDevJsonReceive::GetXmlReader() {
    return s_layout.Reader();
}

int* CDevJsonReceive::GetXmlLoadStatePtr() {
    return s_layout.LoadState();
}

CString CDevJsonReceive::GetCtrlPosXmlPath() {
    return ParamLayoutPath(L"CVEKIODevJsonReceive.XML");
}

NodeParamInfoGrpArray* CDevJsonReceive::GetNodeParamInfoGrpAr() {
    return s_layout.Groups(*this);
}

void CDevJsonReceive::ReleaseLayout() {
    s_layout.Release();
}
