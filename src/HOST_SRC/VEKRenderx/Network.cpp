#include "host/HostRender.h"
#include "host/Markup.h"
#include "host/PlayControlDevice.h"
#include "host/PlayControlItem.h"
#include "host/RemoteControlRecord.h"

#include <string>

#include "DeviceList.h"
#include "HostSetup.h"
#include "XmlElement.h"

namespace {

NetPlayCtrlDevArray* s_pDevices = nullptr;

constexpr std::string_view RECORD_ELEMENT = "PanelRemoteCtrl";

} // namespace

CQORPanelRemoteCtrlData::CQORPanelRemoteCtrlData() = default;
CQORPanelRemoteCtrlData::~CQORPanelRemoteCtrlData() = default;

CString CQORPanelRemoteCtrlData::GetXmlDoc() const {
    CMarkup markup;
    markup.AddElem(L"PanelRemoteCtrl");
    markup.SetAttrib(L"DevID", m_strDevID);
    markup.SetAttrib(L"DevName", m_strDevName);
    markup.SetAttrib(L"ClipName", m_strClipName);
    markup.SetAttrib(L"GroupName", m_strGroupName);
    markup.SetAttrib(L"KeyName", m_strKeyName);
    markup.SetAttrib(L"KeyNumber", QORIntToStr(m_nKeyNumber));
    markup.SetAttrib(L"HelpParameter", m_strHelpParameter);
    markup.SetAttrib(L"KeyValue", m_strKeyValue);
    markup.SetAttrib(L"Layer", QORIntToStr(m_nLayer));
    return markup.GetDoc();
}

bool CQORPanelRemoteCtrlData::SetXmlDoc(const CString& strXml) {
    CXmlElement element;
    CQORPanelRemoteCtrlData read;
    if (!element.Parse(ToUtf8(strXml, strXml.GetLength()), RECORD_ELEMENT) ||
        !element.GetText("DevID", read.m_strDevID) || !element.GetText("DevName", read.m_strDevName) ||
        !element.GetText("ClipName", read.m_strClipName) || !element.GetText("GroupName", read.m_strGroupName) ||
        !element.GetText("KeyName", read.m_strKeyName) || !element.GetNumber("KeyNumber", read.m_nKeyNumber) ||
        !element.GetText("HelpParameter", read.m_strHelpParameter) ||
        !element.GetText("KeyValue", read.m_strKeyValue) || !element.GetNumber("Layer", read.m_nLayer)) {
        return false;
    }
    *this = read;
    return true;
}

CQORNetItemPlayCtlProtocol::CQORNetItemPlayCtlProtocol() = default;

CQORNetItemPlayCtlProtocol::~CQORNetItemPlayCtlProtocol() {
    delete m_pAttachedData;
}

void SetNetPlayCtrlDevices(NetPlayCtrlDevArray* pDevices) {
    s_pDevices = pDevices;
}

NetPlayCtrlDevArray* G_GetArNetPlayCtrlDev() {
    return s_pDevices;
}

SQORNetPlayCtrlDev* G_FindNetPlayCtrlDevByID(int nId) {
    const INT_PTR nCount = s_pDevices != nullptr ? s_pDevices->GetSize() : 0;
    for (INT_PTR i = 0; i < nCount; ++i) {
        SQORNetPlayCtrlDev* pDevice = s_pDevices->GetAt(i);
        if (pDevice != nullptr && pDevice->m_nId == nId) {
            return pDevice;
        }
    }
    return nullptr;
}

CString QORIntToStr(int nValue) {
    return FromUtf8(std::to_string(nValue)); // to_wstring would format it, which is slow
}
