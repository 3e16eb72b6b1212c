// The thirteen node types that the module offers.
#pragma once

#include <span>

#include "nodes/shared/HostMembers.h"

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

/// All types, in catalogue order.
std::span<const NodeTypeRow> NodeTypes();

/// The row of this GUID; null for a GUID that names no type.
const NodeTypeRow* FindNodeType(const GUID& guidType);
