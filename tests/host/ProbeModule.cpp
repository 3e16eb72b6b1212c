// A module for the host's tests. Its one kind of node does what its input "Do" says, when it is evaluated and at the
// other calls that the tests need; a second node type is never freed.
#include <algorithm>
#include <cwchar>
#include <span>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "host/EventRecord.h"
#include "host/GeneralEvent.h"
#include "host/HostCommon.h"
#include "host/HostRender.h"
#include "host/PluginContract.h"

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

/// What the input "Do" asks for; other numbers for nothing.
enum : int {
    DO_RAISE = 1,
    DO_RAISE_STANDARD,
    DO_POST_TO_HOST,
    DO_NOTIFY,
    DO_REDRAW,
    DO_FIRE,
    DO_FIRE_WHEN_DESTROYED,
    DO_RAISE_IN_INIT,
    DO_RAISE_IN_OUTPUTS,
    DO_RAISE_IN_EDIT,
    DO_RAISE_TO_THE_END,     ///< in InitParam, and once it's destroyed
    DO_RAISE_WHEN_MADE_ANEW, ///< when a node is asked for once it's destroyed
};

struct Row {
    unsigned nId;
    const wchar_t* pszName;
    const wchar_t* pszDisplayKey;
    ParamCodes codes;
};

constexpr Row INPUTS[] = {
    {INPUT_DO, L"Do", L"PROBE_DO", PARAM_INTEGER},      {INPUT_FLOAT, L"Float", L"PROBE_FLOAT", PARAM_FLOAT},
    {INPUT_TEXT, L"Text", L"PROBE_TEXT", PARAM_STRING}, {INPUT_CHOICE, L"Choice", L"PROBE_CHOICE", PARAM_CHOICE},
    {INPUT_SEND, L"Send", L"PROBE_SEND", PARAM_EVENT},
};

constexpr Row OUTPUTS[] = {
    {OUTPUT_FIRED, L"Fired", L"PROBE_FIRED", PARAM_EVENT},
    {OUTPUT_SEEN, L"Seen", L"PROBE_SEEN", PARAM_INTEGER},
    {OUTPUT_FLOAT, L"Float", L"PROBE_FLOAT", PARAM_FLOAT},
    {OUTPUT_TEXT, L"Text", L"PROBE_TEXT", PARAM_STRING},
};

constexpr Row LATER_OUTPUTS[] = {{OUTPUT_LATER, L"Later", L"PROBE_LATER", PARAM_EVENT}};

template <typename Param>
VEKParamGroup* NewGroup(unsigned nId, const wchar_t* pszName, std::span<const Row> rows) {
    auto* pGroup = new VEKParamGroup;
    pGroup->m_guid = MakeParamGuid(nId);
    pGroup->m_strName = pszName;
    pGroup->m_strDisplay = PXLoadString(L"PROBE");
    for (const Row& row : rows) {
        auto* pParam =
            new Param(row.nId, row.pszName, PXLoadString(row.pszDisplayKey), row.codes.m_nType, row.codes.m_nControl);
        if constexpr (std::is_same_v<Param, SQORNodeOutput>) {
            pParam->m_nExtra = 0;
        }
        pGroup->m_lstParam.AddTail(pParam);
    }
    return pGroup;
}

class CProbe : public P_ExtDevIOProcess {
public:
    explicit CProbe(const GUID& guidType) {
        m_nKindCode = KIND_IO_PROCESS;
        m_guidType = guidType;
        m_lstParamGroup.AddTail(NewGroup<VEKParam>(INPUT_GROUP, L"Base param", INPUTS));
        SetParamValue(FindParam(m_lstParamGroup, MakeParamGuid(INPUT_FLOAT)), 0.5f, -1, 1, 0.25f);
        VEKParam* pChoice = FindParam(m_lstParamGroup, MakeParamGuid(INPUT_CHOICE));
        pChoice->m_arChoice.Add(L"first");
        pChoice->m_arChoice.Add(L"second");
    }

    ~CProbe() override {
        if (m_nDo == DO_FIRE_WHEN_DESTROYED) {
            Fire();
        }
    }

    void InitParam() override {
        RaiseIf(DO_RAISE_IN_INIT);
        RaiseIf(DO_RAISE_TO_THE_END);
        VEKParam* pText = FindParam(m_lstParamGroup, MakeParamGuid(INPUT_TEXT));
        if (pText != nullptr) {
            pText->m_strValue += L"+init";
        }
    }

    void GetNodeOutput(SGraphNode* pGraphNode) override {
        RaiseIf(DO_RAISE_IN_OUTPUTS);
        if (pGraphNode != nullptr && pGraphNode->m_lstOutputGroup.IsEmpty()) {
            pGraphNode->m_lstOutputGroup.AddTail(NewGroup<SQORNodeOutput>(OUTPUT_GROUP, L"Output", OUTPUTS));
            pGraphNode->m_lstOutputGroup.AddTail(
                NewGroup<SQORNodeOutput>(OUTPUT_SECOND_GROUP, L"Output", LATER_OUTPUTS));
        }
    }

