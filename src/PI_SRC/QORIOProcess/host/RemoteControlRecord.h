// The record by which hosts and devices tell one another to play a key.
#pragma once

#include "host/EventRecord.h"

/// Root of what travels between hosts as one XML element.
class VEKCOMMON_API CBaseNetData {
public:
    CBaseNetData();
    virtual ~CBaseNetData();

    /// The object as XML text.
    virtual CString GetXmlDoc() const = 0;
    /// Take over what XML text of GetXmlDoc's form says. False, and no change, for any other text.
    virtual bool SetXmlDoc(const CString& strXml) = 0;
    /// Store the object to an archive opened for storing, as its XML text.
    void Save(CArchive& archive) const;
    /// Load what Save stored from an archive opened for loading. Raises CArchiveException at the archive's end, or,
    /// with the cause badClass and the object unchanged, when it holds anything else.
    void Load(CArchive& archive);
};

/// A remote-control record: which key of which clip to play on a device, with its values.
class VEKRENDER_API CQORPanelRemoteCtrlData : public CBaseNetData, public CQORIOAttachedData {
public:
    CQORPanelRemoteCtrlData();
    ~CQORPanelRemoteCtrlData() override;

    CString GetXmlDoc() const override;
    bool SetXmlDoc(const CString& strXml) override;

    // In the order in which they are stored and sent: the help parameter comes before the key value.
    CString m_strDevID; ///< number of the device, as text
    CString m_strDevName;
    CString m_strClipName;
    CString m_strGroupName;
    CString m_strKeyName;
    int m_nKeyNumber = 0;
    CString m_strHelpParameter;
    CString m_strKeyValue;
    int m_nLayer = 0; ///< the host's layer number
};
