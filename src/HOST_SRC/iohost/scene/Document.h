// Parameters, nodes, links and clips as plain data: what is shown, saved and loaded.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/ParamModel.h"

/// One parameter. What is shown of a live one has all members; what a file holds may lack any but the id.
struct SParamState {
    unsigned nId = 0;
    std::optional<CString> name = std::nullopt;
    std::optional<CString> display = std::nullopt;
    std::optional<int> type = std::nullopt;
    std::optional<int> control = std::nullopt;
    std::optional<std::array<std::optional<float>, 4>> range = std::nullopt; ///< none: never set; an empty element: NaN
    std::optional<std::array<int, 4>> flags = std::nullopt;                  ///< none: never set
    std::optional<int> integer = std::nullopt;
    std::optional<std::optional<float>> number = std::nullopt; ///< inner none: NaN
    std::optional<CString> text = std::nullopt;
    std::optional<int> length = std::nullopt; ///< of the text, where only its beginning is told
    std::optional<std::vector<CString>> choices = std::nullopt;
    std::optional<int> available = std::nullopt;
    std::optional<long long> extra = std::nullopt; ///< the host word of an output pin; files' are ignored

    bool operator==(const SParamState&) const = default;
};

struct SGroupState {
    unsigned nId = 0;
    std::optional<CString> name = std::nullopt;
    std::optional<CString> display = std::nullopt;
    std::vector<SParamState> params = {};

    bool operator==(const SGroupState&) const = default;
};

/// The three members of a parameter that can be its value.
struct SValues {
    int nInteger = 0;
    float fNumber = 0.0f;
    CString strText;
    std::optional<int> length = std::nullopt; ///< of the text, where only its beginning is told
};

/// The value of one parameter. Whoever sets it must know the parameter's kind: a float may be given as an int.
using ParamValue = std::variant<int, float, CString>;

/// The pins of one output group.
struct SSavedPins {
    unsigned nGroup = 0;
    std::vector<unsigned> ids = {};
};

/// A node's parameter set out of an older or damaged project.
struct SSavedSet {
    std::vector<std::pair<unsigned, ParamValue>> values = {};   ///< own parameters and what they hold
    std::vector<unsigned> drop = {};                            ///< parameters that the set doesn't have
    std::vector<std::pair<unsigned, int>> available = {};       ///< parameters and their availability flags
    std::vector<unsigned> emptyChoices = {};                    ///< choice parameters without labels
    bool bGroups = true;                                        ///< false: no parameter group at all
    std::optional<std::vector<SSavedPins>> pins = std::nullopt; ///< the output groups that the graph node starts with
};

/// How a node is made.
struct SNodeStart {
    std::string strHandle;
    GUID guidType = {};
    std::optional<CString> clip = std::nullopt; ///< name of the owner clip; none: no owner clip
    CString strGraph;                           ///< name of the graph node
    bool bEventWindow = true;
    bool bNotifyWindow = true;

    bool operator==(const SNodeStart&) const = default;
};

/// Where a node stands on the graph's canvas.
struct SPlace {
    float fX = 0.0f; ///< of its upper left corner, in the canvas's units
    float fY = 0.0f;
    bool bFolded = false; ///< it's shown without its pins

    bool operator==(const SPlace&) const = default;
};

/// A text on the canvas.
struct SNote {
    float fX = 0.0f; ///< of its upper left corner
    float fY = 0.0f;
    float fWidth = 0.0f;
    float fHeight = 0.0f;
    CString strText;
    std::optional<int> length = std::nullopt; ///< of the text, where only its beginning is told; none in a scene

    bool operator==(const SNote&) const = default;
};

/// Notes by their ids, in the order in which they were made.
using Notes = std::vector<std::pair<std::string, SNote>>;

/// Groups that several hold: a copy of them takes long.
using SharedGroups = std::shared_ptr<const std::vector<SGroupState>>;

/// The parameters of a node and its graph node. Any of the lists may be missing.
struct SParamSets {
    SharedGroups own;
    SharedGroups inputs;
    SharedGroups outputs;

    bool operator==(const SParamSets& other) const {
        const auto same = [](const SharedGroups& a, const SharedGroups& b) { return a == b || (a && b && *a == *b); };
        return same(own, other.own) && same(inputs, other.inputs) && same(outputs, other.outputs);
    }
};

/// A node of a scene file. Of parameters that the node makes by itself only ids, values, choices and availability
/// matter. Where a list is missing, the node has what a new one has.
struct SNodeDocument : SNodeStart, SParamSets {
    std::optional<SPlace> place = std::nullopt; ///< none: wherever the viewer puts it

    bool operator==(const SNodeDocument&) const = default;
};

/// A link may name a pin that the node makes by itself and that was dropped.
struct SLinkDocument {
    std::string strFrom;
    unsigned nOutput = 0;
    std::string strTo;
    unsigned nInput = 0;

    bool operator==(const SLinkDocument&) const = default;
};

struct SObjectDocument {
    CString strName;
    std::optional<std::array<float, 16>> matrix = std::nullopt; ///< none: where a new object stands

    bool operator==(const SObjectDocument&) const = default;
};

struct SClipDocument {
    CString strName;
    std::vector<SObjectDocument> objects = {};

    bool operator==(const SClipDocument&) const = default;
};

/// An object of a clip, with its transform.
struct SObjectState {
    CString strClip;
    CString strName;
    std::array<float, 16> matrix;

    bool operator==(const SObjectState&) const = default;
};
