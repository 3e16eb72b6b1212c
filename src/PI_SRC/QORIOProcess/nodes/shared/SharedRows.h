// Parameters and outputs that several node types have alike.
#pragma once

#include "nodes/shared/NodeTables.h"

inline constexpr unsigned PARAM_ENABLE = 2;  ///< id of "Enable" in every node type that has it
inline constexpr unsigned PARAM_VERSION = 7; ///< id of "Version" likewise

/// "Enable" as most input-device nodes have it.
inline constexpr ParamRow ENABLE_ROW{PARAM_ENABLE,   L"Enable", L"TOUCH_CONTROL_ENABLED", PARAM_SWITCH, RANGE_SWITCH,
                                     FLAGS_ORDINARY, 1};

/// The generation of a node's parameter set.
constexpr ParamRow VersionRow(int nVersion) {
    return {PARAM_VERSION, L"Version", nullptr, PARAM_INTEGER, ParamRange{1, 1, 10000, 1}, FLAGS_NONE, nVersion};
}

/// Send to one device rather than to all.
constexpr ParamRow ToDevRow(unsigned nId) {
    return {nId, L"ToDev", L"TOUCH_NETSEND_TODEV", PARAM_SWITCH, RANGE_SWITCH, FLAGS_NONE, 1};
}

constexpr ParamRow KeyNumberRow(unsigned nId) {
    return IntegerRow(nId, L"KeyNumber", L"IO_PROCESS_NETSEND_KEYNUMBER", {0, 0, 1e9f, 1}, 0);
}

/// Name and display key of a text.
struct TextNames {
    const wchar_t* pszName;
    const wchar_t* pszDisplayKey;
};

inline constexpr TextNames TEXT_DEV_NAME{L"DevName", L"IO_PROCESS_NETSEND_DEVNAME"};
inline constexpr TextNames TEXT_CLIP_NAME{L"ClipName", L"IO_PROCESS_NETSEND_CLIPNAME"};
inline constexpr TextNames TEXT_GROUP_NAME{L"GroupName", L"IO_PROCESS_NETSEND_GROUPNAME"};
inline constexpr TextNames TEXT_KEY_NAME{L"KeyName", L"IO_PROCESS_NETSEND_KEYNAME"};
inline constexpr TextNames TEXT_KEY_VALUE{L"KeyValue", L"IO_PROCESS_NETSEND_KEYVALUE"};
inline constexpr TextNames TEXT_HELP_PARAMETER{L"HelpParameter", L"IO_PROCESS_NETSEND_HELPPARAMETER"};
inline constexpr TextNames TEXT_FLAG{L"Flag", L"IO_PROCESS_BROADCAST_FLAG"};
inline constexpr TextNames TEXT_BROADCAST_NAME{L"Name", L"IO_PROCESS_BROADCAST_NAME"};
inline constexpr TextNames TEXT_BROADCAST_DATA{L"Data", L"IO_PROCESS_BROADCAST_VALUE"};

constexpr ParamRow StringRow(unsigned nId, TextNames names) {
    return StringRow(nId, names.pszName, names.pszDisplayKey);
}

/// The trigger of a node that sends.
constexpr ParamRow SendRow(unsigned nId) {
    ParamRow row = EventRow(nId, L"Send", L"IO_PROCESS_NETSEND_SEND");
    row.nValue = 0;
    return row;
}
