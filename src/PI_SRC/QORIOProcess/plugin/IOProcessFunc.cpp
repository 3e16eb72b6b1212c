// The module's one exported function.

#include <memory>

#include "nodes/shared/ControlLayout.h"
#include "nodes/shared/NodeSupport.h"
#include "plugin/Module.h"
#include "plugin/NodeTypes.h"

namespace {

/// Destroys an icon that no entry took over.
struct IconDestroyer {
    using pointer = HICON;
    void operator()(HICON hIcon) const { DestroyIcon(hIcon); }
};

void RegisterTypes(SIOProcessPluginData& data) {
    const CString strIniPath = PXGetAppPath() + L"\\Plugins\\NodePlugin\\NodePlugin.ini";
    // One record serves all rows, so a member that a row doesn't set keeps the value of the row before.
    SIOProcessNodeInfo info;
    for (const NodeTypeRow& row : NodeTypes()) {
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
            try {
                RegisterTypes(*pData);
            } catch (...) {
                EndException(); // the catalogue ends with the last entry that could be added
            }
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
