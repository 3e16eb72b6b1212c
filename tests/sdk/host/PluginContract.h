#pragma once

#include "vek/Api.h"

#include "host/NodeBase.h"

#define IOP_REGISTER_TYPES 0
#define IOP_RELEASE_GLOBALS 1
#define IOP_CREATE_NODE 2
#define IOP_DESTROY_NODE 3

struct SIOProcessNodeInfo {
    SIOProcessNodeInfo();
    SIOProcessNodeInfo(const SIOProcessNodeInfo& other);
    SIOProcessNodeInfo& operator=(const SIOProcessNodeInfo& other);

    int nInfoKind;
    GUID guidType;
    CString strName, strAux, strTip;
    HICON hIcon;
    LPVOID hAux;
    BOOL bEnable;
    CStringArray arAux;
    DWORD aReserved[4];
};

struct SIOProcessPluginData {
    CArray<SIOProcessNodeInfo, SIOProcessNodeInfo&> Types;
    VEKProperty* NewNode;
};

struct SIOProcessNodeRef {
    GUID TypeID;
    VEKProperty* Node;
};
