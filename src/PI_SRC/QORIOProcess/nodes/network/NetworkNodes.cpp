#include "nodes/network/NetworkNodes.h"

#include <utility>

#include "host/NodeSupport.h"

namespace {

/// The notification that makes the editor redraw a node's panel; wParam is 0.
constexpr LPARAM NOTIFY_REDRAW = 1;

void RedrawPanel(const VEKProperty& node, SGraphNode& graphNode) {
    if (node.m_pOwnerClip != nullptr) {
        node.m_pOwnerClip->m_refNodeInfo.UpdateNodeByProperty(&graphNode);
    }
    if (node.m_hNotifyWnd != nullptr && node.m_nNotifyMsg != 0) {
        PostMessageW(node.m_hNotifyWnd, node.m_nNotifyMsg, 0, NOTIFY_REDRAW);
    }
}

} // namespace

void OfferDeviceInputs(VEKProperty& node, const DeviceInputs& inputs, int bToDev, DeviceTexts texts) {
    if (bToDev == 0) {
        for (CString* pText : texts) {
            pText->Empty();
        }
    }
    for (const unsigned nId : {inputs.nDevID, inputs.nDevName}) {
        if (VEKParam* pParam = FindParam(node.m_lstParamGroup, MakeParamGuid(nId))) {
            pParam->m_bAvailable = bToDev;
            if (bToDev == 0) {
                pParam->m_strValue.Empty();
            }
        }
    }
}

void FollowToDev(VEKProperty& node, SGraphNode& graphNode, const DeviceInputs& inputs, int& bToDev, DeviceTexts texts) {
    const VEKParam* pToDev = FindInput(node, graphNode, inputs.nToDev);
    if (pToDev == nullptr || pToDev->m_nValue == bToDev) {
        return;
    }
    const int bBefore = std::exchange(bToDev, pToDev->m_nValue);
    OfferDeviceInputs(node, inputs, bToDev, texts);
    try {
        RedrawPanel(node, graphNode);
    } catch (...) {
        bToDev = bBefore;
        throw;
    }
}
