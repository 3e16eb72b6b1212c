#include "fronts/describe/Describe.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>

#include "HostSetup.h"
#include "base/GuidText.h"
#include "base/TextUtf8.h"
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

/// The result of a command that the session must carry out.
template <typename Result, typename Kind>
Result Ask(CSession& session, const Kind& command) {
    const SDone done = session.Do(command);
    if (done.outcome.error) {
        throw std::runtime_error(*done.outcome.error);
    }
    return std::get<Result>(done.outcome.result);
}

/// Text within a table: bars and line ends would end the cell.
std::string Cell(const std::string& strText) {
    std::string strCell;
    for (const char c : strText) {
        strCell += c == '|' ? std::string("\\|") : std::string(1, c == '\n' || c == '\r' ? ' ' : c);
    }
    return strCell;
}

std::string Cell(const CString& strText) {
    return Cell(Utf8(strText));
}

std::string Code(const std::string& strText) {
    return "`" + Cell(strText) + "`";
}

std::string Code(const CString& strText) {
    return Code(Utf8(strText));
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

bool IsOfKind(const SParamState& param, const ParamCodes& codes) {
    return param.type == codes.m_nType && param.control == codes.m_nControl;
}

std::string KindText(const SParamState& param) {
    const auto* pKind = std::ranges::find_if(KINDS, [&](const KindRow& row) { return IsOfKind(param, row.codes); });
    return std::string(pKind != std::end(KINDS) ? pKind->pszName : "of the host") + " (" + std::to_string(*param.type) +
           ", " + std::to_string(*param.control) + ")";
}

std::string DefaultText(const SParamState& param) {
    if (IsOfKind(param, PARAM_EVENT)) {
        return "";
    }
    if (IsOfKind(param, PARAM_STRING)) {
        return param.text->IsEmpty() ? "empty" : Code(*param.text);
    }
    return IsOfKind(param, PARAM_FLOAT) ? NumberText(**param.number) : std::to_string(*param.integer);
}

std::string RangeText(const SParamState& param) {
    if (!param.range) {
        return "none set";
    }
    const auto& range = *param.range;
    return NumberText(*range[0]) + "; " + NumberText(*range[1]) + " to " + NumberText(*range[2]) + "; " +
           NumberText(*range[3]);
}

std::string FlagsText(const SParamState& param) {
    if (!param.flags) {
        return "none set";
    }
    std::string strFlags;
    for (const int nFlag : *param.flags) {
        strFlags += (strFlags.empty() ? "" : " ") + std::to_string(nFlag);
    }
    return strFlags;
}

std::string GroupTitle(const SGroupState& group) {
    return "group " + std::to_string(group.nId) + " " + Code(*group.name) + ", shown as " + Cell(*group.display);
}

/// The columns that parameters and outputs share.
std::string FirstColumns(const SParamState& param) {
    return "| " + std::to_string(param.nId) + " | " + Code(*param.name) + " | " + Cell(*param.display) + " | " +
           KindText(param) + " | ";
}

std::string ParameterTable(const SGroupState& group) {
    std::string strTable = "| id | name | shown as | kind | default | range | flags |\n|---|---|---|---|---|---|---|\n";
    for (const SParamState& param : group.params) {
        strTable += FirstColumns(param) + DefaultText(param) + (*param.available == 0 ? ", hidden" : "") + " | " +
                    RangeText(param) + " | " + FlagsText(param) + " |\n";
    }
    return strTable;
}

std::string OutputTable(const SGroupState& group) {
    std::string strTable = "| id | name | shown as | kind | range | flags |\n|---|---|---|---|---|---|\n";
    for (const SParamState& output : group.params) {
        strTable += FirstColumns(output) + RangeText(output) + " | " + FlagsText(output) + " |\n";
    }
    return strTable;
}

std::string Choices(const SGroupState& group) {
    std::string strText;
    for (const SParamState& param : group.params) {
        if (param.choices->empty()) {
            continue;
        }
        strText += "\nChoices of " + Code(*param.name) + ": ";
        for (size_t i = 0; i < param.choices->size(); ++i) {
            strText += (i == 0 ? "" : ", ") + std::to_string(i) + " " + Cell((*param.choices)[i]);
        }
        strText += ".\n";
    }
    return strText;
}

std::string OfferText(bool bOffered, bool bOfferedByDefault) {
    if (bOffered && bOfferedByDefault) {
        return "offered";
    }
    return bOffered ? "offered by this `NodePlugin.ini`, hidden without one"
                    : (bOfferedByDefault ? "hidden by this `NodePlugin.ini`, offered without one" : "hidden");
}

std::string TypeText(CSession& session, const SNodeType& type, const std::string& strOffer) {
    SCreateCommand create;
    create.strHandle = "described";
    create.guidType = type.guid;
    create.clip = L"Clip";
    if (!Ask<SCreated>(session, create).bCreated) {
        return "## " + Utf8(type.strName) + "\n\nThe module makes no node of this type.\n";
    }
    const auto details = Ask<SNodeDetails>(session, SInspectCommand{{create.strHandle}});
    const std::string strLayout = Utf8(Ask<SLayout>(session, SLayoutCommand{{create.strHandle}}).strPath);
    Ask<SDestroyed>(session, SDestroyCommand{create.strHandle, {}});

    std::string strText = "## " + Utf8(type.strName) + "\n\n";
    strText += "- type " + Code(GuidText(type.guid)) + ", kind code " + std::to_string(details.nKindCode) + "\n";
    strText += "- in the catalogue: " + strOffer + "\n";
    if (!strLayout.empty()) {
        strText += "- control layout " + Code(strLayout.substr(strLayout.find_last_of("\\/") + 1)) + "\n";
    }
    for (const SGroupState& group : details.own) {
        strText += "\nParameters: " + GroupTitle(group) + "\n\n" + ParameterTable(group) + Choices(group);
    }
    for (const SGroupState& group : details.outputs) {
        strText += "\nOutputs: " + GroupTitle(group) + "\n\n" + OutputTable(group);
    }
    if (details.outputs.empty()) {
        strText += "\nNo outputs.\n";
    }
    return strText;
}

} // namespace

std::string NodeTypesMarkdown(CSession& session) {
    // The catalogue as it is, and once more as a host without any configuration sees it.
    const auto types = Ask<SCatalogue>(session, SCatalogueCommand()).types;
    const CString strAppPath = PXGetAppPath();
    SetAppPath(CString());
    Ask<SCalled>(session, SCallCommand{IOP_REGISTER_TYPES});
    SetAppPath(strAppPath);
    const auto allTypes = Ask<SCatalogue>(session, SCatalogueCommand()).types;

    std::string strText = INTRODUCTION;
    for (size_t i = 0; i < types.size(); ++i) {
        const bool bOfferedByDefault = allTypes.at(types.size() + i).nEnable != 0;
        strText +=
            (i == 0 ? "" : "\n") + TypeText(session, types[i], OfferText(types[i].nEnable != 0, bOfferedByDefault));
    }
    return strText;
}
