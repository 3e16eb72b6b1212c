#include "nodes/json/DeviceJsonReceiveNode.h"

#include <array>

#include "host/NodeTables.h"
#include "host/NodeTypeGuid.h"
#include "nodes/json/JsonNodes.h"
#include "nodes/json/JsonText.h"

namespace {

enum : unsigned {
    INPUT_GROUP = 1401,
    INPUT_DEVICE_ID = 1402,
    INPUT_CHECK_KEY_VALUE = 1403,
    INPUT_KEY_1 = 1404, // each key's value has the id behind it
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

/// The inputs that decide on a text, each at its id's distance from the first one's.
using Inputs = std::array<const VEKParam*, INPUT_VALUE_3 - INPUT_DEVICE_ID + 1>;

const VEKParam& InputOf(const Inputs& inputs, unsigned nId) {
    return *inputs[nId - INPUT_DEVICE_ID];
}

/// Look the inputs up; false when one is missing.
bool FindInputs(const VEKProperty& node, const SGraphNode& graphNode, Inputs& inputs) {
    unsigned nId = INPUT_DEVICE_ID;
    for (const VEKParam*& pInput : inputs) {
        pInput = FindInput(node, graphNode, nId++);
        if (pInput == nullptr) {
            return false;
        }
    }
    return true;
}

/// Whether the object holds all pairs whose key isn't empty.
bool HoldsPairs(const Inputs& inputs, const web::json::value& object) {
    CStringArray arKey;
    CStringArray arValue;
    G_ParseDataFormJsObj(object, arKey, arValue);
    for (const unsigned nKeyId : {INPUT_KEY_1, INPUT_KEY_2, INPUT_KEY_3}) {
        const CString& strKey = InputOf(inputs, nKeyId).m_strValue;
        if (strKey.IsEmpty()) {
            continue;
        }
        const int nIndex = G_FindString(arKey, strKey);
        if (nIndex < 0 || arValue.GetAt(nIndex).Compare(InputOf(inputs, nKeyId + 1).m_strValue) != 0) {
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

int CDevJsonReceive::DevIOEventOccurred(const SIOEventRecord* pRecord) try {
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
    Inputs inputs = {};
    if (!FindInputs(*this, graphNode, inputs) || InputOf(inputs, INPUT_DEVICE_ID).m_nValue != text.m_nDeviceId) {
        return 0;
    }
    const web::json::value value = ParseJsonText(text.m_strText);
    if (value.is_null()) {
        WriteNodeLog(LOG_ERROR, *this, graphNode, L"[%s.%s.%s]DevIOEventOccurred:JSON解析失败");
        return 0;
    }
    if (InputOf(inputs, INPUT_CHECK_KEY_VALUE).m_nValue != 0) {
        if (!value.is_object()) {
            WriteNodeLog(LOG_ERROR, *this, graphNode, L"[%s.%s.%s]DevIOEventOccurred:不是JSON对象");
            return 0;
        }
        if (!HoldsPairs(inputs, value)) {
            return 0;
        }
    }
    return AcceptJsonText(*this, {OUTPUT_RECEIVE_DATA, OUTPUT_EVENT}, text.m_strText,
                          L"[%s.%s.%s 触发[接收设备json]事件]");
} catch (...) {
    return RejectFailure();
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
