#include "protocol/Inspect.h"

#include "base/TextUtf8.h"
#include "host/HostRender.h"

namespace {

OrderedJson ChoicesToJson(const CStringArray& arChoice) {
    OrderedJson choices = OrderedJson::array();
    for (INT_PTR i = 0; i < arChoice.GetSize(); ++i) {
        choices.push_back(Utf8(arChoice[i]));
    }
    return choices;
}

OrderedJson ParamToJson(const VEKParam& param) {
    OrderedJson json = {{"id", static_cast<unsigned>(param.m_guid.Data1)},
                        {"name", Utf8(param.m_strName)},
                        {"display", Utf8(param.m_strDisplay)},
                        {"type", param.m_nType},
                        {"control", param.m_nControl},
                        {"range", param.m_bRangeSet != 0 ? OrderedJson(param.m_fRange) : OrderedJson()},
                        {"flags", param.m_bBoolValueSet != 0 ? OrderedJson(param.m_nBoolValue) : OrderedJson()}};
    json.update(ValuesToJson(param));
    json["choices"] = ChoicesToJson(param.m_arChoice);
    json["available"] = param.m_bAvailable;
    if (const auto* pOutput = dynamic_cast<const SQORNodeOutput*>(&param)) {
        json["extra"] = pOutput->m_nExtra;
    }
    return json;
}

} // namespace

OrderedJson GroupsToJson(const VEKParamGroupList& lstGroup) {
    OrderedJson groups = OrderedJson::array();
    for (POSITION pos = lstGroup.GetHeadPosition(); pos != nullptr;) {
        const VEKParamGroup& group = *lstGroup.GetNext(pos);
        OrderedJson params = OrderedJson::array();
        for (POSITION posParam = group.m_lstParam.GetHeadPosition(); posParam != nullptr;) {
            params.push_back(ParamToJson(*group.m_lstParam.GetNext(posParam)));
        }
        groups.push_back({{"id", static_cast<unsigned>(group.m_guid.Data1)},
                          {"name", Utf8(group.m_strName)},
                          {"display", Utf8(group.m_strDisplay)},
                          {"params", std::move(params)}});
    }
    return groups;
}

OrderedJson ValuesToJson(const VEKParam& param) {
    return {{"int", param.m_nValue}, {"float", param.m_fValue}, {"string", Utf8(param.m_strValue)}};
}

OrderedJson ObjectsToJson(const CScene& scene) {
    OrderedJson objects = OrderedJson::array();
    for (const VEKClip& clip : scene.Clips()) {
        for (POSITION pos = clip.m_lstObject.GetHeadPosition(); pos != nullptr;) {
            const VEKObject& object = *clip.m_lstObject.GetNext(pos);
            objects.push_back(
                {{"clip", Utf8(clip.m_strName)}, {"name", Utf8(object.m_strName)}, {"matrix", object.m_fMatrix}});
        }
    }
    return objects;
}
