// The records that cross the exported function IOProcessFunc.
#pragma once

#include <algorithm>

#include "host/NodeBase.h"

/// Operation codes of IOProcessFunc.
enum EIOProcessOperation : unsigned {
    IOP_REGISTER_TYPES = 0,  ///< append the catalogue to the host's array
    IOP_RELEASE_GLOBALS = 1, ///< empty the class-static layout arrays; once, before unloading
    IOP_CREATE_NODE = 2,     ///< argument: a node-type GUID; the new node goes into the data's slot
    IOP_DESTROY_NODE = 3,    ///< argument: an SIOProcessNodeRef
};

/// One entry of the catalogue; lives in the host's array.
struct SIOProcessNodeInfo {
    SIOProcessNodeInfo() = default;
    SIOProcessNodeInfo(const SIOProcessNodeInfo& other) { *this = other; }
    SIOProcessNodeInfo& operator=(const SIOProcessNodeInfo& other) {
        nInfoKind = other.nInfoKind;
        guidType = other.guidType;
        strName = other.strName;
        strAux = other.strAux;
        strTip = other.strTip;
        hIcon = other.hIcon;
        hAux = other.hAux;
        bEnable = other.bEnable;
        arAux.Copy(other.arAux);
        std::copy_n(other.aReserved, 4, aReserved);
        return *this;
    }

    int nInfoKind = 1; ///< host-defined; always 1 here
    GUID guidType = {};
    CString strName; ///< display name
    CString strAux = L"";
    CString strTip;        ///< tool tip: the display name again
    HICON hIcon = nullptr; ///< loaded for the host, which destroys it (DestroyIcon)
    HANDLE hAux = nullptr;
    int bEnable = 1; ///< 1: offered in the editor, 0: hidden
    CStringArray arAux;
    unsigned aReserved[4] = {};
};

/// The host's record behind the third argument.
struct SIOProcessPluginData {
    CArray<SIOProcessNodeInfo> arNodeInfo; ///< the host's catalogue
    VEKProperty* pNode = nullptr;          ///< slot that creating a node fills; the host owns the node
};

/// Which node to destroy.
struct SIOProcessNodeRef {
    GUID guidType;
    VEKProperty* pNode; ///< cleared by the call
};

/// Type of the exported function: 1 for a known operation code, 0 for any other.
using IOProcessFuncType = int(WINAPI*)(unsigned nOperation, void* pArgument, SIOProcessPluginData* pData);
