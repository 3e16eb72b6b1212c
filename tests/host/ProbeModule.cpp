// A module for the host's tests. Its one kind of node does what its input "Do" says, when it is evaluated and at the
// other calls that the tests need; a second node type is never freed.
#include <stdexcept>

#include "host/EventRecord.h"
#include "host/HostRender.h"
#include "host/PluginContract.h"
#include "nodes/shared/NodeSupport.h"
#include "nodes/shared/NodeTables.h"

namespace {

constexpr GUID GUID_PROBE{0x11111111, 0x2222, 0x3333, {0x44, 0x44, 0x55, 0x55, 0x55, 0x55, 0x55, 0x55}};
constexpr GUID GUID_IMMORTAL{0x11111111, 0x2222, 0x3333, {0x44, 0x44, 0x55, 0x55, 0x55, 0x55, 0x55, 0x56}};

enum : unsigned {
    INPUT_GROUP = 1,
    INPUT_DO = 10,
    INPUT_FLOAT = 11,
    INPUT_TEXT = 12,
    INPUT_CHOICE = 13,
    INPUT_SEND = 14,

    OUTPUT_GROUP = 100,
    OUTPUT_FIRED = 101,
    OUTPUT_SEEN = 102,
    OUTPUT_FLOAT = 103,
    OUTPUT_TEXT = 104,
    OUTPUT_SECOND_GROUP = 110,
    OUTPUT_LATER = 111,
};

/// What the input "Do" asks for.
enum : int {
    DO_NOTHING = 0,
    DO_RAISE = 1,
    DO_RAISE_STANDARD = 2,
    DO_POST_TO_HOST = 3,
    DO_NOTIFY = 4,
    DO_REDRAW = 5,
    DO_FIRE = 6,
    DO_FIRE_WHEN_DESTROYED = 7,
    DO_RAISE_IN_INIT = 8,
    DO_RAISE_IN_OUTPUTS = 9,
    DO_RAISE_IN_EDIT = 10,
};

constexpr ParamRow INPUTS[] = {
    {.nId = INPUT_DO, .pszName = L"Do", .pszDisplayKey = L"PROBE_DO", .codes = PARAM_INTEGER},
    {.nId = INPUT_FLOAT,
     .pszName = L"Float",
     .pszDisplayKey = L"PROBE_FLOAT",
     .codes = PARAM_FLOAT,
     .range = ParamRange{0.5f, -1, 1, 0.25f}},
    {.nId = INPUT_TEXT, .pszName = L"Text", .pszDisplayKey = L"PROBE_TEXT", .codes = PARAM_STRING},
    {.nId = INPUT_CHOICE, .pszName = L"Choice", .pszDisplayKey = L"PROBE_CHOICE", .codes = PARAM_CHOICE},
    {.nId = INPUT_SEND, .pszName = L"Send", .pszDisplayKey = L"PROBE_SEND", .codes = PARAM_EVENT},
};

constexpr GroupRow INPUT_GROUP_ROW{
    .nId = INPUT_GROUP, .pszName = L"Base param", .pszDisplayKey = L"PROBE", .params = INPUTS};

constexpr ParamRow OUTPUTS[] = {
    {.nId = OUTPUT_FIRED, .pszName = L"Fired", .pszDisplayKey = L"PROBE_FIRED", .codes = PARAM_EVENT},
    {.nId = OUTPUT_SEEN, .pszName = L"Seen", .pszDisplayKey = L"PROBE_SEEN", .codes = PARAM_INTEGER},
    {.nId = OUTPUT_FLOAT, .pszName = L"Float", .pszDisplayKey = L"PROBE_FLOAT", .codes = PARAM_FLOAT},
    {.nId = OUTPUT_TEXT, .pszName = L"Text", .pszDisplayKey = L"PROBE_TEXT", .codes = PARAM_STRING},
};

constexpr ParamRow LATER_OUTPUTS[] = {
    {.nId = OUTPUT_LATER, .pszName = L"Later", .pszDisplayKey = L"PROBE_LATER", .codes = PARAM_EVENT},
};

constexpr GroupRow OUTPUT_GROUPS[] = {
    {.nId = OUTPUT_GROUP, .pszName = L"Output", .pszDisplayKey = L"PROBE", .params = OUTPUTS},
    {.nId = OUTPUT_SECOND_GROUP, .pszName = L"Output", .pszDisplayKey = L"PROBE", .params = LATER_OUTPUTS},
};

class CProbe : public P_ExtDevIOProcess {
public:
    explicit CProbe(const GUID& guidType) {
        InitNode(*this, guidType, INPUT_GROUP_ROW);
        VEKParam* pChoice = FindParam(m_lstParamGroup, MakeParamGuid(INPUT_CHOICE));
        pChoice->m_arChoice.Add(L"first");
        pChoice->m_arChoice.Add(L"second");
    }

