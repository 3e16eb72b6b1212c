#include "nodes/shared/NodeSupport.h"

#include <algorithm>
#include <cwchar>

#include "nodes/shared/SharedRows.h"

namespace {

// The names in a general event, whose copies share their texts.
const CString EVENT_NAME = L"GeneralEvent";
const CString CLIP_NAME = L"OwnerClip";
const CString OBJECT_NAME = L"OwnerObject";
const CString NODE_NAME = L"OwnerProperty";
const CString OUTPUT_NAME = L"OwnerEventID";

/// Append one pointer parameter to a general event.
void AppendPointer(SQOREvent& event, unsigned nId, const CString& strName, const wchar_t* pszDisplayKey, void* pValue,
                   const wchar_t* pszTypeName) {
    auto pParam = NewParam(nId, strName, LoadText(pszDisplayKey), PARAM_POINTER);
    PointerOf(*pParam) = pValue;
    std::copy_n(pszTypeName, std::wcslen(pszTypeName) + 1, TypeNameOf(*pParam));
    AppendOwned(ParamsOf(event), std::move(pParam));
}

} // namespace

VEKParam* FindInput(VEKProperty& node, SGraphNode& graphNode, unsigned nId) {
    return QORFindParamByGuid(MakeParamGuid(nId), InputsOf(graphNode), GroupsOf(node));
}

VEKParam* FindOwn(VEKProperty& node, unsigned nId) {
    return FindParam(GroupsOf(node), MakeParamGuid(nId));
}

VEKParam* FindTrigger(SGraphNode& graphNode, unsigned nId) {
    return FindParam(InputsOf(graphNode), MakeParamGuid(nId));
}

bool IsTriggered(SGraphNode& graphNode, unsigned nId) {
    VEKParam* pTrigger = FindTrigger(graphNode, nId);
    return pTrigger != nullptr && IntegerOf(*pTrigger) != 0;
}

bool ReadEnable(VEKProperty& node, SGraphNode& graphNode, int& bEnable) {
    VEKParam* pEnable = FindInput(node, graphNode, PARAM_ENABLE);
    if (pEnable == nullptr) {
        return false;
    }
    bEnable = IntegerOf(*pEnable);
    return bEnable != 0;
}

void ReadText(VEKProperty& node, SGraphNode& graphNode, unsigned nId, CString& strText) {
    if (VEKParam* pParam = FindInput(node, graphNode, nId)) {
        strText = TextOf(*pParam);
    }
}

VEKParam* FindOutput(SGraphNode& graphNode, unsigned nId) {
    return FindParam(OutputsOf(graphNode), MakeParamGuid(nId));
}

void WriteOutput(SGraphNode& graphNode, unsigned nId, int nValue) {
    VEKParam* pOutput = FindOutput(graphNode, nId);
    if (pOutput != nullptr && IntegerOf(*pOutput) != nValue) {
        IntegerOf(*pOutput) = nValue;
    }
}

void WriteOutput(SGraphNode& graphNode, unsigned nId, float fValue) {
    VEKParam* pOutput = FindOutput(graphNode, nId);
    if (pOutput != nullptr && FloatOf(*pOutput) != fValue) {
        FloatOf(*pOutput) = fValue;
    }
}

bool WriteOutput(SGraphNode& graphNode, unsigned nId, const CString& strValue) {
    VEKParam* pOutput = FindOutput(graphNode, nId);
    if (pOutput != nullptr && !IsSameText(TextOf(*pOutput), strValue)) {
        TextOf(*pOutput) = strValue;
    }
    return pOutput != nullptr;
}

void FireGeneralEvent(VEKProperty* pNode, int nOutput) {
    if (pNode == nullptr || EventWindowOf(*pNode) == nullptr || EventMessageOf(*pNode) == 0) {
        return;
    }
    auto pEvent = std::make_unique<SQOREvent>(static_cast<EQOREventID>(GENERAL_EVENT), EVENT_NAME);
    AppendPointer(*pEvent, 0, CLIP_NAME, L"TOUCH_CONTROL_OWNER_CLIP", ClipOf(*pNode), L"VEKClip");
    AppendPointer(*pEvent, 1, OBJECT_NAME, L"TOUCH_CONTROL_OWNER_OBJECT", nullptr, L"VEKObject");
    AppendPointer(*pEvent, 2, NODE_NAME, L"TOUCH_CONTROL_OWNER_PROPERTY", pNode, L"VEKProperty");
    auto pOutput = std::make_unique<int>(nOutput);
    AppendPointer(*pEvent, 3, OUTPUT_NAME, L"QOR_EXTRADATA_EVENT_ID", pOutput.get(), L"EventID");
    static_cast<void>(pOutput.release()); // freed with the event
    // A full queue or a window that is gone refuses the message: the event is freed here then.
    if (PostMessageW(EventWindowOf(*pNode), EventMessageOf(*pNode), 1, reinterpret_cast<LPARAM>(pEvent.get()))) {
        static_cast<void>(pEvent.release());
    }
}

const FiredRow* FindFired(std::span<const FiredRow> rows, int nEvent) {
    const auto row = std::ranges::find(rows, nEvent, &FiredRow::nEvent);
    return row != rows.end() ? &*row : nullptr;
}

bool CheckRecord(EventRecordPtr pRecord, VEKProperty& node, SGraphNode* pGraphNode, const wchar_t* pszNoRecord) {
    if (ClipOf(node) == nullptr || pGraphNode == nullptr) {
        return false;
    }
    if (pRecord == nullptr) {
        WriteNodeLog(LEVEL_ERROR, node, *pGraphNode, pszNoRecord);
    }
    return pRecord != nullptr;
}

int EndException() {
    try {
        throw;
    } catch (CInvalidArgException*) {
        throw;
    } catch (CException* pException) {
        pException->Delete();
    } catch (...) { // of the standard library or anybody: nothing to free
    }
    return 0;
}
