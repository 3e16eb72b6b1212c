// What the two JSON receive nodes share.
#pragma once

#include "nodes/shared/NodeSupport.h"
#include "nodes/shared/NodeType.h"

/// The output of the received text.
constexpr ParamRow JsonTextRow(unsigned nId) {
    return StringRow(nId, L"ReceiveData", L"LOGIC_CAL_DATASEPARATE_DATA");
}

/// The output that fires with it.
constexpr ParamRow JsonEventRow(unsigned nId) {
    return EventRow(nId, L"Event", L"IO_PROCESS_RECEIVE_JSON");
}

template <typename Node, typename Base = P_ExtDevIOProcess>
class CJsonReceiveNode : public COutputNode<Node, Base> {
public:
    void InitParam() override {
        if (GroupsOf(*this).IsEmpty()) {
            AfxThrowInvalidArgException();
        }
    }

    int ProcessNode(SGraphNode* pGraphNode) override {
        GraphNodeOf(*this) = pGraphNode;
        return pGraphNode != nullptr && ClipOf(*this) != nullptr ? 1 : 0;
    }

protected:
    /// Offer an accepted text at an output, log, and fire the event output. Answers 1.
    int Accept(unsigned nTextOutput, const CString& strText, const wchar_t* pszLogFormat, int nEventOutput) {
        WriteOutput(*GraphNodeOf(*this), nTextOutput, strText);
        WriteNodeLog(LEVEL_INFORMATION, *this, *GraphNodeOf(*this), pszLogFormat);
        PostGeneralEventMessage(this, ClipOf(*this), nullptr, nEventOutput);
        return 1;
    }
};
