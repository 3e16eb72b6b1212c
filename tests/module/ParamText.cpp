#include "ParamText.h"

#include "ModuleHost.h"

using Json = nlohmann::ordered_json;

namespace {

/// The id that a GUID stands for; a GUID that isn't made from an id is shown by its words.
Json Id(const GUID& guid) {
    const auto words = GuidWords(guid);
    return words[1] == 0 && words[2] == 0 && words[3] == 0 ? Json(words[0]) : Json(words);
}

} // namespace

Json CellsOf(const VEKParam& param) {
    Json cells = {{"id", Id(param.m_guid)},
                  {"name", Utf8(param.m_strName)},
                  {"display", Utf8(param.m_strDisplay)},
                  {"type", param.m_nType},
                  {"control", param.m_nControl}};
    const auto AddUnless = [&cells](bool bAsNew, const char* pszName, const Json& cell) {
        if (!bAsNew) {
            cells[pszName] = cell;
        }
    };
    AddUnless(param.m_bRangeSet == 0, "range", param.m_fRange);
    AddUnless(param.m_bBoolValueSet == 0, "flags", param.m_nBoolValue);
    AddUnless(param.m_nValue == 0, "integer", param.m_nValue);
    AddUnless(param.m_fValue == 0.0f, "float", param.m_fValue);
    AddUnless(param.m_strValue.IsEmpty(), "string", Utf8(param.m_strValue));
    AddUnless(param.m_szTypeName[0] == 0, "type name", Utf8(param.m_szTypeName));
    Json choices = Json::array();
    for (INT_PTR i = 0; i < param.m_arChoice.GetSize(); ++i) {
        choices.push_back(Utf8(param.m_arChoice[i]));
    }
    AddUnless(choices.empty(), "choices", choices);
    AddUnless(param.m_bAvailable == 1, "available", param.m_bAvailable);
    if (const auto* pOutput = dynamic_cast<const SQORNodeOutput*>(&param)) {
        cells["pin"] = pOutput->m_nExtra;
    }
    return cells;
}

Json CellsOf(const VEKParamGroupList& lstGroup) {
    Json groups = Json::array();
    for (const VEKParamGroup* pGroup : Items(lstGroup)) {
        Json params = Json::array();
        for (const VEKParam* pParam : Items(pGroup->m_lstParam)) {
            params.push_back(CellsOf(*pParam));
        }
        groups.push_back({{"id", Id(pGroup->m_guid)},
                          {"name", Utf8(pGroup->m_strName)},
                          {"display", Utf8(pGroup->m_strDisplay)},
                          {"params", params}});
    }
    return groups;
}

std::string TextOf(const Json& groups) {
    std::string text = "[";
    for (const Json& group : groups) {
        Json head = group;
        head.erase("params");
        text += (text == "[" ? "\n  " : ",\n  ") + head.dump();
        text.back() = ','; // in place of the brace
        text += " \"params\": [";
        const char* pszBefore = "\n    ";
        for (const Json& param : group["params"]) {
            text += pszBefore + param.dump();
            pszBefore = ",\n    ";
        }
        text += "]}";
    }
    return text + ']';
}

std::string TextOf(const VEKParamGroupList& lstGroup) {
    return TextOf(CellsOf(lstGroup));
}
