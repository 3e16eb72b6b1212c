// Control-layout files:
//   <ParamLayout class="CMouseIOProcess" version="1">
//     <Group id="301" name="Base param">
//       <Param id="2" x="8" y="8" width="220" height="24" labelWidth="90"/>
#include <fstream>
#include <memory>

#include <pugixml.hpp>

#include "HostSetup.h"
#include "NativePath.h"
#include "host/Codes.h"
#include "host/ControlLayout.h"

struct CVEKXml::SDocument {
    pugi::xml_document document;
};

SNodeParamInfoGrp::SNodeParamInfoGrp() : m_guid(MakeParamGuid(0)) {}
SNodeParamInfoGrp::~SNodeParamInfoGrp() = default;

CVEKXml::CVEKXml() : m_pDocument(nullptr) {}

CVEKXml::~CVEKXml() {
    delete m_pDocument;
}

bool CVEKXml::Load(const CString& strPath) {
    delete m_pDocument;
    m_pDocument = nullptr;
    auto pDocument = std::make_unique<SDocument>();
    std::ifstream file(NativePath(strPath), std::ios::binary);
    if (!file || !pDocument->document.load(file)) {
        return false;
    }
    m_pDocument = pDocument.release();
    return true;
}

void CVEKXml::ReadParamLayout(CArray<SNodeParamInfoGrp*>& arGroup) const {
    if (m_pDocument == nullptr) {
        return;
    }
    for (const pugi::xml_node group : m_pDocument->document.child("ParamLayout").children("Group")) {
        auto pGroup = std::make_unique<SNodeParamInfoGrp>();
        pGroup->m_guid = MakeParamGuid(group.attribute("id").as_uint());
        pGroup->m_strName = FromUtf8(group.attribute("name").value());
        for (const pugi::xml_node param : group.children("Param")) {
            pGroup->m_arParam.Add({MakeParamGuid(param.attribute("id").as_uint()), param.attribute("x").as_int(),
                                   param.attribute("y").as_int(), param.attribute("width").as_int(),
                                   param.attribute("height").as_int(), param.attribute("labelWidth").as_int()});
        }
        arGroup.Add(pGroup.get());
        static_cast<void>(pGroup.release());
    }
}
