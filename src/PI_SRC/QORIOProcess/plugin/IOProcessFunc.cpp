// The module's one exported function.

#include <memory>
#include <new>

#include "host/HostCommon.h"
#include "host/PluginContract.h"
#include "nodes/input/GestureNode.h"
#include "nodes/input/MouseNode.h"
#include "nodes/input/VRHandleNode.h"
#include "nodes/json/DeviceJsonReceiveNode.h"
#include "nodes/network/NetParameterSendNode.h"
#include "plugin/Module.h"
#include "plugin/NodeTypes.h"

namespace {

/// The layouts of the classes that have one, in the order in which they are released.
constexpr void (*RELEASE_LAYOUT[])() = {CGestureIOProcess::ReleaseLayout, CMouseIOProcess::ReleaseLayout,
                                        CNetParameterSendIOProcess::ReleaseLayout, CVRHandleIOProcess::ReleaseLayout,
                                        CDevJsonReceive::ReleaseLayout};

int ReadVisibility(const Visibility& visibility, int nCarriedOver, const CString& strIniPath) {
    switch (visibility.nRule) {
    case Visibility::ALWAYS:
        return 1;
    case Visibility::INI_ENTRY:
        return static_cast<int>(
            GetPrivateProfileIntW(L"IOProcess", visibility.pszIniKey, visibility.nDefault, strIniPath));
    case Visibility::CARRIED_OVER:
        break;
    }
    return nCarriedOver;
}

/// Destroys an icon that no entry took over.
struct IconDestroyer {
    using pointer = HICON;
    void operator()(HICON hIcon) const { DestroyIcon(hIcon); }
};

void RegisterTypes(CArray<SIOProcessNodeInfo>& arNodeInfo) {
    const CString strIniPath = PXGetAppPath() + L"\\Plugins\\NodePlugin\\NodePlugin.ini";
    // One record serves all rows, so a member that a row doesn't set keeps the value of the row before.
    SIOProcessNodeInfo info;
    for (const NodeTypeRow& row : NodeTypes()) {
        info.strName = PXLoadString(row.pszNameKey);
        info.guidType = row.guidType;
        info.strTip = PXLoadString(row.pszNameKey);
        std::unique_ptr<HICON, IconDestroyer> icon(
            static_cast<HICON>(LoadImageW(ModuleInstance(), MAKEINTRESOURCEW(row.nIconId), IMAGE_ICON, 0, 0, 0)));
        info.hIcon = icon.get();
        info.bEnable = ReadVisibility(row.visibility, info.bEnable, strIniPath);
        arNodeInfo.Add(info);
        static_cast<void>(icon.release()); // the host's, with the entry
    }
}

/// The same for a host that may be out of memory, which this operation has no way to tell: the catalogue then ends with
/// the last entry that could be added.
void RegisterTypesWithinMemory(CArray<SIOProcessNodeInfo>& arNodeInfo) {
    try {
        RegisterTypes(arNodeInfo);
    } catch (const std::bad_alloc&) {
    } catch (CMemoryException* pException) {
        pException->Delete();
    }
}

void CreateNode(const GUID& guidType, SIOProcessPluginData& data) {
    const NodeTypeRow* pRow = FindNodeType(guidType);
    if (pRow == nullptr) {
        return;
    }
    std::unique_ptr<P_ExtDevIOProcess> pNode(pRow->pCreate());
    pNode->m_strName = PXLoadString(pRow->pszNameKey);
    pNode->m_strSecondName = PXLoadString(pRow->pszNameKey);
    data.pNode = pNode.release();
}

void DestroyNode(SIOProcessNodeRef& ref) {
    const NodeTypeRow* pRow = FindNodeType(ref.guidType);
    if (pRow != nullptr && pRow->bDestroyed) {
        delete ref.pNode;
    }
    ref.pNode = nullptr;
}

} // namespace

/// The host's only way into the module: 1 for the four known operations, also when nothing was done, else 0. A missing
/// argument does nothing.
extern "C" __declspec(dllexport) int WINAPI
    IOProcessFunc(unsigned nOperation, void* pArgument, SIOProcessPluginData* pData) {
    switch (nOperation) {
    case IOP_REGISTER_TYPES:
        if (pData != nullptr) {
            RegisterTypesWithinMemory(pData->arNodeInfo);
        }
        return 1;
    case IOP_RELEASE_GLOBALS:
        for (auto* pReleaseLayout : RELEASE_LAYOUT) {
            pReleaseLayout();
        }
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
