#include "fronts/describe/Describe.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>

#include "HostSetup.h"
#include "host/HostCommon.h"
#include "host/PluginContract.h"
#include "session/Session.h"

namespace {

constexpr char INTRODUCTION[] = R"(# Node types

Written by `iohost --describe markdown` from the module itself, with the English display texts of the application folder.

A node is created by its type's GUID. It has one group of parameters; the host shows them in its panel and offers them as
inputs of the graph node. In the tables:

- *name* is fixed, *shown as* comes from the host's text table.
- *kind* is what a parameter holds, with its type and control code.
- *default* is the value that a new node starts with; an event has none.
- *range* is what the host's editor is told: a value of its own, limits and step.
- *flags* are the four host flags of a parameter. "none set" in either column means that the node leaves the host's own.
- A parameter marked *hidden* starts with its availability flag cleared.

An event output fires; every other output holds a value, which starts as 0, 0.0 or an empty text.

)";

struct KindRow {
    ParamCodes codes;
    const char* pszName;
};

constexpr KindRow KINDS[] = {
    {PARAM_SWITCH, "switch"}, {PARAM_SWITCH_BOX, "switch"}, {PARAM_INTEGER, "integer"}, {PARAM_FLOAT, "float"},
    {PARAM_STRING, "text"},   {PARAM_CHOICE, "choice"},     {PARAM_EVENT, "event"},     {PARAM_KEY_CODE, "key code"},
};

/// The reply to a request that the session must carry out.
OrderedJson Ask(CSession& session, const Json& request) {
    OrderedJson reply = session.Handle(request);
    if (!reply.at("ok").get<bool>()) {
        throw std::runtime_error(request.at("op").get<std::string>() + ": " + reply.at("error").get<std::string>());
    }
    return reply;
}

/// Text within a table: bars and line ends would end the cell.
std::string Cell(const std::string& strText) {
    std::string strCell;
    for (const char c : strText) {
        strCell += c == '|' ? std::string("\\|") : std::string(1, c == '\n' || c == '\r' ? ' ' : c);
    }
    return strCell;
}

std::string Code(const std::string& strText) {
    return "`" + Cell(strText) + "`";
}

std::string NumberText(double fNumber) {
    constexpr double MOST_WHOLE = 1e15;
    if (fNumber == std::floor(fNumber) && std::abs(fNumber) < MOST_WHOLE) {
        return std::to_string(static_cast<long long>(fNumber));
    }
    char szText[64];
    const auto [pEnd, error] = std::to_chars(std::begin(szText), std::end(szText), static_cast<float>(fNumber));
    return {szText, pEnd};
}

const KindRow* FindKind(const OrderedJson& param) {
    const auto* pKind = std::ranges::find_if(KINDS, [&](const KindRow& row) {
        return row.codes.m_nType == param.at("type").get<int>() &&
               row.codes.m_nControl == param.at("control").get<int>();
    });
    return pKind != std::end(KINDS) ? pKind : nullptr;
}

std::string KindText(const OrderedJson& param) {
    const KindRow* pKind = FindKind(param);
    return std::string(pKind != nullptr ? pKind->pszName : "of the host") + " (" + param.at("type").dump() + ", " +
           param.at("control").dump() + ")";
}

bool IsOfKind(const OrderedJson& param, const ParamCodes& codes) {
    return param.at("type").get<int>() == codes.m_nType && param.at("control").get<int>() == codes.m_nControl;
}

std::string DefaultText(const OrderedJson& param) {
    if (IsOfKind(param, PARAM_EVENT)) {
        return "";
    }
    if (IsOfKind(param, PARAM_STRING)) {
        const auto strText = param.at("string").get<std::string>();
        return strText.empty() ? "empty" : Code(strText);
    }
    return IsOfKind(param, PARAM_FLOAT) ? NumberText(param.at("float").get<double>()) : param.at("int").dump();
}

std::string RangeText(const OrderedJson& param) {
    const OrderedJson& range = param.at("range");
    if (range.is_null()) {
        return "none set";
    }
    return NumberText(range.at(0)) + "; " + NumberText(range.at(1)) + " to " + NumberText(range.at(2)) + "; " +
           NumberText(range.at(3));
}

std::string FlagsText(const OrderedJson& param) {
    const OrderedJson& flags = param.at("flags");
    if (flags.is_null()) {
        return "none set";
    }
    std::string strFlags;
    for (const OrderedJson& flag : flags) {
        strFlags += (strFlags.empty() ? "" : " ") + flag.dump();
    }
    return strFlags;
}

std::string GroupTitle(const OrderedJson& group) {
    return "group " + group.at("id").dump() + " " + Code(group.at("name")) + ", shown as " +
           Cell(group.at("display").get<std::string>());
}