    ~CProbe() override {
        if (m_nDo == DO_FIRE_WHEN_DESTROYED) {
            FireGeneralEvent(this, OUTPUT_FIRED);
        }
    }

    void InitParam() override {
        RaiseIf(DO_RAISE_IN_INIT);
        VEKParam* pText = FindParam(m_lstParamGroup, MakeParamGuid(INPUT_TEXT));
        if (pText != nullptr) {
            pText->m_strValue += L"+init";
        }
    }

    void GetNodeOutput(SGraphNode* pGraphNode) override {
        RaiseIf(DO_RAISE_IN_OUTPUTS);
        AppendOutputGroupsOnce(pGraphNode, OUTPUT_GROUPS);
    }

    BOOL NeedUpdateSingleParam(const GUID& guid) override { return guid.Data1 == INPUT_TEXT; }

    int UpdateSingleParamValue(const GUID& guid) override {
        RaiseIf(DO_RAISE_IN_EDIT);
        return static_cast<int>(guid.Data1);
    }

    int ProcessNode(SGraphNode* pGraphNode) override {
        m_pBaseGraphNode = pGraphNode;
        if (pGraphNode == nullptr) {
            return 0;
        }
        const VEKParam* pDo = FindInput(*this, *pGraphNode, INPUT_DO);
        m_nDo = pDo != nullptr ? pDo->m_nValue : DO_NOTHING;
        const VEKParam* pSend = FindInput(*this, *pGraphNode, INPUT_SEND);
        if (pSend != nullptr && pSend->m_nValue != 0) {
            ++m_nSeen;
        }
        WriteOutput(*pGraphNode, OUTPUT_SEEN, m_nSeen);
        if (const VEKParam* pFloat = FindInput(*this, *pGraphNode, INPUT_FLOAT)) {
            WriteOutput(*pGraphNode, OUTPUT_FLOAT, pFloat->m_fValue);
        }
        if (const VEKParam* pText = FindInput(*this, *pGraphNode, INPUT_TEXT)) {
            WriteOutput(*pGraphNode, OUTPUT_TEXT, pText->m_strValue);
        }
        Do();
        return 1;
    }

    int DevIOEventOccurred(const SIOEventRecord* pRecord) override {
        if (pRecord == nullptr) {
            return -1;
        }
        return pRecord->m_pPayload != nullptr ? 2 : 1;
    }

private:
    void Do() {
        switch (m_nDo) {
        case DO_RAISE:
            AfxThrowInvalidArgException();
        case DO_RAISE_STANDARD:
            throw std::runtime_error("a standard exception");
        case DO_POST_TO_HOST: {
            VEKObject object(L"Cube");
            PostGeneralEventMessage(this, m_pOwnerClip, &object, OUTPUT_FIRED);
            PostGeneralEventMessage(this, nullptr, nullptr, OUTPUT_FIRED);
            break;
        }
        case DO_NOTIFY:
            if (m_hNotifyWnd != nullptr && m_nNotifyMsg != 0) {
                PostMessageW(m_hNotifyWnd, m_nNotifyMsg, 0, 1);
            }
            break;
        case DO_REDRAW:
            m_pOwnerClip->m_refNodeInfo.UpdateNodeByProperty(m_pBaseGraphNode);
            break;
        case DO_FIRE:
            FireGeneralEvent(this, OUTPUT_FIRED);
            break;
        default:
            break;
        }
    }

    void RaiseIf(int nDo) const {
        const VEKParam* pDo = FindParam(m_lstParamGroup, MakeParamGuid(INPUT_DO));
        if (pDo != nullptr && pDo->m_nValue == nDo) {
            AfxThrowInvalidArgException();
        }
    }

    int m_nDo = DO_NOTHING;
    int m_nSeen = 0; ///< evaluations that found "Send" triggered
};

} // namespace

extern "C" int APIENTRY DllMain(HINSTANCE /*hInstance*/, DWORD /*dwReason*/, LPVOID /*pReserved*/) {
    return 1;
}

extern "C" __declspec(dllexport) int WINAPI
    IOProcessFunc(unsigned nOperation, void* pArgument, SIOProcessPluginData* pData) {
    if (nOperation == IOP_CREATE_NODE) {
        const GUID& guidType = *static_cast<const GUID*>(pArgument);
        if (guidType == GUID_PROBE || guidType == GUID_IMMORTAL) {
            pData->pNode = new CProbe(guidType);
            // An unpaired half of a character, as damaged texts hold it.
            pData->pNode->m_strName = L"Probe \xD800";
        }
    } else if (nOperation == IOP_DESTROY_NODE) {
        auto& ref = *static_cast<SIOProcessNodeRef*>(pArgument);
        if (ref.guidType == GUID_PROBE) {
            delete ref.pNode;
        }
        ref.pNode = nullptr;
    }
    return nOperation <= IOP_DESTROY_NODE ? 1 : 0;
}