    bool IsTo(int nDo) const {
        const VEKParam* pDo = FindParam(m_lstParamGroup, MakeParamGuid(INPUT_DO));
        return pDo != nullptr && pDo->m_nValue == nDo;
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
        const auto Input = [&](unsigned nId) {
            return QORFindParamByGuid(MakeParamGuid(nId), pGraphNode->m_lstInputGroup, m_lstParamGroup);
        };
        const auto Output = [&](unsigned nId) { return FindParam(pGraphNode->m_lstOutputGroup, MakeParamGuid(nId)); };
        const VEKParam* pDo = Input(INPUT_DO);
        m_nDo = pDo != nullptr ? pDo->m_nValue : 0;
        const VEKParam* pSend = Input(INPUT_SEND);
        if (pSend != nullptr && pSend->m_nValue != 0) {
            ++m_nSeen;
        }
        if (VEKParam* pSeen = Output(OUTPUT_SEEN)) {
            pSeen->m_nValue = m_nSeen;
        }
        const VEKParam* pFloat = Input(INPUT_FLOAT);
        if (VEKParam* pOutput = Output(OUTPUT_FLOAT); pFloat != nullptr && pOutput != nullptr) {
            pOutput->m_fValue = pFloat->m_fValue;
        }
        const VEKParam* pText = Input(INPUT_TEXT);
        if (VEKParam* pOutput = Output(OUTPUT_TEXT); pText != nullptr && pOutput != nullptr) {
            pOutput->m_strValue = pText->m_strValue;
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
            Fire();
            break;
        default:
            break;
        }
    }

    /// Post the event that an output fires.
    void Fire() {
        if (m_hEventWnd == nullptr || m_nEventMsg == 0) {
            return;
        }
        auto* pEvent = new SQOREvent(QOR_EVENT_GENERAL, L"GeneralEvent");
        const auto Append = [pEvent](unsigned nId, const wchar_t* pszName, void* pValue, const wchar_t* pszTypeName) {
            auto* pParam = new VEKParam(nId, pszName, pszName, PARAM_POINTER.m_nType, PARAM_POINTER.m_nControl);
            pParam->m_pValue = pValue;
            std::wcscpy(pParam->m_szTypeName, pszTypeName);
            pEvent->m_lstParam.AddTail(pParam);
        };
        Append(0, L"OwnerClip", m_pOwnerClip, L"VEKClip");
        Append(1, L"OwnerObject", nullptr, L"VEKObject");
        Append(2, L"OwnerProperty", static_cast<VEKProperty*>(this), L"VEKProperty");
        Append(3, L"OwnerEventID", new int(OUTPUT_FIRED), L"EventID"); // the integer is the event's
        if (!PostMessageW(m_hEventWnd, m_nEventMsg, 1, reinterpret_cast<LPARAM>(pEvent))) {
            delete pEvent;
        }
    }

    void RaiseIf(int nDo) const {
        if (IsTo(nDo)) {
            AfxThrowInvalidArgException();
        }
    }

    int m_nDo = 0;
    int m_nSeen = 0; ///< evaluations that found "Send" triggered
};

bool s_bRaiseAtNext = false; ///< when a node is asked for

} // namespace

extern "C" int APIENTRY DllMain(HINSTANCE /*hInstance*/, DWORD /*dwReason*/, LPVOID /*pReserved*/) {
    return 1;
}

extern "C" __declspec(dllexport) int WINAPI
    IOProcessFunc(unsigned nOperation, void* pArgument, SIOProcessPluginData* pData) {
    if (nOperation == IOP_CREATE_NODE) {
        if (std::exchange(s_bRaiseAtNext, false)) {
            AfxThrowInvalidArgException();
        }
        const GUID& guidType = *static_cast<const GUID*>(pArgument);
        if (guidType == GUID_PROBE || guidType == GUID_IMMORTAL) {
            pData->pNode = new CProbe(guidType);
            // An unpaired half of a character, as damaged texts hold it.
            pData->pNode->m_strName = L"Probe \xD800";
        }
    } else if (nOperation == IOP_DESTROY_NODE) {
        auto& ref = *static_cast<SIOProcessNodeRef*>(pArgument);
        if (ref.guidType == GUID_PROBE) {
            const auto* pProbe = static_cast<const CProbe*>(ref.pNode);
            const bool bRaise = pProbe != nullptr && pProbe->IsTo(DO_RAISE_TO_THE_END);
            s_bRaiseAtNext = pProbe != nullptr && pProbe->IsTo(DO_RAISE_WHEN_MADE_ANEW);
            delete pProbe;
            if (bRaise) {
                AfxThrowInvalidArgException();
            }
        }
        ref.pNode = nullptr;
    }
    return nOperation <= IOP_DESTROY_NODE ? 1 : 0;
}
