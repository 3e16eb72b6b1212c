#pragma once

#include "vek/Api.h"

#include "host/EventRecord.h"

class VEK_API CBaseNetData {
public:
    virtual ~CBaseNetData();
    virtual CString GetXmlDoc() = 0;
    virtual BOOL SetXmlDoc(CString strXml) = 0;
};

class VEK_API CQORPanelRemoteCtrlData : public CBaseNetData, public CQORIOAttachedData {
public:
    CQORPanelRemoteCtrlData();

    CString GetXmlDoc() override;
    BOOL SetXmlDoc(CString strXml) override;

    CString Device[2]; // number, name
    CString Clip, Group, Key;
    long Number;
    CString Help, Value;
    long Layer;
};
