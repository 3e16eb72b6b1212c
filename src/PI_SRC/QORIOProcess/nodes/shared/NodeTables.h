// A node's parameters and outputs as data, and the one builder that turns them into groups.
#pragma once

#include <memory>
#include <optional>
#include <span>

#include "nodes/shared/HostMembers.h"

/// The four numbers given to SetParamValue.
struct ParamRange {
    float fValue, fMinimum, fMaximum, fStep;
};

/// The four flags given to SetParamBoolValue.
struct ParamFlags {
    int a, b, c, d;
};

inline constexpr ParamRange RANGE_SWITCH{0, 0, 1, 1}; ///< switches and events
inline constexpr ParamFlags FLAGS_ORDINARY{0, 0, 1, 0};
inline constexpr ParamFlags FLAGS_NONE{0, 0, 0, 0};

/// Appends the labels of a choice parameter, in index order.
using FillChoices = void(CStringArray& arChoice);

/// One input parameter or output pin.
struct ParamRow {
    unsigned nId;
    const wchar_t* pszName;
    const wchar_t* pszDisplayKey; ///< null: the name is displayed
    ParamCodes codes;
    std::optional<ParamRange> range = std::nullopt; ///< absent: SetParamValue isn't called
    std::optional<ParamFlags> flags = std::nullopt; ///< absent: SetParamBoolValue isn't called
    std::optional<int> nValue = std::nullopt;       ///< integer value
    std::optional<float> fValue = std::nullopt;     ///< float value
    FillChoices* pFillChoices = nullptr;            ///< null: no choice labels
    const wchar_t* pszDisplaySuffix = L"";          ///< follows the display text
    bool bAvailable = true;                         ///< false: the availability flag is cleared
};

/// One parameter group or output group.
struct GroupRow {
    unsigned nId;
    const wchar_t* pszName;
    const wchar_t* pszDisplayKey;
    std::span<const ParamRow> params;
};

/// An integer input.
constexpr ParamRow IntegerRow(unsigned nId, const wchar_t* pszName, const wchar_t* pszDisplayKey, ParamRange range,
                              int nValue) {
    return {nId, pszName, pszDisplayKey, PARAM_INTEGER, range, FLAGS_ORDINARY, nValue};
}

/// A choice input.
constexpr ParamRow ChoiceRow(unsigned nId, const wchar_t* pszName, const wchar_t* pszDisplayKey,
                             std::optional<ParamRange> range, ParamFlags flags, int nValue, FillChoices* pFillChoices) {
    return {nId, pszName, pszDisplayKey, PARAM_CHOICE, range, flags, nValue, std::nullopt, pFillChoices};
}

/// A string input or output.
constexpr ParamRow StringRow(unsigned nId, const wchar_t* pszName, const wchar_t* pszDisplayKey) {
    return {nId, pszName, pszDisplayKey, PARAM_STRING, std::nullopt, FLAGS_ORDINARY};
}

/// An event input or output.
constexpr ParamRow EventRow(unsigned nId, const wchar_t* pszName, const wchar_t* pszDisplayKey) {
    return {nId, pszName, pszDisplayKey, PARAM_EVENT, RANGE_SWITCH, FLAGS_ORDINARY};
}

/// Give a new node its kind, its type and its input group.
void InitNode(VEKProperty& node, const GUID& guidType, const GroupRow& inputs);

/// A new input parameter, output pin or output group, made from its row.
std::unique_ptr<VEKParam> MakeInput(const ParamRow& row);
std::unique_ptr<VEKParam> MakeOutput(const ParamRow& row);
std::unique_ptr<VEKParamGroup> MakeOutputGroup(const GroupRow& group);

/// A whole GetNodeOutput: append the output groups to the graph node, in order, if there is one that holds none yet.
void AppendOutputGroupsOnce(SGraphNode* pGraphNode, std::span<const GroupRow> groups);

/// Fill the labels of a choice parameter that has none yet. Null does nothing.
void FillChoicesOnce(VEKParam* pParam, FillChoices* pFillChoices);
