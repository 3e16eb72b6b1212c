// The thirteen node types that the module offers.
#pragma once

#include <span>

#include "host/NodeBase.h"

/// How a type's catalogue entry gets its bEnable.
struct Visibility {
    enum ERule {
        CARRIED_OVER, ///< not set: the entry keeps the value of the row before, the first row the record's default
        ALWAYS,       ///< 1
        INI_ENTRY,    ///< from NodePlugin.ini, section "IOProcess"
    };
    ERule nRule;
    const wchar_t* pszIniKey = nullptr;
    int nDefault = 1; ///< when the file or the key is missing
};

/// One node type: its catalogue entry, how it is made and whether it is ever freed.
struct NodeTypeRow {
    GUID guidType;
    const wchar_t* pszNameKey; ///< key of the text table for name and tool tip
    WORD nIconId;              ///< icon resource
    Visibility visibility;
    P_ExtDevIOProcess* (*pCreate)(); ///< makes a node that the caller owns
    bool bDestroyed;                 ///< false: destroying a node of this type only unlinks it
};

/// All types, in catalogue order.
std::span<const NodeTypeRow> NodeTypes();

/// The row of this GUID; null for a GUID that names no type.
const NodeTypeRow* FindNodeType(const GUID& guidType);
