// The module's one exported function.

#include <algorithm>
#include <iterator>
#include <memory>

#include "host/NodeTypeGuid.h"
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
#include "nodes/shared/ControlLayout.h"
#include "nodes/shared/NodeSupport.h"
#include "plugin/Module.h"

namespace {

/// One node type: its catalogue entry, how it is made and whether it is ever freed.
struct NodeTypeRow {
    GUID guidType;
    const wchar_t* pszNameKey;       ///< key of the text table for name and tool tip
    WORD nIconId;                    ///< icon resource
    int bEnable;                     ///< whether the catalogue offers the type
    const wchar_t* pszIniKey;        ///< key of NodePlugin.ini, section "IOProcess", that overrides it; null: fixed
    P_ExtDevIOProcess* (*pCreate)(); ///< makes a node that the caller owns
    bool bFreed = true;              ///< false: destroying a node of this type only unlinks it
};

template <typename NodeClass>
P_ExtDevIOProcess* Create() {
    return new NodeClass;
}

/// All types, in catalogue order.
constexpr NodeTypeRow NODE_TYPES[] = {
    {GUID_IOPROCESS_KEYBOARD, L"IO_PROCESS_KEYBOARD", 7000, 1, nullptr, Create<CKeyboardIOProcess>},
    // Destroying a key check node only unlinks it.
    {GUID_IOPROCESS_KEY_CHECK, L"IO_PROCESS_KEY_CHECK", 7009, 1, nullptr, Create<CKeyCheckProcess>, false},
    {GUID_IOPROCESS_TEXT_FIELD, L"IO_PROCESS_TEXTFIELDINPUT", 7001, 1, nullptr, Create<CTextFieldInputProcess>},
    {GUID_IOPROCESS_MOUSE, L"IO_PROCESS_MOUSE", 7002, 1, nullptr, Create<CMouseIOProcess>},
    {GUID_IOPROCESS_NET_PARAMETER_SEND, L"IO_PROCESS_NETSEND", 7004, 0, L"NetParameterSend",
     Create<CNetParameterSendIOProcess>},
    {GUID_IOPROCESS_NET_PARAMETER_RECEIVE, L"IO_PROCESS_NETRECEIVE", 7003, 0, L"NetParameterReceive",
     Create<CNetParameterReceiveIOProcess>},
    {GUID_IOPROCESS_BROADCAST_SEND, L"IO_PROCESS_BROADCAST", 7005, 0, L"BroadcastSend", Create<CBroadcastIOProcess>},
    {GUID_IOPROCESS_BROADCAST_RECEIVE, L"IO_PROCESS_BROADCASTREV", 7011, 1, nullptr, Create<CBroadcastRevIOProcess>},
    {GUID_IOPROCESS_GESTURE, L"TOUCH_CONTROL_TOUCH_GESTURE", 7006, 0, L"Gesture", Create<CGestureIOProcess>},
    {GUID_IOPROCESS_VR_HANDLE, L"IO_PROCESS_VRHANLDE", 7007, 1, L"VRHandle", Create<CVRHandleIOProcess>},
    {GUID_IOPROCESS_OBJECT_JSON_RECEIVE, L"IO_PROCESS_OBJ_JSON_RECEIVE", 7010, 1, nullptr, Create<CObjJsonReceive>},
    {GUID_IOPROCESS_DEVICE_JSON_RECEIVE, L"IO_PROCESS_DEV_JSON_RECEIVE", 7012, 1, nullptr, Create<CDevJsonReceive>},
    {GUID_IOPROCESS_STRING_DATA_SEND, L"IO_PROCESS_STRING_SEND", 7013, 1, nullptr, Create<CStringDataSendIOProcess>},
};

/// The row of this GUID; null for a GUID that names no type.
const NodeTypeRow* FindNodeType(const GUID& guidType) {
    const auto* pRow = std::ranges::find(NODE_TYPES, guidType, &NodeTypeRow::guidType);
    return pRow != std::end(NODE_TYPES) ? pRow : nullptr;
}

/// Destroys an icon that no entry took over.
struct IconDestroyer {
    using pointer = HICON;
    void operator()(HICON hIcon) const { DestroyIcon(hIcon); }
};

/// Append the catalogue; it ends with the last entry that could be added.
void RegisterTypes(SIOProcessPluginData& data) try {
    const CString strIniPath = PXGetAppPath() + L"\\Plugins\\NodePlugin\\NodePlugin.ini";
    // One record serves all rows; members that no row sets keep their first values.
    SIOProcessNodeInfo info;
    for (const NodeTypeRow& row : NODE_TYPES) {
        info.strName = LoadText(row.pszNameKey);
        info.guidType = row.guidType;
        info.strTip = LoadText(row.pszNameKey);
        std::unique_ptr<HICON, IconDestroyer> icon(
            static_cast<HICON>(LoadImageW(ModuleInstance(), MAKEINTRESOURCEW(row.nIconId), IMAGE_ICON, 0, 0, 0)));
        info.hIcon = icon.get();
        info.bEnable = row.bEnable;
        if (row.pszIniKey != nullptr) {
            info.bEnable =
                static_cast<int>(GetPrivateProfileIntW(L"IOProcess", row.pszIniKey, row.bEnable, strIniPath));
        }
        CatalogueOf(data).Add(info);
        static_cast<void>(icon.release()); // the host's, with the entry
    }
} catch (...) {
    EndException();
}

void CreateNode(const GUID& guidType, SIOProcessPluginData& data) {
    const NodeTypeRow* pRow = FindNodeType(guidType);
    if (pRow == nullptr) {
        return;
    }
    std::unique_ptr<P_ExtDevIOProcess> pNode(pRow->pCreate());
    NameOf(*pNode) = LoadText(pRow->pszNameKey);
    SecondNameOf(*pNode) = LoadText(pRow->pszNameKey);
    NodeOf(data) = pNode.release();
}

void DestroyNode(SIOProcessNodeRef& ref) {
    const NodeTypeRow* pRow = FindNodeType(TypeOf(ref));
    if (pRow != nullptr && pRow->bFreed) {
        delete NodeOf(ref);
    }
    NodeOf(ref) = nullptr;
}

} // namespace

/// The host's only way into the module: 1 for the four known operations, also when nothing was done, else 0. A missing
/// argument does nothing.
extern "C" __declspec(dllexport) int WINAPI
    IOProcessFunc(unsigned nOperation, void* pArgument, SIOProcessPluginData* pData) {
    switch (nOperation) {
    case IOP_REGISTER_TYPES:
        if (pData != nullptr) {
            RegisterTypes(*pData);
        }
        return 1;
    case IOP_RELEASE_GLOBALS:
        CControlLayout::ReleaseAll();
        return 1;
    case IOP_CREATE_NODE:
        if (pArgument != nullptr && pData != nullptr) {
            CreateNode(*static_cast<const GUID*>(pArgument), *pData);
        }
        return 1;
    case IOP_DESTROY_NODE:
        if (pArgument != nullptr) {
            DestroyNode(*static_cast<SIOProcessNodeRef*>(pArgument));
        }
        return 1;
    default:
        return 0;
    }
}