/// The columns that parameters and outputs share.
std::string FirstColumns(const OrderedJson& param) {
    return "| " + param.at("id").dump() + " | " + Code(param.at("name")) + " | " +
           Cell(param.at("display").get<std::string>()) + " | " + KindText(param) + " | ";
}

std::string ParameterTable(const OrderedJson& group) {
    std::string strTable = "| id | name | shown as | kind | default | range | flags |\n|---|---|---|---|---|---|---|\n";
    for (const OrderedJson& param : group.at("params")) {
        const bool bHidden = param.at("available").get<int>() == 0;
        strTable += FirstColumns(param) + DefaultText(param) + (bHidden ? ", hidden" : "") + " | " + RangeText(param) +
                    " | " + FlagsText(param) + " |\n";
    }
    return strTable;
}

std::string OutputTable(const OrderedJson& group) {
    std::string strTable = "| id | name | shown as | kind | range | flags |\n|---|---|---|---|---|---|\n";
    for (const OrderedJson& output : group.at("params")) {
        strTable += FirstColumns(output) + RangeText(output) + " | " + FlagsText(output) + " |\n";
    }
    return strTable;
}

std::string Choices(const OrderedJson& group) {
    std::string strText;
    for (const OrderedJson& param : group.at("params")) {
        const OrderedJson& choices = param.at("choices");
        if (choices.empty()) {
            continue;
        }
        strText += "\nChoices of " + Code(param.at("name")) + ": ";
        for (size_t i = 0; i < choices.size(); ++i) {
            const std::string strLabel = Cell(choices[i].get<std::string>());
            strText += (i == 0 ? "" : ", ") + std::to_string(i) + " " + strLabel;
        }
        strText += ".\n";
    }
    return strText;
}

/// The name of the file with the control layout; null for a type without one.
OrderedJson LayoutFile(const OrderedJson& layout) {
    const auto strPath = layout.at("path").get<std::string>();
    return strPath.empty() ? OrderedJson() : OrderedJson(strPath.substr(strPath.find_last_of("\\/") + 1));
}

std::string OfferText(bool bOffered, bool bOfferedByDefault) {
    if (bOffered && bOfferedByDefault) {
        return "offered";
    }
    return bOffered ? "offered by this `NodePlugin.ini`, hidden without one"
                    : (bOfferedByDefault ? "hidden by this `NodePlugin.ini`, offered without one" : "hidden");
}

std::string TypeText(CSession& session, const OrderedJson& type, const std::string& strOffer) {
    const Json node = {{"node", "described"}};
    const auto ask = [&](const char* pszOp) {
        Json request = node;
        request["op"] = pszOp;
        return Ask(session, request);
    };
    Json create = node;
    create.update({{"op", "create"}, {"type", type.at("guid")}, {"clip", "Clip"}, {"graph", "Described"}});
    if (!Ask(session, create).at("created").get<bool>()) {
        return "## " + type.at("name").get<std::string>() + "\n\nThe module makes no node of this type.\n";
    }
    const OrderedJson details = ask("inspect");
    const OrderedJson layoutFile = LayoutFile(ask("layout"));
    ask("destroy");

    std::string strText = "## " + type.at("name").get<std::string>() + "\n\n";
    strText += "- type " + Code(type.at("guid")) + ", kind code " + details.at("kind_code").dump() + "\n";
    strText += "- in the catalogue: " + strOffer + "\n";
    if (!layoutFile.is_null()) {
        strText += "- control layout " + Code(layoutFile) + "\n";
    }
    for (const OrderedJson& group : details.at("own")) {
        strText += "\nParameters: " + GroupTitle(group) + "\n\n" + ParameterTable(group) + Choices(group);
    }
    for (const OrderedJson& group : details.at("outputs")) {
        strText += "\nOutputs: " + GroupTitle(group) + "\n\n" + OutputTable(group);
    }
    if (details.at("outputs").empty()) {
        strText += "\nNo outputs.\n";
    }
    return strText;
}

} // namespace

std::string NodeTypesMarkdown(CSession& session) {
    // The catalogue as it is, and once more as a host without any configuration sees it.
    const OrderedJson types = Ask(session, {{"op", "catalogue"}}).at("types");
    const CString strAppPath = PXGetAppPath();
    SetAppPath(CString());
    Ask(session, {{"op", "call"}, {"code", IOP_REGISTER_TYPES}});
    SetAppPath(strAppPath);
    const OrderedJson allTypes = Ask(session, {{"op", "catalogue"}}).at("types");

    std::string strText = INTRODUCTION;
    for (size_t i = 0; i < types.size(); ++i) {
        const bool bOffered = types[i].at("enable").get<int>() != 0;
        const bool bOfferedByDefault = allTypes.at(types.size() + i).at("enable").get<int>() != 0;
        strText += (i == 0 ? "" : "\n") + TypeText(session, types[i], OfferText(bOffered, bOfferedByDefault));
    }
    return strText;
}
