#include "host/NodeSupport.h"

#include <algorithm>
#include <memory>
#include <string_view>

#include "host/HostCommon.h"

namespace {

/// Append one pointer parameter to a general event; the event owns the parameter.
void AppendPointerParam(SQOREvent& event, unsigned nId, const wchar_t* pszName, const wchar_t* pszDisplayKey,
                        void* pValue, std::wstring_view typeName) {
    auto pParam = std::make_unique<VEKParam>(nId, pszName, PXLoadString(pszDisplayKey), PARAM_POINTER.m_nType,
                                             PARAM_POINTER.m_nControl);
    pParam->m_pValue = pValue;
    std::copy(typeName.begin(), typeName.end(), pParam->m_szTypeName);
    event.m_lstParam.AddTail(pParam.get());
    static_cast<void>(pParam.release());
}

} // namespace

void FireGeneralEvent(VEKProperty* pNode, int nOutput) {
    if (pNode == nullptr || pNode->m_hEventWnd == nullptr || pNode->m_nEventMsg == 0) {
        return;
    }
    auto pEvent = std::make_unique<SQOREvent>(QOR_EVENT_GENERAL, L"GeneralEvent");
    AppendPointerParam(*pEvent, 0, L"OwnerClip", L"TOUCH_CONTROL_OWNER_CLIP", pNode->m_pOwnerClip, L"VEKClip");
    AppendPointerParam(*pEvent, 1, L"OwnerObject", L"TOUCH_CONTROL_OWNER_OBJECT", nullptr, L"VEKObject");
    AppendPointerParam(*pEvent, 2, L"OwnerProperty", L"TOUCH_CONTROL_OWNER_PROPERTY", pNode, L"VEKProperty");
    auto pOutput = std::make_unique<int>(nOutput);
    AppendPointerParam(*pEvent, 3, L"OwnerEventID", L"QOR_EXTRADATA_EVENT_ID", pOutput.get(), L"EventID");
    static_cast<void>(pOutput.release()); // freed with the event
    // A full queue or a window that is gone refuses the message; the event then stays ours and is freed here.
    if (PostMessageW(pNode->m_hEventWnd, pNode->m_nEventMsg, 1, reinterpret_cast<LPARAM>(pEvent.get()))) {
        static_cast<void>(pEvent.release());
    }
}

int RejectNullRecord(const VEKProperty& node, const SGraphNode& graphNode) {
    WriteNodeLog(LOG_ERROR, node, graphNode, L"[%s.%s.%s]DevIOEventOccurred函数数据错误");
    return 0;
}

int RejectFailure() {
    try {
        throw;
    } catch (CInvalidArgException*) {
        throw;
    } catch (CException* pException) {
        pException->Delete();
    } catch (...) { // the standard library's and whatever else: there is nothing to free
    }
    return 0;
}

NodeParamInfoGrpArray* CParamLayout::Groups(SParamGrpPosAdjust& node) {
    if (m_arGroup.IsEmpty()) {
        try {
            node.FillNodeParamInfoGrpAr(m_arGroup);
        } catch (...) {
            Release(); // a part of the layout would be taken for all of it
            RejectFailure();
        }
    }
    return &m_arGroup;
}

void CParamLayout::Release() {
    for (INT_PTR i = m_arGroup.GetSize() - 1; i >= 0; --i) {
        delete m_arGroup[i];
    }
    m_arGroup.RemoveAll();
}

CString ParamLayoutPath(const wchar_t* pszFileName) try {
    return G_GetModulePath() + L"\\Plugins\\NodePlugin\\IOProcess\\" + pszFileName;
} catch (...) {
    RejectFailure();
    return CString();
}
