// A node's parameters and outputs as data, and the one builder that turns them into groups.
#pragma once

#include <memory>
#include <optional>
#include <span>

#include "host/NodeBase.h"

/// The four numbers given to SetParamValue.
struct ParamRange {
    float fValue;
    float fMinimum;
    float fMaximum;
    float fStep;
};

/// The four flags given to SetParamBoolValue.
struct ParamFlags {
    int a;
    int b;
    int c;
    int d;
};

inline constexpr ParamRange RANGE_SWITCH{0, 0, 1, 1}; ///< switches and events
inline constexpr ParamFlags FLAGS_ORDINARY{0, 0, 1, 0};
inline constexpr ParamFlags FLAGS_NONE{0, 0, 0, 0};

/// How a row's display text is made from its display key.
enum class DisplayText {
    LookedUp, ///< looked up in the text table
    Literal,  ///< the key is the text
};

/// Appends the labels of a choice parameter, in index order.
using FillChoices = void(CStringArray& arChoice);

/// Give a choice parameter without labels all of them; nothing happens to one with labels, or when it's null.
void FillChoicesOnce(VEKParam* pParam, FillChoices* pFillChoices);

/// One input parameter or output pin.
struct ParamRow {
    unsigned nId;
    const wchar_t* pszName;
    const wchar_t* pszDisplayKey;
    ParamCodes codes;
    std::optional<ParamRange> range = std::nullopt; ///< absent: SetParamValue isn't called
    std::optional<ParamFlags> flags = std::nullopt; ///< absent: SetParamBoolValue isn't called
    std::optional<int> nValue = std::nullopt;       ///< integer value set after the range
    FillChoices* pFillChoices = nullptr;            ///< null: no choice labels
    DisplayText nDisplayText = DisplayText::LookedUp;
    const wchar_t* pszDisplaySuffix = L""; ///< follows the display text
    bool bAvailable = true;                ///< false: the availability flag starts cleared
};

/// One parameter group or output group.
struct GroupRow {
    unsigned nId;
    const wchar_t* pszName;
    const wchar_t* pszDisplayKey;
    std::span<const ParamRow> params;
};

inline constexpr unsigned PARAM_ENABLE = 2; ///< id of "Enable" in every node type that has it

/// The "Enable" input as most input-device nodes carry it.
inline constexpr ParamRow ENABLE_ROW{.nId = PARAM_ENABLE,
                                     .pszName = L"Enable",
                                     .pszDisplayKey = L"TOUCH_CONTROL_ENABLED",
                                     .codes = PARAM_SWITCH,
                                     .range = RANGE_SWITCH,
                                     .flags = FLAGS_ORDINARY,
                                     .nValue = 1};

inline constexpr unsigned PARAM_VERSION = 7; ///< id of "Version" in every node type that has it

/// The "Version" input: the generation of the node's parameter set.
constexpr ParamRow VersionRow(int nVersion) {
    return {.nId = PARAM_VERSION,
            .pszName = L"Version",
            .pszDisplayKey = L"Version",
            .codes = PARAM_INTEGER,
            .range = ParamRange{1, 1, 10000, 1},
            .flags = FLAGS_NONE,
            .nValue = nVersion,
            .nDisplayText = DisplayText::Literal};
}

/// An event output as all node types carry it.
constexpr ParamRow EventRow(unsigned nId, const wchar_t* pszName, const wchar_t* pszDisplayKey) {
    return {.nId = nId,
            .pszName = pszName,
            .pszDisplayKey = pszDisplayKey,
            .codes = PARAM_EVENT,
            .range = RANGE_SWITCH,
            .flags = FLAGS_ORDINARY};
}

/// A string input or output as all node types carry it.
constexpr ParamRow StringRow(unsigned nId, const wchar_t* pszName, const wchar_t* pszDisplayKey) {
    return {
        .nId = nId, .pszName = pszName, .pszDisplayKey = pszDisplayKey, .codes = PARAM_STRING, .flags = FLAGS_ORDINARY};
}

/// Append the input group to the list, which then owns it.
void AppendInputGroup(VEKParamGroupList& lstGroup, const GroupRow& group);

/// A new input parameter made from its row; the caller owns it.
std::unique_ptr<VEKParam> MakeInput(const ParamRow& row);

/// A new output group made from its row; the caller owns it.
std::unique_ptr<VEKParamGroup> MakeOutputGroup(const GroupRow& group);

/// A new output pin made from its row; the caller owns it.
std::unique_ptr<VEKParam> MakeOutput(const ParamRow& row);

/// Append the output groups to the graph node, in order, if it isn't null and holds no output group yet: all of them,
/// or none when that fails.
void AppendOutputGroupsOnce(SGraphNode* pGraphNode, std::span<const GroupRow> groups);
