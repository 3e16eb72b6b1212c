#include "nodes/network/DeviceInputs.h"

#include "nodes/shared/NodeSupport.h"

void OfferDeviceInputs(VEKProperty& node, const DeviceInputs& inputs, int bToDev) {
    for (const unsigned nId : {inputs.nDevID, inputs.nDevName}) {
        VEKParam* pParam = FindOwn(node, nId);
        if (pParam == nullptr) {
            continue;
        }
        AvailabilityOf(*pParam) = bToDev;
        if (bToDev == 0) {
            TextOf(*pParam).Empty();
        }
    }
}

void FollowToDev(VEKProperty& node, SGraphNode& graphNode, const DeviceInputs& inputs, int& bToDev) {
    VEKParam* pToDev = FindInput(node, graphNode, inputs.nToDev);
    if (pToDev == nullptr || IntegerOf(*pToDev) == bToDev) {
        return;
    }
    bToDev = IntegerOf(*pToDev);
    OfferDeviceInputs(node, inputs, bToDev);
    if (VEKClip* pClip = ClipOf(node)) {
        RefNodeInfoOf(*pClip).UpdateNodeByProperty(&graphNode);
    }
    if (NotifyWindowOf(node) != nullptr && NotifyMessageOf(node) != 0) {
        PostMessageW(NotifyWindowOf(node), NotifyMessageOf(node), 0, 1); // 1: redraw the panel
    }
}
