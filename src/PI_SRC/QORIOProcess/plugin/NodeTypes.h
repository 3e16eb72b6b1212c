// The thirteen node types that the module offers.
#pragma once

#include <optional>
#include <span>

#include "nodes/shared/HostMembers.h"

/// One node type: its catalogue entry, how it is made and whether it is ever freed.
struct NodeTypeRow {
    GUID guidType;
    const wchar_t* pszNameKey; ///< key of the text table for name and tool tip
    WORD nIconId;              ///< icon resource
    /// Whether the catalogue offers the type. Absent: the entry keeps the value of the row before, the first row the
    /// record's default.
    std::optional<int> bEnable;
    const wchar_t* pszIniKey;        ///< key of NodePlugin.ini, section "IOProcess", that decides instead; null: none
    P_ExtDevIOProcess* (*pCreate)(); ///< makes a node that the caller owns
    bool bDestroyed = true;          ///< false: destroying a node of this type only unlinks it
};

/// All types, in catalogue order.
std::span<const NodeTypeRow> NodeTypes();

/// The row of this GUID; null for a GUID that names no type.
const NodeTypeRow* FindNodeType(const GUID& guidType);
