// The records that cross the boundary between host and module, and the nodes; compiled only for the layouts and the
// virtual tables that the compiler prints.

#include "host/EventRecord.h"
#include "host/PluginContract.h"
#include "host/RemoteControlRecord.h"
#include "nodes/input/GestureNode.h"
#include "nodes/input/KeyCheckNode.h"
#include "nodes/input/KeyboardNode.h"
#include "nodes/input/MouseNode.h"
#include "nodes/input/TextFieldNode.h"
#include "nodes/input/VRHandleNode.h"
#include "nodes/json/DeviceJsonReceiveNode.h"
#include "nodes/json/ObjectJsonReceiveNode.h"
#include "nodes/network/BroadcastReceiveNode.h"
#include "nodes/network/BroadcastSendNode.h"
#include "nodes/network/NetParameterReceiveNode.h"
#include "nodes/network/NetParameterSendNode.h"
#include "nodes/network/StringDataSendNode.h"

template <typename... Records>
struct SSizes {
    static constexpr std::size_t TOTAL = (sizeof(Records) + ...);
};

// Names the node of a list.
class CGroupList : public VEKParamGroupList {
public:
    using CList::CNode;
};

// A compiler lays out what it's asked the size of.
static_assert(
    SSizes<CString, CStringArray, CArray<SIOProcessNodeInfo>, VEKParamGroupList, CGroupList::CNode, SIOProcessNodeInfo,
           SIOProcessPluginData, SIOProcessNodeRef, SIOEventRecord, SKeyEventData, SDeviceTextData, SObjectTextData,
           SQORMouseData, SVRPluginData, SBroadcastItem, CQORPanelRemoteCtrlData>::TOTAL > 0);

// And makes the virtual tables of what is constructed, and of its bases: whatever a class's own constructor is, this
// one is here.
template <typename Node>
class CDerived : public Node {};

template <typename... Nodes>
void Construct() {
    (CDerived<Nodes>(), ...);
}
template void
Construct<P_ExtDevIOProcess, CKeyboardIOProcess, CKeyCheckProcess, CTextFieldInputProcess, CMouseIOProcess,
          CGestureIOProcess, CVRHandleIOProcess, CNetParameterSendIOProcess, CNetParameterReceiveIOProcess,
          CBroadcastIOProcess, CBroadcastRevIOProcess, CStringDataSendIOProcess, CDevJsonReceive, CObjJsonReceive>();
